// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/syncrequest.h"

#include "application/account/easaccount.h"
#include "application/base/clock.h"
#include "application/base/logging.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"
#include "protocol/synccommand.h"
#include "requests/synccollectionqueue.h"
#include "requests/syncreplyprocessor.h"
#include "storages/calendarstorage.h"
#include "storages/contactstorage.h"

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

/** The collections of a reply that were asked for: a key for another one would be no step ahead. */
QList<SyncCollection> answeredCollections(const SyncCommand &command)
{
    const QList<SyncCollection> sent = command.collections();
    QList<SyncCollection> answered;
    for (const SyncCollection &collection : command.responseCollections()) {
        if (sent.contains(collection))
            answered.append(collection);
    }
    return answered;
}

} // namespace

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
        return completeWith(mFailureStatus);
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
    EasAccount *easAccount = account();
    if (!easAccount) {
        qCCritical(eas()) << "No account";
        return completeWith(RequestStatusInternalError);
    }
    SyncCollectionQueue queue(*easAccount, mSync);
    const QList<SyncCollection> answered = answeredCollections(command);
    int changed = 0;
    setStatus(RequestStatusSuccess);
    if (!queue.updateFolderSyncKeys(answered, &changed)) {
        qCCritical(eas()) << "Initial Sync command failed to update folder sync keys";
        return completeWith(RequestStatusInternalError);
    }
    if (command.responseCollections().isEmpty() && queue.leaveOut(command.collections()))
        return startSyncCommand();
    if (changed == 0) {
        // No collection got a key, so the same request would follow at once, without an end.
        const int failure = SyncReplyProcessor::firstFailure(command);
        setStatus(failure != 0 ? failure : RequestStatusInternalError);
        return startResendTimer();
    }
    succeedPhase();
    for (const SyncCollection &collection : answered)
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
        mSync.calendarExceptionsTouched[entry.key()] += entry.value();
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
