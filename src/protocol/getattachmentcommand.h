// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/baseprotocolcommand.h"

#include <QByteArray>

/** Fetches a whole attachment by its name, the way of the protocol versions up to 12.1. */
class GetAttachmentCommand : public BaseProtocolCommand
{
    Q_OBJECT

public:
    GetAttachmentCommand(EasAccountId accountId, const QString &attachmentName, QObject *parent = nullptr);

    QByteArray attachmentData() const { return mAttachmentData; }

protected:
    QString commandName() const override;
    ExchangeTexts texts() const override;
    void configureCommandSpecificQueryValues(QUrlQuery &query) override;
    bool prepareRequest(QNetworkRequest &request) override;
    bool encodeBody(EasAccount &account, QByteArray *body) override;
    bool parseReply(QNetworkReply *reply, const QByteArray &body) override;
    /** The files of a mailbox are larger than what else a server says. */
    qint64 maximumReplySize() const override { return 256 * 1024 * 1024; }
    void handleDownloadProgress(qint64 bytesReceived, qint64 bytesTotal) override;

private:
    QString mAttachmentName;
    QByteArray mAttachmentData;
};
