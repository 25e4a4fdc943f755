// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/easdatabase.h"
#include "application/requestmanager.h"
#include "support/logcollector.h"
#include "support/requestbed.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QSignalSpy>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QtTest>

#include <memory>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

constexpr EasAccountId Account = RequestBed::Account;

const QString MailOptions =
    QStringLiteral("Options(Range=0-%1,DeepTraversal,MIMESupport=1,"
                   "BodyPreference(Type=1,TruncationSize=255),BodyPreference(Type=4))");

QByteArray searchReply(const QVector<WbxmlNode> &results)
{
    QVector<WbxmlNode> store { node(Search::Status, "1") };
    store += results;
    return document(node(Search::Search,
        { node(Search::Status, "1"), node(Search::Response, { node(Search::Store, store) }) }));
}

QByteArray findReply()
{
    return document(node(Find::Find,
        { node(Find::Status, "1"),
            node(Find::Response,
                { node(Find::Status, "1"), node(Find::Range, "0-9"), node(Find::Total, "12") }) }));
}

} // namespace

/** What the calls of clients for a search ask of the server, and what they are answered with. */
class SearchCallsTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<RequestBed> mBed;
    std::unique_ptr<LogCollector> mLog;
    std::unique_ptr<QSignalSpy> mMessages;
    std::unique_ptr<QSignalSpy> mPeople;
    std::unique_ptr<QSignalSpy> mFound;
    std::unique_ptr<QSignalSpy> mOthers;

    struct MailCall
    {
        QString folder;
        QString from;
        QString to;
        QString text;
        qulonglong limit = 10;
    };

    void searchMail(const MailCall &call) const
    {
        mBed->manager->onSearchMessagesRequest(
            Account, call.folder, call.from, call.to, call.text, call.limit, 7);
    }
    void find(const QString &folder, int type, qulonglong limit) const
    {
        mBed->account->setProtocolVersion(ExchangeActiveSync::ProtocolVersion161);
        mBed->manager->onFindRequest(Account, folder, QStringLiteral("plan"), type, limit, 7);
    }
    /** The status that the one end of a call has. */
    static int statusOf(const QSignalSpy &ends)
    {
        const bool isMine = ends.size() == 1 && ends.first().at(0).toULongLong() == Account
            && ends.first().at(1).toULongLong() == 7;
        return isMine ? ends.first().at(2).toInt() : -1000;
    }
    QString query() const
    {
        const QString sent = mBed->sent().value(0);
        const int begin = sent.indexOf(QStringLiteral("And("));
        return sent.mid(begin, sent.indexOf(QStringLiteral(",Options")) - begin - 1);
    }

