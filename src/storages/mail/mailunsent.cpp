// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailunsent.h"

#include "application/base/logging.h"
#include "storages/mail/mailstorecontext.h"

#include <qmailmessage.h>

#include <vector>

QMailMessageKey MailUnsent::key(const QMailAccountId &account)
{
    return QMailMessageKey::parentAccountId(account) & QMailMessageKey::serverUid(QString())
        & QMailMessageKey::status(QMailMessage::Outgoing, QMailDataComparator::Includes);
}

bool MailUnsent::rescue(QMailStore &store, const QMailAccountId &account, const QMailMessageKey &folders)
{
    const QMailMessageIdList ids = store.queryMessages(key(account) & folders);
    if (ids.isEmpty())
        return true;
    std::vector<QMailMessageMetaData> messages;
    for (const QMailMessageId &id : ids) {
        messages.push_back(store.messageMetaData(id));
        messages.back().setParentFolderId(MailStoreContext::localStorage());
    }
    QList<QMailMessageMetaData *> pointers;
    for (QMailMessageMetaData &message : messages)
        pointers.append(&message);
    if (!store.updateMessages(pointers)) {
        qCCritical(eas()) << "failed to keep unsent messages of removed folders:" << pointers.size();
        return false;
    }
    qCInfo(eas()) << "kept unsent messages of removed folders:" << pointers.size();
    return true;
}
