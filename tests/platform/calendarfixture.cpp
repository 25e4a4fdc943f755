// SPDX-License-Identifier: LGPL-2.1-or-later
#include "platform/calendarfixture.h"

#include <QTimeZone>

using KCalendarCore::Event;

CalendarStore::CalendarStore(const QString &path)
    : calendar(new mKCal::ExtendedCalendar(QTimeZone::utc()))
    , storage(new mKCal::SqliteStorage(calendar, path))
    , opened(storage->open())
{
}

CalendarStore::~CalendarStore()
{
    storage->close();
}

void CalendarStore::reload()
{
    calendar->close();
    storage->load();
}

mKCal::Notebook::Ptr CalendarFixture::addNotebook(CalendarStore &store, const QString &uid)
{
    const mKCal::Notebook::Ptr notebook(new mKCal::Notebook(
        uid, QStringLiteral("Calendar"), QString(), QString(), false, false, false, false, true));
    return store.storage->addNotebook(notebook) ? notebook : mKCal::Notebook::Ptr();
}

Event::Ptr CalendarFixture::makeEvent(const QString &uid, const QDate &day)
{
    const Event::Ptr event(new Event);
    event->setUid(uid);
    event->setSummary(QStringLiteral("Summary of ") + uid);
    event->setDtStart(berlin(day));
    event->setDtEnd(berlin(day, QTime(11, 0)));
    return event;
}

Event::Ptr CalendarFixture::makeSeries(const QString &uid, const QDate &day)
{
    const Event::Ptr event = makeEvent(uid, day);
    event->recurrence()->setDaily(1);
    return event;
}

QDateTime CalendarFixture::berlin(const QDate &day, const QTime &time)
{
    return QDateTime(day, time, QTimeZone("Europe/Berlin"));
}

QDateTime CalendarFixture::utc(qint64 seconds)
{
    return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
}

QStringList CalendarFixture::uids(const KCalendarCore::Incidence::List &incidences)
{
    QStringList result;
    for (const KCalendarCore::Incidence::Ptr &incidence : incidences)
        result.append(incidence->uid());
    result.sort();
    return result;
}
