// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"
#include "simulator/exchangeserver.h"
#include "support/accountfactory.h"
#include "support/crashmail.h"
#include "support/crashpim.h"
#include "support/daemonprocess.h"
#include "support/privatebus.h"

#include <QProcessEnvironment>
#include <QScopedPointer>
#include <QStringList>
#include <QVector>

#include <chrono>

/**
 * A device whose daemon dies or whose database fails in the middle of a sync, beside a server that goes on.
 *
 *     CrashBed bed;
 *     const QString wrong = bed.run(CrashBed::LaterSync, shim.environment());
 *     QVERIFY2(wrong.isEmpty(), "...");
 *
 * One object serves any number of runs; each forgets the one before.
 */
class CrashBed
{
public:
    enum Scenario {
        FirstSync, ///< a new device and a mailbox with sub-folders
        LaterSync, ///< arrivals, marks, deletions and folder changes on the server; marks and deletions here
        Move, ///< messages moved here, some of them marked or changed on the server meanwhile
        RefusedCollection, ///< the server refuses the key of a collection: the account starts anew
        RefusedKeys, ///< it refuses the keys of a Sync: the collections start anew
        ForgottenDevice, ///< it knows nothing of the device any more
        FirstPimSync, ///< a new device, events and contacts
        LaterPimSync, ///< events and contacts edited on both sides
        ForgottenPimDevice,
        LongPimUpload, ///< more new contacts here than one Sync carries
    };

    CrashBed();
    ~CrashBed();
    Q_DISABLE_COPY(CrashBed)

    bool isReady() const { return mAccountId != 0; }
    EasAccountId accountId() const { return mAccountId; }

    enum After {
        NewDaemon, ///< another daemon goes on, as after a death
        SameDaemon, ///< the daemon goes on that has met the fault
    };

    static bool isPim(Scenario scenario);
    /** What was there is to come again. */
    static bool isNewStart(Scenario scenario);
    /** Names of the files that a sync of the scenario writes; for FaultShim. */
    static QStringList durableFiles(Scenario scenario);
    /** Rows of test data with a column "scenario" for all of them. */
    static void addScenarioRows();

    /**
     * Prepares both sides, lets a daemon sync in this environment, and compares after two more syncs. Empty
     * if nothing is lost, doubled or come back, both databases are whole, both sides equal, and the second of
     * the syncs had nothing to send; else the whole story.
     */
    QString run(Scenario scenario, const QProcessEnvironment &environment, After after = NewDaemon);
    /** The same for a daemon without faults that gets SIGKILL so long after its start. */
    QString runUntil(Scenario scenario, std::chrono::microseconds moment);

    /** How the sync of the latest run ended: a status, DaemonProcess::Died or NeverEnded. */
    int syncStatus() const { return mSyncStatus; }
    /** From the start of the daemon to the end of its sync. */
    std::chrono::microseconds syncDuration() const { return mSyncDuration; }

private:
    /** Messages are always looked at, other items where the account has them. */
    QVector<CrashScene *> scenes();
    bool begin(Scenario scenario);
    QString finish(DaemonProcess &daemon, After after);
    QString whatIsWrong(DaemonProcess &daemon);
    void clearDevice();
    bool startServer();
    EasAccountId createAccount();
    bool useAccountFor(Scenario scenario);
    QString version() const;
    bool synchronizeOnce();
    void change(Scenario scenario);

    QString wrongState();
    QString wrongRequests() const;

    // The account library wants a bus before anything of it is made.
    bool mHasBus = PrivateBus::ensure();
    AccountFactory mAccounts;
    QScopedPointer<Simulator::ExchangeServer> mServer;
    quint16 mPort = 0;
    EasAccountId mAccountId = 0;
    bool mHasPim = false; ///< events and contacts in place of messages
    CrashMail mMail;
    CrashPim mPim;
    int mSyncStatus = 0;
    std::chrono::microseconds mSyncDuration {};
};

Q_DECLARE_METATYPE(CrashBed::Scenario)
Q_DECLARE_METATYPE(CrashBed::After)
