// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/interruptguard.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {

// A handler reaches nothing but what is global.
std::array<int, 2> pipeEnds { -1, -1 };

void onSignal(int /* signal */)
{
    const int before = errno;
    const char byte = 0;
    // A full pipe is readable already.
    [[maybe_unused]] const ssize_t written = ::write(pipeEnds[1], &byte, 1);
    errno = before;
}

} // namespace

InterruptGuard::InterruptGuard()
{
    Q_ASSERT(pipeEnds[0] < 0);
    if (pipe2(pipeEnds.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return; // without a way to be told the signals end the process as ever
    struct sigaction action = {};
    action.sa_handler = &onSignal;
    action.sa_flags = SA_RESTART | int(SA_RESETHAND);
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < Signals.size(); ++i)
        sigaction(Signals.at(i), &action, &mBefore.at(i));
}

InterruptGuard::~InterruptGuard()
{
    if (pipeEnds[0] < 0)
        return;
    for (std::size_t i = 0; i < Signals.size(); ++i)
        sigaction(Signals.at(i), &mBefore.at(i), nullptr);
    for (int &end : pipeEnds) {
        ::close(end);
        end = -1;
    }
}

int InterruptGuard::descriptor() const
{
    return pipeEnds[0];
}
