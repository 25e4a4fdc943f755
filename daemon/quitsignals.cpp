// SPDX-License-Identifier: LGPL-2.1-or-later
#include "quitsignals.h"

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

QuitSignals::QuitSignals()
{
    sigset_t signalSet;
    sigemptyset(&signalSet);
    sigaddset(&signalSet, SIGTERM);
    sigaddset(&signalSet, SIGINT);
    if (sigprocmask(SIG_BLOCK, &signalSet, nullptr) != 0)
        return;
    mDescriptor = signalfd(-1, &signalSet, SFD_CLOEXEC | SFD_NONBLOCK);
    if (mDescriptor < 0) {
        // Better to die of them than not to hear them.
        sigprocmask(SIG_UNBLOCK, &signalSet, nullptr);
        return;
    }
    mNotifier = std::make_unique<QSocketNotifier>(mDescriptor, QSocketNotifier::Read);
    connect(mNotifier.get(), &QSocketNotifier::activated, this, &QuitSignals::onReadable);
}

QuitSignals::~QuitSignals()
{
    mNotifier.reset();
    if (mDescriptor >= 0)
        close(mDescriptor);
}

void QuitSignals::onReadable()
{
    signalfd_siginfo information;
    if (read(mDescriptor, &information, sizeof information) == sizeof information)
        Q_EMIT quitRequested();
}
