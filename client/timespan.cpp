// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/timespan.h"

#include "client/eventtime.h"
#include "client/output.h"

namespace {

const QCommandLineOption FromOption(QStringLiteral("from"), QString(), QStringLiteral("time"));
const QCommandLineOption ToOption(QStringLiteral("to"), QString(), QStringLiteral("time"));

bool readTime(const QCommandLineParser &parser, const QCommandLineOption &option, EventTime *time)
{
    if (!parser.isSet(option))
        return true;
    *time = EventTime::read(parser.value(option));
    if (!time->isValid())
        Output::error(QStringLiteral("--%1 needs a time, such as 2024-05-01T09:30, or a day")
                          .arg(option.names().first()));
    return time->isValid();
}

} // namespace

TimeSpan::TimeSpan(QCommandLineParser &parser)
    : mParser(parser)
{
    mParser.addOption(FromOption);
    mParser.addOption(ToOption);
}

bool TimeSpan::read()
{
    EventTime from;
    EventTime to;
    if (!readTime(mParser, FromOption, &from) || !readTime(mParser, ToOption, &to))
        return false;
    const QTimeZone zone = QTimeZone::systemTimeZone();
    if (from.isValid())
        mStart = from.in(zone);
    if (to.isValid())
        mEnd = to.hasTime() ? to.in(zone) : QDateTime(to.date().addDays(1), QTime(0, 0), zone);
    return true;
}

bool TimeSpan::isInOrder() const
{
    if (mStart < mEnd)
        return true;
    Output::error(QStringLiteral("the end has to be behind the start"));
    return false;
}
