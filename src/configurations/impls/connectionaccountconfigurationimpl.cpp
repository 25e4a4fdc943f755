// SPDX-License-Identifier: LGPL-2.1-or-later
#include "configurations/impls/connectionaccountconfigurationimpl.h"

namespace {

const QString serviceType = QStringLiteral("e-mail");
constexpr char secureConnectionKey[] = "connection/secure_connection";
constexpr char portNumberKey[] = "connection/port";
constexpr char serverAddressKey[] = "connection/server_address";

const QVector<SettingRow<ConnectionSettings>> &rows()
{
    static const QVector<SettingRow<ConnectionSettings>> table {
        { "connection/accept_all_certificates", &ConnectionSettings::acceptAllCertificates },
        { secureConnectionKey, &ConnectionSettings::secureConnection },
        { portNumberKey, &ConnectionSettings::portNumber },
        { serverAddressKey, &ConnectionSettings::serverAddress },
        { "connection/domain", &ConnectionSettings::domainName },
        { "connection/ssl_certificate_path", &ConnectionSettings::userCertificatePath },
    };
    return table;
}

} // namespace

ConnectionAccountConfigurationImpl::ConnectionAccountConfigurationImpl(
    Accounts::Account *account, EasAccountId accountId, QObject *parent)
    : ConnectionRecordConfiguration(account, accountId, RecordScope::firstOfType(serviceType), rows(), parent)
{
    updateConfiguration();
    follow([this] { updateConfiguration(); });
}

bool ConnectionAccountConfigurationImpl::acceptAllCertificates() const
{
    return values().acceptAllCertificates;
}

bool ConnectionAccountConfigurationImpl::secureConnection() const
{
    return values().secureConnection;
}

void ConnectionAccountConfigurationImpl::setSecureConnection(bool secure)
{
    writeSetting(secureConnectionKey, secure, Q_FUNC_INFO);
    updateConfiguration();
}

int ConnectionAccountConfigurationImpl::portNumber() const
{
    return values().portNumber;
}

void ConnectionAccountConfigurationImpl::setPortNumber(int port)
{
    writeSetting(portNumberKey, port, Q_FUNC_INFO);
    updateConfiguration();
}

QString ConnectionAccountConfigurationImpl::serverAddress() const
{
    return values().serverAddress;
}

void ConnectionAccountConfigurationImpl::setServerAddress(const QString &address)
{
    writeSetting(serverAddressKey, address, Q_FUNC_INFO);
    updateConfiguration();
}

QString ConnectionAccountConfigurationImpl::domainName() const
{
    return values().domainName;
}

QString ConnectionAccountConfigurationImpl::userCertificatePath() const
{
    return values().userCertificatePath;
}

void ConnectionAccountConfigurationImpl::updateConfiguration()
{
    if (refresh())
        Q_EMIT connectionConfigurationChanged(accountId());
}
