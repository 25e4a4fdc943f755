// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/provisionrequest.h"

#include "application/base/deviceinformation.h"
#include "support/logcollector.h"
#include "support/probemanager.h"
#include "support/requestbed.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QSignalSpy>
#include <QtTest>

#include <memory>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

const QString usualType = QStringLiteral("MS-EAS-Provisioning-WBXML");
const QString acknowledged = QStringLiteral(
    "Provision(Policies(Policy(PolicyType=MS-EAS-Provisioning-WBXML,PolicyKey=%1,Status=%2)))");

QByteArray reply(const QVector<WbxmlNode> &content)
{
    return document(node(Provision::Provision, content));
}

QByteArray statusReply(int status)
{
    return reply({ node(Provision::Status, QString::number(status)) });
}

WbxmlNode policy(const QString &key, int status = 1, const QString &type = usualType,
    const QVector<WbxmlNode> &values = {})
{
    return node(Provision::Policy,
        { node(Provision::PolicyType, type), node(Provision::Status, QString::number(status)),
            node(Provision::PolicyKey, key),
            node(Provision::Data, { node(Provision::EASProvisionDoc, values) }) });
}

QByteArray policyReply(const QVector<WbxmlNode> &policies)
{
    return reply({ node(Provision::Status, "1"), node(Provision::Policies, policies) });
}

QByteArray wipeReply(bool device, bool account)
{
    QVector<WbxmlNode> content { node(Provision::Status, "1") };
    if (device)
        content.append(node(Provision::RemoteWipe));
    if (account)
        content.append(node(Provision::AccountOnlyRemoteWipe));
    return reply(content);
}

/** The reply that leads to the form under test. */
enum Form { AsksForPolicies, AcknowledgesPolicies, AsksForWipe, AcknowledgesWipe };

} // namespace

Q_DECLARE_METATYPE(Form)

/** The exchange of Provision commands that policies and wipes take, form by form. */
class ProvisionRequestTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<RequestBed> mBed;
    std::unique_ptr<ProbeManager> mManager;
    std::unique_ptr<ProvisionRequest> mRequest;

    static ProvisionRequest::ProvisionRequestType typeOf(Form form)
    {
        return form == AsksForPolicies || form == AcknowledgesPolicies ? ProvisionRequest::InitialPolicyKey
                                                                       : ProvisionRequest::InitialRemoteWipe;
    }

    ProvisionRequest &make(ProvisionRequest::ProvisionRequestType type)
    {
        mRequest = std::make_unique<ProvisionRequest>(RequestBed::Account, RequestBed::Id, type);
        return *mRequest;
    }
    /** A request whose next reply is the one to this form. */
    ProvisionRequest &makeFor(Form form)
    {
        if (form == AcknowledgesPolicies)
            mBed->answer(policyReply({ policy(QStringLiteral("temporary")) }));
        else if (form == AcknowledgesWipe)
            mBed->answer(wipeReply(true, false));
        return make(typeOf(form));
    }
    int run() { return RequestBed::run(*mRequest); }
    QString header(int number) const
    {
        return QString::fromLatin1(mBed->server.requests().value(number).header("X-MS-PolicyKey"));
    }

