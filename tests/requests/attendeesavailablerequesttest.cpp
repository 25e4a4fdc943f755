// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/attendeesavailablerequest.h"

#include "support/logcollector.h"
#include "support/requestbed.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QtTest>

#include <memory>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

namespace Tag = ResolveRecipients;

constexpr EasAccountId Account = RequestBed::Account;
constexpr qulonglong Id = RequestBed::Id;

const QDateTime morning(QDate(2026, 5, 4), QTime(8, 0), Qt::UTC);

AttendeesAvailableRequest::Options options()
{
    return { { QStringLiteral("ann@example.com"), QStringLiteral("nobody@example.com") }, morning,
        morning.addSecs(3600) };
}

QByteArray reply(const QString &status, const QVector<WbxmlNode> &responses = {})
{
    return document(
        node(Tag::ResolveRecipients, QVector<WbxmlNode> { node(Tag::Status, status) } + responses));
}

WbxmlNode notFound(const char *status)
{
    return node(Tag::Response, { node(Tag::To, "nobody@example.com"), node(Tag::Status, status) });
}

WbxmlNode found()
{
    return node(Tag::Response,
        { node(Tag::To, "ann@example.com"), node(Tag::Status, "1"),
            node(Tag::Recipient,
                { node(Tag::DisplayName, "Ann"), node(Tag::EmailAddress, "ann@example.com"),
                    node(
                        Tag::Availability, { node(Tag::Status, "1"), node(Tag::MergedFreeBusy, "02") }) }) });
}

/** What a request told of its end, in order: "data" with its lists, "completed". */
class Ends
{
public:
    explicit Ends(AttendeesAvailableRequest &request)
    {
        QObject::connect(&request, &Request::requestCompleted, &request,
            [this] { mTold.append(QStringLiteral("completed")); });
        QObject::connect(&request, &AttendeesAvailableRequest::dataReady, &request,
            [this](qulonglong id, const QStringList &emails, const QStringList &names,
                const QStringList &statuses) {
                mTold.append(QStringLiteral("data %1 %2|%3|%4")
                                 .arg(id)
                                 .arg(emails.join(','), names.join(','), statuses.join(',')));
            });
    }

    const QStringList &told() const { return mTold; }

    static QStringList of(const QString &lists)
    {
        return { QStringLiteral("data 42 ") + lists, QStringLiteral("completed") };
    }
    static QStringList ofFailure() { return of(QStringLiteral("||")); }

private:
    QStringList mTold;
};

} // namespace

/** Asking when people are free: one answer in lists at every end. */
class AttendeesAvailableRequestTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<RequestBed> mBed;