private Q_SLOTS:
    void init()
    {
        mBed = std::make_unique<RequestBed>(QStringList { QStringLiteral("Search"), QStringLiteral("Find") });
        QTRY_VERIFY(mBed->isOnline());
        mLog = std::make_unique<LogCollector>();
        EasFolderItem folder;
        folder.setServerId(QStringLiteral("5"));
        folder.setLocalId(QStringLiteral("31"));
        folder.setServerParentId(QStringLiteral("0"));
        folder.setType(EasFolderItem::DefaultInboxFolder);
        QVERIFY(EasDatabase::instance()->addFolderItems(Account, { folder }));
        RequestManager *const manager = mBed->manager;
        mMessages = std::make_unique<QSignalSpy>(manager, &RequestManager::searchMessagesFinished);
        mPeople = std::make_unique<QSignalSpy>(manager, &RequestManager::searchGALFinished);
        mFound = std::make_unique<QSignalSpy>(manager, &RequestManager::findMessagesFinished);
        mOthers = std::make_unique<QSignalSpy>(manager, &RequestManager::requestFinished);
    }

    void cleanup()
    {
        QCOMPARE(mOthers->size(), 0);
        mOthers.reset();
        mFound.reset();
        mPeople.reset();
        mMessages.reset();
        mLog.reset();
        QCOMPARE(RequestBed::end(mBed), QString());
    }

    void mailIsSearchedAsTold()
    {
        mBed->answer(searchReply({ node(Search::Result,
                                       { node(Search::LongId, "RgAA"), node(AirSync::CollectionId, "5"),
                                           node(Search::Properties) }),
            node(Search::Range, "0-0"), node(Search::Total, "4") }));
        searchMail({ QStringLiteral("31"), QString(), QString(), QStringLiteral("plan") });
        QTRY_COMPARE(mMessages->size(), 1);
        QCOMPARE(statusOf(*mMessages), 0);
        QCOMPARE(mMessages->first().at(3).toUInt(), 3U);
        QCOMPARE(mMessages->first().at(4).value<QList<qulonglong>>(), QList<qulonglong> { 100 });
        QCOMPARE(mBed->sent(),
            QStringList {
                QStringLiteral(
                    "Search(Store(Name=Mailbox,Query(And(FreeText=plan,Class=Email,CollectionId=5)),")
                + MailOptions.arg(10) + QStringLiteral("))") });
    }

    void whatIsNotSaidIsLeftOut_data()
    {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("query");
        const QString mail = QStringLiteral("Class=Email");
        QTest::newRow("nothing") << ""
                                 << ""
                                 << ""
                                 << "And(" + mail + ")";
        QTest::newRow("text") << ""
                              << ""
                              << "Übersicht"
                              << "And(FreeText=Übersicht," + mail + ")";
        QTest::newRow("in UTC") << "2026-11-01T10:00:00Z"
                                << ""
                                << ""
                                << "And(GreaterThan(DateReceived,Value=2026-11-01T10:00:00.000Z)," + mail
                + ")";
        QTest::newRow("in another zone")
            << ""
            << "2026-11-01T10:00:00+02:00"
            << ""
            << "And(LessThan(DateReceived,Value=2026-11-01T08:00:00.000Z)," + mail + ")";
        const QDateTime local(QDate(2026, 11, 1), QTime(10, 0));
        QTest::newRow("local") << "2026-11-01T10:00:00"
                               << ""
                               << ""
                               << "And(GreaterThan(DateReceived,Value="
                + local.toUTC().toString(QStringLiteral("yyyy-MM-dd'T'HH:mm:ss.zzz'Z'")) + ")," + mail + ")";
    }

    void whatIsNotSaidIsLeftOut()
    {
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(QString, text);
        mBed->answer(searchReply({}));
        searchMail({ QString(), from, to, text });
        QTRY_COMPARE(mMessages->size(), 1);
        QTEST(query(), "query");
    }

    void whatSaysNothingIsRefused_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<qulonglong>("limit");
        QTest::newRow("an unknown folder") << "32"
                                           << ""
                                           << "" << 10ULL;
        QTest::newRow("no time") << ""
                                 << "yesterday"
                                 << "" << 10ULL;
        QTest::newRow("no time of an end") << ""
                                           << ""
                                           << "2026-13-01" << 10ULL;
        QTest::newRow("no results wanted") << ""
                                           << ""
                                           << "" << 0ULL;
    }

    void whatSaysNothingIsRefused()
    {
        QFETCH(QString, folder);
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(qulonglong, limit);
        searchMail({ folder, from, to, QStringLiteral("plan"), limit });
        QCOMPARE(statusOf(*mMessages), -3);
        QVERIFY(mBed->sent().isEmpty());
    }

    void aMappingThatCannotBeReadIsNoUnknownFolder()
    {
        QVERIFY(QSqlQuery(QSqlDatabase::database(QStringLiteral("fennel-eas-db")))
                    .exec(QStringLiteral("ALTER TABLE collections RENAME TO hidden")));
        searchMail({ QStringLiteral("31"), QString(), QString(), QStringLiteral("plan") });
        find(QStringLiteral("31"), 0, 10);
        QCOMPARE(statusOf(*mMessages), -2);
        QCOMPARE(statusOf(*mFound), -2);
    }

    void aHugeLimitIsCut()
    {
        mBed->answer(searchReply({}));
        searchMail({ QString(), QString(), QString(), QStringLiteral("plan"), 1ULL << 40U });
        QTRY_COMPARE(mMessages->size(), 1);
        QVERIFY(mBed->sent().at(0).contains(QStringLiteral("Range=0-2147483647")));
    }

    void peopleAreSearchedWithTheirPictures()
    {
        mBed->answer(searchReply(
            { node(Search::Result, { node(Search::Properties, { node(GAL::DisplayName, "Eva") }) }),
                node(Search::Total, "3") }));
        QStringList order;
        connect(mBed->manager, &RequestManager::galItemReceived, this,
            [&](qulonglong account, qulonglong id, qulonglong number, const GalItem &item) {
                order.append(
                    QStringLiteral("%1 %2 %3 ").arg(account).arg(id).arg(number) + item.displayName());
            });
        connect(mBed->manager, &RequestManager::searchGALFinished, this,
            [&] { order.append(QStringLiteral("end")); });
        mBed->manager->onSearchGALRequest(Account, QStringLiteral("e"), 0, 9, true, true, 7);
        QTRY_COMPARE(mPeople->size(), 1);
        QCOMPARE(statusOf(*mPeople), 0);
        QCOMPARE(mPeople->first().at(3).toUInt(), 3U);
        QCOMPARE(mPeople->first().at(4).value<QList<qulonglong>>(), QList<qulonglong> { 1 });
        QCOMPARE(order, QStringList({ QStringLiteral("7 7 1 Eva"), QStringLiteral("end") }));
        QVERIFY(mLog->contains(QStringLiteral("Got gal item for accountId:")));
        QCOMPARE(mBed->sent(),
            QStringList { QStringLiteral("Search(Store(Name=GAL,Query=e,Options(Range=0-9,DeepTraversal,"
                                         "RebuildResults,Picture(MaxSize=102400,MaxPictures=100))))") });
    }

    void peopleOfNoNameAreRefused()
    {
        mBed->manager->onSearchGALRequest(Account, {}, 0, 9, false, false, 7);
        mBed->manager->onFindRequest(Account, {}, {}, 1, 9, 7);
        QCOMPARE(statusOf(*mPeople), -3);
        QCOMPARE(statusOf(*mFound), -3);
        QVERIFY(mBed->sent().isEmpty());
    }

    void aFindGoesToMailOrPeople()
    {
        mBed->answer(findReply());
        find(QStringLiteral("31"), 0, 9);
        QTRY_COMPARE(mFound->size(), 1);
        QCOMPARE(statusOf(*mFound), 0);
        QCOMPARE(mFound->first().at(3).toUInt(), 2U);
        mBed->answer(findReply());
        find(QStringLiteral("not looked at"), 1, 9);
        QTRY_COMPARE(mFound->size(), 2);
        const QStringList sent = mBed->sent();
        QVERIFY2(sent.at(0).endsWith(QStringLiteral("MailBoxSearchCriterion(Query(FreeText=plan,Class=Email,"
                                                    "CollectionId=5),Options(Range=0-9,DeepTraversal))))")),
            qPrintable(sent.at(0)));
        QVERIFY2(sent.at(1).endsWith(QStringLiteral("GalSearchCriterion(Query=plan,Options(Range=0-9,"
                                                    "Picture(MaxSize=102400,MaxPictures=100)))))")),
            qPrintable(sent.at(1)));
    }

    void aFindThatSaysNothingIsRefused_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<int>("type");
        QTest::addColumn<qulonglong>("limit");
        QTest::newRow("an unknown folder") << "32" << 0 << 9ULL;
        QTest::newRow("an unknown kind") << "" << 2 << 9ULL;
        QTest::newRow("a kind below all") << "" << -1 << 9ULL;
        QTest::newRow("no messages wanted") << "" << 0 << 0ULL;
        QTest::newRow("no people wanted") << "" << 1 << 0ULL;
    }

    void aFindThatSaysNothingIsRefused()
    {
        QFETCH(QString, folder);
        QFETCH(int, type);
        QFETCH(qulonglong, limit);
        find(folder, type, limit);
        QCOMPARE(statusOf(*mFound), -3);
        QVERIFY(mBed->sent().isEmpty());
    }

    void aServerThatOffersNoneOfItIsNotAsked()
    {
        mBed->account->setSupportedCommands({ QStringLiteral("Sync") });
        searchMail({});
        mBed->manager->onSearchGALRequest(Account, QStringLiteral("e"), 0, 9, false, false, 7);
        find(QString(), 0, 9);
        QCOMPARE(statusOf(*mMessages), -8);
        QCOMPARE(statusOf(*mPeople), -8);
        QCOMPARE(statusOf(*mFound), -8);
    }
};

FENNEL_REGISTER_TEST(SearchCallsTest)
#include "searchcallstest.moc"
