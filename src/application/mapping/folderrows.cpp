// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/folderrows.h"

#include "application/base/logging.h"
#include "application/mapping/databasecolumns.h"
#include "application/mapping/databasereading.h"
#include "protocol/wbxml/wbxmltokens.h"

#include <algorithm>
#include <iterator>

using DatabaseColumns::column;
using DatabaseColumns::stored;

namespace {

const char CantQueryCollections[] = "can't execute collections table query. Error:";

struct FolderField
{
    uint tag;
    const char *column;
    QString (EasFolderItem::*value)() const;
};

// What a changed field of a folder is called in the table.
const FolderField FolderFields[] = {
    { Wbxml::FolderHierarchy::ParentId, "server_parent_id", &EasFolderItem::serverParentId },
    { Wbxml::FolderHierarchy::DisplayName, "display_name", &EasFolderItem::displayName },
    { Wbxml::FolderHierarchy::SyncKey, "synckey", &EasFolderItem::syncKey },
    { Wbxml::AirSync::SyncKey, "synckey", &EasFolderItem::syncKey },
};

struct FolderColumn
{
    const char *name;
    void (*read)(EasFolderItem &folder, const QVariant &value);
};

const FolderColumn FolderColumns[] = {
    { "server_id",
        [](EasFolderItem &folder, const QVariant &value) {
            folder.setServerId(value.toString());
        } },
    { "server_parent_id",
        [](EasFolderItem &folder, const QVariant &value) {
            folder.setServerParentId(value.toString());
        } },
    { "local_id",
        [](EasFolderItem &folder, const QVariant &value) {
            folder.setLocalId(value.toString());
        } },
    { "local_parent_id",
        [](EasFolderItem &folder, const QVariant &value) {
            folder.setLocalParentId(value.toString());
        } },
    { "synckey",
        [](EasFolderItem &folder, const QVariant &value) {
            folder.setSyncKey(value.toString());
        } },
    { "type",
        [](EasFolderItem &folder, const QVariant &value) {
            folder.setType(EasFolderItem::FolderType(value.toInt()));
        } },
    { "display_name",
        [](EasFolderItem &folder, const QVariant &value) {
            folder.setDisplayName(value.toString());
        } },
    { "saved_in_storage",
        [](EasFolderItem &folder, const QVariant &value) {
            folder.setSavedInStorage(value.toBool());
        } },
};

/** The folder of a row, as far as the statement asks for its columns. */
EasFolderItem folderOf(const DatabaseStatement &row)
{
    EasFolderItem folder;
    for (const FolderColumn &column : FolderColumns) {
        const std::optional<QVariant> value = row.value(column.name);
        if (value)
            column.read(folder, *value);
    }
    return folder;
}

} // namespace

FolderRows::FolderRows(PreparedStatements &statements)
    : mStatements(statements)
{
}

Lookup<EasFolderItem> FolderRows::byLocalId(EasAccountId accountId, const QString &localId) const
{
    DatabaseStatement select(mStatements,
        QStringLiteral("SELECT server_id, synckey, type, display_name, saved_in_storage FROM collections "
                       "WHERE account_id=%1 AND local_id=?")
            .arg(accountId));
    EasFolderItem item;
    item.setLocalId(localId);
    return DatabaseReading::value(
        select.bind(localId), CantQueryCollections, item, [&localId](const DatabaseStatement &row) {
            EasFolderItem found = folderOf(row);
            found.setLocalId(localId);
            return found;
        });
}

Lookup<EasFolderItem> FolderRows::byServerId(EasAccountId accountId, const QString &serverId) const
{
    DatabaseStatement select(mStatements,
        QStringLiteral("SELECT local_id, synckey, type, display_name, saved_in_storage FROM collections "
                       "WHERE account_id=%1 AND server_id=?")
            .arg(accountId));
    return DatabaseReading::value(select.bind(serverId), CantQueryCollections, EasFolderItem(),
        [&serverId](const DatabaseStatement &row) {
            EasFolderItem found = folderOf(row);
            found.setServerId(serverId);
            return found;
        });
}

Lookup<QList<EasFolderItem>> FolderRows::mailFolders(EasAccountId accountId) const
{
    DatabaseStatement select(mStatements,
        QStringLiteral("SELECT local_id, type, server_id, synckey, display_name, saved_in_storage "
                       "FROM collections WHERE account_id=%1 AND type IN (1, 2, 3, 4, 5, 6, 12, 1)")
            .arg(accountId));
    return DatabaseReading::items(select, CantQueryCollections, folderOf);
}

Lookup<QList<EasFolderItem>> FolderRows::calendarFolders(EasAccountId accountId) const
{
    DatabaseStatement select(mStatements,
        QStringLiteral("SELECT server_id, server_parent_id, synckey, local_id, local_parent_id, "
                       "display_name, saved_in_storage, type FROM collections "
                       "WHERE account_id=%1 AND type IN (8, 13)")
            .arg(accountId));
    return DatabaseReading::items(select, "SQL request failed:", folderOf);
}

