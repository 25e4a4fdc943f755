// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/serversearchrequest.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "protocol/serversearchcommand.h"
#include "requests/foldersyncrequest.h"
#include "requests/searchedmessages.h"
#include "storages/mailstorage.h"

#include <QSharedPointer>

ServerSearchRequest::ServerSearchRequest(EasAccountId accountId, quint64 requestId, QObject *parent)
    : CommandRequest(accountId, requestId, parent)
{
}

ServerSearchRequest::~ServerSearchRequest() = default;

bool ServerSearchRequest::isProvisioning() const
{
    return CommandRequest::isProvisioning() || (mFolderSyncRequest && mFolderSyncRequest->isProvisioning());
}

void ServerSearchRequest::startRequest()
{
    if (!account()) {
        qCCritical(eas()) << "account not found";
        return completeWith(RequestStatusInternalError);
    }
    startSearchCommand();
}

void ServerSearchRequest::startSearchCommand()
{
    mState = Searching;
    createCommand()->start();
}

void ServerSearchRequest::cancelRequest()
{
    if (mState == SyncingFolders && mFolderSyncRequest)
        mFolderSyncRequest->cancel();
    else
        CommandRequest::cancelRequest();
}

void ServerSearchRequest::retrySend()
{
    if (!consumeRetry())
        return;
    if (mState == SyncingFolders) {
        qCWarning(eas()) << "tried to resend command in FolderSyncState state";
        return;
    }
    startRequest();
}

ServerSearchCommand *ServerSearchRequest::searchCommand() const
{
    return qobject_cast<ServerSearchCommand *>(currentCommand());
}

void ServerSearchRequest::onCommandFinished(bool success)
{
    if (mState == SyncingFolders) {
        qCWarning(eas()) << "received command finished in FolderSync state";
        return;
    }
    if (mState != Searching) {
        qCWarning(eas()) << "Wrong state:" << mState;
        return;
    }
    if (!acceptResult(currentCommand(), success)) {
        if (currentCommand())
            qCInfo(eas()) << "Provision request started";
        return dropCommand();
    }
    if (isOfStore(status()))
        handleStore(status());
    else if (!handleStatus(status(), statuses()))
        endUnhandled(success);
}

void ServerSearchRequest::endUnhandled(bool success)
{
    if (success)
        qCCritical(eas()) << "Unhandled Search status: " << status();
    else
        qCWarning(eas()) << failureText() << status();
    // A reply without any status has brought nothing either.
    if (successfullyFinished())
        return fail();
    complete();
}

void ServerSearchRequest::processReply()
{
    handleStore(searchCommand()->storeStatus());
}

void ServerSearchRequest::handleStore(int storeStatus)
{
    const SearchStatusTable::Row *const row = storeRow(storeStatus);
    if (!row) {
        logUnhandledStoreStatus(storeStatus);
        return fail();
    }
    logStatusText(row->level, row->text);
    switch (row->verb) {
    case SearchVerb::Deliver:
        resetTimeoutFactor();
        clearRetries();
        return completeWith(deliver() ? RequestStatusSuccess : RequestStatusInternalError);
    case SearchVerb::Fail:
        return fail();
    case SearchVerb::RetryLater:
        // The status of the end if no attempt is left.
        setStatus(RequestStatusInternalError);
        return startResendTimer();
    case SearchVerb::SyncFolders:
        setStatus(RequestStatusInternalError);
        return startFolderSyncRequest();
    }
}

void ServerSearchRequest::logUnhandledStoreStatus(int storeStatus) const
{
    qCCritical(eas()) << "Unhandled status:" << storeStatus;
}

void ServerSearchRequest::fail()
{
    completeWith(RequestStatusInternalError);
}

bool ServerSearchRequest::deliver()
{
    if (looksForPeople())
        deliverPeople();
    else if (!deliverMessages())
        return false;
    mTotalItemsCount = searchCommand()->totalCount();
    mRemainingCount = searchCommand()->remainingCount();
    return true;
}

bool ServerSearchRequest::deliverMessages()
{
    QList<EasEmailItem> items = searchCommand()->emailItems();
    if (items.isEmpty())
        return true;
    const EasAccount *const easAccount = account();
    const QSharedPointer<MailStorage> storage =
        easAccount ? easAccount->mailStorage() : QSharedPointer<MailStorage>();
    if (!storage) {
        qCCritical(eas()) << "MailStorage is null";
        return false;
    }
    return SearchedMessages::name(accountId(), items) && storage->addSearchResults(items, mMatchingIds);
}

void ServerSearchRequest::deliverPeople()
{
    const QList<GalItem> items = searchCommand()->galItems();
    for (const GalItem &item : items) {
        mMatchingIds.append(quint64(mMatchingIds.size()) + 1);
        Q_EMIT galItemReceived(mMatchingIds.constLast(), item);
    }
}

// The folders in between

void ServerSearchRequest::startFolderSyncRequest()
{
    if (!consumeRetry())
        return;
    dropCommand();
    mState = SyncingFolders;
    mFolderSyncRequest = new FolderSyncRequest(accountId(), id(), this);
    connect(mFolderSyncRequest, &Request::requestCompleted, this,
        [this](EasAccountId, qulonglong requestId) { onFolderSyncRequestCompleted(requestId); });
    connect(mFolderSyncRequest, &FolderSyncRequest::resyncFolders, this, &ServerSearchRequest::resyncFolders);
    connect(mFolderSyncRequest, &Request::policyDocumentReceived, this, &Request::policyDocumentReceived);
    mFolderSyncRequest->start();
}

void ServerSearchRequest::onFolderSyncRequestCompleted(quint64 requestId)
{
    if (requestId != id()) {
        qCWarning(eas()) << "received wrong request id from FolderSyncRequest:" << requestId;
        return;
    }
    if (!mFolderSyncRequest) {
        qCCritical(eas()) << "folder sync request is null";
        return fail();
    }
    const int folderStatus = mFolderSyncRequest->status();
    const bool succeeded = mFolderSyncRequest->successfullyFinished();
    mFolderSyncRequest->deleteLater();
    mFolderSyncRequest.clear();
    mState = Idle;
    if (succeeded)
        return startRequest();
    qCWarning(eas()) << "Unsuccess FolderSync request status: " << folderStatus;
    completeWith(folderStatus);
}
