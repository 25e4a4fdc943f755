// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/hierarchyrequest.h"

void HierarchyRequest::reportRequestCompleted()
{
    if (hasEnded())
        return;
    Q_EMIT syncCompleted(accountId(), id(), status());
    Request::reportRequestCompleted();
}
