// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailfolderrepair.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "storages/mail/mailstorecontext.h"

#include <qmailfolderkey.h>

namespace {

/** True if the store knows for sure that it has no such folder; one that cannot be read is not gone. */
bool isGone(const MailStoreContext &context, const QString &localId)
{
    return !localId.isEmpty() && !context.store->folder(QMailFolderId(localId.toULongLong())).id().isValid()
        && context.store->lastError() == QMailStore::InvalidId;
}

} // namespace

bool MailFolderRepair::isEmpty() const
{
    return added.isEmpty() && updated.isEmpty() && removed.isEmpty();
}

MailFolderRepair MailFolderRepair::find(const MailStoreContext &context)
{
    MailFolderRepair repair;
    EasDatabase *database = EasDatabase::instance();
    const Lookup<QList<EasFolderItem>> rows = database->emailFolderItems(context.accountId());
    const auto localToServer = database->localToServerFolderIds(context.accountId());
    const auto parents = database->serverFolderParentIds(context.accountId());
    if (!rows || !localToServer || !parents)
        return repair;
    const QMailFolderIdList folders =
        context.store->queryFolders(QMailFolderKey::parentAccountId(context.mailAccountId));

    for (EasFolderItem row : *rows) {
        const bool isLost = isGone(context, row.localId());
        if (row.savedInStorage() && !isLost)
            continue;
        row.setServerParentId(parents->value(row.serverId()));
        if (isLost) {
            // What the folder held went with it, and comes only as the answer to an initial key.
            repair.lost.append(row.serverId());
            row.setLocalId(QString());
            row.setSyncKey(QString());
            row.appendChangedField(Wbxml::AirSync::SyncKey);
        }
        if (row.localId().isEmpty()) {
            repair.added.append(row);
            continue;
        }
        row.appendChangedField(Wbxml::FolderHierarchy::DisplayName);
        row.appendChangedField(Wbxml::FolderHierarchy::ServerId);
        if (!row.serverParentId().isEmpty())
            row.appendChangedField(Wbxml::FolderHierarchy::ParentId);
        row.appendChangedField(Wbxml::FolderHierarchy::Type);
        repair.updated.append(row);
    }
    for (const QMailFolderId &folder : folders) {
        if (!localToServer->contains(QString::number(folder.toULongLong())))
            repair.removed.append(folder);
    }
    return repair;
}

bool MailFolderRepair::save(const MailStoreContext &context)
{
    EasDatabase *database = EasDatabase::instance();
    for (const QString &serverId : qAsConst(lost)) {
        if (!database->clearEmailFolder(context.accountId(), serverId))
            return false;
    }
    // The rows of both lists exist already, so those of the added folders are updated as well.
    QList<EasFolderItem> items = added + updated;
    for (EasFolderItem &item : items)
        item.setSavedInStorage(true);
    return database->folderItemsChanges(context.accountId(), {}, items, {});
}
