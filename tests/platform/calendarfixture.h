// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <extendedcalendar.h>
#include <sqlitestorage.h>

#include <KCalendarCore/Event>

#include <QTemporaryDir>

/** A calendar with an open storage, as one process has them. */
struct CalendarStore
{
    explicit CalendarStore(const QString &path);
    ~CalendarStore();
    CalendarStore(const CalendarStore &) = delete;
    CalendarStore &operator=(const CalendarStore &) = delete;

    /** Forgets what is in memory and loads everything. */
    void reload();
    KCalendarCore::Event::Ptr event(const QString &uid, const QDateTime &recurrenceId = {}) const
    {
        return calendar->event(uid, recurrenceId);
    }

    mKCal::ExtendedCalendar::Ptr calendar;
    mKCal::SqliteStorage::Ptr storage;
    bool opened;
};

/** Notes each call of an observer. */
struct CalendarNotices : mKCal::ExtendedStorageObserver
{
    void storageModified(mKCal::ExtendedStorage *, const QString &info) override { modified.append(info); }
    void storageProgress(mKCal::ExtendedStorage *, const QString &) override { ++progress; }
    void storageFinished(mKCal::ExtendedStorage *, bool error, const QString &info) override
    {
        finished.append((error ? QLatin1String("error: ") : QLatin1String()) + info);
    }

    QStringList modified;
    QStringList finished;
    int progress = 0;
};

namespace CalendarFixture {

const QString notebookUid = QStringLiteral("notebook-1");

/** A notebook that events can be saved into. */
mKCal::Notebook::Ptr addNotebook(CalendarStore &store, const QString &uid = notebookUid);
/** One hour, in Berlin, on the day given. */
KCalendarCore::Event::Ptr makeEvent(const QString &uid, const QDate &day = QDate(2024, 5, 1));
/** The same, each day, without end. */
KCalendarCore::Event::Ptr makeSeries(const QString &uid, const QDate &day = QDate(2024, 5, 1));
QDateTime berlin(const QDate &day, const QTime &time = QTime(10, 0));
QDateTime utc(qint64 seconds);
/** Uids of a list, sorted. */
QStringList uids(const KCalendarCore::Incidence::List &incidences);

} // namespace CalendarFixture
