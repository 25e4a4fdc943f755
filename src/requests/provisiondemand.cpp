// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/provisiondemand.h"

#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"
#include "protocol/baseprotocolcommand.h"
#include "requests/statustable.h"

namespace {

// 10000 plus a network error, named after an HTTP status: a 449 arrives as another number.
constexpr int TransportRetryWith = ProtocolUtils::TransportStatusBase + 449;

using DemandTable = StatusTable<ProvisionDemand>;

constexpr DemandTable::Row rows[] = {
    { Eas::CommonStatusDeviceNotFullyProvisionable, QtCriticalMsg,
        "Device is not fully Provisionable for account %1", ProvisionDemand::None },
    { Eas::CommonStatusRemoteWipeRequested, QtCriticalMsg, "remote wipe is requested for account %1",
        ProvisionDemand::Wipe },
    { Eas::CommonStatusLegacyDeviceOnStrictPolicy, QtWarningMsg,
        "server requires policy key to be submitted for %1", ProvisionDemand::DefaultKey },
    { Eas::CommonStatusDeviceNotProvisioned, QtInfoMsg, "Provision Policy is in place for account %1",
        ProvisionDemand::Policies },
    { Eas::CommonStatusPolicyRefresh, QtInfoMsg, "Policy refresh requested for account %1",
        ProvisionDemand::Policies },
    { Eas::CommonStatusInvalidPolicyKey, QtWarningMsg, "Invalid policy key for account %1",
        ProvisionDemand::Policies },
    { Eas::CommonStatusExtManagedDevicesNotAllowed, QtWarningMsg,
        "Exterally managed devices are not allowed for account %1", ProvisionDemand::Policies },
    { ProtocolUtils::TransportStatusUnavailable, QtCriticalMsg,
        "remote wipe is requested for account %1 by http status 403", ProvisionDemand::Wipe },
    { TransportRetryWith, QtWarningMsg, "provisioning error for %1 by http status 449",
        ProvisionDemand::Policies },
};
constexpr DemandTable demands(rows);
static_assert(demands.namesEachStatusOnce());

const DemandTable::Row *rowOf(const BaseProtocolCommand &command)
{
    return demands.find(command.isToldToProvision() ? TransportRetryWith : command.status());
}

} // namespace

bool isProvisioningDemanded(const BaseProtocolCommand &command)
{
    const DemandTable::Row *const row = rowOf(command);
    return row && row->verb != ProvisionDemand::None
        && command.status() != ProtocolUtils::TransportStatusUnavailable;
}

ProvisionDemand provisionDemand(const BaseProtocolCommand &command, EasAccountId accountId)
{
    const DemandTable::Row *const row = rowOf(command);
    if (!row)
        return ProvisionDemand::None;
    logStatusText(row->level, row->text, QString::number(accountId));
    return row->verb;
}
