// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/collectionsphase.h"

class EasAccount;

/**
 * Exchanges the items of collections that have a key: changes of the device go up, those of the server come
 * down, until neither side has more.
 *
 * A reply goes into the stores, then into the mapping database, and last its sync keys are written, so that
 * a crash repeats a batch and loses nothing.
 */
class ItemsPhase : public CollectionsPhase
{
public:
    explicit ItemsPhase(SyncRun &run);

    State state() const override { return StateContinuingSync; }
    void start(const QList<SyncCollection> &collections);

protected:
    End takeReply(const SyncCommand &command) override;

private:
    End startAccountAnew();
    bool finishUnansweredCollections(const SyncCommand &command);
    bool areRepeated(const QStringList &collectionIds) const;
    End decideNext(bool moreAvailable, bool progressed);
    End repeatIdleSync();
    End startDeferredExceptions();

    /** Replies in a row that announced more and brought nothing. */
    Attempts mIdleReplies;
};
