// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/freebusy.h"

#include "simulator/eventitem.h"

#include <limits>

namespace Simulator {
namespace {

constexpr int SlotSeconds = 30 * 60;

/** The digits of a stretch of time while events are entered into it. */
class Digits
{
public:
    Digits(const QDateTime &start, const QDateTime &end)
        : mStart(start)
        , mDigits(int((start.secsTo(end) + SlotSeconds - 1) / SlotSeconds), QLatin1Char('0'))
    {
    }

    QDateTime start() const { return mStart; }
    QDateTime end() const { return mStart.addSecs(qint64(mDigits.size()) * SlotSeconds); }
    QString text() const { return mDigits; }

    void enter(const QDateTime &from, const QDateTime &to, int busyStatus)
    {
        const qint64 first = qMax<qint64>(0, mStart.secsTo(from)) / SlotSeconds;
        const qint64 behind = (mStart.secsTo(to) + SlotSeconds - 1) / SlotSeconds;
        const QChar digit = QLatin1Char(char('0' + busyStatus));
        for (qint64 i = first; i < qMin<qint64>(behind, mDigits.size()); ++i)
            mDigits[int(i)] = qMax(mDigits.at(int(i)), digit);
    }

private:
    QDateTime mStart;
    QString mDigits;
};

void enter(Digits &digits, const EventDetails &details, const EventZone &zone)
{
    constexpr int Cancelled = 4; // a bit of the meeting status
    if ((details.meetingStatus & Cancelled) != 0)
        return;
    // Days have no zone of their own; they are those of where the event was made.
    const auto instant = [&](const QDateTime &time) {
        return details.allDay ? zone.toInstant(time) : time;
    };
    digits.enter(instant(details.start), instant(details.end), details.busyStatus);
}

/** The occurrences that are as the rule has them. They are counted from the first one on, because a rule may
 * end after some of them. */
void enterOccurrences(Digits &digits, const Event &event)
{
    const QDate last = digits.end().date().addDays(1);
    int left = event.rule->occurrences > 0 ? event.rule->occurrences : std::numeric_limits<int>::max();
    for (QDate day = event.start.date().addDays(-1); day <= last && left > 0; day = day.addDays(1)) {
        const QDateTime original = event.originalOn(day);
        if (!event.hasOccurrence(original))
            continue;
        --left;
        if (!event.exceptionAt(original))
            enter(digits, event.occurrenceAt(original), event.zone);
    }
}

void enterEvent(Digits &digits, const Event &event)
{
    if (!event.rule)
        return enter(digits, event, event.zone);
    enterOccurrences(digits, event);
    for (const EventException &exception : event.exceptions) {
        if (!exception.isDeleted)
            enter(digits, event.detailsOf(exception), event.zone);
    }
}

} // namespace

QString FreeBusy::merged(const Mailbox &mailbox, const QDateTime &start, const QDateTime &end)
{
    Digits digits(start.toUTC(), end.toUTC());
    for (const MailFolder &folder : mailbox.folders()) {
        if (folder.type != CalendarFolder && folder.type != UserCalendarFolder)
            continue;
        for (const ItemEntry &entry : mailbox.items(folder.id)) {
            if (const auto item = std::dynamic_pointer_cast<const EventItem>(entry.item))
                enterEvent(digits, item->value());
        }
    }
    return digits.text();
}

} // namespace Simulator
