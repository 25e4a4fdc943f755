// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/eastimezone.h"

#include "support/logcollector.h"
#include "support/testclock.h"
#include "support/testmain.h"

#include <KCalendarCore/Event>

#include <QDataStream>
#include <QtTest>

namespace {

QDateTime utc(int year, int month, int day, int hour = 12)
{
    return QDateTime(QDate(year, month, day), QTime(hour, 0), Qt::UTC);
}

QByteArray raw(const MSTimeZoneInformation &information)
{
    QByteArray block;
    QDataStream stream(&block, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream << information;
    return block;
}

MSSystemTime rule(int month, int weekDay, int week, int hour)
{
    MSSystemTime time;
    time.month = qint16(month);
    time.weekDay = qint16(weekDay);
    time.day = qint16(week);
    time.hour = qint16(hour);
    return time;
}

/** Central Europe under the given name. */
MSTimeZoneInformation centralEurope(const QString &name)
{
    MSTimeZoneInformation information;
    information.bias = -60;
    information.stdName = name;
    information.stdDate = rule(10, 0, 5, 3);
    information.dltName = name;
    information.dltDate = rule(3, 0, 5, 2);
    information.dltBias = -60;
    return information;
}

QByteArray encoded(const QByteArray &zoneId, const QDate &date)
{
    KCalendarCore::Event event;
    event.setDtStart(QDateTime(date, QTime(10, 0), QTimeZone(zoneId)));
    return EasTimeZone::encode(event);
}

EasTimeZone parsed(const QByteArray &block)
{
    EasTimeZone zone;
    if (!zone.parse(block))
        qFatal("the block was refused");
    return zone;
}

MSTimeZoneInformation encodedInformation(const QByteArray &zoneId, const QDate &date)
{
    return parsed(encoded(zoneId, date)).msTimeZoneInformation();
}

QString text(const MSSystemTime &time)
{
    return QStringLiteral("%1/%2/%3 %4:%5")
        .arg(time.month)
        .arg(time.day)
        .arg(time.weekDay)
        .arg(time.hour)
        .arg(time.minute);
}

QTimeZone resolved(const MSTimeZoneInformation &information,
    const QString &start = QStringLiteral("20260701T080000Z"),
    const QString &end = QStringLiteral("20260701T090000Z"))
{
    return parsed(raw(information)).timeZone(start, end);
}

} // namespace

/** The block of a calendar item's time zone: read, understood and written. */
class EasTimeZoneTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aBlockIsReadRawOrAsBase64()
    {
        const MSTimeZoneInformation sent = centralEurope(QStringLiteral("W. Europe Standard Time"));
        QCOMPARE(raw(sent).size(), 172);
        for (const QByteArray &data : { raw(sent), raw(sent).toBase64() }) {
            const EasTimeZone zone = parsed(data);
            const MSTimeZoneInformation &read = zone.msTimeZoneInformation();
            QCOMPARE(read.bias, -60);
            QCOMPARE(read.stdName, sent.stdName);
            QCOMPARE(text(read.stdDate), text(sent.stdDate));
            QCOMPARE(read.stdBias, 0);
            QCOMPARE(read.dltName, sent.dltName);
            QCOMPARE(text(read.dltDate), text(sent.dltDate));
            QCOMPARE(read.dltBias, -60);
        }
    }

    void aBlockThatLooksLikeBase64IsNotDecoded()
    {
        const EasTimeZone zone = parsed(QByteArray(172, 'A'));
        QCOMPARE(zone.msTimeZoneInformation().bias, 0x41414141);
    }

