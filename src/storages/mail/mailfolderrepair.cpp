// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailfolderrepair.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "storages/mail/mailstorecontext.h"

#include <qmailfolderkey.h>

bool MailFolderRepair::isEmpty() const
{
    return added.isEmpty() && updated.isEmpty() && removed.isEmpty();
}

MailFolderRepair MailFolderRepair::find(const MailStoreContext &context)
{
    MailFolderRepair repair;
    EasDatabase *database = EasDatabase::instance();
    const QList<EasFolderItem> rows = database->emailFolderItems(context.accountId());
    if (database->lookupFailed())
        return repair;
    const QMap<QString, QString> localToServer = database->localToServerFolderIds(context.accountId());
    if (database->lookupFailed())
        return repair;
    const QMap<QString, QString> parents = database->serverFolderParentIds(context.accountId());
    if (database->lookupFailed())
        return repair;
    const QMailFolderIdList folders =
        context.store->queryFolders(QMailFolderKey::parentAccountId(context.mailAccountId));

    for (EasFolderItem row : rows) {
        if (row.savedInStorage())
            continue;
        row.setServerParentId(parents.value(row.serverId()));
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
        if (!localToServer.contains(QString::number(folder.toULongLong())))
            repair.removed.append(folder);
    }
    return repair;
}

bool MailFolderRepair::save(const MailStoreContext &context)
{
    // The rows of both lists exist already, so those of the added folders are updated as well.
    QList<EasFolderItem> items = added + updated;
    for (EasFolderItem &item : items)
        item.setSavedInStorage(true);
    return EasDatabase::instance()->folderItemsChanges(context.accountId(), {}, items, {});
}
