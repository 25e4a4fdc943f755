// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/meetinginvitation.h"

#include "application/base/clock.h"
#include "application/base/deviceinformation.h"
#include "storages/calendar/calendarrecurrence.h"
#include "storages/calendar/icaltext.h"
#include "storages/calendar/meetingzone.h"

#include <KCalendarCore/ICalFormat>
#include <KCalendarCore/Person>
#include <KCalendarCore/Recurrence>

namespace {

constexpr int MiddlePriority = 5;
/** Characters of one text; what is made here has to be small enough to be read and answered. */
constexpr int LongestText = 64 * 1024;

QByteArray line(const QString &text)
{
    return ICalText::singleLine(text.left(LongestText));
}

void append(icalcomponent *component, icalproperty *property)
{
    icalcomponent_add_property(component, property);
}

icalproperty *foreignProperty(const QString &name, const QByteArray &value)
{
    icalproperty *const property = icalproperty_new_x(value.constData());
    icalproperty_set_x_name(property, name.toUtf8().constData());
    return property;
}

icalproperty_class secrecy(EasMeetingRequestContainer::Sensitivity sensitivity)
{
    switch (sensitivity) {
    case EasMeetingRequestContainer::PersonalSensitivity:
    case EasMeetingRequestContainer::PrivateSensitivity:
        return ICAL_CLASS_PRIVATE;
    case EasMeetingRequestContainer::ConfidentialSensitivity:
        return ICAL_CLASS_CONFIDENTIAL;
    default:
        return ICAL_CLASS_PUBLIC;
    }
}

/** No event is without a stamp. */
icaltimetype stamp(const QString &text)
{
    const QDateTime time = ExchangeActiveSync::dateTimeFromString(text, nullptr);
    return ICalText::utcTime(time.isValid() ? time : Clock::instance().currentDateTimeUtc());
}

/** Servers write "Olga Organizer" <olga@example.com>, or the address alone. */
void appendOrganizer(icalcomponent *event, const QString &organizer)
{
    const KCalendarCore::Person person = KCalendarCore::Person::fromFullName(organizer.left(LongestText));
    if (person.email().isEmpty())
        return;
    icalproperty *const property = icalproperty_new_organizer("MAILTO:" + line(person.email()));
    if (!person.name().isEmpty())
        icalproperty_add_parameter(property, icalparameter_new_cn(line(person.name()).constData()));
    append(event, property);
}

/** Null for a recurrence that makes no sense. */
ICalProperty createRRuleProperty(const EasRecurrenceContainer &recurrence, const QDateTime &start)
{
    const KCalendarCore::Event::Ptr series(new KCalendarCore::Event);
    series->setDtStart(start);
    if (!CalendarRecurrence::handleRecurrence(series, recurrence, start.timeZone())
        || !series->recurrence()->defaultRRuleConst())
        return nullptr;
    const QString rule = KCalendarCore::ICalFormat().toString(series->recurrence()->defaultRRule());
    return ICalProperty(icalproperty_new_from_string(rule.toUtf8().constData()));
}

} // namespace

MeetingInvitation::MeetingInvitation(
    const EasMeetingRequestContainer &request, ExchangeActiveSync::ProtocolVersion version)
    : mRequest(request)
    , mVersion(version)
    , mZone(MeetingZone::createTimezoneComponent(request.timeZone()))
{
}

