// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/hierarchyrequest.h"

void HierarchyRequest::reportRequestCompleted()
{
    if (hasEnded())
        return;
    if (broughtChanges())
        Q_EMIT changesReceived(accountId());
    Q_EMIT syncCompleted(accountId(), id(), status());
    Request::reportRequestCompleted();
}
