// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/eventtime.h"

#include "client/output.h"
#include "client/timetext.h"

#include <QRegularExpression>

namespace {

QDate dateOf(const QString &text)
{
    if (text == QLatin1String("today"))
        return QDate::currentDate();
    if (text == QLatin1String("tomorrow"))
        return QDate::currentDate().addDays(1);
    if (text == QLatin1String("yesterday"))
        return QDate::currentDate().addDays(-1);
    // The library takes any text that begins with a day.
    constexpr int Length = 10;
    return text.size() == Length ? QDate::fromString(text, Qt::ISODate) : QDate();
}

} // namespace

EventTime EventTime::read(const QString &text)
{
    EventTime time;
    static const QRegularExpression separator(QStringLiteral("[ T](?=\\d)"));
    const QString trimmed = text.trimmed();
    const int end = trimmed.indexOf(separator);
    const QDate date = dateOf(trimmed.left(end));
    if (end < 0) {
        time.mDate = date;
        return time;
    }
    const QString clock = trimmed.mid(end + 1);
    const QTime hours = QTime::fromString(clock, QStringLiteral("H:mm"));
    const QDateTime whole = QDateTime::fromString(trimmed, Qt::ISODate).toLocalTime();
    if (date.isValid() && hours.isValid()) {
        time.mDate = date;
        time.mTime = hours;
    } else if (whole.isValid()) {
        time.mDate = whole.date();
        time.mTime = whole.time();
    }
    return time;
}

bool EventTime::readDay(const QString &text, const QString &option, QDate *day)
{
    *day = read(text).date();
    if (!day->isValid())
        Output::error(QStringLiteral("--%1 needs a day, such as 2024-05-01").arg(option));
    return day->isValid();
}

QDateTime EventTime::in(const QTimeZone &zone) const
{
    return QDateTime(mDate, hasTime() ? mTime : QTime(0, 0), zone);
}

bool EventTime::isAt(const QDateTime &start, bool allDay) const
{
    const QDateTime local = allDay ? start : start.toLocalTime();
    return local.date() == mDate && (!hasTime() || allDay || local.time() == mTime);
}

QString EventTime::text(const QDateTime &time, bool allDay)
{
    return allDay ? time.date().toString(Qt::ISODate) : TimeText::forPrograms(time);
}

QDateTime EventTime::endOf(const KCalendarCore::Event::Ptr &event, const QDateTime &start)
{
    if (event->allDay())
        return start.addDays(event->dtStart().date().daysTo(event->dtEnd().date()));
    return start.addSecs(event->dtStart().secsTo(event->dtEnd()));
}
