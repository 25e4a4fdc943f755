// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/composemailcommand.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "easitems/algorithms/composemailresponseparser.h"
#include "protocol/base/protocolutils.h"
#include "protocol/exchangelog.h"
#include "protocol/requestheaders.h"
#include "protocol/wbxml/wbxmlencoder.h"

#include <QCryptographicHash>
#include <QNetworkRequest>
#include <QUrlQuery>

using namespace Wbxml;

ComposeMailCommand::ComposeMailCommand(
    EasAccountId accountId, QObject *parent, quint64 messageId, bool saveInSent)
    : BaseProtocolCommand(accountId, parent)
    , mMessageId(messageId)
    , mSaveInSent(saveInSent)
{
}

QString ComposeMailCommand::clientId(quint64 messageId, const QByteArray &mime)
{
    constexpr int Digits = 16;
    const QByteArray hash = QCryptographicHash::hash(mime, QCryptographicHash::Sha256).toHex().left(Digits);
    return QStringLiteral("%1-%2").arg(messageId).arg(QString::fromLatin1(hash));
}

bool ComposeMailCommand::usesWbxml() const
{
    const EasAccount *const sender = account();
    return sender && sender->protocolVersion() >= ExchangeActiveSync::ProtocolVersion140;
}

void ComposeMailCommand::configureCommandSpecificQueryValues(QUrlQuery &query)
{
    if (mSaveInSent && !usesWbxml())
        RequestHeaders::addQueryItem(query, ProtocolUtils::QuerySaveInSent, ProtocolUtils::TrueValue);
}

bool ComposeMailCommand::prepareRequest(QNetworkRequest &request)
{
    if (!usesWbxml())
        request.setHeader(QNetworkRequest::ContentTypeHeader, QString(ProtocolUtils::ContentTypeMessage));
    return true;
}

bool ComposeMailCommand::encodeBody(EasAccount &account, QByteArray *body)
{
    const QByteArray message = mime(account);
    if (message.isEmpty())
        return false;
    qCDebug(easNetwork()) << "------------------------------";
    qCDebug(easNetwork()) << kind().mimeTitle;
    if (easNetwork().isDebugEnabled())
        qCDebug(easNetwork()).noquote() << ExchangeLog::withoutCredentials(message, &account);
    *body = usesWbxml() ? encoded(message) : message;
    return true;
}

QByteArray ComposeMailCommand::encoded(const QByteArray &mime) const
{
    WbxmlEncoder encoder;
    encoder.appendElement(kind().root, true);
    encoder.appendTextElement(ComposeMail::ClientId, clientId(mMessageId, mime));
    if (mSaveInSent)
        encoder.appendElement(ComposeMail::SaveInSentItems);
    encodeOptions(encoder);
    encoder.appendByteArrayElement(ComposeMail::Mime, QByteArray());
    return encoder.encodedWith(mime);
}

bool ComposeMailCommand::parseReply(QNetworkReply *, const QByteArray &body)
{
    ComposeMailResponseParser parser;
    parser.parse(body);
    if (!parser.ready()) {
        qCWarning(eas()) << "Failed to parse compose mail command response!";
        return false;
    }
    qCInfo(eas()) << "Successfully parsed compose mail command response!";
    qCInfo(eas()) << "Status:" << parser.status();
    setStatus(parser.status());
    return true;
}

bool ComposeMailCommand::post(const QNetworkRequest &request, const QByteArray &body)
{
    return usesWbxml() ? BaseProtocolCommand::post(request, body) : postOnce(request, body);
}

void ComposeMailCommand::logBody(const QByteArray &body) const
{
    if (usesWbxml() || body.isEmpty())
        return BaseProtocolCommand::logBody(body);
    qCDebug(easNetwork()) << "(Mime data)";
}
