// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarstorecontext.h"

#include "application/account/easaccount.h"

EasAccountId CalendarStoreContext::accountId() const
{
    return account ? account->id() : 0;
}

ExchangeActiveSync::ProtocolVersion CalendarStoreContext::protocolVersion() const
{
    return account ? account->protocolVersion() : ExchangeActiveSync::ProtocolVersionUnknown;
}