QByteArray MeetingInvitation::encode(const QString &summary, const QString &description) const
{
    if (!ExchangeActiveSync::dateTimeFromString(mRequest.startTime(), nullptr).isValid())
        return {};
    ICalComponent event(icalcomponent_new(ICAL_VEVENT_COMPONENT));
    appendOrganizer(event.get(), mRequest.organizer());
    append(event.get(),
        icalproperty_new_description(ICalText::lines(description.left(LongestText)).constData()));
    appendIdentity(event.get());
    append(event.get(), icalproperty_new_summary(line(summary).constData()));
    appendTimes(event.get());
    appendProposal(event.get());
    append(event.get(), icalproperty_new_class(secrecy(mRequest.sensitivity())));
    append(event.get(), icalproperty_new_priority(MiddlePriority));
    append(event.get(), icalproperty_new_dtstamp(stamp(mRequest.dtStamp())));
    append(event.get(), icalproperty_new_transp(ICAL_TRANSP_OPAQUE));
    append(event.get(), icalproperty_new_status(ICAL_STATUS_CONFIRMED));
    append(event.get(), icalproperty_new_sequence(0));
    append(event.get(), icalproperty_new_location(line(mRequest.location()).constData()));
    appendRecurrence(event.get());

    const ICalComponent document(icalcomponent_new(ICAL_VCALENDAR_COMPONENT));
    append(document.get(), icalproperty_new_method(ICAL_METHOD_REQUEST));
    append(document.get(),
        icalproperty_new_prodid(ICalText::singleLine(DeviceInformation::prodId()).constData()));
    append(document.get(),
        icalproperty_new_version(ExchangeActiveSync::CalendarICalVersion.toUtf8().constData()));
    if (mZone)
        icalcomponent_add_component(
            document.get(), icalcomponent_new_clone(icaltimezone_get_component(mZone.get())));
    icalcomponent_add_component(document.get(), event.release());
    return ICalText::written(document).toUtf8();
}

QString MeetingInvitation::uid() const
{
    const QString fromServer = QString::fromUtf8(mRequest.calendarMessageId());
    if (mVersion >= ExchangeActiveSync::ProtocolVersion160 && !fromServer.isEmpty())
        return fromServer;
    return ExchangeActiveSync::getCalendarUidFromGlobalObjId(mRequest.globalObjId());
}

void MeetingInvitation::appendIdentity(icalcomponent *event) const
{
    const QByteArray id = line(uid());
    append(event, icalproperty_new_uid(id.constData()));
    append(event, foreignProperty(ExchangeActiveSync::CalendarUidParamName, id));
    append(event,
        foreignProperty(ExchangeActiveSync::CalendarMsAlldayParamName,
            (mRequest.allDayEvent() != 0 ? ExchangeActiveSync::CalendarBoolValueTrue
                                         : ExchangeActiveSync::CalendarBoolValueFalse)
                .toUtf8()));
}

icaltimetype MeetingInvitation::zoned(const QString &time) const
{
    const icaltimetype utc = ICalText::utcTime(ExchangeActiveSync::dateTimeFromString(time, nullptr));
    return mZone && !icaltime_is_null_time(utc) ? icaltime_convert_to_zone(utc, mZone.get()) : utc;
}

void MeetingInvitation::appendZoned(icalcomponent *event, icalproperty *property) const
{
    if (mZone)
        icalproperty_add_parameter(property, icalparameter_new_tzid(icaltimezone_get_tzid(mZone.get())));
    append(event, property);
}

void MeetingInvitation::appendTimes(icalcomponent *event) const
{
    const icaltimetype end = zoned(mRequest.endTime());
    if (!icaltime_is_null_time(end))
        appendZoned(event, icalproperty_new_dtend(end));
    appendZoned(event, icalproperty_new_dtstart(zoned(mRequest.startTime())));
}

void MeetingInvitation::appendProposal(icalcomponent *event) const
{
    const auto appendTime = [this, event](const QString &name, const QString &text) {
        const icaltimetype time = zoned(text);
        if (!icaltime_is_null_time(time))
            appendZoned(event, foreignProperty(name, icaltime_as_ical_string(time)));
    };
    appendTime(ExchangeActiveSync::CalendarProposedStartTimeParamName, mRequest.proposedStartTime());
    appendTime(ExchangeActiveSync::CalendarProposedEndTimeParamName, mRequest.proposedEndTime());
}

void MeetingInvitation::appendRecurrence(icalcomponent *event) const
{
    const icaltimetype occurrence =
        ICalText::utcTime(ExchangeActiveSync::dateTimeFromString(mRequest.recurrenceId(), nullptr));
    if (!icaltime_is_null_time(occurrence))
        append(event, icalproperty_new_recurrenceid(occurrence));
    const QTimeZone zone = mZone ? QTimeZone(icaltimezone_get_tzid(mZone.get())) : QTimeZone::utc();
    const QDateTime start = ExchangeActiveSync::dateTimeFromString(mRequest.startTime(), &zone);
    const QList<EasRecurrenceContainer> recurrences = mRequest.recurrences();
    for (const EasRecurrenceContainer &recurrence : recurrences) {
        if (ICalProperty rule = createRRuleProperty(recurrence, start))
            append(event, rule.release());
    }
}
