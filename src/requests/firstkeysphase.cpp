// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/firstkeysphase.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "protocol/base/eas.h"
#include "protocol/synccommand.h"
#include "requests/synccollectionqueue.h"
#include "storages/calendarstorage.h"
#include "storages/contactstorage.h"

namespace {

using Verb = CollectionsPhase::Verb;
using Statuses = CollectionsPhase::Statuses;

constexpr char AgainText[] = "status %1 , trying to send request again";

constexpr Statuses::Row rows[] = {
    { Eas::SyncStatusUndefined, QtInfoMsg, nullptr, Verb::TakeReply },
    { Eas::SyncStatusSuccess, QtInfoMsg, nullptr, Verb::TakeReply },
    { Eas::SyncStatusInvalidSyncKey, QtWarningMsg,
        "Initial Sync command failed due to zero sync key, retrying!", Verb::InvalidSyncKey },
    { Eas::SyncStatusProtocolError, QtWarningMsg,
        "Protocol error. Something really wrong with the initial sync request", Verb::ProtocolError },
    { Eas::SyncStatusServerError, QtWarningMsg, "Initial Sync command failed due to server error, retrying!",
        Verb::ServerError },
    { Eas::SyncStatusFoldersChanged, QtInfoMsg,
        "Initial Sync command reported remote folders changed, starting folder sync!", Verb::FoldersChanged },
    { Eas::SyncStatusInvalidSync, QtWarningMsg,
        "Initial Sync command failed due to invalid sync status, retrying!", Verb::TooManyCollections },
    { Eas::SyncStatusRetry, QtInfoMsg, "Initial Sync command reported retry status, retrying!",
        Verb::AgainLater },
    { Eas::CommonStatusSyncStateNotFound, QtWarningMsg, AgainText, Verb::AgainLater },
    { Eas::CommonStatusSyncStateCorrupt, QtWarningMsg, AgainText, Verb::AgainLater },
    { Eas::CommonStatusInvalidStoreRequest, QtWarningMsg, AgainText, Verb::AgainLater },
};
constexpr Statuses statuses(rows);
static_assert(statuses.namesEachStatusOnce());

constexpr CollectionsPhase::Texts texts {
    "Initial Sync command finished: ",
    "Initial Sync command failed",
    "unhandled Sync status",
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

/** The status of the first collection of a reply that is no success; 0 if there is none. */
int firstFailure(const SyncCommand &command)
{
    for (const SyncCollection &collection : command.responseCollections()) {
        if (collection.status() > Eas::SyncStatusSuccess)
            return int(collection.status());
    }
    return 0;
}

} // namespace

FirstKeysPhase::FirstKeysPhase(SyncRun &run)
    : CollectionsPhase(run, statuses, texts)
{
}

void FirstKeysPhase::start(const QList<SyncCollection> &collections)
{
    mIsResync = false;
    qCInfo(eas()) << "Performing initial sync, collections:" << collections.size();
    send(collections);
}

SyncPhase::End FirstKeysPhase::startCollectionsResync()
{
    mIsResync = true;
    if (run().state.collectionsToResync.isEmpty()) {
        qCInfo(eas()) << "nothing to resync";
        return failInternally();
    }
    EasAccount *easAccount = account();
    if (!easAccount || !easAccount->calendarStorage() || !easAccount->contactStorage()) {
        qCCritical(eas()) << (easAccount && easAccount->calendarStorage() ? "ContactStorage is null"
                                                                          : "CalendarStorage is null");
        return failInternally();
    }
    QList<SyncCollection> collections;
    if (!SyncCollectionQueue(*easAccount, run().state).restart(collections)) {
        qCCritical(eas()) << "failed to start collections resync";
        return failInternally();
    }
    qCInfo(eas()) << collections.size() << "collections for resync";
    send(collections);
    return End::Sent;
}

SyncPhase::End FirstKeysPhase::takeReply(const SyncCommand &command)
{
    EasAccount *easAccount = account();
    if (!easAccount) {
        qCCritical(eas()) << "No account";
        return failInternally();
    }
    SyncCollectionQueue queue(*easAccount, run().state);
    const QList<SyncCollection> answered = answeredCollections(command);
    int changed = 0;
    run().outcome.setStatus(EasRequestStatus::RequestStatusSuccess);
    if (!queue.updateFolderSyncKeys(answered, &changed)) {
        qCCritical(eas()) << "Initial Sync command failed to update folder sync keys";
        return failInternally();
    }
    if (command.responseCollections().isEmpty() && queue.leaveOut(command.collections()))
        return End::More;
    if (changed == 0) {
        // No collection got a key, so the same request would follow at once, without an end.
        const int failure = firstFailure(command);
        run().outcome.setStatus(failure != 0 ? failure : EasRequestStatus::RequestStatusInternalError);
        return End::AgainLater;
    }
    succeed();
    for (const SyncCollection &collection : answered)
        run().state.collectionsToResync.removeAll(collection.id());
    qCInfo(eas()) << "Initial Sync command succeeded, starting next sync command.";
    return End::More;
}
