// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/searchcommand.h"

#include "common/easrequeststatus.h"
#include "easitems/algorithms/searchresponseparser.h"
#include "protocol/elements/airsyncbasepreference.h"
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

class OpenedSearch : public SearchCommand
{
public:
    explicit OpenedSearch(Type type, const SearchQuery &query = {}, const SearchOptions &options = {})
        : SearchCommand(Account, nullptr, type, query, options)
    {
    }

    using SearchCommand::begin;
    using SearchCommand::commandName;
    using SearchCommand::texts;

    QString body(ExchangeActiveSync::ProtocolVersion version = ExchangeActiveSync::ProtocolVersion141)
    {
        FakeAccount account(Account);
        account.setProtocolVersion(version);
        QByteArray bytes;
        return SearchCommand::encodeBody(account, &bytes) ? WbxmlDocument::outline(bytes) : QString();
    }

    bool read(const QByteArray &reply) { return SearchCommand::parseReply(nullptr, reply); }
};

WbxmlNode message(const char *longId, const char *subject)
{
    return node(Search::Result,
        { node(AirSync::Class, "Email"), node(Search::LongId, longId), node(AirSync::CollectionId, "5"),
            node(Search::Properties, { node(Email::Subject, subject), node(Email::Read, "0") }) });
}

WbxmlNode person(const QVector<WbxmlNode> &fields)
{
    return node(Search::Result, { node(Search::Properties, fields) });
}

QByteArray reply(const QVector<WbxmlNode> &store, const char *status = "1")
{
    return document(node(Search::Search,
        { node(Search::Status, status), node(Search::Response, { node(Search::Store, store) }) }));
}

SearchOptions range(int low, int high)
{
    SearchOptions options;
    options.setLowIndexRange(low);
    options.setHighIndexRange(high);
    return options;
}

} // namespace

