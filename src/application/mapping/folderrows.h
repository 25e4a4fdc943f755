// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/lookup.h"
#include "common/easaccountid.h"
#include "easitems/easfolderitem.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

class PreparedStatements;

/**
 * Rows of folders: the collections of an account. A folder that has no row is the default item.
 *
 * Belongs to EasDatabase, whose connection outlives it. Main thread only.
 */
class FolderRows
{
public:
    using Map = QMap<QString, QString>;

    explicit FolderRows(PreparedStatements &statements);

    /** The local identifier stands in the default item as well. */
    Lookup<EasFolderItem> byLocalId(EasAccountId accountId, const QString &localId) const;
    Lookup<EasFolderItem> byServerId(EasAccountId accountId, const QString &serverId) const;
    Lookup<QList<EasFolderItem>> mailFolders(EasAccountId accountId) const;
    Lookup<QList<EasFolderItem>> calendarFolders(EasAccountId accountId) const;
    Lookup<QList<EasFolderItem>> byType(EasAccountId accountId, EasFolderItem::FolderType type) const;
    Lookup<EasFolderItem::FolderType> typeOf(EasAccountId accountId, const QString &serverId) const;
    /** The row of the hierarchy is among these, with empty identifiers. */
    Lookup<Map> serverToLocalIds(EasAccountId accountId) const;
    Lookup<Map> localToServerIds(EasAccountId accountId) const;
    /** The parent of each folder, by server identifiers. */
    Lookup<Map> parentIds(EasAccountId accountId) const;

    bool add(EasAccountId accountId, const QList<EasFolderItem> &items) const;
    /** Writes what has changed, and in any case what the store made of the folder. */
    bool update(EasAccountId accountId, const QList<EasFolderItem> &items) const;
    bool remove(EasAccountId accountId, const QStringList &serverIds) const;
    bool setSavedInStorage(EasAccountId accountId, const QString &localId, bool saved) const;

private:
    bool updateOne(EasAccountId accountId, const EasFolderItem &item) const;

    PreparedStatements &mStatements;
};
