// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/growingpause.h"
#include "protocol/elements/pingfolderitem.h"
#include "requests/commandrequest.h"

#include <QDateTime>
#include <QList>
#include <QPointer>
#include <QStringList>
#include <QTimer>

class PingCommand;

/**
 * Keeps a Ping going for one account until the server says something that somebody has to act on: 2, folders
 * have changed, 7, the hierarchy has, or a failure.
 *
 * A Ping that ends because nothing has changed (1) is followed by the next at once, or after a growing pause
 * if the server did not wait as it was asked to. A refused heartbeat is replaced by the server's, and kept
 * in the account; too many folders are replaced by few. Everything else that is repeated is counted.
 *
 * It runs beside the account's queue: whoever made it starts it and deletes it later. Main thread only.
 */
class PingRequest : public CommandRequest
{
    Q_OBJECT

public:
    PingRequest(EasAccountId accountId, quint64 requestId, QObject *parent = nullptr);

    /** Server identifiers of the folders that have changed; after status 2. */
    QStringList responseFolders() const { return mResponseFolders; }
    /** Whether the last Ping ended with a demand for provisioning, which a Ping leaves to the next sync. */
    bool demandsProvisioning() const { return mDemandsProvisioning; }
    /** How many folders the server is asked to watch. */
    int folderCount() const { return mFolders.size(); }

    /** Has the next Ping ask for what the account and this request hold now. */
    void updateCommand();

public Q_SLOTS:
    void retrySend() override;

Q_SIGNALS:
    /** A Ping goes out. */
    void waiting();
    /** A Ping has ended with this status; the request may go on after it. */
    void answered(int status);

protected:
    void startRequest() override;
    void cancelRequest() override;
    QString commandName() const override;
    void onCommandFinished(bool success) override;

private:
    PingCommand *pingCommand() const;
    void send();
    void handleStatus(int status);
    void reping();
    void takeChanges();
    void repeatLater();
    void takeHeartbeat();
    void takeFewerFolders();
    bool wasTooQuick() const;

    QStringList mResponseFolders;
    QList<PingFolderItem> mFolders;
    int mMaxFolders = 0;
    QDateTime mSent;
    /** Seconds that the running Ping was asked to wait. */
    int mAskedHeartbeat = 0;
    /** The server has named another heartbeat since it last took one. */
    bool mHeartbeatTaken = false;
    /** The next repetition is the server's wish, and not counted. */
    bool mRepeatsUncounted = false;
    bool mDemandsProvisioning = false;
    GrowingPause mQuickAnswers;
    QTimer mPauseTimer;
};
