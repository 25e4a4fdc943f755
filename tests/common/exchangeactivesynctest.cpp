// SPDX-License-Identifier: LGPL-2.1-or-later
#include "common/exchangeactivesync.h"
#include "support/testmain.h"

#include <QtTest>

using namespace ExchangeActiveSync;

class ExchangeActiveSyncTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theServiceHasItsName()
    {
        QCOMPARE(EAS_DBUS_SERVICE_NAME, QStringLiteral("org.fennelos.easdaemon"));
        QVERIFY(EAS_DBUS_PATH_NAME.startsWith(QLatin1Char('/')));
        QVERIFY(EAS_DBUS_PEER_PATH_NAME.startsWith(QLatin1Char('/')));
        QVERIFY(EAS_DBUS_PEER_ADDRESS.startsWith(QStringLiteral("unix:path=/")));
    }

    void timesAreReadInTheirForms_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QDateTime>("expected");
        const QDateTime morning(QDate(2024, 5, 1), QTime(10, 0, 7), Qt::UTC);

        QTest::newRow("long") << QStringLiteral("2024-05-01T10:00:07.250Z") << morning.addMSecs(250);
        QTest::newRow("without milliseconds") << QStringLiteral("2024-05-01T10:00:07Z") << morning;
        QTest::newRow("one digit of a second")
            << QStringLiteral("2024-05-01T10:00:07.2Z") << morning.addMSecs(200);
        QTest::newRow("microseconds")
            << QStringLiteral("2024-05-01T10:00:07.250999Z") << morning.addMSecs(250);
        QTest::newRow("compact") << QStringLiteral("20240501T100007Z") << morning;
        QTest::newRow("compact with milliseconds")
            << QStringLiteral("20240501T100007250Z") << morning.addMSecs(250);
        QTest::newRow("without an offset") << QStringLiteral("20240501T100007") << morning;
        QTest::newRow("east") << QStringLiteral("2024-05-01T12:30:07+02:30") << morning;
        QTest::newRow("west") << QStringLiteral("20240501T053007-0430") << morning;
        QTest::newRow("a date") << QStringLiteral("2024-05-01")
                                << QDateTime(QDate(2024, 5, 1), QTime(0, 0), Qt::UTC);
        QTest::newRow("a leap day") << QStringLiteral("20240229")
                                    << QDateTime(QDate(2024, 2, 29), QTime(0, 0), Qt::UTC);
    }

    void timesAreReadInTheirForms()
    {
        QFETCH(QString, text);
        QFETCH(QDateTime, expected);
        QCOMPARE(dateTimeFromString(text, nullptr), expected);
        QCOMPARE(dateTimeFromString(text, nullptr).timeSpec(), Qt::UTC);
        const QTimeZone zone("Europe/Berlin");
        const QDateTime there = dateTimeFromString(text, &zone);
        QCOMPARE(there, expected);
        QCOMPARE(there.timeZone(), zone);
    }

    void othersAreInvalid()
    {
        for (const char *text : { "", "x", "2024-13-01T10:00:00Z", "2023-02-29T10:00:00Z",
                 "2024-05-01T25:00:00Z", "2024-05-01T10:00:00ZZ", " 2024-05-01T10:00:00Z",
                 "2024-05-01T10:00:00Z\n", "2024-05-01T10Z", "20240501T1000072Z", "00000000T000000Z" })
            QVERIFY2(!dateTimeFromString(QString::fromLatin1(text), nullptr).isValid(), text);
    }

    void timesAreWrittenCompactInUtc()
    {
        const QDateTime time(QDate(2024, 7, 1), QTime(1, 2, 3, 999), QTimeZone("Europe/Berlin"));
        QCOMPARE(dateTimeToString(time), QStringLiteral("20240630T230203Z"));
        QCOMPARE(dateTimeToString(QDateTime()), QString());
        QCOMPARE(dateTimeFromString(dateTimeToString(time), nullptr), time.addMSecs(-999));
    }

    void aForeignCalendarsUidIsTakenOutOfTheIdentifier()
    {
        QCOMPARE(
            getCalendarUidFromGlobalObjId("BAAAAIIA4AB0xbcQGoLgCAAAAAAAAAAAAAAAAAAAAAAAAAAAMwAAAHZDYWwtVWlkAQ"
                                          "AAAHs4MTQxMkQzQy0yQTI0LTRFOUQtQjIwRS0xMUY3QkJFOTI3OTl9AA=="),
            QStringLiteral("{81412D3C-2A24-4E9D-B20E-11F7BBE92799}"));
    }

    void anIdentifierOfTheServersOwnLosesTheInstancesDate()
    {
        QByteArray id = QByteArray::fromHex("040000008200E00074C5B7101A82E00807E5061D");
        id += QByteArray::fromHex("C0B2A1908070605000000000000000000000000010000000");
        QCOMPARE(id.size(), 44);
        id = id.left(40);
        id += QByteArray::fromHex("00112233445566778899AABBCCDDEEFF");
        const QString uid = getCalendarUidFromGlobalObjId(id.toBase64());
        QCOMPARE(uid.left(40), QStringLiteral("040000008200E00074C5B7101A82E00800000000"));
        QCOMPARE(uid.mid(40), QString::fromLatin1(id.mid(20).toHex().toUpper()));
    }

    void whatIsNoIdentifierGivesNoUid()
    {
        QCOMPARE(getCalendarUidFromGlobalObjId(QByteArray()), QString());
        QCOMPARE(getCalendarUidFromGlobalObjId("not base64!"), QString());
        QCOMPARE(getCalendarUidFromGlobalObjId(QByteArray(39, 'x').toBase64()), QString());
        // A length that lies does not read past the end.
        const QByteArray lying = QByteArray(36, '\0') + QByteArray(4, '\xFF') + "vCal-Uid";
        QCOMPARE(getCalendarUidFromGlobalObjId(lying.toBase64()), QString());
    }

    void contentTypesAreSplit_data()
    {
        QTest::addColumn<QString>("contentType");
        QTest::addColumn<QString>("mediaType");
        QTest::addColumn<QString>("name");

        QTest::newRow("plain") << QStringLiteral("image/png") << QStringLiteral("image/png") << QString();
        QTest::newRow("name") << QStringLiteral("image/png; name=a.png") << QStringLiteral("image/png")
                              << QStringLiteral("a.png");
        QTest::newRow("quoted") << QStringLiteral("image/png;charset=x; NAME = \"a; b.png\"")
                                << QStringLiteral("image/png") << QStringLiteral("a; b.png");
        QTest::newRow("nothing") << QString() << QString() << QString();
        QTest::newRow("parameters alone") << QStringLiteral("; name=x") << QString() << QStringLiteral("x");
    }

    void contentTypesAreSplit()
    {
        QFETCH(QString, contentType);
        QString mediaType = QStringLiteral("old");
        QString name = QStringLiteral("old");
        getTypeParts(contentType, &mediaType, &name);
        QTEST(mediaType, "mediaType");
        QTEST(name, "name");
        getTypeParts(contentType, nullptr, nullptr);
    }
};

FENNEL_REGISTER_TEST(ExchangeActiveSyncTest)
#include "exchangeactivesynctest.moc"
