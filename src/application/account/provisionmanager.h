// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/failedpolicymap.h"
#include "easitems/containers/easpolicycontainer.h"

#include <QObject>

class EasAccount;

/**
 * Judges a server's policies against what this device satisfies; it changes nothing on the device. Built for
 * one account, which owns it and outlives it. Main thread only.
 */
class ProvisionManager : public QObject
{
    Q_OBJECT

public:
    ProvisionManager(EasAccount *account, QObject *parent);
    ~ProvisionManager() override;

    EasAccount *account() const;

    /** The device's verdict on a document, never RequestStatusUndefined. What is not met is added to
     * `failed`, under the number of the policy; what is in there already stays. */
    virtual EasPolicyContainer::RequestStatus verifyPolicy(
        const EasProvisionDoc &doc, FailedPolicyMap &failed) const = 0;

private:
    EasAccount *mAccount;
};
