// SPDX-License-Identifier: LGPL-2.1-or-later
// The sign-on flows of an account and what depends on its identity.
#include "accounts/easaccountimpl.h"

#include "accounts/signonflow.h"
#include "application/base/clock.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"

#include <Accounts/Account>
#include <SignOn/Identity>

#include <QDir>
#include <QStandardPaths>
#include <QTimer>

namespace {

constexpr char credentialsIdKey[] = "CredentialsId";
constexpr char sslCredentialsIdKey[] = "SslCertCredentialsId";
constexpr char remoteWipeRequestedKey[] = "remote_wipe_requested";
constexpr int remoteWipeDelay = 500;

} // namespace

void EasAccountImpl::onAuthenticationFailedError()
{
    retrieveCredentials();
}

void EasAccountImpl::onPasswordChanged()
{
    // A flow that already runs may still bring the old password.
    mRetrieveAgain = !mSignOnFlow.isNull();
    retrieveCredentials();
}

void EasAccountImpl::retrieveCredentials()
{
    if (mSignOnFlow) {
        qCInfo(eas()) << "credentials retrieving is in progress for account" << id();
        return;
    }
    const quint32 credentialsId = globalValue(credentialsIdKey).toUInt();
    mSignOnFlow = new SignOnFlow(this);
    connect(mSignOnFlow, &SignOnFlow::received, this, &EasAccountImpl::onSignOnResponse);
    connect(mSignOnFlow, &SignOnFlow::failed, this, &EasAccountImpl::onSignOnError);
    addPendingRequest();
    switch (mSignOnFlow->start(credentialsId, getSsoMethod(), getSsoMechanism())) {
    case SignOnFlow::Started:
        retrieveSslCertificateCredentials();
        return;
    case SignOnFlow::NoIdentity:
        qCCritical(eas()) << "can't find SignOn::Identity for credentials id=" << credentialsId;
        break;
    case SignOnFlow::NoSession:
        qCCritical(eas()) << "can't create an AuthSession" << id();
        break;
    }
    endFlow(mSignOnFlow);
}

void EasAccountImpl::retrieveSslCertificateCredentials()
{
    if (mSslSignOnFlow) {
        qCInfo(eas()) << "ssl credentials retrieving is in progress for account" << id();
        return;
    }
    const quint32 credentialsId = globalValue(sslCredentialsIdKey).toUInt();
    if (credentialsId == 0) {
        qCInfo(eas()) << "ssl credentials empty, assuming no certificate required for account" << id();
        return;
    }
    mSslSignOnFlow = new SignOnFlow(this);
    connect(mSslSignOnFlow, &SignOnFlow::received, this, &EasAccountImpl::onSslCredSignOnResponse);
    connect(mSslSignOnFlow, &SignOnFlow::failed, this, &EasAccountImpl::onSslCredSignOnError);
    addPendingRequest();
    switch (mSslSignOnFlow->start(credentialsId, getSsoMethod(), getSsoMechanism())) {
    case SignOnFlow::Started:
        return;
    case SignOnFlow::NoIdentity:
        qCCritical(eas()) << "can't find SignOn::Identity for ssl credentials id=" << credentialsId;
        break;
    case SignOnFlow::NoSession:
        qCCritical(eas()) << "can't create an AuthSession to retrieve SSL certificate credentials" << id();
        break;
    }
    endFlow(mSslSignOnFlow);
}

void EasAccountImpl::onSignOnResponse(const QString &secret)
{
    mPassword = secret;
    // The cookie is there before anyone is told that the account is ready.
    refreshAuthenticationCache();
    clearSignOnIdentity();
    Q_EMIT credentialsChanged(id());
}

void EasAccountImpl::onSignOnError(const SignOn::Error &error)
{
    qCWarning(eas()).nospace() << "Received a SignOn error: type=" << error.type()
                               << ", message:" << error.message();
    clearSignOnIdentity();
}

void EasAccountImpl::onSslCredSignOnResponse(const QString &secret)
{
    mSslCertificatePassword = secret;
    endFlow(mSslSignOnFlow);
    Q_EMIT sslCertificateCredentialsChanged(id());
}

