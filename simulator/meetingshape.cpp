// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/meetingshape.h"

#include "simulator/datetext.h"
#include "simulator/protocolversion.h"

#include <QHash>
#include <QTimeZone>
#include <QtEndian>

#include <algorithm>

namespace Simulator {
namespace {

struct Property
{
    QString parameters;
    QString value;
};

/** The properties of the event by name. */
QHash<QString, Property> eventProperties(const QByteArray &calendar)
{
    QString text = QString::fromUtf8(calendar);
    text.remove(QLatin1Char('\r'));
    text.remove(QStringLiteral("\n "));
    text.remove(QStringLiteral("\n\t"));
    const QString event =
        text.section(QStringLiteral("BEGIN:VEVENT"), 1, 1).section(QStringLiteral("END:VEVENT"), 0, 0);
    QHash<QString, Property> properties;
    const QStringList lines = event.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        const QString head = line.section(QLatin1Char(':'), 0, 0);
        const QString name = head.section(QLatin1Char(';'), 0, 0).toUpper();
        if (!properties.contains(name))
            properties.insert(name, { head.section(QLatin1Char(';'), 1), line.section(QLatin1Char(':'), 1) });
    }
    return properties;
}

QString unescaped(QString text)
{
    text.replace(QStringLiteral("\\n"), QStringLiteral("\n"), Qt::CaseInsensitive);
    return text.remove(QLatin1Char('\\'));
}

bool isDateAlone(const Property &property)
{
    return property.value.size() == 8;
}

QDateTime timeOf(const Property &property)
{
    if (isDateAlone(property))
        return QDateTime(QDate::fromString(property.value, QStringLiteral("yyyyMMdd")), QTime(0, 0), Qt::UTC);
    QDateTime time = QDateTime::fromString(property.value.left(15), QStringLiteral("yyyyMMddTHHmmss"));
    const QString zone =
        property.parameters.section(QStringLiteral("TZID="), 1).section(QLatin1Char(';'), 0, 0);
    const QTimeZone named(zone.toLatin1());
    if (!property.value.endsWith(QLatin1Char('Z')) && named.isValid())
        time.setTimeZone(named);
    else
        time.setTimeSpec(Qt::UTC);
    return time.toUTC();
}

/** The identifier of versions up to 14.1: the iCalendar UID in the envelope that marks a foreign one. */
QByteArray globalObjectId(const QString &uid)
{
    const QByteArray text = uid.toUtf8();
    const QByteArray data = QByteArray("vCal-Uid") + QByteArray::fromHex("01000000") + text + '\0';
    QByteArray size(4, '\0');
    qToLittleEndian(quint32(data.size()), size.data());
    return QByteArray::fromHex("040000008200E00074C5B7101A82E008") + QByteArray(20, '\0') + size + data;
}

void appendRecurrence(WbxmlNode &request, const QString &rule)
{
    if (rule.isEmpty())
        return;
    QHash<QString, QString> parts;
    const QStringList pairs = rule.split(QLatin1Char(';'));
    for (const QString &pair : pairs)
        parts.insert(pair.section(QLatin1Char('='), 0, 0), pair.section(QLatin1Char('='), 1));
    static const QHash<QString, int> types { { QStringLiteral("DAILY"), 0 }, { QStringLiteral("WEEKLY"), 1 },
        { QStringLiteral("MONTHLY"), 2 }, { QStringLiteral("YEARLY"), 5 } };
    static const QStringList days { QStringLiteral("SU"), QStringLiteral("MO"), QStringLiteral("TU"),
        QStringLiteral("WE"), QStringLiteral("TH"), QStringLiteral("FR"), QStringLiteral("SA") };
    int dayMask = 0;
    const QStringList named =
        parts.value(QStringLiteral("BYDAY")).split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString &day : named)
        dayMask |= 1 << std::max(0, days.indexOf(day.right(2)));
    WbxmlNode &node = request.append(QStringLiteral("Recurrences")).append(QStringLiteral("Recurrence"));
    node.append(QStringLiteral("Type"), types.value(parts.value(QStringLiteral("FREQ"))));
    node.append(QStringLiteral("Interval"), parts.value(QStringLiteral("INTERVAL"), QStringLiteral("1")));
    if (parts.contains(QStringLiteral("UNTIL")))
        node.append(QStringLiteral("Until"), parts.value(QStringLiteral("UNTIL")));
    if (parts.contains(QStringLiteral("COUNT")))
        node.append(QStringLiteral("Occurrences"), parts.value(QStringLiteral("COUNT")));
    if (parts.contains(QStringLiteral("BYMONTHDAY")))
        node.append(QStringLiteral("DayOfMonth"), parts.value(QStringLiteral("BYMONTHDAY")));
    if (dayMask != 0)
        node.append(QStringLiteral("DayOfWeek"), dayMask);
    if (parts.contains(QStringLiteral("BYMONTH")))
        node.append(QStringLiteral("MonthOfYear"), parts.value(QStringLiteral("BYMONTH")));
}

