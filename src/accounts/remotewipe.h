// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "accounts/base/accountrecord.h"
#include "accounts/waitingidentities.h"
#include "common/easaccountid.h"

#include <QObject>

class IdentityRemoval;
class QTimer;

/**
 * Takes an account off the device because its server orders it: secrets, attachments, what the stores hold,
 * mapping, and at last the record, with which the platform's mail account goes.
 *
 * The order stands in the record, so that a wipe that was interrupted goes on with the next account object.
 * Each step can be done any number of times; the record goes only after all others have succeeded, and what
 * failed is tried again after five minutes and at the next start. The sign-on service holds nothing up: an
 * identity that it does not remove is left to IdentityCleanUp.
 *
 * Owned by the account object; main thread only.
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

private:
    bool write(const char *key, const QVariant &value);
    void removeIdentities();
    void removeUnlessUsed(quint32 identity);
    void startRemoval(quint32 identity);
    void onIdentityRemoved(IdentityRemoval &removal, bool removed);

    /** All steps behind the identities. */
    void removeData();
    bool keepWaitingIdentities();
    bool removeAttachments();
    bool clearStoresAndMapping();
    bool removeMappingRows();
    bool removeRecord();
    void forgetRemovedIdentities();

    AccountRecord mRecord;
    EasAccountId mAccountId;
    QTimer *mTimer;
    bool mRequested;
    bool mBegun = false;
    int mRemovalsUnderWay = 0;
    WaitingIdentities::Identities mRemoved;
    WaitingIdentities::Identities mNotRemoved;
};
