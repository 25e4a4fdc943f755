// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <algorithm>

/** Pauses of 1, 3, 9 ... seconds, half an hour at most, so that no answer of a server makes a hot loop. */
class GrowingPause
{
public:
    static constexpr int Longest = 30 * 60;

    /** Seconds of the next pause; the one after it is longer. */
    int take()
    {
        const int seconds = mSeconds;
        grow();
        return seconds;
    }
    int seconds() const { return mSeconds; }
    void grow() { mSeconds = std::min(mSeconds * Growth, Longest); }
    void reset() { mSeconds = 1; }

private:
    static constexpr int Growth = 3;

    int mSeconds = 1;
};