private Q_SLOTS:
    void init()
    {
        mBed = std::make_unique<RequestBed>(QStringList { QStringLiteral("ResolveRecipients") });
        QTRY_VERIFY(mBed->isOnline());
    }

    void cleanup() { QCOMPARE(RequestBed::end(mBed), QString()); }

    void theListsComeBeforeTheEnd()
    {
        mBed->answer(reply(QStringLiteral("1"), { notFound("4"), found() }));
        LogCollector log;
        AttendeesAvailableRequest request(Account, Id, options());
        const Ends ends(request);
        QCOMPARE(RequestBed::run(request), 0);
        QCOMPARE(ends.told(), Ends::of(QStringLiteral("nobody@example.com,ann@example.com|,Ann|,02")));
        QCOMPARE(mBed->sent(),
            QStringList { QStringLiteral(
                "ResolveRecipients(To=ann@example.com,To=nobody@example.com,Options(Availability("
                "StartTime=2026-05-04T08:00:00.000Z,EndTime=2026-05-04T09:00:00.000Z)))") });
        QVERIFY(log.contains(QStringLiteral("AttendeesAvailable command finished successfully")));
    }

    void whatCannotBeAskedIsNotSent_data()
    {
        QTest::addColumn<QStringList>("emails");
        QTest::addColumn<int>("seconds");
        QTest::addColumn<bool>("hasTimes");
        QTest::newRow("no address") << QStringList() << 3600 << true;
        QTest::newRow("reversed") << options().emails << -1 << true;
        QTest::newRow("no time between") << options().emails << 0 << true;
        QTest::newRow("unreadable times") << options().emails << 0 << false;
    }

    void whatCannotBeAskedIsNotSent()
    {
        QFETCH(QStringList, emails);
        QFETCH(int, seconds);
        QFETCH(bool, hasTimes);
        AttendeesAvailableRequest request(Account, Id,
            hasTimes ? AttendeesAvailableRequest::Options { emails, morning, morning.addSecs(seconds) }
                     : AttendeesAvailableRequest::Options { emails, {}, {} });
        const Ends ends(request);
        QCOMPARE(RequestBed::run(request), -3);
        QCOMPARE(ends.told(), Ends::ofFailure());
        QCOMPARE(mBed->sent(), QStringList());
    }

    void aStatusEndsTheRequest_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("end");
        QTest::addColumn<QString>("text");
        const auto top = [](const char *status) {
            return reply(QLatin1String(status), { found() });
        };
        const auto inner = [](const char *status) {
            return reply(QStringLiteral("1"), { notFound(status) });
        };
        QTest::newRow("invalid") << top("2") << -3 << "Invalid request.";
        QTest::newRow("protocol error")
            << top("5") << -2 << "Unhandled AttendeesAvailable request status:  5";
        QTest::newRow("server error") << top("6") << -2 << "Unhandled AttendeesAvailable request status:  6";
        QTest::newRow("none") << top("0") << -2 << "Unhandled AttendeesAvailable request status:  0";
        QTest::newRow("server error of all commands") << top("110") << 110 << "server error.";
        QTest::newRow("invalid for the person") << inner("2") << -3 << "Invalid AttendeesAvailable request";
        QTest::newRow("not found") << inner("4") << -3 << "Undefined Response Status";
        QTest::newRow("nobody") << reply(QStringLiteral("1")) << -3 << "Undefined Response Status";
        QTest::newRow("no document") << QByteArray() << -2
                                     << "AttendeesAvailable command failed with status -2";
    }

    void aStatusEndsTheRequest()
    {
        QFETCH(QByteArray, body);
        QFETCH(QString, text);
        mBed->answer(body);
        LogCollector log;
        AttendeesAvailableRequest request(Account, Id, options());
        const Ends ends(request);
        QTEST(RequestBed::run(request), "end");
        QCOMPARE(ends.told(), Ends::ofFailure());
        QVERIFY2(log.contains(text), qPrintable(log.texts().join('\n')));
    }

    void aTransportErrorKeepsItsStatus()
    {
        ScriptedAnswer forbidden;
        forbidden.status = 403;
        mBed->server.answer(forbidden);
        AttendeesAvailableRequest request(Account, Id, options());
        const Ends ends(request);
        QCOMPARE(RequestBed::run(request), 10201);
        QCOMPARE(ends.told(), Ends::ofFailure());
    }

    void aServerWithoutTimeIsAskedFiveTimesMore()
    {
        for (int i = 0; i < 6; ++i)
            mBed->answer(reply(QStringLiteral("111")));
        LogCollector log;
        AttendeesAvailableRequest request(Account, Id, options());
        const Ends ends(request);
        QCOMPARE(RequestBed::run(request), 111);
        QCOMPARE(ends.told(), Ends::ofFailure());
        QVERIFY(log.contains(QStringLiteral("trying to send command again. Attempt:  5")));
        QVERIFY(log.contains(QStringLiteral("no more attempts, failing request")));
    }

    void serversBelow140AreNotAsked()
    {
        mBed->account->setProtocolVersion(ExchangeActiveSync::ProtocolVersion121);
        AttendeesAvailableRequest request(Account, Id, options());
        const Ends ends(request);
        QCOMPARE(RequestBed::run(request), -8);
        QCOMPARE(ends.told(), Ends::ofFailure());
    }

    void aServerThatDoesNotOfferItIsNotAsked()
    {
        mBed->account->negotiated({ QStringLiteral("Sync") });
        AttendeesAvailableRequest request(Account, Id, options());
        const Ends ends(request);
        QCOMPARE(RequestBed::run(request), -8);
        QCOMPARE(ends.told(), Ends::ofFailure());
    }

    void endsBeforeTheWorkBeginsBringTheListsToo()
    {
        {
            AttendeesAvailableRequest queued(Account, Id, options(), mBed->manager);
            const Ends ends(queued);
            queued.cancel();
            QCOMPARE(queued.status(), -4);
            QCOMPARE(ends.told(), Ends::ofFailure());
        }
        mBed->manager->storage->forget(Account);
        AttendeesAvailableRequest orphaned(Account, Id, options());
        const Ends ends(orphaned);
        QCOMPARE(RequestBed::run(orphaned), -2);
        QCOMPARE(ends.told(), Ends::ofFailure());
    }

    void aCancelledOneEndsOnce()
    {
        mBed->answerNever();
        AttendeesAvailableRequest request(Account, Id, options(), mBed->manager);
        const Ends ends(request);
        QSignalSpy received(&mBed->server, &ScriptedServer::received);
        request.start();
        QVERIFY(received.count() == 1 || received.wait(60000));
        request.cancel();
        QCOMPARE(request.status(), -4);
        QCOMPARE(ends.told(), Ends::ofFailure());
    }
};

FENNEL_REGISTER_TEST(AttendeesAvailableRequestTest)
#include "attendeesavailablerequesttest.moc"
