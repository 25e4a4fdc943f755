// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/lookup.h"
#include "common/easaccountid.h"

#include <QList>
#include <QString>

class PreparedStatements;

/**
 * The row of each account, the row of its hierarchy with the key of FolderSync, and what concerns all rows of
 * an account. Both rows are made at the first use.
 *
 * Belongs to EasDatabase, whose connection outlives it. Main thread only.
 */
class AccountRows
{
public:
    explicit AccountRows(PreparedStatements &statements);

    /** Makes the rows of a new account; a failure is logged and made good by the next use. */
    void initialize(EasAccountId accountId) const;

    /** 0 where the account has no counterpart in the mail store yet. */
    Lookup<quint64> emailAccountId(EasAccountId accountId) const;
    void setEmailAccountId(EasAccountId accountId, quint64 emailAccountId) const;
    /** "0" where there is none yet. */
    Lookup<QString> folderSyncKey(EasAccountId accountId) const;
    bool setFolderSyncKey(EasAccountId accountId, const QString &syncKey) const;

    /** Deletes the rows of the account in all tables but that of the attachments. */
    bool remove(EasAccountId accountId) const;
    /** Accounts that have a row and are not among these. */
    Lookup<QList<EasAccountId>> othersThan(const QList<quint64> &accountIds) const;

    /** Empties the account's stores and rows, so that its next sync starts from nothing. */
    bool clear(EasAccountId accountId) const;
    /** Empties the stores of accounts that are gone, and deletes their rows. */
    bool removeDeleted(const QList<EasAccountId> &accountIds) const;

private:
    bool initializeAccountsTable(EasAccountId accountId, quint64 emailAccountId) const;
    bool initializeCollectionsTable(EasAccountId accountId) const;

    PreparedStatements &mStatements;
};
