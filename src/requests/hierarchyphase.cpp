// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/hierarchyphase.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"
#include "protocol/foldersynccommand.h"
#include "requests/hierarchykey.h"

namespace {

using Verb = HierarchyPhase::Verb;
using Statuses = HierarchyPhase::Statuses;

constexpr char WrongRequestText[] = "incorrect FolderSync request. Something wrong with the encoder";
constexpr char BackEndText[] = "Unusual back-end issue on the server.";

constexpr Statuses::Row inSyncRows[] = {
    { Eas::FolderSyncStatusUndefined, QtInfoMsg, nullptr, Verb::Apply },
    { Eas::FolderSyncStatusSuccess, QtInfoMsg, nullptr, Verb::Apply },
    { Eas::FolderSyncStatusServerError, QtInfoMsg, nullptr, Verb::CountServerError },
    { Eas::FolderSyncStatusUnknownError, QtInfoMsg, nullptr, Verb::CountServerError },
    { Eas::FolderSyncStatusWrongSyncKey, QtWarningMsg, "Wrong sync key, resyncing account",
        Verb::ClearAccount },
    { Eas::FolderSyncStatusWrongRequest, QtCriticalMsg, WrongRequestText, Verb::FailInternally },
    { Eas::FolderSyncStatusCodeUnknown, QtWarningMsg, BackEndText, Verb::Fail },
};
constexpr Statuses inSyncStatuses(inSyncRows);
static_assert(inSyncStatuses.namesEachStatusOnce());

constexpr Statuses::Row aloneRows[] = {
    { Eas::FolderSyncStatusUndefined, QtInfoMsg, nullptr, Verb::Apply },
    { Eas::FolderSyncStatusSuccess, QtInfoMsg, nullptr, Verb::Apply },
    { Eas::FolderSyncStatusServerError, QtInfoMsg, nullptr, Verb::CountServerError },
    { Eas::FolderSyncStatusUnknownError, QtInfoMsg, nullptr, Verb::CountServerError },
    { Eas::FolderSyncStatusWrongSyncKey, QtWarningMsg, "wrong sync key, resyncing account",
        Verb::ClearAccount },
    { Eas::FolderSyncStatusWrongRequest, QtCriticalMsg, WrongRequestText, Verb::Fail },
    { Eas::FolderSyncStatusCodeUnknown, QtWarningMsg, BackEndText, Verb::Fail },
};
constexpr Statuses aloneStatuses(aloneRows);
static_assert(aloneStatuses.namesEachStatusOnce());

} // namespace

const HierarchyPhase::Kind HierarchyPhase::InSync {
    true,
    FolderHierarchyChanges::OnFailure::GoOn,
    inSyncStatuses,
    "FolderSync command finished: ",
    "FolderSync command failed",
    { QtWarningMsg, "unhandled status %1" },
    "failed to update folders in Mail Storage",
    "Failed to update folders in EAS DB!",
    { QtCriticalMsg, "Failed to properly save folders updates!" },
};

const HierarchyPhase::Kind HierarchyPhase::Alone {
    false,
    FolderHierarchyChanges::OnFailure::Stop,
    aloneStatuses,
    "FolderSyncRequest finished with success: ",
    nullptr,
    { QtCriticalMsg, "Unhandled status: %1" },
    "can't update mail folders",
    "failed to update folders in EAS DB",
    { QtWarningMsg, "Couldn't process folder sync responce!" },
};

HierarchyPhase::HierarchyPhase(SyncRun &run, const Kind &kind)
    : SyncPhase(run)
    , mKind(kind)
{
}

SyncPhase::State HierarchyPhase::state() const
{
    return mIsInitial ? StateInitialFolderSync : StateFolderSync;
}

SyncPhase::End HierarchyPhase::start()
{
    const Lookup<QString> key = HierarchyKey(accountId()).read();
    if (!key)
        return failInternally();
    if (!EasDatabase::instance()->finishClearingAccount(accountId())) {
        qCCritical(eas()) << "Failed to clear account";
        return failInternally();
    }
    mIsInitial = key->isEmpty() || *key == ProtocolUtils::InitialSyncKey;
    auto *command = newCommand<FolderSyncCommand>();
    command->setSyncKey(*key);
    command->start();
    return End::Sent;
}

