// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/lookup.h"
#include "common/easaccountid.h"

#include <QMap>
#include <QString>
#include <QStringList>

class DatabaseStatement;
class PreparedStatements;

/** One of the three tables of items, and what is logged when one of its statements fails. */
struct ItemTable
{
    const char *name;
    const char *cantQuery;
    const char *cantQueryFolder;
    const char *cantQueryByLocalId;
    const char *cantDelete;
};

/**
 * What the rows of messages, events and contacts have in common: each binds a server identifier in a folder
 * to a local identifier.
 *
 * Belongs to EasDatabase, whose connection outlives it. Main thread only.
 */
class ItemRows
{
public:
    using Map = QMap<QString, QString>;

    ItemRows(PreparedStatements &statements, const ItemTable &table);

    bool remove(EasAccountId accountId, const QStringList &serverIds) const;
    bool clearFolder(EasAccountId accountId, const QString &collectionId) const;

    Lookup<QStringList> localIds(EasAccountId accountId, const QString &collectionId) const;
    Lookup<Map> serverToLocalIds(EasAccountId accountId) const;
    /** Of these items, by all server identifiers that each of them has. */
    Lookup<Map> serverToLocalIds(EasAccountId accountId, const QStringList &serverIds) const;
    Lookup<Map> localToServerIds(EasAccountId accountId) const;
    Lookup<Map> localToServerIds(EasAccountId accountId, const QStringList &localIds) const;
    Lookup<Map> collectionIds(EasAccountId accountId) const;
    Lookup<Map> collectionIds(EasAccountId accountId, const QStringList &serverIds) const;
    Lookup<QString> collectionId(EasAccountId accountId, const QString &serverId) const;

protected:
    PreparedStatements &statements() const { return mStatements; }
    const ItemTable &table() const { return mTable; }
    /** A statement whose "%1" is the table and "%2" the account. */
    DatabaseStatement statement(const QString &sql, EasAccountId accountId) const;

    /**
     * Two columns of the rows that the names tell, in as few statements as possible: "%3" in the statement
     * stands for "(name, name)" and may be there more than once.
     */
    Lookup<Map> named(const QString &sql, EasAccountId accountId, const QStringList &names, int keyColumn,
        const char *failure) const;

private:
    PreparedStatements &mStatements;
    const ItemTable &mTable;
};
