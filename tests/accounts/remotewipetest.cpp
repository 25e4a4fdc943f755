// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/remotewipe.h"

#include "accounts/easaccountimpl.h"
#include "accounts/waitingidentities.h"
#include "application/mapping/easdatabase.h"
#include "application/storagesfactory.h"
#include "support/accountfactory.h"
#include "support/logcollector.h"
#include "support/privatebus.h"
#include "support/scriptedmanager.h"
#include "support/signonservice.h"
#include "support/storecheck.h"
#include "support/testclock.h"
#include "support/testmain.h"

#include <Accounts/Account>
#include <Accounts/Manager>

#include <QDir>
#include <QStandardPaths>
#include <QtTest>

#include <memory>

namespace {

const QString credentialsIdKey = QStringLiteral("CredentialsId");
const QString passphraseIdKey = QStringLiteral("SslCertCredentialsId");
const QString requestedKey = QStringLiteral("remote_wipe_requested");
/** At which the sign-on service is waited for. */
constexpr int SignOnPatience = 30000;
const QString stageKey = QStringLiteral("remote_wipe_stage");

} // namespace

/** An account on a real account store and a real sign-on service is wiped. */
class RemoteWipeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qRegisterMetaType<EasAccountId>("EasAccountId");
        QVERIFY(PrivateBus::ensure());
        mFactory = std::make_unique<AccountFactory>();
    }

    void cleanupTestCase()
    {
        mFactory.reset();
        mManager.reset();
    }

    void init()
    {
        mLog = std::make_unique<LogCollector>();
        mEngine = ScriptedManager::install();
        AccountOptions options;
        options.mailEnabled = false;
        mId = mFactory->create(options);
        QVERIFY(mId != 0);
    }

    void cleanup()
    {
        QVERIFY2(!mLog->contains(QStringLiteral("s3cret")), "no password in any log line");
        mAccount.reset();
        mManager.reset();
        ScriptedManager::uninstall();
        mLog.reset();
        mFactory->remove(mId);
        QFile::remove(WaitingIdentities::defaultFile());
    }

    void aWipeTakesIdentityAttachmentsAndRecord()
    {
        open();
        QTRY_VERIFY(mAccount->isReady());
        const quint32 identity = mFactory->value(mId, QString(), credentialsIdKey).toUInt();
        const QString attachments = attachmentsFolder();
        QVERIFY(QDir().mkpath(attachments + QStringLiteral("/part")));
        TestClock clock;
        clock.heldFrom = SignOnPatience;
        QSignalSpy removed(mManager.get(), &Accounts::Manager::accountRemoved);
        QVERIFY(mAccount->remoteWipeRequested());
        QCOMPARE(mFactory->value(mId, QString(), requestedKey), QVariant(true));
        QTRY_VERIFY(!removed.isEmpty());
        QVERIFY(!QDir(attachments).exists());
        QVERIFY(!AccountFactory::identityExists(identity));
        QVERIFY(mLog->contains(QStringLiteral("trying to wipe the account")));
        QVERIFY(mLog->contains(QStringLiteral("identity removed in account")));
        QVERIFY(mLog->contains(QStringLiteral("removing directory:")));
    }

    void theWipeWaitsForTheAcknowledgement()
    {
        openReady();
        QSignalSpy ordered(mAccount.get(), &EasAccount::remoteWipeOrdered);
        QSignalSpy begun(mAccount.get(), &EasAccount::remoteWipeBegun);
        mAccount->remoteWipeAcknowledged();
        TestClock clock;
        clock.heldFrom = 10000;
        QVERIFY(!mAccount->isRemoteWipeRequested());
        QVERIFY(mAccount->remoteWipeRequested());
        QVERIFY(mAccount->isRemoteWipeRequested());
        QCOMPARE(clock.intervals, QList<int> { 10000 });
        QCOMPARE(ordered.count(), 1);
        QVERIFY2(mAccount->remoteWipeRequested(), "a second order");
        QCOMPARE(clock.intervals, QList<int> { 10000 });
        mAccount->remoteWipeAcknowledged();
        QCOMPARE(clock.intervals, QList<int>({ 10000, 500 }));
        QCOMPARE(begun.count(), 0);
        QTRY_COMPARE(begun.count(), 1);
        QCOMPARE(ordered.count(), 1);
    }

    void anOrderThatCannotBeWrittenDownIsNone()
    {
        openReady();
        QVERIFY(mFactory->remove(mId));
        mManager.reset();
        QSignalSpy ordered(mAccount.get(), &EasAccount::remoteWipeOrdered);
        TestClock clock;
        QVERIFY(!mAccount->remoteWipeRequested());
        QVERIFY(!mAccount->isRemoteWipeRequested());
        QVERIFY(mLog->contains(QtWarningMsg, { "failed to write", "remote_wipe_requested" }));
        QCOMPARE(ordered.count(), 0);
        QVERIFY(clock.intervals.isEmpty());
    }

    void fromTheOrderOnThereIsNeitherStoreNorPush()
    {
        mFactory->setServiceEnabled(mId, AccountFactory::mailService(), true);
        openReady();
        QVERIFY(mAccount->mailStorage());
        QVERIFY(mAccount->calendarStorage());
        QVERIFY(mAccount->contactStorage());
        mAccount->setAlwaysOn(true);
        QVERIFY(mAccount->remoteWipeRequested());
        QVERIFY(!mAccount->mailStorage());
        QVERIFY(!mAccount->calendarStorage());
        QVERIFY(!mAccount->contactStorage());
        QVERIFY(!mAccount->alwaysOn());
        mAccount->setAlwaysOn(true);
        QVERIFY(!mAccount->alwaysOn());
        QSignalSpy changes(mAccount.get(), &EasAccount::emailConfigurationChanged);
        mFactory->setValue(mId, AccountFactory::mailService(), QStringLiteral("preview_size"), 4);
        QTRY_COMPARE(changes.count(), 1);
        QVERIFY(!mAccount->mailStorage());
    }

    void anAccountThatIsToBeWipedOpensNothingAtItsStart()
    {
        mFactory->setServiceEnabled(mId, AccountFactory::mailService(), true);
        order();
        open();
        QVERIFY(mAccount->isRemoteWipeRequested());
        QVERIFY2(mAccount->isReady(), "no password is fetched");
        QVERIFY(!mAccount->mailStorage());
        QVERIFY(!mAccount->calendarStorage());
        QVERIFY(!mAccount->contactStorage());
    }

    void aWipeThatARestartInterruptedGoesOn()
    {
        TestClock clock;
        clock.heldFrom = SignOnPatience;
        order();
        open();
        QSignalSpy removed(mManager.get(), &Accounts::Manager::accountRemoved);
        QCOMPARE(clock.intervals, QList<int> { 500 });
        QTRY_VERIFY(!removed.isEmpty());
    }

    void aWipeWithoutAnIdentityRemovesTheRest()
    {
        TestClock clock;
        clock.heldFrom = SignOnPatience;
        mFactory->setValue(mId, QString(), credentialsIdKey, 0U);
        order();
        open();
        QSignalSpy removed(mManager.get(), &Accounts::Manager::accountRemoved);
        QTRY_VERIFY(!removed.isEmpty());
        QVERIFY(mLog->contains(QStringLiteral("identity is not found for account")));
    }

    void fromTheWipeOnNothingIsSynchronised()
    {
        openReady();
        QVERIFY(!mAccount->authenticationBasicCookie().isEmpty());
        TestClock clock;
        mAccount->remoteWipeRequested();
        QVERIFY2(!mAccount->password().isEmpty(), "the demand is still to be answered");
        QTRY_VERIFY(mLog->contains(QStringLiteral("trying to wipe the account")));
        QVERIFY(mAccount->password().isEmpty());
        QVERIFY(mAccount->authenticationBasicCookie().isEmpty());
        mAccount->retrieveCredentials();
        QVERIFY(mAccount->isReady());
    }

    void bothIdentitiesGo()
    {
        const quint32 passphrase = storedIdentity();
        mFactory->setValue(mId, QString(), passphraseIdKey, passphrase);
        const quint32 password = mFactory->value(mId, QString(), credentialsIdKey).toUInt();
        wipe();
        QVERIFY(!AccountFactory::identityExists(password));
        QVERIFY(!AccountFactory::identityExists(passphrase));
        QVERIFY(WaitingIdentities().all()->isEmpty());
    }

    void anIdentityThatIsGoneAlreadyHoldsNothingUp()
    {
        QVERIFY(WaitingIdentities().noteShown(4711));
        mFactory->setValue(mId, QString(), credentialsIdKey, 4711U);
        wipe();
        QVERIFY(WaitingIdentities().all()->isEmpty());
    }

    void anIdentityThatTheServiceRefusesWaits()
    {
        mFactory->setValue(mId, QString(), credentialsIdKey, 4711U);
        wipe();
        QVERIFY(mLog->contains(QtWarningMsg, { "Received an Identity deletion error: type=", ", message:" }));
        QCOMPARE(*WaitingIdentities().all(), WaitingIdentities::Identities { 4711 });
        QVERIFY(WaitingIdentities().remove(4711));
    }

    void anIdentityThatAnotherAccountUsesStays()
    {
        const quint32 shared = mFactory->value(mId, QString(), credentialsIdKey).toUInt();
        const EasAccountId other = mFactory->create();
        QVERIFY(mFactory->setValue(other, QString(), credentialsIdKey, shared));
        wipe();
        QVERIFY(AccountFactory::identityExists(shared));
        QVERIFY(mFactory->remove(other));
    }

    void aSignOnServiceThatDoesNotAnswerHoldsNothingUp()
    {
        const quint32 password = mFactory->value(mId, QString(), credentialsIdKey).toUInt();
        order();
        TestClock clock;
        open();
        QSignalSpy removed(mManager.get(), &Accounts::Manager::accountRemoved);
        {
            const SilentSignOnService silent;
            QVERIFY(silent.isSilent());
            QTRY_VERIFY(!removed.isEmpty());
            QCOMPARE(*WaitingIdentities().all(), WaitingIdentities::Identities { password });
        }
        QVERIFY(WaitingIdentities().remove(password));
    }

    void whatFailedIsTriedAgain()
    {
        const quint32 password = mFactory->value(mId, QString(), credentialsIdKey).toUInt();
        const QString attachments = attachmentsFolder();
        QVERIFY(QDir().mkpath(attachments));
        // What cannot be removed can then not be remembered either.
        const QString file = WaitingIdentities::defaultFile();
        QVERIFY(QDir().mkpath(file));
        order();
        {
            const SilentSignOnService silent;
            QVERIFY(silent.isSilent());
            TestClock clock;
            clock.heldFrom = 300000;
            open();
            QTRY_VERIFY(mLog->contains(QtWarningMsg, { "the wipe of account", "is not complete" }));
            QVERIFY(clock.intervals.contains(300000));
            QVERIFY2(!QDir(attachments).exists(), "the other steps have been done");
            QCOMPARE(mFactory->value(mId, QString(), requestedKey), QVariant(true));
            QCOMPARE(mFactory->value(mId, QString(), credentialsIdKey).toUInt(), password);
        }
        QVERIFY(QDir().rmdir(file));
        wipe();
        QVERIFY(!AccountFactory::identityExists(password));
    }

    void theRecordTellsTheStage()
    {
        order();
        TestClock clock;
        clock.heldFrom = SignOnPatience;
        const SilentSignOnService silent;
        QVERIFY(silent.isSilent());
        open();
        QVERIFY(!mFactory->value(mId, QString(), stageKey).isValid());
        QSignalSpy begun(mAccount.get(), &EasAccount::remoteWipeBegun);
        QTRY_COMPARE(begun.count(), 1);
        QCOMPARE(mFactory->value(mId, QString(), stageKey).toString(), QStringLiteral("sign-on"));
    }

    void nothingOfTheAccountIsLeftInTheMapping()
    {
        EasDatabase *const database = EasDatabase::instance();
        database->onAccountAdded(mId);
        QVERIFY(database->setFolderSyncKey(mId, QStringLiteral("5")));
        QVERIFY(rowsOfTheAccount() > 0);
        wipe();
        QCOMPARE(rowsOfTheAccount(), 0);
    }

