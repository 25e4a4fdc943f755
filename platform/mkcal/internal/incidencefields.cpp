// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/incidencefields.h"

#include <KCalendarCore/Event>

#include <QJsonArray>
#include <QJsonObject>
#include <QTimeZone>

namespace mKCal {

using KCalendarCore::Attachment;
using KCalendarCore::Attendee;
using KCalendarCore::Event;
using KCalendarCore::Incidence;

namespace {

/** Wall time, kind of time and zone; iCalendar knows neither zones of all-day times nor each system zone. */
QJsonValue fromTime(const QDateTime &time)
{
    if (!time.isValid())
        return QJsonValue();
    const QString wallTime = QDateTime(time.date(), time.time(), Qt::UTC).toString(Qt::ISODateWithMs);
    QString place;
    if (time.timeSpec() == Qt::TimeZone)
        place = QString::fromLatin1(time.timeZone().id());
    return QJsonArray { wallTime, int(time.timeSpec()), place, time.offsetFromUtc() };
}

QDateTime toTime(const QJsonValue &value)
{
    const QJsonArray parts = value.toArray();
    QDateTime wallTime = QDateTime::fromString(parts.at(0).toString(), Qt::ISODateWithMs);
    wallTime.setTimeSpec(Qt::UTC);
    const int offset = parts.at(3).toInt();
    switch (parts.at(1).toInt()) {
    case Qt::UTC:
        return QDateTime(wallTime.date(), wallTime.time(), Qt::UTC);
    case Qt::OffsetFromUTC:
        return QDateTime(wallTime.date(), wallTime.time(), Qt::OffsetFromUTC, offset);
    case Qt::TimeZone: {
        const QTimeZone known(parts.at(2).toString().toLatin1());
        if (!known.isValid())
            return QDateTime(wallTime.date(), wallTime.time(), QTimeZone(offset));
        // Where the clocks are put back an hour comes twice; the offset tells which one it was.
        const QDateTime moment = wallTime.addSecs(-offset).toTimeZone(known);
        const bool sameWall = moment.date() == wallTime.date() && moment.time() == wallTime.time();
        return sameWall ? moment : QDateTime(wallTime.date(), wallTime.time(), known);
    }
    default:
        return QDateTime(wallTime.date(), wallTime.time());
    }
}

QJsonValue fromText(const QString &text, bool isRich)
{
    return QJsonArray { text, isRich };
}

QJsonValue fromProperties(const QMap<QByteArray, QString> &properties)
{
    QJsonObject result;
    for (auto property = properties.begin(); property != properties.end(); ++property)
        result.insert(QString::fromLatin1(property.key()), property.value());
    return result;
}

void setProperties(KCalendarCore::CustomProperties &target, const QJsonObject &properties)
{
    const QList<QByteArray> names = target.customProperties().keys();
    for (const QByteArray &name : names)
        target.removeNonKDECustomProperty(name);
    for (auto property = properties.begin(); property != properties.end(); ++property)
        target.setNonKDECustomProperty(property.key().toLatin1(), property.value().toString());
}

QJsonValue start(const Incidence &incidence)
{
    return fromTime(incidence.dtStart());
}

void setStart(Incidence &incidence, const QJsonValue &value)
{
    incidence.setDtStart(toTime(value));
}

QJsonValue end(const Incidence &incidence)
{
    if (incidence.type() != Incidence::TypeEvent)
        return QJsonValue();
    const Event &event = static_cast<const Event &>(incidence);
    return event.hasEndDate() ? fromTime(event.dtEnd()) : QJsonValue();
}

void setEnd(Incidence &incidence, const QJsonValue &value)
{
    if (incidence.type() == Incidence::TypeEvent)
        static_cast<Event &>(incidence).setDtEnd(toTime(value));
}

QJsonValue recurrenceId(const Incidence &incidence)
{
    return fromTime(incidence.recurrenceId());
}

void setRecurrenceId(Incidence &incidence, const QJsonValue &value)
{
    incidence.setRecurrenceId(toTime(value));
}

QJsonValue summary(const Incidence &incidence)
{
    return fromText(incidence.summary(), incidence.summaryIsRich());
}

void setSummary(Incidence &incidence, const QJsonValue &value)
{
    incidence.setSummary(value.toArray().at(0).toString(), value.toArray().at(1).toBool());
}

QJsonValue description(const Incidence &incidence)
{
    return fromText(incidence.description(), incidence.descriptionIsRich());
}

void setDescription(Incidence &incidence, const QJsonValue &value)
{
    incidence.setDescription(value.toArray().at(0).toString(), value.toArray().at(1).toBool());
}

QJsonValue location(const Incidence &incidence)
{
    return fromText(incidence.location(), incidence.locationIsRich());
}

void setLocation(Incidence &incidence, const QJsonValue &value)
{
    incidence.setLocation(value.toArray().at(0).toString(), value.toArray().at(1).toBool());
}

QJsonValue categories(const Incidence &incidence)
{
    return QJsonArray::fromStringList(incidence.categories());
}

void setCategories(Incidence &incidence, const QJsonValue &value)
{
    incidence.setCategories(value.toVariant().toStringList());
}

QJsonValue resources(const Incidence &incidence)
{
    return QJsonArray::fromStringList(incidence.resources());
}

void setResources(Incidence &incidence, const QJsonValue &value)
{
    incidence.setResources(value.toVariant().toStringList());
}

QJsonValue organizer(const Incidence &incidence)
{
    return QJsonArray { incidence.organizer().name(), incidence.organizer().email() };
}

void setOrganizer(Incidence &incidence, const QJsonValue &value)
{
    incidence.setOrganizer(
        KCalendarCore::Person(value.toArray().at(0).toString(), value.toArray().at(1).toString()));
}

QJsonValue attendees(const Incidence &incidence)
{
    QJsonArray result;
    const Attendee::List attendees = incidence.attendees();
    for (const Attendee &attendee : attendees) {
        result.append(QJsonObject {
            { QStringLiteral("name"), attendee.name() },
            { QStringLiteral("email"), attendee.email() },
            { QStringLiteral("rsvp"), attendee.RSVP() },
            { QStringLiteral("status"), int(attendee.status()) },
            { QStringLiteral("role"), int(attendee.role()) },
            { QStringLiteral("type"), attendee.cuTypeStr() },
            { QStringLiteral("uid"), attendee.uid() },
            { QStringLiteral("delegate"), attendee.delegate() },
            { QStringLiteral("delegator"), attendee.delegator() },
            { QStringLiteral("properties"), fromProperties(attendee.customProperties().customProperties()) },
        });
    }
    return result;
}

void setAttendees(Incidence &incidence, const QJsonValue &value)
{
    Attendee::List attendees;
    const QJsonArray stored = value.toArray();
    for (const QJsonValue &entry : stored) {
        const QJsonObject fields = entry.toObject();
        Attendee attendee(fields.value(QLatin1String("name")).toString(),
            fields.value(QLatin1String("email")).toString(), fields.value(QLatin1String("rsvp")).toBool(),
            Attendee::PartStat(fields.value(QLatin1String("status")).toInt()),
            Attendee::Role(fields.value(QLatin1String("role")).toInt()),
            fields.value(QLatin1String("uid")).toString());
        attendee.setCuType(fields.value(QLatin1String("type")).toString());
        attendee.setDelegate(fields.value(QLatin1String("delegate")).toString());
        attendee.setDelegator(fields.value(QLatin1String("delegator")).toString());
        setProperties(attendee.customProperties(), fields.value(QLatin1String("properties")).toObject());
        attendees.append(attendee);
    }
    incidence.setAttendees(attendees);
}

QJsonValue attachments(const Incidence &incidence)
{
    QJsonArray result;
    const Attachment::List attachments = incidence.attachments();
    for (const Attachment &attachment : attachments) {
        result.append(QJsonArray { attachment.isBinary(),
            attachment.isBinary() ? QString::fromLatin1(attachment.data()) : attachment.uri(),
            attachment.mimeType(), attachment.label(), attachment.showInline(), attachment.isLocal() });
    }
    return result;
}

void setAttachments(Incidence &incidence, const QJsonValue &value)
{
    incidence.clearAttachments();
    const QJsonArray stored = value.toArray();
    for (const QJsonValue &entry : stored) {
        const QJsonArray fields = entry.toArray();
        const QString content = fields.at(1).toString();
        const QString mimeType = fields.at(2).toString();
        Attachment attachment =
            fields.at(0).toBool() ? Attachment(content.toLatin1(), mimeType) : Attachment(content, mimeType);
        attachment.setLabel(fields.at(3).toString());
        attachment.setShowInline(fields.at(4).toBool());
        attachment.setLocal(fields.at(5).toBool());
        incidence.addAttachment(attachment);
    }
}

QJsonValue exceptionTimes(const Incidence &incidence)
{
    QJsonArray result;
    if (incidence.recurs()) {
        const QList<QDateTime> times = incidence.recurrence()->exDateTimes();
        for (const QDateTime &time : times)
            result.append(fromTime(time));
    }
    return result;
}

void setExceptionTimes(Incidence &incidence, const QJsonValue &value)
{
    QList<QDateTime> times;
    const QJsonArray stored = value.toArray();
    for (const QJsonValue &time : stored)
        times.append(toTime(time));
    incidence.recurrence()->setExDateTimes(times);
}

/** The last moment of each rule that has one: of an all-day rule iCalendar keeps the day alone. */
QJsonValue ruleEnds(const Incidence &incidence)
{
    QJsonArray result;
    if (incidence.recurs()) {
        const KCalendarCore::RecurrenceRule::List rules = incidence.recurrence()->rRules();
        for (const KCalendarCore::RecurrenceRule *rule : rules)
            result.append(rule->duration() == 0 ? fromTime(rule->endDt()) : QJsonValue());
    }
    return result;
}

void setRuleEnds(Incidence &incidence, const QJsonValue &value)
{
    const QJsonArray ends = value.toArray();
    const KCalendarCore::RecurrenceRule::List rules = incidence.recurrence()->rRules();
    for (int i = 0; i < rules.size() && i < ends.size(); ++i) {
        if (!ends.at(i).isNull())
            rules.at(i)->setEndDt(toTime(ends.at(i)));
    }
}

QJsonValue properties(const Incidence &incidence)
{
    return fromProperties(incidence.customProperties());
}

void setAllProperties(Incidence &incidence, const QJsonValue &value)
{
    setProperties(incidence, value.toObject());
}

} // namespace

const std::vector<IncidenceField> &incidenceFields()
{
    static const std::vector<IncidenceField> fields {
        { "start", start, setStart },
        { "end", end, setEnd },
        { "recurrenceId", recurrenceId, setRecurrenceId },
        { "summary", summary, setSummary },
        { "description", description, setDescription },
        { "location", location, setLocation },
        { "categories", categories, setCategories },
        { "resources", resources, setResources },
        { "organizer", organizer, setOrganizer },
        { "attendees", attendees, setAttendees },
        { "attachments", attachments, setAttachments },
        { "exceptionTimes", exceptionTimes, setExceptionTimes },
        { "ruleEnds", ruleEnds, setRuleEnds },
        { "properties", properties, setAllProperties },
    };
    return fields;
}

} // namespace mKCal
