// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/foldermanagementrequest.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/base/eas.h"
#include "protocol/foldercommand.h"
#include "requests/hierarchykey.h"

namespace {

constexpr char DeviceText[] = "invalid Device ID or Type. Trying to update Device information";

constexpr RequestStatusTable::Row sharedRows[] = {
    { Eas::FolderSyncStatusSuccess, QtInfoMsg, nullptr, RequestVerb::Process },
    { Eas::FolderSyncStatusServerError, QtWarningMsg,
        "Server error. Try again later or run sync request first", RequestVerb::Refuse },
    { Eas::FolderSyncStatusUnknownError, QtWarningMsg, "Unknown error on the server.", RequestVerb::Refuse },
    { Eas::CommonStatusInvalidDeviceId, QtWarningMsg, DeviceText, RequestVerb::RefreshDeviceAndRetryLater },
    { Eas::CommonStatusInvalidDeviceType, QtWarningMsg, DeviceText, RequestVerb::RefreshDeviceAndRetryLater },
};
constexpr RequestStatusTable sharedStatuses(sharedRows);
static_assert(sharedStatuses.namesEachStatusOnce());

} // namespace

bool FolderManagementRequest::refuse(const char *text)
{
    qCCritical(eas()) << text;
    completeWith(RequestStatusBadRequest);
    return false;
}

bool FolderManagementRequest::acceptDisplayName(const QString &name)
{
    return !name.isEmpty() || refuse("Display name is empty, this is an invalid request data");
}

QString FolderManagementRequest::translated(const QString &localId, const char *failure)
{
    // Folders that are in no store share the empty identifier.
    const Lookup<EasFolderItem> folder = localId.isEmpty()
        ? Lookup<EasFolderItem>(EasFolderItem())
        : EasDatabase::instance()->folderItemByLocalId(accountId(), localId);
    if (folder && !folder->serverId().isEmpty())
        return folder->serverId();
    qCCritical(eas()) << failure;
    completeWith(folder ? RequestStatusBadRequest : RequestStatusInternalError);
    return QString();
}

QString FolderManagementRequest::serverFolderId(const QString &localId)
{
    return translated(localId, "failed to find folder id by local id");
}

QString FolderManagementRequest::serverParentId(const QString &localId)
{
    const QLatin1String rootFolderId("0");
    if (localId != rootFolderId)
        return translated(localId, "failed to find parent folder id by local id");
    qCDebug(eas()) << "Local folder id is 0, so parent folder is a root folder";
    return rootFolderId;
}

void FolderManagementRequest::startRequest()
{
    if (!translate())
        return;
    if (!account()) {
        qCCritical(eas()) << "No account";
        return completeWith(RequestStatusInternalError);
    }
    const Lookup<QString> key = HierarchyKey(accountId()).read();
    if (!key)
        return completeWith(RequestStatusInternalError);
    FolderCommand *const command = createCommand();
    command->setSyncKey(*key);
    command->start();
}

void FolderManagementRequest::onCommandFinished(bool success)
{
    handleFinished(success);
}

void FolderManagementRequest::handleFinished(bool success)
{
    qCInfo(eas()) << "Success: " << success;
    if (!currentCommand())
        qCCritical(eas()) << "No command object";
    if (!acceptResult(currentCommand(), success)) {
        if (currentCommand())
            qCInfo(eas()) << "Provision request required";
        return dropCommand();
    }
    const RequestStatusTable own = refusals();
    if (!handleStatus(status(), own.find(status()) ? own : sharedStatuses, refusedSubject(status())))
        completeUnhandled();
}

void FolderManagementRequest::processReply()
{
    resetTimeoutFactor();
    setStatus(processResponse() ? RequestStatusSuccess : RequestStatusInternalError);
    complete();
}

bool FolderManagementRequest::processResponse()
{
    const auto fail = [](const char *text) {
        qCCritical(eas()) << text;
        return false;
    };
    const auto *command = qobject_cast<FolderCommand *>(currentCommand());
    if (!command)
        return fail(texts().commandMissing);
    EasAccount *const easAccount = account();
    if (!easAccount)
        return fail("No account");
    const std::optional<FolderChanges> agreed = agreedChanges();
    if (!agreed)
        return false;
    FolderHierarchyChanges changes(*easAccount, *agreed);
    if (!changes.isReady(FolderHierarchyChanges::MailStore::Needed)
        || !changes.updateStoresOfEachKind(texts().stores))
        return false;
    changes.markSaved();
    if (!changes.updateDatabase())
        return fail(texts().databaseFailure);
    return HierarchyKey(accountId()).store(command->syncKey()) || fail(texts().databaseFailure);
}
