// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <cstdio>
#include <ctime>

/** Rows of a table of measurements. */
namespace BenchRow {

inline void print(const char *name, double value, const char *unit)
{
    std::printf("  %-44s %12.1f %s\n", name, value, unit);
}

/** Processor time of this process so far, which other processes of a busy machine do not stretch. */
inline double processorSeconds()
{
    return double(std::clock()) / CLOCKS_PER_SEC;
}

/**
 * Seconds of processor time that one call takes: the shortest of several rounds, each of a tenth of a second
 * or more.
 */
template <class Work> double seconds(const Work &work)
{
    constexpr int rounds = 5;
    constexpr double roundSeconds = 0.1;
    double best = 0;
    for (int round = 0; round < rounds; ++round) {
        const double start = processorSeconds();
        int calls = 0;
        double elapsed = 0;
        do {
            work();
            ++calls;
            elapsed = processorSeconds() - start;
        } while (elapsed < roundSeconds);
        const double each = elapsed / calls;
        if (round == 0 || each < best)
            best = each;
    }
    return best;
}

} // namespace BenchRow
