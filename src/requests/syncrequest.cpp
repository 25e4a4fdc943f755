// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/syncrequest.h"

#include "application/account/easaccount.h"
#include "application/base/clock.h"
#include "application/base/logging.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"
#include "requests/synccollectionqueue.h"
#include "requests/syncfolderselection.h"
#include "storages/contactstorage.h"
#include "storages/mailstorage.h"

namespace {

constexpr char DeviceText[] = "invalid Device ID or Type. Trying to update Device information";
constexpr char TooLargeText[] = "The message is too large or the mailbox is over-quota: %1";

/** What a status means whatever the phase. */
constexpr RequestStatusTable::Row rows[] = {
    { Eas::CommonStatusInvalidDeviceId, QtWarningMsg, DeviceText, RequestVerb::RefreshDeviceAndRetryLater },
    { Eas::CommonStatusInvalidDeviceType, QtWarningMsg, DeviceText, RequestVerb::RefreshDeviceAndRetryLater },
    { Eas::CommonStatusSendQuotaExceeded, QtWarningMsg, TooLargeText, RequestVerb::RefuseTooLarge },
    { Eas::CommonStatusAttachmentTooLarge, QtWarningMsg, TooLargeText, RequestVerb::RefuseTooLarge },
};
constexpr RequestStatusTable statuses(rows);
static_assert(statuses.namesEachStatusOnce());

/** Percent of the request, by the state whose command has finished. */
constexpr int progress[] = { 0, 20, 20, 50, 60, 80, 40 };

} // namespace

SyncRequest::SyncRequest(EasAccountId accountId, quint64 requestId, QObject *parent)
    : HierarchyRequest(accountId, requestId, parent)
    , mRun { *this, outcome(), attempts() }
    , mHierarchy(mRun, HierarchyPhase::InSync)
    , mMoves(mRun)
    , mFirstKeys(mRun)
    , mItems(mRun)
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

SyncPhase::State SyncRequest::requestState() const
{
    return mPhase ? mPhase->state() : SyncPhase::StateIdle;
}

bool SyncRequest::started() const
{
    return requestState() != SyncPhase::StateIdle;
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
    if (const QSharedPointer<MailStorage> mail = easAccount->mailStorage())
        mail->lookForChangesAnew();
    if (const QSharedPointer<ContactStorage> contacts = easAccount->contactStorage())
        connect(this, &SyncRequest::syncCompleted, contacts.data(), &ContactStorage::onSyncCompleted,
            Qt::UniqueConnection);
    // First, because the command may end before its start returns.
    Q_EMIT syncStarted(accountId(), id());
    startFolderSyncCommand();
}

void SyncRequest::reportRequestCompleted()
{
    if (hasEnded())
        return;
    mPhase = nullptr;
    HierarchyRequest::reportRequestCompleted();
}

void SyncRequest::resumeRequest(bool success)
{
    if (!success)
        return complete();
    switch (requestState()) {
    case SyncPhase::StateIdle:
    case SyncPhase::StateInitialFolderSync:
    case SyncPhase::StateFolderSync:
        qCInfo(eas()) << "resuming from FolderSync state";
        return startFolderSyncCommand();
    case SyncPhase::StateMoveItems:
        return startCollections();
    default:
        startSyncCommand();
    }
}

void SyncRequest::retrySend()
{
    if (attempts().spent())
        qCWarning(eas()) << "no more attempts, failing request";
    if (!consumeRetry())
        return;
    switch (requestState()) {
    case SyncPhase::StateIdle:
        return startRequest();
    case SyncPhase::StateInitialFolderSync:
    case SyncPhase::StateFolderSync:
        return startFolderSyncCommand();
    default:
        startSyncCommand();
    }
}

