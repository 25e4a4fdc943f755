// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/daemonproxy.h"

#include "client/exitstatus.h"
#include "client/output.h"
#include "common/exchangeactivesync.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusError>

namespace {

/** How long the daemon may take to start and to answer. */
constexpr int CallTimeoutMs = 30000;

} // namespace

std::unique_ptr<EasDBusInterfaceProxy> DaemonProxy::create()
{
    auto proxy = std::make_unique<EasDBusInterfaceProxy>(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME,
        ExchangeActiveSync::EAS_DBUS_PATH_NAME, QDBusConnection::sessionBus());
    proxy->setTimeout(CallTimeoutMs);
    return proxy;
}

bool DaemonProxy::isDaemonRunning()
{
    return QDBusConnection::sessionBus().interface()->isServiceRegistered(
        ExchangeActiveSync::EAS_DBUS_SERVICE_NAME);
}

QString DaemonProxy::whyUnreachable(const QDBusError &error)
{
    if (error.type() == QDBusError::UnknownMethod || error.type() == QDBusError::UnknownInterface)
        return QStringLiteral("the daemon that runs is older than this program and does not know the call; "
                              "end it with fennel-easctl quit, then call again");
    return QStringLiteral("the daemon cannot be reached: %1").arg(error.message());
}

int DaemonProxy::unreachable(const QDBusError &error)
{
    Output::error(whyUnreachable(error));
    return ExitUnavailable;
}
