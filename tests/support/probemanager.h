// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/account/provisionmanager.h"

/** A judge that a test tells its verdict; keeps the documents that it saw. */
class ProbeManager : public ProvisionManager
{
    Q_OBJECT

public:
    explicit ProbeManager(EasAccount *account)
        : ProvisionManager(account, nullptr)
    {
    }

    EasPolicyContainer::RequestStatus verifyPolicy(
        const EasProvisionDoc &doc, FailedPolicyMap &failed) const override
    {
        documents.append(doc);
        for (auto policy = fails.cbegin(); policy != fails.cend(); ++policy)
            failed.insert(policy.key(), policy.value());
        return verdict;
    }

    EasPolicyContainer::RequestStatus verdict = EasPolicyContainer::RequestStatusAllApplied;
    FailedPolicyMap fails;
    mutable QList<EasProvisionDoc> documents;
};
