// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendareventproperties.h"

namespace {

const char knownDeletionsName[] = "X-FENNEL-EAS-DELETED-OCCURRENCES";

} // namespace

int CalendarEventProperties::number(const KCalendarCore::Event &event, const QString &name)
{
    bool ok = false;
    const int value = text(event, name).toInt(&ok);
    return ok ? value : -1;
}

void CalendarEventProperties::setNumber(KCalendarCore::Event &event, const QString &name, int value)
{
    setText(event, name, value == -1 ? QString() : QString::number(value));
}

QString CalendarEventProperties::text(const KCalendarCore::Event &event, const QString &name)
{
    return event.nonKDECustomProperty(name.toLatin1());
}

void CalendarEventProperties::setText(KCalendarCore::Event &event, const QString &name, const QString &value)
{
    if (value.isEmpty())
        event.removeNonKDECustomProperty(name.toLatin1());
    else
        event.setNonKDECustomProperty(name.toLatin1(), value);
}

QString CalendarEventProperties::attendeeName(const QString &name, const QString &email)
{
    // The store drops a property, without a word, whose name holds anything but letters, digits and "-".
    QByteArray encoded = email.toLatin1().toBase64();
    encoded.replace("+", "--1").replace("/", "--2").replace("=", "--3");
    return name + QLatin1Char('-') + QString::fromLatin1(encoded);
}

QStringList CalendarEventProperties::knownDeletions(const KCalendarCore::Event &series)
{
    return series.nonKDECustomProperty(knownDeletionsName).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

void CalendarEventProperties::setKnownDeletions(KCalendarCore::Event &series, const QStringList &keys)
{
    setText(series, QLatin1String(knownDeletionsName), keys.join(QLatin1Char(' ')));
}
