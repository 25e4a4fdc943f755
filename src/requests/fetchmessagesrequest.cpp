// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/fetchmessagesrequest.h"

#include "application/easaccount.h"
#include "application/easdatabase.h"
#include "application/logging.h"
#include "protocol/eas.h"
#include "protocol/fetchitemcommand.h"
#include "protocol/protocolutils.h"
#include "protocol/wbxmltokens.h"
#include "requests/fetchpartrequest.h"
#include "requests/mailserverids.h"
#include "storages/mailstorage.h"

namespace {

constexpr uint AttachmentPartSize = 65536;

/** The mark may have been set by the user since the last sync, and then waits for its upload. */
void keepReadMark(EasEmailItem &item)
{
    const QList<uint> fields = item.changedFields();
    item.clearChangedFields();
    for (const uint field : fields) {
        if (field != Wbxml::Email::Read.key())
            item.appendChangedField(field);
    }
}

} // namespace

FetchMessagesRequest::FetchMessagesRequest(EasAccountId accountId, quint64 requestId,
    const QList<quint64> &messageIds, bool fullContentDownload, QObject *parent)
    : Request(accountId, requestId, parent)
    , mFullContentDownload(fullContentDownload)
    , mMessageIds(messageIds)
{
}

FetchMessagesRequest::FetchMessagesRequest(
    EasAccountId accountId, quint64 requestId, quint64 messageId, const QString &location, QObject *parent)
    : Request(accountId, requestId, parent)
    , mMessageIds({ messageId })
    , mLocation(location)
{
}

QString FetchMessagesRequest::commandName() const
{
    return ProtocolUtils::CommandItemOperations;
}

void FetchMessagesRequest::startRequest()
{
    EasAccount *easAccount = account();
    if (!easAccount) {
        qCCritical(eas()) << "No account";
        return completeWith(RequestStatusInternalError);
    }
    if (!easAccount->mailStorage()) {
        qCCritical(eas()) << "MailStorage is null";
        return completeWith(RequestStatusInternalError);
    }
    if (mPendingFolders.isEmpty())
        mPendingFolders = messagesByFolder();
    if (mPendingFolders.isEmpty())
        return downloadNextAttachment();
    dropCommand();
    mCommand = new FetchItemCommand(accountId(), this);
    mCommand->setStore(ProtocolUtils::StorageMailbox);
    mCommand->setLocalIds(mPendingFolders.first());
    connect(mCommand, &FetchItemCommand::finished, this, &FetchMessagesRequest::onFetchItemCommandFinished);
    mCommand->start();
}

QList<QList<quint64>> FetchMessagesRequest::messagesByFolder()
{
    QStringList folders;
    QList<QList<quint64>> groups;
    for (const quint64 messageId : qAsConst(mMessageIds)) {
        const QString serverUid = account()->mailStorage()->serverUidFromMessageId(messageId);
        const QString folder =
            EasDatabase::instance()->collectionServerIdFromEmailItemId(accountId(), serverUid);
        if (!folders.contains(folder)) {
            folders.append(folder);
            groups.append(QList<quint64>());
        }
        groups[folders.indexOf(folder)].append(messageId);
    }
    return groups;
}

void FetchMessagesRequest::dropCommand()
{
    if (!mCommand)
        return;
    mCommand->disconnect(this);
    mCommand->deleteLater();
    mCommand.clear();
}

void FetchMessagesRequest::cancelRequest()
{
    if (mFetchPartRequest && mFetchPartRequest->started())
        mFetchPartRequest->cancel();
    else if (mCommand)
        mCommand->stop();
}

void FetchMessagesRequest::retrySend()
{
    if (consumeRetry())
        startRequest();
}

void FetchMessagesRequest::onFetchItemCommandFinished(bool success)
{
    if (!acceptResult(mCommand, success)) {
        if (mCommand)
            qCInfo(eas()) << "Provision request started";
        return dropCommand();
    }
    const StatusRows rows = {
        { { 0, Eas::ItemOperationsStatusSuccess },
            [this, success] {
                if (success)
                    return processCommandSuccess();
                qCWarning(eas()) << "Success: "
                                 << "false"
                                 << ", status:" << status();
                completeWith(RequestStatusInternalError);
            } },
    };
    if (!handleCommonStatus(status(), rows)) {
        qCWarning(eas()) << "unhandled status" << status();
        complete();
    }
}

