// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/baseprotocolcommand.h"

#include <QStringList>

/**
 * Asks the server which protocol versions and commands it offers. Needs no protocol version. Ends after 20
 * seconds without an answer, with status 10004. A reply without the two headers is a success as well.
 */
class OptionsCommand : public BaseProtocolCommand
{
    Q_OBJECT

public:
    explicit OptionsCommand(EasAccountId accountId, QObject *parent = nullptr);

    void start() override;

    /** The header as it came. */
    QString versions() const;
    QStringList supportedCommands() const;

protected:
    void handleFinished(QNetworkReply *reply) override;
    void handleError(QNetworkReply::NetworkError networkError) override;

private Q_SLOTS:
    void onTimeoutTimer();

private:
    bool setUpRequest(QNetworkRequest &request) const;

    QString mVersions;
    QStringList mSupportedCommands;
    QTimer mTimeoutTimer;
};
