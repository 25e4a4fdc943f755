// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/waiting.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

bool Waiting::until(const std::function<bool()> &condition, int milliseconds)
{
    const QDeadlineTimer deadline(milliseconds);
    // Wakes the loop at the end if nothing else does.
    QTimer alarm;
    alarm.start(milliseconds);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}
