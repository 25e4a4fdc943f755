// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/algorithms/syncresponseparser.h"
#include "application/mapping/easdatabase.h"
#include "support/hiddentable.h"
#include "support/logcollector.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QLoggingCategory>
#include <QtTest>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

constexpr EasAccountId Account = 1;

WbxmlNode collection(const QVector<WbxmlNode> &content)
{
    QVector<WbxmlNode> children { node(AirSync::SyncKey, "7"), node(AirSync::CollectionId, "5"),
        node(AirSync::Status, "1") };
    children += content;
    return node(AirSync::Collection, children);
}

QByteArray reply(const QVector<WbxmlNode> &collections)
{
    return document(node(AirSync::Sync, { node(AirSync::Collections, collections) }));
}

QByteArray replyWithCommands(const QVector<WbxmlNode> &commands)
{
    return reply({ collection({ node(AirSync::Commands, commands) }) });
}

WbxmlNode item(Token command, const char *serverId, const QVector<WbxmlNode> &data)
{
    return node(command, { node(AirSync::ServerId, serverId), node(AirSync::ApplicationData, data) });
}

WbxmlNode body(const char *text)
{
    return node(AirSyncBase::Body, { node(AirSyncBase::Type, "1"), node(AirSyncBase::Data, text) });
}

} // namespace

class SyncResponseParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QLoggingCategory::setFilterRules(QStringLiteral("Fennel.eas=true"));
        EasDatabase::initializeInstance(nullptr, nullptr, nullptr);
    }

    void init() { mLog.reset(new LogCollector); }
    void cleanup() { mLog.reset(); }

    void cleanupTestCase()
    {
        EasDatabase::releaseInstance();
        QLoggingCategory::setFilterRules(QString());
    }

    void anEmptyReplyIsASuccessWithoutCollections()
    {
        SyncResponseParser parser;
        parser.parse({});
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 0U);
        QVERIFY(parser.collections().isEmpty());
    }

    void aNewReplyForgetsTheOneBefore()
    {
        SyncResponseParser parser;
        parser.parse(
            document(node(AirSync::Sync, { node(AirSync::Status, "15"), node(AirSync::Limit, "100") })));
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 15U);
        QCOMPARE(parser.limit(), 100);
        parser.parse({});
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 0U);
        QCOMPARE(parser.limit(), 0);
    }

    void addedMailsCarryTheirIdentifiersAndFields()
    {
        SyncResponseParser parser;
        parser.parse(replyWithCommands({
            item(AirSync::Add, "5:1", { node(Email::Subject, "one"), node(Email::Read, "0"), body("text") }),
            item(AirSync::Add, "5:2", { node(Email::Subject, "two") }),
        }));
        QVERIFY(parser.ready());
        QCOMPARE(parser.collections().size(), 1);
        const SyncCollection result = parser.collections().first();
        QCOMPARE(result.id(), QStringLiteral("5"));
        QCOMPARE(result.syncKey(), QStringLiteral("7"));
        QCOMPARE(result.status(), 1U);
        QVERIFY(!result.moreAvailable());
        QCOMPARE(result.addedEmails().size(), 2);
        const EasEmailItem first = result.addedEmails().first();
        QCOMPARE(first.serverId(), QStringLiteral("5:1"));
        QCOMPARE(first.collectionId(), QStringLiteral("5"));
        QCOMPARE(first.subject(), QStringLiteral("one"));
        QVERIFY(!first.read());
        QCOMPARE(first.body().data(), QStringLiteral("text"));
        QVERIFY(first.changedFields().isEmpty());
        QVERIFY(result.addedEmails().last().read());
        QVERIFY(result.addedEmails().last().body().isEmpty());
    }

    void aChangeThatHoldsOnlyReadRecordsItAndTheIdentifiers()
    {
        SyncResponseParser parser;
        parser.parse(replyWithCommands({ item(AirSync::Change, "5:1", { node(Email::Read, "1") }) }));
        const EasEmailItem changed = parser.collections().first().changedEmails().first();
        QCOMPARE(changed.changedFields(), (QList<uint> { 0x215, 18, 13 }));
    }

    void anItemBehindAChangeIsNoChange()
    {
        SyncResponseParser parser;
        parser.parse(replyWithCommands({ item(AirSync::Change, "5:1", { node(Email::Read, "1") }),
            item(AirSync::Add, "5:2", { node(Email::Read, "1") }) }));
        QVERIFY(parser.collections().first().addedEmails().first().changedFields().isEmpty());
    }

    void aChangeOfNothingButAnEmptyFlagIsNotLost()
    {
        SyncResponseParser parser;
        parser.parse(replyWithCommands({ item(AirSync::Change, "5:1", { node(Email::Flag) }) }));
        QCOMPARE(parser.collections().first().changedEmails().size(), 1);
    }

    void deletionsOfBothKindsEndInOneList()
    {
        SyncResponseParser parser;
        parser.parse(replyWithCommands({ node(AirSync::Delete, { node(AirSync::ServerId, "5:1") }),
            node(AirSync::SoftDelete, { node(AirSync::ServerId, "5:2") }),
            item(AirSync::Add, "5:3", { node(Email::Subject, "s") }),
            node(AirSync::Delete, { node(AirSync::ServerId, "5:4") }) }));
        const SyncCollection result = parser.collections().first();
        QCOMPARE(result.deletedIds(), (QStringList { "5:1", "5:2", "5:4" }));
        QCOMPARE(result.addedEmails().size(), 1);
    }

    void theResponsesAreItemsOfTheirOwn()
    {
        SyncResponseParser parser;
        parser.parse(reply({ collection({ node(AirSync::Responses,
            { node(AirSync::Add,
                  { node(AirSync::Class, "Contacts"), node(AirSync::ClientId, "c1"),
                      node(AirSync::ServerId, "5:9"), node(AirSync::Status, "1") }),
                node(AirSync::Change,
                    { node(AirSync::Class, "Email"), node(AirSync::ServerId, "5:1"),
                        node(AirSync::Status, "7") }),
                node(AirSync::Delete,
                    { node(AirSync::ServerId, "5:2"), node(AirSync::Status, "8") }) }) }) }));
        QVERIFY(parser.ready());
        const SyncCollection result = parser.collections().first();
        QVERIFY(result.addedEmails().isEmpty());
        QVERIFY(result.addedContacts().isEmpty());
        QVERIFY(result.deletedIds().isEmpty());
        QCOMPARE(result.status(), 1U);
        QCOMPARE(result.getAddCmdResponses().size(), 1);
        QCOMPARE(result.getAddCmdResponses().first().clientId(), QStringLiteral("c1"));
        QCOMPARE(result.getAddCmdResponses().first().serverId(), QStringLiteral("5:9"));
        QCOMPARE(result.getAddCmdResponses().first().getClass(), QStringLiteral("Contacts"));
        QCOMPARE(result.getAddCmdResponses().first().status(), 1U);
        QCOMPARE(result.getChangeCmdResponses().size(), 1);
        QCOMPARE(result.getChangeCmdResponses().first().serverId(), QStringLiteral("5:1"));
        QCOMPARE(result.getChangeCmdResponses().first().getClass(), QStringLiteral("Email"));
        QCOMPARE(result.getChangeCmdResponses().first().status(), 7U);
        QCOMPARE(result.getDeleteCmdResponses().size(), 1);
        QCOMPARE(result.getDeleteCmdResponses().first().serverId(), QStringLiteral("5:2"));
        QCOMPARE(result.getDeleteCmdResponses().first().status(), 8U);
    }

    void eachResponseStartsEmpty()
    {
        SyncResponseParser parser;
        parser.parse(reply({ collection({ node(AirSync::Responses,
            { node(AirSync::Add,
                  { node(AirSync::Class, "Contacts"), node(AirSync::ClientId, "c1"),
                      node(AirSync::ServerId, "5:9"), node(AirSync::Status, "6") }),
                node(AirSync::Add, { node(AirSync::ClientId, "c2") }),
                node(AirSync::Change,
                    { node(AirSync::Class, "Email"), node(AirSync::ServerId, "5:1"),
                        node(AirSync::Status, "7") }),
                node(AirSync::Change, { node(AirSync::ServerId, "5:3") }),
                node(AirSync::Delete, { node(AirSync::ServerId, "5:2"), node(AirSync::Status, "8") }),
                node(AirSync::Delete, { node(AirSync::ServerId, "5:4") }) }) }) }));
        QVERIFY(parser.ready());
        const SyncCollection result = parser.collections().first();
        QCOMPARE(result.getAddCmdResponses().size(), 2);
        const AirSyncResponseAddItem added = result.getAddCmdResponses().last();
        QCOMPARE(added.clientId(), QStringLiteral("c2"));
        QCOMPARE(added.serverId(), QString());
        QCOMPARE(added.getClass(), QString());
        QCOMPARE(added.status(), 0U);
        QCOMPARE(result.getChangeCmdResponses().size(), 2);
        const AirSyncResponseChangeItem changed = result.getChangeCmdResponses().last();
        QCOMPARE(changed.serverId(), QStringLiteral("5:3"));
        QCOMPARE(changed.getClass(), QString());
        QCOMPARE(changed.status(), 0U);
        QCOMPARE(result.getDeleteCmdResponses().size(), 2);
        QCOMPARE(result.getDeleteCmdResponses().last().serverId(), QStringLiteral("5:4"));
        QCOMPARE(result.getDeleteCmdResponses().last().status(), 0U);
    }

    void aFetchAmongTheResponsesIsAFetchedItem()
    {
        SyncResponseParser parser;
        parser.parse(reply({ collection({ node(AirSync::Responses,
            { node(AirSync::Fetch,
                { node(AirSync::ServerId, "5:1"), node(AirSync::Status, "1"),
                    node(AirSync::ApplicationData, { node(Email::Subject, "s") }) }) }) }) }));
        const SyncCollection result = parser.collections().first();
        QCOMPARE(result.status(), 1U);
        QCOMPARE(result.fetchedEmails().size(), 1);
        QCOMPARE(result.fetchedEmails().first().serverId(), QStringLiteral("5:1"));
        QCOMPARE(result.fetchedEmails().first().subject(), QStringLiteral("s"));
    }

    void whatAnAnswerAddsIsNoItem()
    {
        SyncResponseParser parser;
        parser.parse(reply({ collection({ node(AirSync::Responses,
            { node(AirSync::Change,
                { node(AirSync::ServerId, "5:1"), node(AirSync::Status, "1"),
                    node(AirSync::ApplicationData, { node(Calendar::Subject, "s") }) }) }) }) }));
        const SyncCollection result = parser.collections().first();
        QCOMPARE(result.getChangeCmdResponses().size(), 1);
        QVERIFY(result.changedCalendarItems().isEmpty());
    }

    void theClassFollowsFromTheFirstField()
    {
        SyncResponseParser parser;
        parser.parse(replyWithCommands({ item(AirSync::Add, "1", { node(Contacts::FileAs, "f") }),
            item(AirSync::Add, "2", { node(Contacts2::NickName, "n") }),
            item(AirSync::Add, "3", { node(Calendar::Subject, "c") }),
            item(AirSync::Add, "4", { node(Email2::Sender, "s") }) }));
        const SyncCollection result = parser.collections().first();
        QCOMPARE(result.addedContacts().size(), 2);
        QCOMPARE(result.addedContacts().last().nickName(), QStringLiteral("n"));
        QCOMPARE(result.addedCalendarItems().size(), 1);
        QCOMPARE(result.addedCalendarItems().first().createdTimestamp(), qint64(-1));
        QCOMPARE(result.addedEmails().size(), 1);
    }

    void changesAndFetchesOfTheOtherClassesHaveTheirLists()
    {
        SyncResponseParser parser;
        parser.parse(replyWithCommands({ item(AirSync::Change, "1", { node(Contacts::FileAs, "f") }),
            item(AirSync::Fetch, "2", { node(Contacts::FileAs, "f") }),
            item(AirSync::Change, "3", { node(Calendar::Subject, "c") }),
            item(AirSync::Fetch, "4", { node(Calendar::Subject, "c") }) }));
        const SyncCollection result = parser.collections().first();
        QCOMPARE(result.changedContacts().value(0).serverId(), QStringLiteral("1"));
        QCOMPARE(result.fetchedContacts().value(0).serverId(), QStringLiteral("2"));
        QCOMPARE(result.changedCalendarItems().value(0).serverId(), QStringLiteral("3"));
        QCOMPARE(result.fetchedCalendars().value(0).serverId(), QStringLiteral("4"));
        QCOMPARE(result.fetchedCalendars().value(0).collectionId(), QStringLiteral("5"));
    }

    void theDatabaseTellsTheClassOfABodyThatComesFirst()
    {
        EasEmailItem known;
        known.setServerId(QStringLiteral("5:1"));
        known.setCollectionId(QStringLiteral("5"));
        known.setLocalId(QStringLiteral("77"));
        QVERIFY(EasDatabase::instance()->addEmailItems(Account, { known }));
        SyncResponseParser parser;
        parser.parse(replyWithCommands({ item(AirSync::Change, "5:1", { body("text") }) }));
        const QList<EasEmailItem> changed = parser.collections().first().changedEmails();
        QCOMPARE(changed.size(), 1);
        QCOMPARE(changed.first().body().data(), QStringLiteral("text"));
        QVERIFY(changed.first().changedFields().contains(AirSyncBase::Data.key()));
    }

    void theFieldsOfAnUnknownItemAreDroppedUntilOneTellsItsClass()
    {
        SyncResponseParser parser;
        parser.parse(replyWithCommands(
            { item(AirSync::Add, "5:1", { body("lost"), node(Email::Subject, "kept"), body("kept too") }),
                item(AirSync::Add, "5:2", { body("lost") }) }));
        const QList<EasEmailItem> added = parser.collections().first().addedEmails();
        QCOMPARE(added.size(), 1);
        QCOMPARE(added.first().subject(), QStringLiteral("kept"));
        QCOMPARE(added.first().body().data(), QStringLiteral("kept too"));
    }

    void aReplyWhoseItemsCannotBeLookedUpIsNotReady()
    {
        SyncResponseParser parser;
        {
            const HiddenTable hidden("emails");
            parser.parse(replyWithCommands({ item(AirSync::Change, "5:1", { body("text") }) }));
        }
        // Otherwise its key would be stored, and the change would be lost.
        QVERIFY(!parser.ready());
        parser.parse(replyWithCommands({ item(AirSync::Change, "5:9", { body("text") }) }));
        QVERIFY(parser.ready());
    }

    void aStatusOfACollectionStaysThere()
    {
        SyncResponseParser parser;
        parser.parse(document(node(AirSync::Sync,
            { node(AirSync::Status, "1"),
                node(AirSync::Collections,
                    { node(AirSync::Collection,
                        { node(AirSync::SyncKey, "7"), node(AirSync::Responses),
                            node(AirSync::Status, "8") }) }) })));
        QCOMPARE(parser.status(), 1U);
        QCOMPARE(parser.collections().first().status(), 8U);
    }

    void moreAvailableCountsWhateverTheStatus()
    {
        SyncResponseParser parser;
        parser.parse(reply({ node(AirSync::Collection,
                                 { node(AirSync::CollectionId, "5"), node(AirSync::Status, "8"),
                                     node(AirSync::MoreAvailable) }),
            node(AirSync::Collection, { node(AirSync::CollectionId, "6") }) }));
        QVERIFY(parser.collections().at(0).moreAvailable());
        QVERIFY(!parser.collections().at(1).moreAvailable());
    }

    void anAnswerInTheFormOfAnotherCommandGivesTheStatus()
    {
        SyncResponseParser parser;
        parser.parse(document(node(ComposeMail::Status, "103")));
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 103U);
    }

    void aStatusOfAnotherCommandInsideIsNone()
    {
        SyncResponseParser parser;
        parser.parse(reply({ collection({ node(ComposeMail::Status, "3") }) }));
        QVERIFY(parser.ready());
        QCOMPARE(parser.status(), 0U);
        QCOMPARE(parser.collections().size(), 1);
        QCOMPARE(parser.collections().first().status(), 1U);
        QVERIFY(mLog->contains(QtWarningMsg, { "Unexpected element, page: ", "21" }));
    }

    void badNumbersAreLoggedAndTheRestIsRead()
    {
        SyncResponseParser parser;
        parser.parse(document(node(AirSync::Sync,
            { node(AirSync::Status, "four"), node(AirSync::Limit, "few"),
                node(AirSync::Collections, { collection({}) }) })));
        QVERIFY(parser.ready());
        QVERIFY(mLog->contains(QtWarningMsg, { "Cannot convert to uint: ", "four" }));
        QVERIFY(mLog->contains(QtWarningMsg, { "Cannot convert to int: ", "few" }));
        QCOMPARE(int(parser.status()), -2);
        QCOMPARE(parser.collections().size(), 1);
    }

    void whatIsNotExpectedIsLogged()
    {
        SyncResponseParser parser;
        parser.parse(document(node(AirSync::Sync,
            { node(Email::Subject, "stray"), node(AirSync::WindowSize, "1"),
                node(AirSync::MoreAvailable) })));
        QVERIFY(mLog->contains(QtWarningMsg, { "Unexpected element, page: ", "2", ", token: ", "20" }));
        QVERIFY(mLog->contains(
            QtWarningMsg, { "Unexpected page: ", "2", ", token: ", "20", ", content: ", "stray" }));
        QVERIFY(mLog->contains(QtWarningMsg, { "Unhandled end element, page: ", "2", ", token: ", "20" }));
        QVERIFY(mLog->contains(
            QtWarningMsg, { "Unexpected content: ", "1", ", codePage: ", "0", ", token: ", "21" }));
        QVERIFY(mLog->contains(QStringLiteral("MORE_AVAILABLE")));
    }

    void everyTruncatedReplyIsNotReady()
    {
        const QByteArray whole =
            replyWithCommands({ item(AirSync::Add, "5:1", { node(Email::Subject, "one"), body("text") }) });
        for (int size = 1; size < whole.size(); ++size) {
            SyncResponseParser parser;
            parser.parse(whole.left(size));
            QVERIFY2(!parser.ready(), qPrintable(QString::number(size)));
        }
    }

