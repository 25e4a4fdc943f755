// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QCommandLineParser>
#include <QDateTime>

/**
 * A stretch of time from the options "--from" and "--to" of a command; a day begins with its first moment,
 * and as an end it is a part of the whole. On the stack of a command.
 */
class TimeSpan
{
public:
    /** Adds the options to the parser, which has to outlive this. */
    explicit TimeSpan(QCommandLineParser &parser);

    /** Once the parser has parsed; false, after an error, if a time cannot be read. */
    bool read();
    bool hasStart() const { return mStart.isValid(); }
    bool hasEnd() const { return mEnd.isValid(); }
    QDateTime start() const { return mStart; }
    QDateTime end() const { return mEnd; }
    void setStart(const QDateTime &start) { mStart = start; }
    void setEnd(const QDateTime &end) { mEnd = end; }
    /** False, after an error, if the end is not behind the start. */
    bool isInOrder() const;

private:
    QCommandLineParser &mParser;
    QDateTime mStart;
    QDateTime mEnd;
};
