// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/synccollectionqueue.h"
#include "support/hiddentable.h"

#include "requests/uploadresultscene.h"
#include "support/fakeconfigurations.h"
#include "support/logcollector.h"
#include "support/stubcalendarstorage.h"
#include "support/stubmailstorage.h"
#include "support/testmain.h"

using namespace UploadResultScene;

namespace {

EasFolderItem folder(const char *serverId, const char *key)
{
    EasFolderItem folder;
    folder.setServerId(QString::fromLatin1(serverId));
    folder.setLocalId(QStringLiteral("local-") + folder.serverId());
    folder.setDisplayName(QStringLiteral("Folder ") + folder.serverId());
    folder.setSyncKey(QString::fromLatin1(key));
    folder.setType(EasFolderItem::UserCreatedMailFolder);
    return folder;
}

SyncCollection answered(const char *serverId, const char *key)
{
    SyncCollection collection;
    collection.setId(QString::fromLatin1(serverId));
    collection.setSyncKey(QString::fromLatin1(key));
    return collection;
}

QStringList ids(const QList<SyncCollection> &collections)
{
    QStringList ids;
    for (const SyncCollection &collection : collections)
        ids.append(collection.id());
    return ids;
}

} // namespace

/** Which collections go into the next Sync, and where their keys are kept. */
class SyncCollectionQueueTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<DatabaseFixture> mDatabase;
    std::unique_ptr<FakeAccount> mAccount;
    SyncState mState;
    QStringList mInitial;
    QStringList mContinuing;

    bool query()
    {
        QList<SyncCollection> initial;
        QList<SyncCollection> continuing;
        const bool read = SyncCollectionQueue(*mAccount, mState).queryCollectionsForSync(initial, continuing);
        mInitial = ids(initial);
        mContinuing = ids(continuing);
        return read;
    }
    bool store(const SyncCollection &collection)
    {
        return SyncCollectionQueue(*mAccount, mState).updateFolderSyncKeys({ collection });
    }
    static QString key(const char *serverId)
    {
        return EasDatabase::instance()
            ->folderItemByServerId(Account, QString::fromLatin1(serverId))
            ->syncKey();
    }

