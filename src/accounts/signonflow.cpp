// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/signonflow.h"

#include "accounts/signonpatience.h"

#include <SignOn/AuthSession>
#include <SignOn/Identity>
#include <SignOn/SessionData>

#include <utility>

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
    if (SignOnPatience::serviceIsAvailable())
        mSession = mIdentity->createSession(method);
    if (!mSession)
        return NoSession;
    connect(mSession, &SignOn::AuthSession::response, this, &SignOnFlow::onResponse);
    connect(mSession, QOverload<const SignOn::Error &>::of(&SignOn::AuthSession::error), this,
        &SignOnFlow::onError);
    const auto *const patience = new SignOnPatience(this);
    connect(patience, &SignOnPatience::exhausted, this, &SignOnFlow::onError);
    SignOn::SessionData data;
    data.setUiPolicy(SignOn::NoUserInteractionPolicy);
    mSession->process(data, mechanism);
    return Started;
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

bool SignOnFlow::end()
{
    return !std::exchange(mEnded, true);
}