private Q_SLOTS:
    void init()
    {
        mBed = std::make_unique<RequestBed>(QStringList { QStringLiteral("Provision") });
        QTRY_VERIFY(mBed->isOnline());
        mBed->account->setProtocolVersion(ExchangeActiveSync::ProtocolVersion140);
        mBed->account->policy = QStringLiteral("kept");
        mManager = std::make_unique<ProbeManager>(mBed->account);
        mBed->account->provisions = mManager.get();
    }

    void cleanup()
    {
        mRequest.reset();
        mManager.reset();
        mBed.reset();
    }

    void aPolicyIsJudgedAndAcknowledged_data()
    {
        QTest::addColumn<int>("verdict");
        for (const int verdict : { 1, 2, 3 })
            QTest::newRow(qPrintable(QString::number(verdict))) << verdict;
    }

    void aPolicyIsJudgedAndAcknowledged()
    {
        QFETCH(int, verdict);
        LogCollector log;
        mManager->verdict = EasPolicyContainer::RequestStatus(verdict);
        mManager->fails = { { 7, false }, { 3, 4U } };
        mBed->answer(
            policyReply({ policy(QStringLiteral("temporary"), 1, QStringLiteral("ms-eas-provisioning-wbxml"),
                { node(Provision::AllowCamera, "1"), node(Provision::MinDevicePasswordLength, "4") }) }));
        mBed->answer(policyReply({ policy(QStringLiteral("final")) }));
        ProvisionRequest &request = make(ProvisionRequest::InitialPolicyKey);
        QSignalSpy documents(&request, &Request::policyDocumentReceived);
        QCOMPARE(run(), 0);
        QVERIFY(!request.successfullyFinished());
        QVERIFY(request.policiesAreSettled());
        QCOMPARE(request.policyStatus(), 3);
        QCOMPARE(request.provisionPolicies(), mManager->fails);
        QCOMPARE(mBed->account->policy, QStringLiteral("final"));
        QCOMPARE(mBed->sent().size(), 2);
        QCOMPARE(mBed->sent().last(), acknowledged.arg(QStringLiteral("temporary")).arg(verdict));
        QCOMPARE(header(0), QStringLiteral("0"));
        QCOMPARE(header(1), QStringLiteral("temporary"));
        QVERIFY(mManager->documents.value(0).allowCamera());
        QCOMPARE(documents.size(), 1);
        const QVariantMap values = documents.first().at(2).toMap();
        QCOMPARE(values.value("MinDevicePasswordLength"), QVariant(4U));
        QCOMPARE(values.value("AllowCamera"), QVariant(true));
        QCOMPARE(values.size(), 42);
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("Try to apply policy settings") }));
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("We received"), QStringLiteral("policies") }));
    }

    void theAccountKeepsItsKeyUntilTheAcknowledgement()
    {
        mBed->answer(policyReply({ policy(QStringLiteral("temporary")) }));
        mBed->answer(statusReply(3));
        make(ProvisionRequest::InitialPolicyKey);
        QCOMPARE(run(), -2);
        QCOMPARE(mBed->account->policy, QStringLiteral("kept"));
    }

    void aFirstReplyWithoutAPolicyToJudgeEnds_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("policyStatus");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("text");
        const QString key = QStringLiteral("k");
        QTest::newRow("none") << statusReply(1) << 0 << 1 << "kept"
                              << "No Policies to apply";
        QTest::newRow("no policy for the client") << policyReply({ policy(key, 2) }) << 0 << 1 << ""
                                                  << "No policy";
        QTest::newRow("unknown type") << policyReply({ policy(key, 3) }) << -5 << 1 << "kept"
                                      << "The policy type is unknown";
        QTest::newRow("corrupt") << policyReply({ policy(key, 4) }) << -5 << 1 << "kept"
                                 << "The policy data on the server is corrupt";
        QTest::newRow("out of date")
            << policyReply({ policy(key, 5) }) << -5 << 1 << "kept"
            << "The client is trying to acknowledge an out-of-date or invalid policy";
        QTest::newRow("another status") << policyReply({ policy(key, 6) }) << -5 << 1 << "kept"
                                        << "Invalid policyStatus";
        QTest::newRow("another type")
            << policyReply({ policy(key, 1, QStringLiteral("MS-WAP-Provisioning-XML")) }) << -5 << 1 << "kept"
            << "Not supported";
        QTest::newRow("another type, then a broken one")
            << policyReply({ policy(key, 1, QStringLiteral("x")), policy(key, 4) }) << -5 << 1 << "kept"
            << "The policy data on the server is corrupt";
    }

    void aFirstReplyWithoutAPolicyToJudgeEnds()
    {
        QFETCH(QByteArray, body);
        QFETCH(int, status);
        QFETCH(int, policyStatus);
        QFETCH(QString, key);
        QFETCH(QString, text);
        LogCollector log;
        mBed->answer(body);
        ProvisionRequest &request = make(ProvisionRequest::InitialPolicyKey);
        QCOMPARE(run(), status);
        QCOMPARE(request.policyStatus(), policyStatus);
        QCOMPARE(request.policiesAreSettled(), status == 0);
        QCOMPARE(mBed->account->policy, key);
        QVERIFY(log.contains(QtInfoMsg, { text }));
        QCOMPARE(mBed->sent().size(), 1);
        QVERIFY(mManager->documents.isEmpty());
    }

    void aPolicyOfAnotherTypeIsSkipped()
    {
        LogCollector log;
        mBed->answer(policyReply({ policy(QStringLiteral("one"), 1, QStringLiteral("Other")),
            policy(QStringLiteral("two")), policy(QStringLiteral("three")) }));
        mBed->answer(policyReply({ policy(QStringLiteral("final")) }));
        make(ProvisionRequest::InitialPolicyKey);
        QCOMPARE(run(), 0);
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("Not supported"), QStringLiteral("Other") }));
        QCOMPARE(mBed->sent().last(), acknowledged.arg(QStringLiteral("two"), QStringLiteral("1")));
        QCOMPARE(mManager->documents.size(), 1);
    }

    void anAcknowledgementIsAnswered_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("policyStatus");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("text");
        QTest::newRow("without a key") << policyReply({ policy(QString()) }) << 0 << 4 << "kept"
                                       << "We received";
        QTest::newRow("with a key that fits in no header")
            << policyReply({ policy(QStringLiteral("1\r\nX: 2")) }) << 0 << 4 << "kept"
            << "Refused a policy key with a line break";
        QTest::newRow("without a policy") << statusReply(1) << -2 << 1 << "kept"
                                          << "No Policy container in response";
        QTest::newRow("with another type")
            << policyReply({ policy(QStringLiteral("k"), 1, QStringLiteral("x")) }) << -2 << 1 << "kept"
            << "Not supported";
        QTest::newRow("with no policy") << policyReply({ policy(QStringLiteral("k"), 2) }) << 0 << 1 << ""
                                        << "No policy";
        QTest::newRow("with an unknown type")
            << policyReply({ policy(QStringLiteral("k"), 3) }) << -5 << 1 << "kept"
            << "The policy type is unknown";
        QTest::newRow("with a corrupt one")
            << policyReply({ policy(QStringLiteral("k"), 4) }) << -5 << 1 << "kept"
            << "The policy data on the server is corrupt";
        QTest::newRow("with one that is out of date")
            << policyReply({ policy(QStringLiteral("k"), 5) }) << -5 << 1 << "kept"
            << "The client is trying to acknowledge an out-of-date or invalid policy";
        QTest::newRow("with another status")
            << policyReply({ policy(QStringLiteral("k"), 9) }) << -5 << 1 << "kept"
            << "Invalid policyStatus";
        QTest::newRow("with two, of which the first counts")
            << policyReply({ policy(QStringLiteral("first")), policy(QStringLiteral("second"), 4) }) << 0 << 3
            << "first"
            << "We received";
    }

    void anAcknowledgementIsAnswered()
    {
        QFETCH(QByteArray, body);
        QFETCH(int, status);
        QFETCH(int, policyStatus);
        QFETCH(QString, key);
        QFETCH(QString, text);
        LogCollector log;
        ProvisionRequest &request = makeFor(AcknowledgesPolicies);
        mBed->answer(body);
        QCOMPARE(run(), status);
        QCOMPARE(request.policyStatus(), policyStatus);
        QCOMPARE(request.policiesAreSettled(), status == 0 && policyStatus != 4);
        QCOMPARE(mBed->account->policy, key);
        QVERIFY2(log.contains(text), qPrintable(log.texts().join(QLatin1Char('\n'))));
    }

    void aStatusEndsTheExchange_data()
    {
        QTest::addColumn<Form>("form");
        QTest::addColumn<int>("reply");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("text");
        struct Row
        {
            int reply;
            int first; ///< what the request ends with where it asks for policies
            int second; ///< and where it acknowledges them
            const char *text;
        };
        const char undefined[] = "Provision status undefined.";
        const char serverError[] = "server error. We shouldn't retry later. Completing request";
        const char keyField[] = "The device is not provisionable. Include Policy key field";
        const Row rows[] = {
            { 0, -2, 0, undefined },
            { 2, -3, -3, "Syntax error in the Provision command request" },
            { 3, -2, -2, "An error occurred on the server." },
            { 106, -2, -2, serverError },
            { 110, -2, -2, serverError },
            { 141, 0, 0, keyField },
            { 4, -5, -5, "" },
            { 140, -5, -5, "" },
            { 142, -5, -5, "" },
            { 165, -5, -5, "" },
        };
        for (const Row &row : rows) {
            const QString text = QLatin1String(row.text);
            QTest::addRow("policies, %d", row.reply) << AsksForPolicies << row.reply << row.first << text;
            QTest::addRow("verdict, %d", row.reply)
                << AcknowledgesPolicies << row.reply << row.second << text;
            QTest::addRow("wipe, %d", row.reply) << AsksForWipe << row.reply << row.reply << text;
            QTest::addRow("wipe verdict, %d", row.reply)
                << AcknowledgesWipe << row.reply << row.reply << text;
        }
        QTest::newRow("policies, 139") << AsksForPolicies << 139 << -5 << QString();
        QTest::newRow("verdict, 139") << AcknowledgesPolicies << 139 << 0
                                      << "The client cannot fully comply with all requirements of the policy";
        QTest::newRow("policies, 145") << AsksForPolicies << 145 << -5 << QString();
        QTest::newRow("verdict, 145")
            << AcknowledgesPolicies << 145 << 0 << "The client is externally managed";
    }

    void aStatusEndsTheExchange()
    {
        QFETCH(Form, form);
        QFETCH(int, reply);
        QFETCH(int, status);
        QFETCH(QString, text);
        LogCollector log;
        ProvisionRequest &request = makeFor(form);
        mBed->answer(statusReply(reply));
        QCOMPARE(run(), status);
        QVERIFY2(log.contains(text), qPrintable(text));
        QVERIFY(!request.successfullyFinished());
        QVERIFY(!request.policiesAreSettled());
        QCOMPARE(mBed->server.unexpected(), 0);
        QCOMPARE(mBed->account->policy, QStringLiteral("kept"));
        const bool isPolicyForm = typeOf(form) == ProvisionRequest::InitialPolicyKey;
        QCOMPARE(request.policyStatus(), isPolicyForm ? reply : 0);
    }

    void aStatusLetsTheFormGoOutAgain_data()
    {
        QTest::addColumn<Form>("form");
        QTest::addColumn<int>("reply");
        for (const int reply : { 108, 109, 111 }) {
            QTest::addRow("policies, %d", reply) << AsksForPolicies << reply;
            QTest::addRow("verdict, %d", reply) << AcknowledgesPolicies << reply;
            QTest::addRow("wipe, %d", reply) << AsksForWipe << reply;
            QTest::addRow("wipe verdict, %d", reply) << AcknowledgesWipe << reply;
        }
    }

    void aStatusLetsTheFormGoOutAgain()
    {
        QFETCH(Form, form);
        QFETCH(int, reply);
        ProvisionRequest &request = makeFor(form);
        const int before = mBed->server.unusedAnswers();
        for (int i = 0; i < 6; ++i)
            mBed->answer(statusReply(reply));
        LogCollector log;
        // The policy forms have no status of the request's for it; what they were told is the policy status.
        const bool isPolicyForm = typeOf(form) == ProvisionRequest::InitialPolicyKey;
        QCOMPARE(run(), isPolicyForm ? 0 : reply);
        QCOMPARE(request.policyStatus(), isPolicyForm ? reply : 0);
        QVERIFY(!request.policiesAreSettled());
        const QStringList sent = mBed->sent();
        QCOMPARE(sent.size(), before + 6);
        for (int i = 0; i < 6; ++i)
            QCOMPARE(sent.at(before + i), sent.last());
        QList<int> delays;
        for (const int delay : mBed->clock.intervals) {
            if (delay % 5000 == 0 && delay >= 5000)
                delays.append(delay);
        }
        const QList<int> wanted { 5000, 15000, 45000, 135000, 405000, 1215000 };
        QCOMPARE(delays.mid(delays.size() - 6), wanted);
        QVERIFY(log.contains(reply == 111
                ? QStringLiteral("we should try to send command again later. Timeout (in mseconds): 5000")
                : QStringLiteral("invalid Device ID or Type. Trying to update Device information")));
    }

    void aGoodReplyGivesTheAttemptsBack()
    {
        for (int i = 0; i < 5; ++i)
            mBed->answer(statusReply(111));
        mBed->answer(policyReply({ policy(QStringLiteral("temporary")) }));
        for (int i = 0; i < 5; ++i)
            mBed->answer(statusReply(111));
        mBed->answer(policyReply({ policy(QStringLiteral("final")) }));
        make(ProvisionRequest::InitialPolicyKey);
        QCOMPARE(run(), 0);
        QCOMPARE(mBed->account->policy, QStringLiteral("final"));
        QCOMPARE(mBed->server.unusedAnswers(), 0);
    }

    void anExchangeThatFailsEndsWithItsStatus_data()
    {
        QTest::addColumn<Form>("form");
        QTest::addColumn<int>("http");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("status");
        const Form forms[] = { AsksForPolicies, AcknowledgesPolicies, AsksForWipe, AcknowledgesWipe };
        for (const Form form : forms) {
            QTest::addRow("%d, 403", form) << form << 403 << QByteArray() << 10201;
            QTest::addRow("%d, 449", form) << form << 449 << QByteArray() << 10299;
            QTest::addRow("%d, 500", form) << form << 500 << QByteArray() << 10401;
            QTest::addRow("%d, 503", form) << form << 503 << QByteArray() << 10403;
            QTest::addRow("%d, empty", form) << form << 200 << QByteArray() << -2;
            QTest::addRow("%d, no document", form) << form << 200 << QByteArray("<html>") << -2;
        }
    }

    void anExchangeThatFailsEndsWithItsStatus()
    {
        QFETCH(Form, form);
        QFETCH(int, http);
        QFETCH(QByteArray, body);
        QFETCH(int, status);
        LogCollector log;
        makeFor(form);
        ScriptedAnswer answer;
        answer.status = http;
        answer.body = body;
        mBed->server.answer(answer);
        QCOMPARE(run(), status);
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Provision command failed with status") }));
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("Provision command finished: "), "false" }));
        QCOMPARE(mBed->server.unexpected(), 0);
    }

    void aTemporaryKeyThatFitsInNoHeaderEnds()
    {
        LogCollector log;
        mBed->answer(policyReply({ policy(QStringLiteral("1\r\nX: 2")) }));
        make(ProvisionRequest::InitialPolicyKey);
        QCOMPARE(run(), -2);
        QCOMPARE(mBed->sent().size(), 1);
    }

    void aServerWithoutProvisionHasNoPolicy_data()
    {
        QTest::addColumn<int>("type");
        QTest::newRow("policies") << int(ProvisionRequest::InitialPolicyKey);
        QTest::newRow("wipe") << int(ProvisionRequest::InitialRemoteWipe);
    }

    void aServerWithoutProvisionHasNoPolicy()
    {
        QFETCH(int, type);
        mBed->account->setSupportedCommands({});
        ProvisionRequest &request = make(ProvisionRequest::ProvisionRequestType(type));
        QCOMPARE(run(), 0);
        QCOMPARE(request.policyStatus(), 1);
        QVERIFY(mBed->sent().isEmpty());
    }

    void nobodyAsksForAnAcknowledgementAtOnce()
    {
        LogCollector log;
        make(ProvisionRequest::ProvisionRequestType(ProvisionCommand::AcknowledgePolicyKey));
        QCOMPARE(run(), -2);
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Invalid Provision RequestType") }));
        QVERIFY(mBed->sent().isEmpty());
    }

    void withoutAJudgeNothingIsAcknowledged()
    {
        LogCollector log;
        mBed->account->provisions = nullptr;
        mBed->answer(policyReply({ policy(QStringLiteral("temporary")) }));
        make(ProvisionRequest::InitialPolicyKey);
        QCOMPARE(run(), -2);
        QCOMPARE(mBed->sent().size(), 1);
    }

    // The wipe

    void nobodyOrderedAWipe()
    {
        LogCollector log;
        mBed->answer(wipeReply(false, false));
        ProvisionRequest &request = make(ProvisionRequest::InitialRemoteWipe);
        QCOMPARE(run(), 1);
        QVERIFY(request.successfullyFinished());
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("Don't need Remote Wipe") }));
        QCOMPARE(mBed->account->wipeRequests, 0);
        QCOMPARE(mBed->sent(), QStringList { QStringLiteral("Provision") });
        QCOMPARE(header(0), QStringLiteral("kept"));
    }

    void aWipeIsOrdered_data()
    {
        QTest::addColumn<Form>("form");
        QTest::addColumn<bool>("device");
        QTest::addColumn<bool>("account");
        QTest::addColumn<bool>("recorded");
        QTest::addColumn<QString>("acknowledgement");
        const Form forms[] = { AsksForPolicies, AcknowledgesPolicies, AsksForWipe };
        for (const Form form : forms) {
            QTest::addRow("%d, device", form)
                << form << true << false << true << "Provision(RemoteWipe(Status=1))";
            QTest::addRow("%d, account", form)
                << form << false << true << true << "Provision(AccountOnlyRemoteWipe(Status=1))";
            QTest::addRow("%d, both", form)
                << form << true << true << true << "Provision(RemoteWipe(Status=1))";
            QTest::addRow("%d, not recorded", form)
                << form << true << false << false << "Provision(RemoteWipe(Status=2))";
        }
    }

    void aWipeIsOrdered()
    {
        QFETCH(Form, form);
        QFETCH(bool, device);
        QFETCH(bool, account);
        QFETCH(bool, recorded);
        QFETCH(QString, acknowledgement);
        LogCollector log;
        mBed->account->recordsWipe = recorded;
        ProvisionRequest &request = makeFor(form);
        mBed->answer(wipeReply(device, account));
        mBed->answer(wipeReply(false, false));
        QCOMPARE(run(), -7);
        QVERIFY(!request.successfullyFinished());
        QCOMPARE(mBed->sent().last(), acknowledgement);
        QCOMPARE(mBed->account->wipeRequests, 1);
        QCOMPARE(mBed->account->wipeAcknowledgements, 1);
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("Remote Wipe succesfull finished") }));
    }

    void theAccountHearsOfTheEndOfTheAcknowledgement_data()
    {
        QTest::addColumn<int>("http");
        QTest::addColumn<int>("reply");
        QTest::newRow("refused") << 200 << 3;
        QTest::newRow("ordered once more") << 200 << 1;
        QTest::newRow("server out of service") << 503 << 1;
    }

    void theAccountHearsOfTheEndOfTheAcknowledgement()
    {
        QFETCH(int, http);
        QFETCH(int, reply);
        makeFor(AcknowledgesWipe);
        ScriptedAnswer answer;
        answer.status = http;
        answer.body = reply == 1 ? wipeReply(true, false) : statusReply(reply);
        mBed->server.answer(answer);
        run();
        QCOMPARE(mBed->account->wipeRequests, 1);
        QCOMPARE(mBed->account->wipeAcknowledgements, 1);
        QCOMPARE(mBed->server.unexpected(), 0);
    }

    // Cancelling

    void itIsCancelledInEachForm_data()
    {
        QTest::addColumn<Form>("form");
        QTest::newRow("policies") << AsksForPolicies;
        QTest::newRow("verdict") << AcknowledgesPolicies;
        QTest::newRow("wipe") << AsksForWipe;
        QTest::newRow("wipe verdict") << AcknowledgesWipe;
    }

    void itIsCancelledInEachForm()
    {
        QFETCH(Form, form);
        LogCollector log;
        ProvisionRequest &request = makeFor(form);
        const int requests = mBed->server.unusedAnswers() + 1;
        mBed->answerNever();
        request.setParent(RequestManager::instance());
        QSignalSpy completed(&request, &Request::requestCompleted);
        request.start();
        QTRY_COMPARE(mBed->server.requests().size(), requests);
        request.cancel();
        QCOMPARE(completed.size(), 1);
        QCOMPARE(request.status(), -4);
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("cancel provision request") }));
        QCOMPARE(mBed->account->wipeAcknowledgements, form == AcknowledgesWipe ? 1 : 0);
        QCOMPARE(mBed->account->policy, QStringLiteral("kept"));
    }

    void theAccountGoesWhileTheReplyIsOnItsWay_data() { itIsCancelledInEachForm_data(); }

    void theAccountGoesWhileTheReplyIsOnItsWay()
    {
        QFETCH(Form, form);
        LogCollector log;
        ProvisionRequest &request = makeFor(form);
        const int requests = mBed->server.unusedAnswers() + 1;
        mBed->answer(typeOf(form) == ProvisionRequest::InitialPolicyKey
                ? policyReply({ policy(QStringLiteral("key")) })
                : wipeReply(true, false));
        request.setParent(RequestManager::instance());
        QSignalSpy completed(&request, &Request::requestCompleted);
        QObject context;
        connect(&mBed->server, &ScriptedServer::received, &context, [this, requests] {
            if (mBed->server.requests().size() == requests)
                mBed->manager->storage->forget(RequestBed::Account);
        });
        request.start();
        QVERIFY(completed.size() == 1 || completed.wait());
        QCOMPARE(request.status(), form == AcknowledgesWipe ? -7 : -2);
        QCOMPARE(completed.size(), 1);
    }
};

FENNEL_REGISTER_TEST(ProvisionRequestTest)
#include "provisionrequesttest.moc"
