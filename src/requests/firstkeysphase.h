// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/collectionsphase.h"

/**
 * Gets the first key of collections that have none, or whose key the server has lost, with a Sync that
 * carries nothing else.
 *
 * A collection that gets none does not hold up the others: it is set aside, and tried again after them. To an
 * empty reply each collection is asked for once more, alone; some servers answer so for ever about a folder
 * that only holds other folders, and such a one is left out.
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
    /** A reply without any collection. */
    End takeSilence(const SyncCommand &command);
    void setAside(const SyncCommand &command, const QList<SyncCollection> &keyed);

    bool mIsResync = false;
};
