// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/connectionthreads.h"

#include <utility>

namespace Simulator {

void ConnectionThreads::enqueue(std::function<void()> connection)
{
    const std::lock_guard<std::mutex> lock(mMutex);
    mWaiting.push_back(std::move(connection));
    if (mIdle < mWaiting.size())
        mThreads.emplace_back([this] { serve(); });
    else
        mChanged.notify_one();
}

void ConnectionThreads::serve()
{
    std::unique_lock<std::mutex> lock(mMutex);
    for (;;) {
        ++mIdle;
        mChanged.wait(lock, [this] { return mEnding || !mWaiting.empty(); });
        --mIdle;
        if (mWaiting.empty())
            return;
        const std::function<void()> connection = std::move(mWaiting.front());
        mWaiting.pop_front();
        lock.unlock();
        connection();
        lock.lock();
    }
}

void ConnectionThreads::shutdown()
{
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mEnding = true;
    }
    mChanged.notify_all();
    for (std::thread &thread : mThreads)
        thread.join();
}

} // namespace Simulator
