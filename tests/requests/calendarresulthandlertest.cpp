// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/calendarresulthandler.h"
#include "requests/uploadresultscene.h"
#include "support/hiddentable.h"
#include "support/logcollector.h"
#include "support/stubcalendarstorage.h"
#include "support/testmain.h"

using namespace UploadResultScene;

/** What becomes of the events that went up and came down with a Sync. */
class CalendarResultHandlerTest : public QObject
{
    Q_OBJECT

private:
    using Event = EasCalendarItem;

    std::unique_ptr<Scene<CalendarResultHandler, StubCalendarStorage>> mScene;

    static EasDatabase &database() { return *EasDatabase::instance(); }
    static SyncCollection collection(
        const QList<Event> &added, const QList<Event> &changed = {}, const QStringList &deleted = {})
    {
        SyncCollection result = sent("9", &SyncCommandAdd::setCalendarItems, added, changed, deleted);
        result.setQueryTime(1000);
        return result;
    }
    bool handle(SyncCollection &collection) { return mScene->handle(collection); }

private Q_SLOTS:
    void init()
    {
        mScene = std::make_unique<Scene<CalendarResultHandler, StubCalendarStorage>>(&FakeAccount::events);
        EasFolderItem folder;
        folder.setServerId(QStringLiteral("9"));
        folder.setLocalId(QStringLiteral("notebook"));
        folder.setType(EasFolderItem::DefaultCalendarFolder);
        QVERIFY(database().addFolderItems(Account, { folder }));
        QVERIFY(database().addCalendarItems(Account, { item<Event>("e1", "9:1"), item<Event>("e2", "9:2") }));
    }

    void cleanup() { mScene.reset(); }

