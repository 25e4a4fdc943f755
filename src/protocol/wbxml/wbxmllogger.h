// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/wbxml/wbxmlparserbase.h"

#include <QDebug>

/** Prints a WBXML document as indented text. Passwords are left out. */
class WbxmlLogger : public WbxmlParserBase
{
    Q_OBJECT

public:
    explicit WbxmlLogger(const QDebug &debug, QObject *parent = nullptr);
    ~WbxmlLogger() override;

    void onStartDocument() override;
    void onEndDocument() override;
    void onStartElement(uint codePage, uint token) override;
    void onEndElement(uint codePage, uint token) override;
    void onContent(uint codePage, uint token, const QString &text, const QByteArray &raw) override;

private:
    QString wsPrefix() const;
    void endOpenLine();
    void writeText(const QString &text);

    int mDepth = 0;
    bool mLineOpen = false;
    QDebug mDebug;
};
