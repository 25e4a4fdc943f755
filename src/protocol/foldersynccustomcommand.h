// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/exchangeactivesync.h"
#include "protocol/baseprotocolcommand.h"

#include <QStringList>

/**
 * The last resort of the version negotiation: a FolderSync with key "0" that is sent as a given version, for
 * an account that has none, and read only for its headers. Its body does not matter: a server that refuses
 * the command and sets the headers has served the purpose, and one that demands provisioning with HTTP 449
 * knows at least the version that the command was sent as.
 */
class FolderSyncCustomCommand : public BaseProtocolCommand
{
    Q_OBJECT

public:
    FolderSyncCustomCommand(
        EasAccountId accountId, ExchangeActiveSync::ProtocolVersion version, QObject *parent = nullptr);

    /** The header as it came. */
    QString versions() const;
    QStringList supportedCommands() const;

protected:
    QString commandName() const override;
    ExchangeTexts texts() const override;
    bool prepareRequest(QNetworkRequest &request) override;
    bool encodeBody(EasAccount &account, QByteArray *body) override;
    void handleError(QNetworkReply::NetworkError networkError) override;
    bool parseReply(QNetworkReply *reply, const QByteArray &body) override;

private:
    void readHeaders(const QNetworkReply &reply);

    ExchangeActiveSync::ProtocolVersion mVersion;
    QString mVersions;
    QStringList mSupportedCommands;
};
