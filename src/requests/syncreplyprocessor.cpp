// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/syncreplyprocessor.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"
#include "protocol/synccommand.h"
#include "requests/calendarresulthandler.h"
#include "requests/contactsresulthandler.h"
#include "requests/emailresulthandler.h"
#include "requests/request.h"
#include "requests/syncstate.h"

#include <algorithm>
#include <memory>

namespace {

std::unique_ptr<SyncResultHandler> handlerFor(
    EasFolderItem::FolderType type, EasAccount &account, SyncState &state)
{
    EasFolderItem folder;
    folder.setType(type);
    if (folder.isCalendar())
        return std::make_unique<CalendarResultHandler>(account, state);
    if (folder.isContacts())
        return std::make_unique<ContactsResultHandler>(account, state);
    // An outbox is a mail folder of the hierarchy, but its contents are never synchronised.
    if (folder.isEmail() && type != EasFolderItem::DefaultOutboxFolder)
        return std::make_unique<EmailResultHandler>(account, state);
    return nullptr;
}

} // namespace

SyncReplyProcessor::SyncReplyProcessor(EasAccount &account, SyncState &state, int &retryCount)
    : mAccount(account)
    , mState(state)
    , mRetryCount(retryCount)
{
}

bool SyncReplyProcessor::process(const SyncCommand &command)
{
    if (!asksForRepetition(command))
        mRetryCount = 0;
    for (const SyncCollection &collection : command.collections())
        mSentKeys.insert(collection.id(), collection.syncKey());
    const QList<SyncCollection> collections = command.responseCollections();
    for (SyncCollection collection : collections) {
        if (collection.status() == Eas::SyncStatusInvalidSyncKey) {
            qCWarning(eas())
                << "Invalid or mismatched synchronization key or synchronization state corrupted "
                   "on server";
            return false;
        }
        processCollection(collection);
    }
    return true;
}

bool SyncReplyProcessor::asksForRepetition(const SyncCommand &command) const
{
    // Otherwise the success of the other collections would let one be repeated for ever.
    const QList<SyncCollection> collections = command.responseCollections();
    return std::any_of(collections.cbegin(), collections.cend(), [](const SyncCollection &collection) {
        return collection.status() == Eas::SyncStatusRetry
            || collection.status() == Eas::SyncStatusInvalidSync;
    });
}

void SyncReplyProcessor::processCollection(SyncCollection &collection)
{
    if (!handleCollectionResults(collection))
        return;
    if (handleItems(collection) && bearsItems(collection)
        && collection.syncKey() != mSentKeys.value(collection.id()))
        mHasProgressed = true;
    // A failed collection is repeated from its old key by the next sync, not by this one.
    if (collection.moreAvailable())
        mMoreAvailable = true;
    else
        collectionSynced(mState, collection.id());
}

bool SyncReplyProcessor::handleCollectionResults(const SyncCollection &collection)
{
    switch (collection.status()) {
    case Eas::SyncStatusUndefined:
    case Eas::SyncStatusSuccess:
        mState.collectionsToRetry.removeAll(collection.id());
        return true;
    case Eas::SyncStatusProtocolError:
        qCWarning(eas()) << "protocol error. We should check request and send it again";
        break;
    case Eas::SyncStatusCannotComplete:
        mRecordedStatus = Request::RequestStatusServerStorageFull;
        qCWarning(eas()) << "user should free disk space on the server before retry";
        break;
    case Eas::SyncStatusRequestNotComplete:
        qCWarning(eas()) << "Sync request command is not complete for collection" << collection.id();
        break;
    case Eas::SyncStatusInvalidWait:
        qCWarning(eas()) << "Invalid Wait or HeartbeatInterval values";
        break;
    case Eas::SyncStatusInvalidSync:
        narrow(collection);
        break;
    case Eas::SyncStatusRetry:
        qCInfo(eas()) << "we should retry our sync request for collection" << collection.id();
        if (!mayRepeat(collection))
            return false;
        break;
    default:
        break;
    }
    addFailed(collection, collection.status());
    return false;
}

void SyncReplyProcessor::narrow(const SyncCollection &collection)
{
    // All collections of a reply can say so, which counts once.
    if (mHasNarrowed)
        return;
    if (mRetryCount >= ProtocolUtils::CommandMaxRetriesCount)
        return collectionSynced(mState, collection.id());
    mHasNarrowed = true;
    ++mRetryCount;
    processSyncRequestInvalidSyncError(mState);
}

bool SyncReplyProcessor::mayRepeat(const SyncCollection &collection)
{
    if (mRetryCount >= ProtocolUtils::CommandMaxRetriesCount) {
        collectionSynced(mState, collection.id());
        return false;
    }
    SyncState::addOnce(mState.collectionsToRetry, collection.id());
    ++mRetryCount;
    return true;
}

bool SyncReplyProcessor::handleItems(SyncCollection &collection)
{
    const EasFolderItem::FolderType type =
        EasDatabase::instance()->folderTypeByServerId(mAccount.id(), collection.id());
    if (EasDatabase::instance()->lookupFailed()) {
        qCCritical(eas()) << "failed to read folders from EAS DB";
        mRecordedStatus = Request::RequestStatusInternalError;
        addFailed(collection, mRecordedStatus);
        return false;
    }
    const std::unique_ptr<SyncResultHandler> handler = handlerFor(type, mAccount, mState);
    if (!handler) {
        qCWarning(eas()) << "unhandled folder type" << type;
        return false;
    }
    const bool handled = handler->handle(collection);
    if (handler->status() != 0)
        mRecordedStatus = handler->status();
    if (handled)
        mUpdated.append(collection);
    else
        addFailed(collection, handler->status());
    return handled;
}

void SyncReplyProcessor::addFailed(const SyncCollection &collection, int status)
{
    if (mFirstFailedStatus == 0)
        mFirstFailedStatus = status;
    if (collection.id().isEmpty())
        qCWarning(eas()) << "response had an empty collectionId for the collection";
    else
        mFailedIds.append(collection.id());
}

bool SyncReplyProcessor::bearsItems(const SyncCollection &collection)
{
    return !collection.deletedIds().isEmpty() || !collection.addedEmails().isEmpty()
        || !collection.changedEmails().isEmpty() || !collection.addedCalendarItems().isEmpty()
        || !collection.changedCalendarItems().isEmpty() || !collection.addedContacts().isEmpty()
        || !collection.changedContacts().isEmpty();
}

void SyncReplyProcessor::collectionSynced(SyncState &state, const QString &serverId)
{
    state.collectionsToRetry.removeAll(serverId);
    state.collectionsToSync.removeAll(serverId);
}

void SyncReplyProcessor::processSyncRequestInvalidSyncError(SyncState &state)
{
    qCWarning(eas()) << "Too many collections in SyncRequest";
    if (!state.collectionsToSync.isEmpty())
        SyncState::addOnce(state.collectionsToRetry, state.collectionsToSync.first());
}

int SyncReplyProcessor::firstFailure(const SyncCommand &command)
{
    const QList<SyncCollection> collections = command.responseCollections();
    for (const SyncCollection &collection : collections) {
        if (collection.status() > Eas::SyncStatusSuccess)
            return int(collection.status());
    }
    return 0;
}
