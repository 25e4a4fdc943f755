// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/syncrequest.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"
#include "protocol/foldersynccommand.h"
#include "protocol/moveitemscommand.h"
#include "requests/folderhierarchychanges.h"
#include "requests/moveitemsresulthandler.h"
#include "requests/syncfolderselection.h"
#include "storages/mailstorage.h"

void SyncRequest::startFolderSyncCommand()
{
    FolderSyncCommand *command = newFolderSyncCommand();
    if (!command)
        return;
    const QString key = command->syncKey();
    mRequestState =
        key.isEmpty() || key == ProtocolUtils::InitialSyncKey ? StateInitialFolderSync : StateFolderSync;
    command->start();
}

void SyncRequest::processFolderSyncFinished(bool success)
{
    qCInfo(eas()) << "FolderSync command finished: " << success;
    const auto *command = qobject_cast<FolderSyncCommand *>(currentCommand());
    if (!command) {
        qCCritical(eas()) << "FolderSync command object is not available";
        return completeWith(RequestStatusInternalError);
    }
    if (!success) {
        qCWarning(eas()) << "FolderSync command failed";
        return complete();
    }
    switch (status()) {
    case 0:
    case Eas::FolderSyncStatusSuccess:
        return applyFolderChanges(*command);
    case Eas::FolderSyncStatusServerError:
    case Eas::FolderSyncStatusUnknownError:
        return processFolderSyncServerError();
    case Eas::FolderSyncStatusWrongSyncKey:
        return processWrongFolderSyncKey();
    case Eas::FolderSyncStatusWrongRequest:
        qCCritical(eas()) << "incorrect FolderSync request. Something wrong with the encoder";
        return completeWith(RequestStatusInternalError);
    case Eas::FolderSyncStatusCodeUnknown:
        qCWarning(eas()) << "Unusual back-end issue on the server.";
        return complete();
    default:
        qCWarning(eas()) << "unhandled status" << status();
        complete();
    }
}

void SyncRequest::applyFolderChanges(const FolderSyncCommand &command)
{
    EasAccount *easAccount = account();
    if (!easAccount) {
        qCCritical(eas()) << "No account";
        return completeWith(RequestStatusInternalError);
    }
    if (command.syncKey() == ProtocolUtils::InitialSyncKey) {
        // An empty answer to the first FolderSync tells nothing; asking again at once would never end.
        setStatus(RequestStatusInternalError);
        return startResendTimer();
    }
    succeedPhase();
    FolderHierarchyChanges changes(
        *easAccount, { command.addedItems(), command.updatedItems(), command.deletedItems() });
    if (!changes.isReady())
        return completeWith(RequestStatusInternalError);

    bool applied = changes.updateStores(
        FolderHierarchyChanges::OnFailure::GoOn, "failed to update folders in Mail Storage");
    changes.markSaved();
    if (!changes.updateDatabase()) {
        qCCritical(eas()) << "Failed to update folders in EAS DB!";
        applied = false;
    }
    if (mRequestState == StateFolderSync && !initializeSyncCollections(*easAccount))
        applied = false;
    if (!applied) {
        qCCritical(eas()) << "Failed to properly save folders updates!";
        return completeWith(RequestStatusInternalError);
    }
    continueAfterFolderSync(command);
}

void SyncRequest::continueAfterFolderSync(const FolderSyncCommand &command)
{
    // Items are never stored under a hierarchy without a key: that would look like a half cleared account.
    if (!command.syncKey().isEmpty()
        && !EasDatabase::instance()->setFolderSyncKey(accountId(), command.syncKey()))
        return completeWith(RequestStatusInternalError);
    if (mRequestState == StateInitialFolderSync)
        startFolderSyncCommand();
    else
        startSyncCommand();
}

void SyncRequest::processWrongFolderSyncKey()
{
    // A server that refuses even the initial key will not be helped by another reset.
    if (mRequestState == StateInitialFolderSync)
        return processFolderSyncServerError();
    qCWarning(eas()) << "Wrong sync key, resyncing account";
    restartFromAccount();
}

void SyncRequest::restartFromAccount()
{
    if (!mayStartOver())
        return;
    if (!EasDatabase::instance()->clearAccount(accountId())) {
        qCCritical(eas()) << "Failed to clear account";
        return completeWith(RequestStatusInternalError);
    }
    mSync = SyncState();
    startFolderSyncCommand();
}

