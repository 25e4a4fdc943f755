// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/answeredmeeting.h"

#include "client/eventstore.h"
#include "client/eventtime.h"
#include "client/exitstatus.h"
#include "client/output.h"

#include <KCalendarCore/ICalFormat>
#include <KCalendarCore/MemoryCalendar>
#include <KCalendarCore/OccurrenceIterator>
#include <qmailmessage.h>

namespace {

using KCalendarCore::Event;
using KCalendarCore::MemoryCalendar;

/** The text of the calendar part; empty if the message has none. */
QString calendarText(const QMailMessagePartContainer &container)
{
    if (container.contentType().matches("text", "calendar") && container.hasBody())
        return container.body().data();
    for (uint i = 0; i < container.partCount(); ++i) {
        const QString text = calendarText(container.partAt(i));
        if (!text.isEmpty())
            return text;
    }
    return {};
}

void takeEvent(const Event::Ptr &event, AnsweredMeeting *meeting)
{
    meeting->organizer = QMailAddress(event->organizer().name(), event->organizer().email());
    meeting->subject = event->summary();
}

/** The start by its rule of the occurrence that the user names; invalid without one. */
QDateTime occurrenceOf(const MemoryCalendar &calendar, const QString &start)
{
    const EventTime wanted = EventTime::read(start);
    if (!wanted.isValid())
        return {};
    KCalendarCore::OccurrenceIterator next(
        calendar, wanted.date().addDays(-1).startOfDay(), wanted.date().addDays(2).startOfDay());
    while (next.hasNext()) {
        next.next();
        if (wanted.isAt(next.occurrenceStartDate().toLocalTime(), next.incidence()->allDay()))
            return next.recurrenceId().isValid() ? next.recurrenceId() : next.occurrenceStartDate();
    }
    return {};
}

} // namespace

int MeetingSearch::find(
    const QString &argument, const QString &occurrenceStart, AnsweredMeeting *meeting) const
{
    QString iCalendar;
    if (!findInvitation(argument, meeting, &iCalendar))
        return findEvent(argument, occurrenceStart, meeting);
    const MemoryCalendar::Ptr calendar(new MemoryCalendar(QTimeZone::systemTimeZone()));
    KCalendarCore::ICalFormat().fromString(calendar, iCalendar);
    if (const Event::Ptr event = calendar->rawEvents().value(0))
        takeEvent(event, meeting);
    const QMailMessageMetaData message(meeting->message);
    if (meeting->organizer.address().isEmpty())
        meeting->organizer = message.from();
    if (meeting->subject.isEmpty())
        meeting->subject = message.subject();
    if (occurrenceStart.isEmpty())
        return ExitSuccess;
    meeting->occurrence = occurrenceOf(*calendar, occurrenceStart);
    if (meeting->occurrence.isValid())
        return ExitSuccess;
    Output::error(QStringLiteral("\"%1\" has no occurrence at %2").arg(meeting->subject, occurrenceStart));
    return ExitNotFound;
}

bool MeetingSearch::findInvitation(const QString &number, AnsweredMeeting *meeting, QString *iCalendar) const
{
    const QMailMessageId id(number.toULongLong());
    const QMailMessageMetaData known(id);
    if (!known.id().isValid() || known.parentAccountId() != QMailAccountId(mAccountId))
        return false;
    *iCalendar = calendarText(QMailMessage(id));
    if (iCalendar->isEmpty() && !(known.status() & QMailMessage::CalendarInvitation))
        return false;
    meeting->message = id;
    return true;
}

int MeetingSearch::findEvent(
    const QString &id, const QString &occurrenceStart, AnsweredMeeting *meeting) const
{
    EventStore store(mAccountId);
    if (!store.open())
        return ExitUnavailable;
    const Event::Ptr event = store.find(id);
    if (!event)
        return ExitNotFound;
    if (!occurrenceStart.isEmpty()) {
        const EventOccurrence occurrence = store.occurrence(event, occurrenceStart);
        if (!occurrence.event)
            return ExitNotFound;
        meeting->occurrence = occurrence.recurrenceId;
    }
    takeEvent(event, meeting);
    meeting->event = event->uid();
    if (!meeting->organizer.address().isEmpty())
        return ExitSuccess;
    Output::error(QStringLiteral("\"%1\" is no meeting that somebody has invited to").arg(meeting->subject));
    return ExitFailure;
}
