// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/commandscene.h"
#include "client/exitstatus.h"
#include "support/testmain.h"

using KCalendarCore::Event;

/** Events as the command line shows and changes them. */
class EventCommandsTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<CommandScene> mScene;

    static int run(const QString &line) { return CommandScene::run(line.split(QLatin1Char('|'))); }
    static Event::Ptr load(EventStore &store, const QString &id)
    {
        return store.open() ? store.find(id) : Event::Ptr();
    }

private Q_SLOTS:
    void init()
    {
        mScene = std::make_unique<CommandScene>();
        QVERIFY(mScene->isReady());
        QVERIFY(mScene->addCalendar(QStringLiteral("Calendar")));
        // Of another account, and so not to be seen.
        QVERIFY(mScene->addCalendar(QStringLiteral("Foreign"), 4711));
    }
    void cleanup() { mScene.reset(); }

    void anEventIsAddedWhole()
    {
        QCOMPARE(
            CommandScene::run("event|add|Meeting|--start|2024-05-02 09:30|--duration|45|--zone|Europe/Berlin|"
                              "--location|Raum 1|--note|Grüße|--category|Red|--category|Blue|--reminder|15|"
                              "--attendee|b@example.com|--attendee|c@example.com"),
            int(ExitSuccess));
        QCOMPARE(mScene->may(), QStringList(QStringLiteral("02 07:30 Meeting")));
        EventStore store(mScene->accountId());
        const Event::Ptr event = load(store, mScene->event(QStringLiteral("Meeting")));
        QVERIFY(event);
        QCOMPARE(event->dtStart(), QDateTime(QDate(2024, 5, 2), QTime(9, 30), QTimeZone("Europe/Berlin")));
        QCOMPARE(event->dtStart().secsTo(event->dtEnd()), qint64(45 * 60));
        QCOMPARE(event->location(), QStringLiteral("Raum 1"));
        QCOMPARE(event->description(), QStringLiteral("Grüße"));
        QCOMPARE(event->categories(), (QStringList { QStringLiteral("Red"), QStringLiteral("Blue") }));
        QCOMPARE(event->alarms().size(), 1);
        QCOMPARE(event->alarms().first()->startOffset().asSeconds(), -15 * 60);
        QCOMPARE(event->attendees().size(), 3); // the store lists the organizer as well
        QCOMPARE(event->organizer().email(), QStringLiteral("alice@example.com"));
        QCOMPARE(store.calendarName(event), QStringLiteral("Calendar"));
    }

    void anEventWithoutAnEndLastsAnHour()
    {
        QCOMPARE(CommandScene::run("event|add|Plain|--start|2024-05-02T10:00"), int(ExitSuccess));
        EventStore store(mScene->accountId());
        const Event::Ptr event = load(store, mScene->event(QStringLiteral("Plain")));
        QVERIFY(event && !event->allDay());
        QCOMPARE(event->dtStart().secsTo(event->dtEnd()), qint64(3600));
        // Who adds it is busy then.
        QCOMPARE(event->status(), KCalendarCore::Incidence::StatusConfirmed);
    }

    void aStartThatIsADayLastsWholeDays()
    {
        QCOMPARE(
            CommandScene::run("event|add|Holiday|--start|2024-05-09|--end|2024-05-11"), int(ExitSuccess));
        QCOMPARE(CommandScene::run("event|add|Day|--start|2024-05-20"), int(ExitSuccess));
        EventStore store(mScene->accountId());
        const Event::Ptr holiday = load(store, mScene->event(QStringLiteral("Holiday")));
        QVERIFY(holiday && holiday->allDay());
        QCOMPARE(holiday->status(), KCalendarCore::Incidence::StatusNone);
        QCOMPARE(holiday->dtStart().date(), QDate(2024, 5, 9));
        QCOMPARE(holiday->dtEnd().date(), QDate(2024, 5, 11));
        const Event::Ptr day = store.find(mScene->event(QStringLiteral("Day")));
        QCOMPARE(day->dtEnd().date(), QDate(2024, 5, 20));
    }

    void aSeriesRepeats_data()
    {
        QTest::addColumn<QString>("rule");
        QTest::addColumn<QString>("days");
        QTest::newRow("daily until") << "daily|--until|2024-05-04"
                                     << "02 03 04";
        QTest::newRow("daily count") << "daily|--every|2|--count|3"
                                     << "02 04 06";
        QTest::newRow("weekly") << "weekly|--count|10"
                                << "02 09 16 23 30";
        QTest::newRow("monthly") << "monthly|--count|2"
                                 << "02";
        QTest::newRow("yearly") << "yearly"
                                << "02";
        QTest::newRow("never") << "never"
                               << "02";
    }

    void aSeriesRepeats()
    {
        QFETCH(QString, rule);
        QFETCH(QString, days);
        QCOMPARE(
            run(QStringLiteral("event|add|S|--start|2024-05-02 10:00|--repeat|") + rule), int(ExitSuccess));
        QStringList found;
        for (const QString &line : mScene->may())
            found.append(line.left(2));
        QCOMPARE(found.join(QLatin1Char(' ')), days);
    }

    void oneOccurrenceIsMovedAndAnotherDeleted()
    {
        QCOMPARE(CommandScene::run("event|add|Team|--start|2024-05-02 10:00|--repeat|weekly|--count|4"),
            int(ExitSuccess));
        const QString id = mScene->event(QStringLiteral("Team"));
        QCOMPARE(run(QStringLiteral(
                     "event|edit|%1|--occurrence|2024-05-09|--start|2024-05-10 14:00|--subject|Moved")
                         .arg(id)),
            int(ExitSuccess));
        QCOMPARE(
            run(QStringLiteral("event|delete|%1|--occurrence|2024-05-16 10:00").arg(id)), int(ExitSuccess));
        QCOMPARE(mScene->may(),
            QStringList({ QStringLiteral("02 10:00 Team"), QStringLiteral("10 14:00 Moved"),
                QStringLiteral("23 10:00 Team") }));
        // The moved one keeps its length, is found where it is now, and can be deleted, too.
        EventStore store(mScene->accountId());
        const Event::Ptr series = load(store, id);
        const EventOccurrence moved = store.occurrence(series, QStringLiteral("2024-05-10 14:00"));
        QVERIFY(moved.event && moved.event->hasRecurrenceId());
        QCOMPARE(moved.start.secsTo(moved.end), qint64(3600));
        QCOMPARE(run(QStringLiteral("event|delete|%1|--occurrence|2024-05-10").arg(id)), int(ExitSuccess));
        QCOMPARE(
            mScene->may(), QStringList({ QStringLiteral("02 10:00 Team"), QStringLiteral("23 10:00 Team") }));
        QCOMPARE(run(QStringLiteral("event|delete|") + id), int(ExitSuccess));
        QCOMPARE(mScene->may(), QStringList());
    }

    void anOccurrenceOfWholeDaysIsDeleted()
    {
        QCOMPARE(CommandScene::run("event|add|Days|--start|2024-05-02|--repeat|daily|--count|3"),
            int(ExitSuccess));
        QCOMPARE(run(QStringLiteral("event|delete|%1|--occurrence|2024-05-03")
                         .arg(mScene->event(QStringLiteral("Days")))),
            int(ExitSuccess));
        QStringList days;
        for (const QString &line : mScene->may())
            days.append(line.left(2));
        QCOMPARE(days, QStringList({ QStringLiteral("02"), QStringLiteral("04") }));
    }

    void anEditLeavesAloneWhatItDoesNotName()
    {
        QCOMPARE(CommandScene::run(
                     "event|add|Old|--start|2024-05-02 10:00|--duration|30|--location|room|--reminder|5"),
            int(ExitSuccess));
        const QString id = mScene->event(QStringLiteral("Old"));
        QCOMPARE(
            run(QStringLiteral("event|edit|%1|--subject|New|--reminder|none").arg(id)), int(ExitSuccess));
        QCOMPARE(run(QStringLiteral("event|edit|%1|--start|2024-05-03 11:00").arg(id)), int(ExitSuccess));
        QCOMPARE(mScene->may(), QStringList(QStringLiteral("03 11:00 New")));
        EventStore store(mScene->accountId());
        const Event::Ptr event = load(store, id);
        QCOMPARE(event->location(), QStringLiteral("room"));
        QCOMPARE(event->dtStart().secsTo(event->dtEnd()), qint64(30 * 60));
        QVERIFY(event->alarms().isEmpty());
    }

    void timesAreThoseOfTheDeviceAndTheZoneStays()
    {
        QCOMPARE(
            CommandScene::run("event|add|Far|--start|2024-05-02 10:00|--zone|Asia/Tokyo"), int(ExitSuccess));
        QCOMPARE(mScene->may(), QStringList(QStringLiteral("02 01:00 Far")));
        const QString id = mScene->event(QStringLiteral("Far"));
        QCOMPARE(run(QStringLiteral("event|edit|%1|--start|2024-05-03 02:30|--end|2024-05-03 04:00").arg(id)),
            int(ExitSuccess));
        QCOMPARE(mScene->may(), QStringList(QStringLiteral("03 02:30 Far")));
        EventStore store(mScene->accountId());
        const Event::Ptr event = load(store, id);
        QCOMPARE(event->dtStart().timeZone().id(), QByteArray("Asia/Tokyo"));
        QCOMPARE(event->dtStart().time(), QTime(11, 30));
        QCOMPARE(event->dtStart().secsTo(event->dtEnd()), qint64(90 * 60));
    }

    void wholeDaysAreMovedAsDays()
    {
        // A clock changes in between.
        QCOMPARE(CommandScene::run("event|add|Days|--start|2024-03-30|--end|2024-04-01|--zone|Europe/Berlin"),
            int(ExitSuccess));
        EventStore store(mScene->accountId());
        QVERIFY(store.open());
        const QList<EventOccurrence> found = store.occurrences(QDate(2024, 3, 30), QDate(2024, 3, 30));
        QCOMPARE(found.size(), 1);
        QCOMPARE(run(QStringLiteral("event|edit|%1|--start|2024-05-06")
                         .arg(EventStore::shortId(found.first().event))),
            int(ExitSuccess));
        EventStore later(mScene->accountId());
        const Event::Ptr moved = load(later, mScene->event(QStringLiteral("Days")));
        QVERIFY(moved && moved->allDay());
        QCOMPARE(moved->dtStart().date(), QDate(2024, 5, 6));
        QCOMPARE(moved->dtEnd().date(), QDate(2024, 5, 8));
    }

    void wrongUsageIsRefusedAndChangesNothing_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("exit");
        const auto row = [](const char *name, const char *line, ExitStatus exit) {
            QTest::newRow(name) << QString::fromUtf8(line) << int(exit);
        };
        row("no start", "event|add|X", ExitUsage);
        row("no time", "event|add|X|--start|soon", ExitUsage);
        row("a time that does not exist", "event|add|X|--start|2024-05-02 25:00", ExitUsage);
        row("the end before the start", "event|add|X|--start|2024-05-02 10:00|--end|2024-05-02 09:00",
            ExitUsage);
        row("end and duration", "event|add|X|--start|2024-05-02 10:00|--end|2024-05-02 11:00|--duration|5",
            ExitUsage);
        row("a day and a time", "event|add|X|--start|2024-05-02|--end|2024-05-02 11:00", ExitUsage);
        row("minutes of whole days", "event|add|X|--start|2024-05-02|--duration|5", ExitUsage);
        row("an unknown zone", "event|add|X|--start|2024-05-02 10:00|--zone|Nowhere/Land", ExitUsage);
        row("an unknown rule", "event|add|X|--start|2024-05-02 10:00|--repeat|hourly", ExitUsage);
        row("an interval of zero", "event|add|X|--start|2024-05-02 10:00|--repeat|daily|--every|0",
            ExitUsage);
        row("until and count", "event|add|X|--start|2024-05-02|--repeat|daily|--until|2024-06-01|--count|3",
            ExitUsage);
        row("until before the start", "event|add|X|--start|2024-05-02|--repeat|daily|--until|2024-05-01",
            ExitUsage);
        row("a rule without repeat", "event|add|X|--start|2024-05-02|--count|3", ExitUsage);
        row("a reminder that is no number", "event|add|X|--start|2024-05-02|--reminder|early", ExitUsage);
        row("an unknown option", "event|add|X|--color|red", ExitUsage);
        row("an unknown calendar", "event|add|X|--start|2024-05-02|--calendar|Foreign", ExitNotFound);
        row("an unknown event", "event|show|deadbeef", ExitNotFound);
        row("an unknown calendar in a list", "event|list|--calendar|None", ExitNotFound);
        row("no day", "event|list|--from|soon", ExitUsage);
        row("the end before the start", "event|list|--from|2024-05-02|--to|2024-05-01", ExitUsage);
        row("no month", "event|month|2024-13", ExitUsage);
        row("an event to edit", "event|edit|deadbeef|--subject|X", ExitNotFound);
        row("an event to delete", "event|delete|deadbeef", ExitNotFound);
    }

    void wrongUsageIsRefusedAndChangesNothing()
    {
        QFETCH(QString, line);
        QFETCH(int, exit);
        QCOMPARE(run(line), exit);
        QCOMPARE(mScene->may(), QStringList());
    }

    void anOccurrenceThatIsNoneIsNotFound()
    {
        QCOMPARE(
            CommandScene::run("event|add|Team|--start|2024-05-02 10:00|--repeat|weekly"), int(ExitSuccess));
        const QString id = mScene->event(QStringLiteral("Team"));
        for (const char *start : { "2024-05-03", "2024-05-09 11:00", "soon" })
            QCOMPARE(
                run(QStringLiteral("event|delete|%1|--occurrence|%2").arg(id, QString::fromLatin1(start))),
                int(ExitNotFound));
        QCOMPARE(run(QStringLiteral("event|edit|") + id), int(ExitUsage));
        QCOMPARE(mScene->may().size(), 5);
    }

    void aCalendarIsExportedAsICalendar()
    {
        QCOMPARE(CommandScene::run("event|add|One|--start|2024-05-02 10:00"), int(ExitSuccess));
        QVERIFY(mScene->addCalendar(QStringLiteral("Second")));
        // Now it has to be said which one is meant.
        QCOMPARE(CommandScene::run("event|add|Two|--start|2024-05-03 10:00"), int(ExitNotFound));
        QCOMPARE(
            CommandScene::run("event|add|Two|--start|2024-05-03 10:00|--calendar|Second"), int(ExitSuccess));
        const QString path = mScene->path(QStringLiteral("out.ics"));
        const auto content = [&path] {
            QFile file(path);
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        };
        QCOMPARE(CommandScene::run({ "event", "export", path, "--calendar", "Second" }), int(ExitSuccess));
        QVERIFY(content().startsWith("BEGIN:VCALENDAR"));
        QVERIFY(content().contains("SUMMARY:Two"));
        QVERIFY(!content().contains("SUMMARY:One"));
        QCOMPARE(CommandScene::run({ "event", "export", path }), int(ExitFailure));
        QCOMPARE(CommandScene::run({ "event", "export", path, "--force" }), int(ExitSuccess));
        QVERIFY(content().contains("SUMMARY:One") && content().contains("SUMMARY:Two"));
    }

    void whatWasExportedComesBackWhole()
    {
        QCOMPARE(CommandScene::run("event|add|Series|--start|2024-05-02 10:00|--repeat|weekly|--count|3"),
            int(ExitSuccess));
        const QString id = mScene->event(QStringLiteral("Series"));
        QCOMPARE(run(QStringLiteral("event|edit|%1|--occurrence|2024-05-09 10:00|--start|2024-05-10 11:00")
                         .arg(id)),
            int(ExitSuccess));
        const QStringList before = mScene->may();
        QCOMPARE(before.size(), 3);
        const QString path = mScene->path(QStringLiteral("back.ics"));
        QCOMPARE(CommandScene::run({ "event", "export", path }), int(ExitSuccess));
        QCOMPARE(run(QStringLiteral("event|delete|") + id), int(ExitSuccess));
        QVERIFY(mScene->may().isEmpty());
        QCOMPARE(CommandScene::run({ "event", "import", path }), int(ExitSuccess));
        QCOMPARE(mScene->may(), before);
        // What is there already does not come twice.
        QCOMPARE(CommandScene::run({ "event", "import", path }), int(ExitSuccess));
        QCOMPARE(mScene->may(), before);
    }

    void oneOccurrenceIsNoSeries_data()
    {
        QTest::addColumn<QString>("options");
        QTest::newRow("a rule") << "--repeat|daily";
        QTest::newRow("whole days") << "--start|2024-05-10";
    }

    void oneOccurrenceIsNoSeries()
    {
        QFETCH(QString, options);
        QCOMPARE(CommandScene::run("event|add|Series|--start|2024-05-02 10:00|--repeat|weekly|--count|3"),
            int(ExitSuccess));
        const QStringList before = mScene->may();
        QCOMPARE(run(QStringLiteral("event|edit|%1|--occurrence|2024-05-09 10:00|%2")
                         .arg(mScene->event(QStringLiteral("Series")), options)),
            int(ExitUsage));
        QCOMPARE(mScene->may(), before);
    }

    void anHourThatDoesNotExistIsSaidSo()
    {
        QCOMPARE(
            CommandScene::run("event|add|X|--start|2024-03-31 02:30|--zone|Europe/Berlin"), int(ExitUsage));
        QCOMPARE(
            CommandScene::run("event|add|X|--start|2024-03-31 03:30|--zone|Europe/Berlin"), int(ExitSuccess));
    }

    void listsAndSheetsArePrinted()
    {
        QCOMPARE(CommandScene::run("event|add|One|--start|2024-05-02 10:00"), int(ExitSuccess));
        QCOMPARE(CommandScene::run("event|list|--from|2024-05-01|--to|2024-05-31"), int(ExitSuccess));
        QCOMPARE(CommandScene::run("event|month|2024-05"), int(ExitSuccess));
        QCOMPARE(run(QStringLiteral("event|show|") + mScene->event(QStringLiteral("One"))), int(ExitSuccess));
        QCOMPARE(CommandScene::run("folders|--kind|calendar"), int(ExitSuccess));
    }

    void withoutACalendarNothingCanBeAdded()
    {
        CommandScene empty;
        QCOMPARE(CommandScene::run({ "--account", QString::number(empty.accountId()), "event", "add", "X",
                     "--start", "2024-05-02" }),
            int(ExitNotFound));
    }
};

FENNEL_REGISTER_TEST(EventCommandsTest)
#include "eventcommandstest.moc"
