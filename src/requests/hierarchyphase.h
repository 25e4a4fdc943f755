// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/folderhierarchychanges.h"
#include "requests/statustable.h"
#include "requests/syncphase.h"

class FolderSyncCommand;

/**
 * Brings the folder hierarchy up to date with FolderSync: stores, then mapping database, then key.
 *
 * A key that the server does not know clears the account, which then starts over. Run by a SyncRequest as
 * its first phase, and by a FolderSyncRequest as the only one; what differs between the two is their Kind.
 */
class HierarchyPhase : public SyncPhase
{
public:
    enum class Verb { Apply, CountServerError, ClearAccount, Fail, FailInternally };
    using Statuses = StatusTable<Verb>;

    struct Line
    {
        QtMsgType level;
        const char *text;
    };

    struct Kind
    {
        /** Whether a first FolderSync is followed by a second one, with the key that it brought. */
        bool untilCurrent;
        FolderHierarchyChanges::OnFailure onStoreFailure;
        Statuses statuses;
        // Lines of the log; null where nothing is said
        const char *finished;
        const char *commandFailed;
        Line otherStatus;
        const char *mailFailure;
        const char *databaseFailure;
        Line notApplied;
    };
    /** The first phase of a sync: one store that fails does not keep the folders from the others. */
    static const Kind InSync;
    /** A request of its own: the first store that fails ends it. */
    static const Kind Alone;

    HierarchyPhase(SyncRun &run, const Kind &kind);

    State state() const override;
    /** Sends the stored key, once an interrupted clearing of the account is finished. */
    End start();
    End finish(bool success) override;

private:
    End processFolderSyncFinished(const FolderSyncCommand &command);
    bool applyFolderChanges(EasAccount &account, const FolderSyncCommand &command);
    End processFolderSyncServerError();
    End clearAccount();

    const Kind &mKind;
    bool mIsInitial = false;
};
