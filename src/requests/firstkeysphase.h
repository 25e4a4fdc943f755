// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/collectionsphase.h"

/**
 * Gets the first key of collections that have none, or whose key the server has lost, with a Sync that
 * carries nothing else.
 */
class FirstKeysPhase : public CollectionsPhase
{
public:
    explicit FirstKeysPhase(SyncRun &run);

    State state() const override { return mIsResync ? StateResync : StateInitialSync; }
    void start(const QList<SyncCollection> &collections);
    /** Sends the collections that must begin anew, after what the device has of them was forgotten. */
    End startCollectionsResync();

protected:
    End takeReply(const SyncCommand &command) override;

private:
    bool mIsResync = false;
};
