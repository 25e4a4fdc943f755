// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/maillocalchanges.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "configurations/emailaccountconfiguration.h"
#include "easitems/easemailitem.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "storages/mail/mailmessagereader.h"
#include "storages/mail/mailpendingmarks.h"
#include "storages/mail/mailrecognition.h"
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

QStringList texts(const QMailMessageIdList &ids)
{
    QStringList texts;
    for (const QMailMessageId &id : ids)
        texts.append(QString::number(id.toULongLong()));
    return texts;
}

} // namespace

MailLocalChanges::MailLocalChanges(const MailStoreContext &context, MailPendingMarks &marks)
    : mContext(context)
    , mMarks(marks)
{
}

Lookup<QList<EasEmailItem>> MailLocalChanges::addedEmails(const QString &localFolderId) const
{
    const QSharedPointer<EmailAccountConfiguration> configuration = mContext.account
        ? mContext.account->emailConfiguration()
        : QSharedPointer<EmailAccountConfiguration>();
    const QDateTime since = QDateTime::fromMSecsSinceEpoch(configuration ? configuration->syncPastTime() : 0);
    const QMailMessageIdList ids =
        mContext.store->queryMessages(QMailMessageKey::timeStamp(since, QMailDataComparator::GreaterThan)
            & QMailMessageKey::parentAccountId(mContext.mailAccountId)
            & QMailMessageKey::parentFolderId(folderIdFromText(localFolderId)));
    QList<EasEmailItem> added;
    if (ids.isEmpty())
        return added;
    const MailMessageReader reader(mContext);
    const auto folders = EasDatabase::instance()->localToServerFolderIds(mContext.accountId());
    if (!folders)
        return Lookup<QList<EasEmailItem>>::unread();
    for (const QMailMessageId &id : ids)
        added.append(reader.mailItemFromEmailMessageId(id, *folders, false));
    return added;
}

Lookup<QList<EasEmailItem>> MailLocalChanges::updatedEmails(const QString &localFolderId) const
{
    QList<EasEmailItem> updated;
    const QMailMessageIdList ids = mMarks.inFolder(folderIdFromText(localFolderId));
    if (ids.isEmpty())
        return updated;
    EasDatabase *database = EasDatabase::instance();
    const auto rows = database->localToServerEmailIds(mContext.accountId(), texts(ids));
    const auto folders = database->localToServerFolderIds(mContext.accountId());
    if (!rows || !folders)
        return Lookup<QList<EasEmailItem>>::unread();
    const MailMessageReader reader(mContext);
    for (const QMailMessageId &id : ids) {
        EasEmailItem item = reader.itemOfMetaData(mContext.store->messageMetaData(id), *folders);
        if (!rows->contains(item.localId()))
            continue;
        item.appendChangedField(Wbxml::Email::Read);
        updated.append(item);
    }
    return updated;
}

Lookup<QList<EasEmailItem>> MailLocalChanges::movedEmails() const
{
    QList<EasEmailItem> moved;
    const QMailMessageIdList ids =
        mContext.store->queryMessages(QMailMessageKey::parentAccountId(mContext.mailAccountId)
            & QMailMessageKey::previousParentFolderId(QMailFolderId(), QMailDataComparator::NotEqual));
    if (ids.isEmpty())
        return moved;
    EasDatabase *database = EasDatabase::instance();
    const auto rows = database->localToServerEmailIds(mContext.accountId(), texts(ids));
    const auto folders = database->localToServerFolderIds(mContext.accountId());
    if (!rows || !folders)
        return Lookup<QList<EasEmailItem>>::unread();
    const MailMessageReader reader(mContext);
    for (const QMailMessageId &id : ids) {
        QMailMessageMetaData message = mContext.store->messageMetaData(id);
        EasEmailItem item = reader.itemOfMetaData(message, *folders);
        if (item.serverId().isEmpty() || item.sourceFolderId().isEmpty()
            || item.destinationFolderId().isEmpty()) {
            qCWarning(eas()) << "failed to create a valid item from message with id" << item.localId();
            continue;
        }
        const Lookup<Settled> settled = settleMove(message, item, rows->value(item.localId()));
        if (!settled)
            return Lookup<QList<EasEmailItem>>::unread();
        if (*settled == Settled::No)
            moved.append(item);
    }
    return moved;
}

Lookup<MailLocalChanges::Settled> MailLocalChanges::settleMove(
    QMailMessageMetaData &message, EasEmailItem &item, const QString &mapped) const
{
    if (mapped.isEmpty() || mapped == item.serverId())
        return Settled::No;
    EasDatabase *database = EasDatabase::instance();
    const Lookup<QString> reached = database->collectionServerIdFromEmailItemId(mContext.accountId(), mapped);
    if (reached && (reached->isEmpty() || *reached == item.sourceFolderId()))
        return Settled::No;
    const Lookup<EasFolderItem> folder = reached
        ? database->folderItemByServerId(mContext.accountId(), *reached)
        : Lookup<EasFolderItem>::unread();
    if (!folder)
        return Lookup<Settled>::unread();
    const bool isThere = *reached == item.destinationFolderId();
    message.setServerUid(mapped);
    // The user may have moved it on since; the way from there is still to be told.
    message.setPreviousParentFolderId(isThere ? QMailFolderId() : folderIdFromText(folder->localId()));
    if (!mContext.store->updateMessage(&message)) {
        qCWarning(eas()) << "failed to update message with server id" << mapped;
        return Settled::No;
    }
    qCInfo(eas()) << "finished the interrupted move of message" << item.localId();
    item.setServerId(mapped);
    item.setSourceFolderId(*reached);
    return isThere ? Settled::Yes : Settled::No;
}

Lookup<QList<KeptEmailId>> MailLocalChanges::deletedEmails(const QString &localFolderId) const
{
    const QMailMessageRemovalRecordList records =
        mContext.store->messageRemovalRecords(mContext.mailAccountId);
    if (records.isEmpty())
        return QList<KeptEmailId>();
    for (const QMailMessageRemovalRecord &record : records) {
        if (record.serverUid().isEmpty())
            qCWarning(eas()) << "serverUid is empty in Removal Record";
    }
    // By the rows, not the records: what was moved here before it was removed is still elsewhere on the
    // server.
    const auto removed = MailRecognition::removedHere(mContext);
    if (!removed)
        return Lookup<QList<KeptEmailId>>::unread();
    const auto folders = EasDatabase::instance()->serverToLocalFolderIds(mContext.accountId());
    if (!folders)
        return Lookup<QList<KeptEmailId>>::unread();
    QList<KeptEmailId> serverIds;
    for (auto message = removed->cbegin(); message != removed->cend(); ++message) {
        if (folders->value(message.value()) == localFolderId)
            serverIds.append(KeptEmailId(message.key()));
    }
    return serverIds;
}
