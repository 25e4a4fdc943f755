// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/availabilitypicture.h"

#include "support/testmain.h"

#include <QtTest>

/** Half hours as a picture. */
class AvailabilityPictureTest : public QObject
{
    Q_OBJECT

private:
    QByteArray mZone;

private Q_SLOTS:
    void initTestCase()
    {
        mZone = qgetenv("TZ");
        qputenv("TZ", "Europe/Berlin");
    }
    void cleanupTestCase() { mZone.isNull() ? qunsetenv("TZ") : qputenv("TZ", mZone); }

    void eachDayIsABlock()
    {
        const QDateTime start(QDate(2026, 5, 4), QTime(22, 30));
        const AvailabilityPicture picture(start, start.addSecs(3 * 3600),
            { { QStringLiteral("ann@example.com"), QStringLiteral("Ann"), QStringLiteral("012344") } });
        QCOMPARE(picture.lines(),
            QStringList({ "2026-05-04              ", "Ann                     .~#", "",
                "2026-05-05              00", "Ann                     o??", "",
                ". free   ~ tentative   # busy   o out of office   ? not known" }));
    }

    void aDayOnWhichTheClocksChangeHasItsOwnLength_data()
    {
        QTest::addColumn<QDate>("day");
        QTest::addColumn<QString>("hours");
        QTest::addColumn<int>("slotCount");
        QTest::newRow("forward") << QDate(2026, 3, 29) << "00    04  06  08  10  12  14  16  18  20  22"
                                 << 46;
        QTest::newRow("back") << QDate(2026, 10, 25) << "00  0202  04  06  08  10  12  14  16  18  20  22"
                              << 50;
    }

    void aDayOnWhichTheClocksChangeHasItsOwnLength()
    {
        QFETCH(QDate, day);
        QFETCH(QString, hours);
        QFETCH(int, slotCount);
        const AvailabilityPicture picture(QDateTime(day, QTime(0, 0)), QDateTime(day.addDays(1), QTime(0, 0)),
            { { QStringLiteral("ann@example.com"), QString(), QString(slotCount, '0') } });
        QCOMPARE(picture.lines().at(0).mid(24), hours);
        QCOMPARE(picture.lines().at(1).mid(24), QString(slotCount, '.'));
    }

    void namesCannotSpoilTheLines()
    {
        const QDateTime start(QDate(2026, 5, 4), QTime(9, 0));
        const AvailabilityPicture picture(start, start.addSecs(3600),
            { { QStringLiteral("a"), QStringLiteral("Ann\n\u202Eevil\x1b[2J"), QStringLiteral("0x") },
                { QStringLiteral("b"), QString(4096, 'n'), QString(4096, '2') } });
        const QStringList lines = picture.lines();
        QCOMPARE(lines.size(), 5);
        QVERIFY(lines.at(1).endsWith(QStringLiteral("  .?")));
        QVERIFY(!lines.at(1).contains(QChar(0x1b)) && !lines.at(1).contains(QChar(0x202e)));
        QCOMPARE(lines.at(2).size(), 26);
    }
};

FENNEL_REGISTER_TEST(AvailabilityPictureTest)
#include "availabilitypicturetest.moc"
