// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/syncrequest.h"

#include "application/clock.h"
#include "application/easaccount.h"
#include "application/easdatabase.h"
#include "application/logging.h"
#include "protocol/eas.h"
#include "protocol/foldersynccommand.h"
#include "protocol/moveitemscommand.h"
#include "protocol/protocolutils.h"
#include "protocol/synccommand.h"
#include "protocol/wbxmltokens.h"
#include "requests/folderhierarchychanges.h"
#include "requests/moveitemsresulthandler.h"
#include "requests/synccollectionqueue.h"
#include "requests/syncfolderselection.h"
#include "requests/syncreplyprocessor.h"
#include "storages/calendarstorage.h"
#include "storages/contactstorage.h"
#include "storages/mailstorage.h"

#include <algorithm>

/** What the two kinds of Sync say about a status that concerns a reply as a whole. */
struct SyncRequest::SyncTexts
{
    const char *invalidKey;
    const char *protocolError;
    const char *serverError;
    const char *foldersChanged;
    const char *invalidSync;
    const char *retry;
    const char *unhandled;
};

namespace {

constexpr SyncRequest::SyncTexts initialSyncTexts = {
    "Initial Sync command failed due to zero sync key, retrying!",
    "Protocol error. Something really wrong with the initial sync request",
    "Initial Sync command failed due to server error, retrying!",
    "Initial Sync command reported remote folders changed, starting folder sync!",
    "Initial Sync command failed due to invalid sync status, retrying!",
    "Initial Sync command reported retry status, retrying!",
    "unhandled Sync status",
};

constexpr SyncRequest::SyncTexts continuingSyncTexts = {
    "Trying to Resync collections",
    "Protocol error. Something really wrong with the sync request",
    "Sync command failed due to server error",
    "Sync command reported remote folders changed",
    "Sync command failed due to invalid sync status",
    "Sync command reported retry status",
    "unhandled status",
};

} // namespace

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

// The folder hierarchy

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
    FolderHierarchyChanges changes(*easAccount, command);
    if (!changes.isReady())
        return completeWith(RequestStatusInternalError);

    bool applied = changes.updateStores(
        FolderHierarchyChanges::OnFailure::GoOn, "failed to update folders in Mail Storage");
    changes.markSaved();
    if (!changes.updateDatabase()) {
        qCCritical(eas()) << "Failed to update folders in EAS DB!";
        applied = false;
    }
    if (mRequestState == StateFolderSync)
        initializeSyncCollections();
    if (!applied) {
        qCCritical(eas()) << "Failed to properly save folders updates!";
        return completeWith(RequestStatusInternalError);
    }
    continueAfterFolderSync(command);
}

