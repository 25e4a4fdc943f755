// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailmessageadder.h"

#include "application/base/logging.h"
#include "easitems/easemailitem.h"
#include "storages/mail/mailrecognition.h"
#include "storages/mail/mailstorecontext.h"

#include <qmailmessage.h>
#include <qmailmessagekey.h>

namespace {

bool hasStatus(const QMailMessageMetaData &message, quint64 mask)
{
    return (message.status() & mask) != 0;
}

} // namespace

MailMessageAdder::MailMessageAdder(const MailStoreContext &context)
    : mContext(context)
    , mWriter(context)
{
}

std::unique_ptr<QMailMessage> MailMessageAdder::messageFor(
    const EasEmailItem &item, const MailRecognition &recognition) const
{
    if (!hasFolder(item))
        return nullptr;
    std::unique_ptr<QMailMessage> message = mWriter.mailMessageFromEmailItem(item);
    if (!message) {
        qCCritical(eas()) << "Can't create QMailMessage from EasEmailItem";
        return nullptr;
    }
    const QMailMessageMetaData present = recognition.stored(MailMessageWriter::serverUid(item));
    if (message->id().isValid() || !present.id().isValid())
        return message;
    if (recognition.finding(item) == MailRecognition::TakenByAnother) {
        qCCritical(eas()) << "server id" << item.serverId() << "of collection" << item.collectionId()
                          << "is that of another message already, with id" << present.id().toULongLong();
        return nullptr;
    }
    adopt(*message, present);
    return message;
}

bool MailMessageAdder::hasFolder(const EasEmailItem &item) const
{
    const QMailFolderId folder(item.localCollectionId());
    if (folder.isValid() && mWriter.folder(folder).id().isValid())
        return true;
    qCCritical(eas()) << "no local folder for message with server id" << item.serverId() << "of collection"
                      << item.collectionId();
    return false;
}

void MailMessageAdder::adopt(QMailMessage &fresh, const QMailMessageMetaData &stored)
{
    fresh.setId(stored.id());
    fresh.setParentThreadId(stored.parentThreadId());
    fresh.setContentScheme(stored.contentScheme());
    fresh.setContentIdentifier(stored.contentIdentifier());
    if (hasStatus(stored, QMailMessage::Temporary))
        return;
    if (stored.previousParentFolderId() == fresh.parentFolderId()) {
        fresh.setPreviousParentFolderId(stored.previousParentFolderId());
        fresh.setParentFolderId(stored.parentFolderId());
    }
    if (hasStatus(stored, QMailMessage::Read) != hasStatus(stored, QMailMessage::ReadElsewhere))
        fresh.setStatus(QMailMessage::Read, hasStatus(stored, QMailMessage::Read));
}

bool MailMessageAdder::store(const Messages &messages) const
{
    QList<QMailMessage *> added;
    QList<QMailMessage *> adopted;
    for (const auto &message : messages)
        (message->id().isValid() ? adopted : added).append(message.get());
    if (!added.isEmpty() && !mContext.store->addMessages(added)) {
        qCCritical(eas()) << "can't add messages to QMF DB";
        return false;
    }
    if (adopted.isEmpty() || mContext.store->updateMessages(adopted))
        return true;
    qCCritical(eas()) << "can't update messages in QMF DB";
    QMailMessageIdList ids;
    for (const QMailMessage *message : qAsConst(added))
        ids.append(message->id());
    if (!ids.isEmpty()
        && !mContext.store->removeMessages(QMailMessageKey::id(ids), QMailStore::NoRemovalRecord))
        qCCritical(eas()) << "failed to remove added messages again:" << ids.size();
    return false;
}
