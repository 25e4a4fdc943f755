// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendareventfields.h"

#include "storages/calendar/calendarattachmentservice.h"
#include "storages/calendar/calendarattendees.h"
#include "storages/calendar/calendareventproperties.h"
#include "storages/calendar/calendareventstatus.h"
#include "storages/calendar/calendareventtimes.h"
#include "storages/calendar/calendarrecurrence.h"

#include <algorithm>

using namespace ExchangeActiveSync;
using KCalendarCore::Event;

namespace {

using Field = CalendarEventField;
using Item = EasCalendarItem;
using Writing = const CalendarFieldWriting &;
using Reading = const CalendarFieldReading &;

// Fields that the device has no place for stand in a property of the event.

void inheritProperty(const QString &name, const Event &series, Event &exception)
{
    CalendarEventProperties::setText(exception, name, CalendarEventProperties::text(series, name));
}

Field::Inherit property(const QString &name)
{
    return [&name](const Event &series, Event &exception) {
        inheritProperty(name, series, exception);
    };
}

template <QString (Item::*get)() const, void (Item::*set)(const QString &)>
Field text(Field::Parameter parameter, const QString &name)
{
    return Field(parameter)
        .written([&name](Writing w) {
            CalendarEventProperties::setText(*w.event, name, (w.item.*get)());
            return true;
        })
        .readBy([&name](Reading r) {
            const QString value = CalendarEventProperties::text(r.event, name);
            if (!value.isEmpty())
                (r.item.*set)(value);
        });
}

template <typename Value, Value (Item::*get)() const, void (Item::*set)(Value)>
Field number(Field::Parameter parameter, const QString &name)
{
    return Field(parameter)
        .written([&name](Writing w) {
            CalendarEventProperties::setNumber(*w.event, name, (w.item.*get)());
            return true;
        })
        .readBy([&name](Reading r) {
            const int value = CalendarEventProperties::number(r.event, name);
            if (value != -1)
                (r.item.*set)(Value(value));
        });
}

Field disallowNewTimeProposal()
{
    return Field(Item::DisallowNewTimeProposalParameter)
        .written([](Writing w) {
            const EasItemsCommon::TBoolean value = w.item.disallowNewTimeProposal();
            const QString known =
                value == EasItemsCommon::TTrue ? CalendarBoolValueTrue : CalendarBoolValueFalse;
            CalendarEventProperties::setText(*w.event, CalendarDisallowCounterParamName,
                value == EasItemsCommon::TUndefined ? QString() : known);
            return true;
        })
        .readBy([](Reading r) {
            const QString value = CalendarEventProperties::text(r.event, CalendarDisallowCounterParamName);
            if (value == CalendarBoolValueTrue)
                r.item.setDisallowNewTimeProposal(EasItemsCommon::TTrue);
            else if (value == CalendarBoolValueFalse)
                r.item.setDisallowNewTimeProposal(EasItemsCommon::TFalse);
        });
}

// What the event is about.

bool writeOrganizer(Writing w)
{
    w.event->setOrganizer(KCalendarCore::Person(w.item.organizerName(), w.item.organizerEmail()));
    return true;
}

Field location()
{
    return Field(Item::LocationParameter)
        .written([](Writing w) {
            w.event->setLocation(w.item.location());
            return true;
        })
        .readBy([](Reading r) { r.item.setLocation(r.event.location()); })
        .inherited([](const Event &series, Event &exception) { exception.setLocation(series.location()); })
        .cleared([](Item &item) { item.setLocation(QString()); });
}

Field subject()
{
    return Field(Item::SubjectParameter)
        .written([](Writing w) {
            w.event->setSummary(w.item.subject());
            return true;
        })
        .readBy([](Reading r) { r.item.setSubject(r.event.summary()); })
        .inherited([](const Event &series, Event &exception) { exception.setSummary(series.summary()); })
        .cleared([](Item &item) { item.setSubject(QString()); });
}

bool writeBody(Writing w)
{
    const EasBodyContainer body = w.item.body();
    switch (body.type()) {
    case EasBodyContainer::PlainTextBodyType:
        w.event->setDescription(body.data(), false);
        break;
    case EasBodyContainer::HTMLBodyType:
        w.event->setDescription(body.data(), true);
        break;
    default:
        w.event->setDescription(body.data());
    }
    return true;
}

void readBody(Reading r)
{
    r.item.setBodyContainerType(
        r.event.descriptionIsRich() ? EasBodyContainer::HTMLBodyType : EasBodyContainer::PlainTextBodyType);
    r.item.setBodyContainerData(r.event.description());
}

Field body()
{
    return Field(Item::BodyParameter)
        .written(writeBody)
        .readBy(readBody)
        .inherited([](const Event &series, Event &exception) {
            exception.setDescription(series.description(), series.descriptionIsRich());
        })
        .cleared([](Item &item) { item.setBody(EasBodyContainer()); });
}

Field categories()
{
    return Field(Item::CategoriesParameter)
        .written([](Writing w) {
            w.event->setCategories(w.item.categories());
            return true;
        })
        .readBy([](Reading r) { r.item.setCategories(r.event.categories()); })
        .inherited(
            [](const Event &series, Event &exception) { exception.setCategories(series.categories()); })
        .cleared([](Item &item) { item.setCategories({}); });
}

Field attendees()
{
    return Field(Item::AttendeesParameter)
        .written([](Writing w) {
            CalendarAttendees::set(*w.event, w.item.attendees());
            return true;
        })
        .readBy([](Reading r) { r.item.setAttendees(CalendarAttendees::of(r.event)); })
        .inherited(CalendarAttendees::inherit)
        .cleared([](Item &item) { item.setAttendees({}); });
}

// What its time counts as.

Field busyStatus()
{
    return Field(Item::BusyStatusParameter)
        .written([](Writing w) {
            CalendarEventStatus::setBusyStatus(*w.event, w.item.busyStatus());
            return true;
        })
        .readBy([](Reading r) { r.item.setBusyStatus(CalendarEventStatus::convertBusyStatus(r.event)); })
        .inherited([](const Event &series, Event &exception) {
            inheritProperty(CalendarBusyStatusParamName, series, exception);
            exception.setStatus(series.status());
        });
}

Field sensitivity()
{
    return Field(Item::SensitivityParameter)
        .written([](Writing w) {
            CalendarEventStatus::setSensitivity(*w.event, w.item.sensitivity());
            return true;
        })
        .readBy([](Reading r) { r.item.setSensitivity(CalendarEventStatus::convertSensitivity(r.event)); })
        .inherited([](const Event &series, Event &exception) {
            inheritProperty(CalendarSensitivityParamName, series, exception);
            exception.setSecrecy(series.secrecy());
        });
}

Field meetingStatus()
{
    return number<EasCalendarItemCommon::MeetingStatus, &Item::meetingStatus, &Item::setMeetingStatus>(
        Item::MeetingStatusParameter, CalendarMeetingStatusParamName)
        .written([](Writing w) {
            CalendarEventStatus::setMeetingStatus(*w.event, w.item.meetingStatus());
            return true;
        })
        .inherited(property(CalendarMeetingStatusParamName));
}

Field uid()
{
    return Field(Item::UidParameter)
        .written([](Writing w) {
            CalendarEventProperties::setText(*w.event, CalendarUidParamName, w.item.uid());
            CalendarEventProperties::setText(*w.event, CalendarRemoteUidParamName, w.item.uid());
            return true;
        })
        .readBy([](Reading r) {
            const QString known = CalendarEventProperties::text(r.event, CalendarUidParamName);
            r.item.setUid(known.isEmpty() ? r.event.uid() : known);
        });
}

Field recurrence()
{
    return Field(Item::RecurrenceParameter)
        .written(CalendarRecurrence::write)
        .checked()
        .cleared([](Item &item) { item.setRecurrence(EasRecurrenceContainer()); });
}

bool writeAttachments(Writing w)
{
    QList<AttachmentEntity> entities;
    const QList<EasAttachmentContainer> attachments = w.item.attachments();
    for (const EasAttachmentContainer &attachment : attachments)
        entities.append(AttachmentEntity(attachment));
    CalendarAttachmentService().handleRemoteAttachments(w.event, entities);
    return true;
}

QVector<Field> makeFields()
{
    return {
        Field(Item::OrganizerNameParameter).written(writeOrganizer).readBy([](Reading r) {
            r.item.setOrganizerName(r.event.organizer().name());
        }),
        Field(Item::OrganizerEmailParameter).written(writeOrganizer).readBy([](Reading r) {
            r.item.setOrganizerEmail(r.event.organizer().email());
        }),
        location(),
        CalendarEventTimes::allDay(),
        body(),
        CalendarEventTimes::start(),
        CalendarEventTimes::end(),
        CalendarEventTimes::proposedStart(),
        CalendarEventTimes::proposedEnd(),
        busyStatus(),
        CalendarEventTimes::reminder(),
        sensitivity(),
        subject(),
        uid(),
        categories(),
        attendees(),
        disallowNewTimeProposal(),
        recurrence(),
        text<&Item::appointmentReplyTime, &Item::setAppointmentReplyTime>(
            Item::AppointmentReplyTimeParameter, CalendarAppointmentReplyTimeParamName)
            .inherited(property(CalendarAppointmentReplyTimeParamName)),
        number<EasItemsCommon::NativeBodyType, &Item::nativeBodyType, &Item::setNativeBodyType>(
            Item::NativeBodyTypeParameter, CalendarNativeBodyTypeParamName)
            .readBy({}),
        meetingStatus(),
        number<EasItemsCommon::TBoolean, &Item::responseRequested, &Item::setResponseRequested>(
            Item::ResponseRequestedParameter, CalendarResponseRequestedParamName),
        text<&Item::onlineMeetingExternalLink, &Item::setOnlineMeetingExternalLink>(
            Item::OnlineMeetingExternalLinkParameter, CalendarMeetingExtLinkParamName)
            .inherited(property(CalendarMeetingExtLinkParamName)),
        text<&Item::onlineMeetingConfLink, &Item::setOnlineMeetingConfLink>(
            Item::OnlineMeetingConfLinkParameter, CalendarMeetingConfLinkParamName)
            .inherited(property(CalendarMeetingConfLinkParamName)),
        number<EasCalendarItemCommon::ResponseType, &Item::responseType, &Item::setResponseType>(
            Item::ResponseTypeParameter, CalendarResponseTypeParamName)
            .inherited(property(CalendarResponseTypeParamName)),
        // An exception has its recurrence id by then, which its rows of the mapping bear.
        Field(Item::AttachmentsParameter)
            .written(writeAttachments)
            .ofEachPart()
            .cleared([](Item &item) { item.setAttachments({}); }, ProtocolVersion160),
        Field(Item::DtStampParameter)
            .readBy([](Reading r) { r.item.setDtStamp(dateTimeToString(r.event.lastModified())); })
            .ofEachPart(),
        Field(Item::ExceptionsParameter).cleared([](Item &item) { item.setExceptions({}); }),
    };
}

bool isWhole(const Item &item)
{
    return item.parameterHasBeenChanged(Item::StartTimeParameter)
        && item.parameterHasBeenChanged(Item::EndTimeParameter)
        && item.parameterHasBeenChanged(Item::DtStampParameter);
}

bool isBrought(const Field &field, const Item &item)
{
    return field.write && item.parameterHasBeenChanged(field.parameter);
}

} // namespace

