// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/timetext.h"

#include <QRegularExpression>

QString TimeText::forPrograms(const QDateTime &time)
{
    const QDateTime local = time.toLocalTime();
    return local.toOffsetFromUtc(local.offsetFromUtc()).toString(Qt::ISODate);
}

QString TimeText::forPeople(const QDateTime &time)
{
    return time.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm"));
}

QString TimeText::readable(const QString &text)
{
    static const QRegularExpression moment(
        QStringLiteral("^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d(Z|[+-]\\d\\d:\\d\\d)$"));
    return moment.match(text).hasMatch() ? forPeople(QDateTime::fromString(text, Qt::ISODate)) : text;
}

QString TimeText::brief(const QString &text)
{
    const QDateTime time = QDateTime::fromString(text, Qt::ISODate).toLocalTime();
    return time.date() == QDate::currentDate() ? time.toString(QStringLiteral("HH:mm:ss")) : readable(text);
}
