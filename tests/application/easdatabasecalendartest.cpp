// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/easdatabase.h"
#include "easitems/eascalendaritem.h"
#include "support/databasefixture.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QtTest>

namespace {

constexpr EasAccountId Account = 5;
constexpr EasAccountId OtherAccount = 6;

EasCalendarItem meeting(
    const QString &serverId, const QString &collectionId, const QString &localId, quint32 timestamp = 100)
{
    EasCalendarItem item;
    item.setServerId(serverId);
    item.setCollectionId(collectionId);
    item.setLocalId(localId);
    item.setLocalTimestamp(timestamp);
    return item;
}

EasDatabase *database()
{
    return EasDatabase::instance();
}

using Map = QMap<QString, QString>;

} // namespace

class EasDatabaseCalendarTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        mFixture = std::make_unique<DatabaseFixture>();
        mFixture->open();
        QVERIFY(database()->addCalendarItems(
            Account, { meeting("4:1", "4", "uid-1", 1700000000), meeting("4:2", "4", "uid-2") }));
        QVERIFY(database()->addCalendarItems(OtherAccount, { meeting("4:1", "4", "uid-3", 7) }));
    }

    void cleanup() { mFixture.reset(); }

    void addedEventsAreKept()
    {
        QCOMPARE(rows(),
            (QStringList { "1|5|4:1|4|uid-1|1700000000", "2|5|4:2|4|uid-2|100", "3|6|4:1|4|uid-3|7" }));
    }

    void identifiersAreReadPerAccount()
    {
        QCOMPARE(*database()->localCalendarIds(Account, "4"), (QStringList { "uid-1", "uid-2" }));
        QCOMPARE(
            *database()->serverToLocalCalendarIds(Account), (Map { { "4:1", "uid-1" }, { "4:2", "uid-2" } }));
        QCOMPARE(*database()->localToServerCalendarIds(OtherAccount), (Map { { "uid-3", "4:1" } }));
        QCOMPARE(
            *database()->serverCalendarIdToCollectionIds(Account), (Map { { "4:1", "4" }, { "4:2", "4" } }));
        QCOMPARE(*database()->serverCalendarIdToCollectionId(Account, "4:2"), QString("4"));
        QCOMPARE(*database()->serverCalendarIdToCollectionId(Account, "9:9"), QString());
        QCOMPARE(*database()->localToServerCalendarId(Account, "uid-2"), QString("4:2"));
        QCOMPARE(*database()->localToServerCalendarId(Account, "uid-3"), QString());
    }

    void ofTwoFoldersOfAnEventTheLastWinsWithAWarning()
    {
        QVERIFY(database()->addCalendarItems(Account, { meeting("4:1", "8", "uid-9") }));
        const LogCollector log;
        QCOMPARE(*database()->serverCalendarIdToCollectionId(Account, "4:1"), QString("8"));
        QVERIFY(log.contains(QtWarningMsg, { "EAS collection id not unique for server id:", "4:1" }));
    }

    void ofTwoServerIdentifiersOfAnEventTheLastWinsWithAWarning()
    {
        QVERIFY(database()->addCalendarItems(Account, { meeting("4:9", "4", "uid-1") }));
        const LogCollector log;
        QCOMPARE(*database()->localToServerCalendarId(Account, "uid-1"), QString("4:9"));
        QVERIFY(log.contains(QtWarningMsg, { "EAS server id not unique for local id:", "uid-1" }));
    }

    void anEmptySecondValueIsNotWarnedOf()
    {
        mFixture->execute({ "INSERT INTO calendar VALUES (NULL, 5, '', '4', 'uid-7', 1)",
            "INSERT INTO calendar VALUES (NULL, 5, '4:7', '4', 'uid-7', 1)" });
        const LogCollector log;
        QCOMPARE(*database()->localToServerCalendarId(Account, "uid-7"), QString("4:7"));
        QCOMPARE(log.texts(QtWarningMsg), QStringList());
    }

    void theTimeOfAnEventIsRead_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<uint>("expected");
        QTest::newRow("a time") << "1700000000" << 1700000000U;
        QTest::newRow("the beginning of time") << "0" << 0U;
        QTest::newRow("the invalid value itself") << "4294967295" << EasDatabase::TimestampInvalid;
        QTest::newRow("a migrated row without a time") << "NULL" << EasDatabase::TimestampInvalid;
        QTest::newRow("no number") << "'soon'" << EasDatabase::TimestampInvalid;
    }

    void theTimeOfAnEventIsRead()
    {
        QFETCH(QString, stored);
        QFETCH(uint, expected);
        mFixture->execute(
            { QStringLiteral("INSERT INTO calendar VALUES (NULL, 5, '4:7', '4', 'uid-7', %1)").arg(stored) });
        QCOMPARE(*database()->calendarItemUpdateTime(Account, "uid-7"), expected);
    }

    void ofTwoRowsOfAnEventTheNewerOneTellsTheTime()
    {
        // As an event that was moved, and whose old row gets its stamp written anew.
        QVERIFY(database()->addCalendarItems(Account, { meeting("8:1", "8", "uid-1", 300) }));
        QVERIFY(database()->updateCalendarItems(Account, { meeting("4:1", "4", "uid-1", 50) }));
        QCOMPARE(*database()->calendarItemUpdateTime(Account, "uid-1"), 300U);
        QCOMPARE(database()->calendarItemUpdateTimes(Account)->value("uid-1"), 300U);
    }

    void anUnknownEventHasTheInvalidTime()
    {
        QCOMPARE(*database()->calendarItemUpdateTime(Account, "unknown"), EasDatabase::TimestampInvalid);
    }

    void anUpdateWritesEveryColumnOfThatAccountsRow()
    {
        QVERIFY(database()->updateCalendarItems(
            Account, { meeting("4:1", "8", "uid-new", 5), meeting("unknown", "8", "uid-x", 5) }));
        QCOMPARE(rows(), (QStringList { "1|5|4:1|8|uid-new|5", "2|5|4:2|4|uid-2|100", "3|6|4:1|4|uid-3|7" }));
    }

    void changesReplaceThenAddThenUpdateThenDelete()
    {
        QVERIFY(database()->calendarItemsChanges(Account, { meeting("4:1", "4", "uid-again", 200) },
            { meeting("4:1", "4", "uid-again", 300) }, { "4:2" }, { "4:1" }));
        QCOMPARE(rows(), (QStringList { "3|6|4:1|4|uid-3|7", "4|5|4:1|4|uid-again|300" }));
    }

    void aFailureToReplaceEndsTheChangesWithFalse()
    {
        const LogCollector log;
        mFixture->execute({ "CREATE TRIGGER refuse BEFORE DELETE ON calendar "
                            "BEGIN SELECT RAISE(FAIL, 'refused'); END" });
        QVERIFY(
            !database()->calendarItemsChanges(Account, { meeting("4:3", "4", "uid-4") }, {}, {}, { "4:1" }));
        QVERIFY(log.contains(
            QtCriticalMsg, { "can't delete calendar items for account", "5", ". Error:", "refused" }));
        // Under the old key the reply comes again; with a second row the event would have two.
        QCOMPARE(*database()->localCalendarIds(Account, "4"), (QStringList { "uid-1", "uid-2" }));
    }

    void aFailureToDeleteEndsTheChangesWithFalse()
    {
        mFixture->execute({ "CREATE TRIGGER refuse BEFORE DELETE ON calendar "
                            "BEGIN SELECT RAISE(FAIL, 'refused'); END" });
        const LogCollector log;
        QVERIFY(!database()->calendarItemsChanges(Account, {}, {}, { "4:1" }, {}));
    }

    void aFolderIsCleared()
    {
        QVERIFY(database()->clearCalendarFolder(Account, "4"));
        QCOMPARE(rows(), QStringList { "3|6|4:1|4|uid-3|7" });
    }

private:
    QStringList rows() const { return mFixture->rows("SELECT * FROM calendar"); }

    std::unique_ptr<DatabaseFixture> mFixture;
};

FENNEL_REGISTER_TEST(EasDatabaseCalendarTest)
#include "easdatabasecalendartest.moc"