    void blocksOfAnotherSizeAreRefused()
    {
        const QByteArray block = raw(centralEurope(QStringLiteral("GMT Standard Time")));
        for (const QByteArray &data : { block.left(171), block + 'x', block.left(171).toBase64(),
                 (block + 'x').toBase64(), QByteArray(), QByteArray("no block") }) {
            const LogCollector log;
            EasTimeZone zone;
            QVERIFY(!zone.parse(data));
            QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("Wrong buffer:") }));
            QCOMPARE(zone.msTimeZoneInformation().bias, 0);
        }
    }

    void aHugeTextIsRefusedWithAShortLine()
    {
        const LogCollector log;
        QVERIFY(!EasTimeZone().parse(QByteArray(10 * 1024 * 1024, 'Q')));
        QVERIFY(log.lines().first().text.size() < 2000);
    }

    void aNameMayFillItsPlaceAndGoesOnBehindAZero()
    {
        MSTimeZoneInformation sent = centralEurope(QString(32, QLatin1Char('n')));
        QCOMPARE(parsed(raw(sent)).msTimeZoneInformation().stdName, QString(32, QLatin1Char('n')));
        sent.stdName[3] = QChar(0);
        QCOMPARE(parsed(raw(sent)).msTimeZoneInformation().stdName, QString(31, QLatin1Char('n')));
        QCOMPARE(parsed(raw(sent)).msTimeZoneInformation().dltName.size(), 32);
    }

    void aWindowsNameIsItsDefaultZone()
    {
        QCOMPARE(resolved(centralEurope(QStringLiteral("W. Europe Standard Time"))).id(),
            QByteArray("Europe/Berlin"));
    }

    void theBracketOfADisplayNameIsPassedOver()
    {
        QCOMPARE(resolved(centralEurope(QStringLiteral("(UTC+00:00) GMT Standard Time"))).id(),
            QByteArray("Europe/London"));
    }

    void withoutChangesTheFirstZoneAtTheOffsetIsTaken()
    {
        const TestClock clock(utc(2026, 7, 1));
        const LogCollector log;
        MSTimeZoneInformation information;
        information.bias = -330;
        information.stdName = QStringLiteral("Mumbai");
        QByteArray first;
        for (const QByteArray &id : QTimeZone::availableTimeZoneIds()) {
            if (first.isEmpty() && QTimeZone(id).offsetFromUtc(clock.currentDateTimeUtc()) == 330 * 60)
                first = id;
        }
        QCOMPARE(resolved(information).id(), first);
        QVERIFY(log.contains(QtInfoMsg,
            { QStringLiteral("Multiple matches for time zone"), QStringLiteral("Mumbai"),
                QStringLiteral(", using first match"), QString::fromLatin1(first) }));
    }

    void withoutChangesAZoneThatKeepsItsClocksIsTaken_data()
    {
        QTest::addColumn<QDateTime>("now");
        QTest::addColumn<int>("minutes");
        QTest::newRow("Hawaii in winter") << utc(2026, 1, 15) << -600;
        QTest::newRow("Arizona in winter") << utc(2026, 1, 15) << -420;
        QTest::newRow("Tonga in winter") << utc(2026, 1, 15) << 780;
        QTest::newRow("Darwin in the southern winter") << utc(2026, 7, 15) << 570;
        QTest::newRow("Fiji in the southern winter") << utc(2026, 7, 15) << 720;
    }

    void withoutChangesAZoneThatKeepsItsClocksIsTaken()
    {
        QFETCH(QDateTime, now);
        QFETCH(int, minutes);
        const TestClock clock(now);
        MSTimeZoneInformation information;
        information.bias = -minutes;
        const QTimeZone zone = resolved(information);
        QCOMPARE(zone.offsetFromUtc(now), minutes * 60);
        QVERIFY2(zone.transitions(now, now.addYears(1)).isEmpty(), zone.id().constData());
    }

    void theStandardBiasIsTakenOffTheBias()
    {
        const TestClock clock(utc(2026, 1, 15));
        MSTimeZoneInformation information = centralEurope(QStringLiteral("Halb und halb"));
        information.bias = -30;
        information.stdBias = -30;
        information.dltBias = -90;
        const QTimeZone zone = resolved(information);
        QCOMPARE(zone.offsetFromUtc(utc(2026, 1, 15)), 3600);
        QCOMPARE(zone.offsetFromUtc(utc(2026, 7, 15)), 7200);
    }

    void withinALongItemTheBiasesDecide()
    {
        const TestClock clock(utc(2026, 1, 15));
        const QTimeZone zone = resolved(centralEurope(QStringLiteral("Hora de Europa Central")),
            QStringLiteral("20260101T000000Z"), QStringLiteral("20261231T000000Z"));
        QCOMPARE(zone.offsetFromUtc(utc(2026, 1, 15)), 3600);
        QCOMPARE(zone.offsetFromUtc(utc(2026, 7, 15)), 7200);
    }

    void anUnknownNameResolvesByItsRule_data()
    {
        QTest::addColumn<QDateTime>("now");
        QTest::addColumn<QString>("name");
        for (const QString &name :
            { QStringLiteral("(UTC+01:00) Amsterdam, Berlin, Bern, Rom, Stockholm, Wien"),
                QStringLiteral("Mitteleurop\u00e4ische Zeit"), QString() }) {
            QTest::addRow("in winter, %s", qPrintable(name)) << utc(2026, 1, 15) << name;
            QTest::addRow("in summer, %s", qPrintable(name)) << utc(2026, 7, 15) << name;
        }
    }

    void anUnknownNameResolvesByItsRule()
    {
        QFETCH(QDateTime, now);
        QFETCH(QString, name);
        const TestClock clock(now);
        const QTimeZone zone = resolved(centralEurope(name));
        const QTimeZone berlin("Europe/Berlin");
        for (const QDateTime &change :
            { utc(2026, 3, 29, 1), utc(2026, 10, 25, 1), utc(2027, 3, 28, 1), utc(2027, 10, 31, 1) }) {
            QCOMPARE(zone.offsetFromUtc(change.addSecs(-1)), berlin.offsetFromUtc(change.addSecs(-1)));
            QCOMPARE(zone.offsetFromUtc(change), berlin.offsetFromUtc(change));
        }
    }

    void rubbishBesideAMonthOfZeroIsNoRule()
    {
        // As a server sends it for a zone that never changes its clocks: no names, and noise in the date.
        const TestClock clock(utc(2026, 11, 21));
        MSTimeZoneInformation information;
        information.bias = -330;
        information.stdDate = rule(0, 32684, -32288, -32276);
        information.stdDate.year = -1424;
        information.stdDate.minute = 21902;
        const QTimeZone zone = resolved(information);
        QCOMPARE(zone.offsetFromUtc(utc(2026, 1, 1)), 330 * 60);
        QCOMPARE(zone.offsetFromUtc(utc(2026, 7, 1)), 330 * 60);
    }

    void midnightMayBeWrittenAsTheMomentBefore()
    {
        // Saturday 23:59:59.999 in place of Sunday 0:00.
        const TestClock clock(utc(2026, 1, 15));
        MSTimeZoneInformation information;
        information.bias = 240;
        information.dltBias = -60;
        information.stdDate = rule(4, 6, 1, 23);
        information.dltDate = rule(9, 6, 1, 23);
        for (MSSystemTime *time : { &information.stdDate, &information.dltDate }) {
            time->minute = 59;
            time->second = 59;
            time->milliseconds = 999;
        }
        // Chile: the first Sunday after the first Saturday; the dates of this year decide.
        QCOMPARE(resolved(information, QStringLiteral("20260115T080000Z"), QStringLiteral("20260115T090000Z"))
                     .offsetFromUtc(utc(2026, 7, 1)),
            -4 * 3600);
    }

    void withoutAMatchTheOffsetRemains()
    {
        const TestClock clock(utc(2026, 1, 15));
        const LogCollector log;
        MSTimeZoneInformation information = centralEurope(QStringLiteral("Nowhere"));
        information.stdDate = rule(5, 2, 2, 3);
        const QTimeZone zone = resolved(information);
        QCOMPARE(zone.offsetFromUtc(utc(2026, 7, 1)), 3600);
        QVERIFY(zone.transitions(utc(2026, 1, 1), utc(2027, 1, 1)).isEmpty());
        QVERIFY(log.contains(QtInfoMsg,
            { QStringLiteral("No match for named time zone"), QStringLiteral("Nowhere"),
                QStringLiteral(", fall back to offset-based time zone") }));
    }

    void thereIsAlwaysAZone_data()
    {
        QTest::addColumn<int>("bias");
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("end");
        const QString first = QStringLiteral("00010101T000000Z");
        const QString last = QStringLiteral("99991231T235959Z");
        QTest::addRow("a bias of centuries") << int(0x80000000) << QStringLiteral("20260101T000000Z") << last;
        QTest::addRow("a bias that overflows") << 0x7FFFFFFF << first << last;
        QTest::addRow("an item of ten thousand years") << -60 << first << last;
        QTest::addRow("an item that ends before it begins") << -60 << last << first;
        QTest::addRow("no times") << -60 << QString() << QString();
        QTest::addRow("no end") << -60 << QStringLiteral("20260101T000000Z") << QString();
    }

    void thereIsAlwaysAZone()
    {
        QFETCH(int, bias);
        QFETCH(QString, start);
        QFETCH(QString, end);
        MSTimeZoneInformation information = centralEurope(QStringLiteral("Nowhere"));
        information.bias = bias;
        QVERIFY(resolved(information, start, end).isValid());
        information.stdDate = rule(-1, -1, 77, 99);
        QVERIFY(resolved(information, start, end).isValid());
    }

    void aZoneIsWrittenWithItsRule_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<QDate>("date");
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("bias");
        QTest::addColumn<int>("dltBias");
        QTest::addColumn<QString>("standard");
        QTest::addColumn<QString>("daylight");
        const QDate winter(2026, 1, 15);
        const QDate summer(2026, 7, 15);
        const QByteArray berlin("Europe/Berlin");
        const QString european = QStringLiteral("W. Europe Standard Time");
        // The last Sunday of October 2026 is the fourth one as well.
        QTest::addRow("daylight time comes first")
            << berlin << winter << european << -60 << -60 << QStringLiteral("10/5/0 3:0")
            << QStringLiteral("3/5/0 2:0");
        QTest::addRow("standard time comes first")
            << berlin << summer << european << -60 << -60 << QStringLiteral("10/5/0 3:0")
            << QStringLiteral("3/5/0 2:0");
        QTest::addRow("a fourth week that is the last one: 2020")
            << berlin << QDate(2020, 1, 1) << european << -60 << -60 << QStringLiteral("10/5/0 3:0")
            << QStringLiteral("3/5/0 2:0");
        QTest::addRow("west of Greenwich")
            << QByteArray("America/New_York") << winter << QStringLiteral("Eastern Standard Time") << 300
            << -60 << QStringLiteral("11/1/0 2:0") << QStringLiteral("3/2/0 2:0");
        // In UTC this is the Saturday before.
        QTest::addRow("in the south, daylight time now")
            << QByteArray("Australia/Sydney") << winter << QStringLiteral("AUS Eastern Standard Time") << -600
            << -60 << QStringLiteral("4/1/0 3:0") << QStringLiteral("10/1/0 2:0");
        QTest::addRow("in the south, standard time now")
            << QByteArray("Australia/Sydney") << summer << QStringLiteral("AUS Eastern Standard Time") << -600
            << -60 << QStringLiteral("4/1/0 3:0") << QStringLiteral("10/1/0 2:0");
        QTest::addRow("half an hour of daylight time")
            << QByteArray("Australia/Lord_Howe") << winter << QStringLiteral("Lord Howe Standard Time")
            << -630 << -30 << QStringLiteral("4/1/0 2:0") << QStringLiteral("10/1/0 2:0");
        QTest::addRow("no daylight time")
            << QByteArray("Asia/Calcutta") << winter << QStringLiteral("India Standard Time") << -330 << 0
            << QStringLiteral("0/0/0 0:0") << QStringLiteral("0/0/0 0:0");
        QTest::addRow("east of the date line")
            << QByteArray("Pacific/Apia") << winter << QStringLiteral("Samoa Standard Time") << -780 << 0
            << QStringLiteral("0/0/0 0:0") << QStringLiteral("0/0/0 0:0");
        // Within a year from these days the clocks change once: the second change comes later in the next
        // year.
        QTest::addRow("just after daylight time began")
            << QByteArray("America/New_York") << QDate(2026, 3, 10) << QStringLiteral("Eastern Standard Time")
            << 300 << -60 << QStringLiteral("11/1/0 2:0") << QStringLiteral("3/2/0 2:0");
        QTest::addRow("just after standard time began")
            << berlin << QDate(2026, 10, 26) << european << -60 << -60 << QStringLiteral("10/5/0 3:0")
            << QStringLiteral("3/5/0 2:0");
        QTest::addRow("no name") << QByteArray("Antarctica/Troll") << QDate(2027, 1, 15) << QString() << 0
                                 << -120 << QStringLiteral("10/5/0 3:0") << QStringLiteral("3/5/0 1:0");
    }

    void aZoneIsWrittenWithItsRule()
    {
        QFETCH(QByteArray, zone);
        QFETCH(QDate, date);
        const MSTimeZoneInformation information = encodedInformation(zone, date);
        QTEST(information.stdName, "name");
        QTEST(information.dltName, "name");
        QTEST(information.bias, "bias");
        QCOMPARE(information.stdBias, 0);
        QTEST(information.dltBias, "dltBias");
        QTEST(text(information.stdDate), "standard");
        QTEST(text(information.dltDate), "daylight");
        QCOMPARE(information.stdDate.year, qint16(0));
    }

    void withoutARuleTheOffsetOfTheStartIsWritten_data()
    {
        QTest::addColumn<QByteArray>("zone");
        QTest::addColumn<QDate>("date");
        QTest::addColumn<int>("bias");
        QTest::addColumn<int>("level");
        QTest::addColumn<QString>("line");
        QTest::addRow("no change in the year") << QByteArray("Asia/Kolkata") << QDate(2026, 1, 15) << -330
                                               << int(QtInfoMsg) << QStringLiteral("No transitions");
        QTest::addRow("a zone that gives daylight time up")
            << QByteArray("America/Sao_Paulo") << QDate(2018, 12, 1) << 120 << int(QtWarningMsg)
            << QStringLiteral("Too few transitions");
        QTest::addRow("a zone that changes its standard time twice")
            << QByteArray("Antarctica/Casey") << QDate(2009, 10, 1) << -480 << int(QtWarningMsg)
            << QStringLiteral("Unexpected transition types");
        QTest::addRow("a zone that changes four times")
            << QByteArray("Africa/Casablanca") << QDate(2016, 1, 15) << 0 << int(QtWarningMsg)
            << QStringLiteral("transitions check failed");
    }

    void withoutARuleTheOffsetOfTheStartIsWritten()
    {
        QFETCH(QByteArray, zone);
        QFETCH(QDate, date);
        QFETCH(int, level);
        QFETCH(QString, line);
        const LogCollector log;
        const MSTimeZoneInformation information = encodedInformation(zone, date);
        QTEST(information.bias, "bias");
        QCOMPARE(information.dltBias, 0);
        QCOMPARE(information.stdDate.month, qint16(0));
        QCOMPARE(information.dltDate.month, qint16(0));
        QCOMPARE(information.stdName, QString::fromUtf8(QTimeZone::ianaIdToWindowsId(zone)));
        QVERIFY(log.contains(QtMsgType(level), { line }));
        QVERIFY(log.contains(QtInfoMsg,
            { QStringLiteral("Encoded timezone:"), QStringLiteral("MSTimeZoneInformation{bias:") }));
    }

    void someStartsNeedNoBlock()
    {
        const LogCollector log;
        KCalendarCore::Event event;
        QCOMPARE(EasTimeZone::encode(event), QByteArray());
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("No start time") }));
        event.setDtStart(utc(2026, 1, 1));
        QCOMPARE(EasTimeZone::encode(event), QByteArray());
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("Start time is in UTC") }));
    }

    void aBlockIsPrinted()
    {
        QString printed;
        QDebug(&printed) << centralEurope(QStringLiteral("Home"));
        QCOMPARE(printed.trimmed(),
            QStringLiteral(
                "MSTimeZoneInformation{bias:-60,stdName:\"Home\",stdDate:MSSystemTime{0-10-5, weekDay(0), "
                "3:0:0.0},"
                "stdBias:0,dltName:\"Home\",dltTime:MSSystemTime{0-3-5, weekDay(0), 2:0:0.0},dltBias:-60}"));
    }
};

FENNEL_REGISTER_TEST(EasTimeZoneTest)
#include "eastimezonetest.moc"
