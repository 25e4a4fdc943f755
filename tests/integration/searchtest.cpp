// SPDX-License-Identifier: LGPL-2.1-or-later
#include "common/dbustypes.h"
#include "common/easdbusinterfaceproxy.h"
#include "common/exchangeactivesync.h"
#include "support/logcollector.h"
#include "support/serversearches.h"
#include "support/synctestbed.h"
#include "support/testmain.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QDir>
#include <QSignalSpy>
#include <QtTest>

#include <qmailmessage.h>
#include <qmailmessagekey.h>
#include <qmailstore.h>

#include <memory>

using Simulator::Override;
using Simulator::Person;

namespace {

const QStringList allVersions { QStringLiteral("12.0"), QStringLiteral("12.1"), QStringLiteral("14.0"),
    QStringLiteral("14.1"), QStringLiteral("16.0"), QStringLiteral("16.1") };

const QString retryText = QStringLiteral("we should try to send command again later. Timeout (in mseconds):");
constexpr int attempts = 6;

QByteArray picture(int number)
{
    return QByteArray(20000 + number, char('a' + number % 26));
}

Person person(int number)
{
    Person made = Person::user(QStringLiteral("person%1").arg(number, 3, 10, QLatin1Char('0')));
    return made.setPicture(picture(number));
}

/** A client of the daemon beside the bus. */
class PeerClient : public QObject
{
    Q_OBJECT

public:
    PeerClient()
        : mConnection(QDBusConnection::connectToPeer(
            ExchangeActiveSync::EAS_DBUS_PEER_ADDRESS, QStringLiteral("search-test")))
    {
        mConnection.connect(QString(), ExchangeActiveSync::EAS_DBUS_PEER_PATH_NAME,
            QStringLiteral("org.fennelos.easdaemonp2p"), QStringLiteral("galItemReceived"), this,
            SLOT(onItem(qulonglong, qulonglong, qulonglong, GalItem)));
    }
    ~PeerClient() override { QDBusConnection::disconnectFromPeer(QStringLiteral("search-test")); }

    /** The engine has taken the connection once it answers. */
    bool isServed() const
    {
        const auto question =
            QDBusMessage::createMethodCall(QString(), ExchangeActiveSync::EAS_DBUS_PEER_PATH_NAME,
                QStringLiteral("org.freedesktop.DBus.Introspectable"), QStringLiteral("Introspect"));
        return mConnection.call(question).type() == QDBusMessage::ReplyMessage;
    }

    QMap<qulonglong, QMap<qulonglong, GalItem>> items;

private Q_SLOTS:
    void onItem(qulonglong, qulonglong requestId, qulonglong number, const GalItem &item)
    {
        items[requestId].insert(number, item);
    }

private:
    QDBusConnection mConnection;
};

} // namespace

/** Searches of mail and people, from a client's call over the bus to the server and back. */
class SearchTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<SyncTestBed> mBed;
    std::unique_ptr<ServerSearches> mSearches;

    bool start(const QString &version)
    {
        mBed = std::make_unique<SyncTestBed>(QStringList { version });
        if (!mBed->isReady())
            return false;
        mBed->mailbox().deliver(mBed->mailbox().inboxId(),
            SyncTestBed::message(QStringLiteral("here"), QStringLiteral("plan A")));
        mSearches = std::make_unique<ServerSearches>(mBed->accountId());
        return mBed->sync() == 0;
    }
    /** A message that the device does not have yet. */
    void deliver(const QString &subject, const QString &text = QStringLiteral("plan B"))
    {
        mBed->mailbox().deliver(mBed->mailbox().inboxId(), SyncTestBed::message(subject, text));
    }
    int count(const char *command) const
    {
        return mBed->server().requests(QString::fromLatin1(command)).size();
    }
    static QStringList subjects(const QList<qulonglong> &ids)
    {
        QStringList found;
        for (const qulonglong id : ids)
            found.append(QMailMessageMetaData(QMailMessageId(id)).subject());
        found.sort();
        return found;
    }
    static bool isResult(qulonglong id)
    {
        const QMailMessageMetaData message { QMailMessageId(id) };
        return message.id().isValid() && (message.status() & QMailMessage::Temporary);
    }
    QString localFolder(const QString &path) const
    {
        return QString::number(mBed->deviceFolder(path).toULongLong());
    }
    static void eachVersion()
    {
        QTest::addColumn<QString>("version");
        for (const QString &version : allVersions)
            QTest::newRow(qPrintable(version)) << version;
    }