SyncPhase::End HierarchyPhase::finish(bool success)
{
    qCInfo(eas()) << mKind.finished << success;
    const auto *command = finishedCommand<FolderSyncCommand>();
    if (!command) {
        qCCritical(eas()) << "FolderSync command object is not available";
        return failInternally();
    }
    if (!success) {
        logStatusText(QtWarningMsg, mKind.commandFailed);
        return End::Failed;
    }
    const Statuses::Row *row = mKind.statuses.find(status());
    if (!row) {
        logStatusText(mKind.otherStatus.level, mKind.otherStatus.text, QString::number(status()));
        return End::Failed;
    }
    logStatusText(row->level, row->text);
    switch (row->verb) {
    case Verb::Apply:
        return processFolderSyncFinished(*command);
    case Verb::CountServerError:
        return processFolderSyncServerError();
    case Verb::ClearAccount:
        return clearAccount();
    case Verb::FailInternally:
        return failInternally();
    case Verb::Fail:
        break;
    }
    return End::Failed;
}

SyncPhase::End HierarchyPhase::processFolderSyncFinished(const FolderSyncCommand &command)
{
    EasAccount *easAccount = account();
    if (!easAccount) {
        qCCritical(eas()) << "No account";
        return failInternally();
    }
    if (command.syncKey() == ProtocolUtils::InitialSyncKey) {
        // An empty answer to the first FolderSync tells nothing; asking again at once would never end.
        run().outcome.setStatus(EasRequestStatus::RequestStatusInternalError);
        return End::AgainLater;
    }
    succeed();
    if (!(command.addedItems().isEmpty() && command.updatedItems().isEmpty()
            && command.deletedItems().isEmpty()))
        run().state.hasBroughtChanges = true;
    if (!applyFolderChanges(*easAccount, command)) {
        logStatusText(mKind.notApplied.level, mKind.notApplied.text);
        return failInternally();
    }
    return mIsInitial && mKind.untilCurrent ? start() : End::Done;
}

bool HierarchyPhase::applyFolderChanges(EasAccount &account, const FolderSyncCommand &command)
{
    FolderHierarchyChanges changes(
        account, { command.addedItems(), command.updatedItems(), command.deletedItems() });
    if (!changes.isReady())
        return false;
    const bool stored = changes.updateStores(mKind.onStoreFailure, mKind.mailFailure);
    if (!stored && mKind.onStoreFailure == FolderHierarchyChanges::OnFailure::Stop)
        return false;
    changes.markSaved();
    if (!changes.updateDatabase()) {
        qCCritical(eas()) << mKind.databaseFailure;
        return false;
    }
    // The key is the last thing written: whatever stops us before makes the server repeat its answer. Items
    // are never stored under a hierarchy without a key: that would look like a half cleared account.
    return stored && (command.syncKey().isEmpty() || HierarchyKey(account.id()).store(command.syncKey()));
}

SyncPhase::End HierarchyPhase::processFolderSyncServerError()
{
    if (!run().attempts.spent()) {
        qCInfo(eas()) << "FolderSync command retry. Attempt: " << run().attempts.used();
        return End::AgainLater;
    }
    // The repetition that follows finds no attempt left, so that the account starts from nothing next time.
    if (!EasDatabase::instance()->setFolderSyncKey(accountId(), ProtocolUtils::InitialSyncKey)
        || !EasDatabase::instance()->clearAccount(accountId()))
        qCCritical(eas()) << "Failed to clear account";
    return End::AgainLater;
}

SyncPhase::End HierarchyPhase::clearAccount()
{
    // A server that refuses even the initial key will not be helped by another reset.
    if (mIsInitial)
        return processFolderSyncServerError();
    if (!run().mayGoBack())
        return End::Failed;
    return run().clearAccount() ? End::StartOver : failInternally();
}
