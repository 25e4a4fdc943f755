// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/lookup.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <qmailid.h>

#include <optional>

struct MailStoreContext;
class EasFolderItem;
class MailFolderChanges;
class QMailAccount;
class QMailFolder;

/**
 * Mirrors the server's tree of mail folders in the mail store.
 *
 * Items of other kinds of folders are passed over and count as done. A result that is applied again, after a
 * crash or a failure of the mapping database, finds the folders of the first time and takes them over.
 */
class MailFolderAdapter
{
public:
    MailFolderAdapter(const MailStoreContext &context, MailFolderChanges &changes);

    /** Applies a result; on failure what was added is taken out again. */
    bool updateFolders(
        QList<EasFolderItem> &added, const QList<EasFolderItem> &changed, const QStringList &deleted);

    /** Lets an account of an older kind have folders. */
    void allowFolderCreation();

    /** Lets user-created folders of older installations be deleted, renamed and nested. */
    void updateUserCreatedFoldersStatus();

    /** The folders that the mail account's policy says; unread if the mail account or a row cannot be read.
     */
    Lookup<QList<EasFolderItem>> foldersToSynchronize() const;

    /** Removes the messages of a folder, not the folder; those stay that wait for their move into it.
     * False if the store refuses; a folder that the store does not have is clean. */
    bool cleanUpFolder(const EasFolderItem &item);

private:
    bool updateFolderItems(const QList<EasFolderItem> &items, const QMap<QString, QString> &serverToLocal);
    bool deleteFolderItems(const QStringList &serverIds, const QMap<QString, QString> &serverToLocal);
    /** As the store has it now; none, after a log line, if it cannot be read. */
    std::optional<QMailAccount> mailAccount() const;
    void setChangesToFolder(
        QMailFolder *folder, const EasFolderItem &item, const QMap<QString, QString> &serverToLocal) const;
    void setParentToFolder(
        QMailFolder *folder, const EasFolderItem &item, const QMap<QString, QString> &serverToLocal) const;

    const MailStoreContext &mContext;
    MailFolderChanges &mChanges;
};