void SyncRequest::continueAfterFolderSync(const FolderSyncCommand &command)
{
    if (!command.syncKey().isEmpty())
        EasDatabase::instance()->setFolderSyncKey(accountId(), command.syncKey());
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

void SyncRequest::initializeSyncCollections()
{
    const QStringList chosen = SyncFolderSelection(*account()).serverIds(mSyncService, mSyncFolders);
    for (const QString &serverId : chosen)
        SyncState::addOnce(mSync.collectionsToSync, serverId);
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

// The collections

void SyncRequest::startSyncCommand()
{
    if (startMoveItemsCommand())
        return;
    EasAccount *easAccount = account();
    if (!easAccount) {
        qCCritical(eas()) << "No account object for account:" << accountId();
        return completeWith(RequestStatusInternalError);
    }
    if (!easAccount->commandIsSupported(ProtocolUtils::CommandSync)) {
        qCWarning(eas()) << "Sync command not supported for account:" << accountId();
        return completeWith(RequestStatusCommandNotSupported);
    }
    QList<SyncCollection> initial;
    QList<SyncCollection> continuing;
    if (!SyncCollectionQueue(*easAccount, mSync).queryCollectionsForSync(initial, continuing))
        return completeWith(RequestStatusInternalError);
    qCInfo(eas()) << "initialSync size" << initial.size() << ", sync size" << continuing.size();
    dropCommand();
    if (initial.isEmpty() && continuing.isEmpty()) {
        qCInfo(eas()) << "collections lists are empty, nothing to sync";
        return completeWith(RequestStatusSuccess);
    }
    if (!initial.isEmpty()) {
        qCInfo(eas()) << "Performing initial sync, collections:" << initial.size();
        return sendSync(StateInitialSync, initial);
    }
    qCInfo(eas()) << "Performing continue sync, collections:" << continuing.size();
    sendSync(StateContinuingSync, continuing);
}

void SyncRequest::sendSync(RequestState state, const QList<SyncCollection> &collections)
{
    auto *command = newCommand<SyncCommand>();
    command->addCollections(collections);
    mRequestState = state;
    command->start();
}

bool SyncRequest::startCollectionsResync()
{
    if (mSync.collectionsToResync.isEmpty()) {
        qCInfo(eas()) << "nothing to resync";
        return false;
    }
    EasAccount *easAccount = account();
    if (!easAccount || !easAccount->calendarStorage() || !easAccount->contactStorage()) {
        qCCritical(eas()) << (easAccount && easAccount->calendarStorage() ? "ContactStorage is null"
                                                                          : "CalendarStorage is null");
        return false;
    }
    QList<SyncCollection> collections;
    if (!SyncCollectionQueue(*easAccount, mSync).restart(collections))
        return false;
    qCInfo(eas()) << collections.size() << "collections for resync";
    sendSync(StateResync, collections);
    return true;
}

// Initial collections

void SyncRequest::processInitialSyncFinished(bool success)
{
    qCInfo(eas()) << "Initial Sync command finished: " << success;
    const auto *command = qobject_cast<SyncCommand *>(currentCommand());
    if (!command) {
        setStatus(RequestStatusInternalError);
        qCCritical(eas()) << "Sync command object is not available";
        return complete();
    }
    if (!success) {
        qCWarning(eas()) << "Initial Sync command failed";
        return complete();
    }
    if (status() == 0 || status() == Eas::SyncStatusSuccess)
        return storeInitialKeys(*command);
    handleSyncStatus(initialSyncTexts);
}

void SyncRequest::storeInitialKeys(const SyncCommand &command)
{
    int changed = 0;
    setStatus(RequestStatusSuccess);
    if (!SyncCollectionQueue(*account(), mSync)
             .updateFolderSyncKeys(command.responseCollections(), &changed)) {
        qCCritical(eas()) << "Initial Sync command failed to update folder sync keys";
        return completeWith(RequestStatusInternalError);
    }
    const bool isSilent = command.responseCollections().isEmpty();
    if (isSilent && SyncCollectionQueue(*account(), mSync).leaveOut(command.collections()))
        return startSyncCommand();
    if (changed == 0) {
        // No collection got a key, so the same request would follow at once, without an end.
        const int failure = SyncReplyProcessor::firstFailure(command);
        setStatus(failure != 0 ? failure : RequestStatusInternalError);
        return startResendTimer();
    }
    succeedPhase();
    for (const SyncCollection &collection : command.responseCollections())
        mSync.collectionsToResync.removeAll(collection.id());
    qCInfo(eas()) << "Initial Sync command succeeded, starting next sync command.";
    startSyncCommand();
}

// Collections with a key

void SyncRequest::processSyncFinished(bool success)
{
    qCInfo(eas()) << "Sync command finished: " << success;
    const auto *command = qobject_cast<SyncCommand *>(currentCommand());
    if (!command) {
        setStatus(RequestStatusInternalError);
        qCCritical(eas()) << "Sync command object is not available";
        return complete();
    }
    if (!success)
        return complete();
    if (status() == 0 || status() == Eas::SyncStatusSuccess)
        return applySyncReply(*command);
    handleSyncStatus(continuingSyncTexts);
}

void SyncRequest::applySyncReply(const SyncCommand &command)
{
    EasAccount *easAccount = account();
    if (!easAccount || !easAccount->contactStorage()) {
        qCCritical(eas()) << "ContactStorage is null";
        return completeWith(RequestStatusInternalError);
    }
    resetTimeoutFactor();
    setStatus(RequestStatusSuccess);
    const int waiting = mSync.collectionsToSync.size();
    SyncReplyProcessor processor(*easAccount, mSync, mRetryCount);
    if (!processor.process(command)) {
        setStatus(Eas::SyncStatusInvalidSyncKey);
        return restartFromAccount();
    }
    if (!SyncCollectionQueue(*easAccount, mSync).updateFolderSyncKeys(processor.updated())) {
        qCCritical(eas()) << "failed to update sync keys for updated collections";
        return completeWith(RequestStatusInternalError);
    }
    const QStringList failed = processor.failedIds();
    const bool repeated = std::any_of(failed.cbegin(), failed.cend(), [this](const QString &id) {
        return mSync.collectionsToRetry.contains(id) || mSync.collectionsToResync.contains(id);
    });
    if (processor.failureStatus() != 0 && !repeated) {
        qCWarning(eas()) << "can't handle results for collections:" << failed;
        return completeWith(processor.failureStatus());
    }
    if (processor.recordedStatus() != 0)
        mFailureStatus = processor.recordedStatus();
    finishUnansweredCollections(command);
    const bool progressed = repeated || processor.hasProgressed() || mSync.collectionsToSync.size() < waiting;
    decideNextSync(processor.moreAvailable(), progressed);
}

void SyncRequest::finishUnansweredCollections(const SyncCommand &command)
{
    const QList<SyncCollection> answered = command.responseCollections();
    for (const SyncCollection &collection : command.collections()) {
        if (answered.contains(collection))
            qCDebug(eas()) << "Collection:" << collection.id()
                           << "included in response, may need continuation sync request";
        else
            SyncReplyProcessor::collectionSynced(mSync, collection.id());
    }
}

void SyncRequest::decideNextSync(bool moreAvailable, bool progressed)
{
    if (!mSync.collectionsToResync.isEmpty()) {
        qCInfo(eas()) << "Need to resync collections:" << mSync.collectionsToResync.size();
        if (!startCollectionsResync())
            completeWith(RequestStatusInternalError);
        return;
    }
    if (moreAvailable || !mSync.collectionsToRetry.isEmpty() || !mSync.collectionsToSync.isEmpty()) {
        qCInfo(eas()) << "More changes available:" << moreAvailable << mSync.collectionsToRetry.size()
                      << mSync.collectionsToSync.size();
        qCInfo(eas()) << "Starting next sync command request.";
        if (!progressed)
            return repeatIdleSync();
        mIdleReplies = 0;
        return startSyncCommand();
    }
    if (!mSync.calendarExceptionsForLater.isEmpty())
        return startDeferredExceptions();
    completeSuccessfully();
}

void SyncRequest::repeatIdleSync()
{
    // A server that only says that there is more is asked again after a while, and not for ever.
    setStatus(RequestStatusInternalError);
    if (mIdleReplies++ < ProtocolUtils::CommandMaxRetriesCount)
        return startResendTimer();
    qCWarning(eas()) << "no more attempts, failing request";
    complete();
}

void SyncRequest::startDeferredExceptions()
{
    const auto later = mSync.calendarExceptionsForLater;
    qCInfo(eas()) << "Calendar exceptions for later sync available:" << later.size();
    qCInfo(eas()) << "Starting additional sync command request.";
    for (auto entry = later.cbegin(); entry != later.cend(); ++entry) {
        if (account()->calendarStorage()->touchItems(entry.key(), entry.value()))
            SyncState::addOnce(mSync.collectionsToSync, entry.key());
        else
            qCWarning(eas()) << "Failed touch local items";
    }
    mSync.calendarExceptionsForLater.clear();
    startSyncCommand();
}

void SyncRequest::completeSuccessfully()
{
    if (mFailureStatus != 0)
        return completeWith(mFailureStatus);
    qCInfo(eas()) << "Successfully finished sync request!";
    EasAccount *easAccount = account();
    if (successfullyFinished() && easAccount) {
        easAccount->setLastSyncTime(EasAccount::EmailService, Clock::instance().currentDateTimeUtc());
        easAccount->setFirstSyncCompleted(true);
    }
    dropCommand();
    complete();
}

// What a Sync failed as a whole with

void SyncRequest::handleSyncStatus(const SyncTexts &texts)
{
    switch (status()) {
    case Eas::SyncStatusInvalidSyncKey:
        qCWarning(eas()) << texts.invalidKey;
        return processSyncCommandInvalidSyncKeyError();
    case Eas::SyncStatusProtocolError:
        return processSyncCommandProtocolErrorError(texts.protocolError);
    case Eas::SyncStatusServerError:
        qCWarning(eas()) << texts.serverError;
        return processSyncCommandServerErrorError();
    case Eas::SyncStatusFoldersChanged:
        qCInfo(eas()) << texts.foldersChanged;
        if (mayStartOver())
            startFolderSyncCommand();
        return;
    case Eas::SyncStatusInvalidSync:
        qCWarning(eas()) << texts.invalidSync;
        SyncReplyProcessor::processSyncRequestInvalidSyncError(mSync);
        return startResendTimer();
    case Eas::SyncStatusRetry:
        qCInfo(eas()) << texts.retry;
        return startResendTimer();
    case Eas::CommonStatusSyncStateNotFound:
    case Eas::CommonStatusSyncStateCorrupt:
    case Eas::CommonStatusInvalidStoreRequest:
        qCWarning(eas()) << "status" << status() << ", trying to send request again";
        return startResendTimer();
    default:
        qCWarning(eas()) << texts.unhandled << status();
        complete();
    }
}

void SyncRequest::processSyncCommandInvalidSyncKeyError()
{
    qCInfo(eas()) << "Trying to send Sync request again";
    addCommandToResync();
    if (!mayStartOver())
        return;
    if (!startCollectionsResync()) {
        qCCritical(eas()) << "failed to start collections resync";
        completeWith(RequestStatusInternalError);
    }
}

void SyncRequest::addCommandToResync()
{
    const auto *command = qobject_cast<SyncCommand *>(currentCommand());
    const QList<SyncCollection> sent = command ? command->collections() : QList<SyncCollection>();
    for (const SyncCollection &collection : sent)
        SyncState::addOnce(mSync.collectionsToResync, collection.id());
}

void SyncRequest::processSyncCommandServerErrorError()
{
    if (mRetryCount < ProtocolUtils::CommandMaxRetriesCount) {
        qCInfo(eas()) << "Sync request command retry. Attempt: " << mRetryCount;
        return startResendTimer();
    }
    addCommandToResync();
    if (mayStartOver() && !startCollectionsResync())
        completeWith(RequestStatusInternalError);
}

void SyncRequest::processSyncCommandProtocolErrorError(const char *text)
{
    qCWarning(eas()) << text;
    if (mRetryCount >= ProtocolUtils::CommandMaxRetriesCount) {
        qCWarning(eas()) << "No more retries, failing request.";
        return complete();
    }
    qCInfo(eas()) << "Sync request command retry. Attempt: " << mRetryCount;
    startResendTimer();
}
