// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/itemrows.h"

#include "application/base/logging.h"
#include "application/mapping/databasereading.h"

namespace {

// Older libraries take 999 values in a statement, and one of these statements binds each name twice.
constexpr int MaxNamesOfStatement = 450;

/** "(?,?,?)" */
QString places(int count)
{
    return QLatin1Char('(') + QStringLiteral("?,").repeated(count).chopped(1) + QLatin1Char(')');
}

} // namespace

ItemRows::ItemRows(PreparedStatements &statements, const ItemTable &table)
    : mStatements(statements)
    , mTable(table)
{
}

DatabaseStatement ItemRows::statement(const QString &sql, EasAccountId accountId) const
{
    return DatabaseStatement(mStatements, sql.arg(QLatin1String(mTable.name)).arg(accountId));
}

Lookup<ItemRows::Map> ItemRows::named(const QString &sql, EasAccountId accountId, const QStringList &names,
    int keyColumn, const char *failure) const
{
    Map map;
    for (int first = 0; first < names.size(); first += MaxNamesOfStatement) {
        const QStringList part = names.mid(first, MaxNamesOfStatement);
        DatabaseStatement select =
            statement(QString(sql).replace(QLatin1String("%3"), places(part.size())), accountId);
        for (int times = sql.count(QLatin1String("%3")); times > 0; --times) {
            for (const QString &name : part)
                select.bind(name);
        }
        if (!DatabaseReading::addToMap(select, keyColumn, failure, &map))
            return Lookup<Map>::unread();
    }
    return map;
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
    return named(
        QStringLiteral("SELECT server_id, local_id FROM %1 WHERE account_id=%2 AND (server_id IN %3 OR "
                       "local_id IN (SELECT local_id FROM %1 WHERE account_id=%2 AND local_id<>'' AND "
                       "server_id IN %3))"),
        accountId, serverIds, 0, mTable.cantQuery);
}

Lookup<ItemRows::Map> ItemRows::localToServerIds(EasAccountId accountId) const
{
    DatabaseStatement select =
        statement(QStringLiteral("SELECT server_id, local_id FROM %1 WHERE account_id=%2"), accountId);
    return DatabaseReading::map(select, 1, mTable.cantQueryByLocalId);
}

Lookup<ItemRows::Map> ItemRows::localToServerIds(EasAccountId accountId, const QStringList &localIds) const
{
    return named(QStringLiteral("SELECT server_id, local_id FROM %1 WHERE account_id=%2 AND local_id IN %3"),
        accountId, localIds, 1, mTable.cantQueryByLocalId);
}

Lookup<ItemRows::Map> ItemRows::collectionIds(EasAccountId accountId) const
{
    DatabaseStatement select =
        statement(QStringLiteral("SELECT server_id, collection_id FROM %1 WHERE account_id=%2"), accountId);
    return DatabaseReading::map(select, 0, mTable.cantQuery);
}

Lookup<ItemRows::Map> ItemRows::collectionIds(EasAccountId accountId, const QStringList &serverIds) const
{
    return named(
        QStringLiteral("SELECT server_id, collection_id FROM %1 WHERE account_id=%2 AND server_id IN %3"),
        accountId, serverIds, 0, mTable.cantQuery);
}

Lookup<QString> ItemRows::collectionId(EasAccountId accountId, const QString &serverId) const
{
    DatabaseStatement select = statement(
        QStringLiteral("SELECT collection_id FROM %1 WHERE account_id=%2 AND server_id=?"), accountId);
    return DatabaseReading::text(select.bind(serverId), mTable.cantQuery);
}
