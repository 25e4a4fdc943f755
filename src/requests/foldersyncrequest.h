// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/hierarchyphase.h"
#include "requests/hierarchyrequest.h"

/**
 * Refreshes the folder hierarchy of an account and nothing else.
 *
 * After a wrong hierarchy key the account is cleared and starts anew; once the fresh hierarchy was applied,
 * resyncFolders() asks the RequestManager for a full sync under the same identifier. Queued and owned by the
 * RequestManager. Main thread only.
 */
class FolderSyncRequest : public HierarchyRequest
{
    Q_OBJECT

public:
    FolderSyncRequest(EasAccountId accountId, quint64 requestId, QObject *parent = nullptr);

Q_SIGNALS:
    /** Emitted after the end of the request. */
    void resyncFolders(EasAccountId accountId, qulonglong requestId);

protected:
    void startRequest() override;
    QString commandName() const override;

    void onCommandFinished(bool success) override;
    virtual void handleFinished(bool success);
    bool broughtChanges() const override { return mRun.state.hasBroughtChanges; }

private:
    /** Goes on as the phase wants it. */
    void follow(SyncPhase::End end);

    SyncRun mRun;
    HierarchyPhase mHierarchy;
    /** The account was cleared, and needs its items again once the hierarchy was answered. */
    bool mResyncRequested = false;
};
