// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/fetchmessagesrequest.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/base/eas.h"
#include "protocol/fetchitemcommand.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "requests/fetchpartrequest.h"
#include "requests/mailserverids.h"
#include "storages/mailstorage.h"

#include <QSet>

#include <algorithm>

namespace {

constexpr uint AttachmentPartSize = 65536;

/**
 * Leaves to others what they know better: the read mark may have been set by the user since the last sync,
 * and then waits for its upload; the body is stored by itself.
 */
void dropMarkAndBody(EasEmailItem &item)
{
    const QList<uint> fields = item.changedFields();
    item.clearChangedFields();
    for (const uint field : fields) {
        if (field != Wbxml::Email::Read.key() && field != Wbxml::AirSyncBase::Type.key()
            && field != Wbxml::AirSyncBase::Data.key())
            item.appendChangedField(field);
    }
}

} // namespace

FetchMessagesRequest::FetchMessagesRequest(EasAccountId accountId, quint64 requestId,
    const QList<quint64> &messageIds, bool fullContentDownload, QObject *parent)
    : FetchRequest(accountId, requestId, parent)
    , mFullContentDownload(fullContentDownload)
    , mMessageIds(messageIds)
{
}

FetchMessagesRequest::FetchMessagesRequest(
    EasAccountId accountId, quint64 requestId, quint64 messageId, const QString &location, QObject *parent)
    : FetchRequest(accountId, requestId, parent)
    , mMessageIds({ messageId })
    , mLocation(location)
{
}

QSharedPointer<MailStorage> FetchMessagesRequest::mailStorage() const
{
    EasAccount *easAccount = account();
    const QSharedPointer<MailStorage> storage =
        easAccount ? easAccount->mailStorage() : QSharedPointer<MailStorage>();
    if (!storage)
        qCCritical(eas()) << (easAccount ? "MailStorage is null" : "No account");
    return storage;
}

void FetchMessagesRequest::startRequest()
{
    const QSharedPointer<MailStorage> storage = mailStorage();
    if (!storage)
        return completeWith(RequestStatusInternalError);
    if (mPendingFolders.isEmpty()) {
        const Lookup<QList<QList<quint64>>> folders = messagesByFolder(*storage);
        if (!folders)
            return completeWith(RequestStatusInternalError);
        mPendingFolders = *folders;
    }
    if (mPendingFolders.isEmpty())
        return downloadNextAttachment();
    FetchItemCommand *command = newFetchCommand();
    command->setLocalIds(mPendingFolders.first());
    command->start();
}

Lookup<QList<QList<quint64>>> FetchMessagesRequest::messagesByFolder(MailStorage &storage)
{
    QStringList serverUids;
    for (const quint64 messageId : qAsConst(mMessageIds))
        serverUids.append(storage.serverUidFromMessageId(messageId));
    const Lookup<QMap<QString, QString>> known =
        EasDatabase::instance()->emailCollectionIds(accountId(), serverUids);
    if (!known)
        return Lookup<QList<QList<quint64>>>::unread();
    QStringList folders;
    QList<QList<quint64>> groups;
    for (const quint64 messageId : qAsConst(mMessageIds)) {
        const QString folder = known->value(storage.serverUidFromMessageId(messageId));
        if (!folders.contains(folder)) {
            folders.append(folder);
            groups.append(QList<quint64>());
        }
        groups[folders.indexOf(folder)].append(messageId);
    }
    return groups;
}

void FetchMessagesRequest::cancelRequest()
{
    storeFiles();
    if (mFetchPartRequest && mFetchPartRequest->started())
        mFetchPartRequest->cancel();
    else
        FetchRequest::cancelRequest();
}

void FetchMessagesRequest::onCommandFinished(bool success)
{
    onFetchItemCommandFinished(success);
}

void FetchMessagesRequest::onFetchItemCommandFinished(bool success)
{
    if (!acceptResult(currentCommand(), success)) {
        if (currentCommand())
            qCInfo(eas()) << "Provision request started";
        return dropCommand();
    }
    handleFetchStatus(success);
}

