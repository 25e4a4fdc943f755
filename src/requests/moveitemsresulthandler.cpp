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

#include <QSet>

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
    return recordMoved();
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
    const WireEmailId destination(response.destinationMessageId());
    const bool isNamed = !destination.text().isEmpty() && destination.isValid();
    if (response.status() == Eas::MoveItemsStatusSuccess && !isNamed) {
        // Under no name it would be lost to every later reply; the next sync tells where it is.
        qCWarning(eas()) << "the server has not named the moved message" << id;
        return;
    }
    switch (response.status()) {
    case Eas::MoveItemsInvalidSourceId:
        qCWarning(eas()) << "invalid source message or folder id for message:" << id;
        if (!move.sourceFolderId().isEmpty())
            SyncState::addOnce(mState.collectionsToRetry, move.sourceFolderId());
        mFolderSyncNeeded = true;
        break;
    case Eas::MoveItemsInvalidDestinationId:
        qCWarning(eas()) << "invalid destination id for message:" << id;
        mFolderSyncNeeded = true;
        break;
    case Eas::MoveItemsStatusSuccess:
        appendMoved(move, destination);
        break;
    case Eas::MoveItemsStatusSameSrcDstId:
        qCWarning(eas()) << "same source and destination folder ids for message:" << id;
        appendMoved(move, WireEmailId(id));
        break;
    case Eas::MoveItemsStatusCannotBeMoved:
        qCWarning(eas()) << "item can't be moved. Multiple destination folder elements?";
        break;
    case Eas::MoveItemsStatusSrcOrDstLocked:
        qCWarning(eas()) << "source or destination folder is locked for message:" << id;
        mRetryMove = true;
        break;
    default:
        qCWarning(eas()) << "received response status" << response.status() << "for message" << id;
    }
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
