// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendareventwriter.h"

#include "application/clock.h"
#include "application/logging.h"
#include "common/exchangeactivesync.h"
#include "easitems/eascalendaritem.h"
#include "easitems/eastimezone.h"
#include "storages/calendareventfields.h"
#include "storages/calendareventproperties.h"
#include "storages/calendarorigin.h"
#include "storages/calendarrecurrence.h"
#include "storages/calendarstorecontext.h"
#include "storages/calendartimes.h"

#include <KCalendarCore/CalFormat>

using KCalendarCore::Event;
using KCalendarCore::Incidence;

namespace {

/** What one row of the table works with. */
struct Writing
{
    const Event::Ptr &event;
    const EasCalendarItem &item;
    const QTimeZone &zone;
};

using Write = bool (*)(const Writing &);

struct Field
{
    EasCalendarItem::CalendarItemParameter parameter;
    Write write;
    /** Whether an item can be refused for it; what it then depends on counts as well. */
    bool isChecked = false;
};

bool writeOrganizer(const Writing &w)
{
    w.event->setOrganizer(KCalendarCore::Person(w.item.organizerName(), w.item.organizerEmail()));
    return true;
}

bool writeLocation(const Writing &w)
{
    w.event->setLocation(w.item.location());
    return true;
}

bool writeAllDay(const Writing &w)
{
    w.event->setAllDay(w.item.allDayEvent() == EasCalendarItemCommon::IsAllDayEvent);
    return true;
}

bool writeBody(const Writing &w)
{
    CalendarEventFields::convertBody(w.event, w.item.body());
    return true;
}

bool writeStart(const Writing &w)
{
    const QDateTime start = CalendarTimes::start(w.item.startTime(), w.zone, w.event->allDay());
    if (!start.isValid()) {
        qCCritical(eas()) << "Wrong start time:" << w.item.startTime();
        return false;
    }
    w.event->setDtStart(start);
    return true;
}

bool writeEnd(const Writing &w)
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
void writeTimeProperty(const Writing &w, const QString &name, const QString &text, const char *failure)
{
    const QDateTime time = ExchangeActiveSync::dateTimeFromString(text, nullptr);
    if (!time.isValid() && !text.isEmpty())
        qCWarning(eas()) << failure << text;
    CalendarEventProperties::setText(*w.event, name, ExchangeActiveSync::dateTimeToString(time));
}

bool writeProposedStart(const Writing &w)
{
    writeTimeProperty(w, ExchangeActiveSync::CalendarProposedStartTimeParamName, w.item.proposedStartTime(),
        "Wrong proposed start time:");
    return true;
}

bool writeProposedEnd(const Writing &w)
{
    writeTimeProperty(w, ExchangeActiveSync::CalendarProposedEndTimeParamName, w.item.proposedEndTime(),
        "Wrong proposed end time:");
    return true;
}

bool writeBusyStatus(const Writing &w)
{
    CalendarEventFields::setBusyStatus(*w.event, w.item.busyStatus());
    return true;
}

bool writeReminder(const Writing &w)
{
    CalendarEventFields::applyReminder(w.event, w.item.reminder());
    return true;
}

bool writeSensitivity(const Writing &w)
{
    CalendarEventFields::setSensitivity(*w.event, w.item.sensitivity());
    return true;
}

bool writeSubject(const Writing &w)
{
    w.event->setSummary(w.item.subject());
    return true;
}

bool writeUid(const Writing &w)
{
    CalendarEventProperties::setText(*w.event, ExchangeActiveSync::CalendarUidParamName, w.item.uid());
    CalendarEventProperties::setText(*w.event, ExchangeActiveSync::CalendarRemoteUidParamName, w.item.uid());
    return true;
}

bool writeCategories(const Writing &w)
{
    w.event->setCategories(w.item.categories());
    return true;
}

bool writeAttendees(const Writing &w)
{
    CalendarEventFields::setAttendees(*w.event, w.item.attendees());
    return true;
}

bool writeDisallowNewTimeProposal(const Writing &w)
{
    CalendarEventFields::setDisallowNewTimeProposal(*w.event, w.item.disallowNewTimeProposal());
    return true;
}

bool writeRecurrence(const Writing &w)
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

bool writeText(const Writing &w, const QString &name, const QString &text)
{
    CalendarEventProperties::setText(*w.event, name, text);
    return true;
}

bool writeNumber(const Writing &w, const QString &name, int value)
{
    CalendarEventProperties::setNumber(*w.event, name, value);
    return true;
}

bool writeReplyTime(const Writing &w)
{
    return writeText(
        w, ExchangeActiveSync::CalendarAppointmentReplyTimeParamName, w.item.appointmentReplyTime());
}

bool writeNativeBodyType(const Writing &w)
{
    return writeNumber(w, ExchangeActiveSync::CalendarNativeBodyTypeParamName, w.item.nativeBodyType());
}

bool writeMeetingStatus(const Writing &w)
{
    CalendarEventFields::setMeetingStatus(*w.event, w.item.meetingStatus());
    return true;
}

bool writeResponseRequested(const Writing &w)
{
    return writeNumber(w, ExchangeActiveSync::CalendarResponseRequestedParamName, w.item.responseRequested());
}

bool writeExternalLink(const Writing &w)
{
    return writeText(
        w, ExchangeActiveSync::CalendarMeetingExtLinkParamName, w.item.onlineMeetingExternalLink());
}

bool writeConferenceLink(const Writing &w)
{
    return writeText(w, ExchangeActiveSync::CalendarMeetingConfLinkParamName, w.item.onlineMeetingConfLink());
}

bool writeResponseType(const Writing &w)
{
    return writeNumber(w, ExchangeActiveSync::CalendarResponseTypeParamName, w.item.responseType());
}

bool writeAttachments(const Writing &w)
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

bool writeFields(const Writing &writing, bool checkedAlone)
{
    for (const Field &field : fields) {
        if (checkedAlone && !field.isChecked)
            continue;
        if (writing.item.parameterHasBeenChanged(field.parameter) && !field.write(writing))
            return false;
    }
    return true;
}

/** Writes into a copy first, so that a bad item leaves the event as it was. */
bool isWritable(const Event::Ptr &event, const EasCalendarItem &item, const QTimeZone &zone)
{
    const Event::Ptr copy(event->clone());
    if (!writeFields({ copy, item, zone }, true))
        return false;
    if (!item.hasExceptions() || CalendarExceptions::areAcceptable(item, zone, copy->allDay()))
        return true;
    qCWarning(eas()) << "Failed handling exceptions";
    return false;
}

/** An item that brings neither start nor zone leaves the event in its own. */
QTimeZone zoneForUpdate(const Event &event, const EasCalendarItem &item)
{
    const bool bringsZone =
        !item.timezone().isEmpty() || item.parameterHasBeenChanged(EasCalendarItem::StartTimeParameter);
    return bringsZone || !event.dtStart().isValid() ? CalendarEventWriter::getTimeZone(item.timezone(), item)
                                                    : event.dtStart().timeZone();
}

} // namespace

