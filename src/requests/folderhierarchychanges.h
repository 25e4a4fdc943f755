// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"
#include "easitems/easfolderitem.h"

#include <QList>
#include <QMap>
#include <QSet>
#include <QStringList>

class EasAccount;

/** Folders as the server has them now, and the server identifiers of those that it has no longer. */
struct FolderChanges
{
    QList<EasFolderItem> added;
    QList<EasFolderItem> updated;
    QStringList deleted;
};

/**
 * The folder changes of one reply on their way into the stores and the mapping database.
 *
 * The order of the steps is what makes a crash harmless: stores, then database, then (by the request) the
 * hierarchy key. A reply that is repeated because the key was never written finds its folders already there,
 * so folders that the database knows are treated as updates. A value on the stack of a request's slot; the
 * account must outlive it. Main thread only.
 */
class FolderHierarchyChanges
{
public:
    enum class OnFailure { Stop, GoOn };
    enum class MailStore { Optional, Needed };

    /** What the log says when a store refuses a folder of its kind. */
    struct StoreFailures
    {
        const char *calendar;
        const char *contacts;
        const char *mail;
    };

    FolderHierarchyChanges(EasAccount &account, const FolderChanges &changes);

    /** False, logged, if the known folders could not be read or a store is missing that has to be there. */
    bool isReady(MailStore mailStore = MailStore::Optional) const;

    /** Hands the changes to the mail, calendar and contact store in this order. */
    bool updateStores(OnFailure onFailure, const char *mailFailure);

    /** Hands each store the changes of its own kind of folders, and leaves a store alone that has none. */
    bool updateStoresOfEachKind(const StoreFailures &failures);

    /** Marks the folders that now have a counterpart in a store. */
    void markSaved();

    /** Writes the folder rows, and removes what belonged to deleted folders. */
    bool updateDatabase();

private:
    void recogniseRepeatedFolders(const QMap<QString, QString> &known);
    bool bindUpdatedFolders(const QMap<QString, QString> &known);
    QStringList deletedRows() const;
    template <typename Store>
    bool updateStoreOf(bool (EasFolderItem::*isOwn)() const, Store *store, const char *failure);

    EasAccount &mAccount;
    EasAccountId mAccountId;
    QList<EasFolderItem> mAdded;
    QList<EasFolderItem> mUpdated;
    QStringList mDeleted;
    bool mFoldersRead = false;
    /** Added folders that have a row, but none in the store yet: a run before failed in between. */
    QSet<QString> mRowsWithoutFolder;
    bool mMailStored = false;
    // Stores that have refused the changes.
    bool mMailFailed = false;
    bool mCalendarFailed = false;
    bool mContactsFailed = false;
};
