// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactfolderrows.h"

#include "application/mapping/easdatabase.h"

std::optional<ContactFolderRows> ContactFolderRows::read(
    EasAccountId accountId, const QString &folderServerId)
{
    EasDatabase *database = EasDatabase::instance();
    const auto serverIds = database->localToServerContactIds(accountId, folderServerId);
    const auto avatars = database->localContactIdsToAvatarsUrls(accountId);
    if (!serverIds || !avatars)
        return std::nullopt;
    ContactFolderRows rows;
    for (auto it = serverIds->cbegin(); it != serverIds->cend(); ++it)
        rows.insert(it.value(), it.key(), avatars->value(it.key()));
    return rows;
}

void ContactFolderRows::insert(const QString &serverId, const QString &localId, const QUrl &avatar)
{
    mLocalToServer.insert(localId, serverId);
    mServerToLocal.insert(serverId, localId);
    mAvatars.insert(localId, avatar);
}