void FetchMessagesRequest::processCommandSuccess()
{
    resetTimeoutFactor();
    clearRetries();
    const QSharedPointer<MailStorage> storage = mailStorage();
    if (!storage)
        return completeWith(RequestStatusInternalError);
    const Lookup<MailServerIds> ids = receivedIds();
    if (!ids) {
        qCCritical(eas()) << "Failed to read emails from EAS DB";
        return completeWith(RequestStatusInternalError);
    }
    noteRefusals();
    // A message that was asked for and not even refused is no success.
    if (!answersAll(*storage, *ids))
        noteFailure(RequestStatusInternalError);
    if (mLocation.isEmpty() && !updateMessages(*storage, *ids))
        return completeWith(RequestStatusInternalError);
    updateBodies(*storage, *ids);
    dropCommand();
    mPendingFolders.removeFirst();
    if (mPendingFolders.isEmpty())
        downloadNextAttachment();
    else
        startRequest();
}

void FetchMessagesRequest::noteFailure(int status)
{
    if (mFailure == RequestStatusSuccess)
        mFailure = status;
}

void FetchMessagesRequest::storeFiles()
{
    const QSharedPointer<MailStorage> storage = mailStorage();
    if (!storage || !mFiles.flush(*storage))
        noteFailure(RequestStatusInternalError);
}

void FetchMessagesRequest::finish()
{
    if (mFullContentDownload)
        storeFiles();
    completeWith(mFailure);
}

void FetchMessagesRequest::updateBodies(MailStorage &storage, const MailServerIds &ids)
{
    QSet<quint64> received;
    const QList<ItemOperationsFetchItem> fetched = fetchCommand()->fetchItems();
    for (const ItemOperationsFetchItem &fetch : fetched) {
        const quint64 localId = localIdOf(fetch, ids);
        if (fetch.status() > Eas::ItemOperationsStatusSuccess || localId == 0)
            continue;
        received.insert(localId);
        if (!storage.updateBodyPart(localId, fetch.emailItem().body()))
            noteFailure(RequestStatusInternalError);
    }
    // The files of what did not come are not asked for.
    for (const quint64 localId : qAsConst(mPendingFolders.first())) {
        if (!received.contains(localId))
            mMessageIds.removeAll(localId);
    }
}

quint64 FetchMessagesRequest::localIdOf(const ItemOperationsFetchItem &fetch, const MailServerIds &ids) const
{
    return fetchCommand()->getLocalIdByLongId(fetch.longId().isEmpty()
            ? ids.kept(fetch.collectionId(), WireEmailId(fetch.serverId())).text()
            : fetch.longId());
}

bool FetchMessagesRequest::updateMessages(MailStorage &storage, const MailServerIds &ids)
{
    QList<EasEmailItem> items = receivedItems(ids);
    QList<EasEmailItem> none;
    if (!storage.updateEmails(none, items, {})) {
        qCCritical(eas()) << "Failed to update emails";
        return false;
    }
    if (!EasDatabase::instance()->emailItemsChanges(accountId(), {}, items, {})) {
        qCCritical(eas()) << "Failed to update emails in EAS DB";
        return false;
    }
    return true;
}

Lookup<MailServerIds> FetchMessagesRequest::receivedIds() const
{
    QList<MailServerIds::Item> named;
    const QList<ItemOperationsFetchItem> fetched = fetchCommand()->fetchItems();
    for (const ItemOperationsFetchItem &fetch : fetched)
        named.append({ fetch.collectionId(), WireEmailId(fetch.serverId()) });
    return MailServerIds::lookUp(accountId(), named);
}

QList<EasEmailItem> FetchMessagesRequest::receivedItems(const MailServerIds &ids) const
{
    QList<EasEmailItem> items;
    const QList<ItemOperationsFetchItem> fetched = fetchCommand()->fetchItems();
    for (const ItemOperationsFetchItem &fetch : fetched) {
        if (fetch.status() > Eas::ItemOperationsStatusSuccess)
            continue;
        EasEmailItem item = fetch.emailItem();
        if (!fetch.longId().isEmpty())
            item.setLocalId(QString::number(fetchCommand()->getLocalIdByLongId(fetch.longId())));
        if (item.serverId().isEmpty())
            item.setServerId(ids.kept(fetch.collectionId(), WireEmailId(fetch.serverId())).text());
        dropMarkAndBody(item);
        items.append(item);
    }
    return items;
}

