// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/itemsphase.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "protocol/base/eas.h"
#include "protocol/synccommand.h"
#include "requests/synccollectionqueue.h"
#include "requests/syncreplyprocessor.h"
#include "storages/calendarstorage.h"
#include "storages/contactstorage.h"

#include <algorithm>

namespace {

using Verb = CollectionsPhase::Verb;
using Statuses = CollectionsPhase::Statuses;

constexpr char AgainText[] = "status %1 , trying to send request again";

constexpr Statuses::Row rows[] = {
    { Eas::SyncStatusUndefined, QtInfoMsg, nullptr, Verb::TakeReply },
    { Eas::SyncStatusSuccess, QtInfoMsg, nullptr, Verb::TakeReply },
    { Eas::SyncStatusInvalidSyncKey, QtWarningMsg, "Trying to Resync collections", Verb::InvalidSyncKey },
    { Eas::SyncStatusProtocolError, QtWarningMsg,
        "Protocol error. Something really wrong with the sync request", Verb::ProtocolError },
    { Eas::SyncStatusServerError, QtWarningMsg, "Sync command failed due to server error",
        Verb::ServerError },
    { Eas::SyncStatusFoldersChanged, QtInfoMsg, "Sync command reported remote folders changed",
        Verb::FoldersChanged },
    { Eas::SyncStatusInvalidSync, QtWarningMsg, "Sync command failed due to invalid sync status",
        Verb::TooManyCollections },
    { Eas::SyncStatusRetry, QtInfoMsg, "Sync command reported retry status", Verb::AgainLater },
    { Eas::CommonStatusSyncStateNotFound, QtWarningMsg, AgainText, Verb::AgainLater },
    { Eas::CommonStatusSyncStateCorrupt, QtWarningMsg, AgainText, Verb::AgainLater },
    { Eas::CommonStatusInvalidStoreRequest, QtWarningMsg, AgainText, Verb::AgainLater },
};
constexpr Statuses statuses(rows);
static_assert(statuses.namesEachStatusOnce());

constexpr CollectionsPhase::Texts texts { "Sync command finished: ", nullptr, "unhandled status" };

} // namespace

ItemsPhase::ItemsPhase(SyncRun &run)
    : CollectionsPhase(run, statuses, texts)
{
}

void ItemsPhase::start(const QList<SyncCollection> &collections)
{
    qCInfo(eas()) << "Performing continue sync, collections:" << collections.size();
    send(collections);
}

SyncPhase::End ItemsPhase::takeReply(const SyncCommand &command)
{
    EasAccount *easAccount = account();
    if (!easAccount || !easAccount->contactStorage()) {
        qCCritical(eas()) << "ContactStorage is null";
        return failInternally();
    }
    run().outcome.setStatus(EasRequestStatus::RequestStatusSuccess);
    run().attempts.resetDelay();
    const int waiting = run().state.collectionsToSync.size();
    SyncReplyProcessor processor(*easAccount, run().state, run().attempts);
    if (processor.process(command) == SyncReplyProcessor::Reply::StateLost)
        return startAccountAnew();
    if (!SyncCollectionQueue(*easAccount, run().state).updateFolderSyncKeys(processor.updated())) {
        qCCritical(eas()) << "failed to update sync keys for updated collections";
        return failInternally();
    }
    const bool repeated = areRepeated(processor.failedIds());
    if (processor.failureStatus() != 0 && !repeated) {
        qCWarning(eas()) << "can't handle results for collections:" << processor.failedIds();
        return failWith(processor.failureStatus());
    }
    run().outcome.noteFailure(processor.recordedStatus());
    if (!finishUnansweredCollections(command)) {
        qCCritical(eas()) << "Failed to update contacts items";
        return failInternally();
    }
    const bool progressed =
        repeated || processor.hasProgressed() || run().state.collectionsToSync.size() < waiting;
    return decideNext(processor.moreAvailable(), progressed);
}

SyncPhase::End ItemsPhase::startAccountAnew()
{
    run().outcome.setStatus(Eas::SyncStatusInvalidSyncKey);
    if (!run().mayGoBack())
        return End::Failed;
    return run().clearAccount() ? End::StartOver : failInternally();
}

bool ItemsPhase::areRepeated(const QStringList &collectionIds) const
{
    const SyncState &state = run().state;
    return std::any_of(collectionIds.cbegin(), collectionIds.cend(), [&state](const QString &id) {
        return state.collectionsToRetry.contains(id) || state.collectionsToResync.contains(id);
    });
}

bool ItemsPhase::finishUnansweredCollections(const SyncCommand &command)
{
    bool finished = true;
    const QSharedPointer<ContactStorage> contacts = account()->contactStorage();
    const QList<SyncCollection> answered = command.responseCollections();
    for (const SyncCollection &collection : command.collections()) {
        if (answered.contains(collection)) {
            qCDebug(eas()) << "Collection:" << collection.id()
                           << "included in response, may need continuation sync request";
            continue;
        }
        run().state.collectionSynced(collection.id());
        if (collection.getChanges())
            finished = contacts->unchanged(collection.id()) && finished;
    }
    return finished;
}

SyncPhase::End ItemsPhase::decideNext(bool moreAvailable, bool progressed)
{
    SyncState &state = run().state;
    if (!state.collectionsToResync.isEmpty()) {
        for (const QString &serverId : qAsConst(state.collectionsToResync))
            SyncState::addOnce(state.collectionsToSync, serverId);
        qCInfo(eas()) << "Need to resync collections:" << state.collectionsToResync.size();
        return End::CollectionsAnew;
    }
    if (moreAvailable || !state.collectionsToRetry.isEmpty() || !state.collectionsToSync.isEmpty()) {
        qCInfo(eas()) << "More changes available:" << moreAvailable << state.collectionsToRetry.size()
                      << state.collectionsToSync.size();
        qCInfo(eas()) << "Starting next sync command request.";
        if (!progressed)
            return repeatIdleSync();
        mIdleReplies.reset();
        return End::More;
    }
    return state.calendarExceptionsForLater.isEmpty() ? End::Done : startDeferredExceptions();
}

SyncPhase::End ItemsPhase::repeatIdleSync()
{
    // A server that only says that there is more is asked again after a while, and not for ever.
    run().outcome.setStatus(EasRequestStatus::RequestStatusInternalError);
    if (mIdleReplies.consume())
        return End::AgainLater;
    qCWarning(eas()) << "no more attempts, failing request";
    return End::Failed;
}

SyncPhase::End ItemsPhase::startDeferredExceptions()
{
    SyncState &state = run().state;
    const auto later = state.calendarExceptionsForLater;
    qCInfo(eas()) << "Calendar exceptions for later sync available:" << later.size();
    qCInfo(eas()) << "Starting additional sync command request.";
    for (auto entry = later.cbegin(); entry != later.cend(); ++entry) {
        if (account()->calendarStorage()->touchItems(entry.key(), entry.value()))
            SyncState::addOnce(state.collectionsToSync, entry.key());
        else
            qCWarning(eas()) << "Failed touch local items";
        state.calendarExceptionsTouched[entry.key()] += entry.value();
        for (const QPair<QString, QString> &occurrence : entry.value())
            state.uploads[entry.key()].sent.remove(occurrence.first);
    }
    state.calendarExceptionsForLater.clear();
    return End::More;
}
