// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/oofcommand.h"

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

class OpenedOof : public OofCommand
{
public:
    explicit OpenedOof(Action action, const EasOofContainer &state = {})
        : OofCommand(Account, nullptr, action)
    {
        setOofState(state);
    }

    using OofCommand::commandName;
    using OofCommand::texts;

    QString body()
    {
        FakeAccount account(Account);
        QByteArray bytes;
        return OofCommand::encodeBody(account, &bytes) ? WbxmlDocument::outline(bytes) : QString();
    }

    bool read(const QByteArray &reply) { return OofCommand::parseReply(nullptr, reply); }
};

EasOofContainer away()
{
    EasOofContainer state;
    state.setOofEnabled(true);
    state.setInternalMessage(QStringLiteral("On leave"));
    state.setExternalMessage(QStringLiteral("Away"));
    return state;
}

WbxmlNode message(Token wrapper, const char *enabled, const char *text)
{
    return node(Settings::OofMessage,
        { node(wrapper), node(Settings::Enabled, enabled), node(Settings::ReplyMessage, text),
            node(Settings::BodyType, "Text") });
}

QByteArray reply(const QVector<WbxmlNode> &settings)
{
    return document(node(Settings::Settings,
        { node(Settings::Status, "1"),
            node(Settings::Oof, { node(Settings::Status, "1"), node(Settings::Get, settings) }) }));
}

} // namespace

