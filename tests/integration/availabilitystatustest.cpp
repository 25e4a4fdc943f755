// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/requestmanager.h"
#include "integration/demandscene.h"
#include "simulator/protocolversion.h"
#include "support/testmain.h"

#include <QSignalSpy>

using Simulator::Override;
using Simulator::RecordedRequest;
using Simulator::WbxmlNode;
using namespace StatusScene;

namespace {

const auto Start = QStringLiteral("2026-05-04T08:00:00Z");
const auto End = QStringLiteral("2026-05-04T11:00:00Z");
constexpr char Refused[] = "server error. We shouldn't retry later. Completing request";
constexpr char Unhandled[] = "Unhandled AttendeesAvailable request status: ";

} // namespace

/** Availability over the wire: whatever the server answers, the lists come once. */
class AvailabilityStatusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { mBed.reset(); }
    void peopleHaveARowEach_data() { versions(); }
    void peopleHaveARowEach();
    void theCommandIsAnsweredWith_data();
    void theCommandIsAnsweredWith();
    void aPersonIsAnsweredWith_data();
    void aPersonIsAnsweredWith();
    void serversBelow140AreNotAsked_data();
    void serversBelow140AreNotAsked();
    void whatCannotBeReadIsNotSent_data();
    void whatCannotBeReadIsNotSent();
    void aCancelledOneEndsWithEmptyLists();
    void anAccountThatGoesEndsItWithEmptyLists();
    void aReplyThatIsCutEndsItWithEmptyLists();
    void itGoesOnOnceThePolicyIsTaken_data();
    void itGoesOnOnceThePolicyIsTaken();
    void aRefusedPolicyEndsItWithEmptyLists();
    void aCancelledProvisioningEndsItWithEmptyLists();
    void aDemandForEverEndsItWithEmptyLists();

private:
    std::unique_ptr<SyncTestBed> mBed;
    std::unique_ptr<QSignalSpy> mLists;
    std::unique_ptr<QSignalSpy> mFinished;
    qulonglong mLastId = 700000;

    static void versions();
    bool startBed(const QString &version);
    void begin(const QString &people, const QString &start = Start, const QString &end = End);
    /** The rows, "email|name|half hours"; "-" if the lists did not come once. */
    QStringList rows();
    QStringList ask(const QString &people) { return begin(people), rows(); }
};

void AvailabilityStatusTest::init()
{
    QVERIFY(startBed(QStringLiteral("14.1")));
}

void AvailabilityStatusTest::versions()
{
    QTest::addColumn<QString>("version");
    for (const int version : Simulator::protocolVersions()) {
        if (version >= Simulator::Version140)
            QTest::newRow(qPrintable(Simulator::versionText(version))) << Simulator::versionText(version);
    }
}

bool AvailabilityStatusTest::startBed(const QString &version)
{
    mLists.reset();
    mFinished.reset();
    mBed.reset();
    mBed = std::make_unique<SyncTestBed>(QStringList { version });
    if (!mBed->isReady())
        return false;
    Simulator::Event talk =
        Simulator::Event::timed(QStringLiteral("Talk"), "UTC", QDateTime(QDate(2026, 5, 4), QTime(9, 0)), 60);
    talk.busyStatus = 3;
    mBed->place(talk);
    auto *const manager = RequestManager::instance();
    mLists = std::make_unique<QSignalSpy>(manager, &RequestManager::attendeesAvailableDataReady);
    mFinished = std::make_unique<QSignalSpy>(manager, &RequestManager::requestFinished);
    return true;
}

void AvailabilityStatusTest::begin(const QString &people, const QString &start, const QString &end)
{
    mLists->clear();
    RequestManager::instance()->onAttendeesAvailableRequest(mBed->accountId(), ++mLastId, people, start, end);
}

QStringList AvailabilityStatusTest::rows()
{
    if (mLists->isEmpty() && !mLists->wait(180000))
        return { QStringLiteral("-") };
    QCoreApplication::processEvents();
    const QVariantList lists = mLists->first();
    if (mLists->count() != 1 || lists.first().toULongLong() != mLastId || !mFinished->isEmpty())
        return { QStringLiteral("-") };
    QStringList rows;
    for (int i = 0; i < lists.at(1).toStringList().size(); ++i)
        rows.append(lists.at(1).toStringList().at(i) + '|' + lists.at(2).toStringList().value(i) + '|'
            + lists.at(3).toStringList().value(i));
    return rows;
}

void AvailabilityStatusTest::peopleHaveARowEach()
{
    QFETCH(QString, version);
    QVERIFY(startBed(version));
    QCOMPARE(ask(QStringLiteral("\"Lee, Alice\" <alice@example.com>; nobody@example.com\nALICE@example.com")),
        QStringList({ "alice@example.com|alice|003300", "nobody@example.com||" }));
    QCOMPARE(mBed->server().failures(), QStringList());
}

