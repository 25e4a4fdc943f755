// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/wbxml/wbxmlparserbase.h"
#include "support/logcollector.h"
#include "support/testmain.h"
#include "support/wbxmlbytes.h"

#include <QtTest>

using namespace WbxmlBytes;

namespace {

/** Writes the events down, one text each. */
class Recorder : public WbxmlParserBase
{
public:
    void onStartElement(uint codePage, uint token) override
    {
        WbxmlParserBase::onStartElement(codePage, token);
        events.append(QStringLiteral("<%1/%2").arg(codePage).arg(token));
    }

    void onEndElement(uint codePage, uint token) override
    {
        WbxmlParserBase::onEndElement(codePage, token);
        events.append(QStringLiteral(">%1/%2").arg(codePage).arg(token));
    }

    void onContent(uint codePage, uint token, const QString &text, const QByteArray &raw) override
    {
        Q_UNUSED(codePage)
        Q_UNUSED(token)
        events.append(text);
        lastRaw = raw;
    }

    QString story() const { return events.join(QLatin1Char(' ')); }

    QStringList events;
    QByteArray lastRaw;
};

} // namespace

class WbxmlParserBaseTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aDocumentArrivesAsEvents()
    {
        Recorder parser;
        parser.parse(document("00 07 56 4C 03 31 00 01 52 03 C3A4 00 01 01"));
        QVERIFY(parser.ready());
        QCOMPARE(parser.story(), QString::fromUtf8("<7/22 <7/12 1 >7/12 <7/18 ä >7/18 >7/22"));
    }

    void anEmptyElementHasNoContent()
    {
        Recorder parser;
        parser.parse(document("45 0B 4B 01 4B 03 00 C3 00 01 01"));
        QVERIFY(parser.ready());
        QCOMPARE(parser.story(), QStringLiteral("<0/5 <0/11 >0/11 <0/11 >0/11 <0/11 >0/11 >0/5"));
    }

    void textInPiecesArrivesAsOne()
    {
        Recorder parser;
        parser.parse(
            documentWithTable(QByteArray("tail\0", 5), "45 4B 03 61 00 C3 02 62 63 03 64 00 83 00 01 01"));
        QVERIFY(parser.ready());
        QCOMPARE(parser.story(), QStringLiteral("<0/5 <0/11 abcdtail >0/11 >0/5"));
    }

    void opaqueBytesStayAsTheyAre()
    {
        Recorder parser;
        parser.parse(document("00 16 49 C3 04 00 FF 80 01 01"));
        QVERIFY(parser.ready());
        QCOMPARE(parser.lastRaw, hex("00 FF 80 01"));
    }

    void anUnknownTagIsDroppedWithoutTouchingTheStack_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("story");

        QTest::newRow("by name, empty")
            << documentWithTable(QByteArray("new\0", 4), "45 04 00 4B 03 31 00 01 01")
            << QStringLiteral("<0/5 <0/11 1 >0/11 >0/5");
        QTest::newRow("by name, around an element") << documentWithTable(QByteArray("new\0", 4),
            "45 44 00 0B 01 01") << QStringLiteral("<0/5 <0/11 >0/11 >0/5");
        QTest::newRow("by name, with text") << documentWithTable(QByteArray("new\0", 4),
            "45 44 00 03 31 00 01 01") << QStringLiteral("<0/5 1 >0/5");
        QTest::newRow("by number") << document("45 7F 0B 01 01") << QStringLiteral("<0/5 <0/11 >0/11 >0/5");
        QTest::newRow("on an unknown page")
            << document("45 00 C8 45 01 00 00 0B 01") << QStringLiteral("<0/5 <0/11 >0/11 >0/5");
    }

    void anUnknownTagIsDroppedWithoutTouchingTheStack()
    {
        QFETCH(QByteArray, bytes);
        LogCollector log;
        Recorder parser;
        parser.parse(bytes);
        QVERIFY(parser.ready());
        QTEST(parser.story(), "story");
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("Unsupported name type, literal: ") }));
    }

    void manyUnknownTagsAreOneLineOfTheLog()
    {
        LogCollector log;
        Recorder parser;
        parser.parse(document("45") + QByteArray(1000, '\x3F') + QByteArray(1, '\x01'));
        QVERIFY(parser.ready());
        QCOMPARE(log.lines().size(), 1);
        parser.parse(document("45 3F 01"));
        QCOMPARE(log.lines().size(), 2);
    }

    void tagsThatTheLibraryLacksArriveAsNumbers()
    {
        LogCollector log;
        Recorder parser;
        parser.parse(document("00 19 45 46 03 78 00 01 01"));
        QVERIFY(parser.ready());
        QCOMPARE(parser.story(), QStringLiteral("<25/5 <25/6 x >25/6 >25/5"));
        QVERIFY(log.lines().isEmpty());
    }

    void anEmptyBodyIsReady()
    {
        Recorder parser;
        parser.parse(QByteArray());
        QVERIFY(parser.ready());
        QVERIFY(parser.events.isEmpty());
    }

    void aTruncatedDocumentIsNeverReady()
    {
        const QByteArray whole = document("00 07 56 4C 03 31 00 01 52 03 30 00 01 01");
        for (int length = 1; length < whole.size(); ++length) {
            LogCollector log;
            Recorder parser;
            parser.parse(whole.left(length));
            QVERIFY2(!parser.ready(), qPrintable(QString::number(length)));
            QVERIFY(parser.events.isEmpty());
        }
    }

    void aRefusalIsLoggedWithItsOffset()
    {
        LogCollector log;
        Recorder parser;
        parser.parse(document("45 02 8F FF FF FF 7F 01"));
        QVERIFY(!parser.ready());
        QVERIFY(log.contains(QtCriticalMsg,
            { QStringLiteral("Malformed WBXML document:"), QStringLiteral("entity"),
                QStringLiteral("at offset"), QStringLiteral("5") }));
    }

    void deepNestingIsRefusedAndNotWalked()
    {
        LogCollector log;
        Recorder parser;
        parser.parse(document("") + QByteArray(100000, '\x45') + QByteArray(100000, '\x01'));
        QVERIFY(!parser.ready());
        QVERIFY(parser.events.isEmpty());
    }

    void bytesAfterTheDocumentAreLoggedAndIgnored()
    {
        LogCollector log;
        Recorder parser;
        parser.parse(document("45 0B 01") + "\r\n");
        QVERIFY(parser.ready());
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Bytes after the end"), QStringLiteral("2") }));
    }

    void aParserThatIsUsedAgainForgetsItsLastResult()
    {
        LogCollector log;
        Recorder parser;
        parser.parse(document("05"));
        QVERIFY(parser.ready());
        parser.parse(document("45"));
        QVERIFY(!parser.ready());
        parser.parse(document("05"));
        QVERIFY(parser.ready());
    }
};

FENNEL_REGISTER_TEST(WbxmlParserBaseTest)
#include "wbxmlparserbasetest.moc"
