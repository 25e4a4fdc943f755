// SPDX-License-Identifier: LGPL-2.1-or-later
#include "accounts/signonflow.h"

#include "support/accountfactory.h"
#include "support/ownprocess.h"
#include "support/privatebus.h"
#include "support/signonservice.h"
#include "support/testclock.h"
#include "support/testmain.h"

#include <SignOn/Error>

#include <QtTest>

namespace {
const QString password = QStringLiteral("password");
} // namespace

/** One secret from the sign-on service: it comes, or the flow fails; it never hangs. */
class SignOnFlowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        qRegisterMetaType<SignOn::Error>("SignOn::Error");
        QVERIFY(isBare() ? PrivateBus::ensureWithoutServices() : PrivateBus::ensure());
    }

    void aStoredSecretComesUnchanged()
    {
        const QString secret = QString::fromUtf8("gr\u00fcn : \\ \" \u4e2d");
        const quint32 id = AccountFactory::storeIdentity(QStringLiteral("alice"), secret);
        SignOnFlow flow(nullptr);
        QSignalSpy received(&flow, &SignOnFlow::received);
        QSignalSpy failed(&flow, &SignOnFlow::failed);
        QCOMPARE(flow.start(id, password, password), SignOnFlow::Started);
        QTRY_COMPARE(received.count(), 1);
        QCOMPARE(received.first().first().toString(), secret);
        QCOMPARE(failed.count(), 0);
    }

    void identityZeroDoesNotExist()
    {
        SignOnFlow flow(nullptr);
        QCOMPARE(flow.start(0, password, password), SignOnFlow::NoIdentity);
    }

    void anUnknownMethodFails()
    {
        const quint32 id = AccountFactory::storeIdentity(QStringLiteral("alice"), QStringLiteral("s3cret"));
        SignOnFlow flow(nullptr);
        QSignalSpy failed(&flow, &SignOnFlow::failed);
        QCOMPARE(flow.start(id, QStringLiteral("retina"), password), SignOnFlow::Started);
        QTRY_COMPARE(failed.count(), 1);
    }

    void aServiceThatIsKilledEndsTheFlow()
    {
        const quint32 id = AccountFactory::storeIdentity(QStringLiteral("alice"), QStringLiteral("s3cret"));
        SignOnFlow flow(nullptr);
        QSignalSpy received(&flow, &SignOnFlow::received);
        QSignalSpy failed(&flow, &SignOnFlow::failed);
        {
            const SilentSignOnService silent;
            QVERIFY(silent.isSilent());
            QCOMPARE(flow.start(id, password, password), SignOnFlow::Started);
            QVERIFY(SignOnService::kill());
        }
        QTRY_COMPARE(failed.count(), 1);
        QCOMPARE(received.count(), 0);
        // The bus starts the service again for the next one.
        SignOnFlow next(nullptr);
        QSignalSpy receivedNext(&next, &SignOnFlow::received);
        QCOMPARE(next.start(id, password, password), SignOnFlow::Started);
        QTRY_COMPARE(receivedNext.count(), 1);
    }

    void aServiceThatDoesNotAnswerEndsTheFlow()
    {
        const quint32 id = AccountFactory::storeIdentity(QStringLiteral("alice"), QStringLiteral("s3cret"));
        SignOnFlow flow(nullptr);
        QSignalSpy received(&flow, &SignOnFlow::received);
        QSignalSpy failed(&flow, &SignOnFlow::failed);
        {
            const SilentSignOnService silent;
            QVERIFY(silent.isSilent());
            const TestClock clock;
            QCOMPARE(flow.start(id, password, password), SignOnFlow::Started);
            QTRY_COMPARE(failed.count(), 1);
            QCOMPARE(clock.intervals, QList<int> { 30000 });
        }
        // What it says when it wakes up is too late for this flow.
        QCOMPARE(failed.first().first().value<SignOn::Error>().type(), int(SignOn::Error::TimedOut));
        SignOnFlow next(nullptr);
        QSignalSpy receivedNext(&next, &SignOnFlow::received);
        QCOMPARE(next.start(id, password, password), SignOnFlow::Started);
        QTRY_COMPARE(receivedNext.count(), 1);
        QCOMPARE(received.count() + failed.count(), 1);
    }

    void withoutAServiceItFailsAtOnce()
    {
        if (isBare()) {
            SignOnFlow flow(nullptr);
            QCOMPARE(flow.start(1, password, password), SignOnFlow::NoSession);
            return;
        }
        QCOMPARE(OwnProcess::run(OwnProcess::WithoutServices,
                     { QStringLiteral("SignOnFlowTest"), QStringLiteral("withoutAServiceItFailsAtOnce") }),
            QString());
    }

private:
    static bool isBare() { return OwnProcess::bears(OwnProcess::WithoutServices); }
};

FENNEL_REGISTER_TEST(SignOnFlowTest)
#include "signonflowtest.moc"
