// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/pingrequest.h"

#include "application/base/clockwatch.h"
#include "application/mapping/easdatabase.h"
#include "support/fakeconfigurations.h"
#include "support/hiddentable.h"
#include "support/logcollector.h"
#include "support/requestbed.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QtTest>

#include <memory>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

constexpr EasAccountId Account = RequestBed::Account;

QByteArray reply(int status, const QVector<WbxmlNode> &more = {})
{
    return document(
        node(Ping::Ping, QVector<WbxmlNode> { node(Ping::Status, QString::number(status)) } + more));
}

QString ping(int heartbeat, const QString &folders)
{
    return QStringLiteral("Ping(HeartbeatInterval=%1,Folders(%2))").arg(heartbeat).arg(folders);
}

const QString Inbox = QStringLiteral("Folder(Id=5,Class=Email)");
const QString Projects = QStringLiteral("Folder(Id=12,Class=Email)");
const QString CalendarFolders = QStringLiteral("Folder(Id=8,Class=Calendar),Folder(Id=18,Class=Calendar)");
const QString ContactFolders = QStringLiteral("Folder(Id=9,Class=Contacts),Folder(Id=19,Class=Contacts)");
const QString MailFolders = Inbox + ',' + Projects;
const QString Everything = MailFolders + ',' + CalendarFolders + ',' + ContactFolders;
const QString Few =
    QStringLiteral("Folder(Id=5,Class=Email),Folder(Id=6,Class=Email),Folder(Id=8,Class=Calendar),"
                   "Folder(Id=9,Class=Contacts)");

} // namespace

/** A Ping that is kept going, and what its answers mean. */
class PingRequestTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<RequestBed> mBed;
    QSharedPointer<FakeEmailConfiguration> mEmail;
    QSharedPointer<FakeCalendarConfiguration> mCalendar;
    QSharedPointer<FakeContactsConfiguration> mContacts;

    static EasFolderItem addFolder(const char *serverId, EasFolderItem::FolderType type)
    {
        EasFolderItem folder;
        folder.setServerId(QString::fromLatin1(serverId));
        folder.setLocalId(QStringLiteral("local-") + QString::fromLatin1(serverId));
        folder.setServerParentId(QStringLiteral("0"));
        folder.setType(type);
        return EasDatabase::instance()->addFolderItems(Account, { folder }) ? folder : EasFolderItem();
    }

    /** The server waits as it was asked to before each answer. */
    void letTimePass()
    {
        mBed->clock.stop();
        connect(&mBed->server, &ScriptedServer::received, this, [this] { mBed->clock.advance(300000); });
    }

    /** The device's clock goes on without its timers. */
    void jump(int seconds)
    {
        mBed->clock.advance(qint64(seconds) * 1000);
        Q_EMIT ClockWatch::instance().jumped();
    }

    /** Those of the clock's timers that were of these lengths. */
    QList<int> intervals(const QList<int> &wanted) const
    {
        QList<int> found;
        for (const int interval : qAsConst(mBed->clock.intervals)) {
            if (wanted.contains(interval))
                found.append(interval);
        }
        return found;
    }

    int run(PingRequest &request) { return RequestBed::run(request); }

