// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/searchedmessages.h"

#include "application/base/logging.h"
#include "easitems/easemailitem.h"
#include "requests/mailserverids.h"

#include <algorithm>

namespace {

bool isUnusable(const EasEmailItem &item)
{
    if (item.serverId().isEmpty() || WireEmailId(item.serverId()).isValid())
        return false;
    qCWarning(eas()) << "identifier of a found message cannot be kept:" << item.serverId();
    return true;
}

} // namespace

bool SearchedMessages::name(EasAccountId accountId, QList<EasEmailItem> &items)
{
    items.erase(std::remove_if(items.begin(), items.end(), isUnusable), items.end());
    QList<MailServerIds::Item> named;
    for (const EasEmailItem &item : qAsConst(items)) {
        if (!item.serverId().isEmpty())
            named.append({ item.collectionId(), WireEmailId(item.serverId()) });
    }
    const Lookup<MailServerIds> ids = MailServerIds::lookUp(accountId, named);
    if (!ids)
        return false;
    for (EasEmailItem &item : items) {
        if (!item.serverId().isEmpty())
            item.setServerId(ids->kept(item.collectionId(), WireEmailId(item.serverId())).text());
    }
    return true;
}
