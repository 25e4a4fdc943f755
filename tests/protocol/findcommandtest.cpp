// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/findcommand.h"

#include "support/fakeaccount.h"
#include "support/logcollector.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QtTest>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

constexpr EasAccountId Account = 1;

class OpenedFind : public FindCommand
{
public:
    explicit OpenedFind(const Query &query, const Options &options = {})
        : FindCommand(Account, nullptr, QStringLiteral("id-1"), query, options)
    {
    }

    using FindCommand::begin;
    using FindCommand::commandName;
    using FindCommand::texts;

    QString body()
    {
        FakeAccount account(Account);
        account.setProtocolVersion(ExchangeActiveSync::ProtocolVersion161);
        QByteArray bytes;
        return FindCommand::encodeBody(account, &bytes) ? WbxmlDocument::outline(bytes) : QString();
    }

    bool read(const QByteArray &reply) { return FindCommand::parseReply(nullptr, reply); }
};

FindCommand::Query mail(const QString &text, const QString &folder = {})
{
    FindCommand::Query query;
    query.freeText = text;
    query.collectionId = folder;
    return query;
}

FindCommand::Query people(const QString &text)
{
    FindCommand::Query query;
    query.kind = FindCommand::AddressList;
    query.freeText = text;
    return query;
}

FindCommand::Options options(int low, int high)
{
    FindCommand::Options made;
    made.lowRange = low;
    made.highRange = high;
    return made;
}

QByteArray reply(const QVector<WbxmlNode> &response, const char *status = "1")
{
    return document(node(Find::Find, { node(Find::Status, status), node(Find::Response, response) }));
}

} // namespace