bool SyncRequest::initializeSyncCollections(EasAccount &easAccount)
{
    SyncFolderSelection selection(easAccount);
    const QStringList chosen = selection.serverIds(mSyncService, mSyncFolders);
    for (const QString &serverId : chosen)
        SyncState::addOnce(mSync.collectionsToSync, serverId);
    // What could not be read would be left out, and the request would end well without it.
    if (selection.lookupFailed())
        qCCritical(eas()) << "failed to read folders from EAS DB";
    return !selection.lookupFailed();
}

// Mail that was moved on the device

bool SyncRequest::startMoveItemsCommand()
{
    EasAccount *easAccount = account();
    if (!easAccount) {
        qCCritical(eas()) << "No account object for account:" << accountId();
        return false;
    }
    if (!easAccount->commandIsSupported(ProtocolUtils::CommandMoveItems)) {
        qCWarning(eas()) << "MoveItems command not supported for account:" << accountId();
        return false;
    }
    if (mRequestState == StateMoveItems || !mSync.collectionsToRetry.isEmpty()
        || mMoveAttempts > ProtocolUtils::CommandMaxRetriesCount)
        return false;
    dropCommand();
    const QSharedPointer<MailStorage> storage = easAccount->mailStorage();
    if (!storage) {
        qCWarning(eas()) << "MailStorage is null";
        return false;
    }
    const QList<MoveContainer> moves = MoveItemsResultHandler::moves(storage->movedEmails());
    if (moves.isEmpty())
        return false;
    auto *command = newCommand<MoveItemsCommand>();
    for (const MoveContainer &move : moves)
        command->appendMoveItem(move);
    mRequestState = StateMoveItems;
    command->start();
    return true;
}

void SyncRequest::processMoveItemsFinished(bool success)
{
    qCInfo(eas()) << "MoveItems command finished: " << success;
    const auto *command = qobject_cast<MoveItemsCommand *>(currentCommand());
    if (!command) {
        qCCritical(eas()) << "MoveItems command object is not available";
        return completeWith(RequestStatusInternalError);
    }
    if (!success)
        return complete();
    switch (status()) {
    case 0:
    case Eas::MoveItemsStatusSuccess:
        setStatus(RequestStatusSuccess);
        if (handleMoveItemsResults(*command)) {
            mRetryCount = 0;
            startSyncCommand();
        }
        return;
    case Eas::MoveItemsStatusCannotBeMoved:
        qCWarning(eas()) << "More than one DstFldId element is included for element.";
        qCWarning(eas()) << "Encoder error?";
        return startSyncCommand();
    case Eas::CommonStatusItemsLostAfterMove:
        qCWarning(eas()) << "Items lost after moving to destination folder. Server error.";
        return startSyncCommand();
    case Eas::CommonStatusFailureInMoveOperation:
        qCWarning(eas()) << "status" << status() << ", trying to send request again";
        return startResendTimer();
    case Eas::CommonStatusMoveCmdInvalidDestFolder:
        qCWarning(eas()) << "Invalid destination folder. starting sync command";
        return startSyncCommand();
    default:
        qCWarning(eas()) << "unhandled MoveItems command status" << status();
        complete();
    }
}

bool SyncRequest::handleMoveItemsResults(const MoveItemsCommand &command)
{
    EasAccount *easAccount = account();
    if (!easAccount || !easAccount->mailStorage()) {
        qCCritical(eas()) << "MailStorage is null";
        completeWith(RequestStatusInternalError);
        return false;
    }
    MoveItemsResultHandler handler(*easAccount, mSync);
    if (!handler.handle(command)) {
        completeWith(RequestStatusInternalError);
        return false;
    }
    if (handler.folderSyncNeeded()) {
        // What the server does not know any more is not moved again before the next sync.
        mMoveAttempts = ProtocolUtils::CommandMaxRetriesCount + 1;
        startFolderSyncCommand();
        return false;
    }
    if (handler.retryMove()) {
        ++mMoveAttempts;
        mRequestState = StateIdle;
        if (startMoveItemsCommand())
            return false;
        qCWarning(eas()) << "failed to retry MoveItems command";
    }
    return true;
}
