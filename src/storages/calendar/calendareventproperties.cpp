// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendareventproperties.h"

#include "common/exchangeactivesync.h"

#include <algorithm>
#include <iterator>

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

QString CalendarEventProperties::occurrenceKey(const KCalendarCore::Event &series, const QDateTime &start)
{
    return series.allDay() ? start.date().toString(QStringLiteral("yyyyMMdd"))
                           : ExchangeActiveSync::dateTimeToString(start);
}

bool CalendarEventProperties::isOccurrence(const KCalendarCore::Event &series, const QDateTime &start)
{
    if (!series.recurs())
        return false;
    const bool allDay = series.allDay();
    const auto isSame = [allDay, &start](const QDateTime &other) {
        return allDay ? other.date() == start.date() : other == start;
    };
    if (isSame(series.dtStart()))
        return true;
    const QList<QDateTime> single = series.recurrence()->rDateTimes();
    const KCalendarCore::RecurrenceRule::List rules = series.recurrence()->rRules();
    return std::any_of(single.begin(), single.end(), isSame)
        || series.recurrence()->rDates().contains(start.date())
        || std::any_of(rules.begin(), rules.end(), [&](const KCalendarCore::RecurrenceRule *rule) {
               return allDay ? rule->recursOn(start.date(), series.dtStart().timeZone())
                             : rule->recursAt(start);
           });
}

QList<QDateTime> CalendarEventProperties::deletedOccurrences(const KCalendarCore::Event &series)
{
    if (!series.recurs())
        return {};
    QList<QDateTime> excluded = series.recurrence()->exDateTimes();
    const KCalendarCore::DateList dates = series.recurrence()->exDates();
    for (const QDate &date : dates) {
        QDateTime start = series.dtStart();
        start.setDate(date);
        excluded.append(start);
    }
    QList<QDateTime> result;
    std::copy_if(excluded.begin(), excluded.end(), std::back_inserter(result),
        [&series](const QDateTime &start) { return isOccurrence(series, start); });
    return result;
}

QStringList CalendarEventProperties::knownDeletions(const KCalendarCore::Event &series)
{
    return series.nonKDECustomProperty(knownDeletionsName).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

void CalendarEventProperties::setKnownDeletions(KCalendarCore::Event &series, const QStringList &keys)
{
    setText(series, QLatin1String(knownDeletionsName), keys.join(QLatin1Char(' ')));
}
