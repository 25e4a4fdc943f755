// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/commandscene.h"
#include "client/exitstatus.h"
#include "client/stubdaemon.h"
#include "support/clientprocess.h"
#include "support/testmain.h"
#include "support/waiting.h"

#include <QJsonObject>

/** The answers that a server gives in the user's absence, by command. */
class AwayCommandsTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<CommandScene> mScene;
    std::unique_ptr<StubDaemon> mDaemon;

    QString call(const char *name) const
    {
        return QStringLiteral("%1 %2").arg(QLatin1String(name)).arg(mScene->accountId());
    }
    static EasOofContainer away()
    {
        EasOofContainer state;
        state.setOofEnabled(true);
        state.setTimeRangeEnabled(true);
        state.setStartTime(QDateTime(QDate(2026, 5, 1), QTime(8, 0), Qt::UTC));
        state.setEndTime(QDateTime(QDate(2026, 5, 8), QTime(16, 0), Qt::UTC));
        state.setInternalMessage(QStringLiteral("On leave"));
        state.setExternalMessageEnabled(true);
        state.setExternalMessage(QStringLiteral("Away"));
        return state;
    }
    static QString fact(const ClientProcess &client, const char *key)
    {
        return client.json().object().value(QLatin1String(key)).toString();
    }
    static QDateTime moment(const ClientProcess &client, const char *key)
    {
        return QDateTime::fromString(fact(client, key), Qt::ISODate);
    }

