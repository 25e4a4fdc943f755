// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/signonflow.h"

#include <SignOn/AuthSession>
#include <SignOn/Identity>
#include <SignOn/SessionData>

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
    mSession = mIdentity->createSession(method);
    if (!mSession)
        return NoSession;
    connect(mSession, &SignOn::AuthSession::response, this, &SignOnFlow::onResponse);
    connect(mSession, QOverload<const SignOn::Error &>::of(&SignOn::AuthSession::error), this,
        &SignOnFlow::failed);
    SignOn::SessionData data;
    data.setUiPolicy(SignOn::NoUserInteractionPolicy);
    mSession->process(data, mechanism);
    return Started;
}

void SignOnFlow::onResponse(const SignOn::SessionData &data)
{
    Q_EMIT received(data.Secret());
}
