// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailaccountfolders.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "storages/mail/mailunsent.h"

#include <qmailfolderkey.h>
#include <qmailmessage.h>
#include <qmailmessagekey.h>
#include <qmailstore.h>

namespace {

bool removeAll(QMailStore &store, quint64 accountId)
{
    QMailAccountId id = store.account(QMailAccountId(accountId)).id();
    if (!id.isValid()) {
        const Lookup<quint64> older = EasDatabase::instance()->emailAccountId(accountId);
        if (!older)
            return false;
        id = QMailAccountId(*older);
    }
    // What searches have found lies in no folder of the account.
    const QMailMessageKey results = QMailMessageKey::parentAccountId(id)
        & QMailMessageKey::status(QMailMessage::Temporary, QMailDataComparator::Includes);
    // Removal records would be taken for those of other messages, which get their identifiers anew.
    if (!id.isValid()
        || (MailUnsent::rescue(store, id, QMailMessageKey())
            && store.removeMessages(results, QMailStore::NoRemovalRecord)
            && store.removeFolders(QMailFolderKey::parentAccountId(id), QMailStore::NoRemovalRecord)
            && store.purgeMessageRemovalRecords(id)))
        return true;
    qCCritical(eas()) << "failed to remove folders in account" << accountId;
    return false;
}

} // namespace

bool MailAccountFolders::remove(QMailStore &store, const QList<quint64> &accountIds)
{
    bool succeeded = true;
    for (const quint64 accountId : accountIds)
        succeeded = removeAll(store, accountId) && succeeded;
    return succeeded;
}
