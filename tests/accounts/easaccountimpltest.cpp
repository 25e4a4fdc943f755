// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/easaccountimpl.h"
#include "application/account/provisionmanager.h"
#include "application/base/deviceinformation.h"
#include "application/storagesfactory.h"
#include "configurations/connectionaccountconfiguration.h"
#include "configurations/emailaccountconfiguration.h"
#include "storages/contactstorage.h"
#include "storages/mailstorage.h"
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

namespace {

const QString credentialsIdKey = QStringLiteral("CredentialsId");

} // namespace

/** An account on a real account store and a real sign-on service. */
class EasAccountImplTest : public QObject
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
    }

    void anAccountIsReadyOnceItsPasswordIsThere()
    {
        open();
        QVERIFY(!mAccount->isReady());
        QVERIFY(mAccount->password().isEmpty());
        QSignalSpy credentials(mAccount.get(), &EasAccount::credentialsChanged);
        QTRY_VERIFY(mAccount->isReady());
        QCOMPARE(mAccount->password(), QStringLiteral("s3cret"));
        QTRY_COMPARE(credentials.count(), 1);
        QCOMPARE(credentials.first().first().toULongLong(), mId);
        QCOMPARE(QByteArray::fromBase64(mAccount->authenticationBasicCookie()), QByteArray("alice:s3cret"));
        QCOMPARE(mLog->count(
                     QStringLiteral("ssl credentials empty, assuming no certificate required for account")),
            1);
        QVERIFY(mAccount->sslCertificatePassword().isEmpty());
    }

    void readinessIsToldOnTheStepsAlone()
    {
        mFactory->setValue(mId, QString(), QStringLiteral("SslCertCredentialsId"), storedPassphrase());
        open();
        QSignalSpy steps(mAccount.get(), &EasAccount::readyChanged);
        QTRY_VERIFY(mAccount->isReady());
        QCOMPARE(steps.count(), 1);
        mAccount->onAuthenticationFailedError();
        QVERIFY(!mAccount->isReady());
        QCOMPARE(steps.count(), 2);
        QTRY_VERIFY(mAccount->isReady());
        QCOMPARE(steps.count(), 3);
    }

    void theCookieIsThereWhenTheAccountBecomesReady()
    {
        open();
        QByteArray cookie;
        connect(mAccount.get(), &EasAccount::readyChanged, this,
            [&] { cookie = mAccount->authenticationBasicCookie(); });
        QTRY_VERIFY(mAccount->isReady());
        QVERIFY(!cookie.isEmpty());
    }

    void twoRetrievalsInARowStartOneFlow()
    {
        openReady();
        QSignalSpy credentials(mAccount.get(), &EasAccount::credentialsChanged);
        mAccount->retrieveCredentials();
        mAccount->retrieveCredentials();
        mAccount->onAuthenticationFailedError();
        QCOMPARE(mLog->count(QStringLiteral("credentials retrieving is in progress for account")), 2);
        QTRY_VERIFY(mAccount->isReady());
        QTRY_COMPARE(credentials.count(), 1);
    }

    void credentialsThatChangeWhileOthersAreOnTheirWayAreFetchedAfterwards()
    {
        openReady();
        QSignalSpy credentials(mAccount.get(), &EasAccount::credentialsChanged);
        QSignalSpy steps(mAccount.get(), &EasAccount::readyChanged);
        mAccount->retrieveCredentials();
        Q_EMIT mAccount->emailConfiguration()->passwordChanged();
        Q_EMIT mAccount->emailConfiguration()->passwordChanged();
        QTRY_VERIFY(mAccount->isReady());
        QTRY_COMPARE(credentials.count(), 2);
        QCOMPARE(steps.count(), 2);
    }

    void thePassphraseOfACertificateIsFetched()
    {
        mFactory->setValue(mId, QString(), QStringLiteral("SslCertCredentialsId"), storedPassphrase());
        open();
        QSignalSpy passphrases(mAccount.get(), &EasAccount::sslCertificateCredentialsChanged);
        QTRY_COMPARE(passphrases.count(), 1);
        QCOMPARE(mAccount->sslCertificatePassword(), QStringLiteral("s3cret-passphrase"));
        QTRY_VERIFY(mAccount->isReady());
    }

    void withoutAnIdentityTheAccountIsReadyAndHasNoPassword()
    {
        mFactory->setValue(mId, QString(), credentialsIdKey, 0U);
        open();
        QVERIFY(mAccount->isReady());
        QVERIFY(mAccount->password().isEmpty());
        QVERIFY(mLog->contains(QtCriticalMsg, { "can't find SignOn::Identity for credentials id=", "0" }));
    }

    void anUnknownIdentityLeavesThePasswordAsItWas()
    {
        openReady();
        mFactory->setValue(mId, QString(), credentialsIdKey, 4711U);
        QTRY_COMPARE(record()->value(credentialsIdKey).toUInt(), 4711U);
        QSignalSpy credentials(mAccount.get(), &EasAccount::credentialsChanged);
        mAccount->retrieveCredentials();
        QTRY_VERIFY(mAccount->isReady());
        QVERIFY(mLog->contains(QtWarningMsg, { "Received a SignOn error: type=", ", message:" }));
        QCOMPARE(mAccount->password(), QStringLiteral("s3cret"));
        QCOMPARE(credentials.count(), 0);
    }

    void anUnknownCertificateIdentityIsAnErrorOfItsOwn()
    {
        mFactory->setValue(mId, QString(), QStringLiteral("SslCertCredentialsId"), 4711U);
        openReady();
        QVERIFY(mLog->contains(QtWarningMsg, { "SSL credentials flow received a SignOn error: type=" }));
        QCOMPARE(mAccount->password(), QStringLiteral("s3cret"));
    }

    void aNewPasswordIsTakenAndUnblocksTheAccount()
    {
        openReady();
        mAccount->credentialsNeedUpdate();
        QVERIFY(mAccount->isCredentialsNeedUpdate());
        QSignalSpy credentials(mAccount.get(), &EasAccount::credentialsChanged);
        QVERIFY(mFactory->changePassword(mId, QStringLiteral("s3cret-two")));
        QTRY_COMPARE(mAccount->password(), QStringLiteral("s3cret-two"));
        QTRY_VERIFY(!mAccount->isCredentialsNeedUpdate());
        QTRY_VERIFY(credentials.count() >= 1);
        QCOMPARE(
            QByteArray::fromBase64(mAccount->authenticationBasicCookie()), QByteArray("alice:s3cret-two"));
    }

    void refusedCredentialsAreMarkedForTheUser()
    {
        openReady();
        QVERIFY(!mAccount->isCredentialsNeedUpdate());
        mAccount->credentialsNeedUpdate();
        QVERIFY(mAccount->isCredentialsNeedUpdate());
        const QString mail = AccountFactory::mailService();
        QCOMPARE(mFactory->value(mId, mail, QStringLiteral("CredentialsNeedUpdate")), QVariant(true));
        QCOMPARE(mFactory->value(mId, mail, QStringLiteral("CredentialsNeedUpdateFrom")),
            QVariant(QStringLiteral("fenel-eas")));
        QVERIFY(mLog->contains(QtInfoMsg, { "fennel-eas: setting CredentialsNeedUpdate on account:" }));
    }

    void refusedCredentialsAreMarkedOnce()
    {
        openReady();
        const QString key = QStringLiteral("CredentialsNeedUpdateFrom");
        mAccount->credentialsNeedUpdate();
        // Another program takes note of the first mark; a second one would undo that.
        QVERIFY(mFactory->setValue(mId, AccountFactory::mailService(), key, QStringLiteral("seen")));
        QTRY_COMPARE(storedByMail(key), QVariant(QStringLiteral("seen")));
        mAccount->credentialsNeedUpdate();
        QCOMPARE(mFactory->value(mId, AccountFactory::mailService(), key), QVariant(QStringLiteral("seen")));
        QCOMPARE(mLog->count(QStringLiteral("fennel-eas: setting CredentialsNeedUpdate on account:")), 1);
    }

    void settingsComeFromTheRecord()
    {
        const QString global;
        mFactory->setValue(mId, global, QStringLiteral("conflict_policy"), 0);
        mFactory->setValue(
            mId, global, QStringLiteral("connection/preferred_protocol_version"), QStringLiteral("14.1"));
        open();
        QCOMPARE(mAccount->userName(), QStringLiteral("alice"));
        QCOMPARE(mAccount->serverAddress(), QStringLiteral("127.0.0.1"));
        QCOMPARE(mAccount->serverConflictPolicy(), 0);
        QCOMPARE(mAccount->preferredProtocolVersion(), ExchangeActiveSync::ProtocolVersion141);
        QVERIFY(mAccount->enabled());
        QVERIFY(mAccount->connectionConfiguration());
        QCOMPARE(mAccount->deviceId(), DeviceInformation::deviceId());
        QCOMPARE(mAccount->deviceType(), QStringLiteral("HalcyonOS"));
        ProvisionManager *const manager = mAccount->provisionManager();
        QVERIFY(manager);
        QCOMPARE(mAccount->provisionManager(), manager);
        QCOMPARE(manager->account(), mAccount.get());
        QTRY_VERIFY(mAccount->isReady());
    }

    void aVersionThatNobodyKnowsIsAutomatic()
    {
        mFactory->setValue(mId, QString(), QStringLiteral("connection/preferred_protocol_version"),
            QStringLiteral("automatic"));
        open();
        QCOMPARE(mAccount->preferredProtocolVersion(), ExchangeActiveSync::ProtocolVersionUnknown);
    }

    void whatIsLearntFromTheServerSurvivesARestart()
    {
        open();
        const QStringList versions { QStringLiteral("12.1"), QStringLiteral("16.1") };
        const QStringList commands { QStringLiteral("Sync"), QStringLiteral("FolderSync") };
        QVERIFY(!mAccount->firstSyncCompleted());
        QVERIFY(mAccount->lastKnownVersions().isEmpty());
        mAccount->setPolicyKey(QStringLiteral("12345"));
        mAccount->setFirstSyncCompleted(true);
        mAccount->setLastKnownVersions(versions);
        mAccount->setLastKnownSupportedCommands(commands);
        open();
        QCOMPARE(mAccount->policyKey(), QStringLiteral("12345"));
        QVERIFY(mAccount->firstSyncCompleted());
        QCOMPARE(mAccount->lastKnownVersions(), versions);
        QCOMPARE(mAccount->lastKnownSupportedCommands(), commands);
        QCOMPARE(mFactory->value(mId, QString(), QStringLiteral("last_known_versions")),
            QVariant(QStringLiteral("12.1,16.1")));
    }

    void allServicesShareTheTimeOfTheLastSync()
    {
        open();
        const QDateTime time = QDateTime::fromSecsSinceEpoch(1700000000, Qt::UTC);
        mAccount->setLastSyncTime(EasAccount::EmailService, time);
        for (const auto service :
            { EasAccount::ContactsService, EasAccount::CalendarService, EasAccount::EmailService })
            QCOMPARE(mAccount->lastSyncTime(service), time);
        QCOMPARE(mFactory->value(mId, AccountFactory::mailService(), QStringLiteral("lastSynchronized")),
            QVariant(quint64(1700000000)));
        QVERIFY(mLog->contains(QtInfoMsg, { "Update last synchronized", "for service", "fenneleas-email" }));
    }

    void onlyAValidTimeOfTheMailServiceIsWritten()
    {
        open();
        const QDateTime time = QDateTime::fromSecsSinceEpoch(1700000000, Qt::UTC);
        mAccount->setLastSyncTime(EasAccount::EmailService, time);
        mAccount->setLastSyncTime(EasAccount::EmailService, QDateTime());
        mAccount->setLastSyncTime(EasAccount::ContactsService | EasAccount::CalendarService, time.addDays(1));
        QCOMPARE(mAccount->lastSyncTime(EasAccount::EmailService), time);
    }

    void theSchedulerIsAskedAtTheStart()
    {
        SyncScheduler scheduler;
        QVERIFY(scheduler.isRegistered());
        open();
        const SyncScheduler::Query expected(static_cast<uint>(mId), QStringLiteral("fenneleas-email"));
        QTRY_COMPARE(scheduler.queries(), QList<SyncScheduler::Query> { expected });
    }

    void theSchedulerIsAskedAgainWhenTheAccountIsSwitchedOn()
    {
        SyncScheduler scheduler;
        QVERIFY(scheduler.isRegistered());
        open();
        QTRY_COMPARE(scheduler.queries().size(), 1);
        QVERIFY(mFactory->setEnabled(mId, false));
        QTRY_VERIFY(!mAccount->enabled());
        QVERIFY(mFactory->setEnabled(mId, true));
        QTRY_COMPARE(scheduler.queries().size(), 2);
        QCOMPARE(scheduler.queries().last().first, static_cast<uint>(mId));
    }

    void alwaysOnStandsInTheRecord()
    {
        open();
        const QString key = QStringLiteral("hasPersistentConnection");
        mAccount->setAlwaysOn(true);
        QCOMPARE(mFactory->value(mId, AccountFactory::mailService(), key), QVariant(true));
        mAccount->setAlwaysOn(false);
        QCOMPARE(mFactory->value(mId, AccountFactory::mailService(), key), QVariant(false));
    }

    void disablingTheAccountEndsAlwaysOn()
    {
        open();
        mAccount->setAlwaysOn(true);
        QVERIFY(mFactory->setEnabled(mId, false));
        QTRY_VERIFY(!mAccount->alwaysOn());
        QVERIFY(!mAccount->enabled());
        QVERIFY(mFactory->setEnabled(mId, true));
        QTRY_VERIFY(mAccount->enabled());
        QVERIFY2(!mAccount->alwaysOn(), "only the scheduler brings it back");
    }

    void theMailStorageComesAndGoesWithItsService()
    {
        open();
        QVERIFY(!mAccount->mailStorage());
        QVERIFY(mLog->contains(QStringLiteral("email service is disabled in account")));
        QSignalSpy changes(mAccount.get(), &EasAccount::emailConfigurationChanged);
        mFactory->setServiceEnabled(mId, AccountFactory::mailService(), true);
        QTRY_COMPARE(changes.count(), 1);
        QVERIFY(mLog->contains(QStringLiteral("email service is enabled in account")));
        const auto storage = mAccount->mailStorage();
        QVERIFY(storage);
        mFactory->setValue(mId, AccountFactory::mailService(), QStringLiteral("preview_size"), 3);
        QTRY_COMPARE(changes.count(), 2);
        QCOMPARE(mAccount->mailStorage(), storage);
        mFactory->setServiceEnabled(mId, AccountFactory::mailService(), false);
        QTRY_COMPARE(changes.count(), 3);
        QVERIFY(!mAccount->mailStorage());
    }

    void theOtherStoragesAreAlwaysThere()
    {
        open();
        QVERIFY(mAccount->calendarStorage());
        const auto contacts = mAccount->contactStorage();
        QVERIFY(contacts);
        QCOMPARE(mAccount->contactStorage(), contacts);
    }

    void anAccountThatIsRemovedUnderneathReadsAsEmpty()
    {
        openReady();
        QSignalSpy removed(mManager.get(), &Accounts::Manager::accountRemoved);
        QVERIFY(mFactory->remove(mId));
        QTRY_VERIFY(!removed.isEmpty());
        mManager.reset();
        QVERIFY(!mAccount->enabled());
        QVERIFY(mAccount->userName().isEmpty());
        QVERIFY(!mAccount->isCredentialsNeedUpdate());
        mAccount->credentialsNeedUpdate();
        mAccount->setPolicyKey(QStringLiteral("1"));
        QVERIFY(mLog->contains(QtWarningMsg, { "failed to write", "policyKey" }));
        QVERIFY(mLog->contains(QtWarningMsg, { "failed to write", "CredentialsNeedUpdate" }));
    }

private:
    Accounts::Account *record() const
    {
        Accounts::Account *record = mManager->account(static_cast<Accounts::AccountId>(mId));
        record->selectService();
        return record;
    }

    /** The account as a daemon has it that starts now. */
    void open()
    {
        mAccount.reset();
        mManager = std::make_unique<Accounts::Manager>();
        mAccount =
            std::make_unique<EasAccountImpl>(record(), mId, StoragesFactory::storageCreator(), nullptr);
        mEngine->present(mAccount.get());
    }

    void openReady()
    {
        open();
        QTRY_VERIFY(mAccount->isReady());
    }

    /** A key of the mail service as the account's own record has it. */
    QVariant storedByMail(const QString &key) const
    {
        Accounts::Account *const mine = record();
        mine->selectService(mManager->service(AccountFactory::mailService()));
        const QVariant value = mine->value(key);
        mine->selectService();
        return value;
    }

    static quint32 storedPassphrase()
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

FENNEL_REGISTER_TEST(EasAccountImplTest)
#include "easaccountimpltest.moc"
