// SPDX-License-Identifier: LGPL-2.1-or-later
#include "extendedcalendar.h"

#include "internal/storelocation.h"
#include "sqlitestorage.h"

#include <KCalendarCore/CalFormat>

namespace mKCal {

using KCalendarCore::Event;
using KCalendarCore::Incidence;
using KCalendarCore::MemoryCalendar;

namespace {

QDateTime withoutMilliseconds(QDateTime moment)
{
    const QTime time = moment.time();
    moment.setTime(QTime(time.hour(), time.minute(), time.second()));
    return moment;
}

} // namespace

ExtendedCalendar::ExtendedCalendar(const QTimeZone &timeZone)
    : MemoryCalendar(timeZone)
{
}

ExtendedCalendar::ExtendedCalendar(const QByteArray &timeZoneId)
    : MemoryCalendar(timeZoneId)
{
}

ExtendedCalendar::~ExtendedCalendar() = default;

QSharedPointer<ExtendedStorage> ExtendedCalendar::defaultStorage(const ExtendedCalendar::Ptr &calendar)
{
    return SqliteStorage::Ptr::create(calendar, StoreLocation::databaseName());
}

bool ExtendedCalendar::addEvent(const Event::Ptr &event)
{
    return defaultNotebook().isEmpty() ? event && MemoryCalendar::addEvent(event)
                                       : addEvent(event, defaultNotebook());
}

bool ExtendedCalendar::addEvent(const Event::Ptr &event, const QString &notebookUid)
{
    return addIncidence(event, notebookUid);
}

bool ExtendedCalendar::addIncidence(const Incidence::Ptr &incidence, const QString &notebookUid)
{
    if (!incidence || notebookUid.isEmpty())
        return false;
    if (incidence->uid().isEmpty())
        incidence->setUid(KCalendarCore::CalFormat::createUniqueId());
    const QString uid = incidence->uid();
    if (this->incidence(uid, incidence->recurrenceId()) || !MemoryCalendar::addIncidence(incidence))
        return false;
    // A storage replaces a uid that is too short, and then the calendar does not know the incidence by it.
    return incidence->uid() == uid && setNotebook(incidence, notebookUid);
}

bool ExtendedCalendar::deleteEvent(const Event::Ptr &event)
{
    return deleteIncidence(event);
}

bool ExtendedCalendar::deleteIncidence(const Incidence::Ptr &incidence)
{
    if (!incidence || this->incidence(incidence->uid(), incidence->recurrenceId()) != incidence)
        return false;
    if (!incidence->hasRecurrenceId())
        deleteIncidenceInstances(incidence);
    return MemoryCalendar::deleteIncidence(incidence);
}

Incidence::Ptr ExtendedCalendar::dissociateSingleOccurrence(
    const Incidence::Ptr &incidence, const QDateTime &dateTime, const QTimeZone &timeZone)
{
    if (!incidence || !incidence->recurs() || !dateTime.isValid())
        return Incidence::Ptr();
    QDateTime moment = withoutMilliseconds(dateTime);
    if (incidence->allDay()) {
        const QDate date = timeZone.isValid() ? moment.toTimeZone(timeZone).date() : moment.date();
        moment = incidence->dtStart();
        moment.setDate(date);
        if (!incidence->recursOn(date, moment.timeZone()))
            return Incidence::Ptr();
    } else if (!incidence->recursAt(moment)) {
        return Incidence::Ptr();
    }
    if (this->incidence(incidence->uid(), moment))
        return Incidence::Ptr();

    // In the form of the parent's start: the wall time of an exception is that of its series.
    if (incidence->dtStart().timeSpec() == Qt::TimeZone)
        moment = moment.toTimeZone(incidence->dtStart().timeZone());
    const Incidence::Ptr exception = createException(incidence, moment);
    if (!exception)
        return Incidence::Ptr();
    const QDateTime now = withoutMilliseconds(QDateTime::currentDateTimeUtc());
    exception->setSchedulingID(QString());
    exception->setCreated(now);
    exception->setLastModified(now);
    incidence->setLastModified(now);
    return exception;
}

void ExtendedCalendar::close()
{
    Q_EMIT aboutToClose();
    MemoryCalendar::close();
}

void ExtendedCalendar::storageModified(ExtendedStorage *storage, const QString &info)
{
    Q_UNUSED(storage)
    Q_UNUSED(info)
    close();
}

void ExtendedCalendar::storageProgress(ExtendedStorage *storage, const QString &info)
{
    Q_UNUSED(storage)
    Q_UNUSED(info)
}

void ExtendedCalendar::storageFinished(ExtendedStorage *storage, bool error, const QString &info)
{
    Q_UNUSED(storage)
    Q_UNUSED(error)
    Q_UNUSED(info)
}

} // namespace mKCal
