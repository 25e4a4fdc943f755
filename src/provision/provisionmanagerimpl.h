// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/account/provisionmanager.h"

/**
 * Judges policies by the device's lock, what its authentication daemon demands of passwords, and the
 * account's settings.
 *
 * What the daemon tells is read once, when the object is made, with calls that block; lock and settings are
 * read for each verdict. Main thread only.
 */
class ProvisionManagerImpl : public ProvisionManager
{
    Q_OBJECT

public:
    explicit ProvisionManagerImpl(EasAccount *account, QObject *parent = nullptr);
    ~ProvisionManagerImpl() override;

    EasPolicyContainer::RequestStatus verifyPolicy(
        const EasProvisionDoc &doc, FailedPolicyMap &failed) const override;

private:
    bool verifyPassword(const EasProvisionDoc &doc, FailedPolicyMap &failed) const;
    bool hasLongPasswords(const EasProvisionDoc &doc) const;
    bool canDemandLength(const EasProvisionDoc &doc) const;
    bool limitsAttempts(const EasProvisionDoc &doc) const;

    int mPasswordLength = 0;
    int mMaxAttempts = 0;
    /** 0 for none. */
    int mPasswordLengthUpperLimit = 0;
};
