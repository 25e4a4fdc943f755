// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <extendedcalendar.h>
#include <extendedstorage.h>

#include <KCalendarCore/Event>

#include <QList>
#include <QString>

#include <optional>

/** One time at which an event takes place: a plain event, an occurrence of a series, or its exception. */
struct EventOccurrence
{
    KCalendarCore::Event::Ptr event;
    QDateTime start;
    QDateTime end;
    /** When it would be by the rule of its series; invalid for a plain event. */
    QDateTime recurrenceId;
};

/**
 * The account's calendars in the device's calendar store, as the command line works with them. On the stack
 * of a command.
 *
 * An event goes by a short number made of its identifier. What is changed here the engine finds as a change
 * of the user's, and takes to the server with the next sync.
 */
class EventStore
{
public:
    explicit EventStore(EasAccountId accountId);

    /** Opens the store and loads all events of the account; false after an error was printed. */
    bool open();

    /** By their names. */
    mKCal::Notebook::List calendars() const;
    /** By name or identifier; the only one for an empty name. Null, after an error, if none is meant. */
    mKCal::Notebook::Ptr calendar(const QString &name) const;
    /** Events and series of a calendar, a series with its exceptions as one. */
    int count(const mKCal::Notebook::Ptr &calendar) const;
    QString calendarName(const KCalendarCore::Event::Ptr &event) const;

    /** Series and their exceptions each by themselves. */
    KCalendarCore::Event::List events() const { return mCalendar->rawEvents(); }
    static QString shortId(const KCalendarCore::Event::Ptr &event);
    /** The event or series by its number or identifier. Null, after an error, if there is none. */
    KCalendarCore::Event::Ptr find(const QString &id) const;

    /** By their starts; of one calendar, or of all for a null one. An event that lasts into the time counts.
     */
    QList<EventOccurrence> occurrences(
        const QDate &first, const QDate &last, const mKCal::Notebook::Ptr &calendar = {}) const;
    /** The occurrence that starts at a moment, or on a day. Its event is null, after an error, without one.
     */
    EventOccurrence occurrence(const KCalendarCore::Event::Ptr &event, const QString &start) const;

    bool add(const KCalendarCore::Event::Ptr &event, const mKCal::Notebook::Ptr &calendar);
    /** The exception of a series that stands for one of its occurrences, made if there is none yet. */
    KCalendarCore::Event::Ptr exceptionFor(const EventOccurrence &occurrence);
    bool remove(const KCalendarCore::Event::Ptr &event);
    bool removeOccurrence(const EventOccurrence &occurrence);
    /** False after an error was printed. */
    bool save();

    /** The events of an iCalendar text that are not there yet, exceptions of series included; their number.
     * Nothing, after an error, if the text is none. */
    std::optional<int> addICalendar(const QString &text, const mKCal::Notebook::Ptr &calendar);
    QString toICalendar(const mKCal::Notebook::Ptr &calendar) const;

private:
    KCalendarCore::Event::Ptr seriesOf(const KCalendarCore::Event::Ptr &event) const;

    EasAccountId mAccountId;
    mKCal::ExtendedCalendar::Ptr mCalendar;
    mKCal::ExtendedStorage::Ptr mStorage;
};