void FetchMessagesRequest::noteRefusals()
{
    const QList<ItemOperationsFetchItem> fetched = fetchCommand()->fetchItems();
    for (const ItemOperationsFetchItem &fetch : fetched) {
        if (fetch.status() > Eas::ItemOperationsStatusSuccess) {
            qCWarning(eas()) << "unhandled status" << fetch.status();
            noteFailure(fetch.status());
        }
    }
}

bool FetchMessagesRequest::answersAll(MailStorage &storage, const MailServerIds &ids) const
{
    QSet<QString> answered;
    const QList<ItemOperationsFetchItem> fetched = fetchCommand()->fetchItems();
    for (const ItemOperationsFetchItem &fetch : fetched) {
        answered.insert(fetch.longId().isEmpty()
                ? ids.kept(fetch.collectionId(), WireEmailId(fetch.serverId())).text()
                : storage.serverUidFromMessageId(fetchCommand()->getLocalIdByLongId(fetch.longId())));
    }
    const QList<quint64> &asked = mPendingFolders.first();
    return std::all_of(asked.cbegin(), asked.cend(),
        [&](quint64 messageId) { return answered.contains(storage.serverUidFromMessageId(messageId)); });
}

void FetchMessagesRequest::downloadNextAttachment()
{
    if (!mFullContentDownload || (mMessageIds.isEmpty() && mAttachmentLocations.isEmpty())) {
        qCInfo(eas()) << "Nothing more to download, completing FetchMessagesRequest";
        return finish();
    }
    if (!queueAttachments())
        return completeWith(RequestStatusInternalError);
    if (mAttachmentLocations.isEmpty()) {
        qCInfo(eas()) << "Nothing else to download. Completing the FetchMessagesRequest";
        return finish();
    }
    mFetchPartRequest = attachmentRequest(mAttachmentMessage, mAttachmentLocations.takeFirst());
    mFetchPartRequest->setPartSize(AttachmentPartSize);
    mFetchPartRequest->setFiles(&mFiles);
    connect(mFetchPartRequest, &Request::requestCompleted, this,
        &FetchMessagesRequest::onFetchAttachmentCompleted, Qt::UniqueConnection);
    mFetchPartRequest->start();
}

bool FetchMessagesRequest::queueAttachments()
{
    const QSharedPointer<MailStorage> storage = mailStorage();
    while (storage && mAttachmentLocations.isEmpty() && !mMessageIds.isEmpty()) {
        mAttachmentMessage = mMessageIds.takeFirst();
        mAttachmentLocations = storage->queryAttachmentsLocations(mAttachmentMessage, false);
    }
    return !storage.isNull();
}

FetchPartRequest *FetchMessagesRequest::attachmentRequest(quint64 messageId, const QString &location)
{
    if (mFetchPartRequest && mFetchPartRequest->messageId() == messageId) {
        mFetchPartRequest->setLocation(location);
        return mFetchPartRequest;
    }
    if (mFetchPartRequest)
        mFetchPartRequest->deleteLater();
    return new FetchPartRequest(accountId(), id(), messageId, location, this);
}

void FetchMessagesRequest::onFetchAttachmentCompleted(EasAccountId, qulonglong requestId)
{
    if (requestId != id() || !mFetchPartRequest) {
        qCWarning(eas()) << "Unexpected requestId " << requestId << "or fetch part request is NULL";
        return completeWith(RequestStatusInternalError);
    }
    if (!mFetchPartRequest->successfullyFinished()) {
        const int failure = mFetchPartRequest->status();
        qCWarning(eas()) << "fetch part request failed with status " << failure;
        storeFiles();
        return completeWith(failure);
    }
    downloadNextAttachment();
}
