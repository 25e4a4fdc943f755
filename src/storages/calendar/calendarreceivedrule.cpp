// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarreceivedrule.h"

#include "common/exchangeactivesync.h"
#include "easitems/algorithms/calendarexceptiontext.h"
#include "storages/calendar/calendareventproperties.h"

#include <KCalendarCore/Recurrence>

#include <QJsonDocument>

using KCalendarCore::RecurrenceRule;

namespace {

const QString propertyName = QStringLiteral("X-FENNEL-EAS-RECEIVED-RULE");

const QLatin1String ruleKey("rule");
const QLatin1String firstDayKey("firstDayOfWeek");
const QLatin1String calendarKey("calendarType");
const QLatin1String leapMonthKey("leapMonth");
const QLatin1String exceptionsKey("exceptions");
const QLatin1String exceptionsRuleKey("exceptionsRule");

QStringList texts(const QList<int> &values)
{
    QStringList result;
    for (const int value : values)
        result.append(QString::number(value));
    return result;
}

/** The store need not keep the order. */
QString sorted(QStringList values)
{
    values.sort();
    return values.join(QLatin1Char(','));
}

} // namespace

CalendarReceivedRule::CalendarReceivedRule(const KCalendarCore::Event::Ptr &series)
    : mSeries(series)
    , mKept(QJsonDocument::fromJson(CalendarEventProperties::text(*series, propertyName).toUtf8()).object())
{
}

QString CalendarReceivedRule::rule() const
{
    const RecurrenceRule *rule = mSeries->recurs() ? mSeries->recurrence()->defaultRRuleConst() : nullptr;
    if (!rule)
        return QString();
    QStringList days;
    const QList<RecurrenceRule::WDayPos> byDays = rule->byDays();
    for (const RecurrenceRule::WDayPos &day : byDays)
        days.append(QStringLiteral("%1:%2").arg(day.pos()).arg(day.day()));
    return QStringList { QString::number(rule->recurrenceType()), QString::number(rule->frequency()),
        sorted(days), sorted(texts(rule->byMonthDays())), sorted(texts(rule->byMonths())),
        sorted(texts(rule->bySetPos())) }
        .join(QLatin1Char(';'));
}

QString CalendarReceivedRule::ruleAndStart() const
{
    const QDateTime start = mSeries->dtStart();
    return rule() + QLatin1Char(' ')
        + (mSeries->allDay() ? start.date().toString(Qt::ISODate)
                             : ExchangeActiveSync::dateTimeToString(start));
}

void CalendarReceivedRule::store() const
{
    CalendarEventProperties::setText(*mSeries, propertyName,
        mKept.isEmpty() ? QString() : QString::fromUtf8(QJsonDocument(mKept).toJson(QJsonDocument::Compact)));
}

void CalendarReceivedRule::keep(const EasRecurrenceContainer &recurrence)
{
    mKept = QJsonObject();
    if (recurrence.firstDayOfWeek() != EasRecurrenceContainer::UndefinedFirstDay)
        mKept.insert(firstDayKey, int(recurrence.firstDayOfWeek()));
    if (recurrence.calendarType() != EasRecurrenceContainer::DefaultCalendar)
        mKept.insert(calendarKey, int(recurrence.calendarType()));
    if (recurrence.leapMonth() != 0)
        mKept.insert(leapMonthKey, recurrence.leapMonth());
    if (!mKept.isEmpty())
        mKept.insert(ruleKey, rule());
    store();
}

void CalendarReceivedRule::keepExceptions(const QList<EasCalendarItem> &exceptions)
{
    mKept.remove(exceptionsKey);
    mKept.remove(exceptionsRuleKey);
    if (!exceptions.isEmpty()) {
        const QByteArray text = CalendarExceptionText::encode(exceptions).toBase64();
        mKept.insert(exceptionsKey, QString::fromLatin1(text));
        mKept.insert(exceptionsRuleKey, ruleAndStart());
    }
    store();
}

void CalendarReceivedRule::complete(EasRecurrenceContainer &recurrence) const
{
    if (!mKept.contains(ruleKey) || mKept.value(ruleKey).toString() != rule())
        return;
    if (mKept.contains(firstDayKey))
        recurrence.setFirstDayOfWeek(
            EasRecurrenceContainer::FirstDayOfWeek(mKept.value(firstDayKey).toInt()));
    recurrence.setCalendarType(EasRecurrenceContainer::CalendarType(mKept.value(calendarKey).toInt()));
    recurrence.setLeapMonth(mKept.value(leapMonthKey).toInt());
}

QList<EasCalendarItem> CalendarReceivedRule::exceptions() const
{
    if (!mKept.contains(exceptionsKey) || mKept.value(exceptionsRuleKey).toString() != ruleAndStart())
        return {};
    return CalendarExceptionText::decode(
        QByteArray::fromBase64(mKept.value(exceptionsKey).toString().toLatin1()));
}
