// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QMutex>
#include <QString>
#include <QWaitCondition>

#include <chrono>
#include <functional>
#include <map>

namespace Simulator {

/**
 * The commands that wait for news, each in the thread of its connection. Thread-safe.
 *
 * A wait is over with its time, when all are expired, when its device begins another one, when its client has
 * gone, and when the server stops.
 */
class Waits
{
public:
    /** One command that waits. */
    struct Wait
    {
        QString device;
        int number = 0; ///< of the device's wait
        quint64 news = 0; ///< what the command knows of
        quint64 expiries = 0; ///< what had happened before it came
        std::chrono::steady_clock::time_point begin;
        std::function<bool()> isClientGone;
    };

    /** For a request that has come and may have to wait: what expires from here on counts for it. */
    Wait prepare(const std::function<bool()> &isClientGone) const;
    /** It does wait; another wait of the device is over. */
    void begin(Wait &wait, const QString &device);
    /** Before the command looks at what there is. */
    void look(Wait &wait) const;
    /** Until there is more than at the last look; false if the wait is over after so many seconds. */
    bool waitForNews(const Wait &wait, int seconds) const;

    void tellNews();
    void expireAll();
    void stop();
    void resume();

private:
    bool isOver(const Wait &wait) const;

    mutable QMutex mMutex;
    mutable QWaitCondition mChanged;
    quint64 mNews = 0;
    quint64 mExpiries = 0;
    bool mIsStopped = false;
    int mLastNumber = 0;
    std::map<QString, int> mLatest;
};

} // namespace Simulator
