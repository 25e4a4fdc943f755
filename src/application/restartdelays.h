// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <array>
#include <cstddef>

/** How long push waits after a stop before a sync tries to start it again: 1, 5, 15 minutes, and half an hour
 * from then on, until the server has answered a Ping. */
class RestartDelays
{
public:
    /** Minutes. */
    int take()
    {
        const int minutes = Minutes[mNext];
        if (mNext + 1 < Minutes.size())
            ++mNext;
        return minutes;
    }
    void reset() { mNext = 0; }

private:
    static constexpr std::array<int, 4> Minutes { 1, 5, 15, 30 };

    std::size_t mNext = 0;
};
