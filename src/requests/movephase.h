// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/syncphase.h"

class MoveItemsCommand;

/**
 * Tells the server of the mail that was moved on the device, with MoveItems, before a Sync could bring it
 * back. What cannot be moved never holds up the Sync that follows, and is tried again by the next sync.
 */
class MovePhase : public SyncPhase
{
public:
    using SyncPhase::SyncPhase;

    State state() const override { return StateMoveItems; }
    /**
     * Sends the moves that wait; done if there are none, if a collection has to be repeated first, or if no
     * more are to be tried in this sync.
     */
    End start();
    End finish(bool success) override;

private:
    End processMoveItemsFinished(const MoveItemsCommand &command);
    End retryMove();

    /** Of messages that were locked. */
    Attempts mAttempts;
    bool mGivenUp = false;
};
