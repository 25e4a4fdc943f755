// SPDX-License-Identifier: LGPL-2.1-or-later
#include "provision/authenticationdaemon.h"

#include "application/base/logging.h"

#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>

namespace {

constexpr int Patience = 1000;
const QString connectionName = QStringLiteral("authd_p2p_client");

QString address()
{
    return qEnvironmentVariable(
        "FENNEL_AUTHD_ADDRESS", QStringLiteral("unix:path=/var/run/authd/authd.socket"));
}

} // namespace

AuthenticationDaemon::AuthenticationDaemon()
    : mConnection(QDBusConnection::connectToPeer(address(), connectionName))
{
    if (!mConnection.isConnected())
        qCInfo(eas()) << "No authentication daemon:" << mConnection.lastError().message();
}

AuthenticationDaemon::~AuthenticationDaemon()
{
    QDBusConnection::disconnectFromPeer(connectionName);
}

QVariant AuthenticationDaemon::getMethodOption(const QString &method, const QString &option)
{
    if (mIsSilent || !mConnection.isConnected())
        return {};
    // No QDBusInterface: it would ask the daemon to describe itself, and wait for that without a limit.
    QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("org.halcyonos.AuthService"),
        QStringLiteral("/org/halcyonos/AuthService/Settings"),
        QStringLiteral("org.halcyonos.AuthService.Settings"), QStringLiteral("GetMethodOption"));
    call << method << option;
    const QDBusReply<QDBusVariant> reply = mConnection.call(call, QDBus::Block, Patience);
    if (reply.isValid())
        return reply.value().variant();
    mIsSilent = reply.error().type() == QDBusError::NoReply || reply.error().type() == QDBusError::Timeout;
    qCWarning(eas()) << "The authentication daemon does not tell" << option << ":" << reply.error().message();
    return {};
}
