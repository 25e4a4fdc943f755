// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"
#include "simulator/exchangeserver.h"
#include "support/accountfactory.h"
#include "support/crashpim.h"
#include "support/daemonprocess.h"
#include "support/devicetraces.h"
#include "support/privatebus.h"

#include <QScopedPointer>

#include <memory>

/**
 * A device with two accounts that have mail, events with files and contacts with pictures, and a daemon that
 * wipes one of them, whatever happens to it meanwhile.
 *
 * One object serves any number of wipes: the account that is wiped is made anew for each, the other one
 * stays.
 */
class WipeScene
{
public:
    WipeScene();
    ~WipeScene();
    Q_DISABLE_COPY(WipeScene)

    /** Both accounts are there and in step with the server; false, with the reason as a warning, if not. */
    bool begin();
    EasAccountId accountId() const { return mWiped; }
    /** On the server. */
    static QString wipedUser() { return QStringLiteral("alice"); }
    EasAccountId otherAccountId() const { return mOther; }
    AccountFactory &accounts() { return mAccounts; }
    Simulator::ExchangeServer &server() { return *mServer; }

    /** As if the order had come and the daemon had died right after it was written down. */
    bool orderInRecord();
    bool isAccountThere() const;
    /** By a daemon that is killed right after the end of its sync; the status. */
    int synchronize(EasAccountId accountId);

    /** Lets a daemon run in this environment until the account is gone, or the daemon, or the daemon has
     * failed several times. */
    void run(const QProcessEnvironment &environment);
    /** The same for a daemon that hears of the order from the server, in the sync that it is asked for. */
    void runOrdered(const QProcessEnvironment &environment);
    /** Whether the order stands in the account's record. */
    bool isOrderRecorded() const;
    /** Lets another daemon run until nothing of the account is left; what is wrong then, or empty. */
    QString finish();
    /** What the daemons have said since begin(). */
    QByteArray log() const { return mLog; }

    /** What was looked at, and how much of the account was there before the wipe. */
    QString lookedAt() const;

private:
    void waitForEnd(DaemonProcess &daemon);

    struct Places
    {
        std::unique_ptr<DeviceTraces> traces;
        DeviceTraces::Places before;
    };

    EasAccountId create(const QString &user);
    void fillMailbox(const QString &user, EasAccountId accountId, CrashPim &pim);
    bool fillAttachments(EasAccountId accountId) const;
    static Places traced(EasAccountId accountId);
    QString wrongPreparation() const;

    // The account library wants a bus before anything of it is made.
    bool mHasBus = PrivateBus::ensure();
    std::shared_ptr<Accounts::Manager> mStore;
    AccountFactory mAccounts;
    QScopedPointer<Simulator::ExchangeServer> mServer;
    EasAccountId mWiped = 0;
    EasAccountId mOther = 0;
    CrashPim mPim;
    CrashPim mOtherPim;
    Places mWipedPlaces;
    Places mOtherPlaces;
    QByteArray mLog;
};