    void aMissingStoreIsAFailure()
    {
        const LogCollector log;
        mScene->account.events.reset();
        SyncCollection reply = collection({});
        QVERIFY(!handle(reply));
        QCOMPARE(mScene->status, -2);
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("CalendarStorage is null") }));
    }

    void rowsThatCannotBeReadAreAFailure()
    {
        SyncCollection reply = collection({}, { item<Event>("e1", "9:1") });
        const HiddenTable hidden("calendar");
        QVERIFY(!handle(reply));
        QCOMPARE(mScene->status, -2);
        QCOMPARE(mScene->store->calls, QStringList());
    }

    void foldersThatCannotBeReadAreAFailure()
    {
        SyncCollection reply = collection({});
        const HiddenTable hidden("collections");
        QVERIFY(!handle(reply));
        QCOMPARE(mScene->status, -2);
    }

    void aChangeOfAnUnknownEventBeginsTheCollectionAnew()
    {
        SyncCollection reply = collection({});
        reply.appendChangedCalendars(Event(), QStringLiteral("9:77"));
        QVERIFY(handle(reply));
        QCOMPARE(mScene->state.collectionsToResync, QStringList(QStringLiteral("9")));
    }

    void aChangeOfAKnownEventDoesNotBeginAnew()
    {
        SyncCollection reply = collection({ item<Event>("new") }, {}, { QStringLiteral("9:2") });
        answerAdd(reply, "new", "9:7");
        reply.appendAddedCalendars(Event(), QStringLiteral("9:8"));
        for (const char *known : { "9:1", "9:2", "9:7", "9:8" }) // there, just deleted, just uploaded, new
            reply.appendChangedCalendars(Event(), QString::fromLatin1(known));
        QVERIFY(handle(reply));
        QCOMPARE(mScene->state.collectionsToResync, QStringList());
    }

    void uploadsComeBeforeWhatTheServerSends()
    {
        SyncCollection reply =
            collection({ item<Event>("new") }, { item<Event>("e1", "9:1") }, { QStringLiteral("9:2") });
        answerAdd(reply, "new", "9:7");
        reply.appendAddedCalendars(Event(), QStringLiteral("9:8"));
        reply.appendChangedCalendars(Event(), QStringLiteral("9:1"));
        reply.appendDeletedIds(QStringLiteral("9:3"));
        QStringList rows;
        mScene->store->onCall = [&](const QString &) {
            rows.append(database().serverToLocalCalendarIds(Account)->keys().join(QLatin1Char(',')));
        };
        const LogCollector log;
        QVERIFY(handle(reply));
        QCOMPARE(mScene->status, 0);
        QCOMPARE(mScene->store->calls,
            QStringList({ QStringLiteral("uploaded +new=9/9:7 *9/9:1 -9:2"),
                QStringLiteral("received +=9/9:8 *9/9:1 -9:3"), QStringLiteral("time notebook 1000") }));
        // Each store call comes before its rows, and the time after all of them.
        QCOMPARE(rows,
            QStringList(
                { QStringLiteral("9:1,9:2"), QStringLiteral("9:1,9:7"), QStringLiteral("9:1,9:7,9:8") }));
        QVERIFY(log.contains(QtInfoMsg,
            { QStringLiteral("handleCalendarResults: sending commands to server:"), QStringLiteral("A/M/R:"),
                QStringLiteral("1"), QStringLiteral("1"), QStringLiteral("1") }));
        QVERIFY(log.contains(QtInfoMsg,
            { QStringLiteral("event with client id"), QStringLiteral("new"), QStringLiteral("saved"),
                QStringLiteral("on the server with server id"), QStringLiteral("9:7") }));
        QVERIFY(log.contains(QtInfoMsg,
            { QStringLiteral("Event with server id"), QStringLiteral("9:1"),
                QStringLiteral("updated successfully") }));
        QVERIFY(log.contains(QtInfoMsg,
            { QStringLiteral("Calendar event"), QStringLiteral("9:2"), QStringLiteral("was deleted") }));
    }

    void anEventThatIsMadeAnewLosesItsRowFirst()
    {
        SyncCollection reply = collection({});
        reply.appendAddedCalendars(Event(), QStringLiteral("9:1"));
        mScene->store->replaces = QStringList(QStringLiteral("9:1"));
        QVERIFY(handle(reply));
        QCOMPARE(database().serverToLocalCalendarIds(Account)->value(QStringLiteral("9:1")),
            QStringLiteral("local-9:1"));
        QCOMPARE(database().localToServerCalendarIds(Account)->value(QStringLiteral("e1")), QString());
    }

    void onlyWhatIsAnsweredIsAcknowledged()
    {
        SyncCollection reply = collection({}, { item<Event>("e1", "9:1"), item<Event>("e2", "9:2") });
        answerChange(reply, "9:2");
        QVERIFY(handle(reply));
        QCOMPARE(mScene->store->calls.first(), QStringLiteral("uploaded *9/9:2"));
        // The other one is found again by the next query.
        QVERIFY(!mScene->store->calls.filter(QStringLiteral("time")).size());
    }

    void anAdditionWithoutAnAnswerGoesUpAgain()
    {
        SyncCollection reply = collection({ item<Event>("new"), item<Event>("lost") });
        answerAdd(reply, "new", "9:7");
        answerAdd(reply, "new", "9:7");
        answerAdd(reply, "unknown", "9:9");
        QVERIFY(handle(reply));
        QCOMPARE(mScene->store->calls.first(), QStringLiteral("uploaded +new=9/9:7"));
        QCOMPARE(mScene->store->calls.filter(QStringLiteral("time")), QStringList());
    }

    void anAdditionThatTheServerDoesNotNameGoesUpAgain()
    {
        SyncCollection reply = collection({ item<Event>("new") });
        answerAdd(reply, "new", "");
        const LogCollector log;
        QVERIFY(handle(reply));
        QCOMPARE(
            mScene->store->calls, QStringList({ QStringLiteral("uploaded"), QStringLiteral("received") }));
        QCOMPARE(database().serverToLocalCalendarIds(Account)->size(), 2);
        QVERIFY(log.contains(QtWarningMsg,
            { QStringLiteral("The server has not named the item with client id"), QStringLiteral("new") }));
    }

    void anEventOfWhichOnePartIsRefusedIsNotAcknowledged()
    {
        SyncCollection reply = collection({}, { item<Event>("e1", "9:1"), item<Event>("e2", "9:2") });
        // The series has arrived, its changed occurrence has not.
        answerChange(reply, "9:1");
        answerChange(reply, "9:1", 6);
        answerChange(reply, "9:2");
        answerChange(reply, "9:2");
        QVERIFY(handle(reply));
        QCOMPARE(mScene->store->calls.first(), QStringLiteral("uploaded *9/9:2"));
    }

    void aSeriesWithARefusedDeletionOfAnOccurrenceIsNotAcknowledged()
    {
        SyncCollection reply = collection({}, { item<Event>("e1", "9:1"), item<Event>("e2", "9:2") });
        answerDelete(reply, "9:1", 6);
        answerDelete(reply, "9:2", 8);
        QVERIFY(handle(reply));
        // What is gone already needs no deletion.
        QCOMPARE(mScene->store->calls.first(), QStringLiteral("uploaded *9/9:2"));
        QCOMPARE(mScene->store->calls.filter(QStringLiteral("time")), QStringList());
    }

    void aRefusalKeepsTheSyncTime_data()
    {
        QTest::addColumn<uint>("status");
        for (const uint status : { 4U, 6U, 7U, 8U, 13U, 99U })
            QTest::newRow(qPrintable(QString::number(status))) << status;
    }

    void aRefusalKeepsTheSyncTime()
    {
        QFETCH(uint, status);
        const QList<SyncCollection> replies { collection({ item<Event>("new") }),
            collection({}, { item<Event>("e1", "9:1") }), collection({}, {}, { QStringLiteral("9:1") }) };
        for (int i = 0; i < replies.size(); ++i) {
            SyncCollection reply = replies.at(i);
            if (i == 0)
                answerAdd(reply, "new", "", status);
            else if (i == 1)
                answerChange(reply, "9:1", status);
            else
                answerDelete(reply, "9:1", status);
            mScene->store->calls.clear();
            mScene->state = SyncState();
            QVERIFY(handle(reply));
            // What the server does not have is as good as deleted.
            if (i == 2 && status == 8)
                QCOMPARE(mScene->store->calls.size(), 3);
            else
                QCOMPARE(mScene->store->calls,
                    QStringList({ QStringLiteral("uploaded"), QStringLiteral("received") }));
        }
    }

    void aFullMailboxStopsTheCollection()
    {
        SyncCollection reply = collection({}, { item<Event>("e1", "9:1") });
        answerChange(reply, "9:1", 9);
        QVERIFY(!handle(reply));
        QCOMPARE(mScene->status, -6);
        QCOMPARE(mScene->store->calls, QStringList());
    }

    void aStoreThatRefusesIsAFailure_data()
    {
        QTest::addColumn<bool>("uploads");
        QTest::addColumn<QString>("text");
        QTest::newRow("uploads") << true
                                 << QStringLiteral("failed to handle uploaded local calendar changes");
        QTest::newRow("items") << false << QStringLiteral("Failed to update calendar items");
    }

    void aStoreThatRefusesIsAFailure()
    {
        QFETCH(bool, uploads);
        QFETCH(QString, text);
        const LogCollector log;
        mScene->store->takesUploads = !uploads;
        mScene->store->takesItems = uploads;
        SyncCollection reply = collection({});
        QVERIFY(!handle(reply));
        QCOMPARE(mScene->status, -2);
        QVERIFY(log.contains(QtCriticalMsg, { text }));
        QCOMPARE(mScene->store->calls.size(), uploads ? 1 : 2);
    }

    void aDatabaseThatRefusesIsAFailure()
    {
        mScene->database.refuse("INSERT", "calendar");
        const LogCollector log;
        SyncCollection up = collection({ item<Event>("new") });
        answerAdd(up, "new", "9:7");
        QVERIFY(!handle(up));
        QCOMPARE(mScene->status, -2);
        QVERIFY(log.contains(
            QtCriticalMsg, { QStringLiteral("Failed to update calendar items in EAS DB for response") }));
        QCOMPARE(mScene->store->calls.size(), 1);
        mScene->store->calls.clear();
        SyncCollection down = collection({});
        down.appendAddedCalendars(Event(), QStringLiteral("9:8"));
        QVERIFY(!handle(down));
        QVERIFY(
            log.texts(QtCriticalMsg).contains(QStringLiteral("Failed to update calendar items in EAS DB")));
        QCOMPARE(mScene->store->calls.size(), 2);
    }

    void aTimeThatCannotBeSetChangesNothing()
    {
        const LogCollector log;
        SyncCollection reply = collection({});
        reply.setId(QStringLiteral("unknown"));
        QVERIFY(handle(reply));
        QVERIFY(log.contains(QtWarningMsg,
            { QStringLiteral("failed to find local folder id for folder"), QStringLiteral("unknown") }));
    }

    void withoutAQueryThereIsNoNewTime()
    {
        SyncCollection reply = collection({});
        reply.setQueryTime(0);
        QVERIFY(handle(reply));
        QCOMPARE(mScene->store->calls.filter(QStringLiteral("time")), QStringList());
    }

    void commandsOfAnotherKindAreLogged()
    {
        class Odd : public SyncCommandBase
        {
        public:
            explicit Odd(Type type)
                : mType(type)
            {
            }
            Type type() const override { return mType; }
            using SyncCommandBase::encode;
            void encode(WbxmlEncoder &, ExchangeActiveSync::ProtocolVersion) const override {}

        private:
            Type mType;
        };
        const LogCollector log;
        SyncCollection reply = collection({});
        for (const auto type : { SyncCommandBase::AddCommand, SyncCommandBase::DeleteCommand,
                 SyncCommandBase::ChangeCommand, SyncCommandBase::FetchCommand })
            reply.appendCommand(new Odd(type));
        QVERIFY(handle(reply));
        for (const char *name : { "Add", "Change", "Delete" })
            QVERIFY(log.contains(
                QStringLiteral("can't cast command to SyncCommand%1 with type").arg(QLatin1String(name))));
        QVERIFY(log.contains(QStringLiteral("unhandled SyncCommand with type")));
    }
};

FENNEL_REGISTER_TEST(CalendarResultHandlerTest)
#include "calendarresulthandlertest.moc"