void FetchMessagesRequest::processCommandSuccess()
{
    resetTimeoutFactor();
    clearRetries();
    setStatus(RequestStatusSuccess);
    // A message that was asked for and not even refused is no success.
    const bool isComplete = mCommand->fetchItems().size() >= mPendingFolders.first().size();
    const bool updated = mLocation.isEmpty() ? updateMessages() : updateBody();
    if (!updated || !isComplete)
        return completeWith(RequestStatusInternalError);
    setStatus(firstItemFailure());
    dropCommand();
    mPendingFolders.removeFirst();
    if (!successfullyFinished())
        complete();
    else if (mPendingFolders.isEmpty())
        downloadNextAttachment();
    else
        startRequest();
}

bool FetchMessagesRequest::updateBody()
{
    const QList<ItemOperationsFetchItem> items = mCommand->fetchItems();
    if (items.isEmpty())
        return false;
    if (items.first().status() > Eas::ItemOperationsStatusSuccess)
        return true;
    return account()->mailStorage()->updateBodyPart(mMessageIds.first(), items.first().emailItem().body());
}

bool FetchMessagesRequest::updateMessages()
{
    QList<EasEmailItem> items;
    QList<EasEmailItem> none;
    if (!receivedItems(items)) {
        qCCritical(eas()) << "Failed to read emails from EAS DB";
        return false;
    }
    if (!account()->mailStorage()->updateEmails(none, items, {})) {
        qCCritical(eas()) << "Failed to update emails";
        return false;
    }
    if (!EasDatabase::instance()->emailItemsChanges(accountId(), {}, items, {})) {
        qCCritical(eas()) << "Failed to update emails in EAS DB";
        return false;
    }
    return true;
}

bool FetchMessagesRequest::receivedItems(QList<EasEmailItem> &items)
{
    const QList<ItemOperationsFetchItem> fetched = mCommand->fetchItems();
    QList<MailServerIds::Item> named;
    for (const ItemOperationsFetchItem &fetch : fetched)
        named.append({ fetch.collectionId(), fetch.serverId() });
    MailServerIds ids(accountId());
    ids.lookUp(named);
    for (const ItemOperationsFetchItem &fetch : fetched) {
        if (fetch.status() > Eas::ItemOperationsStatusSuccess)
            continue;
        EasEmailItem item = fetch.emailItem();
        if (!fetch.longId().isEmpty())
            item.setLocalId(QString::number(mCommand->getLocalIdByLongId(fetch.longId())));
        if (item.serverId().isEmpty())
            item.setServerId(ids.kept(fetch.collectionId(), fetch.serverId()));
        keepReadMark(item);
        items.append(item);
    }
    return !ids.lookupFailed();
}

int FetchMessagesRequest::firstItemFailure() const
{
    const QList<ItemOperationsFetchItem> fetched = mCommand->fetchItems();
    for (const ItemOperationsFetchItem &fetch : fetched) {
        if (fetch.status() > Eas::ItemOperationsStatusSuccess) {
            qCWarning(eas()) << "unhandled status" << fetch.status();
            return fetch.status();
        }
    }
    return RequestStatusSuccess;
}

void FetchMessagesRequest::downloadNextAttachment()
{
    if (!mFullContentDownload || (mMessageIds.isEmpty() && mAttachmentLocations.isEmpty())) {
        qCInfo(eas()) << "Nothing more to download, completing FetchMessagesRequest";
        return complete();
    }
    queueAttachments();
    if (mAttachmentLocations.isEmpty()) {
        qCInfo(eas()) << "Nothing else to download. Completing the FetchMessagesRequest";
        return complete();
    }
    mFetchPartRequest = attachmentRequest(mAttachmentMessage, mAttachmentLocations.takeFirst());
    mFetchPartRequest->setPartSize(AttachmentPartSize);
    connect(mFetchPartRequest, &Request::requestCompleted, this,
        &FetchMessagesRequest::onFetchAttachmentCompleted, Qt::UniqueConnection);
    mFetchPartRequest->start();
}

void FetchMessagesRequest::queueAttachments()
{
    const QSharedPointer<MailStorage> storage =
        account() ? account()->mailStorage() : QSharedPointer<MailStorage>();
    while (storage && mAttachmentLocations.isEmpty() && !mMessageIds.isEmpty()) {
        mAttachmentMessage = mMessageIds.takeFirst();
        mAttachmentLocations = storage->queryAttachmentsLocations(mAttachmentMessage, false);
    }
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
        return completeWith(failure);
    }
    downloadNextAttachment();
}
