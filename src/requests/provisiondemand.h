// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

/** What a server wants, by the status of a command, before it does the command's work. */
enum class ProvisionDemand {
    None,
    /** The account's policy key must be the default one. */
    DefaultKey,
    /** The device must take on the server's policies. */
    Policies,
    /** The device must give up the account's data. */
    Wipe
};

/** The demand of a status, which is written to the log. An account with a policy key is known to the server,
 * so that an unavailable server is no demand for it. */
ProvisionDemand provisionDemand(int status, EasAccountId accountId, bool hasPolicyKey);
