// SPDX-License-Identifier: LGPL-2.1-or-later
#include "provision/provisionmanagerimpl.h"

#include "support/authenticationservice.h"
#include "support/devicelock.h"
#include "support/fakeaccount.h"
#include "support/fakeconfigurations.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QtTest>

#include <memory>

namespace {

using Document = EasProvisionDoc;
using Change = std::function<void(Document &)>;

/** A document that every device meets. */
Document harmless()
{
    Document doc;
    doc.setAllowBluetooth(Document::BluetoothAllowed);
    for (const auto set :
        { &Document::setAllowBrowser, &Document::setAllowCamera, &Document::setAllowConsumerEmail,
            &Document::setAllowHTMLEmail, &Document::setAllowInternetSharing, &Document::setAllowPOPIMAPEmail,
            &Document::setAllowRemoteDesktop, &Document::setAllowTextMessaging,
            &Document::setAllowUnsignedInstallationPackages, &Document::setAllowWiFi,
            &Document::setAttachmentsEnabled, &Document::setAllowUnsignedApplications })
        (doc.*set)(true);
    doc.setMaxCalendarAgeFilter(AgeFilter::NoFilter);
    doc.setMaxEmailAgeFilter(AgeFilter::NoFilter);
    doc.setMaxEmailBodyTruncationSize(-1);
    doc.setMaxEmailHTMLBodyTruncationSize(-1);
    doc.setMinDevicePasswordComplexCharacters(1);
    return doc;
}

} // namespace

Q_DECLARE_METATYPE(Change)

/** What a device makes of a server's policies. */
class ProvisionManagerImplTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<FakeAccount> mAccount;
    QSharedPointer<FakeEmailConfiguration> mEmail;
    QSharedPointer<FakeCalendarConfiguration> mCalendar;
    FailedPolicyMap mFailed;

    int verdict(const Document &doc)
    {
        return ProvisionManagerImpl(mAccount.get()).verifyPolicy(doc, mFailed);
    }

