// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <qmailstore.h>

class EasAccount;

/**
 * Where a mail storage works: the platform's store, the Exchange account and its twin among the mail
 * accounts.
 *
 * MailStorageImpl owns it; its collaborators look at it by reference and see the mail account's id as soon as
 * that account is there.
 */
struct MailStoreContext
{
    QMailStore *store = nullptr;
    EasAccount *account = nullptr;
    QMailAccountId mailAccountId;

    /** 0 without an account. */
    EasAccountId accountId() const;
};
