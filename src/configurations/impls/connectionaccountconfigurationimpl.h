// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "configurations/connectionaccountconfiguration.h"
#include "configurations/impls/recordconfiguration.h"

struct ConnectionSettings
{
    bool acceptAllCertificates = false;
    bool secureConnection = false;
    int portNumber = 0;
    QString serverAddress;
    QString domainName;
    QString userCertificatePath;
};

using ConnectionRecordConfiguration = RecordConfiguration<ConnectionAccountConfiguration, ConnectionSettings>;

/** The connection of the mail service in the account store. */
class ConnectionAccountConfigurationImpl : public ConnectionRecordConfiguration
{
    Q_OBJECT

public:
    ConnectionAccountConfigurationImpl(Accounts::Account *account, EasAccountId accountId, QObject *parent);

    bool acceptAllCertificates() const override;
    bool secureConnection() const override;
    void setSecureConnection(bool secure) override;
    int portNumber() const override;
    void setPortNumber(int port) override;
    QString serverAddress() const override;
    void setServerAddress(const QString &address) override;
    QString domainName() const override;
    QString userCertificatePath() const override;

private:
    void updateConfiguration();
};
