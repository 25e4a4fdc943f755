// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/syncrun.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "requests/commandrequest.h"

bool SyncRun::mayGoBack()
{
    if (waysBack.consume())
        return true;
    qCWarning(eas()) << "no more attempts, failing request";
    return false;
}

bool SyncRun::clearAccount()
{
    if (!EasDatabase::instance()->clearAccount(request.accountId())) {
        qCCritical(eas()) << "Failed to clear account";
        return false;
    }
    state = SyncState();
    return true;
}
