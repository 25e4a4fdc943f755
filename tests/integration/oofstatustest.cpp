// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/requestmanager.h"
#include "integration/statusscene.h"
#include "simulator/protocolversion.h"
#include "support/testmain.h"

#include <QSignalSpy>

using Simulator::OutOfOffice;
using Simulator::Override;
using namespace StatusScene;

namespace {

constexpr char Refused[] = "server error. We shouldn't retry later. Completing request";

EasOofContainer absence()
{
    EasOofContainer state;
    state.setOofEnabled(true);
    state.setTimeRangeEnabled(true);
    state.setStartTime(QDateTime(QDate(2026, 5, 1), QTime(9, 0), Qt::OffsetFromUTC, 7200));
    state.setEndTime(QDateTime(QDate(2026, 5, 8), QTime(17, 30), Qt::UTC));
    state.setInternalMessage(QStringLiteral("Grüße\r\nAnn \U0001F3D6"));
    state.setExternalMessageEnabled(true);
    state.setExternalMessageToAnyone(true);
    state.setExternalMessage(QStringLiteral("Away"));
    return state;
}

} // namespace

/** Out-of-office settings over the wire, and what each status of the server leads to. */
class OofStatusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { mBed.reset(); }
    void whatIsWrittenIsReadAgain_data() { versions(); }
    void whatIsWrittenIsReadAgain();
    void switchedOffTheServerKeepsTheTexts_data() { versions(); }
    void switchedOffTheServerKeepsTheTexts();
    void aReadIsAnsweredWith_data() { statusRows(); }
    void aReadIsAnsweredWith();
    void aWriteIsAnsweredWith_data() { statusRows(); }
    void aWriteIsAnsweredWith();
    void reversedTimesAreNotSent();
    void aReplyThatIsCutIsAFailure();

private:
    std::unique_ptr<SyncTestBed> mBed;
    qulonglong mLastId = 500000;

    static void versions();
    static void statusRows();
    bool start(const QString &version);
    int read();
    int write(const EasOofContainer &state);
};

void OofStatusTest::versions()
{
    QTest::addColumn<QString>("version");
    for (const int version : Simulator::protocolVersions())
        QTest::newRow(qPrintable(Simulator::versionText(version))) << Simulator::versionText(version);
}

void OofStatusTest::statusRows()
{
    columns();
    QTest::addColumn<QString>("version");
    struct Row
    {
        int code;
        int end;
        const char *text;
        int requests;
    };
    static constexpr Row rows[] = { { 2, 2, "Protocol Error", 1 }, { 3, 3, "Access Denied", 1 },
        { 4, 4, "Server Unavailable", 1 }, { 5, 5, "Invalid Arguments", 1 },
        { 6, 6, "Conflicting Arguments", 1 }, { 7, 7, "Denied By Policy", 1 },
        { 8, 8, " unhandled error with status: 8", 1 }, { 106, 106, Refused, 1 }, { 110, 110, Refused, 1 },
        { 108, 0, "invalid Device ID or Type. Trying to update Device information", 2 },
        { 109, 0, "invalid Device ID or Type. Trying to update Device information", 2 },
        { 111, 0, "we should try to send command again later. Timeout (in mseconds):", 2 },
        { 139, 139, "Device is not fully Provisionable for account", 1 },
        { 140, 0, "remote wipe is requested for account", 2 },
        { 141, 0, "server requires policy key to be submitted for", 2 },
        { 142, 0, "Provision Policy is in place for account", 2 },
        { 143, 0, "Policy refresh requested for account", 2 },
        { 144, 0, "Invalid policy key for account", 2 },
        { 145, 0, "Exterally managed devices are not allowed for account", 2 } };
    for (const int version : Simulator::protocolVersions()) {
        for (const Row &row : rows)
            QTest::addRow("%s, %d", qPrintable(Simulator::versionText(version)), row.code)
                << row.code << row.end << QString::fromLatin1(row.text) << row.requests
                << Simulator::versionText(version);
    }
}

bool OofStatusTest::start(const QString &version)
{
    mBed = std::make_unique<SyncTestBed>(QStringList { version });
    return mBed->isReady();
}

int OofStatusTest::read()
{
    const qulonglong id = ++mLastId;
    RequestManager::instance()->onGetOofRequest(mBed->accountId(), id);
    return mBed->waitFor(id);
}

int OofStatusTest::write(const EasOofContainer &state)
{
    const qulonglong id = ++mLastId;
    RequestManager::instance()->onSetOofStateRequest(mBed->accountId(), id, state);
    return mBed->waitFor(id);
}