void SyncRequest::onCommandFinished(bool success)
{
    if (!acceptResult(currentCommand(), success)) {
        if (currentCommand())
            qCInfo(eas()) << "Provision request started";
        return dropCommand();
    }
    if (handleStatus(status(), statuses, QString::number(status())))
        return;
    if (!mPhase) {
        qCCritical(eas()) << "finished signal received for unhandled state" << requestState()
                          << ", success=" << success;
        return completeWith(RequestStatusInternalError);
    }
    Q_EMIT requestDownloadProgress(accountId(), id(), progress[requestState()], 100);
    follow(mPhase->finish(success));
}

void SyncRequest::follow(SyncPhase::End end)
{
    switch (end) {
    case SyncPhase::End::Sent:
        return;
    case SyncPhase::End::Done:
        return startNextPhase();
    case SyncPhase::End::More:
        return startSyncCommand();
    case SyncPhase::End::CollectionsAnew:
        return startCollectionsResync();
    case SyncPhase::End::StartOver:
        return startFolderSyncCommand();
    case SyncPhase::End::AgainLater:
        return startResendTimer();
    case SyncPhase::End::Failed:
        return complete();
    }
}

void SyncRequest::startNextPhase()
{
    if (mPhase == &mHierarchy) {
        if (!initializeSyncCollections())
            return completeWith(RequestStatusInternalError);
        return startSyncCommand();
    }
    if (mPhase == &mItems)
        return completeSuccessfully();
    startCollections();
}

void SyncRequest::startFolderSyncCommand()
{
    mPhase = &mHierarchy;
    follow(mHierarchy.start());
}

void SyncRequest::startSyncCommand()
{
    startMoveItemsCommand();
}

void SyncRequest::startMoveItemsCommand()
{
    mPhase = &mMoves;
    follow(mMoves.start());
}

void SyncRequest::startCollections()
{
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
    if (!SyncCollectionQueue(*easAccount, mRun.state).queryCollectionsForSync(initial, continuing))
        return completeWith(RequestStatusInternalError);
    qCInfo(eas()) << "initialSync size" << initial.size() << ", sync size" << continuing.size();
    dropCommand();
    if (initial.isEmpty() && continuing.isEmpty()) {
        if (retrySetAside())
            return;
        qCInfo(eas()) << "collections lists are empty, nothing to sync";
        return completeWith(outcome().failure());
    }
    if (!initial.isEmpty()) {
        mPhase = &mFirstKeys;
        return mFirstKeys.start(initial);
    }
    mPhase = &mItems;
    mItems.start(continuing);
}

void SyncRequest::startCollectionsResync()
{
    mPhase = &mFirstKeys;
    follow(mFirstKeys.startCollectionsResync());
}

bool SyncRequest::initializeSyncCollections()
{
    EasAccount *easAccount = account();
    if (!easAccount) {
        qCCritical(eas()) << "No account";
        return false;
    }
    SyncFolderSelection selection(*easAccount);
    const Lookup<QStringList> chosen = selection.serverIds(mSyncService, mSyncFolders);
    if (!chosen) {
        qCCritical(eas()) << "failed to read folders from EAS DB";
        return false;
    }
    for (const QString &serverId : *chosen)
        SyncState::addOnce(mRun.state.collectionsToSync, serverId);
    return true;
}

bool SyncRequest::retrySetAside()
{
    const int status = mRun.state.takeSetAside();
    if (status == RequestStatusSuccess)
        return false;
    setStatus(status);
    startResendTimer();
    return true;
}

void SyncRequest::completeSuccessfully()
{
    if (retrySetAside())
        return;
    if (outcome().failure() != RequestStatusSuccess)
        return completeWith(outcome().failure());
    qCInfo(eas()) << "Successfully finished sync request!";
    EasAccount *easAccount = account();
    if (successfullyFinished() && easAccount) {
        easAccount->setLastSyncTime(EasAccount::EmailService, Clock::instance().currentDateTimeUtc());
        easAccount->setFirstSyncCompleted(true);
    }
    dropCommand();
    complete();
}
