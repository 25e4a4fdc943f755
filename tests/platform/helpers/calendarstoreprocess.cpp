// SPDX-License-Identifier: LGPL-2.1-or-later
// The second process of tests on what processes see of each other in the calendar store.
#include <extendedcalendar.h>
#include <sqlitestorage.h>

#include <QCoreApplication>
#include <QTextStream>
#include <QTimeZone>

using KCalendarCore::Event;

namespace {

QTextStream out(stdout);

void say(const QString &line)
{
    out << line << '\n';
    out.flush();
}

struct Echo : mKCal::ExtendedStorageObserver
{
    void storageModified(mKCal::ExtendedStorage *storage, const QString &) override
    {
        storage->load();
        QStringList uids;
        const auto events = storage->calendar()->rawEvents();
        for (const Event::Ptr &event : events)
            uids.append(event->uid());
        uids.sort();
        say(QLatin1String("heard ") + uids.join(QLatin1Char(',')));
    }
    void storageProgress(mKCal::ExtendedStorage *, const QString &) override {}
    void storageFinished(mKCal::ExtendedStorage *, bool, const QString &) override {}
};

Event::Ptr makeEvent(const QString &uid)
{
    const Event::Ptr event(new Event);
    event->setUid(uid);
    event->setDtStart(QDateTime(QDate(2024, 5, 1), QTime(10, 0), QTimeZone("Europe/Berlin")));
    return event;
}

/** Saves ten events at a time, and says so after each save, until it is killed. */
int flood(mKCal::ExtendedCalendar &calendar, mKCal::ExtendedStorage &storage, const QString &notebook)
{
    for (int round = 0; round < 1000; ++round) {
        for (int i = 0; i < 10; ++i)
            calendar.addEvent(makeEvent(QStringLiteral("flood-%1-%2").arg(round).arg(i)), notebook);
        if (!storage.save())
            return 1;
        say(QStringLiteral("saved"));
    }
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() < 4)
        return 2;
    mKCal::ExtendedCalendar::Ptr calendar(new mKCal::ExtendedCalendar(QTimeZone::utc()));
    mKCal::SqliteStorage storage(calendar, arguments.at(2));
    if (!storage.open())
        return 3;
    const QString notebook = arguments.at(3);
    if (arguments.at(1) == QLatin1String("flood"))
        return flood(*calendar, storage, notebook);
    if (arguments.at(1) == QLatin1String("add")) {
        calendar->addEvent(makeEvent(arguments.value(4)), notebook);
        return storage.save() ? 0 : 1;
    }
    Echo echo;
    storage.registerObserver(&echo);
    say(QStringLiteral("ready"));
    return QCoreApplication::exec();
}
