// SPDX-License-Identifier: LGPL-2.1-or-later
// Rows of contacts.
#include "application/mapping/databasecolumns.h"
#include "application/mapping/databasereading.h"
#include "application/mapping/easdatabase.h"
#include "easitems/eascontactsitem.h"

using DatabaseColumns::column;

namespace {

const char CantQueryContacts[] = "can't execute contacts table query. Error:";

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

bool EasDatabase::addContactsItems(EasAccountId accountId, const QList<EasContactsItem> &items)
{
    if (items.isEmpty())
        return true;
    DatabaseStatement insert(mDatabase,
        QStringLiteral("INSERT OR IGNORE INTO contacts (account_id, server_id, collection_id, local_id, "
                       "avatar_url) VALUES (?, ?, ?, ?, ?)"));
    insert.bindColumn(DatabaseColumns::repeated(accountId, items.size()))
        .bindColumn(column(items, &EasContactsItem::serverId))
        .bindColumn(column(items, &EasContactsItem::collectionId))
        .bindColumn(column(items, &EasContactsItem::localId))
        .bindColumn(column(items, &avatarText));
    const StatementFailure failure(
        "Can't add contacts items for account:", "Can't execute PREPARE contacts query for account:");
    return insert.runBatch() || insert.fail(failure, accountId);
}

bool EasDatabase::updateContactsItems(
    EasAccountId accountId, const QList<EasContactsItem> &items, const QString &collectionId)
{
    if (items.isEmpty())
        return true;
    DatabaseStatement update(mDatabase,
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

bool EasDatabase::deleteContactsItems(
    EasAccountId accountId, const QStringList &serverIds, const QString &collectionId)
{
    if (serverIds.isEmpty())
        return true;
    DatabaseStatement remove(mDatabase,
        QStringLiteral("DELETE FROM contacts WHERE server_id=? AND account_id=%1%2")
            .arg(accountId)
            .arg(collectionFilter(collectionId)));
    remove.bindColumn(QVariant(serverIds).toList());
    bindCollection(remove, collectionId, serverIds.size());
    return remove.runBatch() || remove.fail("can't delete contacts items for account", accountId);
}

bool EasDatabase::contactsItemsChanges(EasAccountId accountId, const QList<EasContactsItem> &added,
    const QList<EasContactsItem> &updated, const QStringList &deletedServerIds, const QString &collectionId)
{
    return addContactsItems(accountId, added) && updateContactsItems(accountId, updated, collectionId)
        && deleteContactsItems(accountId, deletedServerIds, collectionId);
}

Lookup<QStringList> EasDatabase::localContactIds(EasAccountId accountId, const QString &collectionId) const
{
    DatabaseStatement select(mDatabase,
        QStringLiteral("SELECT local_id FROM contacts WHERE account_id=%1%2")
            .arg(accountId)
            .arg(collectionFilter(collectionId)));
    if (!collectionId.isEmpty())
        select.bind(collectionId);
    return DatabaseReading::texts(select, CantQueryContacts);
}

Lookup<QMap<QString, QString>> EasDatabase::localToServerContactIds(
    EasAccountId accountId, const QString &collectionId) const
{
    DatabaseStatement select(mDatabase,
        QStringLiteral("SELECT server_id, local_id FROM contacts WHERE account_id=%1%2")
            .arg(accountId)
            .arg(collectionFilter(collectionId)));
    if (!collectionId.isEmpty())
        select.bind(collectionId);
    return DatabaseReading::map(select, 1, CantQueryContacts);
}

Lookup<QMap<QString, QString>> EasDatabase::serverToLocalContactIds(EasAccountId accountId) const
{
    DatabaseStatement select(mDatabase,
        QStringLiteral("SELECT server_id, local_id FROM contacts WHERE account_id=%1").arg(accountId));
    return DatabaseReading::map(select, 0, CantQueryContacts);
}

Lookup<QMap<QString, QUrl>> EasDatabase::localContactIdsToAvatarsUrls(EasAccountId accountId) const
{
    DatabaseStatement select(mDatabase,
        QStringLiteral("SELECT local_id, avatar_url FROM contacts WHERE account_id=%1").arg(accountId));
    QMap<QString, QUrl> urls;
    const bool complete = DatabaseReading::eachRow(select, CantQueryContacts,
        [&urls](const DatabaseStatement &row) { urls.insert(row.text(0), QUrl(row.text(1))); });
    return complete ? Lookup<QMap<QString, QUrl>>(urls) : Lookup<QMap<QString, QUrl>>::unread();
}

Lookup<QString> EasDatabase::folderServerIdByContactLocalId(
    EasAccountId accountId, const QString &serverId) const
{
    DatabaseStatement select(mDatabase,
        QStringLiteral("SELECT collection_id FROM contacts WHERE account_id=%1 AND server_id=?")
            .arg(accountId));
    return DatabaseReading::text(select.bind(serverId), CantQueryContacts);
}

bool EasDatabase::clearContactsFolder(EasAccountId accountId, const QString &collectionId)
{
    return clearFolder(accountId, collectionId, "contacts", "collection_id", "account_id");
}
