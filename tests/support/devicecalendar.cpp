// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/devicecalendar.h"

#include <QSqlDatabase>
#include <QSqlQuery>

#include <sqlitestorage.h>

using KCalendarCore::Event;

DeviceCalendar::DeviceCalendar()
    : calendar(mKCal::ExtendedCalendar::Ptr::create(QTimeZone::utc()))
    , storage(mKCal::ExtendedCalendar::defaultStorage(calendar))
{
    if (!storage->open() || !storage->load())
        qFatal("the store cannot be read");
}

DeviceCalendar::~DeviceCalendar()
{
    storage->close();
}

Event::List DeviceCalendar::series(EasAccountId accountId) const
{
    Event::List found;
    const auto notebooks = storage->notebooks();
    const Event::List events = calendar->rawEvents();
    for (const auto &notebook : notebooks) {
        if (notebook->account() != QString::number(accountId))
            continue;
        for (const Event::Ptr &event : events) {
            if (!event->hasRecurrenceId() && calendar->notebook(event) == notebook->uid())
                found.append(event);
        }
    }
    return found;
}

Event::Ptr DeviceCalendar::withSummary(const QString &summary) const
{
    const Event::List events = calendar->rawEvents();
    for (const Event::Ptr &event : events) {
        if (!event->hasRecurrenceId() && event->summary() == summary)
            return event;
    }
    return {};
}

QString DeviceCalendar::notebookOf(EasAccountId accountId) const
{
    const auto notebooks = storage->notebooks();
    for (const auto &notebook : notebooks) {
        if (notebook->account() == QString::number(accountId))
            return notebook->uid();
    }
    return {};
}

QStringList DeviceCalendar::notebooksOf(EasAccountId accountId) const
{
    QMap<QString, QString> byName;
    const auto notebooks = storage->notebooks();
    for (const auto &notebook : notebooks) {
        if (notebook->account() == QString::number(accountId))
            byName.insert(notebook->name(), notebook->uid());
    }
    return byName.values();
}

Event::Ptr DeviceCalendar::occurrence(const Event::Ptr &series, const QDate &day) const
{
    const QDateTime start(day, series->dtStart().time(), series->dtStart().timeZone());
    return calendar->dissociateSingleOccurrence(series, start).staticCast<Event>();
}

bool DeviceCalendar::remove(const Event::Ptr &series, const QDateTime &when)
{
    const QString uid = series->uid();
    if (!calendar->deleteEvent(series) || !storage->save())
        return false;
    const QString name = QStringLiteral("device-calendar");
    bool dated = false;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(storage.staticCast<mKCal::SqliteStorage>()->databaseName());
        QSqlQuery query(database.open() ? database : QSqlDatabase());
        query.prepare(
            QStringLiteral("UPDATE incidences SET deleted = ? WHERE uid = ? AND deleted IS NOT NULL"));
        query.addBindValue(when.toSecsSinceEpoch());
        query.addBindValue(uid);
        dated = query.exec();
    }
    QSqlDatabase::removeDatabase(name);
    return dated;
}
