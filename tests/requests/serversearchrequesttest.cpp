// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/easdatabase.h"
#include "protocol/searchcommand.h"
#include "requests/findrequest.h"
#include "requests/galsearchrequest.h"
#include "requests/searchrequest.h"
#include "support/logcollector.h"
#include "support/requestbed.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QSignalSpy>
#include <QtTest>

#include <memory>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

constexpr EasAccountId Account = RequestBed::Account;
constexpr qulonglong Id = RequestBed::Id;

const QString SearchText =
    QStringLiteral("we should try to send command again later. Timeout (in mseconds):");

/** Retries that may succeed, and so the most replies but one that a request takes. */
constexpr int Retries = 5;

enum Kind { Mail, People, Found };

WbxmlNode mailResult(const char *longId)
{
    return node(Search::Result,
        { node(Search::LongId, longId), node(AirSync::CollectionId, "5"),
            node(Search::Properties, { node(Email::Subject, "one") }) });
}

WbxmlNode personResult(Token result, Token properties, const char *address)
{
    return node(result, { node(properties, { node(GAL::EmailAddress, address) }) });
}

QByteArray searchReply(int storeStatus, const QVector<WbxmlNode> &results = {})
{
    QVector<WbxmlNode> store { node(Search::Status, QString::number(storeStatus)) };
    store += results;
    return document(node(Search::Search,
        { node(Search::Status, "1"), node(Search::Response, { node(Search::Store, store) }) }));
}

QByteArray findReply(int status, const QVector<WbxmlNode> &results = {})
{
    QVector<WbxmlNode> response { node(Find::Status, QString::number(status)) };
    response += results;
    return document(node(Find::Find, { node(Find::Status, "1"), node(Find::Response, response) }));
}

QByteArray commandReply(Kind kind, int status)
{
    const QString text = QString::number(status);
    return kind == Found ? document(node(Find::Find, { node(Find::Status, text) }))
                         : document(node(Search::Search, { node(Search::Status, text) }));
}

QByteArray foldersReply(int status)
{
    return document(node(FolderHierarchy::FolderSync,
        { node(FolderHierarchy::Status, QString::number(status)), node(FolderHierarchy::SyncKey, "8"),
            node(FolderHierarchy::Changes, { node(FolderHierarchy::Count, "0") }) }));
}

} // namespace

/** Searches of mail and people, with Search and with Find: what a server's answers mean. */
class ServerSearchRequestTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<RequestBed> mBed;
    std::unique_ptr<LogCollector> mLog;

    static void eachKind()
    {
        QTest::addColumn<int>("kind");
        QTest::newRow("mail") << int(Mail);
        QTest::newRow("people") << int(People);
        QTest::newRow("find") << int(Found);
    }

    std::unique_ptr<ServerSearchRequest> request(int kind)
    {
        if (kind == Found) {
            mBed->account->setProtocolVersion(ExchangeActiveSync::ProtocolVersion161);
            return std::make_unique<FindRequest>(Account, Id);
        }
        if (kind == People)
            return std::make_unique<GalSearchRequest>(Account, Id, QStringLiteral("eva"));
        return std::make_unique<SearchRequest>(Account, Id);
    }

    static QByteArray successReply(int kind)
    {
        if (kind == Found)
            return findReply(1,
                { node(Find::Result, { node(AirSync::ServerId, "5:1"), node(AirSync::CollectionId, "5") }) });
        return kind == Mail
            ? searchReply(1, { mailResult("RgAA") })
            : searchReply(1, { personResult(Search::Result, Search::Properties, "eva@example.org") });
    }

    int run(ServerSearchRequest &request) { return RequestBed::run(request); }

