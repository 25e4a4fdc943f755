// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/deadline.h"
#include "application/restartdelays.h"
#include "common/easaccountid.h"

#include <QDateTime>
#include <QObject>

/**
 * When push that has stopped begins again: after delays that grow until the server has answered a Ping, but
 * at once where the reason for the stop has gone, or will have gone with the sync that push begins with.
 *
 * Owned by the AlwaysOnManager, main thread only.
 */
class PushRestart : public QObject
{
    Q_OBJECT

public:
    enum class Cause {
        Failure,
        /** The server demands provisioning, which a Ping does not meet and a sync does. Once; if the next
         * Ping meets another demand, the sync has not helped. */
        Demand
    };

    explicit PushRestart(EasAccountId accountId, QObject *parent = nullptr);

    void schedule(Cause cause, bool isAccountBlocked);
    void stop() { mTimer.stop(); }
    bool isActive() const { return mTimer.isActive(); }
    /** Invalid while it does not run. */
    QDateTime dueAt() const { return mTimer.due(); }

    /** A Ping was answered as it should be: delays are short again. */
    void serverAnswered();
    /** Credentials of an account that is not blocked are fetched anew whenever a server refuses them. */
    void credentialsChanged(bool isAccountBlocked);

Q_SIGNALS:
    void due();

private:
    const EasAccountId mAccountId;
    Deadline mTimer;
    RestartDelays mDelays;
    bool mDemandFollowed = false;
    /** Push has stopped because the server refuses the credentials. */
    bool mWaitsForCredentials = false;
};