/** A Search on the wire. */
class SearchCommandTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void mailIsAskedForByAllThatIsSaidOfIt()
    {
        SearchQuery query;
        query.setFreeText(QStringLiteral("Übersicht"));
        query.setGreaterThan(QStringLiteral("2026-11-01T00:00:00.000Z"));
        query.setLessThan(QStringLiteral("2026-11-22T00:00:00.000Z"));
        query.setConversationId(QStringLiteral("c1"));
        query.appendClass(QStringLiteral("Email"));
        query.appendCollectionId(QStringLiteral("5"));
        query.appendCollectionId(QStringLiteral("6"));
        query.setEqualTo(QStringLiteral("\\\\server\\share"));
        OpenedSearch command(SearchCommand::Mailbox, query);
        QCOMPARE(command.body(),
            QStringLiteral("Search(Store(Name=Mailbox,Query(And(FreeText=Übersicht,"
                           "GreaterThan(DateReceived,Value=2026-11-01T00:00:00.000Z),"
                           "LessThan(DateReceived,Value=2026-11-22T00:00:00.000Z),ConversationId=c1,"
                           "Class=Email,CollectionId=5,CollectionId=6,"
                           "EqualTo(LinkId,Value=\\\\server\\share))),Options))"));
        QCOMPARE(command.type(), SearchCommand::Mailbox);
        QCOMPARE(command.commandName(), QStringLiteral("Search"));
        QCOMPARE(command.texts().sending, "Sending search command via POST:");
    }

    void whatIsNotSaidIsLeftOut()
    {
        QCOMPARE(OpenedSearch(SearchCommand::Mailbox).body(),
            QStringLiteral("Search(Store(Name=Mailbox,Query(And),Options))"));
    }

    void peopleAreAskedForByATextAlone()
    {
        SearchQuery query;
        query.setGalQuery(QStringLiteral("müll"));
        query.setFreeText(QStringLiteral("not for people"));
        QCOMPARE(OpenedSearch(SearchCommand::AddressList, query).body(),
            QStringLiteral("Search(Store(Name=GAL,Query=müll,Options))"));
    }

    void optionsGoInTheirOrder()
    {
        SearchOptions options = range(0, 49);
        options.setUserName(QStringLiteral("alice"));
        options.setPassword(QStringLiteral("p"));
        options.setDeepTraversal(true);
        options.setRebuildResults(true);
        options.setMaxSizePicture(102400);
        options.setMaxPicture(100);
        options.setMimeSupport(SearchOptions::MimeForSecureMessages);
        const auto text = QSharedPointer<AirSyncBasePreference>::create(AirSyncBase::BodyPreference.token);
        text->setType(EasBodyContainer::PlainTextBodyType);
        text->setTruncationSize(255);
        options.appendBodyPreference(text);
        const auto mime = QSharedPointer<AirSyncBasePreference>::create(AirSyncBase::BodyPreference.token);
        mime->setType(EasBodyContainer::MIMEBodyType);
        options.appendBodyPreference(mime);
        options.setRightsManagementSupport(true);
        OpenedSearch command(SearchCommand::Mailbox, {}, options);
        QCOMPARE(command.body(),
            QStringLiteral(
                "Search(Store(Name=Mailbox,Query(And),Options(Range=0-49,UserName=alice,Password=p,"
                "DeepTraversal,RebuildResults,Picture(MaxSize=102400,MaxPictures=100),"
                "MIMESupport=1,BodyPreference(Type=1,TruncationSize=255),BodyPreference(Type=4),"
                "RightsManagementSupport=1)))"));
    }

    void picturesAndRightsAreNotAskedForBefore141()
    {
        SearchOptions options;
        options.setMaxSizePicture(102400);
        options.setMaxPicture(100);
        options.setRightsManagementSupport(true);
        OpenedSearch command(SearchCommand::AddressList, {}, options);
        QVERIFY(command.body().contains(QStringLiteral("Picture")));
        for (const auto version : { ExchangeActiveSync::ProtocolVersion120,
                 ExchangeActiveSync::ProtocolVersion121, ExchangeActiveSync::ProtocolVersion140 })
            QCOMPARE(command.body(version), QStringLiteral("Search(Store(Name=GAL,Query(And),Options))"));
    }

    void aLowRangeAboveTheHighOneIsNotWritten_data()
    {
        QTest::addColumn<int>("low");
        QTest::addColumn<int>("high");
        QTest::addColumn<QString>("options");
        QTest::newRow("first above last") << 10 << 9 << "Options";
        QTest::newRow("unset") << -1 << -1 << "Options";
        QTest::newRow("negative") << -1 << 5 << "Options";
        QTest::newRow("one") << 3 << 3 << "Options(Range=3-3)";
    }

    void aLowRangeAboveTheHighOneIsNotWritten()
    {
        QFETCH(int, low);
        QFETCH(int, high);
        QFETCH(QString, options);
        QCOMPARE(OpenedSearch(SearchCommand::Mailbox, {}, range(low, high)).body(),
            QStringLiteral("Search(Store(Name=Mailbox,Query(And),%1))").arg(options));
    }

    void aCommandThatRunsIsNotBegunAgain()
    {
        OpenedSearch command(SearchCommand::Mailbox);
        QVERIFY(command.begin());
        LogCollector log;
        command.start();
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Cannot begin, probably already in progress") }));
    }

    void withoutAnAccountNothingIsSent()
    {
        OpenedSearch command(SearchCommand::Mailbox);
        LogCollector log;
        command.start();
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("No account") }));
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("failed to setup network request") }));
    }

    void messagesComeWithTheirPlaces()
    {
        OpenedSearch command(SearchCommand::Mailbox, {}, range(0, 9));
        LogCollector log;
        QVERIFY(command.read(reply({ node(Search::Status, "1"), message("RgAA", "one"),
            message("RgBB", "two"), node(Search::Range, "0-1"), node(Search::Total, "7") })));
        QCOMPARE(command.status(), 1);
        QCOMPARE(command.storeStatus(), 1);
        QCOMPARE(command.totalCount(), 7U);
        QCOMPARE(command.remainingCount(), 5U);
        QCOMPARE(command.emailItems().size(), 2);
        QVERIFY(command.galItems().isEmpty());
        const EasEmailItem second = command.emailItems().at(1);
        QCOMPARE(second.longId(), QStringLiteral("RgBB"));
        QCOMPARE(second.serverId(), QString());
        QCOMPARE(second.collectionId(), QStringLiteral("5"));
        QCOMPARE(second.subject(), QStringLiteral("two"));
        QVERIFY(!second.read());
        QVERIFY(log.contains(QtDebugMsg,
            { QStringLiteral("Result of Search request (free text:"), QStringLiteral("query text:"),
                QStringLiteral("):"), QStringLiteral("Status: 1"), QStringLiteral("Store status: 1"),
                QStringLiteral("Range:"), QStringLiteral("Total: 7"),
                QStringLiteral("Result emails count: 2"), QStringLiteral("Result GAL items count: 0") }));
    }

    void peopleComeWithAllTheyHave()
    {
        OpenedSearch command(SearchCommand::AddressList);
        QVERIFY(command.read(reply({ node(Search::Status, "1"),
            person({ node(GAL::DisplayName, "Eva Müller"), node(GAL::Phone, "1"), node(GAL::Office, "2"),
                node(GAL::Title, "3"), node(GAL::Company, "4"), node(GAL::Alias, "eva"),
                node(GAL::FirstName, "Eva"), node(GAL::LastName, "Müller"), node(GAL::HomePhone, "5"),
                node(GAL::MobilePhone, "6"), node(GAL::EmailAddress, "eva@example.org"),
                node(GAL::Picture, { node(GAL::Status, "1"), node(GAL::Data, "QUJD") }) }) })));
        QCOMPARE(command.galItems().size(), 1);
        const GalItem item = command.galItems().constFirst();
        QCOMPARE(item.displayName(), QStringLiteral("Eva Müller"));
        QCOMPARE(item.phone(), QStringLiteral("1"));
        QCOMPARE(item.office(), QStringLiteral("2"));
        QCOMPARE(item.title(), QStringLiteral("3"));
        QCOMPARE(item.company(), QStringLiteral("4"));
        QCOMPARE(item.alias(), QStringLiteral("eva"));
        QCOMPARE(item.firstName(), QStringLiteral("Eva"));
        QCOMPARE(item.lastName(), QStringLiteral("Müller"));
        QCOMPARE(item.homePhone(), QStringLiteral("5"));
        QCOMPARE(item.mobilePhone(), QStringLiteral("6"));
        QCOMPARE(item.emailAddress(), QStringLiteral("eva@example.org"));
        QCOMPARE(item.pictureData(), QStringLiteral("QUJD"));
        QCOMPARE(command.totalCount(), 1U);
    }

    void aPictureIsWhatTheServerSendsAsOne_data()
    {
        QTest::addColumn<QString>("status");
        QTest::addColumn<QString>("data");
        QTest::addColumn<QString>("picture");
        QTest::newRow("a picture") << "1"
                                   << "QUJD"
                                   << "QUJD";
        QTest::newRow("folded") << "1"
                                << "QUJD\r\nQUJD"
                                << "QUJDQUJD";
        QTest::newRow("none") << "173"
                              << "QUJD"
                              << "";
        QTest::newRow("too large") << "174"
                                   << ""
                                   << "";
        QTest::newRow("too many") << "175"
                                  << "QUJD"
                                  << "";
        QTest::newRow("no text of a picture") << "1"
                                              << "not base64!"
                                              << "";
        QTest::newRow("nothing") << "1"
                                 << ""
                                 << "";
        QTest::newRow("far too large") << "1" << QString(GalAppDataParser::LongestPicture + 4, 'A') << "";
        QTest::newRow("the largest") << "1" << QString(GalAppDataParser::LongestPicture, 'A')
                                     << QString(GalAppDataParser::LongestPicture, 'A');
    }

    void aPictureIsWhatTheServerSendsAsOne()
    {
        QFETCH(QString, status);
        QFETCH(QString, data);
        QFETCH(QString, picture);
        OpenedSearch command(SearchCommand::AddressList);
        QVERIFY(command.read(reply({ node(Search::Status, "1"),
            person({ node(GAL::EmailAddress, "first@example.org"),
                node(GAL::Picture, { node(GAL::Status, status), node(GAL::Data, data) }) }),
            person({ node(GAL::EmailAddress, "second@example.org") }) })));
        QCOMPARE(command.galItems().size(), 2);
        QCOMPARE(command.galItems().at(0).pictureData(), picture);
        QCOMPARE(command.galItems().at(1).pictureData(), QString());
    }

    void aResultWithNothingInItIsNone()
    {
        OpenedSearch command(SearchCommand::Mailbox);
        QVERIFY(command.read(reply({ node(Search::Status, "1"), node(Search::Result),
            person({ node(Email::Subject, "without a place") }), node(Search::Range, "0-0"),
            node(Search::Total, "0") })));
        QVERIFY(command.emailItems().isEmpty());
        QVERIFY(command.galItems().isEmpty());
        QCOMPARE(command.totalCount(), 0U);
        QCOMPARE(command.remainingCount(), 0U);
    }

    void anItemOfAnotherClassIsNoMessage()
    {
        LogCollector log;
        OpenedSearch command(SearchCommand::Mailbox);
        QVERIFY(command.read(reply({ node(Search::Status, "1"),
            node(Search::Result, { node(AirSync::Class, "Calendar"), node(Search::LongId, "RgAA") }),
            message("RgBB", "two") })));
        QCOMPARE(command.emailItems().size(), 1);
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Calendar"), QStringLiteral("is no message") }));
    }

    void whatRemainsIsNeverLessThanNothing_data()
    {
        QTest::addColumn<QString>("range");
        QTest::addColumn<QString>("total");
        QTest::addColumn<uint>("remaining");
        QTest::newRow("some") << "0-9"
                              << "25" << 15U;
        QTest::newRow("all") << "0-9"
                             << "10" << 0U;
        QTest::newRow("fewer than the range") << "0-9"
                                              << "3" << 0U;
        QTest::newRow("a later part") << "10-19"
                                      << "25" << 5U;
        QTest::newRow("no range") << ""
                                  << "25" << 24U;
        QTest::newRow("no total") << "0-0"
                                  << "" << 0U;
        QTest::newRow("a bad range") << "x-9"
                                     << "25" << 24U;
        QTest::newRow("a negative total") << "0-0"
                                          << "-5" << 0U;
        QTest::newRow("a huge total") << "0-0"
                                      << "99999999999999" << 2147483646U;
        QTest::newRow("a huge range") << "0-99999999999999"
                                      << "25" << 0U;
    }

    void whatRemainsIsNeverLessThanNothing()
    {
        QFETCH(QString, range);
        QFETCH(QString, total);
        QFETCH(uint, remaining);
        OpenedSearch command(SearchCommand::Mailbox);
        QVector<WbxmlNode> store { node(Search::Status, "1"), message("RgAA", "one") };
        if (!range.isEmpty())
            store.append(node(Search::Range, range));
        if (!total.isEmpty())
            store.append(node(Search::Total, total));
        QVERIFY(command.read(reply(store)));
        QCOMPARE(command.remainingCount(), remaining);
    }

    void moreResultsThanAskedForAreLeftOut()
    {
        LogCollector log;
        QVector<WbxmlNode> store { node(Search::Status, "1") };
        for (int i = 0; i < 5; ++i)
            store.append(message(QByteArray::number(i).constData(), "one"));
        store += { node(Search::Range, "0-4"), node(Search::Total, "5") };
        OpenedSearch command(SearchCommand::Mailbox, {}, range(0, 2));
        QVERIFY(command.read(reply(store)));
        QCOMPARE(command.emailItems().size(), 3);
        QCOMPARE(command.emailItems().constLast().longId(), QStringLiteral("2"));
        QCOMPARE(command.remainingCount(), 2U);
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("more results than were asked for") }));
    }

    void aReplyThatGoesOnAndOnIsRefused()
    {
        LogCollector log;
        QVector<WbxmlNode> store(SearchResultsParser::MostResults + 1, message("RgAA", "one"));
        store.prepend(node(Search::Status, "1"));
        OpenedSearch command(SearchCommand::Mailbox, {}, range(0, 2147483647));
        QVERIFY(!command.read(reply(store)));
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("too many results") }));
        store.removeLast();
        QVERIFY(command.read(reply(store)));
        QCOMPARE(command.emailItems().size(), SearchResultsParser::MostResults);
    }

    void theStatusOfTheCommandIsThatOutsideOfTheStore()
    {
        OpenedSearch command(SearchCommand::Mailbox);
        QVERIFY(command.read(reply({ node(Search::Status, "12") }, "111")));
        QCOMPARE(command.status(), 111);
        QCOMPARE(command.storeStatus(), 12);
    }

    void aReplyWithoutAStatusOfItsOwnSucceeded()
    {
        OpenedSearch command(SearchCommand::Mailbox);
        QVERIFY(command.read(document(node(Search::Search,
            { node(Search::Response, { node(Search::Store, { node(Search::Status, "3") }) }) }))));
        QCOMPARE(command.status(), 1);
        QCOMPARE(command.storeStatus(), 3);
    }

    void nothingIsNoAnswer_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("not WBXML") << QByteArray("<html>");
        QTest::newRow("another root") << document(node(Ping::Ping, { node(Ping::Status, "1") }));
        const QByteArray whole = reply({ node(Search::Status, "1"), message("RgAA", "one") });
        QTest::newRow("cut") << whole.left(whole.size() - 4);
    }

    void nothingIsNoAnswer()
    {
        QFETCH(QByteArray, bytes);
        LogCollector log;
        OpenedSearch command(SearchCommand::Mailbox);
        QVERIFY(!command.read(bytes));
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Failed to parse") }));
    }
};

FENNEL_REGISTER_TEST(SearchCommandTest)
#include "searchcommandtest.moc"
