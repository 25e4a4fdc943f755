// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailitembatch.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "easitems/easemailitem.h"
#include "storages/mail/mailstorecontext.h"

#include <qmailmessage.h>
#include <qmailmessagekey.h>

namespace {

QMailMessageId messageId(const QString &text)
{
    return QMailMessageId(text.toULongLong());
}

QString idText(const QMailMessageId &id)
{
    return QString::number(id.toULongLong());
}

QString texts(const QMailMessageIdList &ids)
{
    QStringList list;
    for (const QMailMessageId &id : ids)
        list.append(idText(id));
    return list.join(QStringLiteral(", "));
}

bool hasStatus(const QMailMessage &message, quint64 mask)
{
    return (message.status() & mask) != 0;
}

} // namespace

MailItemBatch::MailItemBatch(const MailStoreContext &context)
    : mContext(context)
    , mWriter(context)
    , mChanges(context)
{
}

bool MailItemBatch::addEmailItems(QList<EasEmailItem> &items)
{
    mAdopted.clear();
    const QHash<QString, QMailMessageId> stored = storedMessages(items);
    const QSet<QString> deleted = deletedByUser();
    Messages messages;
    QHash<QString, QMailMessage *> byUid;
    QList<EasEmailItem> kept;
    for (const EasEmailItem &item : qAsConst(items)) {
        const QString uid = MailMessageWriter::serverUid(item);
        if (!uid.isEmpty() && byUid.contains(uid))
            continue;
        kept.append(item);
        const bool isStray = deleted.contains(uid) && !isMapped(uid);
        if (isStray && EasDatabase::instance()->lookupFailed())
            return false;
        if (isStray) {
            qCInfo(eas()) << "not stored, the user has deleted it:" << uid;
            continue;
        }
        std::unique_ptr<QMailMessage> message;
        if (!prepareItem(item, stored.value(uid), &message))
            return false;
        message->setStatus(QMailMessage::New, true);
        byUid.insert(uid.isEmpty() ? QString::number(kept.size()) + QLatin1Char('\n') : uid, message.get());
        messages.push_back(std::move(message));
    }
    for (const auto &message : messages) {
        if (message->id().isValid())
            mAdopted.insert(message->id());
    }
    if (!store(messages))
        return false;
    for (int i = 0; i < kept.size(); ++i) {
        const QString uid = MailMessageWriter::serverUid(kept.at(i));
        const QMailMessage *message =
            byUid.value(uid.isEmpty() ? QString::number(i + 1) + QLatin1Char('\n') : uid);
        kept[i].setLocalId(message ? idText(message->id()) : QString());
    }
    items = kept;
    return true;
}

bool MailItemBatch::prepareItem(
    const EasEmailItem &item, const QMailMessageId &stored, std::unique_ptr<QMailMessage> *message) const
{
    if (!hasFolder(item))
        return false;
    *message = mWriter.mailMessageFromEmailItem(item);
    if (!*message) {
        qCCritical(eas()) << "Can't create QMailMessage from EasEmailItem";
        return false;
    }
    if ((*message)->id().isValid() || !stored.isValid())
        return true;
    const QMailMessage present = mContext.store->message(stored);
    if (!canAdopt(present, item)) {
        qCCritical(eas()) << "server id" << item.serverId() << "of collection" << item.collectionId()
                          << "is that of another message already, with id" << stored.toULongLong();
        return false;
    }
    adopt(**message, present);
    return true;
}

bool MailItemBatch::hasFolder(const EasEmailItem &item) const
{
    const QMailFolderId folder(item.localCollectionId());
    if (folder.isValid() && mContext.store->folder(folder).id().isValid())
        return true;
    qCCritical(eas()) << "no local folder for message with server id" << item.serverId() << "of collection"
                      << item.collectionId();
    return false;
}

bool MailItemBatch::isMapped(const QString &serverUid) const
{
    return !EasDatabase::instance()
                ->collectionServerIdFromEmailItemId(mContext.accountId(), serverUid)
                .valueOr({})
                .isEmpty();
}

bool MailItemBatch::canAdopt(const QMailMessage &stored, const EasEmailItem &item) const
{
    const QMailFolderId folder(item.localCollectionId());
    return hasStatus(stored, QMailMessage::Temporary) || stored.parentFolderId() == folder
        || stored.previousParentFolderId() == folder
        || (!isMapped(stored.serverUid()) && !EasDatabase::instance()->lookupFailed());
}

void MailItemBatch::adopt(QMailMessage &fresh, const QMailMessage &stored) const
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

