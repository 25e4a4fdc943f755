// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/itemoperationsresponseparser.h"
#include "support/logcollector.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QtTest>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

QByteArray reply(const QVector<WbxmlNode> &operations)
{
    return document(node(ItemOperations::ItemOperations,
        { node(ItemOperations::Status, "1"), node(ItemOperations::Response, operations) }));
}

} // namespace

class ItemOperationsResponseParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFetchedMessageIsReadWhole()
    {
        ItemOperationsResponseParser parser;
        parser.parse(reply({ node(ItemOperations::Fetch,
            { node(ItemOperations::Status, "1"), node(AirSync::CollectionId, "5"),
                node(AirSync::ServerId, "5:1"), node(AirSync::Class, "Email"),
                node(ItemOperations::Properties,
                    { node(Email::Subject, "s"), node(Email::Read, "0"),
                        node(AirSyncBase::Body,
                            { node(AirSyncBase::Type, "4"), node(AirSyncBase::EstimatedDataSize, "4"),
                                node(AirSyncBase::Truncated, "0"), node(AirSyncBase::Data, "mime"),
                                node(AirSyncBase::Preview, "pre") }),
                        node(AirSyncBase::Attachments,
                            { node(AirSyncBase::Attachment,
                                { node(AirSyncBase::DisplayName, "a"), node(AirSyncBase::FileReference, "r"),
                                    node(AirSyncBase::Method, "1"), node(AirSyncBase::ContentId, "c"),
                                    node(AirSyncBase::EstimatedDataSize, "9"),
                                    node(AirSyncBase::ContentLocation, "l"),
                                    node(AirSyncBase::IsInline, "1") }) }) }) }) }));
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 1);
        QCOMPARE(parser.fetchItems().size(), 1);
        const ItemOperationsFetchItem item = parser.fetchItems().first();
        QCOMPARE(item.status(), 1);
        QCOMPARE(item.collectionId(), QStringLiteral("5"));
        QCOMPARE(item.serverId(), QStringLiteral("5:1"));
        QCOMPARE(item.getClass(), ItemsCommon::Email);
        QVERIFY(item.fileReference().isEmpty());
        const EasEmailItem mail = item.emailItem();
        QCOMPARE(mail.subject(), QStringLiteral("s"));
        QVERIFY(!mail.read());
        QCOMPARE(int(mail.body().type()), 4);
        QCOMPARE(mail.body().data(), QStringLiteral("mime"));
        QCOMPARE(mail.body().preview(), QStringLiteral("pre"));
        QCOMPARE(mail.body().estimatedDataSize(), 4);
        QVERIFY(!mail.body().truncated());
        QCOMPARE(mail.attachments().size(), 1);
        QCOMPARE(mail.attachments().first().fileReference(), QStringLiteral("r"));
        QCOMPARE(mail.attachments().first().estimatedDataSize(), 9);
        QVERIFY(mail.attachments().first().isInline());
    }

    void aFetchedAttachmentHasItsRangeAndData()
    {
        ItemOperationsResponseParser parser;
        parser.parse(reply({ node(ItemOperations::Fetch,
            { node(ItemOperations::Status, "1"), node(AirSyncBase::FileReference, "ref"),
                node(ItemOperations::Properties,
                    { node(AirSyncBase::ContentType, "image/png"), node(ItemOperations::Range, "0-3"),
                        node(ItemOperations::Total, "9"), node(ItemOperations::Data, "QUJD"),
                        node(ItemOperations::Part, "1"), node(ItemOperations::Version, "v") }) }) }));
        const ItemOperationsFetchItem item = parser.fetchItems().first();
        QCOMPARE(item.fileReference(), QStringLiteral("ref"));
        QCOMPARE(item.contentType(), QStringLiteral("image/png"));
        QCOMPARE(item.range(), QStringLiteral("0-3"));
        QCOMPARE(item.total(), 9);
        QCOMPARE(item.data(), QStringLiteral("QUJD"));
        QCOMPARE(item.part(), 1);
        QCOMPARE(item.version(), QStringLiteral("v"));
    }

    void bodiesOutsideOfPropertiesAreReadAsWell()
    {
        ItemOperationsResponseParser parser;
        parser.parse(reply({ node(ItemOperations::Fetch,
            { node(Search::LongId, "long"), node(DocumentLibrary::LinkId, "link"),
                node(AirSyncBase::Body,
                    { node(AirSyncBase::Type, "2"), node(AirSyncBase::Data, "d"),
                        node(ItemOperations::Part, "3") }),
                node(AirSyncBase::BodyPart,
                    { node(AirSyncBase::Status, "176"), node(AirSyncBase::Data, "p") }) }) }));
        const ItemOperationsFetchItem item = parser.fetchItems().first();
        QCOMPARE(item.longId(), QStringLiteral("long"));
        QCOMPARE(item.linkId(), QStringLiteral("link"));
        QCOMPARE(item.part(), 0);
        QCOMPARE(item.emailItem().body().data(), QStringLiteral("d"));
        QCOMPARE(int(item.emailItem().body().type()), 2);
        QCOMPARE(item.emailItem().body().part(), 3);
        QCOMPARE(item.emailItem().bodyPart().data(), QStringLiteral("p"));
        QCOMPARE(int(item.emailItem().bodyPart().status()), 176);
    }

    void eachOperationHasItsOwnStatus()
    {
        ItemOperationsResponseParser parser;
        parser.parse(
            reply({ node(ItemOperations::Move,
                        { node(ItemOperations::Status, "2"), node(ItemOperations::ConversationId, "conv") }),
                node(ItemOperations::EmptyFolderContents,
                    { node(ItemOperations::Status, "3"), node(AirSync::CollectionId, "7") }),
                node(ItemOperations::Fetch, { node(ItemOperations::Status, "6") }) }));
        QCOMPARE(parser.status(), 1);
        QCOMPARE(parser.moveItems().size(), 1);
        QCOMPARE(parser.moveItems().first().status(), 2);
        QCOMPARE(parser.moveItems().first().conversationId(), QStringLiteral("conv"));
        QCOMPARE(parser.emptyFolderItems().size(), 1);
        QCOMPARE(parser.emptyFolderItems().first().status(), 3);
        QCOMPARE(parser.emptyFolderItems().first().collectionId(), QStringLiteral("7"));
        QCOMPARE(parser.fetchItems().first().status(), 6);
        QVERIFY(parser.fetchItems().first().collectionId().isEmpty());
    }

    void messagesDoNotLeakIntoEachOther()
    {
        ItemOperationsResponseParser parser;
        parser.parse(reply({ node(ItemOperations::Fetch,
                                 { node(AirSync::ServerId, "1"),
                                     node(ItemOperations::Properties, { node(Email::Subject, "one") }) }),
            node(ItemOperations::Fetch,
                { node(AirSync::ServerId, "2"), node(ItemOperations::Properties) }) }));
        QCOMPARE(parser.fetchItems().size(), 2);
        QCOMPARE(parser.fetchItems().first().emailItem().subject(), QStringLiteral("one"));
        QVERIFY(parser.fetchItems().last().emailItem().subject().isEmpty());
    }

    void badNumbersAreLoggedAndTheRestIsRead()
    {
        const LogCollector log;
        ItemOperationsResponseParser parser;
        parser.parse(reply({ node(ItemOperations::Fetch,
            { node(ItemOperations::Status, "fine"), node(ItemOperations::Total, "much"),
                node(ItemOperations::Part, "first"),
                node(AirSyncBase::Body,
                    { node(AirSyncBase::Type, "html"), node(AirSyncBase::Truncated, "no") }),
                node(AirSync::ServerId, "1") }) }));
        QVERIFY(parser.ready());
        QCOMPARE(parser.fetchItems().first().serverId(), QStringLiteral("1"));
        QVERIFY(log.contains(QtWarningMsg, { "Cannot convert to int: ", "fine" }));
        QVERIFY(log.contains(QtWarningMsg, { "Cannot convert to int: ", "much" }));
        QVERIFY(log.contains(QtWarningMsg, { "Cannot convert to int: ", "first" }));
        QVERIFY(log.contains(QtWarningMsg, { "Cannot convert to uint: ", "html" }));
        QVERIFY(log.contains(QtWarningMsg, { "Cannot convert to bool: ", "no" }));
    }

    void anEmptyReplyIsNoAnswer()
    {
        ItemOperationsResponseParser parser;
        parser.parse({});
        QVERIFY(!parser.ready());
    }
};

FENNEL_REGISTER_TEST(ItemOperationsResponseParserTest)
#include "itemoperationsresponseparsertest.moc"