CalendarEventWriter::CalendarEventWriter(const CalendarStoreContext &context, Incidence::List *deleted)
    : mContext(context)
    , mExceptions(context, deleted)
{
}

QTimeZone CalendarEventWriter::getTimeZone(const QString &text, const EasCalendarItem &item)
{
    EasTimeZone zone;
    if (text.isEmpty() || !zone.parse(text.toLatin1()))
        return QTimeZone::utc();
    const QTimeZone found = zone.timeZone(item.startTime(), item.endTime());
    qCDebug(eas()) << "QTimeZone:" << found;
    return found;
}

bool CalendarEventWriter::isDeleted(const QString &uid, const QString &folder) const
{
    if (mContext.calendar->deletedEvent(uid))
        return true;
    Incidence::List deleted;
    mContext.storage->deletedIncidences(&deleted, QDateTime(), folder);
    return std::any_of(deleted.cbegin(), deleted.cend(), [&uid](const Incidence::Ptr &incidence) {
        return incidence->uid() == uid && !incidence->hasRecurrenceId();
    });
}

bool CalendarEventWriter::storeEvent(EasCalendarItem &item, const QString &folder, bool isNew,
    const QMap<QString, QString> &mapping, bool &skipped) const
{
    skipped = false;
    if (!mContext.isReady()) {
        qCCritical(eas()) << "No storage";
        return false;
    }
    if (item.serverId().isEmpty()) {
        qCWarning(eas()) << "Unable to store item: no serverId associated with item:" << item.localId();
        return false;
    }
    return isNew ? addEvent(item, folder) : updateEvent(item, folder, mapping, skipped);
}

