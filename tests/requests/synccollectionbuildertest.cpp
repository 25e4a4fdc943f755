// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/synccollectionbuilder.h"
#include "application/mapping/easdatabase.h"
#include "protocol/elements/airsyncbasepreference.h"
#include "protocol/elements/airsyncoptions.h"
#include "protocol/elements/synccommandadd.h"
#include "protocol/elements/synccommandchange.h"
#include "protocol/elements/synccommanddelete.h"
#include "protocol/wbxml/wbxmlencoder.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "requests/syncstate.h"
#include "requests/uploadresultscene.h"
#include "support/fakeconfigurations.h"
#include "support/hiddentable.h"
#include "support/logcollector.h"
#include "support/stubcalendarstorage.h"
#include "support/stubcontactstorage.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

using namespace UploadResultScene;

namespace {

EasFolderItem folder(const char *serverId, EasFolderItem::FolderType type)
{
    EasFolderItem folder;
    folder.setServerId(QString::fromLatin1(serverId));
    folder.setLocalId(QStringLiteral("local-") + folder.serverId());
    folder.setSyncKey(QStringLiteral("5"));
    folder.setType(type);
    return folder;
}

EasCalendarItem withException(const char *localId, const char *serverId, const char *start, bool deleted)
{
    EasCalendarItem series = item<EasCalendarItem>(localId, serverId);
    EasCalendarItem exception;
    exception.setExceptionStartTime(QString::fromLatin1(start));
    exception.setExceptionDeleted(deleted ? 1 : 0);
    series.appendException(exception);
    return series;
}

} // namespace

/** What a collection asks for, and which local events and contacts go with it. */
class SyncCollectionBuilderTest : public QObject
{
    Q_OBJECT

private:
    using Pairs = QList<QPair<QString, QString>>;

    std::unique_ptr<DatabaseFixture> mDatabase;
    std::unique_ptr<FakeAccount> mAccount;
    QSharedPointer<StubCalendarStorage> mCalendar;
    QSharedPointer<StubContactStorage> mContacts;
    QSharedPointer<FakeContactsConfiguration> mContactSettings;
    QSharedPointer<FakeEmailConfiguration> mMailSettings;
    SyncState mState;

    SyncCollection calendar()
    {
        return *SyncCollectionBuilder(*mAccount, mState)
                    .setupSyncCollection(folder("9", EasFolderItem::DefaultCalendarFolder));
    }
    SyncCollection contacts()
    {
        return *SyncCollectionBuilder(*mAccount, mState)
                    .setupSyncCollection(folder("3", EasFolderItem::DefaultContactsFolder));
    }
    SyncCollection ofType(EasFolderItem::FolderType type)
    {
        return *SyncCollectionBuilder(*mAccount, mState).setupSyncCollection(folder("5", type));
    }
    static QList<int> previews(const SyncCollection &collection)
    {
        QList<int> previews;
        for (const auto &preference : collection.options()->bodyPreference())
            previews.append(preference->preview());
        return previews;
    }
    static QList<int> types(const SyncCollection &collection)
    {
        QList<int> types;
        for (const auto &command : collection.commands())
            types.append(command->type());
        return types;
    }
    template <class Command> static QSharedPointer<Command> last(const SyncCollection &collection)
    {
        return collection.commands().isEmpty() ? QSharedPointer<Command>()
                                               : collection.commands().last().template objectCast<Command>();
    }

private Q_SLOTS:
    void init()
    {
        mDatabase = std::make_unique<DatabaseFixture>(DatabaseFixture::Opened);
        mState = SyncState();
        mAccount = std::make_unique<FakeAccount>(Account);
        mAccount->setProtocolVersion(ExchangeActiveSync::ProtocolVersion161);
        mAccount->events = mCalendar = QSharedPointer<StubCalendarStorage>::create();
        mAccount->people = mContacts = QSharedPointer<StubContactStorage>::create();
        mAccount->contacts = mContactSettings = QSharedPointer<FakeContactsConfiguration>::create(Account);
        mAccount->email = mMailSettings = QSharedPointer<FakeEmailConfiguration>::create(Account);
        QVERIFY(EasDatabase::instance()->addFolderItems(Account,
            { folder("9", EasFolderItem::DefaultCalendarFolder),
                folder("3", EasFolderItem::DefaultContactsFolder) }));
    }

