// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/eastimezone.h"

#include "support/logcollector.h"
#include "support/testclock.h"
#include "support/testmain.h"

#include <KCalendarCore/Event>

#include <QDataStream>
#include <QElapsedTimer>
#include <QtTest>

#include <cstdio>

namespace {

const QDateTime Now(QDate(2026, 7, 1), QTime(12, 0), Qt::UTC);
constexpr int Years = 2;

/** What became of one zone on its way through a block. */
struct Row
{
    QByteArray zone;
    QByteArray windowsName;
    QByteArray found;
    QString reason;
};

QString protocolTime(const QDateTime &time)
{
    return time.toUTC().toString(QStringLiteral("yyyyMMdd'T'HHmmss'Z'"));
}

/** Whether the clocks of two zones show the same over the coming years. */
bool sameOffsets(const QTimeZone &one, const QTimeZone &other)
{
    const QDateTime end = Now.addYears(Years);
    QList<QDateTime> moments { Now, end };
    for (const QTimeZone &zone : { one, other }) {
        for (const QTimeZone::OffsetData &transition : zone.transitions(Now, end))
            moments << transition.atUtc.addSecs(-1) << transition.atUtc;
    }
    return std::all_of(moments.cbegin(), moments.cend(),
        [&](const QDateTime &moment) { return one.offsetFromUtc(moment) == other.offsetFromUtc(moment); });
}

/** Standard and daylight time by turns, and no more than these: what a block can say. */
bool hasYearlyRule(const QTimeZone &zone)
{
    for (int year = 0; year < Years; ++year) {
        const QDateTime from = Now.addYears(year);
        const int changes = zone.transitions(from, from.addYears(1)).size();
        if (changes != 0 && changes != 2)
            return false;
    }
    return true;
}

EasTimeZone block(const QTimeZone &zone)
{
    KCalendarCore::Event event;
    event.setDtStart(Now.toTimeZone(zone));
    EasTimeZone result;
    if (!result.parse(EasTimeZone::encode(event)))
        qFatal("no block");
    return result;
}

QTimeZone foundAgain(const EasTimeZone &zone)
{
    return zone.timeZone(protocolTime(Now), protocolTime(Now.addSecs(3600)));
}

EasTimeZone withoutNames(const EasTimeZone &zone)
{
    MSTimeZoneInformation information = zone.msTimeZoneInformation();
    information.stdName.clear();
    information.dltName.clear();
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream << information;
    EasTimeZone result;
    if (!result.parse(bytes))
        qFatal("no block");
    return result;
}

/** Zones of the system that Windows has a name for, the ones without daylight time or any change included. */
QList<QByteArray> zonesWithWindowsName()
{
    QList<QByteArray> zones;
    for (const QByteArray &id : QTimeZone::availableTimeZoneIds()) {
        if (!QTimeZone::ianaIdToWindowsId(id).isEmpty() && QTimeZone(id) != QTimeZone::utc())
            zones.append(id);
    }
    return zones;
}

void print(const QString &title, const QList<Row> &rows)
{
    std::printf("%s\n", qPrintable(title));
    for (const Row &row : rows) {
        std::printf("  %-32s %-34s %-30s %s\n", row.zone.constData(), row.windowsName.constData(),
            row.found.constData(), row.reason.isEmpty() ? "same" : qPrintable(row.reason));
    }
}

QSet<QByteArray> exceptions(const QList<Row> &rows)
{
    QSet<QByteArray> zones;
    for (const Row &row : rows) {
        if (!row.reason.isEmpty())
            zones.insert(row.zone);
    }
    return zones;
}

QString listed(QSet<QByteArray> zones)
{
    QStringList names;
    for (const QByteArray &zone : qAsConst(zones))
        names.append(QString::fromLatin1(zone));
    names.sort();
    return names.join(QLatin1Char(' '));
}

} // namespace

/**
 * Every zone of the system that has a name in Windows, written as a block and found again.
 *
 * The date stands still, so that only new zone data can change the result; the exceptions are told with their
 * reason, and those of the names are a closed list.
 */
class EasTimeZoneTableTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void foundAgainByName()
    {
        const TestClock clock(Now);
        QList<Row> rows;
        {
            const LogCollector quiet;
            for (const QByteArray &id : zonesWithWindowsName()) {
                const QByteArray name = QTimeZone::ianaIdToWindowsId(id);
                const QTimeZone found = foundAgain(block(QTimeZone(id)));
                QString reason;
                if (!sameOffsets(QTimeZone(id), found)) {
                    reason = QStringLiteral("the name stands for %1, whose clocks differ by now")
                                 .arg(QString::fromLatin1(found.id()));
                }
                rows.append({ id, name, found.id(), reason });
            }
        }
        print(QStringLiteral("zone, name in the block, zone found by the name"), rows);
        QVERIFY2(rows.size() > 300, "the system's zone data is there");
        // Zones that left the rest of theirs after the names were given.
        const QSet<QByteArray> accepted { "America/Edmonton", "America/Inuvik", "America/Mazatlan",
            "America/Ojinaga", "America/Scoresbysund", "America/Vancouver", "America/Winnipeg",
            "Antarctica/Casey", "Asia/Bishkek", "Asia/Urumqi", "Indian/Chagos" };
        const QSet<QByteArray> unexpected = exceptions(rows) - accepted;
        QVERIFY2(unexpected.isEmpty(), qPrintable(listed(unexpected)));
    }

    void foundAgainByRule_data()
    {
        QTest::addColumn<QDateTime>("now");
        QTest::newRow("asked in the northern summer") << Now;
        QTest::newRow("asked in the northern winter") << Now.addMonths(6);
    }

    void foundAgainByRule()
    {
        QFETCH(QDateTime, now);
        const TestClock clock(now);
        QList<Row> rows;
        QSet<QByteArray> unexplained;
        QElapsedTimer timer;
        timer.start();
        {
            const LogCollector quiet;
            for (const QByteArray &id : zonesWithWindowsName()) {
                const EasTimeZone nameless = withoutNames(block(QTimeZone(id)));
                const QTimeZone found = foundAgain(nameless);
                QString reason;
                if (!sameOffsets(QTimeZone(id), found)) {
                    if (nameless.msTimeZoneInformation().stdDate.month == 0)
                        reason = QStringLiteral("a block without a rule is the first zone at its offset");
                    else if (!hasYearlyRule(QTimeZone(id)))
                        reason = QStringLiteral("its clocks follow no yearly rule");
                    else
                        unexplained.insert(id);
                }
                rows.append({ id, QTimeZone::ianaIdToWindowsId(id), found.id(), reason });
            }
        }
        print(QStringLiteral("zone, its name, zone found by the rule alone"), rows);
        std::printf("%d searches in %lld ms\n", rows.size(), timer.elapsed());
        QVERIFY2(unexplained.isEmpty(), qPrintable(listed(unexplained)));
    }
};

FENNEL_REGISTER_TEST(EasTimeZoneTableTest)
#include "eastimezonetabletest.moc"