bool MailItemBatch::store(const Messages &messages)
{
    QList<QMailMessage *> added;
    QList<QMailMessage *> adopted;
    for (const auto &message : messages)
        (message->id().isValid() ? adopted : added).append(message.get());
    if (!added.isEmpty() && !mContext.store->addMessages(added)) {
        qCCritical(eas()) << "can't add messages to QMF DB";
        return false;
    }
    if (!adopted.isEmpty() && !mContext.store->updateMessages(adopted)) {
        qCCritical(eas()) << "can't update messages in QMF DB";
        QMailMessageIdList ids;
        for (const QMailMessage *message : qAsConst(added))
            ids.append(message->id());
        deleteEmailItems(ids);
        return false;
    }
    return true;
}

QHash<QString, QMailMessageId> MailItemBatch::storedMessages(const QList<EasEmailItem> &items) const
{
    QStringList uids;
    for (const EasEmailItem &item : items)
        uids.append(MailMessageWriter::serverUid(item));
    uids.removeAll(QString());
    QHash<QString, QMailMessageId> stored;
    if (uids.isEmpty())
        return stored;
    const QMailMessageIdList ids =
        mContext.store->queryMessages(QMailMessageKey::parentAccountId(mContext.mailAccountId)
            & QMailMessageKey::serverUid(uids, QMailDataComparator::Includes));
    for (const QMailMessageId &id : ids)
        stored.insert(mContext.store->messageMetaData(id).serverUid(), id);
    return stored;
}

QSet<QString> MailItemBatch::deletedByUser() const
{
    // Of all folders: what was moved before it was removed has its record in the folder that it was moved to.
    QSet<QString> uids;
    const QMailMessageRemovalRecordList records =
        mContext.store->messageRemovalRecords(mContext.mailAccountId);
    for (const QMailMessageRemovalRecord &record : records)
        uids.insert(record.serverUid());
    uids.remove(QString());
    return uids;
}

bool MailItemBatch::updateEmailItems(
    const QList<EasEmailItem> &items, const QMap<QString, QString> &serverToLocal)
{
    std::map<QMailMessageId, QMailMessage> messages;
    for (const EasEmailItem &item : items) {
        const QString localId =
            item.localId().isEmpty() ? serverToLocal.value(item.serverId()) : item.localId();
        const QMailMessageId id = messageId(localId);
        // Two changes of one message must not undo each other, so both go into the same object.
        auto found = messages.find(id);
        if (found == messages.end()) {
            const QMailMessage message = id.isValid() ? mContext.store->message(id) : QMailMessage();
            if (!message.id().isValid()) {
                qCWarning(eas()) << "messageId" << id.toULongLong() << " and longID" << item.longId()
                                 << "are invalid";
                if (item.localStorageAccountId() != 0 && item.id() != 0) {
                    EasDatabase::instance()->deleteEmailItems(
                        mContext.accountId(), { MailMessageWriter::serverUid(item) });
                }
                continue;
            }
            found = messages.emplace(id, message).first;
        }
        mChanges.setChangesToEmailMessage(found->second, item);
    }
    return update(messages);
}

bool MailItemBatch::update(const std::map<QMailMessageId, QMailMessage> &messages) const
{
    if (messages.empty())
        return true;
    std::vector<QMailMessage> copies;
    copies.reserve(messages.size());
    QList<QMailMessage *> pointers;
    for (const auto &entry : messages) {
        copies.push_back(entry.second);
        pointers.append(&copies.back());
    }
    if (mContext.store->updateMessages(pointers))
        return true;
    qCWarning(eas()) << "failed to update messages";
    return false;
}

bool MailItemBatch::deleteEmailItems(const QMailMessageIdList &ids)
{
    if (ids.isEmpty())
        return true;
    return mContext.store->removeMessages(QMailMessageKey::id(ids), QMailStore::NoRemovalRecord);
}

bool MailItemBatch::deleteEmailItems(
    const QStringList &serverIds, const QMap<QString, QString> &serverToLocal)
{
    // A message that an interrupted move has left with two server ids goes when the last of them goes.
    QMap<QString, int> names;
    for (const QString &localId : serverToLocal)
        ++names[localId];
    QMailMessageIdList ids;
    for (const QString &serverId : serverIds) {
        const auto found = serverToLocal.constFind(serverId);
        if (found == serverToLocal.constEnd()) {
            qCWarning(eas()) << "local id is not found for a server id" << serverId;
            continue;
        }
        const QMailMessageId id = messageId(*found);
        if (id.isValid() && --names[*found] == 0)
            ids.append(id);
    }
    return deleteEmailItems(ids);
}

void MailItemBatch::rollBackAddedEmailItems(QList<EasEmailItem> &items)
{
    QMailMessageIdList ids;
    for (const EasEmailItem &item : qAsConst(items)) {
        const QMailMessageId id = messageId(item.localId());
        if (!id.isValid())
            qCWarning(eas()) << "local id is not found for a server id" << item.serverId();
        else if (!mAdopted.contains(id))
            ids.append(id);
    }
    if (!deleteEmailItems(ids))
        qCCritical(eas()) << "failed to remove email messages:" << texts(ids);
}

