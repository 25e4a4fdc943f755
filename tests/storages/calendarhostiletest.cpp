// SPDX-License-Identifier: LGPL-2.1-or-later
#include "common/exchangeactivesync.h"
#include "easitems/eastimezone.h"
#include "support/calendarbed.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <KCalendarCore/Recurrence>

#include <QElapsedTimer>
#include <QFile>
#include <QtTest>

using namespace ExchangeActiveSync;
using KCalendarCore::Event;

namespace {

using Setting = std::function<void(EasCalendarItem &)>;

constexpr qint64 PatientMilliseconds = 100000; // under a loaded machine and sanitizers
constexpr qint64 MostKilobytes = 512 * 1024;
constexpr int Megabyte = 1024 * 1024;

EasRecurrenceContainer daily()
{
    EasRecurrenceContainer recurrence;
    recurrence.setType(EasRecurrenceContainer::DailyRecurrence);
    recurrence.setInterval(1);
    return recurrence;
}

QList<EasCalendarItem> exceptions(int count, bool deleted)
{
    const QDateTime first(QDate(2026, 3, 4), QTime(8, 0), Qt::UTC);
    QList<EasCalendarItem> result;
    for (int day = 0; day < count; ++day) {
        EasCalendarItem exception;
        exception.setExceptionStartTime(dateTimeToString(first.addDays(day)));
        if (deleted)
            exception.setExceptionDeleted(1);
        else
            exception.setSubject(QStringLiteral("Exception %1").arg(day));
        result.append(exception);
    }
    return result;
}

EasAttendeeContainer attendee(const QString &email)
{
    EasAttendeeContainer attendee;
    attendee.setEmail(email);
    attendee.setName(email);
    return attendee;
}

} // namespace

Q_DECLARE_METATYPE(Setting)

/** What a server can send to harm us costs at most the item that holds it, and no more than seconds. */
class CalendarHostileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theRestOfTheReplyStands_data()
    {
        QTest::addColumn<Setting>("setting");
        const auto row = [](const char *name, const Setting &setting) {
            QTest::newRow(name) << setting;
        };
        using Item = EasCalendarItem &;
        row("4,000 deleted occurrences", [](Item i) {
            i.setRecurrence(daily());
            i.setExceptions(exceptions(4000, true));
        });
        row("100 exceptions", [](Item i) {
            i.setRecurrence(daily());
            i.setExceptions(exceptions(100, false));
        });
        row("one exception too many", [](Item i) {
            i.setRecurrence(daily());
            i.setExceptions(exceptions(1001, false));
        });
        row("10,000 exceptions", [](Item i) {
            i.setRecurrence(daily());
            i.setExceptions(exceptions(10000, false));
        });
        row("a subject of 3 MB", [](Item i) { i.setSubject(QString(3 * Megabyte, QLatin1Char('s'))); });
        row("a subject of controls",
            [](Item i) { i.setSubject(QStringLiteral("a\u0000b\r\nEND:VEVENT\r\n\u202E")); });
        row("a body of 3 MB", [](Item i) {
            i.setBodyContainerType(EasBodyContainer::HTMLBodyType);
            i.setBodyContainerData(QString(3 * Megabyte, QLatin1Char('<')));
        });
        row("a block of 171 bytes", [](Item i) { i.setTimezone(QByteArray(171, 'x')); });
        row("a block of 173 bytes", [](Item i) { i.setTimezone(QByteArray(173, 'x').toBase64()); });
        row("a block of noise", [](Item i) { i.setTimezone(QByteArray(172, '\xff').toBase64()); });
        row("a block of 10 MB", [](Item i) { i.setTimezone(QByteArray(10 * Megabyte, 'A')); });
        row("two thousand million occurrences", [](Item i) {
            EasRecurrenceContainer recurrence = daily();
            recurrence.setOccurrences(0x7FFFFFFF);
            i.setRecurrence(recurrence);
        });
        row("until the year 9999", [](Item i) {
            EasRecurrenceContainer recurrence = daily();
            recurrence.setUntil(QStringLiteral("99991231T235959Z"));
            i.setRecurrence(recurrence);
        });
        row("an interval of two thousand million", [](Item i) {
            EasRecurrenceContainer recurrence = daily();
            recurrence.setInterval(0x7FFFFFFF);
            i.setRecurrence(recurrence);
        });
        row("from the year 1 to the year 9999", [](Item i) {
            i.setStartTime(QStringLiteral("00010101T000000Z"));
            i.setEndTime(QStringLiteral("99991231T235959Z"));
            i.setTimezone(QByteArray(172, '\x01').toBase64());
        });
        row("an end before the start", [](Item i) { i.setEndTime(QStringLiteral("19990101T000000Z")); });
        row("1,000 attendees of one address", [](Item i) {
            i.setAttendees(
                QVector<EasAttendeeContainer>(1000, attendee(QStringLiteral("a@example.com"))).toList());
        });
        row("an address of 64 KB",
            [](Item i) { i.setAttendees({ attendee(QString(65536, QLatin1Char('a'))) }); });
        row("10,000 categories", [](Item i) {
            QStringList categories;
            for (int c = 0; c < 10000; ++c)
                categories.append(QStringLiteral("Category,%1;\"\n").arg(c));
            i.setCategories(categories);
        });
        row("a reminder of four thousand years", [](Item i) { i.setReminder(0x7FFFFFFF); });
    }

    void theRestOfTheReplyStands()
    {
        QFETCH(Setting, setting);
        CalendarBed bed;
        EasCalendarItem bad = bed.item();
        setting(bad);
        QList<EasCalendarItem> added { bed.item(QStringLiteral("5:2")), bad,
            bed.item(QStringLiteral("5:3")) };
        QList<EasCalendarItem> none;
        QElapsedTimer timer;
        timer.start();
        qint64 pages = 0;
        {
            const LogCollector quiet;
            const qint64 before = residentKilobytes();
            QVERIFY(bed.apply(added, none));
            pages = residentKilobytes() - before;
            QCOMPARE(bed.event(QStringLiteral("5:2"))->summary(), QStringLiteral("Event 5:2"));
            QCOMPARE(bed.event(QStringLiteral("5:3"))->summary(), QStringLiteral("Event 5:3"));
            // The same reply once more, as after an interruption: nothing doubles.
            const int events = bed.events().size();
            added = { bed.item(QStringLiteral("5:2")), bad, bed.item(QStringLiteral("5:3")) };
            QVERIFY(bed.apply(added, none));
            QCOMPARE(bed.events().size(), events);
        }
        qInfo() << timer.elapsed() << "ms," << pages << "KB," << bed.events().size() << "events";
        QVERIFY(timer.elapsed() < PatientMilliseconds);
        QVERIFY(pages < MostKilobytes);
    }

private:
    static qint64 residentKilobytes()
    {
        QFile status(QStringLiteral("/proc/self/statm"));
        if (!status.open(QIODevice::ReadOnly))
            return 0;
        return status.readAll().split(' ').value(1).toLongLong() * 4;
    }
};

FENNEL_REGISTER_TEST(CalendarHostileTest)
#include "calendarhostiletest.moc"
