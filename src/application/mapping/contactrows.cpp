// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/contactrows.h"

#include "application/mapping/databasecolumns.h"
#include "application/mapping/databasereading.h"
#include "easitems/eascontactsitem.h"

using DatabaseColumns::column;

namespace {

const char CantQueryContacts[] = "can't execute contacts table query. Error:";

const ItemTable Contacts { "contacts", CantQueryContacts, CantQueryContacts, CantQueryContacts,
    "can't delete contacts items for account" };

QString avatarText(const EasContactsItem &item)
{
    return item.avatarUrl().toString(QUrl::FullyEncoded);
}

QString collectionFilter(const QString &collectionId)
{
    return collectionId.isEmpty() ? QString() : QStringLiteral(" AND collection_id=?");
}

void bindCollection(DatabaseStatement &statement, const QString &collectionId, int rows)
{
    if (!collectionId.isEmpty())
        statement.bindColumn(DatabaseColumns::repeated(collectionId, rows));
}

} // namespace

ContactRows::ContactRows(PreparedStatements &statements)
    : ItemRows(statements, Contacts)
{
}

bool ContactRows::add(EasAccountId accountId, const QList<EasContactsItem> &items) const
{
    if (items.isEmpty())
        return true;
    const StatementFailure failure(
        "Can't add contacts items for account:", "Can't execute PREPARE contacts query for account:");
    return DatabaseStatement::insertRows(statements(),
        QStringLiteral(
            "INSERT OR IGNORE INTO contacts (account_id, server_id, collection_id, local_id, avatar_url)"),
        QStringLiteral("(%1, ?, ?, ?, ?)").arg(accountId),
        { column(items, &EasContactsItem::serverId), column(items, &EasContactsItem::collectionId),
            column(items, &EasContactsItem::localId), column(items, &avatarText) },
        failure, accountId);
}

bool ContactRows::update(
    EasAccountId accountId, const QList<EasContactsItem> &items, const QString &collectionId) const
{
    if (items.isEmpty())
        return true;
    DatabaseStatement update(statements(),
        QStringLiteral("UPDATE contacts SET account_id=?, server_id=?, collection_id=?, local_id=?, "
                       "avatar_url=? WHERE server_id=? AND account_id=%1%2")
            .arg(accountId)
            .arg(collectionFilter(collectionId)));
    update.bindColumn(DatabaseColumns::repeated(accountId, items.size()))
        .bindColumn(column(items, &EasContactsItem::serverId))
        .bindColumn(column(items, &EasContactsItem::collectionId))
        .bindColumn(column(items, &EasContactsItem::localId))
        .bindColumn(column(items, &avatarText))
        .bindColumn(column(items, &EasContactsItem::serverId));
    bindCollection(update, collectionId, items.size());
    return update.runBatch() || update.fail("can't update contacts items for account", accountId);
}

bool ContactRows::remove(
    EasAccountId accountId, const QStringList &serverIds, const QString &collectionId) const
{
    if (serverIds.isEmpty())
        return true;
    DatabaseStatement removal = statement(
        QStringLiteral("DELETE FROM %1 WHERE server_id=? AND account_id=%2") + collectionFilter(collectionId),
        accountId);
    removal.bindColumn(QVariant(serverIds).toList());
    bindCollection(removal, collectionId, serverIds.size());
    return removal.runBatch() || removal.fail(table().cantDelete, accountId);
}

Lookup<QStringList> ContactRows::localIds(EasAccountId accountId, const QString &collectionId) const
{
    DatabaseStatement select(statements(),
        QStringLiteral("SELECT local_id FROM contacts WHERE account_id=%1%2")
            .arg(accountId)
            .arg(collectionFilter(collectionId)));
    if (!collectionId.isEmpty())
        select.bind(collectionId);
    return DatabaseReading::texts(select, CantQueryContacts);
}

Lookup<QMap<QString, QString>> ContactRows::localToServerIds(
    EasAccountId accountId, const QString &collectionId) const
{
    DatabaseStatement select(statements(),
        QStringLiteral("SELECT server_id, local_id FROM contacts WHERE account_id=%1%2")
            .arg(accountId)
            .arg(collectionFilter(collectionId)));
    if (!collectionId.isEmpty())
        select.bind(collectionId);
    return DatabaseReading::map(select, 1, CantQueryContacts);
}

Lookup<QMap<QString, QUrl>> ContactRows::avatarUrls(EasAccountId accountId) const
{
    DatabaseStatement select(statements(),
        QStringLiteral("SELECT local_id, avatar_url FROM contacts WHERE account_id=%1").arg(accountId));
    QMap<QString, QUrl> urls;
    const bool complete = DatabaseReading::eachRow(select, CantQueryContacts,
        [&urls](const DatabaseStatement &row) { urls.insert(row.text(0), QUrl(row.text(1))); });
    return complete ? Lookup<QMap<QString, QUrl>>(urls) : Lookup<QMap<QString, QUrl>>::unread();
}