private Q_SLOTS:
    void init()
    {
        mDatabase = std::make_unique<DatabaseFixture>(DatabaseFixture::Opened);
        mAccount = std::make_unique<FakeAccount>(Account);
        mAccount->mails = QSharedPointer<StubMailStorage>::create();
        mAccount->email = QSharedPointer<FakeEmailConfiguration>::create(Account);
        mState = SyncState();
        mState.collectionsToSync =
            QStringList({ QStringLiteral("1"), QStringLiteral("2"), QStringLiteral("3") });
        QVERIFY(EasDatabase::instance()->addFolderItems(
            Account, { folder("1", "7"), folder("2", ""), folder("3", "") }));
    }

    void cleanup()
    {
        mAccount.reset();
        mDatabase.reset();
    }

    void collectionsWithoutAKeyGoFirst()
    {
        QVERIFY(query());
        QCOMPARE(mInitial, QStringList({ QStringLiteral("2"), QStringLiteral("3") }));
        QCOMPARE(mContinuing, QStringList());
        QVERIFY(store(answered("2", "1")));
        QVERIFY(store(answered("3", "1")));
        QVERIFY(query());
        QCOMPARE(mInitial, QStringList());
        QCOMPARE(mContinuing, mState.collectionsToSync);
    }

    void oneThatIsToBeAskedForAloneGoesAlone()
    {
        mState.collectionsToAskAlone = QStringList(QStringLiteral("3"));
        QVERIFY(query());
        QCOMPARE(mInitial, QStringList(QStringLiteral("3")));
    }

    void whatIsToBeRepeatedGoesBeforeTheOthers()
    {
        mState.collectionsToRetry = QStringList(QStringLiteral("1"));
        QVERIFY(query());
        QCOMPARE(mInitial, QStringList());
        QCOMPARE(mContinuing, QStringList(QStringLiteral("1")));
    }

    void aFolderThatIsGoneIsDropped()
    {
        mState.collectionsToSync.append(QStringLiteral("9"));
        mState.collectionsToRetry = QStringList(QStringLiteral("9"));
        const LogCollector log;
        QVERIFY(query());
        QVERIFY(log.contains(QStringLiteral("collection is gone, leaving it out:")));
        QVERIFY(mState.collectionsToRetry.isEmpty());
        QVERIFY(!mState.collectionsToSync.contains(QStringLiteral("9")));
    }

    void aDatabaseThatCannotBeReadIsAFailure()
    {
        const HiddenTable hidden("collections");
        QVERIFY(!query());
        // What could not be read is not gone.
        QCOMPARE(mState.collectionsToSync.size(), 3);
    }

    void aKeyIsStoredIfItIsOne_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("stored");
        QTest::newRow("a new one") << "8"
                                   << "8";
        QTest::newRow("the same one") << "7"
                                      << "7";
        QTest::newRow("the initial one") << "0"
                                         << "7";
        QTest::newRow("none") << ""
                              << "7";
    }

    void aKeyIsStoredIfItIsOne()
    {
        QFETCH(QString, answer);
        QVERIFY(store(answered("1", answer.toLatin1().constData())));
        QTEST(key("1"), "stored");
    }

    void aDatabaseThatRefusesAKeyIsAFailure()
    {
        mDatabase->refuse("UPDATE", "collections");
        const LogCollector log;
        QVERIFY(!store(answered("1", "8")));
        QVERIFY(log.contains(QStringLiteral("failed to update folders in EAS DB")));
    }

    void aSilentCollectionIsLeftOutBesideOthers()
    {
        const LogCollector log;
        QVERIFY(SyncCollectionQueue(*mAccount, mState).leaveOut(answered("2", "")));
        QVERIFY(log.contains(QtWarningMsg,
            { QStringLiteral("no answer about collection, leaving it out:"), QStringLiteral("Folder 2") }));
        QCOMPARE(mState.collectionsToSync, QStringList({ QStringLiteral("1"), QStringLiteral("3") }));
    }

    void whereAllAreSilentNoneIsLeftOut()
    {
        mDatabase->execute({ QStringLiteral("UPDATE collections SET synckey=''") });
        QVERIFY(!SyncCollectionQueue(*mAccount, mState).leaveOut(answered("2", "")));
        QCOMPARE(mState.collectionsToSync.size(), 3);
    }

    void whatBeginsAnewForgetsItsKeyAndItsItems()
    {
        EasEmailItem mail = item<EasEmailItem>("1", "1:1");
        mail.setCollectionId(QStringLiteral("1"));
        QVERIFY(EasDatabase::instance()->addEmailItems(Account, { mail }));
        mState.collectionsToResync = QStringList(QStringLiteral("1"));
        QList<SyncCollection> collections;
        QVERIFY(SyncCollectionQueue(*mAccount, mState).restart(collections));
        QCOMPARE(ids(collections), QStringList(QStringLiteral("1")));
        QCOMPARE(collections.first().syncKey(), QStringLiteral("0"));
        QCOMPARE(key("1"), QString());
        QVERIFY(EasDatabase::instance()->serverToLocalEmailIds(Account)->isEmpty());
    }

    void mailThatIsNotClearedKeepsItsRows()
    {
        EasEmailItem mail = item<EasEmailItem>("1", "1:1");
        mail.setCollectionId(QStringLiteral("1"));
        QVERIFY(EasDatabase::instance()->addEmailItems(Account, { mail }));
        const auto store = QSharedPointer<StubMailStorage>::create();
        store->cleansUp = false;
        mAccount->mails = store;
        mState.collectionsToResync = QStringList(QStringLiteral("1"));
        QList<SyncCollection> collections;
        QVERIFY(!SyncCollectionQueue(*mAccount, mState).restart(collections));
        QCOMPARE(EasDatabase::instance()->serverToLocalEmailIds(Account)->size(), 1);
        QCOMPARE(key("1"), QStringLiteral("0"));
    }

    void aCalendarThatIsNotClearedKeepsItsRows()
    {
        const auto calendar = QSharedPointer<StubCalendarStorage>::create();
        calendar->takesItems = false;
        mAccount->events = calendar;
        EasFolderItem calendarFolder;
        calendarFolder.setServerId(QStringLiteral("9"));
        calendarFolder.setSyncKey(QStringLiteral("7"));
        calendarFolder.setType(EasFolderItem::DefaultCalendarFolder);
        EasCalendarItem event = item<EasCalendarItem>("e1", "9:1");
        event.setCollectionId(QStringLiteral("9"));
        QVERIFY(EasDatabase::instance()->addFolderItems(Account, { calendarFolder }));
        QVERIFY(EasDatabase::instance()->addCalendarItems(Account, { event }));
        mState.collectionsToResync = QStringList(QStringLiteral("9"));
        QList<SyncCollection> collections;
        QVERIFY(!SyncCollectionQueue(*mAccount, mState).restart(collections));
        QCOMPARE(EasDatabase::instance()->serverToLocalCalendarIds(Account)->size(), 1);
        // The next sync begins with it.
        QCOMPARE(key("9"), QStringLiteral("0"));
    }

    void aClearingThatWasCutShortIsFinishedFirst()
    {
        EasEmailItem mail = item<EasEmailItem>("1", "1:1");
        mail.setCollectionId(QStringLiteral("1"));
        QVERIFY(EasDatabase::instance()->addEmailItems(Account, { mail }));
        mDatabase->execute({ QStringLiteral("UPDATE collections SET synckey='0' WHERE server_id='1'") });
        QVERIFY(query());
        QVERIFY(mInitial.contains(QStringLiteral("1")));
        QVERIFY(EasDatabase::instance()->serverToLocalEmailIds(Account)->isEmpty());
        QCOMPARE(key("1"), QString());
    }
};

FENNEL_REGISTER_TEST(SyncCollectionQueueTest)
#include "synccollectionqueuetest.moc"