void appendLocation(WbxmlNode &request, const QString &location, int version)
{
    if (location.isEmpty())
        return;
    if (version < Version160)
        request.append(QStringLiteral("Location"), location);
    else
        request.append(QStringLiteral("AirSyncBase:Location"))
            .append(QStringLiteral("DisplayName"), location);
}

void appendIdentifier(WbxmlNode &request, const QString &uid, int version)
{
    if (version < Version160)
        request.append(QStringLiteral("GlobalObjId"), QString::fromLatin1(globalObjectId(uid).toBase64()));
    if (version >= Version140)
        request.append(QStringLiteral("DisallowNewTimeProposal"), 0);
    if (version >= Version141)
        request.append(QStringLiteral("Email2:MeetingMessageType"), 1);
    if (version >= Version160)
        request.append(QStringLiteral("Calendar:UID"), uid);
}

} // namespace

WbxmlNode MeetingShape::element(const QByteArray &calendar, const ItemShape &shape)
{
    const QHash<QString, Property> event = eventProperties(calendar);
    const auto value = [&event](const char *name) {
        return unescaped(event.value(QLatin1String(name)).value);
    };
    const auto time = [&event](const char *name) {
        return timeOf(event.value(QLatin1String(name)));
    };
    const QDateTime start = time("DTSTART");
    const bool recurs = event.contains(QStringLiteral("RRULE"));
    WbxmlNode request(QStringLiteral("Email:MeetingRequest"));
    request.append(QStringLiteral("AllDayEvent"), int(isDateAlone(event.value(QStringLiteral("DTSTART")))));
    request.append(QStringLiteral("StartTime"), DateText::withDashes(start));
    request.append(QStringLiteral("DtStamp"),
        DateText::withDashes(event.contains(QStringLiteral("DTSTAMP")) ? time("DTSTAMP") : start));
    request.append(QStringLiteral("EndTime"),
        DateText::withDashes(event.contains(QStringLiteral("DTEND")) ? time("DTEND") : start.addSecs(1800)));
    request.append(QStringLiteral("InstanceType"), recurs ? 1 : 0);
    appendLocation(request, value("LOCATION"), shape.version);
    const QString organizer = value("ORGANIZER");
    request.append(QStringLiteral("Organizer"), organizer.section(QLatin1Char(':'), -1));
    request.append(QStringLiteral("Reminder"), 900);
    request.append(QStringLiteral("ResponseRequested"), 1);
    appendRecurrence(request, event.value(QStringLiteral("RRULE")).value);
    request.append(QStringLiteral("Sensitivity"), value("CLASS") == QLatin1String("PRIVATE") ? 2 : 0);
    request.append(QStringLiteral("BusyStatus"), value("TRANSP") == QLatin1String("TRANSPARENT") ? 0 : 2);
    // All zero: no bias, no daylight time, no names.
    request.append(QStringLiteral("TimeZone"), QString::fromLatin1(QByteArray(172, '\0').toBase64()));
    appendIdentifier(request, value("UID"), shape.version);
    return request;
}

} // namespace Simulator
