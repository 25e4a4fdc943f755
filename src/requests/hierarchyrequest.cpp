// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/hierarchyrequest.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/base/protocolutils.h"
#include "protocol/foldersynccommand.h"

void HierarchyRequest::reportRequestCompleted()
{
    if (hasEnded())
        return;
    Q_EMIT syncCompleted(accountId(), id(), status());
    Request::reportRequestCompleted();
}

bool HierarchyRequest::readFolderSyncKey(QString *key)
{
    *key = EasDatabase::instance()->folderSyncKey(accountId());
    // An unread key is not the key of a new account.
    if (!EasDatabase::instance()->lookupFailed())
        return true;
    qCCritical(eas()) << "failed to read the folder sync key from EAS DB";
    completeWith(RequestStatusInternalError);
    return false;
}

FolderSyncCommand *HierarchyRequest::newFolderSyncCommand()
{
    QString key;
    if (!readFolderSyncKey(&key))
        return nullptr;
    if (!EasDatabase::instance()->finishClearingAccount(accountId())) {
        qCCritical(eas()) << "Failed to clear account";
        completeWith(RequestStatusInternalError);
        return nullptr;
    }
    auto *command = newCommand<FolderSyncCommand>();
    command->setSyncKey(key);
    return command;
}

void HierarchyRequest::processFolderSyncServerError()
{
    if (mRetryCount > ProtocolUtils::CommandMaxRetriesCount) {
        qCWarning(eas()) << "FolderSync command failed again, no more retries";
        return complete();
    }
    if (mRetryCount == ProtocolUtils::CommandMaxRetriesCount) {
        EasDatabase::instance()->setFolderSyncKey(accountId(), ProtocolUtils::InitialSyncKey);
        EasDatabase::instance()->clearAccount(accountId());
    } else {
        qCInfo(eas()) << "FolderSync command retry. Attempt: " << mRetryCount;
    }
    startResendTimer();
}
