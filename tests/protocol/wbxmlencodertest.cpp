// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/wbxml/wbxmlencoder.h"
#include "protocol/wbxml/asprotocolitem.h"
#include "protocol/wbxml/wbxmlparserbase.h"
#include "support/logcollector.h"
#include "support/testmain.h"
#include "support/wbxmlbytes.h"

#include <QtTest>

using namespace Wbxml;
using WbxmlBytes::document;

namespace {

/** Keeps the raw content of one document. */
class ContentKeeper : public WbxmlParserBase
{
public:
    void onContent(uint, uint, const QString &, const QByteArray &raw) override { content.append(raw); }

    QList<QByteArray> content;
};

} // namespace

class WbxmlEncoderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theLastBytesMayComeLater_data()
    {
        QTest::addColumn<int>("size");
        for (const int size : { 1, 127, 128, 300, 16383, 16384, 3000000 })
            QTest::addRow("%d", size) << size;
    }

    void theLastBytesMayComeLater()
    {
        QFETCH(int, size);
        QByteArray bytes(size, '\xc3');
        bytes[size / 2] = '\0';
        const auto document = [](const QByteArray &content) {
            auto encoder = std::make_unique<WbxmlEncoder>();
            encoder->appendElement(Wbxml::ComposeMail::SendMail, true);
            encoder->appendTextElement(Wbxml::ComposeMail::ClientId, QStringLiteral("1"));
            encoder->appendByteArrayElement(Wbxml::ComposeMail::Mime, content);
            return encoder;
        };
        QCOMPARE(document(QByteArray())->encodedWith(bytes), document(bytes)->encoded());
    }

    void withoutABytesElementThereAreNoLastBytes()
    {
        WbxmlEncoder encoder;
        encoder.appendElement(Wbxml::ComposeMail::SendMail, true);
        QVERIFY(encoder.encodedWith("x").isEmpty());
    }

    void nothingAddedEncodesToNothing()
    {
        QCOMPARE(WbxmlEncoder().encoded(), QByteArray());
        WbxmlEncoder cleared;
        cleared.appendElement(AirSync::Sync, true);
        cleared.clear();
        QCOMPARE(cleared.encoded(), QByteArray());
        QVERIFY(cleared.currentNode() == nullptr);
    }

    void folderSyncWithKeyZeroIsThePublishedDocument()
    {
        WbxmlEncoder encoder;
        encoder.appendElement(0x07, 0x16, true);
        encoder.appendTextElement(0x07, 0x12, QStringLiteral("0"), false);
        const QByteArray expected = document("00 07 56 52 03 30 00 01 01");
        QCOMPARE(encoder.encoded(), expected);
        QCOMPARE(encoder.encoded(), expected); // encoding leaves the tree as it is
    }

    void tokensNameTheSameElementsAsNumbers()
    {
        WbxmlEncoder encoder;
        encoder.appendElement(FolderHierarchy::FolderSync, true);
        encoder.appendTextElement(FolderHierarchy::SyncKey, QStringLiteral("0"));
        QCOMPARE(encoder.encoded(), document("00 07 56 52 03 30 00 01 01"));
    }

    void pageZeroNeedsNoSwitchAndEachOtherPageOne()
    {
        WbxmlEncoder encoder;
        encoder.appendElement(AirSync::Sync, true);
        encoder.appendElement(AirSyncBase::BodyPreference);
        encoder.appendElement(AirSync::Options);
        QCOMPARE(encoder.encoded(), document("45 00 11 05 00 00 17 01"));
    }

    void textOutsideAsciiIsUtf8InlineWithoutStringTable()
    {
        WbxmlEncoder encoder;
        encoder.appendElement(AirSync::Sync, true);
        encoder.appendTextElement(AirSync::SyncKey, QString::fromUtf8("ä€\xF0\x9F\x98\x80"));
        encoder.appendTextElement(AirSync::SyncKey, QString::fromUtf8("ä€\xF0\x9F\x98\x80"));
        QCOMPARE(encoder.encoded(),
            document("45 4B 03 C3A4 E282AC F09F9880 00 01 4B 03 C3A4 E282AC F09F9880 00 01 01"));
    }

    void numbersAreDecimalText()
    {
        WbxmlEncoder encoder;
        encoder.appendElement(AirSync::Sync, true);
        encoder.appendIntElement(AirSync::WindowSize, 4294967295U);
        encoder.appendUInt64Element(AirSync::Wait, Q_UINT64_C(18446744073709551615));
        const QByteArray bytes = encoder.encoded();
        QVERIFY(bytes.contains("4294967295"));
        QVERIFY(bytes.contains("18446744073709551615"));
    }

    void whiteSpaceIsKept()
    {
        WbxmlEncoder encoder;
        encoder.appendTextElement(AirSync::Sync, QStringLiteral(" \r\n "));
        QCOMPARE(encoder.encoded(), document("45 03 200D0A20 00 01"));
    }

    void aZeroInTextIsNoWayIntoTheDocument()
    {
        // After the zero comes what would end the element and open another.
        WbxmlEncoder encoder;
        encoder.appendElement(AirSync::Sync, true);
        encoder.appendTextElement(AirSync::SyncKey, QString::fromLatin1("ab\0\x01\x45", 5));
        encoder.appendTextElement(AirSync::Status, QStringLiteral("1"));
        QCOMPARE(encoder.encoded(), document("45 4B 03 6162 00 01 4E 03 31 00 01 01"));
    }

    void bytesTravelUnchangedAsOpaqueData()
    {
        const QByteArray mime = QByteArrayLiteral("a\0b\xFF\r\n\x01");
        WbxmlEncoder encoder;
        encoder.appendElement(ComposeMail::SendMail, true);
        encoder.appendByteArrayElement(ComposeMail::Mime, mime);
        QCOMPARE(encoder.encoded(), document("00 15 45 50 C3 07 610062FF0D0A01 01 01"));
        ContentKeeper parser;
        parser.parse(encoder.encoded());
        QVERIFY(parser.ready());
        QCOMPARE(parser.content, QList<QByteArray> { mime });
    }

    void emptyBytesStillGiveTheElementAndItsNode()
    {
        WbxmlEncoder encoder;
        encoder.appendElement(ComposeMail::SendMail, true);
        WBXMLTreeNode *node = encoder.appendByteArrayElement(ComposeMail::Mime, QByteArray());
        QVERIFY(node != nullptr);
        // A tag that the library marks as binary gets its opaque node of length zero, any other its end
        // alone.
        QCOMPARE(encoder.encoded(), document("00 15 45 50 C3 00 01 01"));
        encoder.resetTree();
        encoder.appendByteArrayElement(AirSync::Sync, QByteArray());
        QCOMPARE(encoder.encoded(), document("45 01"));
    }

    void theCursorFollowsWhenAsked()
    {
        WbxmlEncoder encoder;
        QVERIFY(encoder.currentNode() == nullptr);
        WBXMLTreeNode *root = encoder.appendElement(AirSync::Sync, true);
        QVERIFY(root != nullptr);
        QCOMPARE(encoder.currentNode(), root);
        encoder.appendElement(AirSync::Collections, false);
        QCOMPARE(encoder.currentNode(), root);
        WBXMLTreeNode *inner = encoder.appendElement(AirSync::Collection, true);
        QCOMPARE(encoder.currentNode(), inner);
        encoder.appendElement(AirSync::Options, false, root); // a given parent beats the cursor
        encoder.setCurrentNodeToParent();
        QCOMPARE(encoder.currentNode(), root);
        encoder.setCurrentNode(inner);
        QCOMPARE(encoder.currentNode(), inner);
        QCOMPARE(encoder.encoded(), document("45 1C 0F 17 01"));
    }

    void aSecondRootIsRefusedByTheLibrarysRule()
    {
        WbxmlEncoder encoder;
        encoder.appendElement(AirSync::Sync, true);
        encoder.setCurrentNodeToParent();
        QVERIFY(encoder.currentNode() == nullptr);
        encoder.setCurrentNodeToParent();
        QVERIFY(encoder.currentNode() == nullptr);
        QVERIFY(encoder.appendElement(AirSync::Collections, false) == nullptr);
        QVERIFY(encoder.appendText(QStringLiteral("lost")) == nullptr);
        QCOMPARE(encoder.encoded(), document("05"));
    }

    void anUnknownTagAddsNothingAndIsLogged()
    {
        LogCollector log;
        WbxmlEncoder encoder;
        WBXMLTreeNode *root = encoder.appendElement(AirSync::Sync, true);
        QVERIFY(encoder.appendElement(26, 0x05, true) == nullptr);
        QVERIFY(encoder.appendTextElement(99, 0x05, QStringLiteral("text"), false) == nullptr);
        QVERIFY(encoder.appendByteArrayElement(0x1000, 0x05, QByteArray("bytes"), false) == nullptr);
        QCOMPARE(encoder.currentNode(), root);
        QCOMPARE(encoder.encoded(), document("05"));
        QCOMPARE(log.count(QStringLiteral("Unknown tag, page: ")), 3);
    }

    void resetStartsTheNextDocument()
    {
        WbxmlEncoder encoder;
        encoder.appendElement(AirSync::Sync, true);
        encoder.resetTree();
        QVERIFY(encoder.currentNode() == nullptr);
        encoder.appendElement(Ping::Ping, true);
        QCOMPARE(encoder.encoded(), document("00 0D 05"));
    }

    void anItemWithoutAnEncoderSaysSo()
    {
        LogCollector log;
        WbxmlEncoder encoder;
        AsProtocolItem().encode(encoder);
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("No implementation") }));
        QCOMPARE(encoder.encoded(), QByteArray());
    }

    void xmlNamesTagsThatTheLibraryLacks()
    {
        WbxmlEncoder encoder;
        encoder.appendElement(Find::Find, true);
        encoder.appendTextElement(Find::SearchId, QStringLiteral("abc"));
        const QString xml = WbxmlEncoder::toXml(encoder.encoded());
        QVERIFY2(xml.contains(QStringLiteral("<SearchId>abc</SearchId>")), qPrintable(xml));
    }

    void xmlOfAMalformedOrEmptyDocumentIsEmpty()
    {
        QCOMPARE(WbxmlEncoder::toXml(QByteArray()), QString());
        QCOMPARE(WbxmlEncoder::toXml(QByteArrayLiteral("<html>")), QString());
        QCOMPARE(WbxmlEncoder::toXml(document("45 4B 03 30 00 01")), QString());
        QCOMPARE(WbxmlEncoder::toXml(WbxmlBytes::documentWithTable("x", "04 00")), QString());
    }

    void xmlOfSeveralElementsUnderAnUnknownRootShowsTheFirst()
    {
        const QString xml = WbxmlEncoder::toXml(document("7F 05 45 4B 03 30 00 01 01 01"));
        QVERIFY2(xml.contains(QStringLiteral("Sync")), qPrintable(xml));
        QVERIFY(!xml.contains(QStringLiteral("SyncKey")));
    }

    void xmlOfAWideDocumentStaysLinear()
    {
        constexpr int items = 200000;
        const QByteArray item = WbxmlBytes::hex("4B 03 30 00 01");
        const QByteArray bytes = document("45") + item.repeated(items) + WbxmlBytes::hex("01");
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(WbxmlEncoder::toXml(bytes).count(QStringLiteral("<SyncKey>")), items);
        // Walking the siblings for each of them takes minutes.
        QVERIFY2(timer.elapsed() < 20000, qPrintable(QString::number(timer.elapsed())));
    }
};

FENNEL_REGISTER_TEST(WbxmlEncoderTest)
#include "wbxmlencodertest.moc"
