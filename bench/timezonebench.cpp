// SPDX-License-Identifier: LGPL-2.1-or-later
// How fast the zone of an event is found when its block does not name it.
#include "benchrow.h"

#include "easitems/eastimezone.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QLoggingCategory>

namespace {

MSSystemTime lastSunday(int month, int hour)
{
    MSSystemTime time;
    time.month = qint16(month);
    time.day = MSSystemTime::LastWeek;
    time.hour = qint16(hour);
    return time;
}

/** Central Europe under the given name, its summer ending in the given month. */
EasTimeZone block(const QString &name, int lastMonth = 10)
{
    MSTimeZoneInformation information;
    information.bias = -60;
    information.stdName = name;
    information.stdDate = lastSunday(lastMonth, 3);
    information.dltName = name;
    information.dltDate = lastSunday(3, 2);
    information.dltBias = -60;
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream << information;
    EasTimeZone zone;
    zone.parse(bytes);
    return zone;
}

struct Row
{
    const char *name;
    EasTimeZone zone;
    QString end;
    bool hasRule;
};

bool isFound(const Row &row, const QString &start)
{
    const QTimeZone found = row.zone.timeZone(start, row.end);
    const QDateTime from(QDate(2026, 7, 1), QTime(8, 0), Qt::UTC);
    return found.isValid() && found.transitions(from, from.addYears(1)).isEmpty() != row.hasRule;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("Fennel.*=false"));
    const QString start = QStringLiteral("20260701T080000Z");
    const QString anHour = QStringLiteral("20260701T090000Z");
    const QString aYear = QStringLiteral("20270630T080000Z");
    const Row rows[] = {
        { "translated name, by its rule", block(QStringLiteral("Mitteleurop\u00e4ische Zeit")), anHour,
            true },
        { "no name, by its rule", block(QString()), anHour, true },
        { "no name, an event of a year", block(QString()), aYear, true },
        { "no zone has its rule", block(QString(), 9), anHour, false },
        { "name that Windows has", block(QStringLiteral("W. Europe Standard Time")), anHour, true },
    };
    std::printf("Time zone of an event\n");
    const double before = BenchRow::processorSeconds();
    bool found = isFound(rows[0], start);
    BenchRow::print("first search of the process", 1e3 * (BenchRow::processorSeconds() - before), "ms");
    for (const Row &row : rows) {
        found = found && isFound(row, start);
        const double seconds = BenchRow::seconds([&] { row.zone.timeZone(start, row.end); });
        BenchRow::print(row.name, 1 / seconds, "searches/s");
    }
    return found ? 0 : 1;
}
