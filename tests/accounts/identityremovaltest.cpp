// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/identityremoval.h"

#include "accounts/identitycleanup.h"
#include "accounts/waitingidentities.h"
#include "support/accountfactory.h"
#include "support/logcollector.h"
#include "support/ownprocess.h"
#include "support/privatebus.h"
#include "support/signonservice.h"
#include "support/testclock.h"
#include "support/testmain.h"

#include <QDir>
#include <QtTest>

/** Secrets leave the sign-on service, or are tried again; nothing waits for it without an end. */
class IdentityRemovalTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(isBare() ? PrivateBus::ensureWithoutServices() : PrivateBus::ensure());
        // The mapping makes the folder.
        QVERIFY(QDir().mkpath(QFileInfo(WaitingIdentities::defaultFile()).path()));
    }

    void aStoredIdentityGoes()
    {
        const quint32 identity = stored();
        QCOMPARE(removed(identity), QList<bool> { true });
        QVERIFY(!AccountFactory::identityExists(identity));
        QVERIFY(WaitingIdentities().wasShown(identity));
        QVERIFY(WaitingIdentities().remove(identity));
    }

    void noIdentityIsRemovedAtOnce() { QCOMPARE(removed(0), QList<bool> { true }); }

    void oneThatTheServiceRefusesIsNotRemoved()
    {
        // It says the same of one that it protects and of one that is not there.
        LogCollector log;
        QCOMPARE(removed(4711), QList<bool> { false });
        QVERIFY(log.contains(QtWarningMsg, { "Received an Identity deletion error: type=", ", message:" }));
    }

    void oneThatWasThereAndIsRefusedNowHasGone()
    {
        QVERIFY(WaitingIdentities().noteShown(4711));
        QCOMPARE(removed(4711), QList<bool> { true });
        QVERIFY2(WaitingIdentities().wasShown(4711), "the owner knows when nothing names it any more");
        QVERIFY(WaitingIdentities().remove(4711));
    }

    void aServiceThatIsKilledEndsTheRemoval()
    {
        const quint32 identity = stored();
        LogCollector log;
        IdentityRemoval removal(identity, nullptr);
        QSignalSpy finished(&removal, &IdentityRemoval::finished);
        {
            const SilentSignOnService silent;
            QVERIFY(silent.isSilent());
            removal.start();
            QVERIFY(SignOnService::kill());
        }
        QTRY_COMPARE(finished.count(), 1);
        QCOMPARE(finished.first().first().toBool(), false);
        QVERIFY(log.contains(QtWarningMsg, { "Received an Identity deletion error: type=", ", message:" }));
        QVERIFY(AccountFactory::identityExists(identity));
    }

    void aServiceThatDoesNotAnswerEndsTheRemoval()
    {
        const quint32 identity = stored();
        const SilentSignOnService silent;
        QVERIFY(silent.isSilent());
        const TestClock clock;
        QCOMPARE(removed(identity), QList<bool> { false });
        QCOMPARE(clock.intervals, QList<int> { 30000 });
        QVERIFY(!WaitingIdentities().wasShown(identity));
    }

    void withoutAServiceItFailsAtOnce()
    {
        if (isBare()) {
            QCOMPARE(removed(1), QList<bool> { false });
            return;
        }
        QCOMPARE(
            OwnProcess::run(OwnProcess::WithoutServices,
                { QStringLiteral("IdentityRemovalTest"), QStringLiteral("withoutAServiceItFailsAtOnce") }),
            QString());
    }

    void whatWaitsIsTriedAgainAndForgotten()
    {
        const quint32 identity = stored();
        QVERIFY(WaitingIdentities().add({ identity }));
        QVERIFY(WaitingIdentities().noteShown(4711));
        IdentityCleanUp cleanUp(nullptr);
        QSignalSpy tried(&cleanUp, &IdentityCleanUp::tried);
        cleanUp.start();
        QTRY_COMPARE(tried.count(), 2);
        QVERIFY(!AccountFactory::identityExists(identity));
        QVERIFY(WaitingIdentities().all()->isEmpty());
    }

    void whatCannotBeRemovedGoesOnWaiting()
    {
        const quint32 identity = stored();
        QVERIFY(WaitingIdentities().add({ identity }));
        const SilentSignOnService silent;
        QVERIFY(silent.isSilent());
        const TestClock clock;
        IdentityCleanUp cleanUp(nullptr);
        QSignalSpy tried(&cleanUp, &IdentityCleanUp::tried);
        cleanUp.start();
        QTRY_COMPARE(tried.count(), 1);
        QCOMPARE(*WaitingIdentities().all(), WaitingIdentities::Identities { identity });
        QVERIFY(WaitingIdentities().remove(identity));
    }

    void anIdentityThatAnAccountNamesIsLetAlone()
    {
        AccountFactory factory;
        const EasAccountId account = factory.create();
        const quint32 identity = factory.value(account, QString(), QStringLiteral("CredentialsId")).toUInt();
        const quint32 passphrase = stored();
        QVERIFY(factory.setValue(account, QString(), QStringLiteral("SslCertCredentialsId"), passphrase));
        QVERIFY(WaitingIdentities().add({ identity, passphrase }));
        LogCollector log;
        IdentityCleanUp cleanUp(nullptr);
        cleanUp.start();
        QCOMPARE(log.count(QStringLiteral("stays, an account names it")), 2);
        QVERIFY(cleanUp.children().isEmpty());
        QVERIFY(WaitingIdentities().remove(identity));
        QVERIFY(WaitingIdentities().remove(passphrase));
    }

private:
    static bool isBare() { return OwnProcess::bears(OwnProcess::WithoutServices); }

    static quint32 stored()
    {
        return AccountFactory::storeIdentity(QStringLiteral("alice"), QStringLiteral("s3cret"));
    }

    /** What a removal says until it has ended. */
    static QList<bool> removed(quint32 identity)
    {
        IdentityRemoval removal(identity, nullptr);
        QSignalSpy finished(&removal, &IdentityRemoval::finished);
        removal.start();
        if (finished.isEmpty())
            finished.wait();
        QList<bool> results;
        for (const QList<QVariant> &result : finished)
            results.append(result.first().toBool());
        return results;
    }
};

FENNEL_REGISTER_TEST(IdentityRemovalTest)
#include "identityremovaltest.moc"
