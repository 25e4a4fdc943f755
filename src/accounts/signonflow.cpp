// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/signonflow.h"

#include "application/base/clock.h"

#include <SignOn/AuthSession>
#include <SignOn/Identity>
#include <SignOn/SessionData>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>
#include <QTimer>

#include <utility>

namespace {
const QString signOnService = QStringLiteral("com.google.code.AccountsSSO.SingleSignOn");
constexpr int Patience = 30000;
} // namespace

SignOnFlow::SignOnFlow(QObject *parent)
    : QObject(parent)
{
}

SignOnFlow::~SignOnFlow()
{
    if (mIdentity && mSession)
        mIdentity->destroySession(mSession);
}

SignOnFlow::StartResult SignOnFlow::start(
    quint32 credentialsId, const QString &method, const QString &mechanism)
{
    mIdentity = SignOn::Identity::existingIdentity(credentialsId, this);
    if (!mIdentity)
        return NoIdentity;
    if (serviceIsAvailable())
        mSession = mIdentity->createSession(method);
    if (!mSession)
        return NoSession;
    connect(mSession, &SignOn::AuthSession::response, this, &SignOnFlow::onResponse);
    connect(mSession, QOverload<const SignOn::Error &>::of(&SignOn::AuthSession::error), this,
        &SignOnFlow::onError);
    const auto *watcher = new QDBusServiceWatcher(
        signOnService, QDBusConnection::sessionBus(), QDBusServiceWatcher::WatchForUnregistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this, &SignOnFlow::onServiceGone);
    QTimer::singleShot(Clock::instance().timerInterval(Patience), this, &SignOnFlow::onTimeout);
    SignOn::SessionData data;
    data.setUiPolicy(SignOn::NoUserInteractionPolicy);
    mSession->process(data, mechanism);
    return Started;
}

bool SignOnFlow::serviceIsAvailable()
{
    QDBusConnectionInterface *bus = QDBusConnection::sessionBus().interface();
    return bus
        && (bus->isServiceRegistered(signOnService).value()
            || bus->activatableServiceNames().value().contains(signOnService));
}

void SignOnFlow::onResponse(const SignOn::SessionData &data)
{
    if (end())
        Q_EMIT received(data.Secret());
}

void SignOnFlow::onError(const SignOn::Error &error)
{
    if (end())
        Q_EMIT failed(error);
}

void SignOnFlow::onServiceGone()
{
    onError(SignOn::Error(
        SignOn::Error::InternalCommunication, QStringLiteral("The sign-on service has gone away")));
}

void SignOnFlow::onTimeout()
{
    onError(SignOn::Error(SignOn::Error::TimedOut, QStringLiteral("The sign-on service does not answer")));
}

bool SignOnFlow::end()
{
    return !std::exchange(mEnded, true);
}
