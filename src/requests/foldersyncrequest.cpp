// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/foldersyncrequest.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"
#include "protocol/foldersynccommand.h"
#include "requests/folderhierarchychanges.h"

FolderSyncRequest::FolderSyncRequest(EasAccountId accountId, quint64 requestId, QObject *parent)
    : HierarchyRequest(accountId, requestId, parent)
{
}

const FolderSyncCommand &FolderSyncRequest::folderSync() const
{
    return *qobject_cast<FolderSyncCommand *>(currentCommand());
}

QString FolderSyncRequest::commandName() const
{
    return ProtocolUtils::CommandFolderSync;
}

void FolderSyncRequest::startRequest()
{
    if (!account()) {
        qCCritical(eas()) << "No account";
        return completeWith(RequestStatusInternalError);
    }
    FolderSyncCommand *command = newFolderSyncCommand();
    if (!command)
        return;
    command->start();
    Q_EMIT syncStarted(accountId(), id());
}

void FolderSyncRequest::retrySend()
{
    if (mRetryCount++ >= ProtocolUtils::CommandMaxRetriesCount)
        return complete();
    qCInfo(eas()) << "trying to send command again. Attempt: " << mRetryCount;
    startRequest();
}

void FolderSyncRequest::onCommandFinished(bool success)
{
    handleFinished(success);
}

void FolderSyncRequest::handleFinished(bool success)
{
    qCInfo(eas()) << "FolderSyncRequest finished with success: " << success;
    if (!currentCommand())
        qCCritical(eas()) << "No command object";
    if (!acceptResult(currentCommand(), success)) {
        if (currentCommand())
            qCInfo(eas()) << "Provision request required";
        return dropCommand();
    }
    if (!success && status() < Eas::CommonStatusInvalidContent)
        return complete();
    const StatusRows rows = {
        { { 0, Eas::FolderSyncStatusSuccess },
            [this] {
                processSuccess();
            } },
        { { Eas::FolderSyncStatusServerError, Eas::FolderSyncStatusUnknownError },
            [this] {
                processFolderSyncServerError();
            } },
        { { Eas::FolderSyncStatusWrongSyncKey },
            [this] {
                processWrongSyncKey();
            } },
        { { Eas::FolderSyncStatusWrongRequest },
            [this] {
                qCCritical(eas()) << "incorrect FolderSync request. Something wrong with the encoder";
                complete();
            } },
        { { Eas::FolderSyncStatusCodeUnknown },
            [this] {
                qCWarning(eas()) << "Unusual back-end issue on the server.";
                complete();
            } },
        { { Eas::CommonStatusInvalidDeviceId, Eas::CommonStatusInvalidDeviceType },
            [this] {
                refreshDeviceAndRetryLater();
            } },
    };
    if (!handleCommonStatus(status(), rows))
        completeUnhandled();
}

void FolderSyncRequest::processSuccess()
{
    if (folderSync().syncKey() == ProtocolUtils::InitialSyncKey) {
        // An empty answer to the first FolderSync tells nothing; it is asked for again, and counted.
        setStatus(RequestStatusInternalError);
        return startResendTimer();
    }
    qCInfo(eas()) << "Folder sync request successfully completed for account:" << accountId();
    resetTimeoutFactor();
    setStatus(RequestStatusSuccess);
    // Before the end, after which nobody listens: the sync waits in the queue behind this request.
    if (mResyncRequested)
        Q_EMIT resyncFolders(accountId(), id());
    mResyncRequested = false;
    if (processResponse()) {
        mRetryCount = 0;
        complete();
    } else {
        qCWarning(eas()) << "Couldn't process folder sync responce!";
    }
}

bool FolderSyncRequest::processResponse()
{
    const auto fail = [this](const char *text) {
        qCCritical(eas()) << text;
        completeWith(RequestStatusInternalError);
        return false;
    };
    EasAccount *easAccount = account();
    if (!easAccount)
        return fail("No account");
    const FolderSyncCommand &reply = folderSync();
    FolderHierarchyChanges changes(
        *easAccount, { reply.addedItems(), reply.updatedItems(), reply.deletedItems() });
    const bool stored = changes.isReady()
        && changes.updateStores(FolderHierarchyChanges::OnFailure::Stop, "can't update mail folders");
    if (!stored) {
        completeWith(RequestStatusInternalError);
        return false;
    }
    changes.markSaved();
    if (!changes.updateDatabase())
        return fail("failed to update folders in EAS DB");
    // The key is the last thing written: whatever stops us before makes the server repeat its answer.
    return EasDatabase::instance()->setFolderSyncKey(accountId(), folderSync().syncKey())
        || fail("failed to update folders in EAS DB");
}

void FolderSyncRequest::processWrongSyncKey()
{
    // A server that refuses even the initial key will not be helped by another reset.
    if (mResyncRequested)
        return processFolderSyncServerError();
    qCWarning(eas()) << "wrong sync key, resyncing account";
    if (!EasDatabase::instance()->clearAccount(accountId())) {
        qCCritical(eas()) << "Failed to clear account";
        return completeWith(RequestStatusInternalError);
    }
    mResyncRequested = true;
    startRequest();
}
