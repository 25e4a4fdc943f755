// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/incidencecodec.h"

#include "internal/incidencefields.h"

#include <KCalendarCore/Event>
#include <KCalendarCore/ICalFormat>

#include <QDebug>
#include <QJsonDocument>
#include <QJsonObject>

namespace mKCal {

using KCalendarCore::Incidence;

namespace {

/** A calendar of one component without the zones: they are known by name, and times that need more stand
 * aside. */
QByteArray toText(const Incidence::Ptr &incidence)
{
    // Not toString(), which loses memory with each call. It would also note something in the alarms, which
    // counts as a change; here they are those of a copy.
    QByteArray text = KCalendarCore::ICalFormat().toICalString(incidence).toUtf8();
    const QByteArray zonesEnd("\r\nEND:VTIMEZONE\r\n");
    const int begin = text.indexOf("\r\nBEGIN:VTIMEZONE\r\n");
    const int end = text.lastIndexOf(zonesEnd);
    if (begin >= 0 && end > begin)
        text.remove(begin, end + zonesEnd.size() - 2 - begin);
    return text;
}

Incidence::Ptr fromText(const QByteArray &text)
{
    KCalendarCore::ICalFormat format;
    return format.fromString(QString::fromUtf8(text));
}

/** The store keeps the days of an all-day incidence, and no zone with them. */
void setClockTime(const Incidence::Ptr &incidence)
{
    incidence->setDtStart(incidence->dtStart().date().startOfDay(Qt::LocalTime));
    if (incidence->type() != Incidence::TypeEvent)
        return;
    const auto event = incidence.staticCast<KCalendarCore::Event>();
    if (event->hasEndDate())
        event->setDtEnd(event->dtEnd().date().startOfDay(Qt::LocalTime));
}

/** The store keeps the organizer among the attendees. */
void addOrganizer(const Incidence::Ptr &incidence)
{
    const KCalendarCore::Person organizer = incidence->organizer();
    if (organizer.email().isEmpty() || !incidence->attendeeByMail(organizer.email()).isNull())
        return;
    incidence->addAttendee(KCalendarCore::Attendee(organizer.name(), organizer.email(), false,
                               KCalendarCore::Attendee::None, KCalendarCore::Attendee::ReqParticipant),
        false);
}

void restore(const Incidence::Ptr &incidence, const QJsonObject &rest)
{
    for (const IncidenceField &field : incidenceFields()) {
        const auto value = rest.find(QLatin1String(field.name));
        if (value != rest.end())
            field.write(*incidence, *value);
    }
}

} // namespace

EncodedIncidence IncidenceCodec::encode(const Incidence::Ptr &incidence)
{
    EncodedIncidence result;
    result.text = toText(incidence);
    const Incidence::Ptr readBack = fromText(result.text);
    if (!readBack) {
        qWarning() << "no iCalendar text can hold the incidence" << incidence->uid();
        return EncodedIncidence();
    }
    QJsonObject rest;
    for (const IncidenceField &field : incidenceFields()) {
        const QJsonValue value = field.read(*incidence);
        if (value != field.read(*readBack))
            rest.insert(QLatin1String(field.name), value);
    }
    if (!rest.isEmpty())
        result.rest = QJsonDocument(rest).toJson(QJsonDocument::Compact);
    return result;
}

Incidence::Ptr IncidenceCodec::decode(const EncodedIncidence &encoded)
{
    const Incidence::Ptr incidence = fromText(encoded.text);
    if (incidence && !encoded.rest.isEmpty())
        restore(incidence, QJsonDocument::fromJson(encoded.rest).object());
    if (incidence && incidence->allDay())
        setClockTime(incidence);
    if (incidence)
        addOrganizer(incidence);
    return incidence;
}

} // namespace mKCal
