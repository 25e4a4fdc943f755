// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QMap>
#include <QObject>
#include <QSet>
#include <QStringList>

#include <memory>

class EasDBusInterfaceProxy;
class QDBusPendingCall;
class RequestManager;

/**
 * The syncs that push asks for, over the bus as any client would, so that they are queued and reported as
 * those of the user. Calls are asynchronous. Owned by the AlwaysOnManager, main thread only.
 */
class PushSyncs : public QObject
{
    Q_OBJECT

public:
    /** The manager has to outlive it. */
    PushSyncs(EasAccountId accountId, RequestManager &manager, QObject *parent = nullptr);
    ~PushSyncs() override;

    /** Does nothing if a sync of the whole account is asked for, waits or runs already. */
    void startFullSyncRequest();
    void startFoldersSyncRequest();
    /** Local identifiers of folders. */
    void startSyncFoldersRequest(const QStringList &folders);

    /** Whether one of them has not ended yet. */
    bool isActive() const { return mCalls > 0 || !mRunning.isEmpty(); }

Q_SIGNALS:
    /** One of them did not do its work: the bus refused the call, or the request ended with an error. */
    void failed();

private:
    void follow(const QDBusPendingCall &call, bool isFull = false);
    void onAccepted(qulonglong requestId);
    void onRequestFinished(EasAccountId accountId, qulonglong requestId, int status);

    const EasAccountId mAccountId;
    RequestManager &mManager;
    std::unique_ptr<EasDBusInterfaceProxy> mProxy;
    /** Without a reply yet. */
    int mCalls = 0;
    int mFullCalls = 0;
    QSet<qulonglong> mRunning;
    /** Requests that ended while calls had no reply: the end may come before it. */
    QMap<qulonglong, int> mEndedEarly;
};
