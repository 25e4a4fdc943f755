// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/eventfields.h"

#include "simulator/bodyshape.h"
#include "simulator/datetext.h"
#include "simulator/eventlists.h"
#include "simulator/plaintext.h"
#include "simulator/protocolversion.h"

#include <algorithm>

namespace Simulator {
namespace {

using Nodes = QVector<WbxmlNode>;

template <auto member> void copyMember(const EventDetails &from, EventDetails &to)
{
    to.*member = from.*member;
}

template <auto member> bool isSameMember(const EventDetails &one, const EventDetails &other)
{
    return one.*member == other.*member;
}

void copyBody(const EventDetails &from, EventDetails &to)
{
    to.body = from.body;
}

bool isSameBody(const EventDetails &one, const EventDetails &other)
{
    return one.body.plain == other.body.plain && one.body.html == other.body.html;
}

Nodes textNode(const QString &element, const QString &text)
{
    return text.isEmpty() ? Nodes() : Nodes { WbxmlNode(element, text) };
}

template <QString EventDetails::*member>
bool readText(const WbxmlNode &node, EventDetails &details, const EventContext &)
{
    details.*member = node.text();
    return true;
}

template <QString EventDetails::*member>
Nodes writeText(const QString &element, const EventDetails &details, const EventContext &)
{
    return textNode(element, details.*member);
}

template <int EventDetails::*member, int largest>
bool readNumber(const WbxmlNode &node, EventDetails &details, const EventContext &)
{
    bool ok = false;
    const int value = node.text().toInt(&ok);
    details.*member = value;
    return ok && value >= 0 && value <= largest;
}

template <int EventDetails::*member>
Nodes writeNumber(const QString &element, const EventDetails &details, const EventContext &)
{
    return details.*member < 0 ? Nodes() : Nodes { WbxmlNode(element, QString::number(details.*member)) };
}

template <QDateTime EventDetails::*member>
Nodes writeStamp(const QString &element, const EventDetails &details, const EventContext &)
{
    const QDateTime &time = details.*member;
    return time.isValid() ? Nodes { WbxmlNode(element, DateText::compact(time)) } : Nodes();
}

bool readStamp(const WbxmlNode &node, EventDetails &details, const EventContext &)
{
    details.stamp = DateText::parse(node.text());
    return details.stamp.isValid();
}

bool readNothing(const WbxmlNode &, EventDetails &, const EventContext &)
{
    return false;
}

bool readAllDay(const WbxmlNode &node, EventDetails &details, const EventContext &)
{
    details.allDay = node.text() == QLatin1String("1");
    return details.allDay || node.text() == QLatin1String("0");
}

Nodes writeAllDay(const QString &element, const EventDetails &details, const EventContext &)
{
    return { WbxmlNode(element, QString::number(int(details.allDay))) };
}

bool isMidnight(const QDateTime &time)
{
    return time.time() == QTime(0, 0);
}

bool readStart(const WbxmlNode &node, EventDetails &details, const EventContext &context)
{
    details.start = EventFields::modelTime(node.text(), details.allDay, context);
    return details.start.isValid() && (!details.allDay || isMidnight(details.start));
}

bool readEnd(const WbxmlNode &node, EventDetails &details, const EventContext &context)
{
    details.end = EventFields::modelTime(node.text(), details.allDay, context);
    if (details.allDay && context.version < Version160) {
        // The block of a zone may miss the change of the clocks that lies between.
        details.end = QDateTime(details.end.addSecs(12 * 3600).date(), QTime(0, 0), Qt::UTC);
    }
    return details.end.isValid() && (!details.allDay || isMidnight(details.end));
}

template <QDateTime EventDetails::*member>
Nodes writeTime(const QString &element, const EventDetails &details, const EventContext &context)
{
    return { WbxmlNode(element, EventFields::wireTime(details.*member, details.allDay, context)) };
}

/** Without a reminder the element is empty or absent. */
bool readReminder(const WbxmlNode &node, EventDetails &details, const EventContext &)
{
    bool ok = false;
    const int minutes = node.text().toInt(&ok);
    details.reminder = ok ? minutes : -1;
    return node.text().isEmpty() || (ok && minutes >= 0);
}

Nodes writeResponseType(const QString &element, const EventDetails &details, const EventContext &)
{
    int type = details.responseType;
    if (type < 0)
        type = details.meetingStatus == 0 ? 0 : (details.meetingStatus & 2) != 0 ? 5 : 1;
    return { WbxmlNode(element, QString::number(type)) };
}

bool readMeetingStatus(const WbxmlNode &node, EventDetails &details, const EventContext &)
{
    static const QVector<int> known { 0, 1, 3, 5, 7, 9, 11, 13, 15 };
    bool ok = false;
    details.meetingStatus = node.text().toInt(&ok);
    return ok && known.contains(details.meetingStatus);
}

bool readBody(const WbxmlNode &node, EventDetails &details, const EventContext &)
{
    const bool isHtml = node.text(QStringLiteral("Type")) == QLatin1String("2");
    const WbxmlNode data = node.at(QStringLiteral("Data"));
    if (data.isNull())
        return true;
    const QString text = QString::fromUtf8(data.bytes());
    if (isHtml)
        details.body = { PlainText::fromHtml(text), text };
    else if (text != details.body.plain) // which may stand for HTML that the device never saw
        details.body = { text, QString() };
    return true;
}

Nodes writeBody(const QString &, const EventDetails &details, const EventContext &context)
{
    return BodyShape::elements(details.body, context.shape);
}

bool readLocation(const WbxmlNode &node, EventDetails &details, const EventContext &context)
{
    const bool isContainer = context.version >= Version160;
    const QString name = isContainer ? node.text(QStringLiteral("DisplayName")) : node.text();
    QMap<QString, QString> parts;
    for (const WbxmlNode &part : node.children()) {
        if (part.tag() != QLatin1String("DisplayName"))
            parts.insert(part.tag(), part.text());
    }
    // With its name the device sends the place that it has, of which it may know the name alone.
    if (!parts.isEmpty() || name != details.location.name)
        details.location = { name, parts };
    return true;
}

Nodes writeLocation(const QString &element, const EventDetails &details, const EventContext &context)
{
    const EventPlace &place = details.location;
    if (context.version < Version160)
        return textNode(element, place.name);
    WbxmlNode node(element);
    if (!place.name.isEmpty())
        node.append(QStringLiteral("DisplayName"), place.name);
    for (auto part = place.parts.constBegin(); part != place.parts.constEnd(); ++part)
        node.append(part.key(), part.value());
    return node.children().isEmpty() ? Nodes() : Nodes { node };
}

template <auto member>
EventField field(const char *name, bool (*read)(const WbxmlNode &, EventDetails &, const EventContext &),
    Nodes (*write)(const QString &, const EventDetails &, const EventContext &),
    EventField::Absence absence = EventField::Removed, EventField::Owner owner = EventField::Anyone,
    int firstVersion = Version120)
{
    return { name, nullptr, nullptr, firstVersion, absence, owner, read, write, copyMember<member>,
        isSameMember<member> };
}

EventField withElements(EventField field, const char *element, const char *elementFrom160)
{
    field.element = element;
    field.elementFrom160 = elementFrom160;
    return field;
}

QVector<EventField> table()
{
    using D = EventDetails;
    using F = EventField;
    const F body { "Body", "AirSyncBase:Body", nullptr, Version120, F::Kept, F::Anyone, readBody, writeBody,
        copyBody, isSameBody };
    return {
        field<&D::allDay>("AllDayEvent", readAllDay, writeAllDay),
        field<&D::stamp>("DtStamp", readStamp, writeStamp<&D::stamp>, F::Kept, F::DeviceUntil141),
        field<&D::start>("StartTime", readStart, writeTime<&D::start>, F::Kept),
        field<&D::end>("EndTime", readEnd, writeTime<&D::end>, F::Kept),
        field<&D::subject>("Subject", readText<&D::subject>, writeText<&D::subject>),
        withElements(
            field<&D::location>("Location", readLocation, writeLocation), nullptr, "AirSyncBase:Location"),
        field<&D::attendees>("Attendees", EventLists::readAttendees, EventLists::writeAttendees),
        field<&D::categories>("Categories", EventLists::readCategories, EventLists::writeCategories),
        field<&D::reminder>("Reminder", readReminder, writeNumber<&D::reminder>),
        field<&D::sensitivity>("Sensitivity", readNumber<&D::sensitivity, 3>, writeNumber<&D::sensitivity>),
        field<&D::busyStatus>("BusyStatus", readNumber<&D::busyStatus, 3>, writeNumber<&D::busyStatus>),
        field<&D::meetingStatus>("MeetingStatus", readMeetingStatus, writeNumber<&D::meetingStatus>),
        field<&D::responseType>(
            "ResponseType", readNothing, writeResponseType, F::Kept, F::Server, Version140),
        field<&D::replyTime>(
            "AppointmentReplyTime", readNothing, writeStamp<&D::replyTime>, F::Kept, F::Server, Version140),
        field<&D::conferenceLink>("OnlineMeetingConfLink", readNothing, writeText<&D::conferenceLink>,
            F::Kept, F::Server, Version141),
        field<&D::externalLink>("OnlineMeetingExternalLink", readNothing, writeText<&D::externalLink>,
            F::Kept, F::Server, Version141),
        body,
        withElements(field<&D::attachments>("Attachments", EventLists::readAttachments,
                         EventLists::writeAttachments, F::Kept, F::Anyone, Version160),
            "AirSyncBase:Attachments", nullptr),
    };
}

} // namespace

QString EventField::elementAt(int version) const
{
    if (elementFrom160 && version >= Version160)
        return QLatin1String(elementFrom160);
    return element ? QString::fromLatin1(element) : QStringLiteral("Calendar:") + nameText();
}

const QVector<EventField> &EventFields::all()
{
    static const QVector<EventField> fields = table();
    return fields;
}

const EventField *EventFields::named(const QString &name)
{
    const auto found = std::find_if(all().begin(), all().end(),
        [&name](const EventField &field) { return name == QLatin1String(field.name); });
    return found == all().end() ? nullptr : &*found;
}

const EventField *EventFields::ofElement(const QString &element, int version)
{
    const auto found = std::find_if(all().begin(), all().end(), [&](const EventField &field) {
        return version >= field.firstVersion && field.elementAt(version) == element;
    });
    return found == all().end() ? nullptr : &*found;
}

QString EventFields::wireTime(const QDateTime &time, bool allDay, const EventContext &context)
{
    const bool byZone = allDay && context.version < Version160;
    return DateText::compact(byZone ? context.zone.toInstant(time) : time);
}

QDateTime EventFields::modelTime(const QString &text, bool allDay, const EventContext &context)
{
    const QDateTime time = DateText::parse(text);
    const bool byZone = allDay && context.version < Version160;
    return byZone && time.isValid() ? context.zone.toWall(time) : time;
}

} // namespace Simulator
