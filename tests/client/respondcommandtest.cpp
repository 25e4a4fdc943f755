// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/commandscene.h"
#include "client/exitstatus.h"
#include "client/mailscene.h"
#include "client/stubdaemon.h"
#include "support/clientprocess.h"
#include "support/testmain.h"

#include <QJsonObject>
#include <qmailaccount.h>
#include <qmailstore.h>

namespace {

/** A series in May 2024, in the zone of the device. */
const QByteArray Invitation =
    "From: Assistant <assistant@example.com>\r\nTo: user@example.com\r\nSubject: FW: Plans\r\n"
    "MIME-Version: 1.0\r\nContent-Type: multipart/alternative; boundary=x\r\n\r\n--x\r\n"
    "Content-Type: text/plain\r\n\r\nShall we?\r\n--x\r\nContent-Type: text/calendar; method=REQUEST\r\n\r\n"
    "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nMETHOD:REQUEST\r\nBEGIN:VEVENT\r\nUID:plans@example.com\r\n"
    "DTSTAMP:20240401T080000Z\r\nDTSTART:20240502T080000Z\r\nDTEND:20240502T090000Z\r\nSUMMARY:Plans\r\n"
    "RRULE:FREQ=WEEKLY;COUNT=4\r\nORGANIZER;CN=Olga Organizer:mailto:olga@example.com\r\n"
    "END:VEVENT\r\nEND:VCALENDAR\r\n--x--\r\n";

/** 2024-05-09T08:00:00Z */
const QString SecondWeek = QStringLiteral("1715241600");

} // namespace

/** Answers on the command line: what the daemon is told, and what the organizer is to get. */
class RespondCommandTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<CommandScene> mScene;
    std::unique_ptr<StubDaemon> mDaemon;
    QMailFolderId mInbox;
    QMailFolderId mOutbox;

    QString addMessage(const QByteArray &mime) const
    {
        QMailMessage message = QMailMessage::fromRfc2822(mime);
        message.setParentAccountId(QMailAccountId(mScene->accountId()));
        message.setParentFolderId(mInbox);
        return QMailStore::instance()->addMessage(&message) ? QString::number(message.id().toULongLong())
                                                            : QString();
    }
    QMailMessage reply() const
    {
        return QMailMessage(
            QMailStore::instance()->queryMessages(QMailMessageKey::parentFolderId(mOutbox)).value(0));
    }
    int outgoing() const
    {
        return QMailStore::instance()->countMessages(QMailMessageKey::parentFolderId(mOutbox));
    }
    QString account() const { return QString::number(mScene->accountId()); }
    QStringList answers() const { return mDaemon->calls().filter(QStringLiteral("meetingResponse")); }

