// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/base/protocolutils.h"

#include <QtGlobal>

#include <limits>

/**
 * Counts the repetitions of a step, so that no answer of a server makes it run for ever, and says how long
 * to wait before the next one: 5 s, and three times as long with each delay that was taken.
 *
 * Count and delay start anew independently: a success of a step gives the repetitions back, any answer that
 * shows the server well brings the delay back to its first length.
 */
class Attempts
{
public:
    explicit constexpr Attempts(int most = ProtocolUtils::CommandMaxRetriesCount)
        : mMost(most)
    {
    }

    /** Counts one repetition; false if none was left. */
    bool consume()
    {
        if (spent())
            return false;
        ++mUsed;
        return true;
    }
    bool spent() const { return mUsed >= mMost; }
    int used() const { return mUsed; }
    void reset() { mUsed = 0; }
    /** Leaves no repetition. */
    void spend() { mUsed = mMost; }

    /** Milliseconds to wait before the next repetition; the one after that waits three times as long. */
    int takeDelay()
    {
        const int delay = mDelay;
        mDelay = mDelay > Longest / DelayGrowth ? Longest : mDelay * DelayGrowth;
        return delay;
    }
    void resetDelay() { mDelay = ProtocolUtils::CommandsRetryTimeout; }

private:
    static constexpr int DelayGrowth = 3;
    static constexpr int Longest = std::numeric_limits<int>::max();

    int mMost;
    int mUsed = 0;
    int mDelay = ProtocolUtils::CommandsRetryTimeout;
};
