// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/pushpauses.h"

#include "application/base/clock.h"

#include <algorithm>

namespace {
/** Seconds after which a Ping that reports changes has waited long enough to be believed. */
constexpr int LongEnough = 30;
} // namespace

int PushPauses::seconds() const
{
    return std::max(mFailures.seconds(), mAfterSync);
}

void PushPauses::pingStarted()
{
    mPingStarted = Clock::instance().currentDateTimeUtc();
}

void PushPauses::changesReported()
{
    // One that has waited for long has not been answered in a loop.
    if (mPingStarted.secsTo(Clock::instance().currentDateTimeUtc()) >= LongEnough)
        mEmptyReports.reset();
    mHasReportedChanges = true;
}

void PushPauses::syncSucceeded()
{
    if (mHasReceivedChanges)
        mEmptyReports.reset();
    mAfterSync = mEmptyReports.seconds();
    if (mHasReportedChanges && !mHasReceivedChanges)
        mEmptyReports.grow();
    mHasReportedChanges = false;
}
