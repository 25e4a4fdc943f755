// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/movephase.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"
#include "protocol/moveitemscommand.h"
#include "requests/moveitemsresulthandler.h"
#include "requests/statustable.h"
#include "storages/mailstorage.h"

namespace {

enum class Verb { Apply, GoOn, AgainLater };
using Statuses = StatusTable<Verb>;

constexpr Statuses::Row rows[] = {
    { Eas::MoveItemsStatusUndefined, QtInfoMsg, nullptr, Verb::Apply },
    { Eas::MoveItemsStatusSuccess, QtInfoMsg, nullptr, Verb::Apply },
    { Eas::MoveItemsStatusCannotBeMoved, QtWarningMsg,
        "More than one DstFldId element is included for element. Encoder error?", Verb::GoOn },
    { Eas::CommonStatusItemsLostAfterMove, QtWarningMsg,
        "Items lost after moving to destination folder. Server error.", Verb::GoOn },
    { Eas::CommonStatusFailureInMoveOperation, QtWarningMsg, "status %1 , trying to send request again",
        Verb::AgainLater },
    { Eas::CommonStatusMoveCmdInvalidDestFolder, QtWarningMsg,
        "Invalid destination folder. starting sync command", Verb::GoOn },
};
constexpr Statuses statuses(rows);
static_assert(statuses.namesEachStatusOnce());

} // namespace

SyncPhase::End MovePhase::start()
{
    EasAccount *easAccount = account();
    if (!easAccount) {
        qCCritical(eas()) << "No account object for account:" << accountId();
        return End::Done;
    }
    if (!easAccount->commandIsSupported(ProtocolUtils::CommandMoveItems)) {
        qCWarning(eas()) << "MoveItems command not supported for account:" << accountId();
        return End::Done;
    }
    if (mGivenUp || !run().state.collectionsToRetry.isEmpty())
        return End::Done;
    const QSharedPointer<MailStorage> storage = easAccount->mailStorage();
    if (!storage) {
        qCWarning(eas()) << "MailStorage is null";
        return End::Done;
    }
    const Lookup<QList<EasEmailItem>> moved = storage->movedEmails();
    if (!moved)
        return failInternally();
    const QList<MoveContainer> moves = MoveItemsResultHandler::moves(*moved);
    if (moves.isEmpty())
        return End::Done;
    auto *command = newCommand<MoveItemsCommand>();
    for (const MoveContainer &move : moves)
        command->appendMoveItem(move);
    command->start();
    return End::Sent;
}

SyncPhase::End MovePhase::finish(bool success)
{
    qCInfo(eas()) << "MoveItems command finished: " << success;
    const auto *command = finishedCommand<MoveItemsCommand>();
    if (!command) {
        qCCritical(eas()) << "MoveItems command object is not available";
        return failInternally();
    }
    if (!success)
        return End::Failed;
    const Statuses::Row *row = statuses.find(status());
    if (!row) {
        qCWarning(eas()) << "unhandled MoveItems command status" << status();
        return End::Failed;
    }
    logStatusText(row->level, row->text, QString::number(status()));
    switch (row->verb) {
    case Verb::Apply:
        return processMoveItemsFinished(*command);
    case Verb::AgainLater:
        return End::AgainLater;
    case Verb::GoOn:
        break;
    }
    return End::Done;
}

SyncPhase::End MovePhase::processMoveItemsFinished(const MoveItemsCommand &command)
{
    EasAccount *easAccount = account();
    if (!easAccount || !easAccount->mailStorage()) {
        qCCritical(eas()) << "MailStorage is null";
        return failInternally();
    }
    run().outcome.setStatus(EasRequestStatus::RequestStatusSuccess);
    MoveItemsResultHandler handler(*easAccount, run().state);
    if (!handler.handle(command))
        return failInternally();
    if (handler.folderSyncNeeded()) {
        // What the server does not know any more is not moved again before the next sync.
        mGivenUp = true;
        return End::StartOver;
    }
    if (handler.retryMove())
        return retryMove();
    run().attempts.reset();
    return End::Done;
}

SyncPhase::End MovePhase::retryMove()
{
    mGivenUp = !mAttempts.consume();
    const End end = start();
    if (end == End::Done) {
        qCWarning(eas()) << "failed to retry MoveItems command";
        run().attempts.reset();
    }
    return end;
}
