// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QtGlobal>

#include <array>
#include <csignal>

/**
 * Catches what users end programs with (SIGINT, SIGTERM and SIGHUP) while it lives: the first of a kind makes
 * descriptor() readable instead of ending the process, the second ends it as ever. Handlers belong to the
 * process, so threads that libraries have started do not matter. On the stack of a command, one at a time.
 */
class InterruptGuard
{
public:
    InterruptGuard();
    ~InterruptGuard();
    Q_DISABLE_COPY(InterruptGuard)

    /** Stays readable once a signal has come. */
    int descriptor() const;

private:
    static constexpr std::array<int, 3> Signals { SIGINT, SIGTERM, SIGHUP };

    std::array<struct sigaction, Signals.size()> mBefore {};
};
