// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <KCalendarCore/Event>
#include <extendedcalendar.h>
#include <extendedstorage.h>

/** The device's calendar as a calendar program has it: all of the store, read anew with each object. */
class DeviceCalendar
{
public:
    DeviceCalendar();
    ~DeviceCalendar();
    Q_DISABLE_COPY(DeviceCalendar)

    /** Events and series of the account, without exceptions. */
    KCalendarCore::Event::List series(EasAccountId accountId) const;
    KCalendarCore::Event::Ptr withSummary(const QString &summary) const;
    /** The account's only calendar. */
    QString notebookOf(EasAccountId accountId) const;
    /** All of an account's, in the order of their names. */
    QStringList notebooksOf(EasAccountId accountId) const;
    /** An exception to be, which is in no calendar yet; null if the series has no such occurrence. */
    KCalendarCore::Event::Ptr occurrence(const KCalendarCore::Event::Ptr &series, const QDate &day) const;

    /** Deletes with all exceptions and saves; the store notes @p when as the time of it. */
    bool remove(const KCalendarCore::Event::Ptr &series, const QDateTime &when);

    const mKCal::ExtendedCalendar::Ptr calendar;
    const mKCal::ExtendedStorage::Ptr storage;
};