private:
    QScopedPointer<LogCollector> mLog;

    void aReplyOfWrongElementsDoesNotFillTheLog_data()
    {
        QTest::addColumn<uint>("known");
        QTest::addColumn<uint>("number");
        QTest::newRow("mail") << Email::Subject.key() << Email::Importance.key();
        QTest::newRow("events") << Calendar::Subject.key() << Calendar::Reminder.key();
        QTest::newRow("contacts") << Contacts::FirstName.key() << Contacts::WeightedRank.key();
    }

    void aReplyOfWrongElementsDoesNotFillTheLog()
    {
        QFETCH(uint, known);
        QFETCH(uint, number);
        const auto tag = [](uint key) {
            return Token { quint8(key / 256), quint8(key % 256) };
        };
        const WbxmlNode wrong = item(AirSync::Add, "5:1",
            { node(tag(known), "Known"), node(Tasks::Subject, "foreign"), node(tag(number), "not a number"),
                node(Tasks::Subject, "foreign"), node(tag(number), "not a number") });
        const QByteArray bytes = replyWithCommands(QVector<WbxmlNode>(200, wrong));
        SyncResponseParser parser;
        const LogCollector log;
        for (int replies = 1; replies <= 2; ++replies) {
            parser.parse(bytes);
            QVERIFY(parser.ready());
            // The element, and its text.
            QCOMPARE(log.count(QStringLiteral("unhandled field:")), 2 * replies);
            QCOMPARE(log.count(QStringLiteral("not a number")), replies);
        }
    }
};

FENNEL_REGISTER_TEST(SyncResponseParserTest)
#include "syncresponseparsertest.moc"
