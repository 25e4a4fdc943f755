// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/maillocalchanges.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "configurations/emailaccountconfiguration.h"
#include "easitems/easemailitem.h"
#include "storages/mail/mailmessagereader.h"
#include "storages/mail/mailstorecontext.h"

#include <qmailmessagekey.h>
#include <qmailmessageremovalrecord.h>

#include <QDateTime>
#include <QMap>
#include <QSharedPointer>

namespace {

QMailFolderId folderIdFromText(const QString &text)
{
    return QMailFolderId(text.toULongLong());
}

} // namespace

MailLocalChanges::MailLocalChanges(const MailStoreContext &context)
    : mContext(context)
{
}

QList<EasEmailItem> MailLocalChanges::addedEmails(const QString &localFolderId) const
{
    const QSharedPointer<EmailAccountConfiguration> configuration = mContext.account
        ? mContext.account->emailConfiguration()
        : QSharedPointer<EmailAccountConfiguration>();
    const QDateTime since = QDateTime::fromMSecsSinceEpoch(configuration ? configuration->syncPastTime() : 0);
    return items(QMailMessageKey::timeStamp(since, QMailDataComparator::GreaterThan)
            & QMailMessageKey::parentAccountId(mContext.mailAccountId)
            & QMailMessageKey::parentFolderId(folderIdFromText(localFolderId)),
        false);
}

QList<EasEmailItem> MailLocalChanges::updatedEmails(const QString &localFolderId) const
{
    const QMailMessageKey place = QMailMessageKey::parentFolderId(folderIdFromText(localFolderId))
        & QMailMessageKey::parentAccountId(mContext.mailAccountId);
    const auto includes = QMailDataComparator::Includes;
    const auto excludes = QMailDataComparator::Excludes;
    const QMailMessageKey readHere = QMailMessageKey::status(QMailMessage::Read, includes)
        & QMailMessageKey::status(QMailMessage::ReadElsewhere, excludes) & place;
    const QMailMessageKey unreadHere = QMailMessageKey::status(QMailMessage::Read, excludes)
        & QMailMessageKey::status(QMailMessage::ReadElsewhere, includes) & place;
    return items(readHere | unreadHere, true);
}

QList<EasEmailItem> MailLocalChanges::movedEmails() const
{
    const QMailMessageKey key = QMailMessageKey::parentAccountId(mContext.mailAccountId)
        & QMailMessageKey::previousParentFolderId(QMailFolderId(), QMailDataComparator::NotEqual);
    QList<EasEmailItem> moved;
    const QList<EasEmailItem> candidates = items(key, false);
    if (candidates.isEmpty())
        return moved;
    const QMap<QString, QString> localToServer =
        EasDatabase::instance()->localToServerEmailIds(mContext.accountId());
    for (EasEmailItem item : candidates) {
        if (item.serverId().isEmpty() || item.sourceFolderId().isEmpty()
            || item.destinationFolderId().isEmpty())
            qCWarning(eas()) << "failed to create a valid item from message with id" << item.localId();
        else if (!settleMove(item, localToServer.value(item.localId())))
            moved.append(item);
    }
    return moved;
}

bool MailLocalChanges::settleMove(EasEmailItem &item, const QString &mappedServerId) const
{
    if (mappedServerId.isEmpty() || mappedServerId == item.serverId())
        return false;
    EasDatabase *database = EasDatabase::instance();
    const Lookup<QString> reached =
        database->collectionServerIdFromEmailItemId(mContext.accountId(), mappedServerId);
    if (reached && (reached->isEmpty() || *reached == item.sourceFolderId()))
        return false;
    const Lookup<EasFolderItem> folder = reached
        ? database->folderItemByServerId(mContext.accountId(), *reached)
        : Lookup<EasFolderItem>::unread();
    if (!folder) {
        qCWarning(eas()) << "the interrupted move waits, its folder could not be read:" << item.localId();
        return true;
    }
    const bool isThere = *reached == item.destinationFolderId();
    QMailMessage message = mContext.store->message(QMailMessageId(item.localId().toULongLong()));
    message.setServerUid(mappedServerId);
    // The user may have moved it on since; the way from there is still to be told.
    message.setPreviousParentFolderId(isThere ? QMailFolderId() : folderIdFromText(folder->localId()));
    if (!mContext.store->updateMessage(&message)) {
        qCWarning(eas()) << "failed to update message with server id" << mappedServerId;
        return false;
    }
    qCInfo(eas()) << "finished the interrupted move of message" << item.localId();
    item.setServerId(mappedServerId);
    item.setSourceFolderId(*reached);
    return isThere;
}

QStringList MailLocalChanges::deletedEmails(const QString &localFolderId) const
{
    QStringList serverIds;
    // Those of all folders: what was moved here before it was removed is still in its old one on the server.
    const QMailMessageRemovalRecordList records =
        mContext.store->messageRemovalRecords(mContext.mailAccountId);
    if (records.isEmpty())
        return serverIds;
    QStringList removed;
    for (const QMailMessageRemovalRecord &record : records) {
        if (record.serverUid().isEmpty())
            qCWarning(eas()) << "serverUid is empty in Removal Record";
        else
            removed.append(record.serverUid());
    }
    removed.removeDuplicates();
    EasDatabase *database = EasDatabase::instance();
    const QMap<QString, QString> folders = database->serverToLocalFolderIds(mContext.accountId());
    const QMap<QString, QString> collections = database->emailCollectionIds(mContext.accountId(), removed);
    for (const QString &serverId : qAsConst(removed)) {
        const QString collection = collections.value(serverId);
        if (!collection.isEmpty() && folders.value(collection) == localFolderId)
            serverIds.append(serverId);
    }
    return serverIds;
}

QList<EasEmailItem> MailLocalChanges::items(const QMailMessageKey &key, bool markRead) const
{
    QList<EasEmailItem> list;
    const QMailMessageIdList ids = mContext.store->queryMessages(key);
    if (ids.isEmpty())
        return list;
    const QMap<QString, QString> folders =
        EasDatabase::instance()->localToServerFolderIds(mContext.accountId());
    const MailMessageReader reader(mContext);
    for (const QMailMessageId &id : ids)
        list.append(reader.mailItemFromEmailMessageId(id, folders, markRead));
    return list;
}
