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
 * The demand is written down first, so that a wipe that a restart interrupts goes on with the next account
 * object. Where the password cannot be removed it stops, and is tried again at the next start. Owned by the
 * account object; main thread only.
 */
class RemoteWipe : public QObject
{
    Q_OBJECT

public:
    RemoteWipe(const AccountRecord &record, EasAccountId accountId, QObject *parent);
    ~RemoteWipe() override;

    /** Whether the record holds the demand. */
    bool isRemoteWipeRequested() const;
    /** Writes the demand down; false, after a log line, if that failed. */
    bool request();
    /** Begins a little later, when the reply to the demand has gone out. */
    void startRemoteWipeTimeout();

Q_SIGNALS:
    /** From here on the account may not be synchronised any more. */
    void started();

private Q_SLOTS:
    void onRemoteWipeTimeout();
    void onIdentityRemoved();
    void onIdentityRemoveError(const SignOn::Error &error);

private:
    void wipe();

    AccountRecord mRecord;
    EasAccountId mAccountId;
    QTimer *mTimer;
};
