// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/contactsappdataparser.h"
#include "easitems/fields/contactsfields.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "support/logcollector.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QtTest>

using namespace Wbxml;

namespace {

void element(ContactsAppDataParser &parser, Token tag, const QString &text)
{
    parser.onStartElement(tag.page, tag.token);
    parser.onContent(tag.page, tag.token, text, text.toUtf8());
    parser.onEndElement(tag.page, tag.token);
}

} // namespace

class ContactsAppDataParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyTextGoesInAndOutUnderTheSameElement()
    {
        int texts = 0;
        for (const auto &field : ContactsFields::itemFields().fields()) {
            if (!field.take || !field.give)
                continue;
            ++texts;
            const LogCollector log;
            ContactsAppDataParser parser;
            element(parser, field.tag, QStringLiteral("value"));
            QCOMPARE(parser.contactItem().changedFields(), QList<uint> { field.tag.key() });
            WbxmlEncoder encoder;
            encoder.appendElement(AirSync::ApplicationData, true);
            ContactsFields::itemFields().send(
                parser.contactItem(), encoder, ExchangeActiveSync::ProtocolVersion141);
            QCOMPARE(encoder.encoded(),
                WbxmlDocument::document(WbxmlDocument::node(
                    AirSync::ApplicationData, { WbxmlDocument::node(field.tag, "value") })));
            QVERIFY(log.lines().isEmpty());
        }
        QCOMPARE(texts, 58);
    }

    void categoriesAreAListOnlyAtTheirEnd()
    {
        ContactsAppDataParser parser;
        parser.onStartElement(Contacts::Categories.page, Contacts::Categories.token);
        element(parser, Contacts::Category, QStringLiteral("Red"));
        element(parser, Contacts::Category, QStringLiteral("Blue"));
        QVERIFY(parser.contactItem().categories().isEmpty());
        parser.onEndElement(Contacts::Categories.page, Contacts::Categories.token);
        QCOMPARE(parser.contactItem().categories(), (QStringList { "Red", "Blue" }));
    }

    void childrenAreAList()
    {
        ContactsAppDataParser parser;
        parser.onStartElement(Contacts::Children.page, Contacts::Children.token);
        element(parser, Contacts::Child, QStringLiteral("Ann"));
        parser.onEndElement(Contacts::Children.page, Contacts::Children.token);
        QCOMPARE(parser.contactItem().children(), QStringList { "Ann" });
    }

    void emptyCategoriesLeaveAnEmptyList()
    {
        ContactsAppDataParser parser;
        parser.onStartElement(Contacts::Categories.page, Contacts::Categories.token);
        element(parser, Contacts::Category, QStringLiteral("Red"));
        parser.onEndElement(Contacts::Categories.page, Contacts::Categories.token);
        QCOMPARE(parser.contactItem().categories(), QStringList { "Red" });
        parser.onStartElement(Contacts::Categories.page, Contacts::Categories.token);
        parser.onEndElement(Contacts::Categories.page, Contacts::Categories.token);
        QVERIFY(parser.contactItem().categories().isEmpty());
    }

    void aBodyThatWasCutShortSaysSo()
    {
        ContactsAppDataParser parser;
        element(parser, AirSyncBase::Truncated, QStringLiteral("1"));
        QVERIFY(parser.contactItem().body().truncated());
        element(parser, AirSyncBase::Truncated, QStringLiteral("0"));
        QVERIFY(!parser.contactItem().body().truncated());
    }

    void theBodyIsReadFieldByField()
    {
        ContactsAppDataParser parser;
        parser.onStartElement(AirSyncBase::Body.page, AirSyncBase::Body.token);
        element(parser, AirSyncBase::Type, QStringLiteral("1"));
        element(parser, AirSyncBase::Data, QStringLiteral("note"));
        element(parser, AirSyncBase::EstimatedDataSize, QStringLiteral("4"));
        element(parser, AirSyncBase::Truncated, QStringLiteral("0"));
        element(parser, AirSyncBase::Preview, QStringLiteral("pre"));
        element(parser, AirSyncBase::BodyPart, QStringLiteral("2"));
        parser.onEndElement(AirSyncBase::Body.page, AirSyncBase::Body.token);
        element(parser, AirSyncBase::NativeBodyType, QStringLiteral("3"));
        const EasBodyContainer body = parser.contactItem().body();
        QCOMPARE(int(body.type()), 1);
        QCOMPARE(body.data(), QStringLiteral("note"));
        QCOMPARE(body.estimatedDataSize(), 4);
        QVERIFY(!body.truncated());
        QCOMPARE(body.preview(), QStringLiteral("pre"));
        QCOMPARE(body.part(), 2);
        QCOMPARE(parser.contactItem().nativeBodyType(), 3);
    }

    void badNumbersAreLoggedAndKeepWhatWasThere()
    {
        const LogCollector log;
        ContactsAppDataParser parser;
        element(parser, Contacts::WeightedRank, QStringLiteral("5"));
        element(parser, Contacts::WeightedRank, QStringLiteral("high"));
        element(parser, AirSyncBase::Truncated, QStringLiteral("yes"));
        QCOMPARE(parser.contactItem().weightedRank(), 5);
        QVERIFY(!parser.contactItem().body().truncated());
        QVERIFY(log.contains(QtWarningMsg, { "Cannot convert to int:", "high" }));
        QVERIFY(log.contains(QtWarningMsg, { "Cannot convert to bool: ", "yes" }));
    }

    void whatIsUnknownIsLogged()
    {
        const LogCollector log;
        ContactsAppDataParser parser;
        element(parser, Email::Subject, QStringLiteral("s"));
        // Once for the element and once for its text.
        QCOMPARE(log.count(QStringLiteral("unhandled field:")), 2);
        QVERIFY(log.contains(QtWarningMsg, { "unhandled field:", "s", ", codePage", "2", ", token", "20" }));
        QVERIFY(parser.contactItem().changedFields().isEmpty());
    }

    void resetForgetsEverything()
    {
        ContactsAppDataParser parser;
        element(parser, Contacts::FileAs, QStringLiteral("f"));
        element(parser, Contacts::Category, QStringLiteral("Red"));
        parser.reset();
        QVERIFY(parser.contactItem().fileAs().isEmpty());
        parser.onEndElement(Contacts::Categories.page, Contacts::Categories.token);
        QVERIFY(parser.contactItem().categories().isEmpty());
    }
};

FENNEL_REGISTER_TEST(ContactsAppDataParserTest)
#include "contactsappdataparsertest.moc"
