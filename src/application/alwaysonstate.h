// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDateTime>
#include <QVariantMap>

#include <optional>

/** How the push of an account stands, as clients of the bus get it. A plain value of any thread. */
struct AlwaysOnState
{
    enum class Step {
        Off, ///< push is not wanted
        Ping, ///< the server is asked to tell of changes
        Sync, ///< a sync runs, or is about to
        Pause, ///< before the next Ping
        Network, ///< waits for the network
        Stopped ///< something failed; a full sync begins again
    };

    bool isEnabled = false;
    /** Seconds that the next Ping asks the server to wait. */
    int heartbeat = 300;
    /** How many folders the last Ping watched. */
    int folders = 0;
    /** The status of the last Ping, and when it came. */
    std::optional<int> lastAnswer;
    QDateTime lastAnswerAt;
    Step nextStep = Step::Off;
    /** Invalid unless a timer runs. */
    QDateTime nextStepAt;

    /** Keys and types as the description of the bus interface has them. */
    QVariantMap toMap() const;
};
