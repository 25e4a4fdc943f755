// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailrecognition.h"

#include "application/mapping/easdatabase.h"
#include "easitems/easemailitem.h"
#include "storages/mail/mailmessagewriter.h"
#include "storages/mail/mailstorecontext.h"

#include <qmailmessagekey.h>
#include <qmailmessageremovalrecord.h>

#include <algorithm>

MailRecognition::MailRecognition(const MailStoreContext &context)
    : mContext(&context)
{
}

std::optional<MailRecognition> MailRecognition::of(
    const MailStoreContext &context, const QList<EasEmailItem> &items)
{
    QStringList serverUids;
    for (const EasEmailItem &item : items)
        serverUids.append(MailMessageWriter::serverUid(item));
    serverUids.removeAll(QString());
    MailRecognition recognition(context);
    if (!recognition.readRows(serverUids))
        return std::nullopt;
    recognition.readStore(serverUids);
    recognition.readRemovals();
    return recognition;
}

bool MailRecognition::readRows(const QStringList &serverUids)
{
    if (serverUids.isEmpty())
        return true;
    EasDatabase *database = EasDatabase::instance();
    const auto collections = database->emailCollectionIds(mContext->accountId(), serverUids);
    if (!collections)
        return false;
    mCollections = *collections;
    const auto localIds = database->serverToLocalEmailIds(mContext->accountId(), mCollections.keys());
    if (!localIds)
        return false;
    mLocalIds = *localIds;
    return true;
}

void MailRecognition::readStore(const QStringList &serverUids)
{
    if (serverUids.isEmpty())
        return;
    const QMailMessageIdList ids =
        mContext->store->queryMessages(QMailMessageKey::parentAccountId(mContext->mailAccountId)
            & QMailMessageKey::serverUid(serverUids, QMailDataComparator::Includes));
    for (const QMailMessageId &id : ids) {
        const QMailMessageMetaData message = mContext->store->messageMetaData(id);
        mStored.insert(message.serverUid(), message);
    }
}

void MailRecognition::readRemovals()
{
    const QMailMessageRemovalRecordList records =
        mContext->store->messageRemovalRecords(mContext->mailAccountId);
    for (const QMailMessageRemovalRecord &record : records) {
        if (!record.serverUid().isEmpty())
            mRemovals[record.serverUid()].insert(record.parentFolderId().toULongLong());
    }
}

QMailMessageMetaData MailRecognition::stored(const QString &serverUid) const
{
    return mStored.value(serverUid);
}

bool MailRecognition::isStored(const QString &serverUid) const
{
    // After an interrupted move the store knows a message by another identifier than its row.
    const QMailMessageId ofRow(mLocalIds.value(serverUid).toULongLong());
    return mStored.contains(serverUid)
        || (ofRow.isValid() && mContext->store->messageMetaData(ofRow).id().isValid());
}

MailRecognition::Finding MailRecognition::finding(const EasEmailItem &item) const
{
    const QString uid = MailMessageWriter::serverUid(item);
    const QMailFolderId folder(item.localCollectionId());
    const bool hasRow = mCollections.contains(uid);
    const bool isHere = hasRow && mCollections.value(uid) == item.collectionId();
    if (isHere) {
        if (isStored(uid))
            return Known;
        return mRemovals.contains(uid) ? RemovedHere : Lost;
    }
    if (!mStored.contains(uid)) {
        const bool isRemoved = !hasRow && mRemovals.value(uid).contains(folder.toULongLong());
        return isRemoved ? RemovedHere : New;
    }
    const QMailMessageMetaData message = mStored.value(uid);
    const bool isOwn = !hasRow || (message.status() & QMailMessage::Temporary)
        || message.parentFolderId() == folder || message.previousParentFolderId() == folder;
    return isOwn ? LeftBehind : TakenByAnother;
}

std::optional<QMailMessageIdList> MailRecognition::leftBehind(const MailStoreContext &context)
{
    QMailMessageIdList ids =
        context.store->queryMessages(QMailMessageKey::parentAccountId(context.mailAccountId)
            & QMailMessageKey::serverUid(QString(), QMailDataComparator::NotEqual)
            & QMailMessageKey::status(QMailMessage::Temporary, QMailDataComparator::Excludes));
    if (ids.isEmpty())
        return ids;
    const auto serverToLocal = EasDatabase::instance()->serverToLocalEmailIds(context.accountId());
    if (!serverToLocal)
        return std::nullopt;
    QSet<quint64> mapped;
    mapped.reserve(serverToLocal->size());
    for (const QString &localId : *serverToLocal)
        mapped.insert(localId.toULongLong());
    ids.erase(std::remove_if(ids.begin(), ids.end(),
                  [&mapped](const QMailMessageId &id) { return mapped.contains(id.toULongLong()); }),
        ids.end());
    return ids;
}

std::optional<MailRecognition> MailRecognition::ofRemovals(const MailStoreContext &context)
{
    MailRecognition recognition(context);
    recognition.readRemovals();
    const QStringList uids = recognition.mRemovals.keys();
    if (!recognition.readRows(uids))
        return std::nullopt;
    recognition.readStore(uids);
    return recognition;
}

std::optional<QMap<QString, QString>> MailRecognition::removedHere(const MailStoreContext &context)
{
    const std::optional<MailRecognition> recognition = ofRemovals(context);
    if (!recognition)
        return std::nullopt;
    QMap<QString, QString> removed;
    for (auto row = recognition->mCollections.cbegin(); row != recognition->mCollections.cend(); ++row) {
        if (!recognition->isStored(row.key()))
            removed.insert(row.key(), row.value());
    }
    return removed;
}

std::optional<QStringList> MailRecognition::staleRemovals(const MailStoreContext &context)
{
    const std::optional<MailRecognition> recognition = ofRemovals(context);
    if (!recognition)
        return std::nullopt;
    QStringList stale;
    for (auto removal = recognition->mRemovals.cbegin(); removal != recognition->mRemovals.cend();
         ++removal) {
        const bool hasRow = recognition->mCollections.contains(removal.key());
        const bool hasFolder = std::any_of(removal->cbegin(), removal->cend(), [&context](quint64 number) {
            const QMailFolderId id(number);
            return id != MailStoreContext::localStorage() && context.store->folder(id).id().isValid();
        });
        if (hasRow ? recognition->isStored(removal.key()) : !hasFolder)
            stale.append(removal.key());
    }
    return stale;
}
