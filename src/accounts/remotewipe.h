// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "accounts/base/accountrecord.h"
#include "common/easaccountid.h"

#include <QObject>

class QTimer;

namespace SignOn {
class Error;
}

/**
 * Takes an account off the device because its server demands it: password, attachments, mapping and record.
 *
 * The order is written down first, so that a wipe that a restart interrupts goes on with the next account
 * object. Where the password cannot be removed it stops, and is tried again at the next start. Owned by the
 * account object; main thread only.
 */
class RemoteWipe : public QObject
{
    Q_OBJECT

public:
    RemoteWipe(const AccountRecord &record, EasAccountId accountId, QObject *parent);
    ~RemoteWipe() override;

    /** Whether a wipe was ordered, now or before a restart. */
    bool isRequested() const { return mRequested; }
    /**
     * Writes the order down and waits for acknowledged(), ten seconds at most. False, after a log line, if it
     * could not be written: then nothing was ordered.
     */
    bool request();
    /** The server has had its answer, or will not get it: the wipe begins after half a second. */
    void acknowledged();
    /** Goes on after a restart, with half a second for the account's start. */
    void resume();

Q_SIGNALS:
    /** The order has been written down. */
    void ordered();
    /** From here on the account may not be used any more. */
    void begun();

private Q_SLOTS:
    void onRemoteWipeTimeout();
    void onIdentityRemoved();
    void onIdentityRemoveError(const SignOn::Error &error);

private:
    bool record();
    void wipe();

    AccountRecord mRecord;
    EasAccountId mAccountId;
    QTimer *mTimer;
    bool mRequested;
    bool mBegun = false;
};
