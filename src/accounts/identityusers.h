// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

/** Who uses an identity of the sign-on service, as the records of the account store say. Main thread only. */
namespace IdentityUsers {

/** Whether an account other than this one names the identity, or the records cannot be read. */
bool anyBut(EasAccountId accountId, quint32 identity);
/** The same for any account. */
bool any(quint32 identity);

} // namespace IdentityUsers
