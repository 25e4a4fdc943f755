// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/commandscene.h"
#include "client/exitstatus.h"
#include "client/stubdaemon.h"
#include "support/clientprocess.h"
#include "support/testmain.h"
#include "support/waiting.h"

#include <QJsonArray>
#include <QJsonObject>

/** When people are free, by command. */
class AvailabilityCommandTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<CommandScene> mScene;
    std::unique_ptr<StubDaemon> mDaemon;

    static QString local(const QDate &day, const QTime &time)
    {
        const QDateTime moment(day, time);
        return moment.toOffsetFromUtc(moment.offsetFromUtc()).toString(Qt::ISODate);
    }
    /** The call for a span in local times. */
    QString call(const QString &people, const QString &start, const QString &end) const
    {
        return QStringLiteral("attendeesAvailable %1 %2 %3 %4")
            .arg(QString::number(mScene->accountId()), people, start, end);
    }

private Q_SLOTS:
    void init()
    {
        mScene = std::make_unique<CommandScene>();
        QVERIFY(mScene->isReady());
        mDaemon = std::make_unique<StubDaemon>();
        QVERIFY(mDaemon->isServing());
        mDaemon->setAvailability({ "ann@example.com", "bo@example.com" }, { "Ann", "" }, { "0123", "" });
    }
    void cleanup()
    {
        mDaemon.reset();
        mScene.reset();
    }

    void peopleAreShownALineEach()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "availability", "ann@example.com", "Bo <bo@example.com>", "--from",
                     "2026-05-04T09:00", "--to", "2026-05-04T11:00" }),
            int(ExitSuccess));
        QCOMPARE(mDaemon->calls(),
            QStringList { call("ann@example.com\nBo <bo@example.com>", local(QDate(2026, 5, 4), QTime(9, 0)),
                local(QDate(2026, 5, 4), QTime(11, 0))) });
        QCOMPARE(client.output(),
            QByteArray("2026-05-04                10\n"
                       "Ann                     .~#o\n"
                       "bo@example.com          ????\n"
                       "\n"
                       ". free   ~ tentative   # busy   o out of office   ? not known\n"));
    }

    void programsGetStretchesOfTime()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "--json", "availability", "ann@example.com", "--from", "2026-05-04T09:00",
                     "--to", "2026-05-04T12:00" }),
            int(ExitSuccess));
        const QJsonArray people = client.json().object().value(QStringLiteral("people")).toArray();
        QCOMPARE(people.size(), 2);
        const QJsonObject ann = people.first().toObject();
        QCOMPARE(ann.value(QStringLiteral("email")).toString(), QStringLiteral("ann@example.com"));
        QCOMPARE(ann.value(QStringLiteral("availability")).toString(), QStringLiteral("0123"));
        QStringList periods;
        for (const QJsonValue &value : ann.value(QStringLiteral("periods")).toArray())
            periods.append(value.toObject().value(QStringLiteral("to")).toString().mid(11, 5) + ' '
                + value.toObject().value(QStringLiteral("state")).toString());
        QCOMPARE(periods,
            QStringList(
                { "09:30 free", "10:00 tentative", "10:30 busy", "11:00 out of office", "12:00 not known" }));
    }

    void withoutTimesItIsToday()
    {
        ClientProcess client;
        // Midnight may pass meanwhile.
        const QDate before = QDate::currentDate();
        QCOMPARE(client.run({ "availability", "ann@example.com" }), int(ExitSuccess));
        QStringList calls;
        for (const QDate &day : { before, QDate::currentDate() })
            calls.append(call("ann@example.com", local(day, {}), local(day.addDays(1), {})));
        QVERIFY2(calls.contains(mDaemon->calls().value(0)), qPrintable(mDaemon->calls().value(0)));
    }

    void timesLieOnHalfHours()
    {
        ClientProcess client;
        QCOMPARE(client.run({ "availability", "ann@example.com", "--from", "2026-05-04T09:10", "--to",
                     "2026-05-04T09:50" }),
            int(ExitSuccess));
        QCOMPARE(mDaemon->calls(),
            QStringList { call("ann@example.com", local(QDate(2026, 5, 4), QTime(9, 0)),
                local(QDate(2026, 5, 4), QTime(10, 0))) });
    }

    void whatMakesNoSenseIsNotAsked_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::newRow("reversed times") << QStringList { "a", "--from", "2026-05-02", "--to", "2026-05-01" };
        QTest::newRow("no people") << QStringList { "--from", "2026-05-02" };
        QTest::newRow("an unreadable time") << QStringList { "a", "--from", "soon" };
        QTest::newRow("years") << QStringList { "a", "--from", "2026-05-02", "--to", "2036-05-02" };
    }

    void whatMakesNoSenseIsNotAsked()
    {
        QFETCH(QStringList, options);
        ClientProcess client;
        QCOMPARE(client.run(QStringList { "availability" } + options), int(ExitUsage));
        QCOMPARE(mDaemon->calls(), QStringList());
    }

    void emptyListsAreAFailure()
    {
        mDaemon->setStatus(-3);
        ClientProcess client;
        QCOMPARE(client.run({ "availability", "ann@example.com" }), int(ExitFailure));
        QVERIFY2(client.errors().contains("tells nothing of these people"), client.errors());
        QVERIFY2(client.output().isEmpty(), client.output());
    }

    void whatIsToldBeforeTheIdentifierIsNotLost()
    {
        mDaemon->setHasty(true);
        ClientProcess client;
        QCOMPARE(client.run({ "availability", "ann@example.com" }), int(ExitSuccess));
        QVERIFY2(client.output().contains("Ann"), client.output());
    }

    void anInterruptCancels()
    {
        mDaemon->setStatus(StubDaemon::Open);
        ClientProcess client(ClientProcess::OnTerminal);
        client.start({ "availability", "ann@example.com" });
        QVERIFY(Waiting::until([&] { return !mDaemon->calls().isEmpty(); }, 60000));
        client.type("\003");
        QCOMPARE(client.waitForEnd(), int(ExitCancelled));
    }
};

FENNEL_REGISTER_TEST(AvailabilityCommandTest)
#include "availabilitycommandtest.moc"