private Q_SLOTS:
    void init()
    {
        mScene = std::make_unique<CommandScene>();
        QVERIFY(mScene->isReady());
        mDaemon = std::make_unique<StubDaemon>();
        QVERIFY(mDaemon->isServing());
    }
    void cleanup()
    {
        mDaemon.reset();
        mScene.reset();
    }

    void theSettingsAreShown()
    {
        mDaemon->setOof(away());
        ClientProcess client;
        QCOMPARE(client.run({ "--json", "away", "show" }), int(ExitSuccess));
        QCOMPARE(fact(client, "away"), QStringLiteral("for a time"));
        QCOMPARE(moment(client, "from"), away().startTime());
        QCOMPARE(moment(client, "to"), away().endTime());
        QCOMPARE(fact(client, "text"), QStringLiteral("On leave"));
        QCOMPARE(fact(client, "external"), QStringLiteral("known"));
        QCOMPARE(fact(client, "externalText"), QStringLiteral("Away"));
        QCOMPARE(client.run({ "away", "show", QString::number(mScene->accountId()) }), int(ExitSuccess));
        for (const char *words : { "for a time", "On leave", "known", "Away" })
            QVERIFY2(client.output().contains(words), client.output());
    }

    void nobodyIsAwayWhoHasSaidNothing()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "--json", "away", "show" }), int(ExitSuccess));
        QCOMPARE(fact(client, "away"), QStringLiteral("off"));
        QCOMPARE(fact(client, "external"), QStringLiteral("off"));
        QVERIFY(!client.json().object().contains(QStringLiteral("from")));
    }

    void anAbsenceIsSet()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "away", "set", "--from", "2026-05-01T09:00", "--to", "2026-05-08", "--message",
                     "On leave", "--external", "all", "--external-message", "Away" }),
            int(ExitSuccess));
        const EasOofContainer state = mDaemon->oof();
        QVERIFY(state.oofEnabled());
        QVERIFY(state.timeRangeEnabled());
        QCOMPARE(state.startTime(), QDateTime(QDate(2026, 5, 1), QTime(9, 0)));
        // The last day belongs to it.
        QCOMPARE(state.endTime(), QDateTime(QDate(2026, 5, 9), QTime(0, 0)));
        QCOMPARE(state.internalMessage(), QStringLiteral("On leave"));
        QVERIFY(state.externalMessageEnabled());
        QVERIFY(state.externalMessageToAnyone());
        QCOMPARE(state.externalMessage(), QStringLiteral("Away"));
        QCOMPARE(mDaemon->calls(), QStringList({ call("getOofState"), call("setOofState") }));
        QVERIFY2(client.output().contains("from 2026-05-01 09:00 to 2026-05-09 00:00"), client.output());
    }

    void whatIsNotNamedStaysButForTheTimes()
    {
        mDaemon->setOof(away());
        ClientProcess client;
        QCOMPARE(client.run({ "--json", "away", "set" }), int(ExitSuccess));
        const EasOofContainer state = mDaemon->oof();
        QVERIFY(state.oofEnabled());
        QVERIFY(!state.timeRangeEnabled());
        QCOMPARE(state.internalMessage(), QStringLiteral("On leave"));
        QVERIFY(state.externalMessageEnabled());
        QVERIFY(!state.externalMessageToAnyone());
        QCOMPARE(state.externalMessage(), QStringLiteral("Away"));
        QCOMPARE(fact(client, "away"), QStringLiteral("on"));
    }

    void textsComeFromFilesAndStandardInput()
    {
        const QString file = mScene->path(QStringLiteral("text"));
        QFile text(file);
        QVERIFY(text.open(QIODevice::WriteOnly) && text.write("Grüße\nAnn\n") > 0);
        text.close();
        ClientProcess client;
        QCOMPARE(client.run({ "away", "set", "--message-file", file, "--external", "known",
                                "--external-message-file", "-" },
                     "Away\n"),
            int(ExitSuccess));
        QCOMPARE(mDaemon->oof().internalMessage(), QStringLiteral("Grüße\nAnn"));
        QCOMPARE(mDaemon->oof().externalMessage(), QStringLiteral("Away"));
    }

    void withAnEndAloneItBeginsNow()
    {
        ClientProcess client;
        const QDateTime before = QDateTime::currentDateTime();
        QCOMPARE(
            client.run({ "away", "set", "--to", "2099-01-01T00:00", "--message", "x" }), int(ExitSuccess));
        const QDateTime start = mDaemon->oof().startTime();
        QVERIFY(start.secsTo(before) <= 1 && start <= QDateTime::currentDateTime());
    }

    void whatMakesNoSenseIsNotSent_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QByteArray>("error");
        const auto row = [](const char *name, const QStringList &options, const char *error) {
            QTest::newRow(name) << options << QByteArray(error);
        };
        row("no text", {}, "--message");
        row("an unreadable time", { "--to", "soon", "--message", "x" }, "--to needs a time");
        row("reversed times", { "--from", "2026-05-02", "--to", "2026-05-01", "--message", "x" },
            "behind the start");
        row("a start alone", { "--from", "2026-05-02", "--message", "x" }, "--from needs --to");
        row("a text twice", { "--message", "x", "--message-file", "-" }, "exclude each other");
        row("no such file", { "--message-file", "/does/not/exist" }, "cannot read");
        row("no such people", { "--message", "x", "--external", "some" }, "--external");
        row("no text for other people", { "--message", "x", "--external", "all" }, "--external-message");
        row("a text for nobody", { "--message", "x", "--external-message", "y" }, "--external known");
    }

    void whatMakesNoSenseIsNotSent()
    {
        QFETCH(QStringList, options);
        QFETCH(QByteArray, error);
        ClientProcess client;
        QCOMPARE(client.run(QStringList { "away", "set" } + options), int(ExitUsage));
        QVERIFY2(client.errors().contains(error), client.errors());
        QVERIFY(!mDaemon->calls().contains(call("setOofState")));
    }

    void settingsThatCannotBeReadAreNotOverwritten()
    {
        mDaemon->setStatus(3);
        ClientProcess client;
        QCOMPARE(client.run({ "away", "set", "--message", "x" }), int(ExitFailure));
        QCOMPARE(mDaemon->calls(), QStringList { call("getOofState") });
    }

    void anAbsenceIsOver()
    {
        mDaemon->setOof(away());
        ClientProcess client;
        QCOMPARE(client.run({ "away", "off" }), int(ExitSuccess));
        QVERIFY(!mDaemon->oof().oofEnabled());
        QVERIFY(!mDaemon->oof().externalMessageEnabled());
        QVERIFY2(client.output().contains("no longer answers"), client.output());
    }

    void aRefusalEndsTheCommand()
    {
        mDaemon->setStatus(-8);
        ClientProcess client;
        for (const char *verb : { "show", "off" }) {
            QCOMPARE(client.run({ "away", verb }), int(ExitFailure));
            QVERIFY2(client.errors().contains("-8"), client.errors());
        }
    }

    void textsOfSeveralLinesAreOneLineInWatch()
    {
        ClientProcess client;
        client.start({ "watch" });
        QVERIFY2(client.waitForOutput("watching"), client.errors());
        Q_EMIT mDaemon->getOofFinished(mScene->accountId(), 7, true, false, {}, {},
            "Away\n10:00  requestFinished 1 7", false, false, {});
        QVERIFY2(client.waitForOutput("Away 10:00 requestFinished 1 7"), client.output());
    }

    void anInterruptCancels()
    {
        mDaemon->setStatus(StubDaemon::Open);
        ClientProcess client(ClientProcess::OnTerminal);
        client.start({ "away", "show" });
        QVERIFY(Waiting::until([&] { return mDaemon->calls().contains(call("getOofState")); }, 60000));
        client.type("\003");
        QCOMPARE(client.waitForEnd(), int(ExitCancelled));
    }
};

FENNEL_REGISTER_TEST(AwayCommandsTest)
#include "awaycommandstest.moc"
