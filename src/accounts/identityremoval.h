// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>

namespace SignOn {
class Error;
class Identity;
} // namespace SignOn

/**
 * Removes one identity, a stored secret, from the sign-on service.
 *
 * Runs once and ends with exactly one signal, from the event loop, also when the service is absent, goes away
 * or does not answer for thirty seconds. It asks for the identity first and notes among the WaitingIdentities
 * that it was shown; its owner takes it out again, once nothing names an identity that has gone. The owner
 * deletes it after the signal with deleteLater(). Main thread only.
 */
class IdentityRemoval : public QObject
{
    Q_OBJECT

public:
    IdentityRemoval(quint32 credentialsId, QObject *parent);
    ~IdentityRemoval() override;

    quint32 credentialsId() const { return mCredentialsId; }
    void start();

Q_SIGNALS:
    /** False, after a log line, if the identity may still be there. */
    void finished(bool removed);

private:
    void ask();
    void onShown();
    void onError(const SignOn::Error &error);
    /** Whether an error says that there is no such identity any more. */
    bool isGone(const SignOn::Error &error) const;
    void end(bool removed);

    quint32 mCredentialsId;
    SignOn::Identity *mIdentity = nullptr;
    bool mShown = false;
    bool mHasAskedAgain = false;
    bool mEnded = false;
};
