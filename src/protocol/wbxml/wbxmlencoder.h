// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/wbxml/wbxmltokens.h"

#include <QByteArray>
#include <QObject>
#include <QString>

struct WBXMLTagEntry;
struct WBXMLTree;
struct WBXMLTreeNode;

/**
 * Builds the body of one request as a tree and turns it into bytes.
 *
 * Elements go under the given parent or, without one, under the current node; the first element under no
 * current node is the root. Nodes belong to the encoder and live until clear(). An element that is not in the
 * tag table is logged and left out, and null is returned. A command uses one encoder per body.
 */
class WbxmlEncoder : public QObject
{
    Q_OBJECT

public:
    explicit WbxmlEncoder(QObject *parent = nullptr);
    ~WbxmlEncoder() override;

    WBXMLTreeNode *appendElement(
        uint codePage, uint token, bool makeCurrent, WBXMLTreeNode *parent = nullptr);
    WBXMLTreeNode *appendTextElement(
        uint codePage, uint token, const QString &text, bool makeCurrent, WBXMLTreeNode *parent = nullptr);
    WBXMLTreeNode *appendIntElement(
        uint codePage, uint token, uint value, bool makeCurrent, WBXMLTreeNode *parent = nullptr);
    WBXMLTreeNode *appendUInt64Element(
        uint codePage, uint token, qulonglong value, bool makeCurrent, WBXMLTreeNode *parent = nullptr);
    /** The bytes travel unchanged, as opaque data. */
    WBXMLTreeNode *appendByteArrayElement(uint codePage, uint token, const QByteArray &bytes,
        bool makeCurrent, WBXMLTreeNode *parent = nullptr);
    WBXMLTreeNode *appendText(const QString &text, WBXMLTreeNode *parent = nullptr);

    WBXMLTreeNode *appendElement(Wbxml::Token tag, bool makeCurrent = false, WBXMLTreeNode *parent = nullptr);
    WBXMLTreeNode *appendTextElement(
        Wbxml::Token tag, const QString &text, bool makeCurrent = false, WBXMLTreeNode *parent = nullptr);
    WBXMLTreeNode *appendIntElement(
        Wbxml::Token tag, uint value, bool makeCurrent = false, WBXMLTreeNode *parent = nullptr);
    WBXMLTreeNode *appendUInt64Element(
        Wbxml::Token tag, qulonglong value, bool makeCurrent = false, WBXMLTreeNode *parent = nullptr);
    WBXMLTreeNode *appendByteArrayElement(
        Wbxml::Token tag, const QByteArray &bytes, bool makeCurrent = false, WBXMLTreeNode *parent = nullptr);

    WBXMLTreeNode *currentNode() const;
    void setCurrentNode(WBXMLTreeNode *node);
    void setCurrentNodeToParent();

    /** Destroys the tree; every node is gone. */
    void clear();
    /** Starts the next document. */
    void resetTree();

    /** The document's bytes; empty if nothing was added. */
    QByteArray encoded() const;

    /**
     * The document, whose last element was given no bytes and gets these, as opaque data.
     *
     * As if appendByteArrayElement() had had them, for so many that the copies of the tree would count.
     */
    QByteArray encodedWith(const QByteArray &lastBytes) const;

    /** The document as indented XML, for logs and tests; empty if it is not a sound document. */
    static QString toXml(const QByteArray &data);

    static const WBXMLTagEntry *tagEntry(uint codePage, uint token);

private:
    WBXMLTree *mTree = nullptr;
    WBXMLTreeNode *mCurrentNode = nullptr;
};
