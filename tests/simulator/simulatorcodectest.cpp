// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocolfiles.h"
#include "simulator/protocolversion.h"
#include "simulator/wbxmlcodec.h"
#include "simulator/wbxmltokens.h"
#include "support/testmain.h"

#include <QtTest>

using namespace Simulator;

/** @short The simulator's own codec: the token table, round trips, what it refuses, documents as XML. */
class SimulatorCodecTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theTableHoldsEachPublishedToken()
    {
        QFile file(publishedTokenTable());
        if (!file.open(QIODevice::ReadOnly))
            QSKIP("the published token table is not here: set FENNEL_PROTOCOL_SCHEMAS to the folder of the "
                  "schemas");
        file.readLine();
        int rows = 0;
        while (!file.atEnd()) {
            const QList<QByteArray> row = file.readLine().trimmed().split('\t');
            const quint8 page = quint8(row.at(0).toUInt());
            const QString name = QString::fromLatin1(row.at(1) + ':' + row.at(3));
            const auto token = WbxmlTokens::find(name);
            QVERIFY2(token, qPrintable(name));
            QCOMPARE(token->page, page);
            QCOMPARE(token->token, quint8(row.at(2).toUInt(nullptr, 16)));
            QCOMPARE(WbxmlTokens::name(page, token->token), name);
            QCOMPARE(
                WbxmlTokens::existsAt(*token, Version120), row.at(4) == "All" || row.at(4).contains("12.0"));
            QCOMPARE(
                WbxmlTokens::existsAt(*token, Version161), row.at(4) == "All" || row.at(4).contains("16.1"));
            ++rows;
        }
        QCOMPARE(rows, int(WbxmlTokens::end() - WbxmlTokens::begin()));
    }

    void eachTokenSurvivesARoundTrip()
    {
        QCOMPARE(int(WbxmlTokens::end() - WbxmlTokens::begin()), 586);
        for (const WbxmlToken *entry = WbxmlTokens::begin(); entry != WbxmlTokens::end(); ++entry) {
            const WbxmlToken &token = *entry;
            const QString name = WbxmlTokens::name(token.page, token.token);
            WbxmlNode root(QStringLiteral("AirSync:Sync"));
            root.append(name);
            root.append(name, QStringLiteral("text ä €"));
            root.append(WbxmlNode::opaque(name, QByteArray("\0\1\xFF", 3)));
            root.append(WbxmlNode(name, { WbxmlNode(QStringLiteral("Email:Read"), QStringLiteral("1")) }));
            const WbxmlCodec::Decoded decoded = WbxmlCodec::decode(WbxmlCodec::encode(root));
            QCOMPARE(decoded.error, QString());
            QVERIFY2(decoded.root == root, qPrintable(name));
            QVERIFY(decoded.root.children().at(2).isOpaque());
        }
    }

    void theBytesAreThoseOfThePublishedFormat()
    {
        const WbxmlNode document =
            WbxmlNode::fromXml(QStringLiteral("<Sync xmlns='AirSync'><Status>3</Status><MoreAvailable/><Body "
                                              "xmlns='AirSyncBase'><Type>1</Type></Body>"
                                              "</Sync>"));
        QCOMPARE(WbxmlCodec::encode(document).toHex(),
            QByteArray("03016a00"
                       "45"
                       "4e033300"
                       "01"
                       "14"
                       "0011"
                       "4a"
                       "46033100"
                       "01"
                       "01"
                       "01"));
    }

    void malformedBytesAreRefusedWithTheReason_data()
    {
        QTest::addColumn<QByteArray>("hex");
        QTest::newRow("nothing at all") << QByteArray("");
        QTest::newRow("another version") << QByteArray("02016a0005");
        QTest::newRow("another charset") << QByteArray("0301040005");
        QTest::newRow("no root") << QByteArray("03016a00");
        QTest::newRow("an element that is not closed") << QByteArray("03016a0045");
        QTest::newRow("a string without end") << QByteArray("03016a00450341");
        QTest::newRow("an opaque length beyond the end") << QByteArray("03016a0045c3050101");
        QTest::newRow("a token that does not exist") << QByteArray("03016a003f");
        QTest::newRow("attributes") << QByteArray("03016a008501");
        QTest::newRow("bytes after the end") << QByteArray("03016a000505");
        QTest::newRow("a string table reference out of bounds") << QByteArray("03016a0045838f7f01");
    }

    void malformedBytesAreRefusedWithTheReason()
    {
        QFETCH(QByteArray, hex);
        const WbxmlCodec::Decoded decoded = WbxmlCodec::decode(QByteArray::fromHex(hex));
        QVERIFY(decoded.root.isNull());
        QVERIFY(decoded.error.contains(QLatin1String("at byte")));
    }

    void anXmlTextGivesTheDocumentThatItCameFrom()
    {
        WbxmlNode root(QStringLiteral("AirSync:Sync"));
        root.append(QStringLiteral("Status"), 1);
        root.append(WbxmlNode::opaque(QStringLiteral("Email2:ConversationId"), QByteArray("\0\xFE", 2)));
        root.append(QStringLiteral("Email:Subject"), QStringLiteral("a < b & \"ü\""));
        QString error;
        QVERIFY(WbxmlNode::fromXml(root.toXml(), &error) == root);
        QCOMPARE(error, QString());
        QVERIFY(WbxmlNode::fromXml(QStringLiteral("<Sync xmlns='AirSync'>"), &error).isNull());
        QVERIFY(!error.isEmpty());
    }

    void pathsFindElementsAcrossNameSpaces()
    {
        const WbxmlNode root = WbxmlNode::fromXml(QStringLiteral(
            "<Sync xmlns='AirSync'><Collections><Collection><Status>1</Status></Collection><Collection>"
            "<Status>3</Status><Body "
            "xmlns='AirSyncBase'><Type>2</Type></Body></Collection></Collections></Sync>"));
        QCOMPARE(root.all(QStringLiteral("Collections/Collection/Status")).size(), 2);
        QCOMPARE(
            root.text(QStringLiteral("Collections/Collection/AirSyncBase:Body/Type")), QStringLiteral("2"));
        QVERIFY(!root.has(QStringLiteral("Collections/Body")));
    }
};

FENNEL_REGISTER_TEST(SimulatorCodecTest)
#include "simulatorcodectest.moc"