private Q_SLOTS:
    void init() { ExchangeActiveSync::registerDBusTypes(); }
    // There is one engine at a time.
    void cleanup()
    {
        if (mBed)
            QCOMPARE(mBed->server().failures(), QStringList());
        mSearches.reset();
        mBed.reset();
    }

    void resultsAreNoPartOfWhatIsSynchronised_data() { eachVersion(); }
    void resultsAreNoPartOfWhatIsSynchronised()
    {
        QFETCH(QString, version);
        QVERIFY(start(version));
        deliver(QStringLiteral("later"));
        const QStringList before = mBed->deviceState();
        const ServerSearches::Result found = mSearches->mail({ QStringLiteral("plan") });
        QCOMPARE(found.status, 0);
        QCOMPARE(found.count, 0U);
        QCOMPARE(subjects(found.ids), QStringList({ "here", "later" }));
        for (const qulonglong id : found.ids)
            QVERIFY(isResult(id));
        QCOMPARE(mBed->deviceState(), before);
        // What the user does to them is no change for the server.
        QMailStore *const store = QMailStore::instance();
        const QMailMessageId read(found.ids.at(0));
        const QMailMessageId removed(found.ids.at(1));
        const bool isRead = QMailMessageMetaData(read).status() & QMailMessage::Read;
        QVERIFY(store->updateMessagesMetaData(QMailMessageKey::id(read), QMailMessage::Read, !isRead));
        QVERIFY(store->removeMessage(removed, QMailStore::CreateRemovalRecord));
        for (int round = 0; round < 2; ++round) {
            mBed->server().clearRequests();
            QCOMPARE(mBed->sync(), 0);
            QCOMPARE(mBed->deviceState(), mBed->serverState());
            for (const Simulator::RecordedRequest &request : mBed->server().requests(QStringLiteral("Sync")))
                QVERIFY2(!request.document.has(QStringLiteral("Collections/Collection/Commands")),
                    qPrintable(request.dump()));
            QVERIFY(isResult(found.ids.at(0)));
        }
        // The same search finds the same message again, under the same number or another one.
        const ServerSearches::Result again = mSearches->mail({ QStringLiteral("plan") });
        QCOMPARE(subjects(again.ids), QStringList({ "here", "later" }));
        QCOMPARE(mBed->deviceState(), mBed->serverState());
    }

    void aResultCanBeReadWhole_data() { eachVersion(); }
    void aResultCanBeReadWhole()
    {
        QFETCH(QString, version);
        QVERIFY(start(version));
        const QString text = QStringLiteral("plan ") + QString(1000, QLatin1Char('x'));
        deliver(QStringLiteral("long"), text);
        const ServerSearches::Result found = mSearches->mail({ QStringLiteral("long") });
        QCOMPARE(found.ids.size(), 1);
        QCOMPARE(mBed->downloadMessages({ found.ids.constFirst() }, false), 0);
        const QMailMessage message { QMailMessageId(found.ids.constFirst()) };
        const QMailMessagePartContainer *const plain = message.findPlainTextContainer();
        QVERIFY(plain);
        QCOMPARE(plain->body().data().trimmed(), text);
        QVERIFY(isResult(found.ids.constFirst()));
    }

    void aResultOfAFindCanBeReadWhole()
    {
        QVERIFY(start(QStringLiteral("16.1")));
        const QString text = QStringLiteral("plan ") + QString(1000, QLatin1Char('x'));
        deliver(QStringLiteral("long"), text);
        const ServerSearches::Result found = mSearches->find(QStringLiteral("long"));
        QCOMPARE(found.ids.size(), 1);
        QVERIFY(isResult(found.ids.constFirst()));
        QCOMPARE(mBed->downloadMessages({ found.ids.constFirst() }, false), 0);
        const QMailMessage message { QMailMessageId(found.ids.constFirst()) };
        const QMailMessagePartContainer *const plain = message.findPlainTextContainer();
        QVERIFY(plain);
        QCOMPARE(plain->body().data().trimmed(), text);
        // It is still a result, and becomes the message of its folder with the next sync.
        QVERIFY(isResult(found.ids.constFirst()));
        QCOMPARE(mBed->sync(), 0);
        QVERIFY(!isResult(found.ids.constFirst()));
        QCOMPARE(mBed->deviceState(), mBed->serverState());
    }

    void mailIsSearchedByFolderAndTime()
    {
        QVERIFY(start(QStringLiteral("14.1")));
        const QString projects = mBed->mailbox().addFolder(QStringLiteral("Projects"));
        const auto place = [&](const QString &folder, const char *subject, int day) {
            mBed->mailbox().deliver(folder, SyncTestBed::message(QLatin1String(subject), "plan"),
                QDateTime(QDate(2026, 5, day), QTime(10, 0), Qt::UTC));
        };
        place(projects, "first", 1);
        place(projects, "second", 2);
        place(mBed->mailbox().inboxId(), "third", 3);
        QCOMPARE(mBed->sync(), 0);
        ServerSearches::Mail search { QStringLiteral("plan") };
        search.folderId = localFolder(QStringLiteral("Projects"));
        QCOMPARE(subjects(mSearches->mail(search).ids), QStringList({ "first", "second" }));
        search.from = QStringLiteral("2026-05-02T10:00:00+05:00");
        QCOMPARE(subjects(mSearches->mail(search).ids), QStringList { "second" });
        search = { QString(), QString(), QStringLiteral("2026-05-02T00:00:00Z"),
            QStringLiteral("2026-05-04T00:00:00Z") };
        QCOMPARE(subjects(mSearches->mail(search).ids), QStringList({ "second", "third" }));
        search.limit = 1;
        const ServerSearches::Result part = mSearches->mail({ QStringLiteral("plan"), {}, {}, {}, 1 });
        QCOMPARE(part.ids.size(), 2);
        QCOMPARE(part.count, 2U);
    }

    void foldersThatTheServerHasChangedAreRefreshedFirst()
    {
        QVERIFY(start(QStringLiteral("14.1")));
        mBed->mailbox().addFolder(QStringLiteral("New"));
        mBed->server().clearRequests();
        QCOMPARE(subjects(mSearches->mail({ QStringLiteral("plan") }).ids), QStringList { "here" });
        QCOMPARE(count("Search"), 2);
        QCOMPARE(count("FolderSync"), 1);
        QCOMPARE(mBed->deviceFolders(), mBed->serverFolders());
    }

    void aHierarchyThatIsLostMeanwhileComesBackWhole()
    {
        QVERIFY(start(QStringLiteral("14.1")));
        mBed->mailbox().addFolder(QStringLiteral("New"));
        mBed->server().overrideNext(QStringLiteral("FolderSync"), Override::topStatus(9));
        QCOMPARE(mSearches->mail({ QStringLiteral("plan") }).status, 0);
        QTRY_COMPARE_WITH_TIMEOUT(mBed->deviceState(), mBed->serverState(), 60000);
        QCOMPARE(mBed->deviceFolders(), mBed->serverFolders());
    }

    void aFindIsTheMessageThatTheDeviceHas()
    {
        QVERIFY(start(QStringLiteral("16.1")));
        deliver(QStringLiteral("later"));
        const QStringList before = mBed->deviceState();
        const qulonglong here = mBed->deviceMessage(QStringLiteral("here")).toULongLong();
        const ServerSearches::Result found = mSearches->find(QStringLiteral("plan"));
        QCOMPARE(found.status, 0);
        QCOMPARE(subjects(found.ids), QStringList({ "here", "later" }));
        QVERIFY(found.ids.contains(here));
        QVERIFY(!isResult(here));
        QCOMPARE(mBed->deviceState(), before);
        // The sync makes the result the message of its folder.
        QCOMPARE(mBed->sync(), 0);
        QCOMPARE(mBed->deviceState(), mBed->serverState());
        for (const qulonglong id : found.ids)
            QVERIFY(!isResult(id));
        QCOMPARE(subjects(mSearches->find(QStringLiteral("plan"), localFolder(QStringLiteral("Inbox"))).ids),
            QStringList({ "here", "later" }));
    }

    // Statuses

    void everyStatusOfTheStoreAtEveryVersion_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<bool>("isMail");
        QTest::addColumn<int>("code");
        QTest::addColumn<int>("end");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("requests");
        struct Row
        {
            int code;
            const char *text;
            int requests;
        };
        static const Row rows[] = {
            { 2, "Invalid Search request", 1 },
            { 3, qPrintable(retryText), attempts },
            { 4, "Bad link in Search request", 1 },
            { 5, "Access to the resource was denied (Search request)", 1 },
            { 6, "Resource not found on server (Search request)", 1 },
            { 7, "we should try to send command again later. Timeout (in mseconds):", attempts },
            { 8, "Search query is too complex", 1 },
            { 9, "", 1 },
            { 10, "we should try to send command again later. Timeout (in mseconds):", attempts },
            { 13, "Access to the resource was blocked (Search request)", 1 },
            { 14, "", 1 },
            { 15, "Unhandled status:", 1 },
        };
        for (const QString &version : allVersions) {
            for (const bool isMail : { true, false }) {
                for (const Row &row : rows)
                    QTest::newRow(qPrintable(
                        QStringLiteral("%1 %2 %3")
                            .arg(version, isMail ? QStringLiteral("mail") : QStringLiteral("people"),
                                QString::number(row.code))))
                        << version << isMail << row.code << -2 << QString::fromLatin1(row.text)
                        << row.requests;
                QTest::newRow(
                    qPrintable(QStringLiteral("%1 the end of the range, %2").arg(version).arg(isMail)))
                    << version << isMail << 12 << 0 << QString() << 1;
            }
            QTest::newRow(qPrintable(version + QStringLiteral(" old folders for ever")))
                << version << true << 11 << -2 << QStringLiteral("Required Folder Sync") << attempts;
        }
    }

    void everyStatusOfTheStoreAtEveryVersion()
    {
        QFETCH(QString, version);
        QFETCH(bool, isMail);
        QFETCH(int, code);
        QFETCH(int, end);
        QFETCH(QString, text);
        QFETCH(int, requests);
        QVERIFY(start(version));
        mBed->server().overrideAll(QStringLiteral("Search"), Override::collectionStatus(code));
        const LogCollector log;
        const ServerSearches::Result result =
            isMail ? mSearches->mail({ QStringLiteral("plan") }) : mSearches->people(QStringLiteral("user"));
        QCOMPARE(result.status, end);
        QVERIFY2(text.isEmpty() || log.contains(text), qPrintable(log.texts().join(QLatin1Char('\n'))));
        QCOMPARE(count("Search"), requests);
        QVERIFY(result.ids.isEmpty());
    }

    void everyStatusOfAFind_data()
    {
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("requests");
        QTest::newRow("2") << 2 << "Invalid Find request" << 1;
        QTest::newRow("3") << 3 << "Required Folder Sync" << attempts;
        QTest::newRow("4") << 4 << "Issue a new Find request with a Range value that begins with 0. " << 1;
        QTest::newRow("5") << 5 << "Invalid request." << 1;
    }

    void everyStatusOfAFind()
    {
        QFETCH(int, code);
        QFETCH(QString, text);
        QFETCH(int, requests);
        QVERIFY(start(QStringLiteral("16.1")));
        mBed->server().overrideAll(QStringLiteral("Find"), Override::collectionStatus(code));
        const LogCollector log;
        QCOMPARE(mSearches->find(QStringLiteral("plan")).status, -2);
        QVERIFY2(log.contains(text), qPrintable(log.texts().join(QLatin1Char('\n'))));
        QCOMPARE(count("Find"), requests);
    }

    void statusesOfTheCommand_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<int>("code");
        QTest::addColumn<int>("end");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("requests");
        const QString ends = QStringLiteral("server error. We shouldn't retry later. Completing request");
        const QString device =
            QStringLiteral("invalid Device ID or Type. Trying to update Device information");
        for (const QString &version : allVersions) {
            const auto row = [&](int code, int end, const QString &text, int requests) {
                QTest::newRow(qPrintable(version + QLatin1Char(' ') + QString::number(code)))
                    << version << code << end << text << requests;
            };
            row(3, 3, QStringLiteral("Unhandled Search status: "), 1);
            row(106, 106, ends, 1);
            row(108, 0, device, 2);
            row(109, 0, device, 2);
            row(110, 110, ends, 1);
            row(111, 0, retryText, 2);
        }
    }

    void statusesOfTheCommand()
    {
        QFETCH(QString, version);
        QFETCH(int, code);
        QFETCH(int, end);
        QFETCH(QString, text);
        QFETCH(int, requests);
        QVERIFY(start(version));
        mBed->server().overrideNext(QStringLiteral("Search"), Override::topStatus(code));
        const LogCollector log;
        QCOMPARE(mSearches->people(QStringLiteral("user")).status, end);
        QVERIFY2(log.contains(text), qPrintable(log.texts().join(QLatin1Char('\n'))));
        QCOMPARE(count("Search"), requests);
    }

    void aServerThatOffersNoFindIsNotAsked()
    {
        QVERIFY(start(QStringLiteral("16.0")));
        QCOMPARE(mSearches->find(QStringLiteral("plan")).status, -8);
        QCOMPARE(count("Find"), 0);
    }

    void aReplyWithoutAnEndIsGivenUp()
    {
        QVERIFY(start(QStringLiteral("14.1")));
        mBed->server().overrideNext(QStringLiteral("Search"), Override().endless());
        QCOMPARE(mSearches->people(QStringLiteral("user")).status, -2);
        QCOMPARE(mSearches->people(QStringLiteral("user")).status, 0);
    }

    void aMillionResultsAreRefused()
    {
        QVERIFY(start(QStringLiteral("14.1")));
        const auto many = [](Simulator::WbxmlNode &reply) {
            Simulator::WbxmlNode *const store = reply.find(QStringLiteral("Response/Store"));
            const Simulator::WbxmlNode result = store->at(QStringLiteral("Result"));
            QVector<Simulator::WbxmlNode> &children = store->children();
            for (int i = 0; i < 1000000; ++i)
                children.append(result);
        };
        mBed->server().overrideNext(QStringLiteral("Search"), Override::edited(many));
        const ServerSearches::Result result = mSearches->mail({ QStringLiteral("plan") });
        QCOMPARE(result.status, -2);
        QVERIFY(result.ids.isEmpty());
        QCOMPARE(mBed->deviceState(), mBed->serverState());
        QCOMPARE(mSearches->mail({ QStringLiteral("plan") }).status, 0);
    }

    void aPictureOfAHundredMegabytesIsRefused()
    {
        QVERIFY(start(QStringLiteral("14.1")));
        mBed->server().changeDirectory([](Simulator::Directory &directory) {
            directory.add(person(0));
            directory.add(person(1));
        });
        const auto largeBy = [](int size) {
            return Override::edited([size](Simulator::WbxmlNode &reply) {
                reply.find(QStringLiteral("Response/Store/Result/Properties/GAL:Picture/Data"))
                    ->setText(QString(size, QLatin1Char('A')));
            });
        };
        mBed->server().overrideNext(QStringLiteral("Search"), largeBy(100 * 1024 * 1024));
        QCOMPARE(mSearches->people(QStringLiteral("person")).status, -2);
        // A smaller one is dropped, and its person stays.
        mBed->server().overrideNext(QStringLiteral("Search"), largeBy(10 * 1024 * 1024));
        const ServerSearches::Result result = mSearches->people(QStringLiteral("person"));
        QCOMPARE(result.status, 0);
        QCOMPARE(result.people.size(), 2);
        QCOMPARE(result.people.at(0).pictureData(), QString());
        QCOMPARE(QByteArray::fromBase64(result.people.at(1).pictureData().toLatin1()), picture(1));
    }

    void aReplyThatIsCutIsNoResult()
    {
        QVERIFY(start(QStringLiteral("14.1")));
        for (int cut = 0; cut < 40; cut += 3) {
            mBed->server().overrideNext(QStringLiteral("Search"), Override().truncateAt(cut));
            const ServerSearches::Result result = mSearches->mail({ QStringLiteral("plan") });
            QVERIFY2(result.status != 0 && result.ids.isEmpty(), qPrintable(QString::number(cut)));
        }
        QCOMPARE(mSearches->mail({ QStringLiteral("plan") }).ids.size(), 1);
    }

    // People

    void peopleComeWithTheirPictures_data() { eachVersion(); }
    void peopleComeWithTheirPictures()
    {
        QFETCH(QString, version);
        QVERIFY(start(version));
        mBed->server().changeDirectory([](Simulator::Directory &directory) {
            for (int i = 0; i < 3; ++i)
                directory.add(person(i));
        });
        const ServerSearches::Result found = mSearches->people(QStringLiteral("person"), 2);
        QCOMPARE(found.status, 0);
        QCOMPARE(found.count, 3U);
        QCOMPARE(found.ids, QList<qulonglong>({ 1, 2 }));
        QCOMPARE(found.people.size(), 2);
        QCOMPARE(found.people.at(1).emailAddress(), QStringLiteral("person001@example.com"));
        const bool hasPictures = version >= QLatin1String("14.1");
        QCOMPARE(QByteArray::fromBase64(found.people.at(1).pictureData().toLatin1()),
            hasPictures ? picture(1) : QByteArray());
    }

    void peopleCrossThePeerBusWhole()
    {
        constexpr int people = 100;
        QVERIFY(start(QStringLiteral("14.1")));
        mBed->server().changeDirectory([](Simulator::Directory &directory) {
            for (int i = 0; i < people; ++i)
                directory.add(person(i));
        });
        PeerClient peer;
        QVERIFY(peer.isServed());
        EasDBusInterfaceProxy daemon(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME,
            ExchangeActiveSync::EAS_DBUS_PATH_NAME, QDBusConnection::sessionBus());
        QSignalSpy ends(&daemon, &EasDBusInterfaceProxy::searchGALFinished);
        QDBusPendingReply<qulonglong> call =
            daemon.searchGAL(mBed->accountId(), QStringLiteral("person"), 0, people - 1, false, false);
        QTRY_VERIFY_WITH_TIMEOUT(call.isFinished(), 60000);
        QVERIFY2(call.isValid(), qPrintable(call.error().message()));
        QTRY_COMPARE_WITH_TIMEOUT(ends.size(), 1, 60000);
        QCOMPARE(ends.first().at(1).toULongLong(), call.value());
        QCOMPARE(ends.first().at(2).toInt(), 0);
        QCOMPARE(ends.first().at(3).toInt(), people);
        const auto numbers = ends.first().at(4).value<QList<qulonglong>>();
        QCOMPARE(numbers.size(), people);
        QTRY_COMPARE_WITH_TIMEOUT(peer.items.value(call.value()).size(), people, 60000);
        for (int i = 0; i < people; ++i) {
            const GalItem item = peer.items.value(call.value()).value(numbers.at(i));
            QCOMPARE(item.displayName(), person(i).text(QStringLiteral("DisplayName")));
            QCOMPARE(QByteArray::fromBase64(item.pictureData().toLatin1()), picture(i));
        }
    }

    void withoutThePeerSocketASearchStillEnds()
    {
        QVERIFY(start(QStringLiteral("14.1")));
        mBed->server().changeDirectory([](Simulator::Directory &directory) { directory.add(person(0)); });
        const QString socket = ExchangeActiveSync::EAS_DBUS_PEER_ADDRESS.section(QLatin1Char('='), 1);
        mSearches.reset();
        mBed->withoutEngine([&socket] {
            QFile::remove(socket);
            // A folder where the socket should be stands for a folder that is not writable, also for root.
            QVERIFY(QDir().mkpath(socket + QStringLiteral("/in/the/way")));
        });
        EasDBusInterfaceProxy daemon(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME,
            ExchangeActiveSync::EAS_DBUS_PATH_NAME, QDBusConnection::sessionBus());
        QSignalSpy ends(&daemon, &EasDBusInterfaceProxy::searchGALFinished);
        daemon.searchGAL(mBed->accountId(), QStringLiteral("person"), 0, 9, false, false);
        QTRY_COMPARE_WITH_TIMEOUT(ends.size(), 1, 60000);
        QCOMPARE(ends.first().at(2).toInt(), 0);
        QCOMPARE(ends.first().at(3).toInt(), 1);
        mBed->withoutEngine([&socket] { QVERIFY(QDir(socket).removeRecursively()); });
    }
};

FENNEL_REGISTER_TEST(SearchTest)
#include "searchtest.moc"
