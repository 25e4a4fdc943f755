// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarfieldwriting.h"

#include "application/base/clock.h"
#include "application/base/logging.h"
#include "common/exchangeactivesync.h"
#include "easitems/eascalendaritem.h"
#include "storages/calendar/calendareventfields.h"
#include "storages/calendar/calendareventproperties.h"
#include "storages/calendar/calendarrecurrence.h"
#include "storages/calendar/calendartimes.h"

namespace {

using Write = bool (*)(const CalendarFieldWriting &);

struct Field
{
    EasCalendarItem::CalendarItemParameter parameter;
    Write write;
    /** Whether an item can be refused for it; what it then depends on counts as well. */
    bool isChecked = false;
};

bool writeOrganizer(const CalendarFieldWriting &w)
{
    w.event->setOrganizer(KCalendarCore::Person(w.item.organizerName(), w.item.organizerEmail()));
    return true;
}

bool writeLocation(const CalendarFieldWriting &w)
{
    w.event->setLocation(w.item.location());
    return true;
}

bool writeAllDay(const CalendarFieldWriting &w)
{
    w.event->setAllDay(w.item.allDayEvent() == EasCalendarItemCommon::IsAllDayEvent);
    return true;
}

bool writeBody(const CalendarFieldWriting &w)
{
    CalendarEventFields::convertBody(w.event, w.item.body());
    return true;
}

bool writeStart(const CalendarFieldWriting &w)
{
    const QDateTime start = CalendarTimes::start(w.item.startTime(), w.zone, w.event->allDay());
    if (!start.isValid()) {
        qCCritical(eas()) << "Wrong start time:" << w.item.startTime();
        return false;
    }
    w.event->setDtStart(start);
    return true;
}

bool writeEnd(const CalendarFieldWriting &w)
{
    const QDateTime end = CalendarTimes::end(w.item.endTime(), w.zone, w.event->allDay());
    if (!end.isValid()) {
        qCCritical(eas()) << "Wrong end time:" << w.item.endTime();
        return false;
    }
    // An all-day event without a length still has its day.
    w.event->setDtEnd(w.event->allDay() ? qMax(w.event->dtStart(), end) : end);
    return true;
}

/** A time that the device only keeps; one that cannot be read is left out. */
void writeTimeProperty(
    const CalendarFieldWriting &w, const QString &name, const QString &text, const char *failure)
{
    const QDateTime time = ExchangeActiveSync::dateTimeFromString(text, nullptr);
    if (!time.isValid() && !text.isEmpty())
        qCWarning(eas()) << failure << text;
    CalendarEventProperties::setText(*w.event, name, ExchangeActiveSync::dateTimeToString(time));
}

bool writeProposedStart(const CalendarFieldWriting &w)
{
    writeTimeProperty(w, ExchangeActiveSync::CalendarProposedStartTimeParamName, w.item.proposedStartTime(),
        "Wrong proposed start time:");
    return true;
}

bool writeProposedEnd(const CalendarFieldWriting &w)
{
    writeTimeProperty(w, ExchangeActiveSync::CalendarProposedEndTimeParamName, w.item.proposedEndTime(),
        "Wrong proposed end time:");
    return true;
}

bool writeBusyStatus(const CalendarFieldWriting &w)
{
    CalendarEventFields::setBusyStatus(*w.event, w.item.busyStatus());
    return true;
}

bool writeReminder(const CalendarFieldWriting &w)
{
    CalendarEventFields::applyReminder(w.event, w.item.reminder());
    return true;
}

bool writeSensitivity(const CalendarFieldWriting &w)
{
    CalendarEventFields::setSensitivity(*w.event, w.item.sensitivity());
    return true;
}

bool writeSubject(const CalendarFieldWriting &w)
{
    w.event->setSummary(w.item.subject());
    return true;
}

bool writeUid(const CalendarFieldWriting &w)
{
    CalendarEventProperties::setText(*w.event, ExchangeActiveSync::CalendarUidParamName, w.item.uid());
    CalendarEventProperties::setText(*w.event, ExchangeActiveSync::CalendarRemoteUidParamName, w.item.uid());
    return true;
}

bool writeCategories(const CalendarFieldWriting &w)
{
    w.event->setCategories(w.item.categories());
    return true;
}

bool writeAttendees(const CalendarFieldWriting &w)
{
    CalendarEventFields::setAttendees(*w.event, w.item.attendees());
    return true;
}

bool writeDisallowNewTimeProposal(const CalendarFieldWriting &w)
{
    CalendarEventFields::setDisallowNewTimeProposal(*w.event, w.item.disallowNewTimeProposal());
    return true;
}

bool writeRecurrence(const CalendarFieldWriting &w)
{
    if (w.item.recurrence().type() == EasRecurrenceContainer::UndefinedRecurrence) {
        w.event->clearRecurrence(); // no series any more
        return true;
    }
    // The last day of an all-day series is a day of the event's zone; any other end is a moment.
    const QTimeZone zone = w.event->allDay() ? w.event->dtStart().timeZone() : Clock::instance().timeZone();
    if (CalendarRecurrence::handleRecurrence(w.event, w.item.recurrence(), zone))
        return true;
    qCWarning(eas()) << "Failed handling recurrence";
    return false;
}

bool writeText(const CalendarFieldWriting &w, const QString &name, const QString &text)
{
    CalendarEventProperties::setText(*w.event, name, text);
    return true;
}

bool writeNumber(const CalendarFieldWriting &w, const QString &name, int value)
{
    CalendarEventProperties::setNumber(*w.event, name, value);
    return true;
}

bool writeReplyTime(const CalendarFieldWriting &w)
{
    return writeText(
        w, ExchangeActiveSync::CalendarAppointmentReplyTimeParamName, w.item.appointmentReplyTime());
}

bool writeNativeBodyType(const CalendarFieldWriting &w)
{
    return writeNumber(w, ExchangeActiveSync::CalendarNativeBodyTypeParamName, w.item.nativeBodyType());
}

bool writeMeetingStatus(const CalendarFieldWriting &w)
{
    CalendarEventFields::setMeetingStatus(*w.event, w.item.meetingStatus());
    return true;
}

bool writeResponseRequested(const CalendarFieldWriting &w)
{
    return writeNumber(w, ExchangeActiveSync::CalendarResponseRequestedParamName, w.item.responseRequested());
}

bool writeExternalLink(const CalendarFieldWriting &w)
{
    return writeText(
        w, ExchangeActiveSync::CalendarMeetingExtLinkParamName, w.item.onlineMeetingExternalLink());
}

bool writeConferenceLink(const CalendarFieldWriting &w)
{
    return writeText(w, ExchangeActiveSync::CalendarMeetingConfLinkParamName, w.item.onlineMeetingConfLink());
}

bool writeResponseType(const CalendarFieldWriting &w)
{
    return writeNumber(w, ExchangeActiveSync::CalendarResponseTypeParamName, w.item.responseType());
}

bool writeAttachments(const CalendarFieldWriting &w)
{
    CalendarEventFields::setAttachments(w.event, w.item.attachments());
    return true;
}

/** The order matters: whether a time is a day, what a rule starts with, what a status was before. */
const Field fields[] = {
    { EasCalendarItem::OrganizerNameParameter, writeOrganizer },
    { EasCalendarItem::OrganizerEmailParameter, writeOrganizer },
    { EasCalendarItem::LocationParameter, writeLocation },
    { EasCalendarItem::AllDayEventParameter, writeAllDay, true },
    { EasCalendarItem::BodyParameter, writeBody },
    { EasCalendarItem::StartTimeParameter, writeStart, true },
    { EasCalendarItem::EndTimeParameter, writeEnd, true },
    { EasCalendarItem::ProposedStartTimeParameter, writeProposedStart },
    { EasCalendarItem::ProposedEndTimeParameter, writeProposedEnd },
    { EasCalendarItem::BusyStatusParameter, writeBusyStatus },
    { EasCalendarItem::ReminderParameter, writeReminder },
    { EasCalendarItem::SensitivityParameter, writeSensitivity },
    { EasCalendarItem::SubjectParameter, writeSubject },
    { EasCalendarItem::UidParameter, writeUid },
    { EasCalendarItem::CategoriesParameter, writeCategories },
    { EasCalendarItem::AttendeesParameter, writeAttendees },
    { EasCalendarItem::DisallowNewTimeProposalParameter, writeDisallowNewTimeProposal },
    { EasCalendarItem::RecurrenceParameter, writeRecurrence, true },
    { EasCalendarItem::AppointmentReplyTimeParameter, writeReplyTime },
    { EasCalendarItem::NativeBodyTypeParameter, writeNativeBodyType },
    { EasCalendarItem::MeetingStatusParameter, writeMeetingStatus },
    { EasCalendarItem::ResponseRequestedParameter, writeResponseRequested },
    { EasCalendarItem::OnlineMeetingExternalLinkParameter, writeExternalLink },
    { EasCalendarItem::OnlineMeetingConfLinkParameter, writeConferenceLink },
    { EasCalendarItem::ResponseTypeParameter, writeResponseType },
    { EasCalendarItem::AttachmentsParameter, writeAttachments },
};

} // namespace

bool CalendarFieldWriting::write(Fields which) const
{
    for (const Field &field : fields) {
        if (which == CheckedFields && !field.isChecked)
            continue;
        if (item.parameterHasBeenChanged(field.parameter) && !field.write(*this))
            return false;
    }
    return true;
}
