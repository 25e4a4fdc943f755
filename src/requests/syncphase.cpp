// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/syncphase.h"

SyncPhase::SyncPhase(SyncRun &run)
    : mRun(run)
{
}

SyncPhase::~SyncPhase() = default;

EasAccountId SyncPhase::accountId() const
{
    return mRun.request.accountId();
}

EasAccount *SyncPhase::account() const
{
    return mRun.request.account();
}

int SyncPhase::status() const
{
    return mRun.outcome.status();
}

void SyncPhase::succeed()
{
    mRun.outcome.setStatus(EasRequestStatus::RequestStatusSuccess);
    mRun.attempts.reset();
    mRun.attempts.resetDelay();
}

SyncPhase::End SyncPhase::failWith(int status)
{
    mRun.outcome.setStatus(status);
    return End::Failed;
}

SyncPhase::End SyncPhase::failInternally()
{
    return failWith(EasRequestStatus::RequestStatusInternalError);
}
