// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/signonpatience.h"

#include "application/base/clock.h"

#include <SignOn/Error>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>
#include <QTimer>

namespace {
const QString signOnService = QStringLiteral("com.google.code.AccountsSSO.SingleSignOn");
constexpr int Patience = 30000;
} // namespace

SignOnPatience::SignOnPatience(QObject *parent)
    : QObject(parent)
{
    const auto *watcher = new QDBusServiceWatcher(
        signOnService, QDBusConnection::sessionBus(), QDBusServiceWatcher::WatchForUnregistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this, &SignOnPatience::onServiceGone);
    QTimer::singleShot(Clock::instance().timerInterval(Patience, Clock::Timer::SignOnAnswer), this,
        &SignOnPatience::onTimeout);
}

bool SignOnPatience::serviceIsAvailable()
{
    QDBusConnectionInterface *bus = QDBusConnection::sessionBus().interface();
    return bus
        && (bus->isServiceRegistered(signOnService).value()
            || bus->activatableServiceNames().value().contains(signOnService));
}

void SignOnPatience::onServiceGone()
{
    Q_EMIT exhausted(SignOn::Error(
        SignOn::Error::InternalCommunication, QStringLiteral("The sign-on service has gone away")));
}

void SignOnPatience::onTimeout()
{
    Q_EMIT exhausted(
        SignOn::Error(SignOn::Error::TimedOut, QStringLiteral("The sign-on service does not answer")));
}