/** Out-of-office settings on the wire. */
class OofCommandTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aReadAsksForText()
    {
        OpenedOof command(OofCommand::Get);
        QCOMPARE(command.body(), QStringLiteral("Settings(Oof(Get(BodyType=Text)))"));
        QCOMPARE(command.commandName(), QStringLiteral("Settings"));
        QCOMPARE(command.texts().received, "Received OOF response command reply:");
    }

    void withoutExternalAnswersTheirTextIsNotSent()
    {
        QCOMPARE(OpenedOof(OofCommand::Set, away()).body(),
            QStringLiteral("Settings(Oof(Set(OofState=1,"
                           "OofMessage(AppliesToInternal,Enabled=1,ReplyMessage=On leave,BodyType=Text),"
                           "OofMessage(AppliesToExternalKnown,Enabled=0),"
                           "OofMessage(AppliesToExternalUnknown,Enabled=0))))"));
    }

    void externalAnswersGoToKnownPeopleOrToAnyone_data()
    {
        QTest::addColumn<bool>("anyone");
        QTest::newRow("known people") << false;
        QTest::newRow("anyone") << true;
    }

    void externalAnswersGoToKnownPeopleOrToAnyone()
    {
        QFETCH(bool, anyone);
        EasOofContainer state = away();
        state.setExternalMessageEnabled(true);
        state.setExternalMessageToAnyone(anyone);
        const QString answer = QStringLiteral("Enabled=1,ReplyMessage=Away,BodyType=Text)");
        QCOMPARE(OpenedOof(OofCommand::Set, state).body(),
            QStringLiteral("Settings(Oof(Set(OofState=1,"
                           "OofMessage(AppliesToInternal,Enabled=1,ReplyMessage=On leave,BodyType=Text),"
                           "OofMessage(AppliesToExternalKnown,%1,OofMessage(AppliesToExternalUnknown,%2)))")
                .arg(answer, anyone ? answer : QStringLiteral("Enabled=0)")));
    }

    void anyoneAloneIsNobody()
    {
        EasOofContainer state = away();
        state.setExternalMessageToAnyone(true);
        QVERIFY(OpenedOof(OofCommand::Set, state)
                    .body()
                    .contains(QStringLiteral("OofMessage(AppliesToExternalUnknown,Enabled=0)")));
    }

    void switchedOffTheThreeMessagesGoOutToo()
    {
        EasOofContainer state = away();
        state.setOofEnabled(false);
        state.setTimeRangeEnabled(true);
        QCOMPARE(OpenedOof(OofCommand::Set, state).body(),
            QStringLiteral("Settings(Oof(Set(OofState=0,OofMessage(AppliesToInternal,Enabled=0),"
                           "OofMessage(AppliesToExternalKnown,Enabled=0),"
                           "OofMessage(AppliesToExternalUnknown,Enabled=0))))"));
    }

    void timesGoOutInUtc()
    {
        EasOofContainer state = away();
        state.setTimeRangeEnabled(true);
        state.setStartTime(QDateTime(QDate(2026, 5, 1), QTime(9, 0), Qt::OffsetFromUTC, 7200));
        state.setEndTime(QDateTime(QDate(2026, 5, 8), QTime(17, 0), Qt::UTC));
        QVERIFY(
            OpenedOof(OofCommand::Set, state)
                .body()
                .startsWith(QStringLiteral("Settings(Oof(Set(OofState=2,StartTime=2026-05-01T07:00:00.000Z,"
                                           "EndTime=2026-05-08T17:00:00.000Z,OofMessage(")));
    }

    void aReadIsTakenOver()
    {
        OpenedOof command(OofCommand::Get);
        QVERIFY(command.read(
            reply({ node(Settings::OofState, "2"), node(Settings::StartTime, "2026-05-01T08:00:00.000Z"),
                node(Settings::EndTime, "2026-05-08T16:30:00.000Z"),
                message(Settings::AppliesToInternal, "1", "On leave"),
                message(Settings::AppliesToExternalKnown, "1", "Known"),
                message(Settings::AppliesToExternalUnknown, "1", "Unknown") })));
        QCOMPARE(command.status(), 1);
        const EasOofContainer state = command.getOofState();
        QVERIFY(state.oofEnabled());
        QVERIFY(state.timeRangeEnabled());
        QCOMPARE(state.startTime(), QDateTime(QDate(2026, 5, 1), QTime(8, 0), Qt::UTC));
        QCOMPARE(state.endTime(), QDateTime(QDate(2026, 5, 8), QTime(16, 30), Qt::UTC));
        QVERIFY(state.internalMessageEnabled());
        QCOMPARE(state.internalMessage(), QStringLiteral("On leave"));
        QVERIFY(state.externalMessageEnabled());
        QVERIFY(state.externalMessageToAnyone());
        QCOMPARE(state.externalMessage(), QStringLiteral("Unknown"));
    }

    void onWithoutTimesIsNotForATime()
    {
        OpenedOof command(OofCommand::Get);
        QVERIFY(command.read(reply({ node(Settings::OofState, "1") })));
        QVERIFY(command.getOofState().oofEnabled());
        QVERIFY(!command.getOofState().timeRangeEnabled());
        QVERIFY(!command.getOofState().externalMessageEnabled());
        QVERIFY(!command.getOofState().externalMessageToAnyone());
    }

    void anAnswerThatIsOffDoesNotCount()
    {
        OpenedOof command(OofCommand::Get);
        QVERIFY(command.read(
            reply({ node(Settings::OofState, "1"), message(Settings::AppliesToInternal, "0", "On leave"),
                message(Settings::AppliesToExternalKnown, "1", "Known"),
                message(Settings::AppliesToExternalUnknown, "0", "Unknown") })));
        const EasOofContainer state = command.getOofState();
        QVERIFY(!state.internalMessageEnabled());
        QCOMPARE(state.internalMessage(), QStringLiteral("On leave"));
        QVERIFY(state.externalMessageEnabled());
        QVERIFY(!state.externalMessageToAnyone());
        QCOMPARE(state.externalMessage(), QStringLiteral("Known"));
    }

    void theTextForKnownPeopleDoesNotReplaceTheOther()
    {
        OpenedOof command(OofCommand::Get);
        QVERIFY(command.read(reply({ message(Settings::AppliesToExternalUnknown, "1", "Unknown"),
            message(Settings::AppliesToExternalKnown, "1", "Known") })));
        QCOMPARE(command.getOofState().externalMessage(), QStringLiteral("Unknown"));
    }

    void anAnswerForNoGroupIsLogged()
    {
        LogCollector log;
        OpenedOof command(OofCommand::Get);
        QVERIFY(command.read(reply({ node(Settings::OofMessage, { node(Settings::Enabled, "1") }) })));
        QVERIFY(log.contains(QStringLiteral("We received unexpected type of OoF message")));
    }

    void aSuccessWithoutSettingsIsNoAnswerToARead()
    {
        LogCollector log;
        const QByteArray bare = document(node(Settings::Settings,
            { node(Settings::Status, "1"), node(Settings::Oof, { node(Settings::Status, "1") }) }));
        QVERIFY(!OpenedOof(OofCommand::Get).read(bare));
        QVERIFY(log.contains(QStringLiteral("Failed to parse OOF command response!")));
        QVERIFY(OpenedOof(OofCommand::Set).read(bare));
        QVERIFY(log.contains(QStringLiteral("Successfully parsed OOF command response!")));
    }

    void aWriteKeepsWhatWasWritten()
    {
        OpenedOof command(OofCommand::Set, away());
        QVERIFY(command.read(document(node(Settings::Settings, { node(Settings::Status, "1") }))));
        QCOMPARE(command.getOofState().internalMessage(), QStringLiteral("On leave"));
    }
};

FENNEL_REGISTER_TEST(OofCommandTest)
#include "oofcommandtest.moc"
