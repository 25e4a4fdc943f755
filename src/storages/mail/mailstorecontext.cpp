// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailstorecontext.h"

#include "application/account/easaccount.h"

EasAccountId MailStoreContext::accountId() const
{
    return account ? account->id() : 0;
}