    void cleanup()
    {
        mAccount.reset();
        mCalendar.reset();
        mContacts.reset();
        mDatabase.reset();
    }

    void aFolderOfNoServiceAsksForNothing()
    {
        mAccount->conflictPolicy = AirSyncOptions::ClientReplacesServer;
        const SyncCollection tasks = ofType(EasFolderItem::DefaultTasksFolder);
        QCOMPARE(tasks.options()->conflicts(), AirSyncOptions::ClientReplacesServer);
        QVERIFY(tasks.options()->bodyPreference().isEmpty());
        QCOMPARE(tasks.options()->filter(), AirSyncOptions::FilterUnset);
        QCOMPARE(tasks.options()->mimeSupport(), AirSyncOptions::MimeSupportUnset);
        QVERIFY(tasks.getChanges());
        QVERIFY(!tasks.deletesAsMoves());
        QVERIFY(types(tasks).isEmpty());
        WbxmlEncoder encoder;
        encoder.appendElement(Wbxml::AirSync::Collections, true);
        ofType(EasFolderItem::DefaultTasksFolder).encode(encoder, ExchangeActiveSync::ProtocolVersion141);
        QCOMPARE(WbxmlDocument::outline(encoder.encoded()),
            QStringLiteral("Collections(Collection(SyncKey=5,CollectionId=5,DeletesAsMoves=0,GetChanges=1,"
                           "Options(Conflict=0)))"));
    }

    void anyPolicyButOneLetsTheClientWin_data()
    {
        QTest::addColumn<int>("policy");
        QTest::addColumn<AirSyncOptions::ServerClientConflictType>("conflicts");
        QTest::newRow("the server wins") << 1 << AirSyncOptions::ServerReplacesClient;
        for (const int policy : { 0, 2, -1 })
            QTest::newRow(qPrintable(QString::number(policy)))
                << policy << AirSyncOptions::ClientReplacesServer;
    }

    void anyPolicyButOneLetsTheClientWin()
    {
        QFETCH(int, policy);
        mAccount->conflictPolicy = policy;
        QTEST(contacts().options()->conflicts(), "conflicts");
    }

    void previewsAreForVersionsThatKnowThem()
    {
        mMailSettings->preview = 255;
        mAccount->setProtocolVersion(ExchangeActiveSync::ProtocolVersion121);
        QCOMPARE(previews(ofType(EasFolderItem::DefaultInboxFolder)), QList<int>({ -1, -1 }));
        mAccount->setProtocolVersion(ExchangeActiveSync::ProtocolVersion140);
        QCOMPARE(previews(ofType(EasFolderItem::DefaultInboxFolder)), QList<int>({ 255, 255 }));
        QCOMPARE(previews(ofType(EasFolderItem::DefaultDraftsFolder)), QList<int>({ 255 }));
    }

    void theFilterIsTheSettingUnlessItIsNone_data()
    {
        QTest::addColumn<int>("pastTime");
        QTest::addColumn<AirSyncOptions::FilterType>("filter");
        for (int time = 0; time <= 8; ++time)
            QTest::newRow(qPrintable(QString::number(time))) << time << AirSyncOptions::FilterType(time);
        QTest::newRow("more than the most") << 9 << AirSyncOptions::FilterUnset;
        QTest::newRow("less than nothing") << -1 << AirSyncOptions::FilterUnset;
    }

    void theFilterIsTheSettingUnlessItIsNone()
    {
        QFETCH(int, pastTime);
        QFETCH(AirSyncOptions::FilterType, filter);
        const auto calendarSettings = QSharedPointer<FakeCalendarConfiguration>::create(Account);
        calendarSettings->pastTime = mMailSettings->pastTime = pastTime;
        mAccount->calendar = calendarSettings;
        const LogCollector log;
        QCOMPARE(ofType(EasFolderItem::DefaultInboxFolder).options()->filter(), filter);
        QCOMPARE(calendar().options()->filter(), filter);
        QCOMPARE(log.count(QStringLiteral("unhandled sync past time value, check account settings")),
            filter == AirSyncOptions::FilterUnset ? 2 : 0);
    }

