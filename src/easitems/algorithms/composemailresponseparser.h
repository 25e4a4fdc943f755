// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/wbxml/wbxmlparserbase.h"

/**
 * Reads the reply of a SendMail, SmartReply or SmartForward: a status, which servers leave out of a success.
 * An empty reply is ready at once, with status 0.
 */
class ComposeMailResponseParser : public WbxmlParserBase
{
    Q_OBJECT

public:
    explicit ComposeMailResponseParser(QObject *parent = nullptr);

    bool ready() const override;
    void parse(const QByteArray &data) override;

    /** 0 or a status of the server; an internal error for a text that is none. */
    int status() const { return mStatus; }

    void onStartElement(uint codePage, uint token) override;
    void onEndElement(uint codePage, uint token) override;
    void onContent(uint codePage, uint token, const QString &text, const QByteArray &raw) override;

private:
    /** Whether the root was one of a reply to these commands, and has ended; true for an empty reply. */
    bool mHasAnswer = false;
    int mStatus = 0;
};
