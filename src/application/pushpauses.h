// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/growingpause.h"

#include <QDateTime>

/**
 * How long push waits before its next Ping: a second, or longer and longer where the server fails, or where
 * it reports changes of which the sync then finds none. A plain value that is told what happens.
 */
class PushPauses
{
public:
    /** Of the next pause. */
    int seconds() const;
    /** The part of it that is owed to a server that fails. */
    int timeoutFactor() const { return mFailures.seconds(); }

    void pingStarted();
    void serverFailed() { mFailures.grow(); }
    void serverRecovered() { mFailures.reset(); }
    /** The Ping has ended with changes. */
    void changesReported();

    void syncStarted() { mHasReceivedChanges = false; }
    void changesReceived() { mHasReceivedChanges = true; }
    void syncSucceeded();

private:
    GrowingPause mFailures;
    /** Of reports without changes. */
    GrowingPause mEmptyReports;
    /** Seconds that the last sync leaves before the next Ping. */
    int mAfterSync = 1;
    /** The server has reported changes, and no sync has looked for them yet. */
    bool mHasReportedChanges = false;
    bool mHasReceivedChanges = false;
    QDateTime mPingStarted;
};
