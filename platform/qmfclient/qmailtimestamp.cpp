// SPDX-License-Identifier: LGPL-2.1-or-later
#include <qmailtimestamp.h>

#include <KMime/Headers>

#include <QLocale>

#include <cstdlib>

namespace {

QString offsetText(const QDateTime &time, const QString &separator)
{
    const int minutes = time.offsetFromUtc() / 60;
    const int absolute = std::abs(minutes);
    return QStringLiteral("%1%2%3%4")
        .arg(minutes < 0 ? QLatin1Char('-') : QLatin1Char('+'))
        .arg(absolute / 60, 2, 10, QLatin1Char('0'))
        .arg(separator)
        .arg(absolute % 60, 2, 10, QLatin1Char('0'));
}

} // namespace

QMailTimeStamp QMailTimeStamp::currentDateTime()
{
    return QMailTimeStamp(QDateTime::currentDateTime());
}

QMailTimeStamp::QMailTimeStamp(const QString &rfc2822Text)
{
    KMime::Headers::Date date;
    date.from7BitString(rfc2822Text.toLatin1());
    mTime = date.dateTime();
}

QMailTimeStamp::QMailTimeStamp(const QDateTime &dateTime)
    : mTime(dateTime)
{
}

QString QMailTimeStamp::toString(OutputFormat format) const
{
    if (!isValid())
        return QString();
    const QLocale english = QLocale::c();
    switch (format) {
    case Rfc2822:
        return english.toString(mTime, QStringLiteral("ddd, d MMM yyyy hh:mm:ss "))
            + offsetText(mTime, QString());
    case Rfc3501:
        return english.toString(mTime, QStringLiteral("dd-MMM-yyyy hh:mm:ss "))
            + offsetText(mTime, QString());
    case Rfc3339:
        break;
    }
    return english.toString(mTime, QStringLiteral("yyyy-MM-ddThh:mm:ss"))
        + offsetText(mTime, QStringLiteral(":"));
}

QDateTime QMailTimeStamp::toLocalTime() const
{
    return mTime.toLocalTime();
}

QDateTime QMailTimeStamp::toUTC() const
{
    return mTime.toUTC();
}

bool QMailTimeStamp::isNull() const
{
    return mTime.isNull();
}

bool QMailTimeStamp::isValid() const
{
    return mTime.isValid();
}

bool QMailTimeStamp::operator==(const QMailTimeStamp &other) const
{
    return mTime == other.mTime;
}

bool QMailTimeStamp::operator!=(const QMailTimeStamp &other) const
{
    return mTime != other.mTime;
}

bool QMailTimeStamp::operator<(const QMailTimeStamp &other) const
{
    return mTime < other.mTime;
}

bool QMailTimeStamp::operator<=(const QMailTimeStamp &other) const
{
    return mTime <= other.mTime;
}

bool QMailTimeStamp::operator>(const QMailTimeStamp &other) const
{
    return mTime > other.mTime;
}

bool QMailTimeStamp::operator>=(const QMailTimeStamp &other) const
{
    return mTime >= other.mTime;
}
