// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/waits.h"

#include <QMutexLocker>

#include <algorithm>

namespace Simulator {
namespace {

/** A client that goes says nothing; that is looked for. */
const std::chrono::milliseconds clientCheckInterval(250);

} // namespace

Waits::Wait Waits::prepare(const std::function<bool()> &isClientGone) const
{
    const QMutexLocker lock(&mMutex);
    Wait wait;
    wait.expiries = mExpiries;
    wait.begin = std::chrono::steady_clock::now();
    wait.isClientGone = isClientGone;
    return wait;
}

void Waits::begin(Wait &wait, const QString &device)
{
    const QMutexLocker lock(&mMutex);
    wait.device = device;
    wait.number = ++mLastNumber;
    mLatest[device] = wait.number;
    mChanged.wakeAll();
}

void Waits::look(Wait &wait) const
{
    const QMutexLocker lock(&mMutex);
    wait.news = mNews;
}

bool Waits::isOver(const Wait &wait) const
{
    return mIsStopped || mExpiries != wait.expiries || mLatest.at(wait.device) != wait.number;
}

bool Waits::waitForNews(const Wait &wait, int seconds) const
{
    const auto end = wait.begin + std::chrono::seconds(seconds);
    QMutexLocker lock(&mMutex);
    while (!isOver(wait)) {
        if (mNews != wait.news)
            return true;
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left.count() <= 0)
            return false;
        mChanged.wait(&mMutex, static_cast<unsigned long>(std::min(left, clientCheckInterval).count()));
        lock.unlock();
        const bool isGone = wait.isClientGone && wait.isClientGone();
        lock.relock();
        if (isGone)
            return false;
    }
    return false;
}

void Waits::tellNews()
{
    const QMutexLocker lock(&mMutex);
    ++mNews;
    mChanged.wakeAll();
}

void Waits::expireAll()
{
    const QMutexLocker lock(&mMutex);
    ++mExpiries;
    mChanged.wakeAll();
}

void Waits::stop()
{
    const QMutexLocker lock(&mMutex);
    mIsStopped = true;
    mChanged.wakeAll();
}

void Waits::resume()
{
    const QMutexLocker lock(&mMutex);
    mIsStopped = false;
}

} // namespace Simulator
