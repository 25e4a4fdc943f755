// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QList>
#include <QObject>

class EasAccount;

/**
 * The table of account objects as the request engine sees it. It owns the objects, creates them when an
 * account appears and deletes them when the platform removes one. Main thread only.
 */
class AccountStorage : public QObject
{
    Q_OBJECT

public:
    explicit AccountStorage(QObject *parent);
    ~AccountStorage() override;

    virtual QList<EasAccountId> accounts() const = 0;
    /** Null for an unknown identifier. */
    virtual EasAccount *account(EasAccountId id) const = 0;
    /** How many of the objects stand for an account that is enabled, or still to be wiped. */
    virtual int enabledAccountsCount() const = 0;
    /** True once every account was ready; it never becomes false again. */
    virtual bool isReady() const = 0;
    /** Takes an account that the platform has already, though its signal is still on the way; if it is
     * enabled. */
    virtual void findAccount(EasAccountId id) { Q_UNUSED(id) }

Q_SIGNALS:
    void ready();
    void accountAdded(EasAccountId id);
    void accountUpdated(EasAccountId id);
    void accountDeleted(EasAccountId id);
};