bool MailItemBatch::updateMovedEmails(
    const QList<EasEmailItem> &items, const QMap<QString, QString> &serverToLocal)
{
    std::map<QMailMessageId, QMailMessage> messages;
    for (const EasEmailItem &item : items) {
        const QMailMessageId id = movedMessage(item, serverToLocal);
        QMailMessage message = id.isValid() ? mContext.store->message(id) : QMailMessage();
        if (!message.id().isValid()) {
            qCWarning(eas()) << "messageId" << id.toULongLong() << "is invalid";
            continue;
        }
        if (!finishMove(message, item))
            return false;
        messages.emplace(id, message);
    }
    return update(messages);
}

QMailMessageId MailItemBatch::movedMessage(
    const EasEmailItem &item, const QMap<QString, QString> &serverToLocal) const
{
    // The mapping may know the message by the old id or, if it was written first, by the new one.
    const QStringList serverIds { item.previousServerId(), item.serverId() };
    for (const QString &serverId : serverIds) {
        const QMailMessageId id = messageId(serverToLocal.value(serverId));
        if (id.isValid())
            return id;
    }
    return QMailMessageId();
}

bool MailItemBatch::finishMove(QMailMessage &message, const EasEmailItem &item) const
{
    const QMailFolderId before = message.parentFolderId();
    mChanges.setChangesToEmailMessage(message, item);
    message.setParentFolderId(before);
    // Moved on while the server was asked: the way from there to where it is now is still to be told.
    const EasFolderItem destination =
        EasDatabase::instance()->folderItemByServerId(mContext.accountId(), item.collectionId());
    if (EasDatabase::instance()->lookupFailed())
        return false;
    const QMailFolderId reached(destination.localId().toULongLong());
    const bool movedOn = reached.isValid() && reached != message.parentFolderId()
        && message.previousParentFolderId().isValid();
    message.setPreviousParentFolderId(movedOn ? reached : QMailFolderId());
    return true;
}

bool MailItemBatch::addSearchResults(QList<EasEmailItem> &items, QList<quint64> &ids)
{
    QStringList uids;
    for (const EasEmailItem &item : qAsConst(items))
        uids.append(MailMessageWriter::serverUid(item));
    uids.removeAll(QString());
    uids.removeDuplicates();
    if (!removeEarlierHits(uids))
        return false;

    const QHash<QString, QMailMessageId> stored = storedMessages(items);
    Messages messages;
    QHash<QString, QMailMessage *> byUid;
    std::vector<const QMailMessage *> hits;
    for (const EasEmailItem &item : qAsConst(items)) {
        const QString uid = MailMessageWriter::serverUid(item);
        QMailMessage *message = uid.isEmpty() ? nullptr : byUid.value(uid);
        if (!message) {
            std::unique_ptr<QMailMessage> made;
            const QMailMessageId known = stored.value(uid);
            if (known.isValid()) // a message that is synchronised anyway
                made = std::make_unique<QMailMessage>(mContext.store->message(known));
            else if (!prepareItem(item, QMailMessageId(), &made))
                return false;
            if (!made->id().isValid())
                made->setStatus(QMailMessage::Temporary, true);
            message = made.get();
            byUid.insert(uid, message);
            messages.push_back(std::move(made));
        }
        hits.push_back(message);
    }
    if (!store(messages))
        return false;
    ids.clear();
    for (size_t i = 0; i < hits.size(); ++i) {
        ids.append(hits[i]->id().toULongLong());
        items[int(i)].setLocalId(idText(hits[i]->id()));
    }
    return true;
}

bool MailItemBatch::removeEarlierHits(const QStringList &serverUids) const
{
    if (serverUids.isEmpty())
        return true;
    const QMailMessageKey key = QMailMessageKey::parentAccountId(mContext.mailAccountId)
        & QMailMessageKey::status(QMailMessage::Temporary, QMailDataComparator::Includes)
        & QMailMessageKey::serverUid(serverUids, QMailDataComparator::Includes);
    if (mContext.store->removeMessages(key, QMailStore::NoRemovalRecord))
        return true;
    qCCritical(eas()) << "failed to remove earlier search results";
    return false;
}

bool MailItemBatch::successfullyUpdatedEmails(const QList<EasEmailItem> &items)
{
    bool succeeded = true;
    for (const EasEmailItem &item : items) {
        const QMailMessageId id = messageId(item.localId());
        if (!id.isValid())
            continue;
        QMailMessage message = mContext.store->message(id);
        if (!message.id().isValid())
            continue;
        message.setStatus(QMailMessage::ReadElsewhere, item.read());
        if (!mContext.store->updateMessage(&message)) {
            qCWarning(eas()) << "failed to update message with server id" << item.serverId();
            succeeded = false;
        }
    }
    return succeeded;
}
