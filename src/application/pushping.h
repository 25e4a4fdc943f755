// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QObject>
#include <QPointer>

class PingRequest;
class RequestManager;

/**
 * The one Ping of an account that waits at its server. Its request belongs to the engine and may go with it.
 * Owned by the AlwaysOnManager, main thread only.
 */
class PushPing : public QObject
{
    Q_OBJECT

public:
    /** The manager has to outlive it; null for none, and then it is never started. */
    PushPing(EasAccountId accountId, RequestManager *manager, QObject *parent = nullptr);
    ~PushPing() override;

    bool isActive() const { return !mRequest.isNull(); }
    /** How many folders the server is asked to watch. */
    int folderCount() const { return mFolderCount; }

    void start();
    /** Without a signal; false if none was active. */
    bool stop();

Q_SIGNALS:
    /** It goes out. */
    void waiting();
    /** The server has answered with this status; it may go on after it. */
    void answered(int status);
    /** It has ended and is active no more. */
    void completed(const PingRequest &request);

private:
    void onRequestCompleted(EasAccountId accountId, qulonglong requestId);

    const EasAccountId mAccountId;
    RequestManager *const mManager;
    QPointer<PingRequest> mRequest;
    int mFolderCount = 0;
};