    void missingSettingsAreLogged()
    {
        mAccount->email.reset();
        const LogCollector log;
        const SyncCollection inbox = ofType(EasFolderItem::DefaultInboxFolder);
        QCOMPARE(inbox.options()->filter(), AirSyncOptions::FilterUnset);
        QCOMPARE(inbox.options()->bodyPreference().size(), 2);
        calendar();
        for (const char *text :
            { "Email configuration is null", "calendar config is null", "MailStorage is null" })
            QVERIFY2(log.contains(QString::fromLatin1(text)), text);
    }

    void eventsSinceTheLastTimeGoUp()
    {
        mCalendar->time = 100;
        mCalendar->newTime = 200;
        mCalendar->localAdded = { item<EasCalendarItem>("new") };
        mCalendar->localChanged = { item<EasCalendarItem>("e1", "9:1") };
        mCalendar->localDeleted = QStringList(QStringLiteral("9:2"));
        const SyncCollection collection = calendar();
        QCOMPARE(mCalendar->calls, QStringList(QStringLiteral("query local-9 101")));
        QCOMPARE(collection.queryTime(), qint64(200));
        QCOMPARE(types(collection), QList<int>({ 0, 2, 1 }));
        QCOMPARE(last<SyncCommandDelete>(collection)->serverIds(), QStringList(QStringLiteral("9:2")));
        QVERIFY(collection.deletesAsMoves());
    }

    void withoutChangesThereIsNoCommand()
    {
        QVERIFY(types(calendar()).isEmpty());
        QVERIFY(types(contacts()).isEmpty());
    }

    void anInitialCollectionCarriesNothing()
    {
        mCalendar->localAdded = { item<EasCalendarItem>("new") };
        EasFolderItem initial = folder("9", EasFolderItem::DefaultCalendarFolder);
        initial.setSyncKey(QString());
        QVERIFY(types(*SyncCollectionBuilder(*mAccount, mState).setupSyncCollection(initial)).isEmpty());
        QVERIFY(mCalendar->calls.isEmpty());
    }

    void aQueryThatFailsSendsNothing()
    {
        const LogCollector log;
        mCalendar->answersQueries = LocalQuery::StoreSilent;
        mCalendar->newTime = 200;
        mCalendar->localAdded = { item<EasCalendarItem>("new") };
        QVERIFY(types(calendar()).isEmpty());
        QCOMPARE(calendar().queryTime(), qint64(0));
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Failed querying local updates") }));
        mContacts->answersQueries = LocalQuery::StoreSilent;
        mContacts->localAdded = { item<EasContactsItem>("new") };
        QVERIFY(types(contacts()).isEmpty());
        QVERIFY(
            log.contains(QtWarningMsg, { QStringLiteral("Failed to retreive changes in local contacts") }));
    }

    void whereLocalChangesCannotBeReadThereIsNoCollection()
    {
        const HiddenTable hidden("collections");
        SyncCollectionBuilder builder(*mAccount, mState);
        QVERIFY(!builder.setupSyncCollection(folder("9", EasFolderItem::DefaultCalendarFolder)));
        QVERIFY(builder.setupSyncCollection(folder("3", EasFolderItem::DefaultContactsFolder)));
    }

    void aStoreThatCannotReadTheMappingGivesNoCollection()
    {
        SyncCollectionBuilder builder(*mAccount, mState);
        mCalendar->answersQueries = LocalQuery::MappingFailed;
        QVERIFY(!builder.setupSyncCollection(folder("9", EasFolderItem::DefaultCalendarFolder)));
        mContacts->answersQueries = LocalQuery::MappingFailed;
        QVERIFY(!builder.setupSyncCollection(folder("3", EasFolderItem::DefaultContactsFolder)));
    }

    void aFolderWithoutALocalOneSendsNothing()
    {
        const LogCollector log;
        const SyncCollection collection =
            *SyncCollectionBuilder(*mAccount, mState)
                 .setupSyncCollection(folder("8", EasFolderItem::UserCreatedCalendarFolder));
        QVERIFY(types(collection).isEmpty());
        QVERIFY(log.contains(
            QtWarningMsg, { QStringLiteral("No local folder for serverId:"), QStringLiteral("8") }));
    }

