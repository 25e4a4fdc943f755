// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"
#include "common/exchangeactivesync.h"

#include <extendedcalendar.h>
#include <extendedstorage.h>

class EasAccount;

/**
 * Where a calendar storage works: the device's calendar and its store, and the account.
 *
 * CalendarStorageImpl owns it; its collaborators look at it by reference. Calendar and storage are null until
 * the store could be opened. After each notice of a change in the store the calendar is empty and does
 * not know the events and notebooks held from before, so nothing of them is kept across a turn of the event
 * loop.
 */
struct CalendarStoreContext
{
    EasAccount *account = nullptr;
    mKCal::ExtendedCalendar::Ptr calendar;
    mKCal::ExtendedStorage::Ptr storage;

    /** 0 without an account. */
    EasAccountId accountId() const;
    bool isReady() const { return calendar && storage; }
    /** Unknown without an account. */
    ExchangeActiveSync::ProtocolVersion protocolVersion() const;
    /** Up to 14.1 they go up within their series; later one by one, and after a series that is new. */
    bool exceptionsGoInSeries() const { return protocolVersion() < ExchangeActiveSync::ProtocolVersion160; }
};
