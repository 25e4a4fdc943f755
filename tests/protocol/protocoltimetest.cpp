// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/base/protocoltime.h"

#include "support/testmain.h"

#include <QtTest>

/** Times of clients and of the protocol. */
class ProtocolTimeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void timesTravelInUtc_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("wire");
        QTest::newRow("in UTC") << "2024-05-01T10:00:00Z"
                                << "2024-05-01T10:00:00.000Z";
        QTest::newRow("east of UTC") << "2024-05-01T01:30:00+02:00"
                                     << "2024-04-30T23:30:00.000Z";
        QTest::newRow("with milliseconds") << "2024-05-01T10:00:00.250Z"
                                           << "2024-05-01T10:00:00.250Z";
        QTest::newRow("no time") << "tomorrow" << QString();
        QTest::newRow("no day") << "2024-02-31T10:00:00Z" << QString();
        QTest::newRow("empty") << QString() << QString();
    }

    void timesTravelInUtc()
    {
        QFETCH(QString, text);
        QFETCH(QString, wire);
        QCOMPARE(ProtocolTime::toWire(ProtocolTime::fromClient(text)), wire);
    }

    void aTimeWithoutAZoneIsLocal()
    {
        const QByteArray zone = qgetenv("TZ");
        qputenv("TZ", "Asia/Tokyo");
        const QString wire =
            ProtocolTime::toWire(ProtocolTime::fromClient(QStringLiteral("2024-05-01T10:00:00")));
        zone.isNull() ? qunsetenv("TZ") : qputenv("TZ", zone);
        QCOMPARE(wire, QStringLiteral("2024-05-01T01:00:00.000Z"));
    }

    void aSpanEndsAfterItsStart()
    {
        const QDateTime start = ProtocolTime::fromClient(QStringLiteral("2024-05-01T10:00:00Z"));
        QVERIFY(ProtocolTime::isSpan(start, start.addSecs(1)));
        QVERIFY(!ProtocolTime::isSpan(start, start));
        QVERIFY(!ProtocolTime::isSpan(start, start.addSecs(-1)));
        QVERIFY(!ProtocolTime::isSpan(start, QDateTime()));
        QVERIFY(!ProtocolTime::isSpan(QDateTime(), start));
    }
};

FENNEL_REGISTER_TEST(ProtocolTimeTest)
#include "protocoltimetest.moc"
