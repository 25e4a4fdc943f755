// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/itemrows.h"

#include "application/base/logging.h"
#include "application/mapping/databasereading.h"

#include <functional>

namespace {

// Older libraries take 999 values in a statement, and one of these statements binds each name twice.
constexpr int MaxNamesOfStatement = 450;

/** "?,?,?" */
QString places(int count)
{
    return QStringLiteral("?,").repeated(count).chopped(1);
}

/** Puts a long list of names to as few statements as possible; false if one of them could not be read. */
bool inParts(const QStringList &names, const std::function<bool(const QStringList &part)> &read)
{
    for (int first = 0; first < names.size(); first += MaxNamesOfStatement) {
        if (!read(names.mid(first, MaxNamesOfStatement)))
            return false;
    }
    return true;
}

void bindAll(DatabaseStatement &statement, const QStringList &names)
{
    for (const QString &name : names)
        statement.bind(name);
}

} // namespace

ItemRows::ItemRows(const QSqlDatabase &database, const ItemTable &table)
    : mDatabase(database)
    , mTable(table)
{
}

DatabaseStatement ItemRows::statement(const QString &sql, EasAccountId accountId) const
{
    return DatabaseStatement(mDatabase, sql.arg(QLatin1String(mTable.name)).arg(accountId));
}

bool ItemRows::remove(EasAccountId accountId, const QStringList &serverIds) const
{
    if (serverIds.isEmpty())
        return true;
    DatabaseStatement removal =
        statement(QStringLiteral("DELETE FROM %1 WHERE server_id=? AND account_id=%2"), accountId);
    removal.bindColumn(QVariant(serverIds).toList());
    return removal.runBatch() || removal.fail(mTable.cantDelete, accountId);
}

bool ItemRows::clearFolder(EasAccountId accountId, const QString &collectionId) const
{
    DatabaseStatement removal =
        statement(QStringLiteral("DELETE FROM %1 WHERE collection_id=? AND account_id=%2"), accountId);
    if (removal.bind(collectionId).run())
        return true;
    qCCritical(eas()) << "can't delete items for account" << accountId << "in folder" << collectionId
                      << ", table" << mTable.name << ". Error:" << removal.errorText();
    return false;
}

Lookup<QStringList> ItemRows::localIds(EasAccountId accountId, const QString &collectionId) const
{
    DatabaseStatement select = statement(
        QStringLiteral("SELECT local_id FROM %1 WHERE account_id=%2 AND collection_id=?"), accountId);
    return DatabaseReading::texts(select.bind(collectionId), mTable.cantQueryFolder);
}

Lookup<ItemRows::Map> ItemRows::serverToLocalIds(EasAccountId accountId) const
{
    DatabaseStatement select =
        statement(QStringLiteral("SELECT server_id, local_id FROM %1 WHERE account_id=%2"), accountId);
    return DatabaseReading::map(select, 0, mTable.cantQuery);
}

Lookup<ItemRows::Map> ItemRows::serverToLocalIds(EasAccountId accountId, const QStringList &serverIds) const
{
    Map ids;
    const bool complete = inParts(serverIds, [&](const QStringList &part) {
        const QString named = places(part.size());
        DatabaseStatement select = statement(
            QStringLiteral("SELECT server_id, local_id FROM %1 WHERE account_id=%2 AND (server_id IN (")
                + named
                + QStringLiteral(") OR local_id IN (SELECT local_id FROM %1 WHERE account_id=%2"
                                 " AND local_id<>'' AND server_id IN (")
                + named + QStringLiteral(")))"),
            accountId);
        bindAll(select, part);
        bindAll(select, part);
        return DatabaseReading::addToMap(select, 0, mTable.cantQuery, &ids);
    });
    return complete ? Lookup<Map>(ids) : Lookup<Map>::unread();
}

Lookup<ItemRows::Map> ItemRows::localToServerIds(EasAccountId accountId) const
{
    DatabaseStatement select =
        statement(QStringLiteral("SELECT server_id, local_id FROM %1 WHERE account_id=%2"), accountId);
    return DatabaseReading::map(select, 1, mTable.cantQueryByLocalId);
}

Lookup<ItemRows::Map> ItemRows::localToServerIds(EasAccountId accountId, const QStringList &localIds) const
{
    Map ids;
    const bool complete = inParts(localIds, [&](const QStringList &part) {
        DatabaseStatement select = statement(
            QStringLiteral("SELECT server_id, local_id FROM %1 WHERE account_id=%2 AND local_id IN (")
                + places(part.size()) + QLatin1Char(')'),
            accountId);
        bindAll(select, part);
        return DatabaseReading::addToMap(select, 1, mTable.cantQueryByLocalId, &ids);
    });
    return complete ? Lookup<Map>(ids) : Lookup<Map>::unread();
}

Lookup<ItemRows::Map> ItemRows::collectionIds(EasAccountId accountId) const
{
    DatabaseStatement select =
        statement(QStringLiteral("SELECT server_id, collection_id FROM %1 WHERE account_id=%2"), accountId);
    return DatabaseReading::map(select, 0, mTable.cantQuery);
}

Lookup<ItemRows::Map> ItemRows::collectionIds(EasAccountId accountId, const QStringList &serverIds) const
{
    Map collections;
    const bool complete = inParts(serverIds, [&](const QStringList &part) {
        DatabaseStatement select = statement(
            QStringLiteral("SELECT server_id, collection_id FROM %1 WHERE account_id=%2 AND server_id IN (")
                + places(part.size()) + QLatin1Char(')'),
            accountId);
        bindAll(select, part);
        return DatabaseReading::addToMap(select, 0, mTable.cantQuery, &collections);
    });
    return complete ? Lookup<Map>(collections) : Lookup<Map>::unread();
}

Lookup<QString> ItemRows::collectionId(EasAccountId accountId, const QString &serverId) const
{
    DatabaseStatement select = statement(
        QStringLiteral("SELECT collection_id FROM %1 WHERE account_id=%2 AND server_id=?"), accountId);
    return DatabaseReading::text(select.bind(serverId), mTable.cantQuery);
}
