// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/accountrows.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/databasereading.h"
#include "application/requestmanager.h"
#include "application/storagesfactory.h"
#include "protocol/base/protocolutils.h"

namespace {

constexpr int HierarchyRowType = 0;
const char CantQueryAccounts[] = "can't execute accounts table query. Error:";
const char CantGetFolderSyncKey[] = "can't get a folderSyncKey. Error:";
const char CollectionsNotInitialized[] = "collections table is not initialized for account";

struct AccountTable
{
    const char *name;
    const char *failure;
};

const AccountTable TablesOfAnAccount[] = {
    { "accounts", "can't delete rows from accounts table. Error:" },
    { "calendar", "can't delete rows from calendar table. Error:" },
    { "contacts", "can't delete rows from contacts table. Error:" },
    { "collections", "can't delete rows from collections table. Error:" },
    { "emails", "can't delete rows from emails table. Error:" },
};

Lookup<Existence> presence(DatabaseStatement &select, const StatementFailure &failure)
{
    return DatabaseReading::value(
        select, failure, Existence::Missing, [](const DatabaseStatement &) { return Existence::Present; });
}

} // namespace

AccountRows::AccountRows(PreparedStatements &statements)
    : mStatements(statements)
{
}

void AccountRows::initialize(EasAccountId accountId) const
{
    if (!initializeAccountsTable(accountId, 0))
        qCWarning(eas()) << "failed to initialize accounts table for account" << accountId;
    if (!initializeCollectionsTable(accountId))
        qCWarning(eas()) << "failed to initialize collections table for account" << accountId;
}

bool AccountRows::initializeAccountsTable(EasAccountId accountId, quint64 emailAccountId) const
{
    DatabaseStatement select(mStatements,
        QStringLiteral("SELECT email_account_id FROM accounts WHERE account_id=%1").arg(accountId));
    const Lookup<Existence> row = presence(select, CantQueryAccounts);
    if (!row || *row == Existence::Present)
        return bool(row);
    DatabaseStatement insert(mStatements, QStringLiteral("INSERT INTO accounts VALUES (?, ?)"));
    insert.bind(accountId).bind(emailAccountId);
    return insert.run() || insert.fail("Can't add an account row for account", accountId);
}

