// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

class BaseProtocolCommand;

/** What a server wants before it does a command's work. */
enum class ProvisionDemand {
    None,
    /** The account's policy key must be the default one. */
    DefaultKey,
    /** The device must take on the server's policies. */
    Policies,
    /** The device must give up the account's data. */
    Wipe
};

/** Whether a finished command met any demand that its server has put into words. */
bool isProvisioningDemanded(const BaseProtocolCommand &command);

/** The demand of a finished command, by its status or by HTTP 449, which is written to the log. */
ProvisionDemand provisionDemand(const BaseProtocolCommand &command, EasAccountId accountId);
