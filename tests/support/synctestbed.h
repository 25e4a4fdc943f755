// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"
#include "simulator/email.h"
#include "simulator/exchangeserver.h"
#include "support/accountfactory.h"
#include "support/fastclock.h"
#include "support/privatebus.h"

#include <QObject>
#include <QScopedPointer>
#include <QStringList>

#include <qmailid.h>

/**
 * A device and a server in one process: the engine with the real account store, sign-on service, databases
 * and mail store on one side, the simulated Exchange on the other.
 *
 * Both sides can be listed in one form, a line a message ("Inbox/Projects|subject|read"), so that a test
 * reads: the server has three messages; sync; both sides are equal. Make one in each test function; delays
 * between attempts are short. The engine ends with it, the device's data stay until clearDevice().
 */
class SyncTestBed : public QObject
{
    Q_OBJECT

public:
    /** The server announces these versions, and the device prefers the last one. */
    explicit SyncTestBed(const QStringList &versions = { QStringLiteral("14.1") });
    ~SyncTestBed() override;

    bool isReady() const { return mAccountId != 0; }
    EasAccountId accountId() const { return mAccountId; }
    AccountFactory &accounts() { return mAccounts; }
    FastClock &clock() { return mClock; }
    Simulator::ExchangeServer &server() { return mServer; }
    Simulator::Mailbox &mailbox() { return mServer.mailbox(); }

    /** Starts a full sync and returns its identifier. */
    qulonglong startSync();
    /** Runs a full sync to its end; the status that a client would see, or -1000 if it never ended. */
    int sync();
    qulonglong startFoldersSync();
    qulonglong startDownloadMessages(const QList<qulonglong> &messageIds, bool attachments);
    qulonglong startDownloadPart(qulonglong messageId, const QString &location);
    int syncFolders(const QStringList &localFolderIds);
    int syncService(int service);
    int foldersSync();
    int downloadMessages(const QList<qulonglong> &messageIds, bool attachments);
    int downloadPart(qulonglong messageId, const QString &location);
    /** Waits for the end of a request that was started before. */
    int waitFor(qulonglong requestId);
    int finishedCount(qulonglong requestId) const { return mFinished.count(requestId); }

    /** Ends the engine and starts it anew over the same data, as a restart of the daemon. */
    void restartEngine();

    /** "folder path|subject|read" of every message, sorted. */
    QStringList deviceState() const;
    QStringList serverState();
    QStringList deviceFolders() const;
    QStringList serverFolders();

    /** A plain message for the server. */
    static QByteArray message(const QString &subject, const QString &text = QStringLiteral("Hello"));
    QMailMessageId deviceMessage(const QString &subject) const;
    QMailFolderId deviceFolder(const QString &path) const;

private:
    void startEngine();
    void stopEngine();
    template <typename Start> int run(Start start);

    // The account library wants a bus before anything of it is made.
    bool mHasBus = PrivateBus::ensure();
    FastClock mClock;
    Simulator::ExchangeServer mServer;
    AccountFactory mAccounts;
    EasAccountId mAccountId = 0;
    qulonglong mLastRequestId = 0;
    QMultiMap<qulonglong, int> mFinished;
};
