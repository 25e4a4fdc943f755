// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/schedulercalls.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>

namespace {

const QString Service = QStringLiteral("com.plover.msyncd");

void call(const QString &method, EasAccountId accountId, const QVariantList &more = {})
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(Service, QStringLiteral("/synchronizer"), Service, method);
    message << static_cast<uint>(accountId) << QStringLiteral("fenneleas-email");
    message.setArguments(message.arguments() + more);
    QDBusConnection::sessionBus().asyncCall(message);
}

} // namespace

void SchedulerCalls::ask(EasAccountId accountId)
{
    call(QStringLiteral("isSyncedExternally"), accountId);
}

void SchedulerCalls::forget(EasAccountId accountId)
{
    call(QStringLiteral("setSyncedExternally"), accountId, { false });
}