void AvailabilityStatusTest::theCommandIsAnsweredWith_data()
{
    columns();
    QTest::addColumn<QString>("version");
    struct Row
    {
        int code;
        bool succeeds;
        const char *text;
        int requests;
    };
    static constexpr Row rows[] = { { 2, false, "Invalid request.", 1 }, { 5, false, Unhandled, 1 },
        { 6, false, Unhandled, 1 }, { 8, false, Unhandled, 1 }, { 106, false, Refused, 1 },
        { 110, false, Refused, 1 },
        { 108, true, "invalid Device ID or Type. Trying to update Device information", 2 },
        { 109, true, "invalid Device ID or Type. Trying to update Device information", 2 },
        { 111, true, "we should try to send command again later. Timeout (in mseconds):", 2 },
        { 139, false, "Device is not fully Provisionable for account", 1 },
        { 140, true, "remote wipe is requested for account", 2 },
        { 141, true, "server requires policy key to be submitted for", 2 },
        { 142, true, "Provision Policy is in place for account", 2 },
        { 143, true, "Policy refresh requested for account", 2 },
        { 144, true, "Invalid policy key for account", 2 },
        { 145, true, "Exterally managed devices are not allowed for account", 2 } };
    for (const int version : Simulator::protocolVersions()) {
        if (version < Simulator::Version140)
            continue;
        for (const Row &row : rows)
            QTest::addRow("%s, %d", qPrintable(Simulator::versionText(version)), row.code)
                << row.code << int(row.succeeds) << QString::fromLatin1(row.text) << row.requests
                << Simulator::versionText(version);
    }
}

void AvailabilityStatusTest::theCommandIsAnsweredWith()
{
    QFETCH(QString, version);
    QFETCH(int, code);
    QFETCH(int, end);
    QFETCH(QString, text);
    QFETCH(int, requests);
    QVERIFY(startBed(version));
    mBed->server().overrideNext(QStringLiteral("ResolveRecipients"), Override::topStatus(code));
    {
        const LogCollector log;
        QCOMPARE(ask(QStringLiteral("alice@example.com")).size(), end);
        QVERIFY2(log.contains(text), qPrintable(log.texts().join(QLatin1Char('\n'))));
    }
    QCOMPARE(count(*mBed, "ResolveRecipients"), requests);
}

void AvailabilityStatusTest::aPersonIsAnsweredWith_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("status");
    QTest::addColumn<QStringList>("rows");
    const auto response = QStringLiteral("Response/Status");
    const auto availability = QStringLiteral("Response/Recipient/Availability/Status");
    const QStringList known { "alice@example.com|alice|003300" };
    const QStringList unknown { "alice@example.com|alice|" };
    QTest::newRow("found") << response << 1 << known;
    for (const int status : { 0, 2, 3, 4, 5, 6, 7, 8, 999 })
        QTest::addRow("person %d", status) << response << status << QStringList();
    for (const int status : { 0, 2, 160, 161, 162, 163 })
        QTest::addRow("availability %d", status) << availability << status << unknown;
}

void AvailabilityStatusTest::aPersonIsAnsweredWith()
{
    QFETCH(QString, path);
    QFETCH(int, status);
    mBed->server().overrideNext(
        QStringLiteral("ResolveRecipients"), Override::edited([path, status](WbxmlNode &reply) {
            if (WbxmlNode *const node = reply.find(path))
                node->setText(QString::number(status));
        }));
    QTEST(ask(QStringLiteral("alice@example.com")), "rows");
}

void AvailabilityStatusTest::serversBelow140AreNotAsked_data()
{
    QTest::addColumn<QString>("version");
    QTest::newRow("12.0") << "12.0";
    QTest::newRow("12.1") << "12.1";
}

void AvailabilityStatusTest::serversBelow140AreNotAsked()
{
    QFETCH(QString, version);
    QVERIFY(startBed(version));
    QCOMPARE(ask(QStringLiteral("alice@example.com")), QStringList());
    QCOMPARE(count(*mBed, "ResolveRecipients"), 0);
}

void AvailabilityStatusTest::whatCannotBeReadIsNotSent_data()
{
    QTest::addColumn<QString>("people");
    QTest::addColumn<QString>("start");
    QTest::addColumn<QString>("end");
    const QString user = QStringLiteral("alice@example.com");
    QTest::newRow("no address") << " ;,\n" << Start << End;
    QTest::newRow("reversed times") << user << End << Start;
    QTest::newRow("no start") << user << QString() << End;
    QTest::newRow("no end") << user << Start << "later";
}

