// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/moveitemsresulthandler.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/base/eas.h"
#include "protocol/elements/moveitemsresponse.h"
#include "protocol/moveitemscommand.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "requests/syncstate.h"
#include "storages/mailstorage.h"

const MoveItemsResultHandler::Statuses MoveItemsResultHandler::statuses = [] {
    static constexpr Statuses::Row rows[] = {
        { Eas::MoveItemsInvalidSourceId, QtWarningMsg, "invalid source message or folder id for message: %1",
            Verb::AskForSource },
        { Eas::MoveItemsInvalidDestinationId, QtWarningMsg, "invalid destination id for message: %1",
            Verb::AskForFolders },
        { Eas::MoveItemsStatusSuccess, QtInfoMsg, nullptr, Verb::TakeNewName },
        { Eas::MoveItemsStatusSameSrcDstId, QtWarningMsg,
            "same source and destination folder ids for message: %1", Verb::KeepName },
        { Eas::MoveItemsStatusCannotBeMoved, QtWarningMsg,
            "item can't be moved. Multiple destination folder elements?", Verb::LeaveForNextSync },
        { Eas::MoveItemsStatusSrcOrDstLocked, QtWarningMsg,
            "source or destination folder is locked for message: %1", Verb::AgainLater },
    };
    constexpr Statuses table(rows);
    static_assert(table.namesEachStatusOnce());
    return table;
}();

MoveItemsResultHandler::MoveItemsResultHandler(EasAccount &account, SyncState &state)
    : mAccount(account)
    , mState(state)
{
}

QList<MoveContainer> MoveItemsResultHandler::moves(const QList<EasEmailItem> &movedEmails)
{
    QList<MoveContainer> moves;
    QSet<QString> taken;
    for (const EasEmailItem &item : movedEmails) {
        const QString wireId = KeptEmailId(item.serverId()).onWire().text();
        if (taken.contains(wireId))
            continue;
        taken.insert(wireId);
        moves.append(MoveContainer(wireId, item.sourceFolderId(), item.destinationFolderId()));
    }
    return moves;
}

bool MoveItemsResultHandler::handle(const MoveItemsCommand &command)
{
    QHash<QString, MoveItemsResponse> responses;
    for (const MoveItemsResponse &response : command.moveItemsResponses())
        responses.insert(response.sourceMessageId(), response);

    if (!lookUp(command.moveItems(), responses))
        return false;
    for (const MoveContainer &move : command.moveItems()) {
        const auto response = responses.constFind(move.sourceMessageId());
        if (response == responses.constEnd())
            qCWarning(eas()) << "unknown source message id" << move.sourceMessageId();
        else
            handleMove(move, *response);
    }
    return removeLost() && recordMoved();
}

bool MoveItemsResultHandler::lookUp(
    const QList<MoveContainer> &moves, const QHash<QString, MoveItemsResponse> &responses)
{
    QList<MailServerIds::Item> items;
    for (const MoveContainer &move : moves) {
        // What is in its new folder already keeps its name.
        const WireEmailId source(move.sourceMessageId());
        const WireEmailId destination(responses.value(source.text()).destinationMessageId());
        items.append({ move.sourceFolderId(), source });
        items.append({ move.destinationFolderId(), source });
        items.append({ move.destinationFolderId(), destination });
    }
    const Lookup<MailServerIds> ids = MailServerIds::lookUp(mAccount.id(), items);
    if (!ids) {
        qCCritical(eas()) << "Failed to read emails from EAS DB";
        return false;
    }
    mIds = *ids;
    return true;
}

void MoveItemsResultHandler::handleMove(const MoveContainer &move, const MoveItemsResponse &response)
{
    const QString id = move.sourceMessageId();
    const Statuses::Row *row = statuses.find(response.status());
    if (!row) {
        qCWarning(eas()) << "received response status" << response.status() << "for message" << id;
        return;
    }
    logStatusText(row->level, row->text, id);
    switch (row->verb) {
    case Verb::TakeNewName:
        return takeNewName(move, WireEmailId(response.destinationMessageId()));
    case Verb::KeepName:
        return appendMoved(move, WireEmailId(id));
    case Verb::AskForSource:
        return askForSource(move);
    case Verb::AskForFolders:
        mFolderSyncNeeded = true;
        return;
    case Verb::AgainLater:
        mRetryMove = true;
        return;
    case Verb::LeaveForNextSync:
        return;
    }
}

void MoveItemsResultHandler::takeNewName(const MoveContainer &move, const WireEmailId &wireId)
{
    // Under no name it would be lost to every later reply; the next sync tells where it is.
    if (wireId.text().isEmpty() || !wireId.isValid())
        qCWarning(eas()) << "the server has not named the moved message" << move.sourceMessageId();
    else
        appendMoved(move, wireId);
}

void MoveItemsResultHandler::askForSource(const MoveContainer &move)
{
    if (!move.sourceFolderId().isEmpty())
        SyncState::addOnce(mState.collectionsToRetry, move.sourceFolderId());
    mFolderSyncNeeded = true;
    const KeptEmailId keptId = mIds.kept(move.sourceFolderId(), WireEmailId(move.sourceMessageId()));
    if (!mIds.contains(keptId))
        mLost.insert(keptId.text());
}

bool MoveItemsResultHandler::removeLost()
{
    if (mLost.isEmpty())
        return true;
    const Lookup<QList<EasEmailItem>> moved = mAccount.mailStorage()->movedEmails();
    if (!moved)
        return false;
    QList<quint64> localIds;
    for (const EasEmailItem &item : *moved) {
        if (mLost.contains(item.serverId()))
            localIds.append(item.localId().toULongLong());
    }
    if (localIds.isEmpty())
        return true;
    qCWarning(eas()) << "removing moved messages that neither server nor mapping know:" << localIds;
    return mAccount.mailStorage()->deleteEmailsByLocalIds(localIds);
}

void MoveItemsResultHandler::appendMoved(const MoveContainer &move, const WireEmailId &wireId)
{
    EasEmailItem item;
    const KeptEmailId keptId = mIds.kept(move.destinationFolderId(), wireId);
    item.setPreviousServerId(mIds.kept(move.sourceFolderId(), WireEmailId(move.sourceMessageId())).text());
    item.setServerId(keptId.text());
    item.setCollectionId(move.destinationFolderId());
    item.setDestinationFolderId(move.destinationFolderId());
    item.setSourceFolderId(move.sourceFolderId());
    item.appendChangedField(Wbxml::AirSync::ServerId.key());
    mIds.add(keptId, item.collectionId());
    mMoved.append(item);
}

bool MoveItemsResultHandler::recordMoved()
{
    // The mapping first: in between, a deletion under the old name finds no message, and the store finishes
    // the move by what the mapping says.
    if (!EasDatabase::instance()->updateMovedEmailItems(mAccount.id(), mMoved)) {
        qCCritical(eas()) << "items are not updated in Eas DB";
        return false;
    }
    if (!mAccount.mailStorage()->updateMovedEmails(mMoved)) {
        qCCritical(eas()) << "items are not updated in MailStorage";
        return false;
    }
    for (const EasEmailItem &item : qAsConst(mMoved))
        mState.movedServerIds.append(item.previousServerId());
    return true;
}
