// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/foldertable.h"

#include "internal/mailkeycompiler.h"
#include "internal/mailvaluedata.h"

namespace {

QVariantList columnValues(const QMailFolder &folder)
{
    const QMailFolderData &data = MailValueAccess::data(folder);
    return { data.path.isNull() ? QLatin1String("") : data.path, data.displayName,
        data.parentFolderId.toULongLong(), data.parentAccountId.toULongLong(), qlonglong(data.status) };
}

} // namespace

FolderTable::FolderTable(MailDatabase &database)
    : mDatabase(database)
    , mFields(database, QStringLiteral("folder_fields"))
{
}

bool FolderTable::add(QMailFolder &folder, MailChanges &changes)
{
    QMailFolderData &data = MailValueAccess::data(folder);
    if (data.id.isValid() || (data.parentFolderId.isValid() && !exists(data.parentFolderId.toULongLong()))) {
        mDatabase.setLastError(QMailStore::ConstraintFailure);
        return false;
    }
    if (!mDatabase.run(QStringLiteral("INSERT INTO folders (path, display_name, parent, account, status)"
                                      " VALUES (?, ?, ?, ?, ?)"),
            columnValues(folder)))
        return false;
    const quint64 id = mDatabase.lastInsertId();
    if (!mFields.save(id, data.fields, true))
        return false;
    data.id = QMailFolderId(id);
    changes.add(MailChanges::FoldersAdded, id);
    return true;
}

bool FolderTable::update(QMailFolder &folder, MailChanges &changes)
{
    const QMailFolderData &data = MailValueAccess::data(folder);
    const quint64 id = data.id.toULongLong();
    const quint64 parent = data.parentFolderId.toULongLong();
    // A folder below itself would be a ring that no walk through the tree gets out of.
    if (!exists(id) || (parent != 0 && (!exists(parent) || withDescendants(id).contains(parent)))) {
        mDatabase.setLastError(QMailStore::ConstraintFailure);
        return false;
    }
    if (!mDatabase.run(
            QStringLiteral("UPDATE folders SET path = ?, display_name = ?, parent = ?, account = ?,"
                           " status = ? WHERE id = ?"),
            columnValues(folder) << id)
        || !mFields.save(id, data.fields, false))
        return false;
    changes.add(MailChanges::FoldersUpdated, id);
    return true;
}

bool FolderTable::remove(const QList<quint64> &ids, MailChanges &changes)
{
    for (const quint64 id : ids) {
        if (!mFields.remove(id) || !mDatabase.run(QStringLiteral("DELETE FROM folders WHERE id = ?"), { id }))
            return false;
    }
    changes.add(MailChanges::FoldersRemoved, ids);
    return true;
}

QList<quint64> FolderTable::query(const MailKeyNode &key, uint limit, uint offset)
{
    const CompiledKey compiled = compileFolderKey(key);
    return mDatabase.numbers(QStringLiteral("SELECT id FROM folders WHERE %1 ORDER BY id LIMIT ? OFFSET ?")
                                 .arg(compiled.condition),
        compiled.values + QVariantList { limit == 0 ? -1 : qlonglong(limit), offset });
}

int FolderTable::count(const MailKeyNode &key)
{
    const CompiledKey compiled = compileFolderKey(key);
    return mDatabase
        .value(
            QStringLiteral("SELECT COUNT(*) FROM folders WHERE %1").arg(compiled.condition), compiled.values)
        .value_or(QVariant())
        .toInt();
}

bool FolderTable::load(quint64 id, QMailFolder &folder)
{
    bool found = false;
    QMailFolderData &data = MailValueAccess::data(folder);
    mDatabase.select(
        QStringLiteral("SELECT path, display_name, parent, account, status FROM folders WHERE id = ?"),
        { id }, [&](const QSqlQuery &row) {
            data.path = row.value(0).toString();
            data.displayName = row.value(1).toString();
            data.parentFolderId = QMailFolderId(row.value(2).toULongLong());
            data.parentAccountId = QMailAccountId(row.value(3).toULongLong());
            data.status = row.value(4).toULongLong();
            found = true;
        });
    if (!found) {
        if (mDatabase.lastError() == QMailStore::NoError)
            mDatabase.setLastError(QMailStore::InvalidId);
        return false;
    }
    data.id = QMailFolderId(id);
    data.fields.values = mFields.load(id);
    return true;
}

bool FolderTable::exists(quint64 id)
{
    return id != 0 && mDatabase.has(QStringLiteral("SELECT 1 FROM folders WHERE id = ?"), { id });
}

QList<quint64> FolderTable::withDescendants(quint64 id)
{
    return mDatabase.numbers(
        QStringLiteral("WITH RECURSIVE below(id) AS (SELECT ? UNION SELECT folders.id FROM folders"
                       " JOIN below ON folders.parent = below.id) SELECT id FROM below"),
        { id });
}

QList<quint64> FolderTable::ancestors(quint64 id)
{
    return mDatabase.numbers(
        QStringLiteral("WITH RECURSIVE above(id) AS (SELECT parent FROM folders WHERE id = ?"
                       " UNION SELECT folders.parent FROM folders JOIN above ON folders.id = above.id)"
                       " SELECT id FROM above WHERE id <> 0"),
        { id });
}
