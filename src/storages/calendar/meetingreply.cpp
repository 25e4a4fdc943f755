// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/meetingreply.h"

#include "application/base/clock.h"
#include "application/base/deviceinformation.h"
#include "application/base/logging.h"
#include "common/exchangeactivesync.h"
#include "storages/calendar/icaltext.h"

namespace {

/** What counts of a document: its event, its time zone, and what it says of itself. */
struct Request
{
    icalcomponent *zone = nullptr;
    icalcomponent *event = nullptr;
    icalproperty *method = nullptr;
    icalproperty *version = nullptr;
};

Request taken(icalcomponent *document)
{
    Request request;
    for (icalcomponent *part = icalcomponent_get_first_component(document, ICAL_ANY_COMPONENT); part;
         part = icalcomponent_get_next_component(document, ICAL_ANY_COMPONENT)) {
        if (icalcomponent_isa(part) == ICAL_VTIMEZONE_COMPONENT)
            request.zone = part;
        else if (icalcomponent_isa(part) == ICAL_VEVENT_COMPONENT)
            request.event = part;
        else
            qCDebug(eas()) << "Unknown component in request, type:" << int(icalcomponent_isa(part));
    }
    for (icalproperty *property = icalcomponent_get_first_property(document, ICAL_ANY_PROPERTY); property;
         property = icalcomponent_get_next_property(document, ICAL_ANY_PROPERTY)) {
        const icalproperty_kind kind = icalproperty_isa(property);
        if (kind == ICAL_METHOD_PROPERTY)
            request.method = property;
        else if (kind == ICAL_VERSION_PROPERTY)
            request.version = property;
        else if (kind != ICAL_PRODID_PROPERTY)
            qCDebug(eas()) << "Unknown property in request, type:" << int(kind);
    }
    return request;
}

/** Whether the document asks for an answer; if not, the log says why. */
bool isInvitation(const Request &request, bool mayLackMethod)
{
    if (!request.method && !mayLackMethod) {
        qCWarning(eas()) << "No method property in request";
        return false;
    }
    if (request.method && icalproperty_get_method(request.method) != ICAL_METHOD_REQUEST) {
        qCWarning(eas()) << "Wrong method property in request:"
                         << icalproperty_get_value_as_string(request.method);
        return false;
    }
    if (!request.version) {
        qCWarning(eas()) << "No version property in request";
        return false;
    }
    const QString version = QString::fromUtf8(icalproperty_get_version(request.version));
    if (version != ExchangeActiveSync::CalendarICalVersion) {
        qCWarning(eas()) << "Wrong version in request:" << version;
        return false;
    }
    if (!request.event)
        qCWarning(eas()) << "No event component in request";
    return request.event != nullptr;
}

/** The last property of the kind counts. */
void copy(icalcomponent *from, icalproperty_kind kind, icalcomponent *to)
{
    icalproperty *last = nullptr;
    for (icalproperty *property = icalcomponent_get_first_property(from, kind); property;
         property = icalcomponent_get_next_property(from, kind))
        last = property;
    if (last)
        icalcomponent_add_property(to, icalproperty_new_clone(last));
}

void copyForeignProperties(icalcomponent *from, icalcomponent *to)
{
    const QByteArray own = ExchangeActiveSync::CalendarUidParamName.toUtf8();
    for (icalproperty *property = icalcomponent_get_first_property(from, ICAL_X_PROPERTY); property;
         property = icalcomponent_get_next_property(from, ICAL_X_PROPERTY)) {
        if (qstricmp(icalproperty_get_x_name(property), own.constData()) != 0)
            icalcomponent_add_property(to, icalproperty_new_clone(property));
    }
}

icalparameter_partstat participation(EasItemsCommon::UserResponseType response)
{
    switch (response) {
    case EasItemsCommon::UserResponseTentativelyAccepted:
        return ICAL_PARTSTAT_TENTATIVE;
    case EasItemsCommon::UserResponseDeclined:
        return ICAL_PARTSTAT_DECLINED;
    default:
        return ICAL_PARTSTAT_ACCEPTED;
    }
}

void removeAll(icalcomponent *component, icalproperty_kind kind)
{
    while (icalproperty *const property = icalcomponent_get_first_property(component, kind)) {
        icalcomponent_remove_property(component, property);
        icalproperty_free(property);
    }
}

} // namespace

