// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/commandrequest.h"

/**
 * What the requests share that begin with the folder hierarchy: the two signals around the work. Lives as a
 * Request does. Main thread only.
 */
class HierarchyRequest : public CommandRequest
{
    Q_OBJECT

public:
    using CommandRequest::CommandRequest;

Q_SIGNALS:
    /** The work begins. Never emitted once syncCompleted() was, unless the request starts anew. */
    void syncStarted(EasAccountId accountId, qulonglong requestId);
    void syncCompleted(EasAccountId accountId, qulonglong requestId, int status);
    /** The server had something to tell; right before syncCompleted(). */
    void changesReceived(EasAccountId accountId);

protected:
    void reportRequestCompleted() override;
    /** Whether the server has told of a folder or an item. */
    virtual bool broughtChanges() const { return false; }
};
