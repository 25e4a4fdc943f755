// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/pushrestart.h"

#include "application/base/logging.h"

PushRestart::PushRestart(EasAccountId accountId, QObject *parent)
    : QObject(parent)
    , mAccountId(accountId)
    , mTimer(Clock::Timer::PushRestart)
{
    connect(&mTimer, &Deadline::expired, this, &PushRestart::due);
}

void PushRestart::schedule(Cause cause, bool isAccountBlocked)
{
    mWaitsForCredentials = isAccountBlocked;
    const bool isAtOnce = cause == Cause::Demand && !mDemandFollowed;
    mDemandFollowed |= isAtOnce;
    const int minutes = isAtOnce ? 0 : mDelays.take();
    qCWarning(eas()) << "push has stopped for account" << mAccountId << ", full sync in" << minutes << "min";
    mTimer.start(minutes * 60 * 1000);
}

void PushRestart::serverAnswered()
{
    mDelays.reset();
    mDemandFollowed = false;
}

void PushRestart::credentialsChanged(bool isAccountBlocked)
{
    if (!mWaitsForCredentials || isAccountBlocked || !mTimer.isActive())
        return;
    mWaitsForCredentials = false;
    mTimer.stop();
    Q_EMIT due();
}
