// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/accountcredentials.h"

#include "accounts/base/identitykeys.h"
#include "accounts/signonflow.h"
#include "application/base/logging.h"

#include <SignOn/Error>

#include <utility>

AccountCredentials::AccountCredentials(const AccountRecord &record, EasAccountId accountId, QObject *parent)
    : QObject(parent)
    , mRecord(record)
    , mAccountId(accountId)
    , mPassword { IdentityKeys::Password,
        { "credentials retrieving is in progress for account",
            "can't find SignOn::Identity for credentials id=", "can't create an AuthSession",
            "Received a SignOn error: type=" },
        &AccountCredentials::passwordReceived, {}, {} }
    , mSslCertificatePassword { IdentityKeys::CertificatePassphrase,
        { "ssl credentials retrieving is in progress for account",
            "can't find SignOn::Identity for ssl credentials id=",
            "can't create an AuthSession to retrieve SSL certificate credentials",
            "SSL credentials flow received a SignOn error: type=" },
        &AccountCredentials::sslCertificatePasswordReceived, {}, {} }
{
}

AccountCredentials::~AccountCredentials() = default;

void AccountCredentials::retrieve()
{
    if (mForgotten)
        return;
    if (!mPassword.flow)
        Q_EMIT passwordRequested();
    if (startFlow(mPassword, globalValue(mPassword.identityKey).toUInt()))
        retrieveSslCertificate();
}

void AccountCredentials::retrieveChanged()
{
    mPassword.again = !mPassword.flow.isNull();
    retrieve();
}

void AccountCredentials::retrieveSslCertificate()
{
    const quint32 credentialsId = globalValue(mSslCertificatePassword.identityKey).toUInt();
    if (credentialsId == 0) {
        qCInfo(eas()) << "ssl credentials empty, assuming no certificate required for account" << mAccountId;
        return;
    }
    startFlow(mSslCertificatePassword, credentialsId);
}

bool AccountCredentials::startFlow(Secret &secret, quint32 credentialsId)
{
    if (secret.flow) {
        qCInfo(eas()) << secret.texts.inProgress << mAccountId;
        return false;
    }
    secret.flow = new SignOnFlow(this);
    takeFlowSignals(secret);
    addPendingRequest();
    switch (secret.flow->start(
        credentialsId, globalValue("auth/method").toString(), globalValue("auth/mechanism").toString())) {
    case SignOnFlow::Started:
        return true;
    case SignOnFlow::NoIdentity:
        qCCritical(eas()) << secret.texts.noIdentity << credentialsId;
        break;
    case SignOnFlow::NoSession:
        qCCritical(eas()) << secret.texts.noSession << mAccountId;
        break;
    }
    endFlow(secret);
    return false;
}

void AccountCredentials::takeFlowSignals(Secret &secret)
{
    connect(secret.flow, &SignOnFlow::received, this, [this, &secret](const QString &value) {
        secret.value = value;
        Q_EMIT(this->*secret.received)();
        endFlow(secret);
    });
    connect(secret.flow, &SignOnFlow::failed, this, [this, &secret](const SignOn::Error &error) {
        qCWarning(eas()).nospace() << secret.texts.error << error.type() << ", message:" << error.message();
        endFlow(secret);
    });
}

void AccountCredentials::endFlow(Secret &secret)
{
    QPointer<SignOnFlow> ended;
    ended.swap(secret.flow);
    // The account does not become ready in between.
    if (std::exchange(secret.again, false))
        retrieve();
    if (ended)
        dismiss(ended);
}

void AccountCredentials::dismiss(SignOnFlow *flow)
{
    flow->disconnect(this);
    flow->deleteLater();
    removePendingRequest();
}

void AccountCredentials::forget()
{
    mForgotten = true;
    for (Secret *const secret : { &mPassword, &mSslCertificatePassword }) {
        secret->value.clear();
        secret->again = false;
        endFlow(*secret);
    }
}

void AccountCredentials::addPendingRequest()
{
    if (mPendingRequests++ == 0)
        Q_EMIT readyChanged();
}

void AccountCredentials::removePendingRequest()
{
    if (--mPendingRequests == 0)
        Q_EMIT readyChanged();
}

QVariant AccountCredentials::globalValue(const char *key) const
{
    return mRecord.value(RecordScope::global(), QLatin1String(key));
}
