// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/lookup.h"
#include "common/easaccountid.h"

/** Who uses an identity of the sign-on service, as the records of the account store say. Main thread only. */
namespace IdentityUsers {

/** Whether an account other than this one, which the store has, names the identity. */
Lookup<Existence> anyBut(EasAccountId accountId, quint32 identity);
/** Whether any account does. */
Lookup<Existence> any(quint32 identity);

} // namespace IdentityUsers
