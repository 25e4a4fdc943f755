// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/foldersyncresponseparser.h"
#include "support/logcollector.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QtTest>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

QByteArray reply(const QVector<WbxmlNode> &changes)
{
    return document(node(FolderHierarchy::FolderSync,
        { node(FolderHierarchy::Status, "1"), node(FolderHierarchy::SyncKey, "k2"),
            node(FolderHierarchy::Changes, changes) }));
}

WbxmlNode folder(Token change, const char *id, const char *name, const char *type)
{
    return node(change,
        { node(FolderHierarchy::ServerId, id), node(FolderHierarchy::ParentId, "0"),
            node(FolderHierarchy::DisplayName, name), node(FolderHierarchy::Type, type) });
}

} // namespace

class FolderSyncResponseParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void foldersAreAddedUpdatedAndDeleted()
    {
        FolderSyncResponseParser parser;
        parser.parse(
            reply({ node(FolderHierarchy::Count, "4"), folder(FolderHierarchy::Add, "1", "Inbox", "2"),
                folder(FolderHierarchy::Add, "2", "Ausgang", "6"),
                folder(FolderHierarchy::Update, "3", "New", "12"),
                node(FolderHierarchy::Delete, { node(FolderHierarchy::ServerId, "4") }) }));
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 1);
        QCOMPARE(parser.syncKey(), QStringLiteral("k2"));
        QCOMPARE(parser.addedItems().size(), 2);
        const EasFolderItem inbox = parser.addedItems().first();
        QCOMPARE(inbox.serverId(), QStringLiteral("1"));
        QCOMPARE(inbox.serverParentId(), QStringLiteral("0"));
        QCOMPARE(inbox.displayName(), QStringLiteral("Inbox"));
        QCOMPARE(inbox.type(), EasFolderItem::DefaultInboxFolder);
        QVERIFY(inbox.changedFields().isEmpty());
        QVERIFY(!inbox.savedInStorage());
        QVERIFY(parser.addedItems().last().isEmail());
        QCOMPARE(parser.updatedItems().size(), 1);
        QCOMPARE(parser.deletedItems(), QStringList { "4" });
    }

    void anUpdateRecordsTheFieldsThatItHolds()
    {
        FolderSyncResponseParser parser;
        parser.parse(reply({ folder(FolderHierarchy::Update, "3", "New", "12"),
            node(FolderHierarchy::Update,
                { node(FolderHierarchy::ServerId, "4"), node(FolderHierarchy::DisplayName, "Only") }) }));
        QCOMPARE(parser.updatedItems().first().changedFields(), (QList<uint> { 0x708, 0x709, 0x707, 0x70A }));
        QCOMPARE(parser.updatedItems().last().changedFields(), (QList<uint> { 0x708, 0x707 }));
        QVERIFY(parser.updatedItems().last().serverParentId().isEmpty());
    }

    void aTypeThatIsNoneLeavesTheFolderUnknown_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("log");
        QTest::addColumn<bool>("recorded");
        QTest::newRow("above the last") << "20"
                                        << "Cannot convert to int: " << true;
        QTest::newRow("that of the hierarchy itself") << "0"
                                                      << "Cannot convert to int: " << true;
        QTest::newRow("negative") << "-2"
                                  << "Cannot convert to int: " << true;
        QTest::newRow("no number") << "Inbox"
                                   << "Wrong type: " << false;
    }

    void aTypeThatIsNoneLeavesTheFolderUnknown()
    {
        QFETCH(QString, type);
        QFETCH(QString, log);
        QFETCH(bool, recorded);
        const LogCollector lines;
        FolderSyncResponseParser parser;
        parser.parse(reply({ folder(FolderHierarchy::Add, "1", "A", qPrintable(type)),
            folder(FolderHierarchy::Update, "2", "B", qPrintable(type)) }));
        QVERIFY(parser.ready());
        QCOMPARE(int(parser.addedItems().first().type()), 18);
        QVERIFY(lines.contains(QtWarningMsg, { log, type }));
        QCOMPARE(parser.updatedItems().first().changedFields().contains(0x70A), recorded);
    }

    void anEmptyReplyIsASuccessWithoutChanges()
    {
        FolderSyncResponseParser parser;
        parser.parse(reply({ folder(FolderHierarchy::Add, "1", "A", "2") }));
        parser.parse({});
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 0);
        QVERIFY(parser.syncKey().isEmpty());
        QVERIFY(parser.addedItems().isEmpty());
    }

    void whatIsNotExpectedIsLoggedAndIgnored()
    {
        const LogCollector log;
        FolderSyncResponseParser parser;
        parser.parse(document(node(FolderHierarchy::FolderSync,
            { node(AirSync::Status, "9"), node(FolderHierarchy::Status, "many"),
                node(FolderHierarchy::Folder, "x"), node(FolderHierarchy::SyncKey, "k") })));
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), -2);
        QCOMPARE(parser.syncKey(), QStringLiteral("k"));
        QVERIFY(log.contains(QtWarningMsg, { "Unexpected element, page: ", "0", ", token: ", "14" }));
        QVERIFY(
            log.contains(QtWarningMsg, { "Unexpected page: ", "0", ", token: ", "14", ", content: ", "9" }));
        QVERIFY(log.contains(QtWarningMsg, { "Unhandled end element, page: ", "0" }));
        QVERIFY(log.contains(QtWarningMsg, { "Cannot convert to int: ", "many" }));
        QVERIFY(log.contains(
            QtWarningMsg, { "Unexpected content: ", "x", ", codePage: ", "7", ", token: ", "6" }));
    }

    void aReplyHoldsNoMoreFoldersThanAMailbox_data()
    {
        QTest::addColumn<int>("folders");
        QTest::addColumn<bool>("ready");
        QTest::newRow("as many as there may be") << 10000 << true;
        QTest::newRow("one more") << 10001 << false;
    }

    void aReplyHoldsNoMoreFoldersThanAMailbox()
    {
        QFETCH(int, folders);
        QFETCH(bool, ready);
        QVector<WbxmlNode> changes { node(
            FolderHierarchy::Update, { node(FolderHierarchy::ServerId, "0") }) };
        for (int i = 1; i < folders; ++i)
            changes.append(
                node(FolderHierarchy::Delete, { node(FolderHierarchy::ServerId, QString::number(i)) }));
        FolderSyncResponseParser parser;
        parser.parse(reply(changes));
        QCOMPARE(parser.ready(), ready);
        parser.parse(reply({}));
        QVERIFY(parser.ready());
    }

    void foreignElementsAreNamedOnceEach()
    {
        const LogCollector log;
        QVector<WbxmlNode> children(1000, node(AirSync::Status, "9"));
        children.append(QVector<WbxmlNode>(1000, node(FolderHierarchy::Folder, "x")));
        FolderSyncResponseParser parser;
        parser.parse(document(node(FolderHierarchy::FolderSync, children)));
        QVERIFY(parser.ready());
        QCOMPARE(log.lines().size(), 4);
    }

    void aReplyOfAnotherCommandIsNotReady()
    {
        const LogCollector log;
        FolderSyncResponseParser parser;
        parser.parse(document(node(FolderHierarchy::FolderCreate, { node(FolderHierarchy::Status, "1") })));
        QVERIFY(!parser.ready());
        parser.parse("no WBXML at all");
        QVERIFY(!parser.ready());
    }
};

FENNEL_REGISTER_TEST(FolderSyncResponseParserTest)
#include "foldersyncresponseparsertest.moc"