private Q_SLOTS:
    void init()
    {
        qputenv("FENNEL_AUTHD_ADDRESS", "unix:path=/nonexistent/authd.socket");
        mAccount = std::make_unique<FakeAccount>(7);
        mEmail.reset(new FakeEmailConfiguration(7));
        mCalendar.reset(new FakeCalendarConfiguration(7));
        mAccount->email = mEmail;
        mAccount->calendar = mCalendar;
        mFailed.clear();
    }

    void aDocumentThatAsksForNothingIsMet()
    {
        QCOMPARE(verdict(harmless()), 1);
        QVERIFY(mFailed.isEmpty());
    }

    void aDocumentThatSaysNothingIsNotMet()
    {
        QCOMPARE(verdict(Document()), 2);
        const FailedPolicyMap wanted { { 2, 0U }, { 6, -1 }, { 7, false }, { 8, false }, { 9, false },
            { 11, false }, { 12, false }, { 14, false }, { 15, false }, { 20, false }, { 21, false },
            { 22, false }, { 23, false }, { 24, false }, { 34, -1 }, { 36, -1 }, { 37, 0 }, { 38, 0 } };
        QCOMPARE(mFailed, wanted);
    }

    void aPolicyIsNotMet_data()
    {
        QTest::addColumn<Change>("change");
        QTest::addColumn<int>("number");
        QTest::addColumn<QVariant>("value");
        const auto row = [](const char *name, const Change &change, int number, const QVariant &value) {
            QTest::newRow(name) << change << number << value;
        };
        const auto off = [&row](const char *name, void (Document::*set)(bool), int number) {
            row(
                name, [set](Document &doc) { (doc.*set)(false); }, number, false);
        };
        const auto on = [&row](const char *name, void (Document::*set)(bool), int number) {
            row(
                name, [set](Document &doc) { (doc.*set)(true); }, number, true);
        };
        for (const int value : { -1, 0, 1, 5 })
            row(
                qPrintable(QStringLiteral("AllowBluetooth %1").arg(value)),
                [value](Document &doc) { doc.setAllowBluetooth(Document::AllowBluetoothValues(value)); }, 6,
                value);
        off("AllowBrowser", &Document::setAllowBrowser, 7);
        off("AllowCamera", &Document::setAllowCamera, 8);
        off("AllowConsumerEmail", &Document::setAllowConsumerEmail, 9);
        off("AllowHTMLEmail", &Document::setAllowHTMLEmail, 11);
        off("AllowInternetSharing", &Document::setAllowInternetSharing, 12);
        off("AllowPOPIMAPEmail", &Document::setAllowPOPIMAPEmail, 14);
        off("AllowRemoteDesktop", &Document::setAllowRemoteDesktop, 15);
        on("RequireEncryptedSMIMEMessages", &Document::setRequireEncryptedSMIMEMessages, 27);
        on("RequireSignedSMIMEMessages", &Document::setRequireSignedSMIMEMessages, 29);
        on("RequireDeviceEncryption", &Document::setRequireDeviceEncryption, 26);
        on("RequireManualSyncWhenRoaming", &Document::setRequireManualSyncWhenRoaming, 28);
        off("AllowTextMessaging", &Document::setAllowTextMessaging, 20);
        off("AllowUnsignedInstallationPackages", &Document::setAllowUnsignedInstallationPackages, 22);
        off("AllowWiFi", &Document::setAllowWiFi, 23);
        row(
            "UnapprovedInROMApplicationList", [](Document &doc) { doc.appendAppName("name"); }, 42,
            QStringList { "name" });
        row(
            "ApprovedApplicationList", [](Document &doc) { doc.appendHash("hash"); }, 42,
            QStringList { "hash" });
        row(
            "both lists",
            [](Document &doc) {
                doc.appendAppName("name");
                doc.appendHash("hash");
            },
            42, QStringList { "hash" });
        off("AttachmentsEnabled", &Document::setAttachmentsEnabled, 24);
        row(
            "MaxAttachmentSize", [](Document &doc) { doc.setMaxAttachmentSize(4294967295U); }, 33,
            4294967295U);
        row(
            "MaxCalendarAgeFilter",
            [](Document &doc) { doc.setMaxCalendarAgeFilter(AgeFilter::FilterUnset); }, 34, -1);
        row(
            "MaxEmailAgeFilter", [](Document &doc) { doc.setMaxEmailAgeFilter(AgeFilter::FilterUnset); }, 36,
            -1);
        row(
            "MaxEmailBodyTruncationSize", [](Document &doc) { doc.setMaxEmailBodyTruncationSize(0); }, 37, 0);
        row(
            "MaxEmailHTMLBodyTruncationSize", [](Document &doc) { doc.setMaxEmailHTMLBodyTruncationSize(9); },
            38, 9);
        on("AlphanumericDevicePasswordRequired", &Document::setAlphanumericDevicePasswordRequired, 2);
        row(
            "MinDevicePasswordComplexCharacters 0",
            [](Document &doc) { doc.setMinDevicePasswordComplexCharacters(0); }, 2, 0U);
        row(
            "both of the characters",
            [](Document &doc) {
                doc.setAlphanumericDevicePasswordRequired(true);
                doc.setMinDevicePasswordComplexCharacters(3);
            },
            2, 3U);
        row(
            "DevicePasswordExpiration", [](Document &doc) { doc.setDevicePasswordExpiration(30); }, 31, 30U);
        row(
            "DevicePasswordHistory", [](Document &doc) { doc.setDevicePasswordHistory(8); }, 32, 8U);
        off("AllowUnsignedApplications", &Document::setAllowUnsignedApplications, 21);
    }

    void aPolicyIsNotMet()
    {
        QFETCH(Change, change);
        QFETCH(int, number);
        QFETCH(QVariant, value);
        Document doc = harmless();
        change(doc);
        LogCollector log;
        QCOMPARE(verdict(doc), 2);
        QCOMPARE(mFailed.size(), 1);
        QCOMPARE(mFailed.value(number), value);
        QCOMPARE(mFailed.value(number).type(), value.type());
    }

    void aPolicyIsNotLookedAt_data()
    {
        QTest::addColumn<Change>("change");
        const auto row = [](const char *name, void (Document::*set)(bool)) {
            QTest::newRow(name) << Change([set](Document &doc) { (doc.*set)(true); });
        };
        row("AllowDesktopSync", &Document::setAllowDesktopSync);
        row("AllowIrDA", &Document::setAllowIrDA);
        row("AllowSimpleDevicePassword", &Document::setAllowSimpleDevicePassword);
        row("AllowSMIMESoftCerts", &Document::setAllowSMIMESoftCerts);
        row("AllowStorageCard", &Document::setAllowStorageCard);
        row("PasswordRecoveryEnabled", &Document::setPasswordRecoveryEnabled);
        row("RequireStorageCardEncryption", &Document::setRequireStorageCardEncryption);
        QTest::newRow("algorithms") << Change([](Document &doc) {
            doc.setRequireEncryptionSMIMEAlgorithm(Document::EncryptionRc2Bits40);
            doc.setRequireSignedSMIMEAlgorithm(Document::SignedMd5);
            doc.setAllowSMIMEEncryptionAlgorithmNegotiation(Document::NegotiationForbidden);
        });
        QTest::newRow("length of a password that is not demanded")
            << Change([](Document &doc) { doc.setMinDevicePasswordLength(20); });
    }

    void aPolicyIsNotLookedAt()
    {
        QFETCH(Change, change);
        Document doc = harmless();
        change(doc);
        QCOMPARE(verdict(doc), 1);
        QVERIFY(mFailed.isEmpty());
    }

    void ageFiltersAreHeldAgainstTheSettings_data()
    {
        QTest::addColumn<int>("filter");
        QTest::addColumn<int>("setting");
        QTest::addColumn<bool>("met");
        QTest::newRow("all is allowed") << 0 << 5 << true;
        QTest::newRow("the same") << 5 << 5 << true;
        QTest::newRow("the user wants less") << 5 << 2 << true;
        QTest::newRow("the user wants more") << 2 << 5 << false;
        QTest::newRow("not set") << -1 << 0 << false;
        QTest::newRow("neither is set") << -1 << -1 << true;
    }

    void ageFiltersAreHeldAgainstTheSettings()
    {
        QFETCH(int, filter);
        QFETCH(int, setting);
        QFETCH(bool, met);
        Document doc = harmless();
        doc.setMaxCalendarAgeFilter(AgeFilter::FilterType(filter));
        mCalendar->pastTime = setting;
        QCOMPARE(verdict(doc), met ? 1 : 2);
        QCOMPARE(mFailed.contains(34), !met);
        doc = harmless();
        doc.setMaxEmailAgeFilter(AgeFilter::FilterType(filter));
        mFailed.clear();
        mEmail->pastTime = setting;
        QCOMPARE(verdict(doc), met ? 1 : 2);
        QCOMPARE(mFailed.contains(36), !met);
    }

    void anAccountWithoutSettingsHidesNothing()
    {
        mAccount->email.reset();
        mAccount->calendar.reset();
        Document doc = harmless();
        doc.setMaxCalendarAgeFilter(AgeFilter::FilterOneDay);
        doc.setMaxEmailAgeFilter(AgeFilter::FilterOneDay);
        QCOMPARE(verdict(doc), 1);
    }

    void aPasswordIsDemanded_data()
    {
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<int>("timeout");
        QTest::addColumn<uint>("length");
        QTest::addColumn<uint>("attempts");
        QTest::addColumn<uint>("inactivity");
        QTest::addColumn<int>("verdict");
        QTest::addColumn<FailedPolicyMap>("failed");
        // The device: passwords of 6 characters, 8 at most, 5 attempts.
        const FailedPolicyMap none;
        QTest::newRow("all is met") << true << 300 << 6U << 5U << 300U << 1 << none;
        QTest::newRow("nothing is asked of it") << true << 300 << 0U << 0U << 0U << 1 << none;
        QTest::newRow("no lock") << false << 300 << 6U << 5U << 300U << 3 << FailedPolicyMap { { 1, true } };
        QTest::newRow("longer passwords")
            << true << 300 << 7U << 5U << 300U << 3 << FailedPolicyMap { { 3, 7U } };
        QTest::newRow("longer than can be")
            << true << 300 << 9U << 5U << 300U << 3 << FailedPolicyMap { { 3, 9U } };
        QTest::newRow("more attempts")
            << true << 300 << 6U << 6U << 300U << 3 << FailedPolicyMap { { 35, 6U } };
        QTest::newRow("an earlier lock")
            << true << 301 << 6U << 5U << 300U << 3 << FailedPolicyMap { { 5, 300U } };
        QTest::newRow("9998 and a device of 9999")
            << true << 9999 << 6U << 5U << 9998U << 3 << FailedPolicyMap { { 5, 9998U } };
        QTest::newRow("9999 is no limit") << true << 100000 << 6U << 5U << 9999U << 1 << none;
        QTest::newRow("a device that never locks itself")
            << true << -1 << 6U << 5U << 300U << 3 << FailedPolicyMap { { 5, 300U } };
        QTest::newRow("everything") << false << 301 << 9U << 6U << 300U << 3
                                    << FailedPolicyMap { { 1, true }, { 3, 9U }, { 5, 300U }, { 35, 6U } };
    }

    void aPasswordIsDemanded()
    {
        QFETCH(bool, enabled);
        QFETCH(int, timeout);
        QFETCH(uint, length);
        QFETCH(uint, attempts);
        QFETCH(uint, inactivity);
        QFETCH(int, verdict);
        QFETCH(FailedPolicyMap, failed);
        const AuthenticationService daemon(
            { { "new-length", 6 }, { "max-attempts", 5 }, { "new-length-upper-limit", 8 } });
        const DeviceLock lock(enabled, timeout);
        Document doc = harmless();
        doc.setDevicePasswordEnabled(true);
        doc.setMinDevicePasswordLength(length);
        doc.setMaxDevicePasswordFailedAttempts(attempts);
        doc.setMaxInactivityTimeDeviceLock(inactivity);
        LogCollector log;
        QCOMPARE(this->verdict(doc), verdict);
        QCOMPARE(mFailed, failed);
        QCOMPARE(log.contains(QtWarningMsg, { "some or all critical password policies are not applied" }),
            verdict == 3);
    }

    void theUpperLimitMattersOnlyOnceSomethingElseFails()
    {
        const AuthenticationService daemon(
            { { "new-length", 9 }, { "max-attempts", 5 }, { "new-length-upper-limit", 8 } });
        Document doc = harmless();
        doc.setDevicePasswordEnabled(true);
        doc.setMinDevicePasswordLength(9);
        {
            const DeviceLock lock(true, 0);
            QCOMPARE(verdict(doc), 1);
        }
        LogCollector log;
        QCOMPARE(verdict(doc), 3);
        QCOMPARE(mFailed, (FailedPolicyMap { { 1, true }, { 3, 9U } }));
    }

    void otherPoliciesFailBesideThePassword()
    {
        const DeviceLock lock(true, 0);
        Document doc = harmless();
        doc.setDevicePasswordEnabled(true);
        doc.setAllowCamera(false);
        QCOMPARE(verdict(doc), 2);
        doc.setMinDevicePasswordLength(1);
        LogCollector log;
        QCOMPARE(verdict(doc), 3);
        QCOMPARE(mFailed, (FailedPolicyMap { { 3, 1U }, { 8, false } }));
        QVERIFY(log.contains(QtDebugMsg, { "Failed policy:", "3", "with value", "1" }));
        QVERIFY(log.contains(QtDebugMsg, { "Failed policy:", "8", "with value", "false" }));
    }

    void withoutTheDaemonEveryOptionIsZero()
    {
        const DeviceLock lock(true, 0);
        LogCollector log;
        Document doc = harmless();
        doc.setDevicePasswordEnabled(true);
        QCOMPARE(verdict(doc), 1);
        doc.setMinDevicePasswordLength(1);
        QCOMPARE(verdict(doc), 3);
        QCOMPARE(mFailed, (FailedPolicyMap { { 3, 1U } }));
    }

    void whatFailedBeforeStays()
    {
        mFailed = { { 7, false } };
        Document doc = harmless();
        doc.setAllowCamera(false);
        QCOMPARE(verdict(doc), 2);
        QCOMPARE(mFailed, (FailedPolicyMap { { 7, false }, { 8, false } }));
        // As a second policy of the reply would have it.
        QCOMPARE(verdict(harmless()), 2);
    }

    void theDaemonIsAskedOnceForAManager()
    {
        const AuthenticationService daemon(
            { { "new-length", 6 }, { "max-attempts", 5 }, { "new-length-upper-limit", 8 } });
        const ProvisionManagerImpl manager(mAccount.get());
        const QStringList options { "new-length", "max-attempts", "new-length-upper-limit" };
        QCOMPARE(daemon.asked(), options);
        manager.verifyPolicy(harmless(), mFailed);
        QCOMPARE(daemon.asked(), options);
        const ProvisionManagerImpl other(mAccount.get());
        QCOMPARE(daemon.asked(), options + options);
    }

    void anOptionThatTheDaemonDoesNotKnowIsZero()
    {
        LogCollector log;
        const AuthenticationService daemon({ { "new-length", 6 } });
        const DeviceLock lock(true, 0);
        Document doc = harmless();
        doc.setDevicePasswordEnabled(true);
        doc.setMinDevicePasswordLength(6);
        QCOMPARE(verdict(doc), 1);
        doc.setMaxDevicePasswordFailedAttempts(1);
        QCOMPARE(verdict(doc), 3);
        QVERIFY(log.contains(QtWarningMsg, { "The authentication daemon does not tell", "max-attempts" }));
        QCOMPARE(daemon.asked().size(), 6);
    }

    void aDaemonThatDoesNotAnswerIsAskedNoMore()
    {
        LogCollector log;
        AuthenticationService daemon({ { "new-length", 6 } });
        daemon.fallSilent();
        const ProvisionManagerImpl manager(mAccount.get());
        QCOMPARE(daemon.asked(), QStringList { "new-length" });
        QVERIFY(log.contains(QtWarningMsg, { "The authentication daemon does not tell", "new-length" }));
    }
};

FENNEL_REGISTER_TEST(ProvisionManagerImplTest)
#include "provisionmanagerimpltest.moc"
