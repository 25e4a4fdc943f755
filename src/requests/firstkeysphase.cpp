// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/firstkeysphase.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"
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

/** The collections of a reply that were asked for and have got a key; another one would be no step ahead. */
QList<SyncCollection> keyedCollections(const SyncCommand &command)
{
    const QList<SyncCollection> sent = command.collections();
    QList<SyncCollection> keyed;
    for (const SyncCollection &collection : command.responseCollections()) {
        if (sent.contains(collection) && collection.status() <= Eas::SyncStatusSuccess
            && !collection.syncKey().isEmpty() && collection.syncKey() != ProtocolUtils::InitialSyncKey)
            keyed.append(collection);
    }
    return keyed;
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
    if (command.responseCollections().isEmpty())
        return takeSilence(command);
    const QList<SyncCollection> keyed = keyedCollections(command);
    run().outcome.setStatus(EasRequestStatus::RequestStatusSuccess);
    if (!SyncCollectionQueue(*easAccount, run().state).updateFolderSyncKeys(keyed)) {
        qCCritical(eas()) << "Initial Sync command failed to update folder sync keys";
        return failInternally();
    }
    setAside(command, keyed);
    if (keyed.isEmpty())
        return End::More;
    succeed();
    for (const SyncCollection &collection : keyed) {
        run().state.collectionsToResync.removeAll(collection.id());
        run().state.collectionsToAskAlone.removeAll(collection.id());
        run().state.collectionsSetAside.remove(collection.id());
    }
    qCInfo(eas()) << "Initial Sync command succeeded, starting next sync command.";
    return End::More;
}

void FirstKeysPhase::setAside(const SyncCommand &command, const QList<SyncCollection> &keyed)
{
    const QList<SyncCollection> answered = command.responseCollections();
    for (const SyncCollection &collection : command.collections()) {
        if (keyed.contains(collection))
            continue;
        const int index = answered.indexOf(collection);
        // What the server has passed over is asked for again at once, as long as others get their keys.
        if (index < 0 && !keyed.isEmpty())
            continue;
        const int status = index < 0 ? 0 : int(answered.at(index).status());
        run().state.setAside(collection.id(),
            status > Eas::SyncStatusSuccess ? status : EasRequestStatus::RequestStatusInternalError);
    }
}

SyncPhase::End FirstKeysPhase::takeSilence(const SyncCommand &command)
{
    SyncState &state = run().state;
    SyncCollectionQueue queue(*account(), state);
    for (const SyncCollection &collection : command.collections()) {
        const QString id = collection.id();
        if (!state.collectionsAskedAlone.contains(id)) {
            state.collectionsAskedAlone.append(id);
            state.collectionsToAskAlone.append(id);
        } else if (!queue.leaveOut(collection)) {
            // As long as no collection has a key at all, the silence may concern all of them.
            state.setAside(id, EasRequestStatus::RequestStatusInternalError);
        }
    }
    return End::More;
}
