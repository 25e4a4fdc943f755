// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailitembatch.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "easitems/easemailitem.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "storages/mail/mailmessageadder.h"
#include "storages/mail/mailrecognition.h"
#include "storages/mail/mailstorecontext.h"

#include <qmailmessage.h>
#include <qmailmessagekey.h>

#include <map>

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

} // namespace

MailItemBatch::MailItemBatch(const MailStoreContext &context)
    : mContext(context)
    , mChanges(context)
{
}

bool MailItemBatch::updateEmails(
    QList<EasEmailItem> &added, QList<EasEmailItem> &changed, const QStringList &deleted)
{
    if (!takeLostItems(changed, added) || !setFolders(added) || !setFolders(changed)
        || !addEmailItems(added)) {
        qCCritical(eas()) << "failed to add email items";
        return false;
    }
    if (applyToStored(added, changed, deleted))
        return true;
    rollBackAddedEmailItems(added);
    return false;
}

bool MailItemBatch::setFolders(QList<EasEmailItem> &items) const
{
    if (items.isEmpty())
        return true;
    const auto folders = EasDatabase::instance()->serverToLocalFolderIds(mContext.accountId());
    if (!folders)
        return false;
    for (EasEmailItem &item : items)
        item.setLocalCollectionId(folders->value(item.collectionId()).toULongLong());
    return true;
}

bool MailItemBatch::applyToStored(
    const QList<EasEmailItem> &added, const QList<EasEmailItem> &changed, const QStringList &deleted)
{
    QStringList known = deleted;
    for (const EasEmailItem &item : changed)
        known.append(item.serverId());
    const auto rows = EasDatabase::instance()->serverToLocalEmailIds(mContext.accountId(), known);
    if (!rows)
        return false;
    QMap<QString, QString> localIds = *rows;
    // The same reply may change or remove what it has just added.
    for (const EasEmailItem &item : added) {
        if (!item.localId().isEmpty())
            localIds.insert(item.serverId(), item.localId());
    }
    if (!updateEmailItems(changed, localIds)) {
        qCCritical(eas()) << "failed to update email items";
        return false;
    }
    if (!deleteEmailItems(deleted, localIds)) {
        qCCritical(eas()) << "failed to remove email items";
        return false;
    }
    return true;
}

bool MailItemBatch::addEmailItems(QList<EasEmailItem> &items)
{
    mAdopted.clear();
    if (items.isEmpty())
        return true;
    const std::optional<MailRecognition> recognition = MailRecognition::of(mContext, items);
    if (!recognition)
        return false;
    const MailMessageAdder adder(mContext);
    MailMessageAdder::Messages messages;
    QSet<QString> taken;
    QList<EasEmailItem> kept;
    QList<int> keptOfMessages;
    for (const EasEmailItem &item : qAsConst(items)) {
        const QString uid = MailMessageWriter::serverUid(item);
        if (!uid.isEmpty() && taken.contains(uid))
            continue;
        taken.insert(uid);
        kept.append(item);
        kept.last().setLocalId(QString());
        if (recognition->finding(item) == MailRecognition::RemovedHere) {
            qCInfo(eas()) << "not stored, the user has deleted it:" << uid;
            continue;
        }
        std::unique_ptr<QMailMessage> message = adder.messageFor(item, *recognition);
        if (!message)
            return false;
        message->setStatus(QMailMessage::New, true);
        if (message->id().isValid())
            mAdopted.insert(message->id());
        messages.push_back(std::move(message));
        keptOfMessages.append(kept.size() - 1);
    }
    if (!adder.store(messages))
        return false;
    for (int i = 0; i < keptOfMessages.size(); ++i)
        kept[keptOfMessages.at(i)].setLocalId(idText(messages[size_t(i)]->id()));
    items = kept;
    return true;
}

bool MailItemBatch::takeLostItems(QList<EasEmailItem> &changed, QList<EasEmailItem> &added) const
{
    QList<EasEmailItem> repeated;
    for (const EasEmailItem &item : qAsConst(changed)) {
        if (item.changedFields().contains(Wbxml::AirSync::Add))
            repeated.append(item);
    }
    if (repeated.isEmpty())
        return true;
    const std::optional<MailRecognition> recognition = MailRecognition::of(mContext, repeated);
    if (!recognition)
        return false;
    QStringList lost;
    for (const EasEmailItem &item : qAsConst(repeated)) {
        if (recognition->finding(item) == MailRecognition::Lost)
            lost.append(item.serverId());
    }
    if (lost.isEmpty())
        return true;
    qCInfo(eas()) << "messages that the store has lost come again:" << lost.size();
    for (int i = 0; i < changed.size();) {
        if (lost.contains(changed.at(i).serverId()))
            added.append(changed.takeAt(i));
        else
            ++i;
    }
    return EasDatabase::instance()->deleteEmailItems(mContext.accountId(), lost);
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
    QList<QMailMessage *> pointers;
    for (auto &entry : messages)
        pointers.append(&entry.second);
    if (pointers.isEmpty() || mContext.store->updateMessages(pointers))
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
    QMap<QString, int> left;
    for (const QString &localId : serverToLocal)
        ++left[localId];
    QMailMessageIdList ids;
    for (const QString &serverId : serverIds) {
        const auto found = serverToLocal.constFind(serverId);
        if (found == serverToLocal.constEnd()) {
            qCWarning(eas()) << "local id is not found for a server id" << serverId;
            continue;
        }
        const QMailMessageId id = messageId(*found);
        if (id.isValid() && --left[*found] == 0)
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

bool MailItemBatch::successfullyUpdatedEmails(const QList<EasEmailItem> &items)
{
    bool succeeded = true;
    for (const EasEmailItem &item : items) {
        const QMailMessageId id = messageId(item.localId());
        if (!id.isValid())
            continue;
        QMailMessageMetaData message = mContext.store->messageMetaData(id);
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