void EasAccountImpl::onSslCredSignOnError(const SignOn::Error &error)
{
    qCWarning(eas()).nospace() << "SSL credentials flow received a SignOn error: type=" << error.type()
                               << ", message:" << error.message();
    endFlow(mSslSignOnFlow);
}

void EasAccountImpl::clearSignOnIdentity()
{
    const bool again = mRetrieveAgain;
    mRetrieveAgain = false;
    QPointer<SignOnFlow> ended;
    ended.swap(mSignOnFlow);
    if (again)
        retrieveCredentials();
    endFlow(ended);
}

void EasAccountImpl::endFlow(QPointer<SignOnFlow> &flow)
{
    if (!flow)
        return;
    flow->disconnect(this);
    flow->deleteLater();
    flow.clear();
    removePendingRequest();
}

void EasAccountImpl::addPendingRequest()
{
    if (mPendingRequests++ == 0)
        Q_EMIT readyChanged();
}

void EasAccountImpl::removePendingRequest()
{
    if (--mPendingRequests == 0)
        Q_EMIT readyChanged();
}

QString EasAccountImpl::getSsoMethod() const
{
    return globalValue("auth/method").toString();
}

QString EasAccountImpl::getSsoMechanism() const
{
    return globalValue("auth/mechanism").toString();
}

void EasAccountImpl::remoteWipeRequested()
{
    setGlobalValue(remoteWipeRequestedKey, true);
    startRemoteWipeTimeout();
}

bool EasAccountImpl::isRemoteWipeRequested() const
{
    return globalValue(remoteWipeRequestedKey).toBool();
}

void EasAccountImpl::startRemoteWipeTimeout()
{
    if (!mRemoteWipeTimer) {
        mRemoteWipeTimer = new QTimer(this);
        mRemoteWipeTimer->setSingleShot(true);
        mRemoteWipeTimer->setInterval(Clock::instance().timerInterval(remoteWipeDelay));
        connect(mRemoteWipeTimer, &QTimer::timeout, this, &EasAccountImpl::onRemoteWipeTimeout);
    }
    mRemoteWipeTimer->start();
}

void EasAccountImpl::onRemoteWipeTimeout()
{
    qCWarning(eas()) << "trying to wipe the account" << id();
    if (mRemoteWipeTimer)
        mRemoteWipeTimer->deleteLater();
    mRemoteWipeTimer.clear();
    SignOn::Identity *identity =
        SignOn::Identity::existingIdentity(globalValue(credentialsIdKey).toUInt(), this);
    if (!identity) {
        qCWarning(eas()) << "identity is not found for account" << id();
        wipe();
        return;
    }
    connect(identity, &SignOn::Identity::removed, this, &EasAccountImpl::onIdentityRemoved);
    connect(identity, QOverload<const SignOn::Error &>::of(&SignOn::Identity::error), this,
        &EasAccountImpl::onIdentityRemoveError);
    connect(identity, &SignOn::Identity::removed, identity, &QObject::deleteLater);
    identity->remove();
}

void EasAccountImpl::onIdentityRemoved()
{
    qCInfo(eas()) << "identity removed in account" << id();
    mRetrieveAgain = false;
    clearSignOnIdentity();
    wipe();
}

void EasAccountImpl::onIdentityRemoveError(const SignOn::Error &error)
{
    qCWarning(eas()).nospace() << "Received an Identity deletion error: type=" << error.type()
                               << ", message:" << error.message();
}

void EasAccountImpl::wipe()
{
    const QString attachments = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
        + QStringLiteral("/mail_attachments/%1").arg(id());
    qCInfo(eas()) << "removing directory:" << attachments;
    if (!QDir(attachments).removeRecursively())
        qCWarning(eas()) << "failed to remove attachments directory for account" << id();
    if (!EasDatabase::instance()->clearAccount(id()))
        qCWarning(eas()) << "failed to clear data for account" << id();
    Accounts::Account *account = mRecord.account();
    if (!account)
        return;
    account->remove();
    if (!account->syncAndBlock())
        qCWarning(eas()) << "failed to remove account" << id();
}
