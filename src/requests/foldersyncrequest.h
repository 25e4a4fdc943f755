// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/request.h"

#include <QPointer>

class FolderSyncCommand;

/**
 * Refreshes the folder hierarchy of an account and nothing else.
 *
 * After a wrong hierarchy key the account is cleared and starts anew; once the fresh hierarchy stands,
 * resyncFolders() asks the RequestManager for a full sync under the same identifier. Queued and owned by the
 * RequestManager. Main thread only.
 */
class FolderSyncRequest : public Request
{
    Q_OBJECT

public:
    FolderSyncRequest(EasAccountId accountId, quint64 requestId, QObject *parent = nullptr);

public Q_SLOTS:
    void retrySend() override;

Q_SIGNALS:
    void syncStarted(EasAccountId accountId, qulonglong requestId);
    void syncCompleted(EasAccountId accountId, qulonglong requestId, int status);
    void resyncFolders(EasAccountId accountId, qulonglong requestId);

protected:
    void startRequest() override;
    void cancelRequest() override;
    void reportRequestCompleted() override;
    QString commandName() const override;

protected Q_SLOTS:
    virtual void handleFinished(bool success);

private:
    void dropCommand();
    void processSuccess();
    bool processResponse();
    void processWrongSyncKey();
    void processFolderSyncServerError();

    QPointer<FolderSyncCommand> mCommand;
    int mRetryCount = 0;
    bool mResyncRequested = false;
};
