// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/exchangeserver.h"
#include "support/accountfactory.h"
#include "support/contactfixture.h"
#include "support/daemonprocess.h"

#include <QProcessEnvironment>
#include <QStringList>

#include <memory>

/** As CrashBed, with the contacts of the device and of the server. */
class ContactCrashBed
{
public:
    enum Scenario {
        FirstSync, ///< contacts with pictures come
        LaterSync, ///< contacts come, change and go, on both sides
    };
    enum After { NewDaemon, SameDaemon };

    ContactCrashBed();
    ~ContactCrashBed();
    Q_DISABLE_COPY(ContactCrashBed)

    bool isReady() const { return mAccountId != 0; }

    /**
     * Prepares both sides, lets a daemon sync in this environment, and compares after two more syncs. Empty
     * if both sides are equal with nothing doubled, each contact is mapped once, each picture has a file and
     * each file a contact, and the second of the syncs had nothing to send; else the whole story.
     */
    QString run(Scenario scenario, const QProcessEnvironment &environment, After after = NewDaemon);
    /** How the sync of the latest run ended: a status or DaemonProcess::Died. */
    int syncStatus() const { return mSyncStatus; }

private:
    bool begin(Scenario scenario);
    void clearDevice();
    bool startServer();
    bool changeBothSides();
    QString whatIsWrong(DaemonProcess &daemon);
    QString wrongState();
    QString wrongRequests() const;
    QString contactsFolder();

    bool mHasBus = PrivateBus::ensure();
    AccountFactory mAccounts;
    std::unique_ptr<ContactFixture> mStore;
    std::unique_ptr<Simulator::ExchangeServer> mServer;
    quint16 mPort = 0;
    EasAccountId mAccountId = 0;
    QStringList mWanted;
    int mSyncStatus = 0;
};

Q_DECLARE_METATYPE(ContactCrashBed::Scenario)
Q_DECLARE_METATYPE(ContactCrashBed::After)
