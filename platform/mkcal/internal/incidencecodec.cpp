// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/incidencecodec.h"

#include "internal/incidencefields.h"

#include <KCalendarCore/ICalFormat>

#include <QDebug>
#include <QJsonDocument>
#include <QJsonObject>

namespace mKCal {

using KCalendarCore::Incidence;

namespace {

const char zonesBegin[] = "BEGIN:VTIMEZONE";

/** One component without its zones: they are known by their names, and the times that need them stand aside.
 */
QByteArray toText(const Incidence::Ptr &incidence)
{
    KCalendarCore::ICalFormat format;
    // A copy is written: writing alarms notes something in them, which would count as a change.
    const QByteArray text = format.toString(Incidence::Ptr(incidence->clone())).toUtf8();
    if (text.isEmpty())
        return text;
    const int zones = text.indexOf(zonesBegin);
    const QByteArray component = zones < 0 ? text : text.left(zones);
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Fennel//mkcal//EN\r\n" + component
        + "END:VCALENDAR\r\n";
}

Incidence::Ptr fromText(const QByteArray &text)
{
    KCalendarCore::ICalFormat format;
    return format.fromString(QString::fromUtf8(text));
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
    return incidence;
}

} // namespace mKCal