MeetingReply::MeetingReply(const QString &address, EasItemsCommon::UserResponseType response)
    : mAddress(address)
    , mResponse(response)
{
}

QString MeetingReply::encode(const QString &requestData) const
{
    if (mAddress.isEmpty()) {
        qCWarning(eas()) << "No email address";
        return {};
    }
    if (requestData.isEmpty()) {
        qCWarning(eas()) << "No request ICalendar data";
        return {};
    }
    if (mResponse < EasItemsCommon::UserResponseMin || mResponse > EasItemsCommon::UserResponseMax) {
        qCWarning(eas()) << "Wrong user response:" << int(mResponse);
        return {};
    }
    const ICalComponent document = ICalText::parsed(requestData);
    if (!document) {
        qCWarning(eas()) << "Failed parsing request data";
        return {};
    }
    const Request request = taken(document.get());
    if (!isInvitation(request, mMayLackMethod))
        return {};

    const ICalComponent reply(icalcomponent_new(ICAL_VCALENDAR_COMPONENT));
    icalcomponent_add_property(reply.get(), icalproperty_new_method(ICAL_METHOD_REPLY));
    icalcomponent_add_property(
        reply.get(), icalproperty_new_prodid(ICalText::singleLine(DeviceInformation::prodId()).constData()));
    icalcomponent_add_property(
        reply.get(), icalproperty_new_version(ExchangeActiveSync::CalendarICalVersion.toUtf8().constData()));
    if (request.zone)
        icalcomponent_add_component(reply.get(), icalcomponent_new_clone(request.zone));
    narrow(request.event);
    icalcomponent_add_component(reply.get(), answeredEvent(request.event).release());
    return ICalText::written(reply);
}

icalproperty *MeetingReply::attendee() const
{
    icalproperty *const attendee = icalproperty_new_attendee("MAILTO:" + ICalText::singleLine(mAddress));
    icalproperty_add_parameter(attendee, icalparameter_new_partstat(participation(mResponse)));
    return attendee;
}

ICalComponent MeetingReply::answeredEvent(icalcomponent *event) const
{
    const bool isOccurrence = icalcomponent_get_first_property(event, ICAL_RECURRENCEID_PROPERTY) != nullptr;
    ICalComponent answer(icalcomponent_new(ICAL_VEVENT_COMPONENT));
    copy(event, ICAL_DTSTART_PROPERTY, answer.get());
    copy(event, ICAL_DTEND_PROPERTY, answer.get());
    icalcomponent_add_property(
        answer.get(), icalproperty_new_dtstamp(ICalText::utcTime(Clock::instance().currentDateTimeUtc())));
    copy(event, ICAL_UID_PROPERTY, answer.get());
    icalcomponent_add_property(answer.get(), attendee());
    copy(event, ICAL_LOCATION_PROPERTY, answer.get());
    icalcomponent_add_property(answer.get(), icalproperty_new_sequence(isOccurrence ? 1 : 0));
    icalcomponent_set_status(answer.get(), ICAL_STATUS_CONFIRMED);
    copy(event, ICAL_SUMMARY_PROPERTY, answer.get());
    copy(event, ICAL_TRANSP_PROPERTY, answer.get());
    copy(event, ICAL_RRULE_PROPERTY, answer.get());
    copy(event, ICAL_RECURRENCEID_PROPERTY, answer.get());
    copyForeignProperties(event, answer.get());
    return answer;
}

void MeetingReply::narrow(icalcomponent *event) const
{
    if (!mOccurrence.isValid() || icalcomponent_get_first_property(event, ICAL_RECURRENCEID_PROPERTY))
        return;
    const icaltimetype start = icalcomponent_get_dtstart(event);
    const icaltimetype end = icalcomponent_get_dtend(event);
    const icaltimetype moved =
        start.is_date ? ICalText::day(mOccurrence.date()) : ICalText::utcTime(mOccurrence);
    removeAll(event, ICAL_RRULE_PROPERTY);
    removeAll(event, ICAL_DTSTART_PROPERTY);
    removeAll(event, ICAL_DTEND_PROPERTY);
    icalcomponent_add_property(event, icalproperty_new_dtstart(moved));
    if (!icaltime_is_null_time(start) && !icaltime_is_null_time(end))
        icalcomponent_add_property(
            event, icalproperty_new_dtend(icaltime_add(moved, icaltime_subtract(end, start))));
    icalcomponent_add_property(event, icalproperty_new_recurrenceid(moved));
}