private Q_SLOTS:
    void init()
    {
        mBed = std::make_unique<RequestBed>(
            QStringList { QStringLiteral("Search"), QStringLiteral("Find"), QStringLiteral("FolderSync") });
        QTRY_VERIFY(mBed->isOnline());
        mLog = std::make_unique<LogCollector>();
    }

    void cleanup()
    {
        mLog.reset();
        QCOMPARE(RequestBed::end(mBed), QString());
    }

    void foundMailIsStored()
    {
        mBed->answer(searchReply(1,
            { mailResult("RgAA"), mailResult("RgBB"), node(Search::Range, "0-1"),
                node(Search::Total, "5") }));
        SearchQuery query;
        query.setFreeText(QStringLiteral("plan"));
        SearchRequest request(Account, Id, query);
        QCOMPARE(run(request), 0);
        QCOMPARE(mBed->sent(),
            QStringList { QStringLiteral("Search(Store(Name=Mailbox,Query(And(FreeText=plan)),Options))") });
        QCOMPARE(request.matchingIds(), QList<quint64>({ 100, 101 }));
        QCOMPARE(request.remainingCount(), 3U);
        QCOMPARE(request.totalItemsCount(), 5U);
        QCOMPARE(mBed->mail->searchResults.constFirst().longId(), QStringLiteral("RgAA"));
        QVERIFY(mLog->contains(QtInfoMsg, { QStringLiteral("Search command finished successfully") }));
    }

    void foundPeopleAreToldBeforeTheEnd()
    {
        mBed->answer(searchReply(1,
            { personResult(Search::Result, Search::Properties, "eva@example.org"),
                personResult(Search::Result, Search::Properties, "bob@example.org"),
                node(Search::Range, "0-1"), node(Search::Total, "7") }));
        GalSearchRequest request(Account, Id, QStringLiteral("e"));
        QStringList told;
        connect(
            &request, &ServerSearchRequest::galItemReceived, this, [&](quint64 number, const GalItem &item) {
                told.append(QStringLiteral("%1 %2").arg(number).arg(item.emailAddress()));
            });
        connect(&request, &Request::requestCompleted, this, [&] { told.append(QStringLiteral("end")); });
        QCOMPARE(run(request), 0);
        QCOMPARE(told,
            QStringList({ QStringLiteral("1 eva@example.org"), QStringLiteral("2 bob@example.org"),
                QStringLiteral("end") }));
        QCOMPARE(request.matchingIds(), QList<quint64>({ 1, 2 }));
        QCOMPARE(request.totalItemsCount(), 7U);
        QCOMPARE(mBed->sent(), QStringList { QStringLiteral("Search(Store(Name=GAL,Query=e,Options))") });
        QVERIFY(mLog->contains(QtInfoMsg, { QStringLiteral("Command completed success:") }));
    }

    void aFindDeliversWhatItLooksFor()
    {
        mBed->account->setProtocolVersion(ExchangeActiveSync::ProtocolVersion161);
        const QByteArray both = findReply(1,
            { node(Find::Result, { node(AirSync::ServerId, "5:1"), node(AirSync::CollectionId, "5") }),
                personResult(Find::Result, Find::Properties, "eva@example.org") });
        for (const FindCommand::Type kind : { FindCommand::Mailbox, FindCommand::AddressList }) {
            mBed->answer(both);
            FindRequest request(Account, Id);
            FindCommand::Query query;
            query.kind = kind;
            request.setQuery(query);
            QSignalSpy people(&request, &ServerSearchRequest::galItemReceived);
            QCOMPARE(run(request), 0);
            const bool isMail = kind == FindCommand::Mailbox;
            QCOMPARE(request.matchingIds(), QList<quint64> { isMail ? 100ULL : 1ULL });
            QCOMPARE(people.size(), isMail ? 0 : 1);
        }
        QVERIFY(mLog->contains(QtInfoMsg, { QStringLiteral("Find command finished successfully") }));
    }

    void aMessageIsFoundUnderTheIdentifierThatItIsKeptUnder()
    {
        EasEmailItem other;
        other.setServerId(QStringLiteral("1"));
        other.setCollectionId(QStringLiteral("6"));
        other.setLocalId(QStringLiteral("77"));
        QVERIFY(EasDatabase::instance()->addEmailItems(Account, { other }));
        mBed->account->setProtocolVersion(ExchangeActiveSync::ProtocolVersion161);
        const auto at = [](const char *folder) {
            return node(Find::Result, { node(AirSync::ServerId, "1"), node(AirSync::CollectionId, folder) });
        };
        mBed->answer(findReply(1, { at("5"), at("6") }));
        FindRequest request(Account, Id);
        QCOMPARE(run(request), 0);
        QCOMPARE(mBed->mail->searchResults.at(0).serverId(),
            KeptEmailId::qualified(QStringLiteral("5"), WireEmailId(QStringLiteral("1"))).text());
        QCOMPARE(mBed->mail->searchResults.at(1).serverId(), QStringLiteral("1"));
    }

    void repetitionsOfAFindBearItsIdentifier()
    {
        mBed->account->setProtocolVersion(ExchangeActiveSync::ProtocolVersion161);
        mBed->answer(commandReply(Found, 111));
        mBed->answer(successReply(Found));
        FindRequest request(Account, Id);
        const QString id = request.searchId();
        QVERIFY(!id.isEmpty());
        QVERIFY(FindRequest(Account, Id).searchId() != id);
        QCOMPARE(run(request), 0);
        QCOMPARE(mBed->sent().size(), 2);
        QCOMPARE(mBed->sent().at(0), mBed->sent().at(1));
        QVERIFY(mBed->sent().at(0).contains(QStringLiteral("SearchId=") + id));
    }

    // The status of the command

    void aStatusOfTheCommandEndsIt_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("text");
        const QString serverError =
            QStringLiteral("server error. We shouldn't retry later. Completing request");
        const QString unhandled = QStringLiteral("Unhandled Search status: ");
        QTest::newRow("106") << 106 << serverError;
        QTest::newRow("110") << 110 << serverError;
        QTest::newRow("145 is no demand here") << 150 << unhandled;
        QTest::newRow("177") << 177 << unhandled;
    }

    void aStatusOfTheCommandEndsIt()
    {
        QFETCH(int, status);
        QFETCH(QString, text);
        for (const int kind : { Mail, People, Found }) {
            mLog->clear();
            mBed->answer(commandReply(Kind(kind), status));
            const auto search = request(kind);
            QCOMPARE(run(*search), status);
            QVERIFY2(mLog->contains(text), qPrintable(text));
            QVERIFY(search->matchingIds().isEmpty());
        }
    }

    void aServerErrorOfASearchIsItsResult()
    {
        mBed->answer(commandReply(Mail, 3));
        const auto search = request(Mail);
        QCOMPARE(run(*search), 3);
        QVERIFY(mLog->contains(QStringLiteral("Unhandled Search status: ")));
    }

    void noStatusIsNoSuccess_data() { eachKind(); }
    void noStatusIsNoSuccess()
    {
        QFETCH(int, kind);
        mBed->answer(commandReply(Kind(kind), 0));
        QCOMPARE(run(*request(kind)), -2);
        mBed->answer({});
        QCOMPARE(run(*request(kind)), -2);
        QVERIFY(mLog->contains(kind == Found ? QStringLiteral("Find command failed with status")
                                             : QStringLiteral("Search command failed with status")));
    }

    void aDeviceThatIsNotKnownIsNamedAnewAndTriesAgain_data() { eachKind(); }
    void aDeviceThatIsNotKnownIsNamedAnewAndTriesAgain()
    {
        QFETCH(int, kind);
        mBed->answer(commandReply(Kind(kind), 108));
        mBed->answer(commandReply(Kind(kind), 109));
        mBed->answer(successReply(kind));
        QCOMPARE(run(*request(kind)), 0);
        QCOMPARE(
            mLog->count(QStringLiteral("invalid Device ID or Type. Trying to update Device information")), 2);
    }

    void aBusyServerIsAskedFiveTimesMore_data() { eachKind(); }
    void aBusyServerIsAskedFiveTimesMore()
    {
        QFETCH(int, kind);
        for (int i = 0; i <= Retries; ++i)
            mBed->answer(commandReply(Kind(kind), 111));
        QCOMPARE(run(*request(kind)), 111);
        QCOMPARE(mLog->count(SearchText), Retries + 1);
        QVERIFY(mLog->contains(QStringLiteral("no more attempts, failing request")));
    }

    // The status of the store

    void aStatusOfTheStore_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("text");
        const auto rows = [](int status, const char *text) {
            for (const int kind : { Mail, People })
                QTest::newRow(
                    qPrintable(QStringLiteral("%1 %2").arg(kind == Mail ? "mail" : "people").arg(status)))
                    << kind << status << QString::fromLatin1(text);
        };
        rows(0, "Undefined Store Status");
        rows(2, "Invalid Search request");
        rows(4, "Bad link in Search request");
        rows(5, "Access to the resource was denied (Search request)");
        rows(6, "Resource not found on server (Search request)");
        rows(8, "Search query is too complex");
        rows(13, "Access to the resource was blocked (Search request)");
        rows(15, "Unhandled status:");
        QTest::newRow("mail 9") << int(Mail) << 9 << QString();
        QTest::newRow("people 9") << int(People) << 9 << "Unhandled status:";
        QTest::newRow("mail 14") << int(Mail) << 14 << "Unhandled status:";
        QTest::newRow("people 14") << int(People) << 14 << QString();
        QTest::newRow("people 11") << int(People) << 11 << "Required Folder Sync";
        QTest::newRow("find 0") << int(Found) << 0 << "Undefined Response Status";
        QTest::newRow("find 2") << int(Found) << 2 << "Invalid Find request";
        QTest::newRow("find 4") << int(Found) << 4
                                << "Issue a new Find request with a Range value that begins with 0. ";
        QTest::newRow("find 5") << int(Found) << 5 << "Invalid request.";
    }

    void aStatusOfTheStore()
    {
        QFETCH(int, kind);
        QFETCH(int, status);
        QFETCH(QString, text);
        mBed->answer(kind == Found ? findReply(status) : searchReply(status, { mailResult("RgAA") }));
        const auto search = request(kind);
        QCOMPARE(run(*search), -2);
        QVERIFY(search->matchingIds().isEmpty());
        QVERIFY(mBed->mail->searchResults.isEmpty());
        QVERIFY(text.isEmpty() || mLog->texts().join('\n').contains(text));
        QCOMPARE(mLog->contains(QStringLiteral("Unhandled status:")), text == "Unhandled status:");
    }

    void aRefusalOfAFindMayStandForTheWhole()
    {
        for (const int status : { 2, 4 }) {
            mBed->answer(commandReply(Found, status));
            QCOMPARE(run(*request(Found)), -2);
        }
        QVERIFY(mLog->contains(QStringLiteral("Invalid Find request")));
        QVERIFY(!mLog->contains(QStringLiteral("Unhandled Search status: ")));
    }

    void theEndOfTheRangeIsASuccess()
    {
        mBed->answer(searchReply(12, { mailResult("RgAA") }));
        const auto mail = request(Mail);
        QCOMPARE(run(*mail), 0);
        QCOMPARE(mail->matchingIds().size(), 1);
        mBed->answer(searchReply(12));
        const auto people = request(People);
        QCOMPARE(run(*people), 0);
        QVERIFY(people->matchingIds().isEmpty());
    }

    void aStoreThatIsNotThereIsAskedFiveTimesMore_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("status");
        for (const int status : { 3, 7, 10 }) {
            QTest::newRow(qPrintable(QStringLiteral("mail %1").arg(status))) << int(Mail) << status;
            QTest::newRow(qPrintable(QStringLiteral("people %1").arg(status))) << int(People) << status;
        }
    }

    void aStoreThatIsNotThereIsAskedFiveTimesMore()
    {
        QFETCH(int, kind);
        QFETCH(int, status);
        mBed->answer(searchReply(status));
        mBed->answer(successReply(kind));
        QCOMPARE(run(*request(kind)), 0);
        for (int i = 0; i <= Retries; ++i)
            mBed->answer(searchReply(status));
        QCOMPARE(run(*request(kind)), -2);
        QCOMPARE(mLog->count(SearchText), Retries + 2);
        QVERIFY(mLog->contains(QStringLiteral("no more attempts, failing request")));
    }

    // The folders in between

    void staleFoldersAreRefreshed_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QByteArray>("stale");
        QTest::newRow("search") << int(Mail) << searchReply(11);
        QTest::newRow("find, in its place") << int(Found) << findReply(3);
        QTest::newRow("find, for the whole") << int(Found) << commandReply(Found, 3);
    }

    void staleFoldersAreRefreshed()
    {
        QFETCH(int, kind);
        QFETCH(QByteArray, stale);
        mBed->answer(stale);
        mBed->answer(foldersReply(1));
        mBed->answer(successReply(kind));
        const auto search = request(kind);
        QCOMPARE(run(*search), 0);
        QCOMPARE(mBed->sent().size(), 3);
        QVERIFY(mBed->sent().at(1).startsWith(QStringLiteral("FolderSync(")));
        QCOMPARE(mBed->sent().at(0), mBed->sent().at(2));
        QCOMPARE(search->matchingIds().size(), 1);
        QVERIFY(mLog->contains(QStringLiteral("Required Folder Sync")));
    }

    void foldersAreNotRefreshedForEver()
    {
        for (int i = 0; i < Retries; ++i) {
            mBed->answer(searchReply(11));
            mBed->answer(foldersReply(1));
        }
        mBed->answer(searchReply(11));
        QCOMPARE(run(*request(Mail)), -2);
        QVERIFY(mLog->contains(QStringLiteral("no more attempts, failing request")));
    }

    void aRefreshThatFailsIsTheEnd()
    {
        mBed->answer(searchReply(11));
        mBed->answer(foldersReply(10));
        const auto search = request(Mail);
        QCOMPARE(run(*search), 10);
        QVERIFY(mLog->contains(QStringLiteral("Unsuccess FolderSync request status: ")));
    }

    void aRefreshIsCancelledWithItsSearch()
    {
        mBed->answer(searchReply(11));
        mBed->answerNever();
        const auto search = request(Mail);
        connect(&mBed->server, &ScriptedServer::received, search.get(), [&] {
            if (mBed->server.requests().size() == 2)
                QMetaObject::invokeMethod(search.get(), "cancel", Qt::QueuedConnection);
        });
        QCOMPARE(run(*search), -4);
        QCOMPARE(mBed->server.requests().size(), 2);
    }

    void aRetryDuringARefreshSendsNothing()
    {
        mBed->answer(searchReply(11));
        mBed->answerNever();
        const auto search = request(Mail);
        connect(&mBed->server, &ScriptedServer::received, search.get(), [&] {
            if (mBed->server.requests().size() != 2)
                return;
            search->retrySend();
            QMetaObject::invokeMethod(search.get(), "cancel", Qt::QueuedConnection);
        });
        QCOMPARE(run(*search), -4);
        QVERIFY(mLog->contains(QStringLiteral("tried to resend command in FolderSyncState state")));
    }

    // Around the work

    void aSearchIsCancelled_data() { eachKind(); }
    void aSearchIsCancelled()
    {
        QFETCH(int, kind);
        mBed->answerNever();
        const auto search = request(kind);
        connect(&mBed->server, &ScriptedServer::received, search.get(), &Request::cancel);
        QCOMPARE(run(*search), -4);
        QCOMPARE(mLog->contains(QStringLiteral("Cancel Search request")), kind == Found);
    }

    void withoutAStoreForMailThereIsNoResult()
    {
        mBed->account->mails.reset();
        mBed->answer(successReply(Mail));
        QCOMPARE(run(*request(Mail)), -2);
        QVERIFY(mLog->contains(QStringLiteral("MailStorage is null")));
    }

    void aStoreThatRefusesIsAFailure()
    {
        mBed->mail->takesSearchResults = false;
        mBed->answer(successReply(Mail));
        const auto search = request(Mail);
        QCOMPARE(run(*search), -2);
        QVERIFY(search->matchingIds().isEmpty());
        QCOMPARE(search->totalItemsCount(), 0U);
    }

    void aServerThatDoesNotOfferTheCommandIsNotAsked_data() { eachKind(); }
    void aServerThatDoesNotOfferTheCommandIsNotAsked()
    {
        QFETCH(int, kind);
        mBed->account->setSupportedCommands({ QStringLiteral("Sync") });
        QCOMPARE(run(*request(kind)), -8);
    }

    void aFindIsNotSentBelow161()
    {
        FindRequest search(Account, Id);
        QCOMPARE(run(search), -8);
        QVERIFY(mLog->contains(QtWarningMsg, { QStringLiteral("Command not supported:") }));
    }
};

FENNEL_REGISTER_TEST(ServerSearchRequestTest)
#include "serversearchrequesttest.moc"
