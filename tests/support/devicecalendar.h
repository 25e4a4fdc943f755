// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <KCalendarCore/Event>
#include <extendedcalendar.h>
#include <extendedstorage.h>

#include <QTimeZone>

/** The device's calendar as a calendar program has it: all of it, loaded at once. */
class DeviceCalendar
{
public:
    DeviceCalendar()
        : calendar(mKCal::ExtendedCalendar::Ptr::create(QTimeZone::utc()))
        , storage(mKCal::ExtendedCalendar::defaultStorage(calendar))
    {
        if (!storage->open() || !storage->load())
            qFatal("the store cannot be read");
    }
    ~DeviceCalendar() { storage->close(); }
    Q_DISABLE_COPY(DeviceCalendar)

    KCalendarCore::Event::Ptr withSummary(const QString &summary) const
    {
        const auto events = calendar->rawEvents();
        for (const auto &event : events) {
            if (!event->hasRecurrenceId() && event->summary() == summary)
                return event;
        }
        return {};
    }

    /** The account's only calendar. */
    QString notebookOf(EasAccountId accountId) const
    {
        const auto notebooks = storage->notebooks();
        for (const auto &notebook : notebooks) {
            if (notebook->account() == QString::number(accountId))
                return notebook->uid();
        }
        return {};
    }

    KCalendarCore::Event::Ptr occurrence(const KCalendarCore::Event::Ptr &series, const QDate &day) const
    {
        const QDateTime start(day, series->dtStart().time(), series->dtStart().timeZone());
        return calendar->dissociateSingleOccurrence(series, start).staticCast<KCalendarCore::Event>();
    }

    const mKCal::ExtendedCalendar::Ptr calendar;
    const mKCal::ExtendedStorage::Ptr storage;
};
