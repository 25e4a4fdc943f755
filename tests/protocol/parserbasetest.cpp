// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/wbxml/parserbase.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QtTest>

namespace {

class Parser : public ParserBase
{
public:
    int state() const { return mState; }
    int depth() const { return mElementStack.size(); }
    void setState(int state) { mState = static_cast<State>(state); }
};

class Recorder : public Parser
{
public:
    void onContent(uint codePage, uint token, const QString &text, const QByteArray &raw) override
    {
        records.append(
            QStringLiteral("%1/%2 %3 %4").arg(codePage).arg(token).arg(text, QString::fromLatin1(raw)));
    }

    QStringList records;
};

} // namespace

class ParserBaseTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsUnready()
    {
        Parser parser;
        QCOMPARE(parser.state(), 0);
        QVERIFY(!parser.ready());
    }

    void nothingToParseIsAFinishedDocument()
    {
        LogCollector log;
        Parser parser;
        parser.setState(3);
        parser.parse(QByteArray());
        QCOMPARE(parser.state(), 4);
        QVERIFY(parser.ready());
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("Nothing to parse") }));
    }

    void aDocumentGoesThroughItsStates()
    {
        Recorder parser;
        parser.onStartDocument();
        QCOMPARE(parser.state(), 1);
        parser.onStartElement(7, 0x16);
        QCOMPARE(parser.state(), 2);
        parser.onStartElement(7, 0x12);
        QCOMPARE(parser.depth(), 2);
        parser.onCharacters(QStringLiteral("12"), QByteArrayLiteral("12"));
        parser.onEndElement(7, 0x12);
        QCOMPARE(parser.state(), 2);
        parser.onEndElement(7, 0x16);
        QCOMPARE(parser.state(), 1);
        parser.onEndDocument();
        QCOMPARE(parser.state(), 4);
        QVERIFY(parser.ready());
        QCOMPARE(parser.records, QStringList { QStringLiteral("7/18 12 12") });
    }

    void eventsInWrongStatesFail_data()
    {
        QTest::addColumn<int>("state");
        QTest::addColumn<QString>("event");
        QTest::addColumn<int>("after");
        QTest::addColumn<QString>("text");

        for (int state : { 0, 2, 3, 4 })
            QTest::addRow("end of document in %d", state)
                << state << QStringLiteral("endDocument") << 3 << QStringLiteral("Unexpected state: ");
        for (int state : { 0, 3, 4 }) {
            QTest::addRow("start of element in %d", state)
                << state << QStringLiteral("start") << 3 << QStringLiteral("Unexpected state: ");
            QTest::addRow("end of element in %d", state)
                << state << QStringLiteral("end") << 3 << QStringLiteral("Incorrect state: ");
        }
        for (int state : { 0, 1, 3, 4 })
            QTest::addRow("characters in %d", state)
                << state << QStringLiteral("characters") << state << QStringLiteral("Wrong state: ");
        QTest::newRow("characters without an element")
            << 2 << QStringLiteral("characters") << 2 << QStringLiteral("Empty element stack");
        QTest::newRow("end of element at top level")
            << 1 << QStringLiteral("end") << 3 << QStringLiteral("Top element does not match");
    }

    void eventsInWrongStatesFail()
    {
        QFETCH(int, state);
        QFETCH(QString, event);
        QFETCH(int, after);
        QFETCH(QString, text);
        LogCollector log;
        Parser parser;
        parser.setState(state);
        if (event == QLatin1String("endDocument"))
            parser.onEndDocument();
        else if (event == QLatin1String("start"))
            parser.onStartElement(0, 5);
        else if (event == QLatin1String("end"))
            parser.onEndElement(0, 5);
        else
            parser.onCharacters(QStringLiteral("x"), QByteArrayLiteral("x"));
        QCOMPARE(parser.state(), after);
        QCOMPARE(parser.depth(), 0);
        QVERIFY(log.contains(QtCriticalMsg, { text }));
        QVERIFY(!parser.ready() || state == 4);
    }

    void anEndThatDoesNotMatchFailsTheWholeDocument()
    {
        LogCollector log;
        Parser parser;
        parser.onStartDocument();
        parser.onStartElement(0, 5);
        parser.onStartElement(0, 6);
        parser.onEndElement(1, 6);
        QCOMPARE(parser.state(), 3);
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("Top element does not match") }));
        parser.onEndElement(0, 6);
        parser.onEndElement(0, 5);
        parser.onEndDocument();
        QCOMPARE(parser.state(), 3);
        QVERIFY(!parser.ready());
    }

    void contentAndInstructionsThatNobodyTakesAreLogged()
    {
        LogCollector log;
        Parser parser;
        parser.onContent(2, 21, QStringLiteral("text"), QByteArrayLiteral("text"));
        parser.onProcessingInstruction(QStringLiteral("one"), QStringLiteral("two"));
        QVERIFY(log.contains(QtInfoMsg,
            { QStringLiteral("Unhandled content, page: "), QStringLiteral("2"), QStringLiteral(", token: "),
                QStringLiteral("21"), QStringLiteral(", content: "), QStringLiteral("text") }));
        QVERIFY(log.contains(QtInfoMsg,
            { QStringLiteral("Unhandled PI: target: "), QStringLiteral("one"), QStringLiteral(", data: "),
                QStringLiteral("two") }));
    }

    void numbersAreWrittenOnlyWhenTheyConvert()
    {
        int number = 7;
        QVERIFY(ParserBase::stringToInt(QStringLiteral("-12"), number, 10));
        QCOMPARE(number, -12);
        for (const char *text : { "", "12x", "2147483648", "1.5", "0x10" }) {
            QVERIFY(!ParserBase::stringToInt(QString::fromLatin1(text), number, 10));
            QCOMPARE(number, -12);
        }
        uint unsignedNumber = 7;
        QVERIFY(ParserBase::stringToUint(QStringLiteral("ff"), unsignedNumber, 16));
        QCOMPARE(unsignedNumber, 255U);
        QVERIFY(!ParserBase::stringToUint(QStringLiteral("-1"), unsignedNumber, 10));
        QVERIFY(!ParserBase::stringToUint(QStringLiteral("4294967296"), unsignedNumber, 10));
        QCOMPARE(unsignedNumber, 255U);
    }

    void aStatusIsOneOfTheProtocol_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("status");
        QTest::newRow("the lowest") << "0" << 0;
        QTest::newRow("success") << "1" << 1;
        QTest::newRow("the highest") << "999" << 999;
        QTest::newRow("beyond the protocol") << "1000" << -2;
        QTest::newRow("a cancelled exchange of the transport") << "10005" << -2;
        QTest::newRow("an unavailable server of the transport") << "10403" << -2;
        QTest::newRow("an outcome of the engine") << "-7" << -2;
        QTest::newRow("the same as an unsigned number") << "4294967292" << -2;
        QTest::newRow("a word") << "fine" << -2;
        QTest::newRow("nothing") << "" << -2;
    }

    void aStatusIsOneOfTheProtocol()
    {
        QFETCH(QString, text);
        QTEST(ParserBase::toStatus(text), "status");
    }
};

FENNEL_REGISTER_TEST(ParserBaseTest)
#include "parserbasetest.moc"