void AvailabilityStatusTest::whatCannotBeReadIsNotSent()
{
    QFETCH(QString, people);
    QFETCH(QString, start);
    QFETCH(QString, end);
    begin(people, start, end);
    QCOMPARE(rows(), QStringList());
    QCOMPARE(count(*mBed, "ResolveRecipients"), 0);
}

void AvailabilityStatusTest::aCancelledOneEndsWithEmptyLists()
{
    mBed->server().overrideNext(QStringLiteral("ResolveRecipients"), Override::hang());
    begin(QStringLiteral("alice@example.com"));
    QTRY_COMPARE_WITH_TIMEOUT(count(*mBed, "ResolveRecipients"), 1, 60000);
    RequestManager::instance()->onCancelRequest(mBed->accountId(), mLastId);
    QCOMPARE(rows(), QStringList());
}

void AvailabilityStatusTest::anAccountThatGoesEndsItWithEmptyLists()
{
    mBed->server().overrideNext(QStringLiteral("ResolveRecipients"), Override::hang());
    begin(QStringLiteral("alice@example.com"));
    QTRY_COMPARE_WITH_TIMEOUT(count(*mBed, "ResolveRecipients"), 1, 60000);
    QVERIFY(mBed->accounts().remove(mBed->accountId()));
    QCOMPARE(rows(), QStringList());
}

void AvailabilityStatusTest::aReplyThatIsCutEndsItWithEmptyLists()
{
    const QStringList known { "alice@example.com|alice|003300" };
    QCOMPARE(ask(QStringLiteral("alice@example.com")), known);
    const int length = mBed->server().requests(QStringLiteral("ResolveRecipients")).last().replyBody.size();
    for (int at = 0; at < length; ++at) {
        mBed->server().overrideNext(QStringLiteral("ResolveRecipients"), Override().truncateAt(at));
        QCOMPARE(ask(QStringLiteral("alice@example.com")), QStringList());
    }
    QCOMPARE(ask(QStringLiteral("alice@example.com")), known);
}

void AvailabilityStatusTest::itGoesOnOnceThePolicyIsTaken_data()
{
    QTest::addColumn<int>("demand");
    for (const int demand : { 142, 143, 144, 449 })
        QTest::addRow("%d", demand) << demand;
}

void AvailabilityStatusTest::itGoesOnOnceThePolicyIsTaken()
{
    QFETCH(int, demand);
    DemandScene::offerPolicy(*mBed);
    mBed->server().overrideNext(QStringLiteral("ResolveRecipients"),
        demand == 449 ? Override::httpStatus(449) : Override::topStatus(demand));
    QCOMPARE(ask(QStringLiteral("alice@example.com")).size(), 1);
    QCOMPARE(count(*mBed, "Provision"), 2);
    QCOMPARE(count(*mBed, "ResolveRecipients"), 2);
}

void AvailabilityStatusTest::aRefusedPolicyEndsItWithEmptyLists()
{
    mBed->server().overrideNext(QStringLiteral("ResolveRecipients"), Override::topStatus(142));
    mBed->server().overrideNext(QStringLiteral("Provision"), Override::topStatus(4));
    QCOMPARE(ask(QStringLiteral("alice@example.com")), QStringList());
    QCOMPARE(count(*mBed, "Provision"), 1);
    QCOMPARE(ask(QStringLiteral("alice@example.com")).size(), 1);
}

void AvailabilityStatusTest::aCancelledProvisioningEndsItWithEmptyLists()
{
    mBed->server().overrideNext(QStringLiteral("ResolveRecipients"), Override::topStatus(142));
    mBed->server().overrideNext(QStringLiteral("Provision"), Override::hang());
    begin(QStringLiteral("alice@example.com"));
    QTRY_COMPARE_WITH_TIMEOUT(count(*mBed, "Provision"), 1, 60000);
    RequestManager::instance()->onCancelRequest(mBed->accountId(), mLastId);
    QCOMPARE(rows(), QStringList());
    QCOMPARE(ask(QStringLiteral("alice@example.com")).size(), 1);
}

void AvailabilityStatusTest::aDemandForEverEndsItWithEmptyLists()
{
    DemandScene::offerPolicy(*mBed);
    mBed->server().overrideAll(QStringLiteral("ResolveRecipients"), Override::topStatus(142));
    QCOMPARE(ask(QStringLiteral("alice@example.com")), QStringList());
    // The first demand and five more are met.
    QCOMPARE(count(*mBed, "Provision"), 12);
    QCOMPARE(count(*mBed, "ResolveRecipients"), 7);
}

FENNEL_REGISTER_TEST(AvailabilityStatusTest)
#include "availabilitystatustest.moc"
