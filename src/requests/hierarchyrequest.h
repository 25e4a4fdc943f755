// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/baseprotocolcommand.h"
#include "requests/request.h"

#include <QPointer>

class FolderSyncCommand;

/**
 * What the requests share that begin with the folder hierarchy: one command at a time, the hierarchy's key,
 * the counted attempts, and the two signals around the work. Lives as a Request does. Main thread only.
 */
class HierarchyRequest : public Request
{
    Q_OBJECT

public:
    using Request::Request;

Q_SIGNALS:
    void syncStarted(EasAccountId accountId, qulonglong requestId);
    void syncCompleted(EasAccountId accountId, qulonglong requestId, int status);

protected:
    void cancelRequest() override;
    void reportRequestCompleted() override;

    virtual void onCommandFinished(bool success) = 0;

    BaseProtocolCommand *currentCommand() const { return mCommand; }
    void dropCommand();
    /** A command of this account whose end comes to onCommandFinished(); the one before is dropped. */
    template <typename Command> Command *newCommand()
    {
        auto *command = new Command(accountId(), this);
        takeCommand(command);
        return command;
    }
    /** False, and the request has ended, if the hierarchy's key cannot be read. */
    bool readFolderSyncKey(QString *key);
    /** A FolderSync with the stored key. Null, and the request has ended, if the key cannot be read. */
    FolderSyncCommand *newFolderSyncCommand();

    /** Tries again later; once the attempts are used up the account starts from nothing the next time. */
    void processFolderSyncServerError();

    int mRetryCount = 0;

private:
    void takeCommand(BaseProtocolCommand *command);

    QPointer<BaseProtocolCommand> mCommand;
};
