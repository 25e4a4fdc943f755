// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/scheduler.h"

#include "client/exitstatus.h"
#include "client/output.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>

namespace {

const auto Service = QStringLiteral("com.plover.msyncd");

/** The profile that the engine asks the scheduler for. */
const auto Profile = QStringLiteral("fenneleas-email");

/** How long the scheduler may take to start and to answer. */
constexpr int CallTimeoutMs = 30000;

int explain(const QDBusError &error)
{
    switch (error.type()) {
    case QDBusError::ServiceUnknown:
        Output::error(QStringLiteral("there is no sync scheduler on this device (%1), so push cannot be "
                                     "switched; is fennel-sync-scheduler installed?")
                          .arg(Service));
        return ExitUnavailable;
    case QDBusError::UnknownMethod:
    case QDBusError::UnknownInterface:
        Output::error(QStringLiteral("the sync scheduler of this device does not let programs switch push; "
                                     "look for it in the device's settings"));
        return ExitFailure;
    default:
        Output::error(QStringLiteral("the sync scheduler cannot be reached: %1").arg(error.message()));
        return ExitUnavailable;
    }
}

} // namespace

int Scheduler::setPush(EasAccountId account, bool on)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        Service, QStringLiteral("/synchronizer"), Service, QStringLiteral("setSyncedExternally"));
    call << uint(account) << Profile << on;
    QDBusPendingReply<> reply = QDBusConnection::sessionBus().asyncCall(call, CallTimeoutMs);
    reply.waitForFinished();
    return reply.isError() ? explain(reply.error()) : int(ExitSuccess);
}
