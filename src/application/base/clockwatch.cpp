// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/base/clockwatch.h"

#include "application/base/logging.h"

#include <QCoreApplication>
#include <QPointer>
#include <QSocketNotifier>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <limits>

#include <sys/timerfd.h>
#include <unistd.h>

ClockWatch &ClockWatch::instance()
{
    static QPointer<ClockWatch> watch;
    if (!watch)
        watch = new ClockWatch(QCoreApplication::instance());
    return *watch;
}

ClockWatch::ClockWatch(QObject *parent)
    : QObject(parent)
    , mDescriptor(timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC))
{
    if (mDescriptor < 0) {
        qCWarning(eas()) << "jumps of the clock are not noticed:" << std::strerror(errno);
        return;
    }
    mNotifier = new QSocketNotifier(mDescriptor, QSocketNotifier::Read, this);
    connect(mNotifier, &QSocketNotifier::activated, this, &ClockWatch::onReadable);
    arm();
}

ClockWatch::~ClockWatch()
{
    delete mNotifier;
    if (mDescriptor >= 0)
        close(mDescriptor);
}

void ClockWatch::arm() const
{
    // A time that never comes: what counts is that the kernel calls the timer off when the clock jumps.
    itimerspec never {};
    never.it_value.tv_sec = std::numeric_limits<time_t>::max();
    if (timerfd_settime(mDescriptor, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &never, nullptr) != 0)
        qCWarning(eas()) << "jumps of the clock are not noticed:" << std::strerror(errno);
}

void ClockWatch::onReadable()
{
    std::uint64_t expirations = 0;
    if (read(mDescriptor, &expirations, sizeof(expirations)) < 0 && errno == EAGAIN)
        return;
    arm();
    Q_EMIT jumped();
}
