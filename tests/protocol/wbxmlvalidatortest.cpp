// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/wbxml/wbxmlvalidator.h"
#include "support/testmain.h"
#include "support/wbxmlbytes.h"

#include <QtTest>

using namespace WbxmlBytes;

namespace {

QByteArray nested(int depth)
{
    return document("") + QByteArray(depth, '\x45') + QByteArray(depth, '\x01');
}

} // namespace

class WbxmlValidatorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void soundDocumentsPass_data()
    {
        QTest::addColumn<QByteArray>("bytes");

        QTest::newRow("an empty root") << document("05");
        QTest::newRow("a folder sync") << document("00 07 56 52 03 30 00 01 01");
        QTest::newRow("version 1.1") << hex("01 01 6A 00 05");
        QTest::newRow("version 1.2") << hex("02 01 6A 00 05");
        QTest::newRow("a public identifier of another language") << hex("03 A0 01 6A 00 05");
        QTest::newRow("a public identifier in the string table") << hex("03 00 00 6A 03 41 42 00 05");
        QTest::newRow("no charset") << hex("03 01 00 00 05");
        QTest::newRow("US-ASCII") << hex("03 01 03 00 05");
        QTest::newRow("an unknown page") << document("00 FF 45 06 01");
        QTest::newRow("an unknown tag") << document("45 7F 03 41 00 01 01");
        QTest::newRow("an unknown tag by name")
            << documentWithTable(QByteArray("new\0", 4), "45 44 00 01 01");
        QTest::newRow("an unknown empty tag by name")
            << documentWithTable(QByteArray("new\0", 4), "45 04 00 01");
        QTest::newRow("text from the string table")
            << documentWithTable(QByteArray("text\0", 5), "45 83 02 01");
        QTest::newRow("empty strings and data") << document("45 03 00 C3 00 01");
        QTest::newRow("data of any bytes") << document("45 C3 03 00 FF 80 01");
        QTest::newRow("a length in five bytes") << document("45 C3 80 80 80 80 01 FF 01");
        QTest::newRow("characters of every length") << document("45 03 41 C3A4 E282AC EFBFBF F48FBFBF 00 01");
        QTest::newRow("the longest string table")
            << hex("03 01 6A A0 00") + QByteArray(4096, '\0') + hex("05");
        QTest::newRow("the deepest nesting") << nested(WbxmlValidator::MaxDepth);
    }

    void soundDocumentsPass()
    {
        QFETCH(QByteArray, bytes);
        WbxmlValidator validator(bytes);
        QVERIFY2(validator.check(), validator.reason());
        QCOMPARE(validator.documentLength(), bytes.size());
    }

    void othersAreRefusedWithReasonAndOffset_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QByteArray>("reason");
        QTest::addColumn<int>("offset");
        const auto row = [](const char *name, const QByteArray &bytes, const char *reason, int offset) {
            QTest::newRow(name) << bytes << QByteArray(reason) << offset;
        };
        const QByteArray table("\xC3\xA4\0", 3);

        row("nothing", QByteArray(), "document cut short", 0);
        row("version 1.0", hex("00 01 6A 00 05"), "unsupported version", 0);
        row("version 1.4", hex("04 01 6A 00 05"), "unsupported version", 0);
        row("a web page", "<html><body>error</body></html>", "unsupported version", 0);
        row("another charset", hex("03 01 04 00 05"), "unsupported charset", 2);
        row("a charset beyond all numbers", hex("03 01 FFFFFFFFFF 00 05"), "number too large", 2);
        row("no string table length", hex("03 01 6A"), "document cut short", 3);
        row("a string table past the end", hex("03 01 6A 05 41 00 05"),
            "string table longer than the document", 4);
        row("a string table of two gigabytes", hex("03 01 6A 87FFFFFF7F 05"),
            "string table longer than the document", 8);
        row("a string table longer than that of any server",
            hex("03 01 6A A0 01") + QByteArray(4097, '\0') + hex("05"), "string table too long", 5);
        row("a string table without an end", hex("03 01 6A 02 41 42 05"), "string table without an end", 5);
        row("a string table that is not UTF-8", hex("03 01 6A 02 FF 00 05"), "string table is not UTF-8", 4);
        row("a public identifier outside the table", hex("03 00 03 6A 03 41 42 00 05"),
            "public identifier outside the string table", 1);
        row("a header alone", document(""), "document cut short", 4);
        row("an end first", document("01"), "end without an element", 4);
        row("text first", document("03 41 00 05"), "text outside the root element", 4);
        row("table text first", documentWithTable(table, "83 00 05"), "text outside the root element", 7);
        row("data first", document("C3 00 05"), "data outside the root element", 4);
        row("an element that stays open", document("45 46 01"), "document cut short", 7);
        row("a page switch at the end", document("45 00"), "document cut short", 6);
        row("one level too many", nested(WbxmlValidator::MaxDepth + 1), "nested too deeply",
            4 + WbxmlValidator::MaxDepth);
        row("an entity", document("45 02 20 01"), "entity", 5);
        row("the entity that aborts the library", document("45 02 8F FF FF FF 7F 01"), "entity", 5);
        row("attributes", document("85 01 01"), "attributes", 4);
        row("attributes and content", document("45 C6 01 01 01"), "attributes", 5);
        row("a named tag with attributes", documentWithTable(table, "84 00 01 01"), "attributes", 7);
        row("a processing instruction", document("43 05 01 05"), "processing instruction", 4);
        row("an inline extension", document("45 40 41 00 01"), "extension token", 5);
        row("a table extension", document("45 80 00 01"), "extension token", 5);
        row("a one-byte extension", document("45 C0 01"), "extension token", 5);
        row("a string without an end", document("45 03 41 42"), "string without an end", 5);
        row("data past the end", document("45 C3 05 41 01"), "data longer than the document", 5);
        row("data of two gigabytes", document("45 C3 87FFFFFF7F 41 01"), "data longer than the document", 5);
        row("data of more than two gigabytes", document("45 C3 8F FF FF FF 7F 41 01"), "number too large", 6);
        row("a length in six bytes", document("45 C3 80 80 80 80 80 01 FF 01"), "number too large", 6);
        row("table text without a table", document("45 83 00 01"), "reference outside the string table", 5);
        row("table text past the table", documentWithTable(table, "45 83 03 01"),
            "reference outside the string table", 8);
        row("a name past the table", documentWithTable(table, "45 44 03 01 01"),
            "reference outside the string table", 8);
        row("half a character of the table", documentWithTable(table, "45 83 01 01"),
            "reference into the middle of a character", 8);
        row("a stray continuation", document("45 03 41 80 00 01"), "string is not UTF-8", 7);
        row("an overlong character", document("45 03 C0 80 00 01"), "string is not UTF-8", 6);
        row("an overlong long character", document("45 03 E0 80 80 00 01"), "string is not UTF-8", 6);
        row("a surrogate", document("45 03 ED A0 80 00 01"), "string is not UTF-8", 6);
        row("beyond Unicode", document("45 03 F4 90 80 80 00 01"), "string is not UTF-8", 6);
        row("a character cut short", document("45 03 E2 82 00 01"), "string is not UTF-8", 6);
    }

    void othersAreRefusedWithReasonAndOffset()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QByteArray, reason);
        QFETCH(int, offset);
        WbxmlValidator validator(bytes);
        QVERIFY(!validator.check());
        QCOMPARE(QByteArray(validator.reason()), reason);
        QCOMPARE(validator.offset(), offset);
    }

    void everyCutOfADocumentIsRefused()
    {
        const QByteArray whole = documentWithTable(
            QByteArray("new\0", 4), "45 44 00 01 00 07 56 03 30 C3A4 00 01 C3 02 FF FF 83 01 01");
        QVERIFY(WbxmlValidator(whole).check());
        for (int length = 0; length < whole.size(); ++length) {
            const QByteArray cut = whole.left(length);
            WbxmlValidator validator(cut);
            QVERIFY2(!validator.check(), qPrintable(QString::number(length)));
            QVERIFY(validator.offset() <= length);
        }
    }

    void bytesAfterTheRootAreLeftToTheCaller()
    {
        const QByteArray bytes = document("45 06 01") + "\r\n";
        WbxmlValidator validator(bytes);
        QVERIFY(validator.check());
        QCOMPARE(validator.documentLength(), bytes.size() - 2);
    }

    void aStringTableMayNotBlowADocumentUp()
    {
        const QByteArray table = QByteArray(4000, 'x') + '\0';
        const QByteArray start = documentWithTable(table, "45");
        const QByteArray few = start + hex("83 00").repeated(4) + hex("01");
        QVERIFY(WbxmlValidator(few).check());
        const QByteArray texts = start + hex("83 00").repeated(1000) + hex("01");
        WbxmlValidator textValidator(texts);
        QVERIFY(!textValidator.check());
        QCOMPARE(textValidator.reason(), "string table repeated too often");
        const QByteArray names = start + hex("04 00").repeated(1000) + hex("01");
        QVERIFY(!WbxmlValidator(names).check());
    }

    void elementsAreCounted()
    {
        const int most = WbxmlValidator::MaxElements;
        const QByteArray within = document("45") + QByteArray(most - 1, '\x06') + '\x01';
        QVERIFY(WbxmlValidator(within).check());
        const QByteArray beyond = document("45") + QByteArray(most, '\x06') + '\x01';
        WbxmlValidator validator(beyond);
        QVERIFY(!validator.check());
        QCOMPARE(validator.reason(), "too many elements");
    }
};

FENNEL_REGISTER_TEST(WbxmlValidatorTest)
#include "wbxmlvalidatortest.moc"
