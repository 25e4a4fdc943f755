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

    /** The store's own folder, which belongs to no account: no server knows what lies there. By its number,
     * because the class that names it differs between revisions of the store. */
    static QMailFolderId localStorage() { return QMailFolderId(quint64(1)); }

    /** 0 without an account. */
    EasAccountId accountId() const;
};
