// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/meetings.h"

#include "simulator/calendarfile.h"
#include "simulator/datetext.h"
#include "simulator/email.h"
#include "simulator/eventitem.h"

namespace Simulator {
namespace {

enum MeetingStatus { Invited = 3, Cancelled = 7 };
enum ResponseType { TentativeResponse = 2, AcceptedResponse = 3, NotResponded = 5 };
enum BusyStatus { BusyTentative = 1, Busy = 2 };

const char invitationClass[] = "IPM.Schedule.Meeting.Request";
const char cancellationClass[] = "IPM.Schedule.Meeting.Canceled";

/** The meeting of a message of that class; nothing for all others. */
std::optional<Event> meetingOf(const ItemPtr &item, const char *messageClass)
{
    const auto email = std::dynamic_pointer_cast<const Email>(item);
    if (!email || email->content().headers().messageClass != QLatin1String(messageClass))
        return std::nullopt;
    const QVector<Event> events = CalendarFile::read(email->content().meetingRequest());
    return events.isEmpty() ? std::nullopt : std::make_optional(events.first());
}

/** Where the calendar has the meeting; empty if it has not. */
QString eventIdOf(const Mailbox &mailbox, const QString &uid)
{
    const QVector<ItemEntry> entries = mailbox.items(mailbox.folderOfType(CalendarFolder).id);
    for (const ItemEntry &entry : entries) {
        const auto event = mailbox.value<EventItem>(entry.serverId);
        if (event && event->uid == uid)
            return entry.serverId;
    }
    return QString();
}

Event invited(Event meeting)
{
    meeting.meetingStatus = Invited;
    meeting.responseType = NotResponded;
    meeting.busyStatus = BusyTentative;
    meeting.responseRequested = true;
    return meeting;
}

void respond(EventDetails &details, int response)
{
    const bool isAccepted = response == Meetings::Accepted;
    details.responseType = isAccepted ? AcceptedResponse : TentativeResponse;
    details.busyStatus = isAccepted ? Busy : BusyTentative;
    details.replyTime = QDateTime::currentDateTimeUtc();
}

/** What the answer makes of the meeting; nothing if there is no such occurrence. */
std::optional<Event> answered(Event meeting, const Meetings::Answer &answer)
{
    if (!answer.instance.isValid()) {
        respond(meeting, answer.response);
        return meeting;
    }
    if (!meeting.rule || !meeting.hasOccurrence(answer.instance))
        return std::nullopt;
    const QDate day = meeting.allDay ? answer.instance.date() : meeting.zone.toWall(answer.instance).date();
    if (answer.response == Meetings::Declined)
        meeting.deleteOccurrence(day);
    else
        meeting.editOccurrence(day, [&answer](EventDetails &details) { respond(details, answer.response); });
    return meeting;
}

QString store(Mailbox &mailbox, const QString &eventId, const Event &event)
{
    if (eventId.isEmpty())
        return mailbox.addItem(mailbox.folderOfType(CalendarFolder).id, EventItem::make(event));
    mailbox.replaceItem(eventId, EventItem::make(event));
    return eventId;
}

struct ReplyWords
{
    const char *subject;
    const char *participation;
};

ReplyWords wordsOf(int response)
{
    switch (response) {
    case Meetings::Tentative:
        return { "Tentative: ", "TENTATIVE" };
    case Meetings::Declined:
        return { "Declined: ", "DECLINED" };
    default:
        return { "Accepted: ", "ACCEPTED" };
    }
}

QByteArray encodedWord(const QString &text)
{
    return "=?UTF-8?B?" + text.toUtf8().toBase64() + "?=";
}

QByteArray replyCalendar(const Event &meeting, const Meetings::Answer &answer, const Meetings::Reply &reply)
{
    QByteArray text = "BEGIN:VCALENDAR\r\nMETHOD:REPLY\r\nVERSION:2.0\r\nPRODID:-//Example//Server//EN\r\n"
                      "BEGIN:VEVENT\r\nUID:"
        + meeting.uid.toUtf8()
        + "\r\nDTSTAMP:" + DateText::compact(QDateTime::currentDateTimeUtc()).toLatin1() + "\r\n";
    text += "DTSTART:"
        + DateText::compact(answer.instance.isValid() ? answer.instance : meeting.start).toLatin1() + "\r\n";
    if (answer.instance.isValid())
        text += "RECURRENCE-ID:" + DateText::compact(answer.instance).toLatin1() + "\r\n";
    if (!reply.proposedStart.isEmpty())
        text += "X-PROPOSED-START:" + reply.proposedStart.toLatin1()
            + "\r\nX-PROPOSED-END:" + reply.proposedEnd.toLatin1() + "\r\n";
    return text + "ATTENDEE;PARTSTAT=" + wordsOf(answer.response).participation
        + ":mailto:" + reply.address.toUtf8() + "\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
}

} // namespace

void Meetings::arrive(Mailbox &mailbox, const QString &serverId)
{
    const ItemPtr item = mailbox.item(serverId);
    if (const std::optional<Event> meeting = meetingOf(item, invitationClass)) {
        if (eventIdOf(mailbox, meeting->uid).isEmpty())
            store(mailbox, QString(), invited(*meeting));
    } else if (const std::optional<Event> cancelled = meetingOf(item, cancellationClass)) {
        mailbox.edit<EventItem>(
            eventIdOf(mailbox, cancelled->uid), [](Event &event) { event.meetingStatus = Cancelled; });
    }
}

std::optional<Meetings::Outcome> Meetings::answer(
    Mailbox &mailbox, const QString &serverId, const Answer &answer)
{
    const std::optional<Event> invitation = meetingOf(mailbox.item(serverId), invitationClass);
    const QString eventId = invitation ? eventIdOf(mailbox, invitation->uid) : serverId;
    std::optional<Event> meeting = mailbox.value<EventItem>(eventId);
    if (invitation && !meeting)
        meeting = invited(*invitation);
    if (!meeting || meeting->meetingStatus != Invited)
        return std::nullopt;
    const std::optional<Event> result = answered(*meeting, answer);
    if (!result)
        return std::nullopt;

    Outcome outcome { QString(), *meeting };
    if (answer.response != Declined || answer.instance.isValid())
        outcome.calendarId = store(mailbox, eventId, *result);
    else
        mailbox.remove(eventId);
    if (invitation)
        mailbox.move(serverId, mailbox.folderOfType(DeletedItemsFolder).id);
    return outcome;
}

QByteArray Meetings::replyMail(const Event &meeting, const Answer &answer, const Reply &reply)
{
    const QString subject = QLatin1String(wordsOf(answer.response).subject) + meeting.subject;
    return "From: " + reply.address.toUtf8() + "\r\nTo: " + meeting.organizerEmail.toUtf8()
        + "\r\nSubject: " + encodedWord(subject)
        + "\r\nDate: " + QDateTime::currentDateTimeUtc().toString(Qt::RFC2822Date).toLatin1()
        + "\r\nMIME-Version: 1.0\r\nContent-Type: multipart/alternative; boundary=\"reply\"\r\n\r\n"
          "--reply\r\nContent-Type: text/plain; charset=utf-8\r\nContent-Transfer-Encoding: base64\r\n\r\n"
        + reply.comment.toUtf8().toBase64()
        + "\r\n--reply\r\nContent-Type: text/calendar; charset=utf-8; method=REPLY\r\n"
          "Content-Transfer-Encoding: 8bit\r\n\r\n"
        + replyCalendar(meeting, answer, reply) + "--reply--\r\n";
}

} // namespace Simulator
