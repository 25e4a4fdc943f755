// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/hierarchykey.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/base/protocolutils.h"

HierarchyKey::HierarchyKey(EasAccountId accountId)
    : mAccountId(accountId)
{
}

Lookup<QString> HierarchyKey::read() const
{
    const Lookup<QString> key = EasDatabase::instance()->folderSyncKey(mAccountId);
    if (!key)
        qCCritical(eas()) << "failed to read the folder sync key from EAS DB";
    return key;
}

bool HierarchyKey::store(const QString &answered) const
{
    if (answered == ProtocolUtils::InitialSyncKey) {
        qCWarning(eas()) << "the server has answered with the initial key, keeping the one that is stored";
        return true;
    }
    return EasDatabase::instance()->setFolderSyncKey(mAccountId, answered);
}
