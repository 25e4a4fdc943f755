// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/syncrequest.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"
#include "protocol/baseprotocolcommand.h"
#include "storages/contactstorage.h"

SyncRequest::SyncRequest(EasAccountId accountId, quint64 requestId, QObject *parent)
    : HierarchyRequest(accountId, requestId, parent)
{
}

void SyncRequest::setSyncService(int service)
{
    mSyncService = service;
}

void SyncRequest::setSyncFolders(const QStringList &localFolderIds)
{
    mSyncFolders = localFolderIds;
}

bool SyncRequest::started() const
{
    return mRequestState != StateIdle;
}

QString SyncRequest::commandName() const
{
    return ProtocolUtils::CommandSync;
}

void SyncRequest::startRequest()
{
    EasAccount *easAccount = account();
    if (!easAccount) {
        qCCritical(eas()) << "No account";
        return completeWith(RequestStatusInternalError);
    }
    if (const QSharedPointer<ContactStorage> contacts = easAccount->contactStorage())
        connect(this, &SyncRequest::syncCompleted, contacts.data(), &ContactStorage::onSyncCompleted,
            Qt::UniqueConnection);
    startFolderSyncCommand();
    Q_EMIT syncStarted(accountId(), id());
}

void SyncRequest::reportRequestCompleted()
{
    if (hasEnded())
        return;
    mRequestState = StateIdle;
    HierarchyRequest::reportRequestCompleted();
}

void SyncRequest::resumeRequest(bool success)
{
    if (!success)
        return complete();
    if (mRequestState < StateInitialSync) {
        qCInfo(eas()) << "resuming from FolderSync state";
        startFolderSyncCommand();
    } else {
        startSyncCommand();
    }
}

void SyncRequest::retrySend()
{
    if (mRetryCount++ >= ProtocolUtils::CommandMaxRetriesCount) {
        qCWarning(eas()) << "no more attempts, failing request";
        return complete();
    }
    qCInfo(eas()) << "trying to send command again. Attempt: " << mRetryCount;
    switch (mRequestState) {
    case StateIdle:
        return startRequest();
    case StateInitialFolderSync:
    case StateFolderSync:
        return startFolderSyncCommand();
    case StateMoveItems:
        // In its own state a move would not be started again.
        mRequestState = StateIdle;
        break;
    default:
        break;
    }
    startSyncCommand();
}

void SyncRequest::onCommandFinished(bool success)
{
    if (!acceptResult(currentCommand(), success)) {
        if (currentCommand())
            qCInfo(eas()) << "Provision request started";
        return dropCommand();
    }
    const StatusRows rows = {
        { { Eas::CommonStatusInvalidDeviceId, Eas::CommonStatusInvalidDeviceType },
            [this] {
                refreshDeviceAndRetryLater();
            } },
        { { Eas::CommonStatusSendQuotaExceeded, Eas::CommonStatusAttachmentTooLarge },
            [this] {
                qCWarning(eas()) << "The message is too large or the mailbox is over-quota:" << status();
                completeWith(RequestStatusMessageTooLarge);
            } },
    };
    if (!handleCommonStatus(status(), rows))
        dispatch(success);
}

void SyncRequest::dispatch(bool success)
{
    switch (mRequestState) {
    case StateInitialFolderSync:
    case StateFolderSync:
        reportProgress(20);
        return processFolderSyncFinished(success);
    case StateMoveItems:
        reportProgress(40);
        return processMoveItemsFinished(success);
    case StateInitialSync:
        reportProgress(50);
        return processInitialSyncFinished(success);
    case StateContinuingSync:
        reportProgress(60);
        return processSyncFinished(success);
    case StateResync:
        reportProgress(80);
        return processInitialSyncFinished(success);
    case StateIdle:
        break;
    }
    qCCritical(eas()) << "finished signal received for unhandled state" << mRequestState
                      << ", success=" << success;
    completeWith(RequestStatusInternalError);
}

void SyncRequest::reportProgress(int percent)
{
    Q_EMIT requestDownloadProgress(accountId(), id(), percent, 100);
}

void SyncRequest::succeedPhase()
{
    resetTimeoutFactor();
    setStatus(RequestStatusSuccess);
    mRetryCount = 0;
}

bool SyncRequest::mayStartOver()
{
    if (mRestarts++ < ProtocolUtils::CommandMaxRetriesCount)
        return true;
    qCWarning(eas()) << "no more attempts, failing request";
    complete();
    return false;
}
