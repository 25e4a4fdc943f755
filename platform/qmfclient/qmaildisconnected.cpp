// SPDX-License-Identifier: LGPL-2.1-or-later
#include <qmaildisconnected.h>

#include <qmailstore.h>

#include <QVector>

namespace {

struct FolderFlag
{
    QMailFolder::StandardFolder folder;
    quint64 mask;
};

QList<QMailMessageMetaData *> pointersTo(QVector<QMailMessageMetaData> &messages)
{
    QList<QMailMessageMetaData *> pointers;
    for (QMailMessageMetaData &message : messages)
        pointers.append(&message);
    return pointers;
}

/** The status says what kind of folder a message is in, for those kinds that have a bit. */
void fitStatus(QMailMessageMetaData &message, const QMailFolderId &folderId)
{
    const FolderFlag flags[] = {
        { QMailFolder::OutboxFolder, QMailMessage::Outbox },
        { QMailFolder::DraftsFolder, QMailMessage::Draft },
        { QMailFolder::SentFolder, QMailMessage::Sent },
        { QMailFolder::TrashFolder, QMailMessage::Trash },
        { QMailFolder::JunkFolder, QMailMessage::Junk },
    };
    const QMailAccount account(message.parentAccountId());
    const auto &standardFolders = account.standardFolders();
    if (!standardFolders.values().contains(folderId))
        return;
    for (const FolderFlag &flag : flags)
        message.setStatus(flag.mask, standardFolders.value(flag.folder) == folderId);
}

} // namespace

void QMailDisconnected::moveToStandardFolder(
    const QMailMessageIdList &ids, QMailFolder::StandardFolder standardFolder)
{
    QVector<QMailMessageMetaData> messages;
    for (const QMailMessageId &id : ids) {
        QMailMessageMetaData message(id);
        const QMailFolderId folder = QMailAccount(message.parentAccountId()).standardFolder(standardFolder);
        if (!message.id().isValid() || !folder.isValid())
            continue;
        moveToFolder(&message, folder);
        messages.append(message);
    }
    if (!messages.isEmpty())
        QMailStore::instance()->updateMessages(pointersTo(messages));
}

void QMailDisconnected::moveToFolder(const QMailMessageIdList &ids, const QMailFolderId &folderId)
{
    QVector<QMailMessageMetaData> messages;
    for (const QMailMessageId &id : ids) {
        QMailMessageMetaData message(id);
        if (!message.id().isValid())
            continue;
        moveToFolder(&message, folderId);
        messages.append(message);
    }
    if (!messages.isEmpty())
        QMailStore::instance()->updateMessages(pointersTo(messages));
}

void QMailDisconnected::moveToFolder(QMailMessageMetaData *message, const QMailFolderId &folderId)
{
    const QMailFolderId present = message->parentFolderId();
    if (!folderId.isValid() || present == folderId)
        return;
    const bool known = (message->status() & QMailMessage::LocalOnly) == 0 && !message->serverUid().isEmpty();
    if (known && !message->previousParentFolderId().isValid())
        message->setPreviousParentFolderId(present);
    else if (message->previousParentFolderId() == folderId)
        clearPreviousFolder(message); // Back where the server has it.
    message->setRestoreFolderId(present);
    message->setParentFolderId(folderId);
    fitStatus(*message, folderId);
}

void QMailDisconnected::flagMessage(
    const QMailMessageId &id, quint64 setMask, quint64 unsetMask, const QString &description)
{
    flagMessages({ id }, setMask, unsetMask, description);
}

void QMailDisconnected::flagMessages(
    const QMailMessageIdList &ids, quint64 setMask, quint64 unsetMask, const QString &)
{
    const QMailMessageKey key = QMailMessageKey::id(ids);
    if (setMask != 0)
        QMailStore::instance()->updateMessagesMetaData(key, setMask, true);
    if (unsetMask != 0)
        QMailStore::instance()->updateMessagesMetaData(key, unsetMask, false);
}

void QMailDisconnected::clearPreviousFolder(QMailMessageMetaData *message)
{
    message->setPreviousParentFolderId(QMailFolderId());
}

bool QMailDisconnected::updatesOutstanding(const QMailAccountId &mailAccountId)
{
    QMailStore *store = QMailStore::instance();
    const QMailMessageKey moved = QMailMessageKey::parentAccountId(mailAccountId)
        & QMailMessageKey::previousParentFolderId(QMailFolderId(), QMailDataComparator::NotEqual);
    return store->countMessages(moved) > 0 || !store->messageRemovalRecords(mailAccountId).isEmpty();
}
