// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "accounts/base/accountrecord.h"
#include "common/easaccountid.h"

#include <QObject>
#include <QPointer>

class SignOnFlow;

/**
 * The secrets of an account: its password and the passphrase of its client certificate, fetched from the
 * sign-on service.
 *
 * A flow that fails leaves the secret as it was. Owned by the account object; main thread only.
 */
class AccountCredentials : public QObject
{
    Q_OBJECT

public:
    AccountCredentials(const AccountRecord &record, EasAccountId accountId, QObject *parent);
    ~AccountCredentials() override;

    QString password() const { return mPassword.value; }
    QString sslCertificatePassword() const { return mSslCertificatePassword.value; }
    /** Whether no flow runs. */
    bool isReady() const { return mPendingRequests == 0; }

    /** Fetches both secrets anew; does nothing while a flow for the password runs. */
    void retrieve();
    /** The same, but once more after a flow that runs: it may still bring the old password. */
    void retrieveChanged();
    /** Drops the secrets and fetches none any more. */
    void forget();

Q_SIGNALS:
    void passwordRequested();
    /** Comes before the account is ready, as the passphrase does. */
    void passwordReceived();
    void sslCertificatePasswordReceived();
    /** On the steps between no flow and one. */
    void readyChanged();

private:
    /** What the log says of the flows of one secret. */
    struct Texts
    {
        const char *inProgress;
        const char *noIdentity;
        const char *noSession;
        const char *error;
    };
    struct Secret
    {
        const char *identityKey;
        Texts texts;
        void (AccountCredentials::*received)();
        QString value;
        QPointer<SignOnFlow> flow;
        /** A new one was entered while an older one was on its way. */
        bool again = false;
    };

    void retrieveSslCertificate();
    bool startFlow(Secret &secret, quint32 credentialsId);
    void takeFlowSignals(Secret &secret);
    void endFlow(Secret &secret);
    void dismiss(SignOnFlow *flow);
    void addPendingRequest();
    void removePendingRequest();
    QVariant globalValue(const char *key) const;

    AccountRecord mRecord;
    EasAccountId mAccountId;
    Secret mPassword;
    Secret mSslCertificatePassword;
    int mPendingRequests = 0;
    bool mForgotten = false;
};