Lookup<QList<EasFolderItem>> FolderRows::byType(EasAccountId accountId, EasFolderItem::FolderType type) const
{
    DatabaseStatement select(mStatements,
        QStringLiteral("SELECT local_id, server_id, synckey, display_name, saved_in_storage, type "
                       "FROM collections WHERE account_id=%1 AND type=%2")
            .arg(accountId)
            .arg(int(type)));
    return DatabaseReading::items(select, CantQueryCollections, folderOf);
}

Lookup<EasFolderItem::FolderType> FolderRows::typeOf(EasAccountId accountId, const QString &serverId) const
{
    DatabaseStatement select(mStatements,
        QStringLiteral("SELECT type FROM collections WHERE account_id=%1 AND server_id=?").arg(accountId));
    return DatabaseReading::value(select.bind(serverId), CantQueryCollections, EasFolderItem::UnknownFolder,
        [](const DatabaseStatement &row) { return folderOf(row).type(); });
}

Lookup<QMap<QString, QString>> FolderRows::serverToLocalIds(EasAccountId accountId) const
{
    DatabaseStatement select(mStatements,
        QStringLiteral("SELECT server_id, local_id FROM collections WHERE account_id=%1").arg(accountId));
    return DatabaseReading::map(select, 0, CantQueryCollections);
}

Lookup<QMap<QString, QString>> FolderRows::localToServerIds(EasAccountId accountId) const
{
    DatabaseStatement select(mStatements,
        QStringLiteral("SELECT server_id, local_id FROM collections WHERE account_id=%1").arg(accountId));
    return DatabaseReading::map(select, 1, CantQueryCollections);
}

Lookup<QMap<QString, QString>> FolderRows::parentIds(EasAccountId accountId) const
{
    DatabaseStatement select(mStatements,
        QStringLiteral("SELECT server_id, server_parent_id FROM collections WHERE account_id=%1")
            .arg(accountId));
    return DatabaseReading::map(select, 0, CantQueryCollections);
}

bool FolderRows::add(EasAccountId accountId, const QList<EasFolderItem> &items) const
{
    if (items.isEmpty())
        return true;
    DatabaseStatement insert(
        mStatements, QStringLiteral("INSERT INTO collections VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
    insert.bindColumn(DatabaseColumns::assignedIds(items.size()))
        .bindColumn(DatabaseColumns::repeated(accountId, items.size()))
        .bindColumn(column(items, &EasFolderItem::serverId))
        .bindColumn(column(items, &EasFolderItem::serverParentId))
        .bindColumn(column(items, &EasFolderItem::localId))
        .bindColumn(column(items, &EasFolderItem::localParentId))
        .bindColumn(column(items, &EasFolderItem::syncKey))
        .bindColumn(column(items, [](const EasFolderItem &item) { return QVariant(int(item.type())); }))
        .bindColumn(column(items, &EasFolderItem::displayName))
        .bindColumn(column(items, [](const EasFolderItem &item) { return QVariant(item.savedInStorage()); }));
    return insert.runBatch() || insert.fail("can't add folder items for account", accountId);
}

bool FolderRows::update(EasAccountId accountId, const QList<EasFolderItem> &items) const
{
    return std::all_of(items.cbegin(), items.cend(),
        [this, accountId](const EasFolderItem &item) { return updateOne(accountId, item); });
}

bool FolderRows::updateOne(EasAccountId accountId, const EasFolderItem &item) const
{
    // The local binding is always written, so that no caller can lose it.
    QString sql = QStringLiteral("UPDATE collections SET saved_in_storage=?, local_id=?, local_parent_id=?");
    QVariantList values { item.savedInStorage(), stored(item.localId()), stored(item.localParentId()) };
    const QList<uint> changedFields = item.changedFields();
    for (const uint tag : changedFields) {
        const auto field = std::find_if(std::begin(FolderFields), std::end(FolderFields),
            [tag](const FolderField &known) { return known.tag == tag; });
        if (field == std::end(FolderFields)) {
            qCWarning(eas()) << "unhandled tag id" << tag;
            continue;
        }
        sql += QStringLiteral(", %1=?").arg(QLatin1String(field->column));
        values.append(stored((item.*field->value)()));
    }
    sql += QStringLiteral(" WHERE server_id=? AND account_id=?");
    values << item.serverId() << accountId;

    DatabaseStatement update(mStatements, sql);
    for (const QVariant &value : qAsConst(values))
        update.bind(value);
    return update.run() || update.fail("can't update folder items for account", accountId);
}

bool FolderRows::remove(EasAccountId accountId, const QStringList &serverIds) const
{
    if (serverIds.isEmpty())
        return true;
    DatabaseStatement removal(mStatements,
        QStringLiteral("DELETE FROM collections WHERE server_id=? AND account_id=%1").arg(accountId));
    removal.bindColumn(QVariant(serverIds).toList());
    return removal.runBatch() || removal.fail("can't delete folder items for account", accountId);
}

bool FolderRows::setSavedInStorage(EasAccountId accountId, const QString &localId, bool saved) const
{
    DatabaseStatement update(mStatements,
        QStringLiteral("UPDATE collections SET saved_in_storage=? WHERE account_id=? AND local_id=?"));
    update.bind(saved).bind(accountId).bind(localId);
    return update.run() || update.fail("can't update folder items for account", accountId);
}
