// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/accounttable.h"

#include "internal/mailvaluedata.h"

AccountTable::AccountTable(MailDatabase &database)
    : mDatabase(database)
    , mFields(database, QStringLiteral("account_fields"))
{
}

bool AccountTable::add(QMailAccount &account, quint64 lowestId, MailChanges &changes)
{
    QMailAccountData &data = MailValueAccess::data(account);
    quint64 id = data.id.toULongLong();
    if (id == 0) {
        const auto next = mDatabase.value(QStringLiteral("SELECT COALESCE(MAX(id), 0) + 1 FROM accounts"));
        if (!next)
            return false;
        id = qMax(lowestId, next->toULongLong());
    }
    if (!mDatabase.run(QStringLiteral("INSERT INTO accounts (id, own) VALUES (?, 1)"), { id }))
        return false;
    const QMailAccountId before = data.id;
    data.id = QMailAccountId(id);
    if (!update(account)) {
        data.id = before;
        return false;
    }
    changes.add(MailChanges::AccountsAdded, id);
    return true;
}

bool AccountTable::update(const QMailAccount &account)
{
    const QMailAccountData &data = MailValueAccess::data(account);
    return mDatabase.run(
               QStringLiteral("UPDATE accounts SET name = ?, sender = ?, type = ?, policy = ?, status = ?"
                              " WHERE id = ?"),
               { data.name, data.fromAddress.toString(), int(data.messageType), int(data.policy),
                   qlonglong(data.status), data.id.toULongLong() })
        && saveDetails(account);
}

bool AccountTable::saveDetails(const QMailAccount &account)
{
    const QMailAccountData &data = MailValueAccess::data(account);
    const quint64 id = data.id.toULongLong();
    if (!mDatabase.run(QStringLiteral("DELETE FROM standard_folders WHERE account = ?"), { id }))
        return false;
    for (auto it = data.standardFolders.cbegin(); it != data.standardFolders.cend(); ++it) {
        if (!mDatabase.run(
                QStringLiteral("INSERT INTO standard_folders (account, kind, folder) VALUES (?, ?, ?)"),
                { id, int(it.key()), it.value().toULongLong() }))
            return false;
    }
    return mFields.save(id, data.fields, false);
}

bool AccountTable::remove(quint64 id)
{
    return mFields.remove(id)
        && mDatabase.run(QStringLiteral("DELETE FROM standard_folders WHERE account = ?"), { id })
        && mDatabase.run(QStringLiteral("DELETE FROM removal_records WHERE account = ?"), { id })
        && mDatabase.run(QStringLiteral("DELETE FROM accounts WHERE id = ?"), { id });
}

bool AccountTable::noteForeign(quint64 id)
{
    if (mDatabase.has(QStringLiteral("SELECT 1 FROM accounts WHERE id = ?"), { id }))
        return true;
    return mDatabase.run(QStringLiteral("INSERT OR IGNORE INTO accounts (id, own) VALUES (?, 0)"), { id });
}

bool AccountTable::load(quint64 id, QMailAccount &account)
{
    bool found = false;
    QMailAccountData &data = MailValueAccess::data(account);
    mDatabase.select(QStringLiteral("SELECT name, sender, type, policy, status FROM accounts WHERE id = ?"),
        { id }, [&](const QSqlQuery &row) {
            found = true;
            data.name = row.value(0).toString();
            data.fromAddress = QMailAddress(row.value(1).toString());
            // Null until somebody sets it: the defaults stand.
            if (!row.value(2).isNull())
                data.messageType = QMailMessageMetaDataFwd::MessageType(row.value(2).toInt());
            if (!row.value(3).isNull())
                data.policy = QMailAccount::FolderSyncPolicy(row.value(3).toInt());
            if (!row.value(4).isNull())
                data.status = row.value(4).toULongLong();
        });
    if (!found)
        return false;
    data.id = QMailAccountId(id);
    mDatabase.select(QStringLiteral("SELECT kind, folder FROM standard_folders WHERE account = ?"), { id },
        [&](const QSqlQuery &row) {
            data.standardFolders.insert(
                QMailFolder::StandardFolder(row.value(0).toInt()), QMailFolderId(row.value(1).toULongLong()));
        });
    data.fields.values = mFields.load(id);
    return true;
}

bool AccountTable::isOwn(quint64 id)
{
    return mDatabase.has(QStringLiteral("SELECT 1 FROM accounts WHERE id = ? AND own = 1"), { id });
}

QList<quint64> AccountTable::own()
{
    return mDatabase.numbers(QStringLiteral("SELECT id FROM accounts WHERE own = 1 ORDER BY id"));
}

QList<quint64> AccountTable::foreign()
{
    return mDatabase.numbers(QStringLiteral("SELECT id FROM accounts WHERE own = 0 ORDER BY id"));
}
