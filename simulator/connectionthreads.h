// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <httplib.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace Simulator {

/**
 * A thread for each connection that is open at one time. A connection that is kept alive or held back keeps
 * its thread, and with a fixed number of them the client after the last would wait for another's end.
 */
class ConnectionThreads : public httplib::TaskQueue
{
public:
    void enqueue(std::function<void()> connection) override;
    /** Waits for all of them to end. */
    void shutdown() override;

private:
    void serve();

    std::mutex mMutex;
    std::condition_variable mChanged;
    std::deque<std::function<void()>> mWaiting;
    std::vector<std::thread> mThreads;
    std::size_t mIdle = 0;
    bool mEnding = false;
};

} // namespace Simulator
