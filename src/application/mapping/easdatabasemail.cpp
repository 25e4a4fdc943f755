// SPDX-License-Identifier: LGPL-2.1-or-later
// Rows of messages.
#include "application/base/logging.h"
#include "application/mapping/databasecolumns.h"
#include "application/mapping/databasereading.h"
#include "application/mapping/easdatabase.h"
#include "easitems/easemailitem.h"
#include "protocol/wbxml/wbxmltokens.h"

using DatabaseColumns::column;

namespace {

const char CantQueryEmails[] = "can't execute emails table query. Error:";
const char CantUpdateEmails[] = "can't update email items for account";

// Older libraries take 999 values in a statement.
constexpr int MaxNamesOfStatement = 900;

} // namespace

bool EasDatabase::addEmailItems(EasAccountId accountId, const QList<EasEmailItem> &items)
{
    if (items.isEmpty())
        return true;
    DatabaseStatement insert(mDatabase, QStringLiteral("INSERT INTO emails VALUES (?, ?, ?, ?, ?)"));
    insert.bindColumn(DatabaseColumns::assignedIds(items.size()))
        .bindColumn(DatabaseColumns::repeated(accountId, items.size()))
        .bindColumn(column(items, &EasEmailItem::serverId))
        .bindColumn(column(items, &EasEmailItem::collectionId))
        .bindColumn(column(items, &EasEmailItem::localId));
    return insert.runBatch() || insert.fail("can't add email items for account", accountId);
}

bool EasDatabase::updateEmailItems(EasAccountId accountId, const QList<EasEmailItem> &items)
{
    for (const EasEmailItem &item : items) {
        if (!item.changedFields().contains(Wbxml::AirSync::CollectionId))
            continue;
        DatabaseStatement update(mDatabase,
            QStringLiteral("UPDATE emails SET collection_id=? WHERE server_id=? AND account_id=?"));
        update.bind(DatabaseColumns::stored(item.collectionId())).bind(item.serverId()).bind(accountId);
        if (!update.run())
            return update.fail(CantUpdateEmails, accountId);
    }
    return true;
}

bool EasDatabase::updateMovedEmailItems(EasAccountId accountId, const QList<EasEmailItem> &items)
{
    if (items.isEmpty())
        return true;
    QVariantList rowIds;
    if (!selectMovedEmailRows(accountId, items, &rowIds))
        return false;
    if (rowIds.size() != items.size()) {
        qCCritical(eas()) << "selected eas DB ids are not bind properly to email server ids"
                             "                                 for account"
                          << accountId << ". Check duplications in Eas DB";
        return false;
    }
    DatabaseStatement update(mDatabase,
        QStringLiteral("UPDATE emails SET server_id=?, collection_id=? WHERE account_id=%1 AND id=?")
            .arg(accountId));
    update.bindColumn(column(items, &EasEmailItem::serverId))
        .bindColumn(column(items, &EasEmailItem::collectionId))
        .bindColumn(rowIds);
    return update.runBatch() || update.fail(CantUpdateEmails, accountId);
}

bool EasDatabase::selectMovedEmailRows(
    EasAccountId accountId, const QList<EasEmailItem> &items, QVariantList *rowIds) const
{
    DatabaseStatement select(mDatabase,
        QStringLiteral("SELECT id FROM emails WHERE account_id=%1 AND server_id=?").arg(accountId));
    for (const EasEmailItem &item : items) {
        if (!select.bind(item.previousServerId()).run())
            return select.fail("can't select email items for account", accountId);
        while (select.next()) {
            bool isNumber = false;
            const qlonglong id = select.value(0).toLongLong(&isNumber);
            if (!isNumber) {
                qCCritical(eas()) << "can't get email id value from query. easDbId:" << select.value(0);
                return false;
            }
            rowIds->append(id);
        }
        if (select.failed())
            return select.fail("can't select email items for account", accountId);
    }
    return true;
}

bool EasDatabase::deleteEmailItems(EasAccountId accountId, const QStringList &serverIds)
{
    return deleteItems("emails", accountId, serverIds, "can't delete email items for account");
}

bool EasDatabase::emailItemsChanges(EasAccountId accountId, const QList<EasEmailItem> &added,
    const QList<EasEmailItem> &updated, const QStringList &deletedServerIds)
{
    return addEmailItems(accountId, added) && updateEmailItems(accountId, updated)
        && deleteEmailItems(accountId, deletedServerIds);
}

Lookup<QStringList> EasDatabase::localEmailIds(EasAccountId accountId, const QString &collectionId) const
{
    DatabaseStatement select(mDatabase,
        QStringLiteral("SELECT local_id FROM emails WHERE account_id=%1 AND collection_id=?").arg(accountId));
    return DatabaseReading::texts(select.bind(collectionId), CantQueryEmails);
}

Lookup<QMap<QString, QString>> EasDatabase::serverToLocalEmailIds(EasAccountId accountId) const
{
    DatabaseStatement select(mDatabase,
        QStringLiteral("SELECT server_id, local_id FROM emails WHERE account_id=%1").arg(accountId));
    return DatabaseReading::map(select, 0, CantQueryEmails);
}

Lookup<QMap<QString, QString>> EasDatabase::localToServerEmailIds(EasAccountId accountId) const
{
    DatabaseStatement select(mDatabase,
        QStringLiteral("SELECT server_id, local_id FROM emails WHERE account_id=%1").arg(accountId));
    return DatabaseReading::map(select, 1, CantQueryEmails);
}

Lookup<QMap<QString, QString>> EasDatabase::emailCollectionIds(
    EasAccountId accountId, const QStringList &serverIds) const
{
    // The table has no index, so that each statement walks all rows: as few as possible.
    QMap<QString, QString> collections;
    for (int first = 0; first < serverIds.size(); first += MaxNamesOfStatement) {
        const QStringList names = serverIds.mid(first, MaxNamesOfStatement);
        const QString places = QStringLiteral("?,").repeated(names.size());
        DatabaseStatement select(mDatabase,
            QStringLiteral("SELECT server_id, collection_id FROM emails WHERE account_id=%1"
                           " AND server_id IN (%2)")
                .arg(QString::number(accountId), places.chopped(1)));
        for (const QString &name : names)
            select.bind(name);
        const bool complete = DatabaseReading::eachRow(select, CantQueryEmails,
            [&](const DatabaseStatement &row) { collections.insert(row.text(0), row.text(1)); });
        if (!complete)
            return Lookup<QMap<QString, QString>>::unread();
    }
    return collections;
}

Lookup<QString> EasDatabase::folderServerIdByEmailServerId(
    EasAccountId accountId, const QString &serverId) const
{
    DatabaseStatement select(mDatabase,
        QStringLiteral("SELECT collection_id FROM emails WHERE account_id=%1 AND server_id=?")
            .arg(accountId));
    return DatabaseReading::text(select.bind(serverId), CantQueryEmails);
}

Lookup<QString> EasDatabase::collectionServerIdFromEmailItemId(
    EasAccountId accountId, const QString &serverId)
{
    return folderServerIdByEmailServerId(accountId, serverId);
}

bool EasDatabase::clearEmailFolder(EasAccountId accountId, const QString &collectionId)
{
    return clearFolder(accountId, collectionId, "emails", "collection_id", "account_id");
}
