// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "internal/customfieldtable.h"
#include "internal/mailchanges.h"
#include "internal/maildatabase.h"

#include <qmailaccount.h>

/**
 * What the mail store itself keeps of accounts: all of those that were added here, and status, standard
 * folders and the like of those that live in the account store. Writing needs a transaction of the caller's.
 */
class AccountTable
{
public:
    explicit AccountTable(MailDatabase &database);

    /** Honours an id that is set. The object gets its id. */
    bool add(QMailAccount &account, quint64 lowestId, MailChanges &changes);
    bool update(const QMailAccount &account);
    bool remove(quint64 id);
    /** Notes an account of the account store, so that its end is noticed even if it comes while nobody looks.
     */
    bool noteForeign(quint64 id);

    bool load(quint64 id, QMailAccount &account);
    bool isOwn(quint64 id);
    QList<quint64> own();
    QList<quint64> foreign();

private:
    bool saveDetails(const QMailAccount &account);

    MailDatabase &mDatabase;
    CustomFieldTable mFields;
};
