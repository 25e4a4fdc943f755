// SPDX-License-Identifier: LGPL-2.1-or-later
#include "configurations/impls/calendaraccountconfigurationimpl.h"
#include "configurations/impls/connectionaccountconfigurationimpl.h"
#include "configurations/impls/contactsaccountconfigurationimpl.h"
#include "configurations/impls/emailaccountconfigurationimpl.h"
#include "configurations/impls/scheduleaccountconfigurationimpl.h"
#include "support/accountfactory.h"
#include "support/logcollector.h"
#include "support/privatebus.h"
#include "support/testmain.h"

#include <Accounts/Account>
#include <Accounts/Manager>

#include <QtTest>

#include <memory>

/** The five bindings of settings, on a real account store. */
class AccountConfigurationImplsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qRegisterMetaType<EasAccountId>("EasAccountId");
        QVERIFY(PrivateBus::ensure());
        mFactory = std::make_unique<AccountFactory>();
        mManager = std::make_unique<Accounts::Manager>();
    }

    void cleanupTestCase()
    {
        mFactory.reset();
        mManager.reset();
    }

    void init()
    {
        AccountOptions options;
        options.withIdentity = false;
        options.mailEnabled = false;
        mId = mFactory->create(options);
        QVERIFY(mId != 0);
        mRecord = mManager->account(static_cast<Accounts::AccountId>(mId));
        QVERIFY(mRecord);
    }

    void cleanup() { QVERIFY(mFactory->remove(mId)); }

    void aNewAccountHasTheDescribedDefaults()
    {
        const EmailAccountConfigurationImpl email(mRecord, mId, nullptr);
        QVERIFY(!email.enabled());
        QVERIFY(email.saveInSentItems());
        QCOMPARE(email.syncPastTime(), 0);
        QCOMPARE(email.previewSize(), 0);
        QVERIFY(!email.conversationMode() && !email.signatureEnabled() && !email.firstSyncCompleted());
        const CalendarAccountConfigurationImpl calendar(mRecord, mId, nullptr);
        QCOMPARE(calendar.syncPastTime(), 6);
        const ContactsAccountConfigurationImpl contacts(mRecord, mId, nullptr);
        QVERIFY(contacts.syncLocalContacts());
        const ScheduleAccountConfigurationImpl schedule(mRecord, mId, nullptr);
        QVERIFY(!schedule.enabled());
    }

    void aNewAccountConnectsSecurely()
    {
        Accounts::Account *record = mManager->createAccount(QStringLiteral("fenneleas"));
        const ConnectionAccountConfigurationImpl connection(record, 0, nullptr);
        QCOMPARE(connection.portNumber(), 443);
        QCOMPARE(connection.scheme(), QStringLiteral("https"));
        QVERIFY(!connection.acceptAllCertificates());
    }

    void mailSettingsAreRead()
    {
        const QString mail = AccountFactory::mailService();
        mFactory->setServiceEnabled(mId, mail, true);
        mFactory->setValue(mId, mail, QStringLiteral("conversation_mode"), true);
        mFactory->setValue(mId, mail, QStringLiteral("save_in_sent_items"), false);
        mFactory->setValue(mId, mail, QStringLiteral("signatureEnabled"), true);
        mFactory->setValue(mId, mail, QStringLiteral("signature"), QStringLiteral("Sent from afar"));
        mFactory->setValue(mId, mail, QStringLiteral("preview_size"), 120);
        mFactory->setValue(mId, mail, QStringLiteral("sync_past_time"), 5);
        const LogCollector log;
        const EmailAccountConfigurationImpl email(freshRecord(), mId, nullptr);
        QVERIFY(email.enabled() && email.conversationMode() && email.signatureEnabled());
        QVERIFY(!email.saveInSentItems());
        QCOMPARE(email.signature(), QStringLiteral("Sent from afar"));
        QCOMPARE(email.previewSize(), 120);
        QCOMPARE(email.syncPastTime(), 5);
        QCOMPARE(email.emailAddress(), QStringLiteral("alice@example.com"));
        QVERIFY(log.contains(QStringLiteral("email service found")));
    }

    void scheduleSettingsAreRead()
    {
        const QString mail = AccountFactory::mailService();
        mFactory->setValue(mId, mail, QStringLiteral("schedule/enabled"), true);
        mFactory->setValue(mId, mail, QStringLiteral("schedule/off_peak_schedule"), QStringLiteral("30"));
        mFactory->setValue(mId, mail, QStringLiteral("schedule/peak_schedule"), 15);
        mFactory->setValue(mId, mail, QStringLiteral("schedule/peak_days"), 31);
        mFactory->setValue(mId, mail, QStringLiteral("schedule/peak_start_tm"), 480);
        mFactory->setValue(mId, mail, QStringLiteral("schedule/peak_end_tm"), 1080);
        const ScheduleAccountConfigurationImpl schedule(freshRecord(), mId, nullptr);
        QVERIFY(schedule.enabled());
        QCOMPARE(schedule.offPeakSchedule(), 30);
        QCOMPARE(schedule.peakSchedule(), 15);
        QCOMPARE(schedule.peakDays(), 31);
        QCOMPARE(schedule.peakStartTime(), 480);
        QCOMPARE(schedule.peakEndTime(), 1080);
    }

    void calendarAndContactsSettingsAreTakenFromTheirOwnServices()
    {
        mFactory->setServiceEnabled(mId, AccountFactory::calendarService(), true);
        mFactory->setValue(
            mId, AccountFactory::calendarService(), QStringLiteral("name"), QStringLiteral("Work"));
        mFactory->setValue(mId, AccountFactory::calendarService(), QStringLiteral("sync_past_time"), 4);
        mFactory->setValue(mId, AccountFactory::contactsService(), QStringLiteral("sync_local"), false);
        const LogCollector log;
        const CalendarAccountConfigurationImpl calendar(freshRecord(), mId, nullptr);
        const ContactsAccountConfigurationImpl contacts(freshRecord(), mId, nullptr);
        QVERIFY(calendar.enabled());
        QCOMPARE(calendar.calendarName(), QStringLiteral("Work"));
        QCOMPARE(calendar.syncPastTime(), 4);
        QVERIFY(!contacts.enabled());
        QVERIFY(!contacts.syncLocalContacts());
        QVERIFY(log.contains(QStringLiteral("calendar service found")));
        QVERIFY(log.contains(QStringLiteral("contacts service found")));
    }

    void anAccountWithoutTheServicesHasDefaultValuesOnly()
    {
        Accounts::Account *record = mManager->createAccount(QStringLiteral("nobody"));
        // Global keys of the same names must not shine through.
        record->setValue(QStringLiteral("connection/port"), 99);
        record->setValue(QStringLiteral("sync_past_time"), 3);
        record->setValue(QStringLiteral("enabled"), true);
        record->setValue(QStringLiteral("sync_local"), true);
        record->setValue(QStringLiteral("schedule/enabled"), true);
        record->setValue(QStringLiteral("schedule/peak_days"), 5);
        const LogCollector log;
        const EmailAccountConfigurationImpl email(record, 0, nullptr);
        const CalendarAccountConfigurationImpl calendar(record, 0, nullptr);
        const ContactsAccountConfigurationImpl contacts(record, 0, nullptr);
        const ScheduleAccountConfigurationImpl schedule(record, 0, nullptr);
        ConnectionAccountConfigurationImpl connection(record, 0, nullptr);
        QVERIFY(!email.enabled() && !calendar.enabled() && !contacts.enabled() && !schedule.enabled());
        QVERIFY(!contacts.syncLocalContacts());
        QCOMPARE(schedule.peakDays(), 0);
        QCOMPARE(email.syncPastTime(), 0);
        QCOMPARE(calendar.syncPastTime(), 0);
        QCOMPARE(connection.portNumber(), 0);
        QVERIFY(!log.contains(QStringLiteral("service found")));
        connection.setPortNumber(1);
        QVERIFY2(log.contains(QtCriticalMsg, { "connection/port" }), "there is nowhere to write it");
        QCOMPARE(connection.portNumber(), 0);
    }

    void aChangeByAnotherProgramIsSignalledOnce()
    {
        const EmailAccountConfigurationImpl email(mRecord, mId, nullptr);
        QSignalSpy changes(&email, &EmailAccountConfiguration::emailConfigurationChanged);
        const LogCollector log;
        mFactory->setServiceEnabled(mId, AccountFactory::mailService(), true);
        QTRY_COMPARE(changes.count(), 1);
        QCOMPARE(changes.first().first().toULongLong(), mId);
        QVERIFY(email.enabled());
        QVERIFY(log.contains(QStringLiteral("updating email account config")));
        mFactory->setValue(mId, AccountFactory::mailService(), QStringLiteral("preview_size"), 10);
        QTRY_COMPARE(changes.count(), 2);
    }

    void theMailAddressIsFollowedAlthoughItIsGlobal()
    {
        const EmailAccountConfigurationImpl email(mRecord, mId, nullptr);
        QSignalSpy changes(&email, &EmailAccountConfiguration::emailConfigurationChanged);
        mFactory->setValue(
            mId, QString(), QStringLiteral("connection/emailaddress"), QStringLiteral("bob@example.com"));
        QTRY_COMPARE(changes.count(), 1);
        QCOMPARE(email.emailAddress(), QStringLiteral("bob@example.com"));
    }

    void otherServicesSignalTheirChangesToo()
    {
        const CalendarAccountConfigurationImpl calendar(mRecord, mId, nullptr);
        const ContactsAccountConfigurationImpl contacts(mRecord, mId, nullptr);
        const ConnectionAccountConfigurationImpl connection(mRecord, mId, nullptr);
        const ScheduleAccountConfigurationImpl schedule(mRecord, mId, nullptr);
        QSignalSpy calendarChanges(&calendar, &CalendarAccountConfiguration::calendarConfigurationChanged);
        QSignalSpy contactsChanges(&contacts, &ContactsAccountConfiguration::contactsConfigurationChanged);
        QSignalSpy connectionChanges(
            &connection, &ConnectionAccountConfiguration::connectionConfigurationChanged);
        QSignalSpy scheduleChanges(&schedule, &ScheduleAccountConfiguration::scheduleConfigurationChanged);
        mFactory->setServiceEnabled(mId, AccountFactory::calendarService(), true);
        mFactory->setServiceEnabled(mId, AccountFactory::contactsService(), true);
        mFactory->setValue(
            mId, AccountFactory::mailService(), QStringLiteral("connection/domain"), QStringLiteral("CORP"));
        mFactory->setValue(mId, AccountFactory::mailService(), QStringLiteral("schedule/peak_days"), 3);
        QTRY_COMPARE(calendarChanges.count(), 1);
        QTRY_COMPARE(contactsChanges.count(), 1);
        QTRY_COMPARE(connectionChanges.count(), 1);
        QTRY_COMPARE(scheduleChanges.count(), 1);
        QCOMPARE(connection.domainName(), QStringLiteral("CORP"));
    }

    void otherAccountsDoNotMatter()
    {
        AccountOptions options;
        options.withIdentity = false;
        const EasAccountId other = mFactory->create(options);
        const ConnectionAccountConfigurationImpl connection(mRecord, mId, nullptr);
        QSignalSpy changes(&connection, &ConnectionAccountConfiguration::connectionConfigurationChanged);
        mFactory->setValue(other, AccountFactory::mailService(), QStringLiteral("connection/port"), 1);
        mFactory->setValue(mId, AccountFactory::mailService(), QStringLiteral("connection/port"), 2);
        QTRY_COMPARE(connection.portNumber(), 2);
        QCOMPARE(changes.count(), 1);
    }

    void aRedirectIsWrittenIntoTheRecord()
    {
        const QString mail = AccountFactory::mailService();
        mFactory->setValue(mId, mail, QStringLiteral("connection/secure_connection"), true);
        ConnectionAccountConfigurationImpl connection(freshRecord(), mId, nullptr);
        QVERIFY(connection.secureConnection());
        connection.setScheme(QStringLiteral("http"));
        connection.setServerAddress(QStringLiteral("other.example.com"));
        connection.setPortNumber(8080);
        QVERIFY(!connection.secureConnection());
        QCOMPARE(connection.serverAddress(), QStringLiteral("other.example.com"));
        QCOMPARE(connection.portNumber(), 8080);
        QCOMPARE(mFactory->value(mId, mail, QStringLiteral("connection/secure_connection")), QVariant(false));
        QCOMPARE(mFactory->value(mId, mail, QStringLiteral("connection/server_address")),
            QVariant(QStringLiteral("other.example.com")));
        QCOMPARE(mFactory->value(mId, mail, QStringLiteral("connection/port")), QVariant(8080));
    }

    void anUnexpectedSchemeLeavesTheRecord()
    {
        const QString mail = AccountFactory::mailService();
        mFactory->setValue(mId, mail, QStringLiteral("connection/secure_connection"), true);
        ConnectionAccountConfigurationImpl connection(freshRecord(), mId, nullptr);
        const LogCollector log;
        connection.setScheme(QStringLiteral("gopher"));
        QVERIFY(log.contains(QtCriticalMsg, { "unexpected scheme" }));
        QVERIFY(connection.secureConnection());
        QCOMPARE(mFactory->value(mId, mail, QStringLiteral("connection/secure_connection")), QVariant(true));
    }

    void theFirstSyncIsRememberedForEachService()
    {
        EmailAccountConfigurationImpl email(mRecord, mId, nullptr);
        CalendarAccountConfigurationImpl calendar(mRecord, mId, nullptr);
        ContactsAccountConfigurationImpl contacts(mRecord, mId, nullptr);
        calendar.setFirstSyncCompleted(true);
        QVERIFY(calendar.firstSyncCompleted());
        QVERIFY(!email.firstSyncCompleted() && !contacts.firstSyncCompleted());
        email.setFirstSyncCompleted(true);
        contacts.setFirstSyncCompleted(true);
        for (const QString &service : { AccountFactory::mailService(), AccountFactory::calendarService(),
                 AccountFactory::contactsService() })
            QCOMPARE(mFactory->value(mId, service, QStringLiteral("firstSyncCompleted")), QVariant(true));
    }

    void newCredentialsAreAnnouncedOnce()
    {
        const EmailAccountConfigurationImpl email(mRecord, mId, nullptr);
        QSignalSpy passwords(&email, &EmailAccountConfiguration::passwordChanged);
        const LogCollector log;
        mFactory->setValue(
            mId, AccountFactory::mailService(), QStringLiteral("credentials_update_counter"), 1);
        QTRY_COMPARE(passwords.count(), 1);
        QVERIFY(log.contains(QtInfoMsg, { "password changed" }));
        QSignalSpy changes(&email, &EmailAccountConfiguration::emailConfigurationChanged);
        mFactory->setValue(mId, AccountFactory::mailService(), QStringLiteral("preview_size"), 7);
        QTRY_COMPARE(changes.count(), 1);
        QCOMPARE(passwords.count(), 1);
    }

    void theSameCounterAnnouncesNothing()
    {
        mFactory->setValue(
            mId, AccountFactory::mailService(), QStringLiteral("credentials_update_counter"), 4);
        const EmailAccountConfigurationImpl email(freshRecord(), mId, nullptr);
        QSignalSpy passwords(&email, &EmailAccountConfiguration::passwordChanged);
        QSignalSpy changes(&email, &EmailAccountConfiguration::emailConfigurationChanged);
        mFactory->setValue(
            mId, AccountFactory::mailService(), QStringLiteral("credentials_update_counter"), 4);
        mFactory->setValue(mId, AccountFactory::mailService(), QStringLiteral("preview_size"), 7);
        QTRY_COMPARE(changes.count(), 1);
        QCOMPARE(passwords.count(), 0);
    }

    void fetchedCredentialsBringTheCounterInStep()
    {
        EmailAccountConfigurationImpl email(mRecord, mId, nullptr);
        QSignalSpy passwords(&email, &EmailAccountConfiguration::passwordChanged);
        QSignalSpy changes(&email, &EmailAccountConfiguration::emailConfigurationChanged);
        mRecord->selectService(mManager->service(AccountFactory::mailService()));
        mRecord->setValue(QStringLiteral("credentials_update_counter"), 2);
        mRecord->setValue(QStringLiteral("preview_size"), 7);
        mRecord->selectService();
        QVERIFY(mRecord->syncAndBlock());
        const LogCollector log;
        email.onCredentialsRequested();
        email.updateCredentialsUpdateCounter(mId);
        QVERIFY(log.contains(QtDebugMsg, { "credentials update counter:", "2" }));
        QTRY_COMPARE(changes.count(), 1);
        QCOMPARE(passwords.count(), 0);
    }

    void credentialsThatWereRequestedBeforeAChangeLeaveItToBeAnnounced()
    {
        EmailAccountConfigurationImpl email(mRecord, mId, nullptr);
        QSignalSpy passwords(&email, &EmailAccountConfiguration::passwordChanged);
        email.onCredentialsRequested();
        mRecord->selectService(mManager->service(AccountFactory::mailService()));
        mRecord->setValue(QStringLiteral("credentials_update_counter"), 2);
        mRecord->selectService();
        // In memory at once; the store announces it in the event loop.
        QVERIFY(mRecord->syncAndBlock());
        email.updateCredentialsUpdateCounter(mId);
        QTRY_COMPARE(passwords.count(), 1);
    }

    void credentialsOfAnotherAccountChangeNothing()
    {
        EmailAccountConfigurationImpl email(mRecord, mId, nullptr);
        const LogCollector log;
        email.onCredentialsRequested();
        email.updateCredentialsUpdateCounter(mId + 1);
        QVERIFY(!log.contains(QStringLiteral("credentials update counter:")));
    }

private:
    /** The record as a program sees it that starts now. */
    Accounts::Account *freshRecord()
    {
        mFreshManager = std::make_unique<Accounts::Manager>();
        return mFreshManager->account(static_cast<Accounts::AccountId>(mId));
    }

    std::unique_ptr<AccountFactory> mFactory;
    std::unique_ptr<Accounts::Manager> mManager;
    std::unique_ptr<Accounts::Manager> mFreshManager;
    Accounts::Account *mRecord = nullptr;
    EasAccountId mId = 0;
};

FENNEL_REGISTER_TEST(AccountConfigurationImplsTest)
#include "accountconfigurationimplstest.moc"
