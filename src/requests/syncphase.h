// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/commandrequest.h"
#include "requests/syncrun.h"

/**
 * One step of a sync: it makes its command, knows what the command's statuses mean, applies the reply, and
 * says how the request goes on.
 *
 * A phase belongs to the request that runs it, and may run many times; which one comes next is the request's
 * decision. Main thread only.
 */
class SyncPhase
{
public:
    /** Where a sync stands, by the command that runs. */
    enum State {
        StateIdle,
        StateInitialFolderSync,
        StateFolderSync,
        StateInitialSync,
        StateContinuingSync,
        StateResync,
        StateMoveItems
    };

    /** How a run of a phase has ended, if it has. */
    enum class End {
        Sent, ///< not yet: its command is under way
        Done, ///< the next phase may begin
        More, ///< there is more to do for the collections: moves, keys and items once more
        CollectionsAnew, ///< those in SyncState::collectionsToResync begin again from the initial key
        StartOver, ///< the sync begins again with the hierarchy
        AgainLater, ///< the same step goes out again after the delay, if an attempt is left
        Failed ///< the request ends with its present status
    };

    explicit SyncPhase(SyncRun &run);
    virtual ~SyncPhase();
    Q_DISABLE_COPY(SyncPhase)

    virtual State state() const = 0;
    /** Takes the end of the phase's command, whose status the request has taken over. */
    virtual End finish(bool success) = 0;

protected:
    SyncRun &run() const { return mRun; }
    EasAccountId accountId() const;
    /** Asked for anew each time; may be null. */
    EasAccount *account() const;
    int status() const;

    /** A command of the phase's own kind, in place of the one before. */
    template <typename Command> Command *newCommand() const { return mRun.request.newCommand<Command>(); }
    template <typename Command> const Command *finishedCommand() const
    {
        return qobject_cast<const Command *>(mRun.request.currentCommand());
    }

    /** Notes that the step went well: it gets all its attempts back. */
    void succeed();
    End failWith(int status);
    End failInternally();

private:
    SyncRun &mRun;
};