private Q_SLOTS:
    void init()
    {
        mScene = std::make_unique<CommandScene>();
        QVERIFY(mScene->isReady());
        mDaemon = std::make_unique<StubDaemon>();
        QVERIFY(mDaemon->isServing());
        const MailScene mail(mScene->accountId());
        QTRY_VERIFY(QMailAccount(QMailAccountId(mScene->accountId())).id().isValid());
        mInbox = mail.addFolder(QStringLiteral("Inbox"));
        mOutbox = mail.addFolder(QStringLiteral("Outbox"));
        QVERIFY(mail.setStandardFolder(QMailFolder::OutboxFolder, mOutbox));
        QVERIFY(mScene->addCalendar(QStringLiteral("Calendar")));
    }
    void cleanup()
    {
        mDaemon.reset();
        mScene.reset();
    }

    void aMessageIsAnswered_data()
    {
        QTest::addColumn<QString>("word");
        QTest::addColumn<int>("response");
        QTest::addColumn<QString>("subject");
        QTest::newRow("accept") << "accept" << 1 << "Accepted: Plans";
        QTest::newRow("tentative") << "tentative" << 2 << "Tentative: Plans";
        QTest::newRow("decline") << "decline" << 3 << "Declined: Plans";
    }
    void aMessageIsAnswered()
    {
        QFETCH(QString, word);
        QFETCH(int, response);
        QFETCH(QString, subject);
        const QString message = addMessage(Invitation);
        ClientProcess client;
        QCOMPARE(
            client.run({ "--json", "respond", message, word, "--comment", "See you" }), int(ExitSuccess));
        const QMailMessage mail = reply();
        QCOMPARE(mail.subject(), subject);
        QCOMPARE(mail.to().size(), 1);
        QCOMPARE(mail.to().first().address(), QStringLiteral("olga@example.com"));
        QCOMPARE(mail.body().data(), QStringLiteral("See you"));
        QCOMPARE(answers(),
            QStringList({ QStringLiteral("meetingResponse %1 %2 %3 0 %4   See you")
                              .arg(account(), message)
                              .arg(response)
                              .arg(mail.id().toULongLong()) }));
        QVERIFY2(mDaemon->calls().contains(QStringLiteral("syncService %1 2").arg(account())),
            "the calendar is brought in step");
        QCOMPARE(client.json().object().value(QStringLiteral("answer")).toString(), word);
    }

    void anOccurrenceIsAnswered()
    {
        const QString message = addMessage(Invitation);
        ClientProcess client;
        QCOMPARE(
            client.run({ "respond", message, "decline", "--occurrence", "2024-05-09" }), int(ExitSuccess));
        QCOMPARE(answers().size(), 1);
        QVERIFY2(answers().first().contains(" 3 " + SecondWeek + " "), qPrintable(answers().first()));
        QCOMPARE(
            client.run({ "respond", message, "decline", "--occurrence", "2024-05-10" }), int(ExitNotFound));
        mDaemon->setProtocolVersion(0x1400);
        QCOMPARE(
            client.run({ "respond", message, "decline", "--occurrence", "2024-05-09" }), int(ExitFailure));
        QVERIFY(client.errors().contains("one occurrence alone"));
        QCOMPARE(answers().size(), 1);
        QCOMPARE(outgoing(), 1);
    }

    void anEventIsAnswered()
    {
        EventStore store(mScene->accountId());
        QVERIFY(store.open());
        const KCalendarCore::Event::Ptr event(new KCalendarCore::Event);
        event->setSummary(QStringLiteral("Plans"));
        event->setDtStart(QDateTime(QDate(2024, 5, 2), QTime(8, 0), Qt::UTC));
        event->setDtEnd(QDateTime(QDate(2024, 5, 2), QTime(9, 0), Qt::UTC));
        event->setOrganizer(
            KCalendarCore::Person(QStringLiteral("Olga"), QStringLiteral("olga@example.com")));
        QVERIFY(store.add(event, store.calendar(QString())) && store.save());
        ClientProcess client;
        QCOMPARE(client.run({ "respond", mScene->event("Plans"), "accept" }), int(ExitSuccess));
        QCOMPARE(answers(),
            QStringList({ QStringLiteral("meetingResponseCalendar %1 %2 1 0 %3   ")
                              .arg(account(), event->uid())
                              .arg(reply().id().toULongLong()) }));
        QCOMPARE(reply().to().value(0).address(), QStringLiteral("olga@example.com"));
    }

    void anotherTimeIsProposed()
    {
        const QString message = addMessage(Invitation);
        mDaemon->setProtocolVersion(0x1601);
        ClientProcess client;
        QCOMPARE(client.run({ "respond", message, "tentative", "--propose", "2024-05-03T10:00:00Z",
                     "2024-05-03T11:00:00Z" }),
            int(ExitSuccess));
        QVERIFY2(answers().first().contains("2024-05-03T10:00:00Z 2024-05-03T11:00:00Z"),
            qPrintable(answers().first()));
        mDaemon->setProtocolVersion(0x1401);
        QCOMPARE(client.run({ "respond", message, "tentative", "--propose", "2024-05-03T10:00:00Z",
                     "2024-05-03T11:00:00Z" }),
            int(ExitFailure));
        QVERIFY(client.errors().contains("takes no proposals"));
        QCOMPARE(answers().size(), 1);
    }

    void wrongArgumentsAreRefused_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exit");
        QTest::newRow("no answer") << QStringList { "respond", "1" } << int(ExitUsage);
        QTest::newRow("an unknown answer") << QStringList { "respond", "1", "perhaps" } << int(ExitUsage);
        QTest::newRow("a proposal without an end")
            << QStringList { "respond", "1", "accept", "--propose", "2024-05-03T10:00" } << int(ExitUsage);
        QTest::newRow("an end without a proposal")
            << QStringList { "respond", "1", "accept", "2024-05-03T10:00" } << int(ExitUsage);
        QTest::newRow("a proposal that ends before it begins")
            << QStringList { "respond", "1", "accept", "--propose", "2024-05-03T10:00", "2024-05-03T09:00" }
            << int(ExitUsage);
        QTest::newRow("a proposal of a day") << QStringList { "respond", "1", "accept", "--propose",
            "2024-05-03", "2024-05-04" } << int(ExitUsage);
        QTest::newRow("no such message")
            << QStringList { "respond", "987654", "accept" } << int(ExitNotFound);
    }
    void wrongArgumentsAreRefused()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, exit);
        ClientProcess client;
        QCOMPARE(client.run(arguments), exit);
        QVERIFY(answers().isEmpty());
        QCOMPARE(outgoing(), 0);
    }

    void whatIsNoInvitationIsNotAnswered()
    {
        const QString message = addMessage("From: a@example.com\r\nSubject: Hello\r\n\r\nHello\r\n");
        ClientProcess client;
        QCOMPARE(client.run({ "respond", message, "accept" }), int(ExitNotFound));
        QVERIFY(answers().isEmpty());
    }

    void aRefusedAnswerLeavesNoReplyBehind()
    {
        mDaemon->setStatus(-2);
        ClientProcess client;
        QCOMPARE(client.run({ "respond", addMessage(Invitation), "accept" }), int(ExitFailure));
        QCOMPARE(answers().size(), 1);
        QCOMPARE(outgoing(), 0);
    }
};

FENNEL_REGISTER_TEST(RespondCommandTest)
#include "respondcommandtest.moc"