const QVector<CalendarEventField> &CalendarEventFields::all()
{
    static const QVector<Field> fields = makeFields();
    return fields;
}

bool CalendarEventFields::check(Writing writing)
{
    return std::all_of(all().cbegin(), all().cend(), [&writing](const Field &field) {
        return !field.isChecked || !isBrought(field, writing.item) || field.write(writing);
    });
}

bool CalendarEventFields::write(Writing writing)
{
    return std::all_of(all().cbegin(), all().cend(),
        [&writing](const Field &field) { return !isBrought(field, writing.item) || field.write(writing); });
}

bool CalendarEventFields::writeException(Writing writing, const Event &series)
{
    for (const Field &field : all()) {
        if (!field.isOfExceptions)
            continue;
        if (!isBrought(field, writing.item)) {
            if (field.inherit)
                field.inherit(series, *writing.event);
        } else if (!field.write(writing)) {
            return false;
        }
    }
    return true;
}

void CalendarEventFields::read(Reading reading)
{
    for (const Field &field : all()) {
        if (field.read)
            field.read(reading);
    }
}

void CalendarEventFields::readException(Reading reading)
{
    for (const Field &field : all()) {
        if (field.read && field.isOfExceptions)
            field.read(reading);
    }
}

void CalendarEventFields::completeWholeItem(EasCalendarItem &item, ProtocolVersion version)
{
    if (!isWhole(item))
        return;
    for (const Field &field : all()) {
        if (field.clear && version >= field.clearedFrom && !item.parameterHasBeenChanged(field.parameter))
            field.clear(item);
    }
}