private:
    /** The account as a daemon has it that starts now. */
    void open()
    {
        mAccount.reset();
        mManager = std::make_unique<Accounts::Manager>();
        Accounts::Account *const record = mManager->account(static_cast<Accounts::AccountId>(mId));
        record->selectService();
        mAccount = std::make_unique<EasAccountImpl>(record, mId, StoragesFactory::storageCreator(), nullptr);
        mEngine->present(mAccount.get());
    }

    void openReady()
    {
        open();
        QTRY_VERIFY(mAccount->isReady());
    }

    /** As if an earlier daemon had been given the order. */
    void order() { QVERIFY(mFactory->setValue(mId, QString(), requestedKey, true)); }

    /** Orders the wipe and waits for its end. */
    void wipe()
    {
        order();
        TestClock clock;
        clock.heldFrom = SignOnPatience;
        open();
        QSignalSpy removed(mManager.get(), &Accounts::Manager::accountRemoved);
        QTRY_VERIFY(!removed.isEmpty());
    }

    int rowsOfTheAccount() const
    {
        int rows = 0;
        for (const char *table : { "accounts", "collections", "emails", "calendar", "contacts" })
            rows += StoreCheck::ask(StoreCheck::mappingFile(),
                QStringLiteral("SELECT account_id FROM %1 WHERE account_id=%2")
                    .arg(QLatin1String(table))
                    .arg(mId))
                        .size();
        return rows;
    }

    QString attachmentsFolder() const
    {
        return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
            + QStringLiteral("/mail_attachments/%1").arg(mId);
    }

    static quint32 storedIdentity()
    {
        return AccountFactory::storeIdentity(
            QStringLiteral("certificate"), QStringLiteral("s3cret-passphrase"));
    }

    std::unique_ptr<AccountFactory> mFactory;
    std::unique_ptr<Accounts::Manager> mManager;
    ScriptedManager *mEngine = nullptr;
    std::unique_ptr<LogCollector> mLog;
    std::unique_ptr<EasAccountImpl> mAccount;
    EasAccountId mId = 0;
};

FENNEL_REGISTER_TEST(RemoteWipeTest)
#include "remotewipetest.moc"