bool CalendarEventWriter::addEvent(EasCalendarItem &item, const QString &folder) const
{
    const QTimeZone zone = getTimeZone(item.timezone(), item);
    const Event::Ptr event(new Event);
    event->setUid(KCalendarCore::CalFormat::createUniqueId());
    if (!isWritable(event, item, zone))
        return false;
    event->startUpdates();
    if (item.createdTimestamp() != 0)
        event->setCreated(QDateTime::fromMSecsSinceEpoch(item.createdTimestamp(), Qt::UTC));
    CalendarOrigin::setServerId(*event, item.serverId());
    writeFields({ event, item, zone }, false);
    event->endUpdates();
    if (!mContext.calendar->addEvent(event, folder)) {
        qCWarning(eas()) << "Failed to add event" << item.serverId();
        return false;
    }
    item.setLocalId(event->uid());
    event->startUpdates();
    const bool written = writeExceptions(event, item, folder, zone);
    event->endUpdates();
    if (written)
        return true;
    mContext.calendar->deleteEventInstances(event);
    mContext.calendar->deleteEvent(event);
    return false;
}

bool CalendarEventWriter::updateEvent(
    EasCalendarItem &item, const QString &folder, const QMap<QString, QString> &mapping, bool &skipped) const
{
    const auto localId = mapping.constFind(item.serverId());
    if (localId == mapping.constEnd()) {
        qCWarning(eas()) << "Unable to store item: mapping (" << mapping.size() << ") doesn't contain"
                         << item.serverId() << ", no localId associated with item:" << item.localId();
        return false;
    }
    const Event::Ptr event = mContext.calendar->event(*localId);
    if (!event && isDeleted(*localId, folder)) {
        skipped = true;
        qCInfo(eas()) << "Skipping update of already-deleted event:" << item.localId()
                      << "with server id:" << item.serverId() << "and local id:" << *localId;
        return true;
    }
    if (!event) {
        qCWarning(eas()) << "Cannot update non-existent event:" << item.serverId()
                         << "with local id:" << *localId;
        return false;
    }
    item.setLocalId(*localId);
    const QTimeZone zone = zoneForUpdate(*event, item);
    if (!isWritable(event, item, zone))
        return false;
    event->startUpdates();
    writeFields({ event, item, zone }, false);
    const bool written = writeExceptions(event, item, folder, zone);
    event->endUpdates();
    return written;
}

bool CalendarEventWriter::writeExceptions(
    const Event::Ptr &event, const EasCalendarItem &item, const QString &folder, const QTimeZone &zone) const
{
    if (!item.parameterHasBeenChanged(EasCalendarItem::ExceptionsParameter))
        return true;
    CalendarExceptions::clear(event);
    if (!event->recurs())
        return mExceptions.removeExceptions(event);
    if (mExceptions.handleExceptions(event, item, folder, zone))
        return true;
    qCWarning(eas()) << "Failed handling exceptions";
    return false;
}
