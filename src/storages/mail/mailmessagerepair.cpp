// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailmessagerepair.h"

#include "application/base/logging.h"
#include "storages/mail/mailrecognition.h"
#include "storages/mail/mailstorecontext.h"

#include <qmailmessagekey.h>

namespace MailMessageRepair {

int removeStrays(const MailStoreContext &context)
{
    const QMailMessageIdList strays = MailRecognition::leftBehind(context).value_or(QMailMessageIdList());
    if (strays.isEmpty())
        return 0;
    if (!context.store->removeMessages(QMailMessageKey::id(strays), QMailStore::NoRemovalRecord)) {
        qCWarning(eas()) << "failed to remove messages of an interrupted run:" << strays.size();
        return 0;
    }
    qCInfo(eas()) << "removed messages of an interrupted run:" << strays.size();
    return strays.size();
}

void purgeStaleRemovals(const MailStoreContext &context)
{
    const QStringList stale = MailRecognition::staleRemovals(context).value_or(QStringList());
    // The store takes an empty list for all records of the account.
    if (!stale.isEmpty() && !context.store->purgeMessageRemovalRecords(context.mailAccountId, stale))
        qCWarning(eas()) << "failed to purge removal records of folders that are gone:" << stale.size();
}

} // namespace MailMessageRepair
