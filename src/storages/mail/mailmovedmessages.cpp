// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailmovedmessages.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "easitems/easemailitem.h"
#include "storages/mail/mailstorecontext.h"

#include <qmailmessage.h>

#include <vector>

MailMovedMessages::MailMovedMessages(const MailStoreContext &context)
    : mContext(context)
    , mChanges(context)
{
}

bool MailMovedMessages::update(
    const QList<EasEmailItem> &items, const QMap<QString, QString> &serverToLocal) const
{
    std::vector<QMailMessage> messages;
    for (const EasEmailItem &item : items) {
        const QMailMessageId id = messageOf(item, serverToLocal);
        QMailMessage message = id.isValid() ? mContext.store->message(id) : QMailMessage();
        if (!message.id().isValid()) {
            qCWarning(eas()) << "messageId" << id.toULongLong() << "is invalid";
            continue;
        }
        if (!finishMove(message, item))
            return false;
        messages.push_back(message);
    }
    QList<QMailMessage *> pointers;
    for (QMailMessage &message : messages)
        pointers.append(&message);
    if (pointers.isEmpty() || mContext.store->updateMessages(pointers))
        return true;
    qCWarning(eas()) << "failed to update messages";
    return false;
}

QMailMessageId MailMovedMessages::messageOf(
    const EasEmailItem &item, const QMap<QString, QString> &serverToLocal)
{
    // The mapping may know the message by the old id or, if it was written first, by the new one.
    const QStringList serverIds { item.previousServerId(), item.serverId() };
    for (const QString &serverId : serverIds) {
        const QMailMessageId id(serverToLocal.value(serverId).toULongLong());
        if (id.isValid())
            return id;
    }
    return QMailMessageId();
}

bool MailMovedMessages::finishMove(QMailMessage &message, const EasEmailItem &item) const
{
    const QMailFolderId before = message.parentFolderId();
    mChanges.setChangesToEmailMessage(message, item);
    message.setParentFolderId(before);
    // Moved on while the server was asked: the way from there to where it is now is still to be told.
    const auto destination =
        EasDatabase::instance()->folderItemByServerId(mContext.accountId(), item.collectionId());
    if (!destination)
        return false;
    const QMailFolderId reached(destination->localId().toULongLong());
    const bool movedOn = reached.isValid() && reached != message.parentFolderId()
        && message.previousParentFolderId().isValid();
    message.setPreviousParentFolderId(movedOn ? reached : QMailFolderId());
    return true;
}
