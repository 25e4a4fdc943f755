// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/sampleevents.h"

#include "simulator/eventitem.h"
#include "simulator/itemshape.h"
#include "simulator/protocolversion.h"
#include "support/testmain.h"

#include <QtTest>

using namespace Simulator;

/** @short What a server takes of an uploaded event, and what it refuses. */
class SimulatorEventUploadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatAVersionForbidsIsRefused_data()
    {
        const QString times = SampleEvents::timesXml();
        const QString allDay = QStringLiteral("<k:AllDayEvent>1</k:AllDayEvent>");
        const QString dates = QStringLiteral(
            "<k:StartTime>20260504T000000Z</k:StartTime><k:EndTime>20260505T000000Z</k:EndTime>");
        const QString zone =
            QStringLiteral("<k:Timezone>%1</k:Timezone>").arg(QString::fromLatin1(EventZone().toBase64()));
        const QString attendee = QStringLiteral(
            "<k:Attendees><k:Attendee><k:Email>b@example.com</k:Email><k:Name>B</k:Name>%1</k:Attendee>"
            "</k:Attendees>");
        const QString rule = QStringLiteral("<k:Recurrence><k:Type>1</k:Type>%1</k:Recurrence>");
        const QString days = QStringLiteral("<k:DayOfWeek>2</k:DayOfWeek>");
        QTest::addColumn<QString>("data");
        QTest::addColumn<bool>("below160");
        QTest::addColumn<bool>("from160");
        const auto row = [](const char *title, const QString &content, bool below160, bool from160) {
            QTest::newRow(title) << content << below160 << from160;
        };
        row("nothing wrong", times, false, false);
        row("no times", QStringLiteral("<k:Subject>x</k:Subject>"), true, true);
        row("the end before the start",
            QStringLiteral(
                "<k:StartTime>20260504T100000Z</k:StartTime><k:EndTime>20260504T090000Z</k:EndTime>"),
            true, true);
        row("a start that is no time",
            QStringLiteral("<k:StartTime>noon</k:StartTime><k:EndTime>20260504T090000Z</k:EndTime>"), true,
            true);
        row("identifier", times + QStringLiteral("<k:UID>x</k:UID>"), false, true);
        row("stamp", times + QStringLiteral("<k:DtStamp>20260504T090000Z</k:DtStamp>"), false, true);
        row("organizer", times + QStringLiteral("<k:OrganizerEmail>a@example.com</k:OrganizerEmail>"), false,
            true);
        row("response type", times + QStringLiteral("<k:ResponseType>3</k:ResponseType>"), true, true);
        row("attendee", times + attendee.arg(QString()), false, false);
        row("attendee with status",
            times + attendee.arg(QStringLiteral("<k:AttendeeStatus>3</k:AttendeeStatus>")), false, true);
        row("attendee without address",
            times
                + QStringLiteral("<k:Attendees><k:Attendee><k:Name>B</k:Name>"
                                 "</k:Attendee></k:Attendees>"),
            true, true);
        row("all day", allDay + dates, false, false);
        row("all day with times", allDay + times, true, true);
        row("all day with a zone", allDay + dates + zone, false, true);
        row("zone of 171 bytes",
            times
                + QStringLiteral("<k:Timezone>%1</k:Timezone>")
                      .arg(QString::fromLatin1(QByteArray(171, '\0').toBase64())),
            true, true);
        row("a rule", times + rule.arg(days), false, false);
        row("a rule without days", times + rule.arg(QString()), true, true);
        row("a rule of no type", times + QStringLiteral("<k:Recurrence><k:Type>4</k:Type></k:Recurrence>"),
            true, true);
        row("a rule with what another type has",
            times + rule.arg(days + QStringLiteral("<k:DayOfMonth>2</k:DayOfMonth>")), true, true);
        row("a rule with two ends",
            times
                + rule.arg(days
                    + QStringLiteral("<k:Occurrences>2</k:Occurrences>"
                                     "<k:Until>20270101T000000Z</k:Until>")),
            true, true);
        row("busy as never", times + QStringLiteral("<k:BusyStatus>9</k:BusyStatus>"), true, true);
        row("an element of messages", times + QStringLiteral("<e:Importance>1</e:Importance>"), true, true);
    }

    void whatAVersionForbidsIsRefused()
    {
        QFETCH(QString, data);
        QFETCH(bool, below160);
        QFETCH(bool, from160);
        const WbxmlNode node = WbxmlNode::fromXml(
            QStringLiteral("<ApplicationData xmlns='AirSync' xmlns:k='Calendar' xmlns:e='Email'>%1"
                           "</ApplicationData>")
                .arg(data));
        for (const int version : protocolVersions()) {
            const bool refused = !EventItem::fromUpload(node, { version, std::nullopt });
            QVERIFY2(
                refused == (version < Version160 ? below160 : from160), qPrintable(versionText(version)));
        }
    }

    void seriesHaveTheOccurrencesOfTheirRule_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QVector<int>>("numbers"); // interval, days, day, week, month
        QTest::addColumn<QDate>("first");
        QTest::addColumn<QVector<QDate>>("met");
        QTest::addColumn<QVector<QDate>>("missed");
        const auto day = [](int month, int number, int year = 2026) {
            return QDate(year, month, number);
        };
        using Days = QVector<QDate>;
        using Numbers = QVector<int>;
        QTest::newRow("every third day") << int(EventRule::Daily) << Numbers { 3, 0, 0, 0, 0 } << day(2, 27)
                                         << Days { day(3, 2), day(3, 5) } << Days { day(3, 1), day(2, 24) };
        QTest::newRow("working days") << int(EventRule::Daily) << Numbers { 1, 62, 0, 0, 0 } << day(3, 6)
                                      << Days { day(3, 9) } << Days { day(3, 7), day(3, 8) };
        QTest::newRow("every second week, Monday and Sunday")
            << int(EventRule::Weekly) << Numbers { 2, 3, 0, 0, 0 } << day(3, 2)
            << Days { day(3, 16), day(3, 15) } << Days { day(3, 8), day(3, 9) };
        QTest::newRow("the 31st, or the last day")
            << int(EventRule::MonthlyByDay) << Numbers { 1, 0, 31, 0, 0 } << day(1, 31)
            << Days { day(2, 28), day(3, 31), day(4, 30) } << Days { day(3, 30) };
        QTest::newRow("second Wednesday")
            << int(EventRule::MonthlyByWeekDay) << Numbers { 1, 8, 0, 2, 0 } << day(3, 11)
            << Days { day(4, 8) } << Days { day(4, 1), day(4, 15), day(4, 9) };
        QTest::newRow("last working day")
            << int(EventRule::MonthlyByWeekDay) << Numbers { 1, 62, 0, 5, 0 } << day(1, 30)
            << Days { day(2, 27), day(5, 29) } << Days { day(5, 31), day(5, 28) };
        QTest::newRow("29 February") << int(EventRule::YearlyByDay) << Numbers { 1, 0, 29, 0, 2 }
                                     << day(2, 29, 2024) << Days { day(2, 28, 2025), day(2, 29, 2028) }
                                     << Days { day(2, 28, 2028), day(3, 1, 2025) };
        QTest::newRow("last Sunday in March, every second year")
            << int(EventRule::YearlyByWeekDay) << Numbers { 2, 1, 0, 5, 3 } << day(3, 29)
            << Days { day(3, 26, 2028) } << Days { day(3, 28, 2027), day(3, 19, 2028) };
    }

    void seriesHaveTheOccurrencesOfTheirRule()
    {
        QFETCH(int, type);
        QFETCH(QVector<int>, numbers);
        QFETCH(QDate, first);
        QFETCH(QVector<QDate>, met);
        QFETCH(QVector<QDate>, missed);
        EventRule rule;
        rule.type = type;
        rule.interval = numbers.at(0);
        rule.dayOfWeek = numbers.at(1);
        rule.dayOfMonth = numbers.at(2);
        rule.weekOfMonth = numbers.at(3);
        rule.monthOfYear = numbers.at(4);
        QVERIFY(rule.meets(first, first));
        for (const QDate &date : met)
            QVERIFY2(rule.meets(date, first), qPrintable(date.toString(Qt::ISODate)));
        for (const QDate &date : missed)
            QVERIFY2(!rule.meets(date, first), qPrintable(date.toString(Qt::ISODate)));
    }

    void zonesHaveTheOffsetsOfTheirNames_data()
    {
        QTest::addColumn<QByteArray>("zone");
        for (const char *zone : { "Europe/Berlin", "America/New_York", "Asia/Kolkata", "Australia/Sydney",
                 "Pacific/Apia", "Europe/Dublin", "America/Sao_Paulo", "UTC" })
            QTest::newRow(zone) << QByteArray(zone);
    }

    void zonesHaveTheOffsetsOfTheirNames()
    {
        QFETCH(QByteArray, zone);
        const QTimeZone expected(zone);
        const QDateTime begin(QDate(2026, 1, 1), QTime(0, 0), Qt::UTC);
        const EventZone named = EventZone::named(zone, begin);
        const auto again = EventZone::fromBase64(named.toBase64());
        QVERIFY(again && *again == named);
        for (QDateTime moment = begin; moment < begin.addYears(2); moment = moment.addSecs(3600 * 5)) {
            QVERIFY2(again->offsetAt(moment) == expected.offsetFromUtc(moment),
                qPrintable(moment.toString(Qt::ISODate)));
            const QDateTime wall = again->toWall(moment);
            QCOMPARE(again->toWall(again->toInstant(wall)), wall);
        }
    }
};

FENNEL_REGISTER_TEST(SimulatorEventUploadTest)
#include "simulatoreventuploadtest.moc"