    void aMissingCalendarStoreIsLogged()
    {
        const LogCollector log;
        mAccount->events.reset();
        QVERIFY(types(calendar()).isEmpty());
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("calendarStorage is null") }));
    }

    void attachmentsMakeTheClientWin()
    {
        // The fake account lets the server win.
        QCOMPARE(calendar().options()->conflicts(), AirSyncOptions::ServerReplacesClient);
        EasCalendarItem event = item<EasCalendarItem>("e1", "9:1");
        event.setAttachments({ EasAttachmentContainer() });
        mCalendar->localChanged = { item<EasCalendarItem>("e2", "9:2"), event };
        const LogCollector log;
        QCOMPARE(calendar().options()->conflicts(), AirSyncOptions::ClientReplacesServer);
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("Setting ClientReplacesServer policy..") }));
    }

    void exceptionsOfANewSeriesWaitOnceFrom160On()
    {
        mCalendar->localAdded = { withException("new", "", "t1", false) };
        const Pairs waiting { { QStringLiteral("new"), QStringLiteral("t1") } };
        calendar();
        QCOMPARE(mState.calendarExceptionsForLater.value(QStringLiteral("9")), waiting);
        // Sent once more before its time has come, it waits no second time.
        calendar();
        QCOMPARE(mState.calendarExceptionsForLater.value(QStringLiteral("9")), waiting);
        mState.calendarExceptionsTouched = mState.calendarExceptionsForLater;
        mState.calendarExceptionsForLater.clear();
        calendar();
        QVERIFY(mState.calendarExceptionsForLater.isEmpty());
    }

    void exceptionsOfANewSeriesGoAlongBelow160()
    {
        mAccount->setProtocolVersion(ExchangeActiveSync::ProtocolVersion141);
        mCalendar->localAdded = { withException("new", "", "t1", false) };
        mCalendar->localChanged = { withException("e1", "9:1", "t2", true) };
        const SyncCollection collection = calendar();
        QVERIFY(mState.calendarExceptionsForLater.isEmpty());
        QCOMPARE(types(collection), QList<int>({ 0, 2 }));
        QCOMPARE(last<SyncCommandChange>(collection)->calendarItems().first().exceptions().size(), 1);
    }

    void deletedOccurrencesAreDeletionsFrom160On()
    {
        EasCalendarItem series = withException("e1", "9:1", "t2", true);
        EasCalendarItem named = series.exceptions().first();
        named.setServerId(QStringLiteral("9:1"));
        named.setExceptionStartTime(QStringLiteral("t3"));
        series.appendException(named);
        EasCalendarItem kept;
        kept.setExceptionStartTime(QStringLiteral("t4"));
        series.appendException(kept);
        mCalendar->localChanged = { series };
        const SyncCollection collection = calendar();
        QCOMPARE(types(collection), QList<int>({ 2, 1 }));
        QCOMPARE(last<SyncCommandDelete>(collection)->serverIds(), QStringList());
        QCOMPARE(last<SyncCommandDelete>(collection)->instanceIds(),
            Pairs({ { QStringLiteral("9:1"), QStringLiteral("t2") },
                { QStringLiteral("9:1"), QStringLiteral("t3") } }));
        const auto change = collection.commands().first().objectCast<SyncCommandChange>();
        QCOMPARE(change->calendarItems().first().exceptions().size(), 1);
        QCOMPARE(
            change->calendarItems().first().exceptions().first().exceptionStartTime(), QStringLiteral("t4"));
    }

    void localContactsGoUpIfTheAccountSaysSo()
    {
        mContacts->localAdded = { item<EasContactsItem>("new") };
        mContacts->localChanged = { item<EasContactsItem>("c1", "3:1") };
        mContacts->localDeleted = QStringList(QStringLiteral("3:2"));
        QCOMPARE(types(contacts()), QList<int>({ 0, 2, 1 }));
        QCOMPARE(mContacts->calls, QStringList(QStringLiteral("query 3")));
        mContactSettings->uploads = false;
        QVERIFY(types(contacts()).isEmpty());
        QCOMPARE(mContacts->calls.size(), 1);
        const LogCollector log;
        mAccount->contacts.reset();
        QVERIFY(types(contacts()).isEmpty());
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("contacts config is null") }));
    }
};

FENNEL_REGISTER_TEST(SyncCollectionBuilderTest)
#include "synccollectionbuildertest.moc"