private Q_SLOTS:
    void init()
    {
        mBed = std::make_unique<RequestBed>(QStringList { QStringLiteral("Ping") });
        mEmail.reset(new FakeEmailConfiguration(Account));
        mCalendar.reset(new FakeCalendarConfiguration(Account));
        mContacts.reset(new FakeContactsConfiguration(Account));
        mBed->account->email = mEmail;
        mBed->account->calendar = mCalendar;
        mBed->account->contacts = mContacts;
        const EasFolderItem inbox = addFolder("5", EasFolderItem::DefaultInboxFolder);
        addFolder("6", EasFolderItem::DefaultDeletedItemsFolder);
        mBed->mail->synchronizedFolders = { inbox, addFolder("12", EasFolderItem::UserCreatedMailFolder) };
        addFolder("8", EasFolderItem::DefaultCalendarFolder);
        addFolder("18", EasFolderItem::UserCreatedCalendarFolder);
        addFolder("9", EasFolderItem::DefaultContactsFolder);
        addFolder("19", EasFolderItem::UserCreatedContactsFolder);
        QTRY_VERIFY(mBed->isOnline());
    }

    void cleanup() { QCOMPARE(RequestBed::end(mBed), QString()); }

    void changedFoldersAreReported()
    {
        mBed->answer(reply(2, { node(Ping::Folders, { node(Ping::Folder, "5") }) }));
        LogCollector log;
        PingRequest request(Account, 0);
        QCOMPARE(run(request), 2);
        QCOMPARE(request.responseFolders(), QStringList { QStringLiteral("5") });
        QCOMPARE(mBed->sent(), QStringList { ping(300, Everything) });
        QVERIFY(log.contains(QStringLiteral("startRequest")));
        QVERIFY(log.contains(QStringLiteral("ping command finished: ")));
        QVERIFY(log.contains(QStringLiteral("Changes occurred in at least one of the monitored folders.")));
    }

    void withEveryServiceDisabledNoFoldersAreNamed()
    {
        mEmail->isEnabled = mCalendar->isEnabled = mContacts->isEnabled = false;
        mBed->answer(reply(7));
        PingRequest request(Account, 0);
        QCOMPARE(run(request), 7);
        QCOMPARE(mBed->sent(), QStringList { QStringLiteral("Ping(HeartbeatInterval=300)") });
    }

    void aServiceThatIsDisabledIsNotWatched()
    {
        mCalendar->isEnabled = false;
        mBed->answer(reply(7));
        PingRequest request(Account, 0);
        QCOMPARE(run(request), 7);
        QCOMPARE(mBed->sent(), QStringList(ping(300, MailFolders + QStringLiteral(",") + ContactFolders)));
    }

    void withoutAConfigurationTheListEnds_data()
    {
        QTest::addColumn<int>("missing");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("folders");
        QTest::newRow("mail") << 0 << "emailConfig is null" << QString();
        QTest::newRow("calendar") << 1 << "calendarConfig is null" << MailFolders;
        QTest::newRow("contacts") << 2 << "contactsConfig is null" << MailFolders + ',' + CalendarFolders;
    }

    void withoutAConfigurationTheListEnds()
    {
        QFETCH(int, missing);
        QFETCH(QString, text);
        QFETCH(QString, folders);
        if (missing == 0)
            mBed->account->email.reset();
        else if (missing == 1)
            mBed->account->calendar.reset();
        else
            mBed->account->contacts.reset();
        mBed->answer(reply(7));
        LogCollector log;
        PingRequest request(Account, 0);
        QCOMPARE(run(request), 7);
        QVERIFY(log.contains(text));
        QCOMPARE(mBed->sent(),
            QStringList {
                folders.isEmpty() ? QStringLiteral("Ping(HeartbeatInterval=300)") : ping(300, folders) });
    }

    void foldersThatCannotBeReadEndTheRequest()
    {
        const HiddenTable hidden("collections");
        PingRequest request(Account, 0);
        QCOMPARE(run(request), -2);
    }

    void anAccountThatIsGoneEndsTheRequest()
    {
        mBed->manager->storage->forget(Account);
        PingRequest request(Account, 0);
        QCOMPARE(run(request), -2);
    }

    // Status 1

    void aQuietServerIsPingedAgainAtOnce()
    {
        letTimePass();
        mBed->answer(reply(1));
        mBed->answer(reply(1));
        mBed->answer(reply(7));
        LogCollector log;
        mBed->clock.intervals.clear();
        PingRequest request(Account, 0);
        QCOMPARE(run(request), 7);
        QCOMPARE(mBed->sent().count(ping(300, Everything)), 3);
        QVERIFY(log.contains(QStringLiteral("We should reping")));
        // No retry was counted, no pause made: what was waited for are the answers.
        QVERIFY(!log.contains(QStringLiteral("trying to send command again")));
        QCOMPARE(intervals({ 1000, 15000 }), QList<int>());
    }

    void aServerThatDoesNotWaitMakesPausesGrow()
    {
        mBed->clock.stop();
        for (int i = 0; i < 4; ++i)
            mBed->answer(reply(1));
        mBed->answer(reply(7));
        PingRequest request(Account, 0);
        mBed->clock.intervals.clear();
        QCOMPARE(run(request), 7);
        QCOMPARE(intervals({ 1000, 3000, 9000, 27000 }), QList<int>({ 1000, 3000, 9000, 27000 }));
    }

    void oneThatWaitsAgainEndsThePauses()
    {
        mBed->clock.stop();
        int received = 0;
        connect(&mBed->server, &ScriptedServer::received, this, [this, &received] {
            if (++received == 3)
                mBed->clock.advance(30000);
        });
        for (int i = 0; i < 4; ++i)
            mBed->answer(reply(1));
        mBed->answer(reply(7));
        PingRequest request(Account, 0);
        mBed->clock.intervals.clear();
        QCOMPARE(run(request), 7);
        QCOMPARE(intervals({ 1000, 3000, 9000, 27000 }), QList<int>({ 1000, 3000, 1000 }));
    }

    void aShortHeartbeatIsNotTooQuick()
    {
        mBed->account->setHeartbeatInterval(10);
        mBed->clock.stop();
        connect(&mBed->server, &ScriptedServer::received, this, [this] { mBed->clock.advance(5000); });
        mBed->answer(reply(1));
        mBed->answer(reply(7));
        PingRequest request(Account, 0);
        mBed->clock.intervals.clear();
        QCOMPARE(run(request), 7);
        QVERIFY(!mBed->clock.intervals.contains(1000));
    }

    void aPauseIsCancelled()
    {
        mBed->clock.stop();
        mBed->clock.held.insert(Clock::Timer::PushPause);
        mBed->answer(reply(1));
        PingRequest request(Account, 0, mBed->manager);
        QSignalSpy answered(&request, &PingRequest::answered);
        QSignalSpy completed(&request, &Request::requestCompleted);
        request.start();
        QVERIFY(answered.count() == 1 || answered.wait(60000));
        request.cancel();
        QCOMPARE(completed.count(), 1);
        QCOMPARE(request.status(), -4);
    }

    // What is repeated

    void whatIsRepeatedLater_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("text");
        QTest::newRow("parameters are missing")
            << 3 << "The Ping command request did not specify all the necessary parameters.";
        QTest::newRow("the syntax is wrong")
            << 4 << "Syntax error in Ping command request. We should try to send command again later.";
        QTest::newRow("the server failed") << 8 << "An error occurred on the server.";
        QTest::newRow("later, says the server")
            << 111 << "we should try to send command again later. Timeout (in mseconds): 5000";
        QTest::newRow("later, as an HTTP status")
            << 503 << "we should try to send command again later. Timeout (in mseconds): 5000";
    }

    void whatIsRepeatedLater()
    {
        QFETCH(int, status);
        QFETCH(QString, text);
        for (int i = 0; i < 6; ++i)
            mBed->answer(reply(status));
        LogCollector log;
        PingRequest request(Account, 0);
        mBed->clock.intervals.clear();
        QCOMPARE(run(request), status);
        // One Ping and five repetitions, each later than the one before.
        QCOMPARE(mBed->sent(), QVector<QString>(6, ping(300, Everything)).toList());
        QVERIFY(log.contains(text));
        QVERIFY(log.contains(QStringLiteral(" retrySend failed")));
        QCOMPARE(log.count(QStringLiteral("trying to send command again. Attempt: ")), 5);
        QCOMPARE(intervals({ 15000, 45000, 135000, 405000, 1215000 }),
            QList<int>({ 15000, 45000, 135000, 405000, 1215000 }));
    }

    void missingParametersAreLogged()
    {
        mBed->answer(reply(3));
        mBed->answer(reply(7));
        LogCollector log;
        PingRequest request(Account, 0);
        QCOMPARE(run(request), 7);
        QVERIFY(log.contains(QStringLiteral("mHeartbeatInterval: 300 mFolders.size: 6")));
    }

    void aRepetitionUsesTheNewestHeartbeat()
    {
        mBed->answer(reply(8));
        mBed->answer(reply(7));
        PingRequest request(Account, 0);
        connect(&request, &PingRequest::answered, this,
            [this](int) { mBed->account->setHeartbeatInterval(120); });
        QCOMPARE(run(request), 7);
        QCOMPARE(mBed->sent(), QStringList({ ping(300, Everything), ping(120, Everything) }));
    }

    void aQuietServerGivesTheAttemptsBack()
    {
        letTimePass();
        for (int i = 0; i < 5; ++i)
            mBed->answer(reply(8));
        mBed->answer(reply(1));
        for (int i = 0; i < 5; ++i)
            mBed->answer(reply(8));
        mBed->answer(reply(7));
        PingRequest request(Account, 0);
        QCOMPARE(run(request), 7);
        QCOMPARE(mBed->clock.intervals.count(405000), 2);
    }

    // Status 5

    void theHeartbeatOfTheServerIsKept()
    {
        mBed->answer(reply(5, { node(Ping::HeartbeatInterval, "480") }));
        mBed->answer(reply(7));
        LogCollector log;
        PingRequest request(Account, 0);
        QCOMPARE(run(request), 7);
        QVERIFY(log.contains(QStringLiteral(
            "heartbeat interval is outside the allowed range. Sending a new Ping with interval 480")));
        QVERIFY(!log.contains(QStringLiteral("trying to send command again")));
        mBed->answer(reply(7));
        PingRequest next(Account, 0);
        QCOMPARE(run(next), 7);
        QCOMPARE(mBed->sent(),
            QStringList({ ping(300, Everything), ping(480, Everything), ping(480, Everything) }));
    }

    void aHeartbeatOutOfReasonIsCut_data()
    {
        QTest::addColumn<QString>("told");
        QTest::addColumn<int>("taken");
        QTest::newRow("a day") << "86400" << 3540;
        QTest::newRow("the longest") << "3540" << 3540;
        QTest::newRow("the shortest") << "1" << 1;
        QTest::newRow("nothing") << "0" << 300;
        QTest::newRow("less than nothing") << "-5" << 300;
        QTest::newRow("no number") << "soon" << 300;
    }

    void aHeartbeatOutOfReasonIsCut()
    {
        QFETCH(QString, told);
        QFETCH(int, taken);
        mBed->answer(reply(5, { node(Ping::HeartbeatInterval, told) }));
        mBed->answer(reply(7));
        LogCollector log;
        PingRequest request(Account, 0);
        QCOMPARE(run(request), 7);
        QCOMPARE(mBed->sent().last(), ping(taken, Everything));
        QCOMPARE(mBed->account->heartbeatInterval(), taken);
        // Without a value of the server's it is one more attempt.
        QCOMPARE(log.count(QStringLiteral("trying to send command again")), taken == 300 ? 1 : 0);
    }

    void aServerThatRefusesEveryHeartbeatIsGivenUp()
    {
        for (int i = 0; i < 7; ++i)
            mBed->answer(reply(5, { node(Ping::HeartbeatInterval, QString::number(100 + i)) }));
        PingRequest request(Account, 0);
        QCOMPARE(run(request), 5);
        QCOMPARE(mBed->sent().last(), ping(105, Everything));
    }

    // Status 6

    void tooManyFoldersBecomeFew()
    {
        mBed->answer(reply(6, { node(Ping::MaxFolders, "4") }));
        mBed->answer(reply(2, { node(Ping::Folders, { node(Ping::Folder, "9") }) }));
        LogCollector log;
        PingRequest request(Account, 0);
        QCOMPARE(run(request), 2);
        QVERIFY(log.contains(QStringLiteral("Too Many Number Of Folders To Monitor")));
        QCOMPARE(mBed->sent(), QStringList({ ping(300, Everything), ping(300, Few) }));
        QCOMPARE(request.folderCount(), 4);
    }

    void aServerThatWantsStillFewerIsGivenUp()
    {
        for (int i = 0; i < 6; ++i)
            mBed->answer(reply(6, { node(Ping::MaxFolders, "1") }));
        PingRequest request(Account, 0);
        QCOMPARE(run(request), 6);
    }

    // What ends it

    void whatEndsTheRequest_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("text");
        const QString error = QStringLiteral("server error. We shouldn't retry later. Completing request");
        QTest::newRow("the hierarchy has changed")
            << 7 << "The folder hierarchy is out of date; a folder hierarchy sync is required.";
        QTest::newRow("106") << 106 << error;
        QTest::newRow("110") << 110 << error;
        QTest::newRow("500") << 500 << error;
        for (const int status : { 9, 101, 108, 109, 129, 139, 140, 141, 142, 143, 144, 145, 177 })
            QTest::addRow("%d", status)
                << status << QStringLiteral(" unhandled error with status: %1").arg(status);
    }

    void whatEndsTheRequest()
    {
        QFETCH(int, status);
        QFETCH(QString, text);
        mBed->answer(reply(status));
        LogCollector log;
        PingRequest request(Account, 0);
        QSignalSpy answered(&request, &PingRequest::answered);
        QCOMPARE(run(request), status);
        QVERIFY2(log.contains(text), qPrintable(log.texts().join('\n')));
        QCOMPARE(answered.count(), 1);
        QCOMPARE(answered.first().first().toInt(), status);
    }

    void anEmptyReplyEndsTheRequest()
    {
        mBed->answer(QByteArray());
        PingRequest request(Account, 0);
        QCOMPARE(run(request), -2);
    }

    void whatHttpSaysEndsTheRequest_data()
    {
        QTest::addColumn<int>("httpStatus");
        QTest::addColumn<int>("status");
        QTest::newRow("403") << 403 << 10201;
        QTest::newRow("500") << 500 << 10401;
        QTest::newRow("503") << 503 << 10403;
    }

    void whatHttpSaysEndsTheRequest()
    {
        QFETCH(int, httpStatus);
        QFETCH(int, status);
        ScriptedAnswer answer;
        answer.status = httpStatus;
        answer.headers = { { "Retry-After", "120" } };
        mBed->server.answer(answer);
        LogCollector log;
        PingRequest request(Account, 0);
        QCOMPARE(run(request), status);
        QVERIFY(log.contains(QStringLiteral(" unhandled error with status: %1").arg(status)));
    }

    void aCancelledPingEndsAsCancelled()
    {
        mBed->answerNever();
        LogCollector log;
        PingRequest request(Account, 0, mBed->manager);
        QSignalSpy completed(&request, &Request::requestCompleted);
        QSignalSpy answered(&request, &PingRequest::answered);
        connect(&mBed->server, &ScriptedServer::received, &request, &Request::cancel, Qt::QueuedConnection);
        request.start();
        QVERIFY(completed.count() == 1 || completed.wait(60000));
        QCOMPARE(request.status(), -4);
        QVERIFY(log.contains(QStringLiteral("Operation was canceled")));
        QCOMPARE(answered.count(), 0);
    }

    void aLostNetworkIsWaitedFor()
    {
        mBed->answerNever();
        mBed->answer(reply(7));
        LogCollector log;
        PingRequest request(Account, 0, mBed->manager);
        QSignalSpy completed(&request, &Request::requestCompleted);
        // The connection of the account goes, and its replies with it.
        const auto lose = connect(
            &mBed->server, &ScriptedServer::received, mBed->manager,
            [this] {
                if (mBed->server.requests().size() == 1)
                    mBed->manager->networkManager()->onAccountDeleted(Account);
            },
            Qt::QueuedConnection);
        request.start();
        QVERIFY(completed.count() == 1 || completed.wait(60000));
        disconnect(lose);
        QCOMPARE(request.status(), 7);
        QVERIFY(log.contains(QStringLiteral(
            "Network session failed error (network switch probably happened). Trying to resend")));
    }

    // A server that says nothing

    void aServerThatSaysNothingIsPingedAnew()
    {
        for (int i = 0; i < 6; ++i)
            mBed->answerNever();
        LogCollector log;
        PingRequest request(Account, 0, mBed->manager);
        QSignalSpy completed(&request, &Request::requestCompleted);
        connect(
            &mBed->server, &ScriptedServer::received, this, [this] { jump(361); }, Qt::QueuedConnection);
        request.start();
        QVERIFY(completed.count() == 1 || completed.wait(60000));
        QCOMPARE(request.status(), 10004);
        QCOMPARE(mBed->sent(), QVector<QString>(6, ping(300, Everything)).toList());
        QCOMPARE(log.count(QStringLiteral("no answer for 360 s, giving it up.")), 6);
        QCOMPARE(log.count(QStringLiteral("trying to send command again. Attempt: ")), 5);
    }

    void aDayThatIsSleptThroughIsOneAttempt()
    {
        mBed->answerNever();
        mBed->answer(reply(7));
        PingRequest request(Account, 0, mBed->manager);
        QSignalSpy completed(&request, &Request::requestCompleted);
        connect(
            &mBed->server, &ScriptedServer::received, this,
            [this] {
                if (mBed->server.requests().size() == 1)
                    jump(24 * 3600);
            },
            Qt::QueuedConnection);
        request.start();
        QVERIFY(completed.count() == 1 || completed.wait(60000));
        QCOMPARE(request.status(), 7);
        QCOMPARE(mBed->sent(), QStringList({ ping(300, Everything), ping(300, Everything) }));
    }

    void withoutAMailAccountInboxAndTrashAreWatched()
    {
        mBed->mail->isInitialized = false;
        mCalendar->isEnabled = mContacts->isEnabled = false;
        mBed->answer(reply(7));
        PingRequest request(Account, 0);
        QCOMPARE(run(request), 7);
        QCOMPARE(mBed->sent(),
            QStringList { ping(300, QStringLiteral("Folder(Id=5,Class=Email),Folder(Id=6,Class=Email)")) });
    }

    void withoutACommandThereIsNothingToUpdate()
    {
        LogCollector log;
        PingRequest request(Account, 0, mBed->manager);
        request.updateCommand();
        QVERIFY(log.contains(QStringLiteral("Command is null")));
    }
};

FENNEL_REGISTER_TEST(PingRequestTest)
#include "pingrequesttest.moc"