bool AccountRows::initializeCollectionsTable(EasAccountId accountId) const
{
    DatabaseStatement select(mStatements,
        QStringLiteral("SELECT synckey FROM collections WHERE account_id=%1 AND type=0").arg(accountId));
    const Lookup<Existence> row = presence(select, CantGetFolderSyncKey);
    if (!row || *row == Existence::Present)
        return bool(row);
    const QString empty = QStringLiteral("");
    DatabaseStatement insert(
        mStatements, QStringLiteral("INSERT INTO collections VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
    insert.bind(QVariant(QVariant::Int)).bind(accountId);
    insert.bind(empty).bind(empty).bind(empty).bind(empty);
    insert.bind(QString(ProtocolUtils::InitialSyncKey)).bind(HierarchyRowType).bind(empty).bind(0);
    return insert.run() || insert.fail("can't create a folderSyncKey row. Error:");
}

Lookup<quint64> AccountRows::emailAccountId(EasAccountId accountId) const
{
    if (!initializeAccountsTable(accountId, 0)) {
        qCCritical(eas()) << "accounts table is not initialized";
        return Lookup<quint64>::unread();
    }
    DatabaseStatement select(mStatements,
        QStringLiteral("SELECT email_account_id FROM accounts WHERE account_id=%1").arg(accountId));
    return DatabaseReading::value(select, CantQueryAccounts, quint64(0),
        [](const DatabaseStatement &row) { return row.value(0).toULongLong(); });
}

void AccountRows::setEmailAccountId(EasAccountId accountId, quint64 emailAccountId) const
{
    if (!initializeAccountsTable(accountId, emailAccountId)) {
        qCCritical(eas()) << "accounts table is not initialized.";
        return;
    }
    DatabaseStatement update(mStatements,
        QStringLiteral("UPDATE accounts SET email_account_id=%1 WHERE account_id=%2")
            .arg(emailAccountId)
            .arg(accountId));
    if (!update.run())
        qCCritical(eas()) << "can't update table"
                          << "accounts"
                          << "Error:" << update.errorText();
}

Lookup<QString> AccountRows::folderSyncKey(EasAccountId accountId) const
{
    const QString initialKey = ProtocolUtils::InitialSyncKey;
    if (!initializeCollectionsTable(accountId)) {
        qCCritical(eas()) << CollectionsNotInitialized << accountId;
        return Lookup<QString>::unread();
    }
    DatabaseStatement select(mStatements,
        QStringLiteral("SELECT synckey FROM collections WHERE account_id=%1 AND type=0").arg(accountId));
    return DatabaseReading::value(
        select, CantGetFolderSyncKey, initialKey, [&initialKey](const DatabaseStatement &row) {
            return row.value(0).isNull() ? initialKey : row.text(0);
        });
}

bool AccountRows::setFolderSyncKey(EasAccountId accountId, const QString &syncKey) const
{
    if (!initializeCollectionsTable(accountId)) {
        qCCritical(eas()) << CollectionsNotInitialized << accountId;
        return false;
    }
    DatabaseStatement update(mStatements,
        QStringLiteral("UPDATE collections SET synckey=? WHERE account_id=%1 AND type=0").arg(accountId));
    if (update.bind(syncKey).run())
        return true;
    qCCritical(eas()) << "can't update table"
                      << "collections"
                      << "Error:" << update.errorText();
    return false;
}

bool AccountRows::remove(EasAccountId accountId) const
{
    for (const AccountTable &table : TablesOfAnAccount) {
        DatabaseStatement removal(mStatements,
            QStringLiteral("DELETE FROM %1 WHERE account_id=%2")
                .arg(QLatin1String(table.name))
                .arg(accountId));
        if (!removal.run())
            return removal.fail(table.failure);
    }
    return true;
}

Lookup<QList<EasAccountId>> AccountRows::othersThan(const QList<quint64> &accountIds) const
{
    DatabaseStatement select(mStatements, QStringLiteral("SELECT * FROM accounts"));
    QList<EasAccountId> others;
    const bool complete =
        DatabaseReading::eachRow(select, CantQueryAccounts, [&](const DatabaseStatement &row) {
            const EasAccountId id = row.value(0).toULongLong();
            if (!accountIds.contains(id))
                others.append(id);
        });
    return complete ? Lookup<QList<EasAccountId>>(others) : Lookup<QList<EasAccountId>>::unread();
}

bool AccountRows::clear(EasAccountId accountId) const
{
    qCInfo(eas()) << "Clearing account with ID:" << accountId;
    // The key goes first: under one that still holds, the server would never send again what has gone here.
    // Rows without a key tell the next sync that this was interrupted.
    if (!setFolderSyncKey(accountId, ProtocolUtils::InitialSyncKey))
        return false;
    if (!StoragesFactory::cleanUpAccounts({ accountId })) {
        qCWarning(eas()) << "Failed to clean up storages for account ID:" << accountId;
        return false;
    }
    if (!remove(accountId) || !setFolderSyncKey(accountId, ProtocolUtils::InitialSyncKey))
        return false;
    EasAccount *account = RequestManager::instance()->account(accountId);
    if (!account) {
        qCCritical(eas()) << "Account with ID: " << accountId << " does not exist!";
        return false;
    }
    account->setFirstSyncCompleted(false);
    return true;
}

bool AccountRows::removeDeleted(const QList<EasAccountId> &accountIds) const
{
    if (!StoragesFactory::cleanUpDeletedAccounts(accountIds)) {
        qCWarning(eas()) << "failed to clean up storages";
        return false;
    }
    for (const EasAccountId id : accountIds)
        remove(id);
    return true;
}
