// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/containers/easprovisiondoc.h"

#include <QObject>
#include <QString>

/** One policy of a server's reply: its document, the key to acknowledge it with, and whether there is one. A
 * plain value. */
class EasPolicyContainer
{
    Q_GADGET

public:
    /** What the server says of the policy. */
    enum ResponseStatus : int {
        ResponseStatusUndefined = 0,
        ResponseStatusSuccess = 1,
        ResponseStatusNoPolicy = 2,
        ResponseStatusUnknownType = 3,
        ResponseStatusCorrupt = 4,
        ResponseStatusOutOfDate = 5
    };
    Q_ENUM(ResponseStatus)

    /** The device's verdict on the policy, which goes back to the server. */
    enum RequestStatus : int {
        RequestStatusUndefined = 0,
        RequestStatusAllApplied = 1,
        RequestStatusPartlyApplied = 2,
        /** Something of the password or the lock is missing. */
        RequestStatusCriticalNotApplied = 3
    };
    Q_ENUM(RequestStatus)

    QString policyType() const { return mPolicyType; }
    void setPolicyType(const QString &policyType) { mPolicyType = policyType; }
    QString policyKey() const { return mPolicyKey; }
    void setPolicyKey(const QString &policyKey) { mPolicyKey = policyKey; }
    ResponseStatus status() const { return mStatus; }
    void setStatus(ResponseStatus status) { mStatus = status; }
    EasProvisionDoc data() const { return mData; }
    void setData(const EasProvisionDoc &data) { mData = data; }

    void clear() { *this = EasPolicyContainer(); }

    bool operator==(const EasPolicyContainer &other) const
    {
        return mStatus == other.mStatus && mPolicyType == other.mPolicyType && mPolicyKey == other.mPolicyKey
            && mData == other.mData;
    }
    bool operator!=(const EasPolicyContainer &other) const { return !(*this == other); }

private:
    QString mPolicyType;
    QString mPolicyKey;
    ResponseStatus mStatus = ResponseStatusUndefined;
    EasProvisionDoc mData;
};
