// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/getattachmentcommand.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "protocol/base/protocolutils.h"

#include <QDebug>
#include <QNetworkRequest>
#include <QUrl>
#include <QUrlQuery>

GetAttachmentCommand::GetAttachmentCommand(
    EasAccountId accountId, const QString &attachmentName, QObject *parent)
    : BaseProtocolCommand(accountId, parent)
    , mAttachmentName(attachmentName)
{
}

QString GetAttachmentCommand::commandName() const
{
    return ProtocolUtils::CommandGetAttachment;
}

BaseProtocolCommand::ExchangeTexts GetAttachmentCommand::texts() const
{
    return { "Sending get attachment command via POST:", "Received get attachment command reply:",
        "Get Attachment command failed!" };
}

void GetAttachmentCommand::configureCommandSpecificQueryValues(QUrlQuery &query)
{
    // The query is a form: what stands for something else in a query must not reach the server as it is.
    query.addQueryItem(
        ProtocolUtils::QueryAttachmentName, QString::fromLatin1(QUrl::toPercentEncoding(mAttachmentName)));
}

bool GetAttachmentCommand::prepareRequest(QNetworkRequest &request)
{
    request.setHeader(QNetworkRequest::ContentTypeHeader, QString(ProtocolUtils::ContentTypeMessage));
    return true;
}

bool GetAttachmentCommand::encodeBody(EasAccount &account, QByteArray *)
{
    if (account.protocolVersion() > ExchangeActiveSync::ProtocolVersion121) {
        qCWarning(eas()) << "This command is not supported on > 12.1 protocols";
        return false;
    }
    return true;
}

bool GetAttachmentCommand::parseReply(QNetworkReply *, const QByteArray &body)
{
    mAttachmentData = body;
    qCDebug(eas()) << "Attachment data size: " << mAttachmentData.size();
    return true;
}

void GetAttachmentCommand::handleDownloadProgress(qint64 bytesReceived, qint64 bytesTotal)
{
    qCDebug(eas()) << "Download attachment:" << bytesReceived << bytesTotal;
}
