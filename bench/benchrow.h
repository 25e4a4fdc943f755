// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <chrono>
#include <cstdio>

/** Rows of a table of measurements. */
namespace BenchRow {

inline void print(const char *name, double value, const char *unit)
{
    std::printf("  %-44s %12.1f %s\n", name, value, unit);
}

/** Seconds that one call takes: the shortest of several rounds, each of a tenth of a second or more. */
template <class Work> double seconds(const Work &work)
{
    using Clock = std::chrono::steady_clock;
    constexpr int rounds = 5;
    constexpr double roundSeconds = 0.1;
    double best = 0;
    for (int round = 0; round < rounds; ++round) {
        const auto start = Clock::now();
        int calls = 0;
        double elapsed = 0;
        do {
            work();
            ++calls;
            elapsed = std::chrono::duration<double>(Clock::now() - start).count();
        } while (elapsed < roundSeconds);
        const double each = elapsed / calls;
        if (round == 0 || each < best)
            best = each;
    }
    return best;
}

} // namespace BenchRow
