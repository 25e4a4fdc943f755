// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/availabilitypicture.h"

#include "client/output.h"
#include "client/textwidth.h"
#include "client/timetext.h"

#include <QJsonObject>

#include <algorithm>

namespace {

constexpr int SlotSeconds = 30 * 60;
constexpr int LabelWidth = 24;

struct State
{
    QChar mark;
    const char *word;
};

const State &stateOf(QChar digit)
{
    static const State states[] = { { '.', "free" }, { '~', "tentative" }, { '#', "busy" },
        { 'o', "out of office" }, { '?', "not known" } };
    constexpr int NotKnown = 4;
    const int number = digit.unicode() - '0';
    return states[number >= 0 && number < NotKnown ? number : NotKnown];
}

QString legend()
{
    QStringList parts;
    for (const char digit : { '0', '1', '2', '3', '4' }) {
        const State &state = stateOf(QLatin1Char(digit));
        parts.append(QString(state.mark) + QLatin1Char(' ') + QLatin1String(state.word));
    }
    return parts.join(QStringLiteral("   "));
}

QChar digitAt(const QString &states, int slot)
{
    return slot < states.size() ? states.at(slot) : QLatin1Char('4');
}

} // namespace

int AvailabilityPicture::slotCount() const
{
    return int((mStart.secsTo(mEnd) + SlotSeconds - 1) / SlotSeconds);
}

QDateTime AvailabilityPicture::slotStart(int slot) const
{
    return mStart.addSecs(qint64(slot) * SlotSeconds).toLocalTime();
}

int AvailabilityPicture::nextDay(int slot) const
{
    const QDate day = slotStart(slot).date();
    while (slot < slotCount() && slotStart(slot).date() == day)
        ++slot;
    return slot;
}

QString AvailabilityPicture::label(const Person &person)
{
    const QString text = person.name.isEmpty() ? person.email : person.name;
    return TextWidth::padded(
        TextWidth::cut(Output::printable(text).simplified(), LabelWidth - 2), LabelWidth);
}

QString AvailabilityPicture::hours(int first, int last) const
{
    QString line;
    for (int slot = first; slot < last; ++slot) {
        const QTime time = slotStart(slot).time();
        if (time.minute() < SlotSeconds / 60 && time.hour() % 2 == 0 && line.size() <= slot - first)
            line = line.leftJustified(slot - first) + time.toString(QStringLiteral("HH"));
    }
    return line;
}

QStringList AvailabilityPicture::lines() const
{
    QStringList lines;
    for (int slot = 0; slot < slotCount(); slot = nextDay(slot)) {
        const int end = nextDay(slot);
        lines.append(
            TextWidth::padded(slotStart(slot).date().toString(Qt::ISODate), LabelWidth) + hours(slot, end));
        for (const Person &person : mPeople) {
            QString line = label(person);
            for (int i = slot; i < end; ++i)
                line += stateOf(digitAt(person.states, i)).mark;
            lines.append(line);
        }
        lines.append(QString());
    }
    lines.append(legend());
    return lines;
}

QJsonArray AvailabilityPicture::describe() const
{
    QJsonArray all;
    for (const Person &person : mPeople) {
        QJsonArray periods;
        for (int slot = 0; slot < slotCount();) {
            int end = slot + 1;
            const QString word = QLatin1String(stateOf(digitAt(person.states, slot)).word);
            while (end < slotCount() && QLatin1String(stateOf(digitAt(person.states, end)).word) == word)
                ++end;
            periods.append(QJsonObject { { QStringLiteral("from"), TimeText::forPrograms(slotStart(slot)) },
                { QStringLiteral("to"), TimeText::forPrograms(std::min(slotStart(end), mEnd)) },
                { QStringLiteral("state"), word } });
            slot = end;
        }
        all.append(
            QJsonObject { { QStringLiteral("email"), person.email }, { QStringLiteral("name"), person.name },
                { QStringLiteral("availability"), person.states }, { QStringLiteral("periods"), periods } });
    }
    return all;
}
