// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/collectionsphase.h"

#include "application/base/logging.h"
#include "protocol/synccommand.h"

CollectionsPhase::CollectionsPhase(SyncRun &run, const Statuses &statuses, const Texts &texts)
    : SyncPhase(run)
    , mStatuses(statuses)
    , mTexts(texts)
{
}

void CollectionsPhase::send(const QList<SyncCollection> &collections)
{
    auto *command = newCommand<SyncCommand>();
    command->addCollections(collections);
    command->start();
}

SyncPhase::End CollectionsPhase::finish(bool success)
{
    qCInfo(eas()) << mTexts.finished << success;
    const auto *command = finishedCommand<SyncCommand>();
    if (!command) {
        qCCritical(eas()) << "Sync command object is not available";
        return failInternally();
    }
    if (!success) {
        logStatusText(QtWarningMsg, mTexts.commandFailed);
        return End::Failed;
    }
    const Statuses::Row *row = mStatuses.find(status());
    if (!row) {
        qCWarning(eas()) << mTexts.otherStatus << status();
        return End::Failed;
    }
    logStatusText(row->level, row->text, QString::number(status()));
    switch (row->verb) {
    case Verb::TakeReply:
        return takeReply(*command);
    case Verb::InvalidSyncKey:
        return processSyncCommandInvalidSyncKeyError(*command);
    case Verb::ProtocolError:
        return processSyncCommandProtocolErrorError();
    case Verb::ServerError:
        return processSyncCommandServerErrorError(*command);
    case Verb::FoldersChanged:
        return run().mayGoBack() ? End::StartOver : End::Failed;
    case Verb::TooManyCollections:
        run().state.processSyncRequestInvalidSyncError();
        break;
    case Verb::AgainLater:
        break;
    }
    return End::AgainLater;
}

SyncPhase::End CollectionsPhase::processSyncCommandInvalidSyncKeyError(const SyncCommand &command)
{
    qCInfo(eas()) << "Trying to send Sync request again";
    addToResync(command);
    return run().mayGoBack() ? End::CollectionsAnew : End::Failed;
}

SyncPhase::End CollectionsPhase::processSyncCommandServerErrorError(const SyncCommand &command)
{
    if (!run().attempts.spent()) {
        qCInfo(eas()) << "Sync request command retry. Attempt: " << run().attempts.used();
        return End::AgainLater;
    }
    addToResync(command);
    return run().mayGoBack() ? End::CollectionsAnew : End::Failed;
}

SyncPhase::End CollectionsPhase::processSyncCommandProtocolErrorError()
{
    if (run().attempts.spent()) {
        qCWarning(eas()) << "No more retries, failing request.";
        return End::Failed;
    }
    qCInfo(eas()) << "Sync request command retry. Attempt: " << run().attempts.used();
    return End::AgainLater;
}

void CollectionsPhase::addToResync(const SyncCommand &command)
{
    const QList<SyncCollection> sent = command.collections();
    for (const SyncCollection &collection : sent)
        SyncState::addOnce(run().state.collectionsToResync, collection.id());
}
