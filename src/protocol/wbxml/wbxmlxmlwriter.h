// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/wbxml/wbxmlparserbase.h"

struct WBXMLTree;
struct WBXMLTreeNode;

/**
 * Prints a WBXML document as indented XML, for logs and tests.
 *
 * The library's own converter cannot be given a table and appends to a list of siblings by walking it. This
 * one builds the tree itself, so it names every tag of the extended table and stays linear.
 */
class WbxmlXmlWriter : public WbxmlParserBase
{
    Q_OBJECT

public:
    explicit WbxmlXmlWriter(QObject *parent = nullptr);
    ~WbxmlXmlWriter() override;

    /** The XML text, or an empty one if the document is malformed or empty. */
    QString write(const QByteArray &data);

    void onStartElement(uint codePage, uint token) override;
    void onEndElement(uint codePage, uint token) override;
    void onContent(uint codePage, uint token, const QString &text, const QByteArray &raw) override;

private:
    /** An open element and the last of its children. */
    struct Level
    {
        WBXMLTreeNode *node;
        WBXMLTreeNode *lastChild;
    };

    /** Takes the node; false if there is no place for it. */
    bool append(WBXMLTreeNode *node);
    QString print() const;

    WBXMLTree *mTree = nullptr;
    QVector<Level> mLevels;
};
