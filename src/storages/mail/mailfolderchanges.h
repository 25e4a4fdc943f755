// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/mail/mailstorecontext.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <qmailid.h>

class EasFolderItem;

/**
 * Folders that the user created or removed on the device.
 *
 * The store reports the engine's own work in the same signals, and some builds of it report a change twice,
 * so the ids of the engine's own folders are kept and passed over whenever they come.
 */
class MailFolderChanges
{
public:
    explicit MailFolderChanges(const MailStoreContext &context);

    /** The engine itself has added this folder, or is about to remove these. */
    void setOwnAddition(const QMailFolderId &id);
    void setOwnRemoval(const QMailFolderIdList &ids);

    /** What the store's signals tell; true if there is a new change of the user's. */
    bool foldersAdded(const QMailFolderIdList &ids);
    bool foldersRemoved(const QMailFolderIdList &ids);

    QList<EasFolderItem> addedFolders() const;
    void purgeAddedFolders();
    /** Server ids. */
    QStringList deletedFolders() const;
    void purgeDeletedFolders();

private:
    EasFolderItem folderItemFromFolderId(const QMailFolderId &id) const;

    const MailStoreContext &mContext;
    QMailFolderIdList mAdded;
    QStringList mRemovedServerIds;
    QSet<QMailFolderId> mOwnAdditions;
    QSet<QMailFolderId> mOwnRemovals;
};
