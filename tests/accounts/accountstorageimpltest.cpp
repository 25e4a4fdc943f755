// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/accountstorageimpl.h"

#include "application/account/easaccount.h"
#include "application/mapping/easdatabase.h"
#include "application/storagesfactory.h"
#include "support/accountfactory.h"
#include "support/logcollector.h"
#include "support/privatebus.h"
#include "support/scriptedmanager.h"
#include "support/syncscheduler.h"
#include "support/testmain.h"

#include <Accounts/Account>
#include <Accounts/Manager>

#include <QtTest>

#include <memory>

/** The table of accounts follows a real account store. */
class AccountStorageImplTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qRegisterMetaType<EasAccountId>("EasAccountId");
        QVERIFY(PrivateBus::ensure());
    }

    void init()
    {
        mFactory = std::make_unique<AccountFactory>();
        mLog = std::make_unique<LogCollector>();
        mEngine = ScriptedManager::install();
    }

    void cleanup()
    {
        QVERIFY2(!mLog->contains(QStringLiteral("s3cret")), "no password in any log line");
        mStorage.reset();
        ScriptedManager::uninstall();
        mFactory.reset();
        mLog.reset();
        EasDatabase::releaseInstance();
    }

    void withoutAccountsItIsReadyAfterOneTurn()
    {
        open();
        QVERIFY(!mStorage->isReady());
        QSignalSpy ready(mStorage.get(), &AccountStorage::ready);
        QTRY_COMPARE(ready.count(), 1);
        QVERIFY(mStorage->isReady());
        QCOMPARE(mStorage->enabledAccountsCount(), 0);
        QVERIFY(mStorage->accounts().isEmpty());
        QVERIFY(mLog->contains(QStringLiteral("Storage is initialized")));
        QVERIFY(mLog->contains(QStringLiteral("All accounts ready")));
    }

    void anUnknownAccountIsNull()
    {
        const EasAccountId id = create();
        openReady();
        QVERIFY(mStorage->account(id));
        QCOMPARE(mStorage->account(id + 1), nullptr);
        QCOMPARE(mStorage->account(0), nullptr);
    }

    void itIsReadyWhenAllAccountsAre()
    {
        const EasAccountId first = create();
        const EasAccountId second = create();
        open();
        QSignalSpy ready(mStorage.get(), &AccountStorage::ready);
        QTRY_COMPARE(ready.count(), 1);
        QVERIFY(mStorage->account(first)->isReady());
        QVERIFY(mStorage->account(second)->isReady());
        QCOMPARE(mStorage->account(second)->password(), QStringLiteral("s3cret"));
        QCOMPARE(mLog->count(QStringLiteral("initialized EAS account with id")), 2);
        mStorage->account(first)->onAuthenticationFailedError();
        QVERIFY2(mStorage->isReady(), "once ready it stays so");
        QTRY_VERIFY(mStorage->account(first)->isReady());
        QCOMPARE(ready.count(), 1);
    }

    void anAccountIsFoundBeforeItsSignalComes()
    {
        openReady();
        QSignalSpy added(mStorage.get(), &AccountStorage::accountAdded);
        const EasAccountId id = create();
        QCOMPARE(mStorage->account(id), nullptr);
        mStorage->findAccount(id);
        EasAccount *const account = mStorage->account(id);
        QVERIFY(account);
        QCOMPARE(added.count(), 1);
        // The signal changes nothing any more.
        QTRY_VERIFY(mLog->count(QStringLiteral("received account created: ")) > 1);
        QCOMPARE(mStorage->account(id), account);
        QCOMPARE(added.count(), 1);
    }

    void whatIsNoAccountOfTheEngineIsNotFound()
    {
        openReady();
        const EasAccountId foreign = createForeign();
        AccountOptions disabled;
        disabled.enabled = false;
        const EasAccountId off = mFactory->create(disabled);
        const EasAccountId beyond = (EasAccountId(1) << 32) + create();
        for (const EasAccountId id : { foreign, off, beyond, EasAccountId(4711) }) {
            mStorage->findAccount(id);
            QCOMPARE(mStorage->account(id), nullptr);
        }
    }

    void onlyEnabledAccountsOfItsOwnProviderGetAnObject()
    {
        AccountOptions disabled;
        disabled.enabled = false;
        const EasAccountId off = mFactory->create(disabled);
        const EasAccountId foreign = createForeign();
        const EasAccountId on = create();
        openReady();
        QCOMPARE(mStorage->accounts(), QList<EasAccountId> { on });
        QCOMPARE(mStorage->account(off), nullptr);
        QCOMPARE(mStorage->account(foreign), nullptr);
    }

    void aDisabledAccountThatIsToBeWipedIsWiped()
    {
        AccountOptions disabled;
        disabled.enabled = false;
        const EasAccountId id = mFactory->create(disabled);
        QVERIFY(mFactory->setValue(id, QString(), QStringLiteral("remote_wipe_requested"), true));
        const EasAccountId other = create();
        openReady();
        QVERIFY(mStorage->account(id));
        QVERIFY(mStorage->account(id)->isRemoteWipeRequested());
        QVERIFY(!mStorage->account(other)->isRemoteWipeRequested());
        QVERIFY2(mStorage->enabledAccountsCount() == 2, "the engine stays until the wipe is over");
        QSignalSpy deleted(mStorage.get(), &AccountStorage::accountDeleted);
        QTRY_COMPARE(deleted.count(), 1);
        QCOMPARE(deleted.first().first().toULongLong(), id);
        QCOMPARE(mStorage->accounts(), QList<EasAccountId> { other });
    }

    void anAccountThatIsCreatedIsAnnouncedOnce()
    {
        openReady();
        QSignalSpy added(mStorage.get(), &AccountStorage::accountAdded);
        const EasAccountId id = create();
        QTRY_COMPARE(added.count(), 1);
        QCOMPARE(added.first().first().toULongLong(), id);
        const QPointer<EasAccount> account = mStorage->account(id);
        QVERIFY(account);
        QVERIFY(mLog->contains(QStringLiteral("received account created: ")));
        QVERIFY(mLog->contains(QStringLiteral("created EAS account with id")));
        // The store reports the same account once more.
        QVERIFY(QMetaObject::invokeMethod(
            mStorage.get(), "onAccountCreated", Q_ARG(uint, static_cast<uint>(id))));
        QCOMPARE(mStorage->account(id), account.data());
        QCOMPARE(added.count(), 1);
        QCOMPARE(mLog->count(QStringLiteral("created EAS account with id")), 1);
    }

    void aDisabledAccountThatIsCreatedIsPassedOver()
    {
        openReady();
        QSignalSpy added(mStorage.get(), &AccountStorage::accountAdded);
        AccountOptions disabled;
        disabled.enabled = false;
        const EasAccountId off = mFactory->create(disabled);
        const EasAccountId on = create();
        QTRY_COMPARE(added.count(), 1);
        QCOMPARE(added.first().first().toULongLong(), on);
        QCOMPARE(mStorage->account(off), nullptr);
        QVERIFY(mLog->contains(QtInfoMsg, { "account", QString::number(off), "disabled" }));
    }

    void accountsOfOthersAreNoneOfItsBusiness()
    {
        openReady();
        QSignalSpy added(mStorage.get(), &AccountStorage::accountAdded);
        QSignalSpy deleted(mStorage.get(), &AccountStorage::accountDeleted);
        createForeign();
        const EasAccountId own = create();
        QTRY_COMPARE(added.count(), 1);
        QCOMPARE(added.first().first().toULongLong(), own);
        mForeign.reset();
        mFactory->remove(own);
        QTRY_COMPARE(deleted.count(), 1);
        QCOMPARE(deleted.first().first().toULongLong(), own);
    }

    void anAccountThatIsEnabledLaterGetsItsObject()
    {
        AccountOptions disabled;
        disabled.enabled = false;
        const EasAccountId id = mFactory->create(disabled);
        openReady();
        QCOMPARE(mStorage->account(id), nullptr);
        QSignalSpy added(mStorage.get(), &AccountStorage::accountAdded);
        QVERIFY(mFactory->setEnabled(id, true));
        QTRY_COMPARE(added.count(), 1);
        QVERIFY(mStorage->account(id));
        QCOMPARE(mStorage->enabledAccountsCount(), 1);
    }

    void aDisabledAccountKeepsItsObjectButCountsNoMore()
    {
        const EasAccountId id = create();
        openReady();
        QPointer<EasAccount> account = mStorage->account(id);
        QCOMPARE(mStorage->enabledAccountsCount(), 1);
        QSignalSpy updated(mStorage.get(), &AccountStorage::accountUpdated);
        QVERIFY(mFactory->setEnabled(id, false));
        QTRY_COMPARE(updated.count(), 1);
        QCOMPARE(updated.first().first().toULongLong(), id);
        QCOMPARE(mStorage->enabledAccountsCount(), 0);
        QVERIFY(!account->enabled());
        QCOMPARE(mStorage->account(id), account.data());
        QVERIFY(mFactory->setEnabled(id, true));
        QTRY_COMPARE(updated.count(), 2);
        QCOMPARE(mStorage->enabledAccountsCount(), 1);
        QCOMPARE(mStorage->account(id), account.data());
    }

    void disablingOneOfTwoLeavesTheOther()
    {
        const EasAccountId first = create();
        create();
        openReady();
        QSignalSpy updated(mStorage.get(), &AccountStorage::accountUpdated);
        QVERIFY(mFactory->setEnabled(first, false));
        QTRY_COMPARE(updated.count(), 1);
        QCOMPARE(mStorage->enabledAccountsCount(), 1);
        QCOMPARE(mStorage->accounts().size(), 2);
    }

    void anEditedAccountIsReported()
    {
        const EasAccountId id = create();
        openReady();
        QSignalSpy updated(mStorage.get(), &AccountStorage::accountUpdated);
        QVERIFY(mFactory->setValue(
            id, AccountFactory::mailService(), QStringLiteral("connection/domain"), QStringLiteral("CORP")));
        QTRY_COMPARE(updated.count(), 1);
        QCOMPARE(updated.first().first().toULongLong(), id);
        QVERIFY(mLog->contains(QtDebugMsg, { "account", QString::number(id), "updated" }));
    }

    void aRemovedAccountLosesItsObject()
    {
        const EasAccountId id = create();
        openReady();
        const QPointer<EasAccount> account = mStorage->account(id);
        QSignalSpy deleted(mStorage.get(), &AccountStorage::accountDeleted);
        QVERIFY(mFactory->remove(id));
        QTRY_COMPARE(deleted.count(), 1);
        QCOMPARE(deleted.first().first().toULongLong(), id);
        QCOMPARE(mStorage->account(id), nullptr);
        QVERIFY(mStorage->accounts().isEmpty());
        QTRY_VERIFY(account.isNull());
        QVERIFY(mLog->contains(QStringLiteral("received account removed: ")));
    }

    void removingTheLastAccountThatIsNotReadyMakesItReady()
    {
        const EasAccountId id = create();
        open();
        QTRY_VERIFY(mStorage->account(id));
        QVERIFY(mFactory->remove(id));
        QTRY_VERIFY(mStorage->isReady());
        QTRY_VERIFY(!mStorage->account(id));
    }

    void whatTheDatabaseKeepsOfVanishedAccountsIsRemoved()
    {
        const EasAccountId on = create();
        AccountOptions disabled;
        disabled.enabled = false;
        const EasAccountId off = mFactory->create(disabled);
        const EasAccountId gone = 9999;
        for (const EasAccountId id : { on, off, gone }) {
            EasDatabase::instance()->onAccountAdded(id);
            EasDatabase::instance()->setFolderSyncKey(id, QStringLiteral("key"));
        }
        openReady();
        QCOMPARE(*EasDatabase::instance()->folderSyncKey(on), QStringLiteral("key"));
        QCOMPARE(*EasDatabase::instance()->folderSyncKey(off), QStringLiteral("key"));
        QVERIFY(*EasDatabase::instance()->folderSyncKey(gone) != QStringLiteral("key"));
    }

    void theDatabaseHearsOfAccountsThatComeAndGo()
    {
        openReady();
        const EasAccountId id = create();
        QTRY_VERIFY(mStorage->account(id));
        QCOMPARE(*EasDatabase::instance()->folderSyncKey(id), QStringLiteral("0"));
        EasDatabase::instance()->setFolderSyncKey(id, QStringLiteral("key"));
        // The database closes by itself; what follows has to open it again.
        EasDatabase::releaseInstance();
        QSignalSpy deleted(mStorage.get(), &AccountStorage::accountDeleted);
        QVERIFY(mFactory->remove(id));
        QTRY_COMPARE(deleted.count(), 1);
        QVERIFY(*EasDatabase::instance()->folderSyncKey(id) != QStringLiteral("key"));
    }

    void theSchedulerForgetsAnAccountThatIsRemoved()
    {
        const SyncScheduler scheduler;
        QVERIFY(scheduler.isRegistered());
        openReady();
        const EasAccountId id = create();
        QTRY_VERIFY(mStorage->account(id));
        QVERIFY(mFactory->remove(id));
        QTRY_COMPARE(scheduler.switches(), QStringList { QStringLiteral("%1 fenneleas-email off").arg(id) });
    }

private:
    EasAccountId create() { return mFactory->create(); }

    EasAccountId createForeign()
    {
        mForeign = std::make_unique<Accounts::Manager>();
        Accounts::Account *account = mForeign->createAccount(QStringLiteral("someone-else"));
        account->setEnabled(true);
        account->syncAndBlock();
        return account->id();
    }

    void open()
    {
        mStorage = std::make_unique<AccountStorageImpl>(StoragesFactory::storageCreator(), nullptr);
        mEngine->present(mStorage.get());
    }

    void openReady()
    {
        open();
        QTRY_VERIFY(mStorage->isReady());
    }

    std::unique_ptr<AccountFactory> mFactory;
    std::unique_ptr<Accounts::Manager> mForeign;
    ScriptedManager *mEngine = nullptr;
    std::unique_ptr<LogCollector> mLog;
    std::unique_ptr<AccountStorageImpl> mStorage;
};

FENNEL_REGISTER_TEST(AccountStorageImplTest)
#include "accountstorageimpltest.moc"
