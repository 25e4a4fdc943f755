// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/lookup.h"
#include "easitems/easfolderitem.h"
#include "protocol/elements/synccollection.h"
#include "storages/uploadbudget.h"

class AirSyncOptions;
class CalendarStorage;
class EasAccount;
struct SyncState;

/**
 * Turns a folder into the collection that a Sync asks for: its key, its options and the local changes that
 * wait for the server. A value on the stack of a request's slot; account and state must outlive it. Main
 * thread only.
 */
class SyncCollectionBuilder
{
public:
    SyncCollectionBuilder(EasAccount &account, SyncState &state);

    /**
     * A folder without a real key gives an initial collection: no options, no local changes. Unread if the
     * mapping could not tell the local changes: a collection without them would pass for all that waits.
     */
    Lookup<SyncCollection> setupSyncCollection(const EasFolderItem &folder);

    /** Whether no more local changes fit into the Sync; the next folders wait for the one after it. */
    bool isFull() const { return mBudget.isSpent(); }

private:
    void setupOptions(SyncCollection &collection, const EasFolderItem &folder);
    void setupMailOptions(AirSyncOptions &options, const EasFolderItem &folder);
    void setupCalendarOptions(SyncCollection &collection, AirSyncOptions &options);
    void setFilter(AirSyncOptions &options, int syncPastTime) const;
    bool appendLocalChanges(SyncCollection &collection, const EasFolderItem &folder);
    bool collectLocalChanges(SyncCollection &collection, const EasFolderItem &folder);
    template <typename Item> void keepWhatFits(QList<Item> &items);
    void keepWhatFits(QStringList &deletedServerIds);
    bool appendMailChanges(SyncCollection &collection, const EasFolderItem &folder);
    bool appendContactChanges(SyncCollection &collection, const EasFolderItem &folder);
    bool appendCalendarChanges(SyncCollection &collection, const EasFolderItem &folder);
    bool appendCalendarChanges(
        SyncCollection &collection, CalendarStorage &storage, const QString &localFolder);
    void deferNewExceptions(const SyncCollection &collection, const QList<EasCalendarItem> &added);
    static QList<QPair<QString, QString>> takeDeletedOccurrences(QList<EasCalendarItem> &changed);

    EasAccount &mAccount;
    SyncState &mState;
    /** For all collections of the Sync. */
    UploadBudget mBudget;
};
