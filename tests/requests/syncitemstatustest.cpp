// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/syncitemstatus.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QtTest>

using SyncItemStatus::Operation;
using SyncItemStatus::Outcome;

Q_DECLARE_METATYPE(SyncItemStatus::Operation)
Q_DECLARE_METATYPE(SyncItemStatus::Outcome)

/** @short What the server's answer to one uploaded item means, row by row. */
class SyncItemStatusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aStatusMeansAnOutcome_data();
    void aStatusMeansAnOutcome();
    void successIsSilent();
};

void SyncItemStatusTest::aStatusMeansAnOutcome_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<uint>("status");
    QTest::addColumn<Outcome>("outcome");
    QTest::addColumn<QString>("line");

    struct Row
    {
        const char *name;
        Operation operation;
        uint status;
        Outcome outcome;
        const char *line;
    };
    const Row rows[] = {
        { "a mail change with a protocol error goes out again", Operation::MailChange, 4,
            Outcome::Unacknowledged, "protocol error for item" },
        { "a mail delete with a protocol error goes out again", Operation::MailDelete, 4,
            Outcome::Unacknowledged, "protocol error for item" },
        { "a mail change that does not convert goes out again", Operation::MailChange, 6,
            Outcome::Unacknowledged, "server-client conversation error for item:" },
        { "a mail delete that does not convert is done", Operation::MailDelete, 6, Outcome::Acknowledged,
            "server-client conversation error for item:" },
        { "a mail change that lost a conflict goes out again", Operation::MailChange, 7,
            Outcome::Unacknowledged, "client-server conflict. Server wins for item:" },
        { "a mail delete that lost a conflict goes out again", Operation::MailDelete, 7,
            Outcome::Unacknowledged, "client-server conflict. Server wins for item:" },
        { "a change of mail that is gone goes out again", Operation::MailChange, 8, Outcome::Unacknowledged,
            "object not found error for item:" },
        { "a delete of mail that is gone is done", Operation::MailDelete, 8, Outcome::Acknowledged,
            "object not found error for item:" },
        { "a full mailbox stops mail", Operation::MailChange, 9, Outcome::StorageFull,
            "sync command can't be completed for item:" },
        { "an incomplete mail change repeats the collection", Operation::MailChange, 13,
            Outcome::RetryCollection, "Sync command request is not complete for item:" },
        { "an incomplete mail delete repeats the collection", Operation::MailDelete, 13,
            Outcome::RetryCollection, "Sync command request is not complete for item:" },
        { "an unknown status of mail goes out again", Operation::MailChange, 99, Outcome::Unacknowledged,
            "unhandled item status" },
        { "a refused new event fails", Operation::CalendarAdd, 4, Outcome::Failed,
            "Adding calendar item failed, status:" },
        { "a refused changed event fails", Operation::CalendarChange, 7, Outcome::Failed,
            "Updating calendar item failed, status:" },
        { "a deleted event that is gone is as good as deleted", Operation::CalendarDelete, 8, Outcome::Gone,
            "Deleting calendar item failed, status:" },
        { "an incomplete event fails", Operation::CalendarAdd, 13, Outcome::Failed,
            "Adding calendar item failed, status:" },
        { "a full mailbox stops events", Operation::CalendarAdd, 9, Outcome::StorageFull,
            "sync command can't be completed for item:" },
        { "an unknown status of an event is told", Operation::CalendarAdd, 99, Outcome::Unacknowledged,
            "Unhandled item status" },
        { "a contact change that lost a conflict is done", Operation::ContactChange, 7, Outcome::Acknowledged,
            "client-server conflict. Server wins" },
        { "a new contact in conflict is unhandled", Operation::ContactAdd, 7, Outcome::Unacknowledged,
            "Unhandled item status" },
        { "a deleted contact in conflict fails", Operation::ContactDelete, 7, Outcome::Failed,
            "Deleting contact item failed, status:" },
        { "a refused new contact fails", Operation::ContactAdd, 6, Outcome::Failed,
            "Adding contact item failed, status:" },
        { "a refused changed contact fails", Operation::ContactChange, 8, Outcome::Failed,
            "Updating contact item failed, status:" },
        { "a new contact with a protocol error fails", Operation::ContactAdd, 4, Outcome::Failed,
            "Adding contact item failed, status:" },
        { "a new contact that is not found fails", Operation::ContactAdd, 8, Outcome::Failed,
            "Adding contact item failed, status:" },
        { "a full mailbox stops new contacts", Operation::ContactAdd, 9, Outcome::StorageFull,
            "sync command can't be completed for item:" },
        { "an incomplete new contact fails", Operation::ContactAdd, 13, Outcome::Failed,
            "Adding contact item failed, status:" },
        { "a changed contact with a protocol error fails", Operation::ContactChange, 4, Outcome::Failed,
            "Updating contact item failed, status:" },
        { "a changed contact that does not convert fails", Operation::ContactChange, 6, Outcome::Failed,
            "Updating contact item failed, status:" },
        { "a full mailbox stops changed contacts", Operation::ContactChange, 9, Outcome::StorageFull,
            "sync command can't be completed for item:" },
        { "an incomplete changed contact fails", Operation::ContactChange, 13, Outcome::Failed,
            "Updating contact item failed, status:" },
        { "a deleted contact with a protocol error fails", Operation::ContactDelete, 4, Outcome::Failed,
            "Deleting contact item failed, status:" },
        { "a deleted contact that does not convert fails", Operation::ContactDelete, 6, Outcome::Failed,
            "Deleting contact item failed, status:" },
        { "a deleted contact that is gone is as good as deleted", Operation::ContactDelete, 8, Outcome::Gone,
            "Deleting contact item failed, status:" },
        { "an incomplete deleted contact fails", Operation::ContactDelete, 13, Outcome::Failed,
            "Deleting contact item failed, status:" },
        { "a full mailbox stops contacts", Operation::ContactDelete, 9, Outcome::StorageFull,
            "sync command can't be completed for item:" },
    };
    for (const Row &row : rows)
        QTest::newRow(row.name) << row.operation << row.status << row.outcome
                                << QString::fromLatin1(row.line);
}

void SyncItemStatusTest::aStatusMeansAnOutcome()
{
    QFETCH(Operation, operation);
    QFETCH(uint, status);
    QFETCH(Outcome, outcome);
    QFETCH(QString, line);
    LogCollector log;
    QCOMPARE(SyncItemStatus::outcome(operation, status, QStringLiteral("1:7"), QStringLiteral("7")), outcome);
    QVERIFY2(log.contains(line), qPrintable(log.texts().join(QLatin1Char('\n'))));
}

void SyncItemStatusTest::successIsSilent()
{
    LogCollector log;
    for (const uint status : { 0u, 1u })
        QCOMPARE(SyncItemStatus::outcome(Operation::MailChange, status, QStringLiteral("1:7")),
            Outcome::Acknowledged);
    QCOMPARE(log.texts(), QStringList());
}

FENNEL_REGISTER_TEST(SyncItemStatusTest)
#include "syncitemstatustest.moc"
