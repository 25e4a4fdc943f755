// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/elements/synccollection.h"
#include "requests/statustable.h"
#include "requests/syncphase.h"

class SyncCommand;

/**
 * What the two phases share that run a Sync: the command, and the statuses that concern a reply as a whole.
 * What their log says about a status is in the table of each.
 */
class CollectionsPhase : public SyncPhase
{
public:
    enum class Verb {
        TakeReply,
        InvalidSyncKey,
        ProtocolError,
        ServerError,
        FoldersChanged,
        TooManyCollections,
        AgainLater
    };
    using Statuses = StatusTable<Verb>;

    struct Texts
    {
        const char *finished;
        const char *commandFailed; ///< null: nothing is said
        const char *otherStatus;
    };

    CollectionsPhase(SyncRun &run, const Statuses &statuses, const Texts &texts);

    End finish(bool success) override;

protected:
    /** Takes a reply that is a success as a whole. */
    virtual End takeReply(const SyncCommand &command) = 0;

    void send(const QList<SyncCollection> &collections);

private:
    End processSyncCommandInvalidSyncKeyError(const SyncCommand &command);
    End processSyncCommandServerErrorError(const SyncCommand &command);
    End processSyncCommandProtocolErrorError();
    void addToResync(const SyncCommand &command);

    Statuses mStatuses;
    Texts mTexts;
};
