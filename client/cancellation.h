// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/daemonrequest.h"

#include <QTimer>

/**
 * Cancels a request of another client and waits for its end. On the stack of a command; runs the
 * application's event loop.
 */
class Cancellation
{
public:
    Cancellation(EasAccountId accountId, qulonglong requestId);

    /** How long the daemon has to end the request; it says nothing of one that does not exist. */
    void setPatience(int milliseconds) { mPatience.setInterval(milliseconds); }
    /** The exit status; an error was printed if it is no success. */
    int exec();

private:
    DaemonRequest mRequest;
    qulonglong mRequestId;
    QTimer mPatience;
};
