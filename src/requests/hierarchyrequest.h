// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/commandrequest.h"

class FolderSyncCommand;

/**
 * What the requests share that begin with the folder hierarchy: the hierarchy's key, the counted attempts,
 * and the two signals around the work. Lives as a Request does. Main thread only.
 */
class HierarchyRequest : public CommandRequest
{
    Q_OBJECT

public:
    using CommandRequest::CommandRequest;

Q_SIGNALS:
    void syncStarted(EasAccountId accountId, qulonglong requestId);
    void syncCompleted(EasAccountId accountId, qulonglong requestId, int status);

protected:
    void reportRequestCompleted() override;

    /** False, and the request has ended, if the hierarchy's key cannot be read. */
    bool readFolderSyncKey(QString *key);
    /**
     * A FolderSync with the stored key, for an account that is not half cleared. Null, and the request has
     * ended, if that cannot be had.
     */
    FolderSyncCommand *newFolderSyncCommand();

    /** Tries again later; once the attempts are used up the account starts from nothing the next time. */
    void processFolderSyncServerError();

    int mRetryCount = 0;
};
