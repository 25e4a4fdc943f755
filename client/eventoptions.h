// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <KCalendarCore/Event>

#include <QCommandLineParser>
#include <QString>

#include <optional>

class EventTime;
class QTimeZone;

/**
 * What the user says of an event: the options that adding and editing share. An option that is not given
 * leaves its field alone. A value on the stack of a command.
 */
class EventOptions
{
public:
    enum Use { Adding, Editing };

    EventOptions(QCommandLineParser &parser, Use use);

    /** False, after an error was printed, if an option cannot be understood. */
    bool apply(KCalendarCore::Event &event, const QString &organizer) const;
    QString calendar() const;
    /** The start of the occurrence that is meant; empty for the event as a whole. */
    QString occurrence() const;
    /** False, after an error, if one occurrence is meant and an option is only for a series, or makes of it
     * what servers refuse. */
    bool fitsOccurrence(const KCalendarCore::Event &event) const;
    /** Whether anything is to be changed at all. */
    bool saysSomething() const;

private:
    /** An hour, or a day, unless the event has a length already. */
    struct Length
    {
        qint64 seconds = 3600;
        qint64 days = 0;
    };

    /** Of options that only one of the uses has. */
    bool saysOf(const QString &option) const;
    bool applyTimes(KCalendarCore::Event &event) const;
    bool applyEnd(KCalendarCore::Event &event, const Length &length) const;
    QDateTime moment(const EventTime &time, const QTimeZone &zone) const;
    bool applyRepetition(KCalendarCore::Event &event) const;
    bool applyReminder(KCalendarCore::Event &event) const;
    void applyAttendees(KCalendarCore::Event &event, const QString &organizer) const;
    /** A number of at least the least; -1 if the option is not given, nothing after an error. */
    std::optional<int> number(const QString &option, int least) const;

    QCommandLineParser &mParser;
};
