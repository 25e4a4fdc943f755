// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"
#include "easitems/easfolderitem.h"

#include <QList>
#include <QMap>
#include <QSet>
#include <QStringList>

class EasAccount;
class FolderSyncCommand;

/**
 * The folder changes of one FolderSync reply on their way into the stores and the mapping database.
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

    FolderHierarchyChanges(EasAccount &account, const FolderSyncCommand &command);

    /** False, logged, if the known folders could not be read or a store is missing that has to be there. */
    bool isReady() const;

    /** Hands the changes to the mail, calendar and contact store in this order. */
    bool updateStores(OnFailure onFailure, const char *mailFailure);

    /** Marks the folders that now have a counterpart in a store. */
    void markSaved();

    /** Writes the folder rows, and removes what belonged to deleted folders. */
    bool updateDatabase();

private:
    void recogniseRepeatedFolders(const QMap<QString, QString> &known);
    void bindUpdatedFolders(const QMap<QString, QString> &known);
    void noteLookup();
    QStringList deletedRows() const;

    EasAccount &mAccount;
    EasAccountId mAccountId;
    QList<EasFolderItem> mAdded;
    QList<EasFolderItem> mUpdated;
    QStringList mDeleted;
    bool mLookupFailed = false;
    /** Added folders that have a row, but none in the store yet: a run before failed in between. */
    QSet<QString> mRowsWithoutFolder;
    bool mMailStored = false;
    bool mMailFailed = false;
};
