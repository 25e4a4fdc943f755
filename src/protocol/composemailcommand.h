// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/baseprotocolcommand.h"
#include "protocol/wbxml/wbxmltokens.h"

#include <QByteArray>
#include <QString>

class WbxmlEncoder;

/**
 * What SendMail, SmartReply and SmartForward share: they hand a whole message over to the server.
 *
 * From 14.0 on the message is a part of a WBXML body with its options beside it; before that the message is
 * the body, and the options stand in the URL. A subclass gives its kind(), and the message.
 *
 * After finished(true) status() is what the server says: 0, or why the message was not sent. After
 * finished(false) with a transport status the message may have gone; a server from 14.0 on does not send it
 * twice when it comes again, since it knows the ClientId.
 */
class ComposeMailCommand : public BaseProtocolCommand
{
    Q_OBJECT

public:
    /** Of the local message. */
    quint64 clientMessageId() const { return mMessageId; }

    /** What the server knows the message by: the same for the same bytes, another for anything else, also
     * when a local identifier comes again in a store that was made anew. */
    static QString clientId(quint64 messageId, const QByteArray &mime);

protected:
    struct Kind
    {
        QLatin1String name;
        Wbxml::Token root;
        /** The line above the message in the log. */
        const char *mimeTitle;
        ExchangeTexts texts;
    };

    ComposeMailCommand(EasAccountId accountId, QObject *parent, quint64 messageId, bool saveInSent);

    virtual const Kind &kind() const = 0;
    /** The message as it goes out; empty, logged, if there is none. */
    virtual QByteArray mime(EasAccount &account) const = 0;
    /** What stands between SaveInSentItems and Mime. */
    virtual void encodeOptions(WbxmlEncoder &) const {}

    QString commandName() const override { return kind().name; }
    ExchangeTexts texts() const override { return kind().texts; }
    void configureCommandSpecificQueryValues(QUrlQuery &query) override;
    bool prepareRequest(QNetworkRequest &request) override;
    bool encodeBody(EasAccount &account, QByteArray *body) override;
    bool parseReply(QNetworkReply *reply, const QByteArray &body) override;
    void logBody(const QByteArray &body) const override;
    /** Below 14.0 a message that goes out twice arrives twice. */
    bool post(const QNetworkRequest &request, const QByteArray &body) override;

    /** Whether the account's protocol version has these commands as WBXML. */
    bool usesWbxml() const;

private:
    QByteArray encoded(const QByteArray &mime) const;

    const quint64 mMessageId;
    const bool mSaveInSent;
};
