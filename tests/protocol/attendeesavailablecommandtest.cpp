// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/attendeesavailablecommand.h"

#include "support/fakeaccount.h"
#include "support/logcollector.h"
#include "support/testmain.h"
#include "support/wbxmldocument.h"

#include <QtTest>

using namespace Wbxml;
using WbxmlDocument::document;
using WbxmlDocument::node;

namespace {

constexpr EasAccountId Account = 1;

const AttendeesAvailableCommand::Options options { { QStringLiteral("ann@example.com"),
                                                       QStringLiteral("bo@example.com") },
    QDateTime(QDate(2026, 5, 4), QTime(9, 0), Qt::OffsetFromUTC, 7200),
    QDateTime(QDate(2026, 5, 4), QTime(17, 30), Qt::UTC) };

class OpenedAvailability : public AttendeesAvailableCommand
{
public:
    OpenedAvailability()
        : AttendeesAvailableCommand(Account, nullptr, options)
    {
    }

    using AttendeesAvailableCommand::begin;
    using AttendeesAvailableCommand::commandName;
    using AttendeesAvailableCommand::texts;

    QString body()
    {
        FakeAccount account(Account);
        QByteArray bytes;
        return AttendeesAvailableCommand::encodeBody(account, &bytes) ? WbxmlDocument::outline(bytes)
                                                                      : QString();
    }

    bool read(const QByteArray &reply) { return AttendeesAvailableCommand::parseReply(nullptr, reply); }
};

} // namespace

/** A question about availability on the wire. */
class AttendeesAvailableCommandTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void peopleAndTimesAreSent()
    {
        OpenedAvailability command;
        QCOMPARE(command.body(),
            QStringLiteral("ResolveRecipients(To=ann@example.com,To=bo@example.com,Options(Availability("
                           "StartTime=2026-05-04T07:00:00.000Z,EndTime=2026-05-04T17:30:00.000Z)))"));
        QCOMPARE(command.commandName(), QStringLiteral("ResolveRecipients"));
        QCOMPARE(command.texts().received, "Result of AttendeesAvailable request ");
    }

    void theAnswerIsTakenOver()
    {
        namespace Tag = ResolveRecipients;
        LogCollector log;
        OpenedAvailability command;
        QVERIFY(command.read(document(node(Tag::ResolveRecipients,
            { node(Tag::Status, "1"),
                node(Tag::Response,
                    { node(Tag::To, "ann"), node(Tag::Status, "1"),
                        node(Tag::Recipient,
                            { node(Tag::DisplayName, "Ann"), node(Tag::EmailAddress, "ann@example.com"),
                                node(Tag::Availability,
                                    { node(Tag::Status, "1"), node(Tag::MergedFreeBusy, "02") }) }) }) }))));
        QCOMPARE(command.status(), 1);
        QCOMPARE(command.responseStatus(), 1);
        QCOMPARE(command.attendees().size(), 1);
        QCOMPARE(command.attendees().first().status, QStringLiteral("02"));
        QVERIFY(log.contains(QStringLiteral("Status: 1 Response status: 1")));
    }

    void aReplyThatCannotBeReadIsNoAnswer()
    {
        OpenedAvailability command;
        QVERIFY(!command.read({}));
        QVERIFY(!command.read("no document"));
    }

    void aCommandThatRunsDoesNotBeginAgain()
    {
        LogCollector log;
        OpenedAvailability command;
        QVERIFY(command.begin());
        command.start();
        QVERIFY(
            log.contains(QtCriticalMsg, { QStringLiteral("Cannot begin, probably already in progress") }));
    }
};

FENNEL_REGISTER_TEST(AttendeesAvailableCommandTest)
#include "attendeesavailablecommandtest.moc"
