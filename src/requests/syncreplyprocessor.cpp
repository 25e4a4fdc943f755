// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/syncreplyprocessor.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/base/eas.h"
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

constexpr char LostStateText[] =
    "Invalid or mismatched synchronization key or synchronization state corrupted on server";

} // namespace

const SyncReplyProcessor::Statuses SyncReplyProcessor::statuses = [] {
    static constexpr Statuses::Row rows[] = {
        { Eas::SyncStatusUndefined, QtInfoMsg, nullptr, Verb::TakeItems },
        { Eas::SyncStatusSuccess, QtInfoMsg, nullptr, Verb::TakeItems },
        { Eas::SyncStatusInvalidSyncKey, QtWarningMsg, LostStateText, Verb::LoseState },
        { Eas::SyncStatusProtocolError, QtWarningMsg,
            "protocol error. We should check request and send it again", Verb::Fail },
        { Eas::SyncStatusCannotComplete, QtWarningMsg,
            "user should free disk space on the server before retry", Verb::FailStorageFull },
        { Eas::SyncStatusRequestNotComplete, QtWarningMsg,
            "Sync request command is not complete for collection %1", Verb::Fail },
        { Eas::SyncStatusInvalidWait, QtWarningMsg, "Invalid Wait or HeartbeatInterval values", Verb::Fail },
        { Eas::SyncStatusInvalidSync, QtWarningMsg, nullptr, Verb::Narrow },
        { Eas::SyncStatusRetry, QtInfoMsg, "we should retry our sync request for collection %1",
            Verb::Repeat },
    };
    constexpr Statuses table(rows);
    static_assert(table.namesEachStatusOnce());
    return table;
}();

SyncReplyProcessor::SyncReplyProcessor(EasAccount &account, SyncState &state, Attempts &attempts)
    : mAccount(account)
    , mState(state)
    , mAttempts(attempts)
{
}

SyncReplyProcessor::Reply SyncReplyProcessor::process(const SyncCommand &command)
{
    if (!asksForRepetition(command))
        mAttempts.reset();
    for (const SyncCollection &collection : command.collections())
        mSentKeys.insert(collection.id(), collection.syncKey());
    const QList<SyncCollection> collections = command.responseCollections();
    for (SyncCollection collection : collections) {
        const Statuses::Row *row = statuses.find(int(collection.status()));
        if (row)
            logStatusText(row->level, row->text, collection.id());
        if (row && row->verb == Verb::LoseState)
            return Reply::StateLost;
        apply(judge(collection, row), collection);
    }
    return Reply::Taken;
}

bool SyncReplyProcessor::asksForRepetition(const SyncCommand &command) const
{
    // Otherwise the success of the other collections would let one be repeated for ever.
    const QList<SyncCollection> collections = command.responseCollections();
    return std::any_of(collections.cbegin(), collections.cend(), [](const SyncCollection &collection) {
        const Statuses::Row *row = statuses.find(int(collection.status()));
        return row && (row->verb == Verb::Repeat || row->verb == Verb::Narrow);
    });
}

SyncReplyProcessor::Result SyncReplyProcessor::judge(SyncCollection &collection, const Statuses::Row *row)
{
    switch (row ? row->verb : Verb::Fail) {
    case Verb::TakeItems:
        return takeItems(collection);
    case Verb::Narrow:
        return narrow(collection);
    case Verb::Repeat:
        return repeat(collection);
    case Verb::FailStorageFull:
        mRecordedStatus = Request::RequestStatusServerStorageFull;
        break;
    case Verb::Fail:
    case Verb::LoseState:
        break;
    }
    return Result::Refused;
}

void SyncReplyProcessor::apply(Result result, const SyncCollection &collection)
{
    switch (result) {
    case Result::Taken:
        mUpdated.append(collection);
        if (bearsItems(collection))
            mState.hasBroughtChanges = true;
        if (bearsItems(collection) && collection.syncKey() != mSentKeys.value(collection.id()))
            mHasProgressed = true;
        if (mState.uploadAnswered(collection.id()))
            mHasProgressed = true;
        return closeUnlessMore(collection);
    case Result::NotHandled:
        return closeUnlessMore(collection);
    case Result::NotStored:
        addFailed(collection, mStoreStatus);
        return closeUnlessMore(collection);
    case Result::Refused:
        return addFailed(collection, int(collection.status()));
    case Result::GivenUp:
        return mState.collectionSynced(collection.id());
    }
}

void SyncReplyProcessor::closeUnlessMore(const SyncCollection &collection)
{
    // A failed collection is repeated from its old key by the next sync, not by this one.
    if (collection.moreAvailable())
        mMoreAvailable = true;
    else
        mState.collectionSynced(collection.id());
}

SyncReplyProcessor::Result SyncReplyProcessor::narrow(const SyncCollection &collection)
{
    // All collections of a reply can say so, which counts once.
    if (mHasNarrowed)
        return Result::Refused;
    if (!mAttempts.consume()) {
        mState.collectionSynced(collection.id());
        return Result::Refused;
    }
    mHasNarrowed = true;
    mState.processSyncRequestInvalidSyncError();
    return Result::Refused;
}

SyncReplyProcessor::Result SyncReplyProcessor::repeat(const SyncCollection &collection)
{
    if (!mAttempts.consume())
        return Result::GivenUp;
    SyncState::addOnce(mState.collectionsToRetry, collection.id());
    return Result::Refused;
}

SyncReplyProcessor::Result SyncReplyProcessor::takeItems(SyncCollection &collection)
{
    mState.collectionsToRetry.removeAll(collection.id());
    const Lookup<EasFolderItem::FolderType> type =
        EasDatabase::instance()->folderTypeByServerId(mAccount.id(), collection.id());
    if (!type) {
        qCCritical(eas()) << "failed to read folders from EAS DB";
        mStoreStatus = mRecordedStatus = Request::RequestStatusInternalError;
        return Result::NotStored;
    }
    const std::unique_ptr<SyncResultHandler> handler = handlerFor(*type, mAccount, mState);
    if (!handler) {
        qCWarning(eas()) << "unhandled folder type" << *type;
        return Result::NotHandled;
    }
    // While changes of the device wait, the server is not asked for its own.
    if (mState.uploads.value(collection.id()).isWaiting)
        collection.setMoreAvailable(true);
    const bool handled = handler->handle(collection);
    mStoreStatus = handler->status();
    if (mStoreStatus != 0)
        mRecordedStatus = mStoreStatus;
    return handled ? Result::Taken : Result::NotStored;
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