/** A Find on the wire. */
class FindCommandTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void mailIsAskedForInItsFolder()
    {
        FindCommand::Options all = options(0, 10);
        all.deepTraversal = true;
        OpenedFind command(mail(QStringLiteral("plan"), QStringLiteral("5")), all);
        QCOMPARE(command.body(),
            QStringLiteral("Find(SearchId=id-1,ExecuteSearch(MailBoxSearchCriterion(Query(FreeText=plan,"
                           "Class=Email,CollectionId=5),Options(Range=0-10,DeepTraversal))))"));
        QCOMPARE(command.commandName(), QStringLiteral("Find"));
        QCOMPARE(command.texts().sending, "Sending find command via POST:");
    }

    void whatIsNotSaidIsLeftOut()
    {
        QCOMPARE(OpenedFind(mail(QString())).body(),
            QStringLiteral("Find(SearchId=id-1,ExecuteSearch(MailBoxSearchCriterion(Query(Class=Email),"
                           "Options)))"));
    }

    void peopleAreAskedForWithTheirPictures()
    {
        FindCommand::Options all = options(0, 10);
        all.deepTraversal = true;
        all.maxSize = 102400;
        all.maxPictures = 100;
        QCOMPARE(OpenedFind(people(QStringLiteral("eva")), all).body(),
            QStringLiteral("Find(SearchId=id-1,ExecuteSearch(GalSearchCriterion(Query=eva,"
                           "Options(Range=0-10,Picture(MaxSize=102400,MaxPictures=100)))))"));
        all.maxSize = -1;
        QVERIFY(OpenedFind(people(QStringLiteral("eva")), all)
                    .body()
                    .contains(QStringLiteral("Picture(MaxPictures=100)")));
        all.maxSize = 0;
        all.maxPictures = -1;
        QVERIFY(OpenedFind(people(QStringLiteral("eva")), all)
                    .body()
                    .contains(QStringLiteral("Picture(MaxSize=0)")));
    }

    void aRangeThatAsksForNothingIsLeftOutAloud()
    {
        LogCollector log;
        QCOMPARE(options(-1, -1).getRange(), QString());
        QVERIFY(!log.contains(QtWarningMsg, { QStringLiteral("Invalid requested range: ") }));
        QCOMPARE(options(4, 4).getRange(), QStringLiteral("4-4"));
        QCOMPARE(options(5, 4).getRange(), QString());
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Invalid requested range: ") }));
        QCOMPARE(options(-1, 4).getRange(), QString());
    }

    void aCommandThatRunsIsNotBegunAgain()
    {
        OpenedFind command(mail(QStringLiteral("plan")));
        QVERIFY(command.begin());
        LogCollector log;
        command.start();
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Cannot begin, probably already in progress") }));
    }

    void messagesComeWithPlaceAndPreview()
    {
        LogCollector log;
        OpenedFind command(mail(QStringLiteral("plan")));
        QVERIFY(command.read(reply({ node(ItemOperations::Store, "Mailbox"), node(Find::Status, "1"),
            node(Find::Result,
                { node(AirSync::Class, "Email"), node(AirSync::ServerId, "5:7"),
                    node(AirSync::CollectionId, "5"),
                    node(Find::Properties,
                        { node(Email::Subject, "one"), node(Email::From, "eva@example.org"),
                            node(Find::DisplayCc, "Bob"), node(Find::DisplayBcc, "Carol"),
                            node(Find::HasAttachments, "1"), node(Find::Preview, "The plan is") }) }),
            node(Find::Result,
                { node(AirSync::ServerId, "5:8"), node(AirSync::CollectionId, "5"),
                    node(Find::Properties, { node(Email::Subject, "two") }) }),
            node(Find::Range, "0-1"), node(Find::Total, "5") })));
        QCOMPARE(command.status(), 1);
        QCOMPARE(command.storeStatus(), 1);
        QCOMPARE(command.remainingCount(), 3U);
        QCOMPARE(command.emailItems().size(), 2);
        const EasEmailItem first = command.emailItems().constFirst();
        QCOMPARE(first.serverId(), QStringLiteral("5:7"));
        QCOMPARE(first.longId(), QString());
        QCOMPARE(first.collectionId(), QStringLiteral("5"));
        QCOMPARE(first.subject(), QStringLiteral("one"));
        QCOMPARE(first.fromAddress(), QStringLiteral("eva@example.org"));
        QCOMPARE(first.body().preview(), QStringLiteral("The plan is"));
        QVERIFY(first.body().truncated());
        QCOMPARE(command.emailItems().at(1).body().preview(), QString());
        QVERIFY(!log.contains(QtWarningMsg, { QStringLiteral("nhandled") }));
        QVERIFY(log.contains(QtDebugMsg,
            { QStringLiteral("Result of Find request (query string:"), QStringLiteral("Status: 1"),
                QStringLiteral("Store status: 1"), QStringLiteral("Range:"), QStringLiteral("Total: 5"),
                QStringLiteral("Result emails count: 2"), QStringLiteral("Result GAL items count: 0") }));
    }

    void peopleComeWithTheirPictures()
    {
        OpenedFind command(people(QStringLiteral("eva")));
        QVERIFY(command.read(reply({ node(Find::Status, "1"),
            node(Find::Result,
                { node(Find::Properties,
                    { node(GAL::EmailAddress, "eva@example.org"),
                        node(GAL::Picture, { node(GAL::Status, "1"), node(GAL::Data, "QUJD") }) }) }) })));
        QCOMPARE(command.galItems().size(), 1);
        QCOMPARE(command.galItems().constFirst().pictureData(), QStringLiteral("QUJD"));
    }

    void aRefusalMayComeWithoutAResponse()
    {
        OpenedFind command(mail(QStringLiteral("plan")));
        QVERIFY(command.read(document(node(Find::Find, { node(Find::Status, "3") }))));
        QCOMPARE(command.status(), 3);
        QCOMPARE(command.storeStatus(), 0);
        QVERIFY(command.read(document(node(Find::Find, { node(Find::Status, "1") }))));
        QCOMPARE(command.status(), 1);
        QCOMPARE(command.storeStatus(), 0);
    }

    void nothingIsNoAnswer()
    {
        LogCollector log;
        OpenedFind command(mail(QStringLiteral("plan")));
        QVERIFY(!command.read(QByteArray()));
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Failed to parse") }));
    }
};

FENNEL_REGISTER_TEST(FindCommandTest)
#include "findcommandtest.moc"
