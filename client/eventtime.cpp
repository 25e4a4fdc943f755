// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/eventtime.h"

EventTime EventTime::read(const QString &text)
{
    EventTime time;
    QString normal = text.trimmed();
    normal.replace(QLatin1Char(' '), QLatin1Char('T'));
    const int separator = normal.indexOf(QLatin1Char('T'));
    const QDate date = QDate::fromString(normal.left(separator), Qt::ISODate);
    if (separator < 0) {
        time.mDate = date;
        return time;
    }
    const QTime clock = QTime::fromString(normal.mid(separator + 1), QStringLiteral("H:mm"));
    if (date.isValid() && clock.isValid()) {
        time.mDate = date;
        time.mTime = clock;
    }
    return time;
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
    return allDay ? time.date().toString(Qt::ISODate)
                  : time.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm"));
}

QDateTime EventTime::endOf(const KCalendarCore::Event::Ptr &event, const QDateTime &start)
{
    if (event->allDay())
        return start.addDays(event->dtStart().date().daysTo(event->dtEnd().date()));
    return start.addSecs(event->dtStart().secsTo(event->dtEnd()));
}