void OofStatusTest::whatIsWrittenIsReadAgain()
{
    QFETCH(QString, version);
    QVERIFY(start(version));
    const EasOofContainer wanted = absence();
    QCOMPARE(write(wanted), 0);
    const OutOfOffice kept = mBed->mailbox().outOfOffice();
    QCOMPARE(kept.state, 2);
    QCOMPARE(kept.start, QDateTime(QDate(2026, 5, 1), QTime(7, 0), Qt::UTC));
    QCOMPARE(kept.end, wanted.endTime());
    QCOMPARE(kept.internal.text, wanted.internalMessage());
    QVERIFY(kept.internal.isEnabled && kept.knownExternal.isEnabled && kept.unknownExternal.isEnabled);

    QSignalSpy fetched(RequestManager::instance(), &RequestManager::oofStateFetched);
    QSignalSpy finished(RequestManager::instance(), &RequestManager::requestFinished);
    bool cameFirst = false;
    connect(RequestManager::instance(), &RequestManager::oofStateFetched, this,
        [&] { cameFirst = finished.isEmpty(); });
    QCOMPARE(read(), 0);
    QCOMPARE(fetched.count(), 1);
    QVERIFY(cameFirst);
    const auto told = fetched.first().at(2).value<EasOofContainer>();
    QVERIFY(told.oofEnabled() && told.timeRangeEnabled());
    QCOMPARE(told.startTime(), wanted.startTime());
    QCOMPARE(told.endTime(), wanted.endTime());
    QCOMPARE(told.internalMessage(), wanted.internalMessage());
    QVERIFY(told.externalMessageEnabled() && told.externalMessageToAnyone());
    QCOMPARE(told.externalMessage(), wanted.externalMessage());
    QCOMPARE(mBed->server().failures(), QStringList());
}

void OofStatusTest::switchedOffTheServerKeepsTheTexts()
{
    QFETCH(QString, version);
    QVERIFY(start(version));
    QCOMPARE(write(absence()), 0);
    QCOMPARE(write(EasOofContainer()), 0);
    const OutOfOffice kept = mBed->mailbox().outOfOffice();
    QCOMPARE(kept.state, 0);
    QVERIFY(!kept.internal.isEnabled && !kept.knownExternal.isEnabled && !kept.unknownExternal.isEnabled);
    QCOMPARE(kept.internal.text, absence().internalMessage());
    QCOMPARE(mBed->server().failures(), QStringList());
}

void OofStatusTest::aReadIsAnsweredWith()
{
    QFETCH(QString, version);
    QFETCH(int, code);
    QFETCH(int, end);
    QVERIFY(start(version));
    QSignalSpy fetched(RequestManager::instance(), &RequestManager::oofStateFetched);
    endsAsTheRowSays(*mBed, "Settings", Override::topStatus(code), Once, [this] { return read(); });
    QCOMPARE(fetched.count(), end == 0 ? 1 : 0);
}

void OofStatusTest::aWriteIsAnsweredWith()
{
    QFETCH(QString, version);
    QFETCH(int, code);
    QFETCH(int, end);
    QVERIFY(start(version));
    endsAsTheRowSays(*mBed, "Settings", Override::topStatus(code), Once, [this] { return write(absence()); });
    QCOMPARE(mBed->mailbox().outOfOffice().state, end == 0 ? 2 : 0);
}

void OofStatusTest::reversedTimesAreNotSent()
{
    QVERIFY(start(QStringLiteral("14.1")));
    EasOofContainer state = absence();
    state.setEndTime(state.startTime().addSecs(-1));
    QCOMPARE(write(state), -3);
    QCOMPARE(count(*mBed, "Settings"), 0);
}

void OofStatusTest::aReplyThatIsCutIsAFailure()
{
    QVERIFY(start(QStringLiteral("14.1")));
    QCOMPARE(write(absence()), 0);
    QCOMPARE(read(), 0);
    const int length = mBed->server().requests(QStringLiteral("Settings")).last().replyBody.size();
    QSignalSpy fetched(RequestManager::instance(), &RequestManager::oofStateFetched);
    for (int at = 0; at < length; ++at) {
        mBed->server().overrideNext(QStringLiteral("Settings"), Override().truncateAt(at));
        QVERIFY2(read() != 0, qPrintable(QString::number(at)));
    }
    QCOMPARE(fetched.count(), 0);
    QCOMPARE(read(), 0);
}

FENNEL_REGISTER_TEST(OofStatusTest)
#include "oofstatustest.moc"
