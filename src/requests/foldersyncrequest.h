// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/hierarchyrequest.h"

class FolderSyncCommand;

/**
 * Refreshes the folder hierarchy of an account and nothing else.
 *
 * After a wrong hierarchy key the account is cleared and starts anew; once the fresh hierarchy stands,
 * resyncFolders() asks the RequestManager for a full sync under the same identifier. Queued and owned by the
 * RequestManager. Main thread only.
 */
class FolderSyncRequest : public HierarchyRequest
{
    Q_OBJECT

public:
    FolderSyncRequest(EasAccountId accountId, quint64 requestId, QObject *parent = nullptr);

public Q_SLOTS:
    void retrySend() override;

Q_SIGNALS:
    void resyncFolders(EasAccountId accountId, qulonglong requestId);

protected:
    void startRequest() override;
    QString commandName() const override;

    void onCommandFinished(bool success) override;
    virtual void handleFinished(bool success);

private:
    const FolderSyncCommand &folderSync() const;
    void processSuccess();
    bool processResponse();
    void processWrongSyncKey();

    bool mResyncRequested = false;
};
