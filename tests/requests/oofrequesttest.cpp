// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/oofrequest.h"

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

constexpr EasAccountId Account = RequestBed::Account;
constexpr qulonglong Id = RequestBed::Id;

QByteArray reply(int status)
{
    return document(node(Settings::Settings, { node(Settings::Status, QString::number(status)) }));
}

QByteArray settings(const char *state)
{
    return document(node(Settings::Settings,
        { node(Settings::Status, "1"),
            node(Settings::Oof,
                { node(Settings::Status, "1"),
                    node(Settings::Get, { node(Settings::OofState, state) }) }) }));
}

EasOofContainer awayForATime(const QString &start, const QString &end)
{
    EasOofContainer state;
    state.setOofEnabled(true);
    state.setTimeRangeEnabled(true);
    state.setStartTime(QDateTime::fromString(start, Qt::ISODate));
    state.setEndTime(QDateTime::fromString(end, Qt::ISODate));
    return state;
}

} // namespace

/** Reading and writing out-of-office settings, and what the server's answers mean. */
class OofRequestTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<RequestBed> mBed;

private Q_SLOTS:
    void init()
    {
        mBed = std::make_unique<RequestBed>(QStringList { QStringLiteral("Settings") });
        QTRY_VERIFY(mBed->isOnline());
    }

    void cleanup() { QCOMPARE(RequestBed::end(mBed), QString()); }

    void aReadBringsTheSettings()
    {
        mBed->answer(settings("1"));
        OofRequest request(Account, Id, OofRequest::Get);
        QCOMPARE(RequestBed::run(request), 0);
        QVERIFY(request.getOofState().oofEnabled());
        QCOMPARE(mBed->sent(), QStringList { QStringLiteral("Settings(Oof(Get(BodyType=Text)))") });
    }

    void aWriteSendsThem()
    {
        mBed->answer(reply(1));
        OofRequest request(Account, Id, OofRequest::Set);
        request.setOofState(
            awayForATime(QStringLiteral("2026-05-01T08:00:00Z"), QStringLiteral("2026-05-02T08:00:00Z")));
        QCOMPARE(RequestBed::run(request), 0);
        QCOMPARE(mBed->sent().size(), 1);
        QVERIFY(
            mBed->sent().first().contains(QStringLiteral("OofState=2,StartTime=2026-05-01T08:00:00.000Z")));
    }

    void timesThatAreNoSpanAreRefusedAndNothingIsSent_data()
    {
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("end");
        QTest::newRow("reversed") << "2026-05-02T08:00:00Z"
                                  << "2026-05-01T08:00:00Z";
        QTest::newRow("equal") << "2026-05-01T08:00:00Z"
                               << "2026-05-01T08:00:00Z";
        QTest::newRow("unreadable start") << "soon"
                                          << "2026-05-01T08:00:00Z";
        QTest::newRow("unreadable end") << "2026-05-01T08:00:00Z"
                                        << "later";
        QTest::newRow("none") << QString() << QString();
    }

    void timesThatAreNoSpanAreRefusedAndNothingIsSent()
    {
        QFETCH(QString, start);
        QFETCH(QString, end);
        OofRequest request(Account, Id, OofRequest::Set);
        request.setOofState(awayForATime(start, end));
        QCOMPARE(RequestBed::run(request), -3);
        QCOMPARE(mBed->sent(), QStringList());
    }

    void timesThatAreNotSentDoNotMatter()
    {
        mBed->answer(reply(1));
        EasOofContainer state = awayForATime(QString(), QString());
        state.setOofEnabled(false);
        OofRequest request(Account, Id, OofRequest::Set);
        request.setOofState(state);
        QCOMPARE(RequestBed::run(request), 0);
    }

    void aStatusEndsTheRequest_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("end");
        QTest::addColumn<QString>("text");
        QTest::newRow("undefined") << 0 << -2 << " unhandled error with status:";
        QTest::newRow("protocol error") << 2 << 2 << "Protocol Error";
        QTest::newRow("access denied") << 3 << 3 << "Access Denied";
        QTest::newRow("server unavailable") << 4 << 4 << "Server Unavailable";
        QTest::newRow("invalid arguments") << 5 << 5 << "Invalid Arguments";
        QTest::newRow("conflicting arguments") << 6 << 6 << "Conflicting Arguments";
        QTest::newRow("denied by policy") << 7 << 7 << "Denied By Policy";
        QTest::newRow("another one") << 8 << 8 << " unhandled error with status: 8";
        QTest::newRow("server error of all commands") << 110 << 110 << "server error.";
    }

    void aStatusEndsTheRequest()
    {
        QFETCH(int, status);
        QFETCH(QString, text);
        for (const OofRequest::Action action : { OofRequest::Get, OofRequest::Set }) {
            mBed->answer(reply(status));
            LogCollector log;
            OofRequest request(Account, Id, action);
            QTEST(RequestBed::run(request), "end");
            QVERIFY2(log.contains(text), qPrintable(log.texts().join('\n')));
        }
    }

    void aServerWithoutTimeIsAskedFiveTimesMore()
    {
        for (int i = 0; i < 6; ++i)
            mBed->answer(reply(111));
        OofRequest request(Account, Id, OofRequest::Get);
        QCOMPARE(RequestBed::run(request), 111);
        QCOMPARE(mBed->sent().size(), 6);
    }

    void aReplyThatCannotBeReadIsAFailure()
    {
        mBed->answer({});
        OofRequest request(Account, Id, OofRequest::Get);
        QCOMPARE(RequestBed::run(request), -2);
    }

    void aCancelledOneEndsOnce()
    {
        mBed->answerNever();
        OofRequest request(Account, Id, OofRequest::Get, mBed->manager);
        QSignalSpy completed(&request, &Request::requestCompleted);
        QSignalSpy received(&mBed->server, &ScriptedServer::received);
        request.start();
        QVERIFY(received.count() == 1 || received.wait(60000));
        request.cancel();
        QCOMPARE(completed.count(), 1);
        QCOMPARE(request.status(), -4);
    }
};

FENNEL_REGISTER_TEST(OofRequestTest)
#include "oofrequesttest.moc"
