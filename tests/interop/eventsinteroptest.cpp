// SPDX-License-Identifier: LGPL-2.1-or-later
#include "interop/deviceedits.h"
#include "interop/eventlisting.h"
#include "interop/eventsamples.h"
#include "interop/interopbed.h"
#include "support/davclient.h"
#include "support/devicecalendar.h"
#include "support/privatebus.h"
#include "support/realserver.h"
#include "support/testmain.h"

#include <QtTest>

using DeviceEdits::at;
using DeviceEdits::newEvent;
using DeviceEdits::stamp;
using KCalendarCore::Event;

namespace {

const QString berlin = QStringLiteral("Europe/Berlin");

/** A series that goes by another day of the month than that of its start; the server does not tell by which.
 */
bool isUntold(const QString &iCalendar)
{
    static const QRegularExpression rule(
        QStringLiteral("RRULE:[^\r\n]*FREQ=MONTHLY[^\r\n]*BYMONTHDAY=(-?\\d+)"));
    static const QRegularExpression start(QStringLiteral("BEGIN:VEVENT.*?DTSTART[^:]*:\\d{6}(\\d{2})"),
        QRegularExpression::DotMatchesEverythingOption);
    const auto day = rule.match(iCalendar);
    return day.hasMatch() && day.captured(1).toInt() != start.match(iCalendar).captured(1).toInt();
}

/** The server keeps who is invited and what they said, but not whether they have to come. */
EventListing::Listing withoutRoles(EventListing::Listing listing)
{
    static const QRegularExpression role(QStringLiteral(" role \\d"));
    for (QString &value : listing)
        value.remove(role);
    return listing;
}

} // namespace

/** @short Events on the device are what CalDAV says of them on a real server, whichever side changed them.
 */
class EventsInteropTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void eventsAreTheSame_data() { versions(); }
    void eventsAreTheSame();
    void changesOfTheDeviceArrive_data() { versionsOfChanges(); }
    void changesOfTheDeviceArrive();
    void changesOfTheServerArrive_data() { versionsOfChanges(); }
    void changesOfTheServerArrive();
    void theServerReadsUploadsInItsOwnWay_data();
    void theServerReadsUploadsInItsOwnWay();

private:
    using Listings = QMap<QString, EventListing::Listing>;

    static void versions();
    /** One of each generation, with the events that are there from the comparison. */
    static void versionsOfChanges();
    std::unique_ptr<InteropBed> bed(int events, bool withSamples = false);
    /** Syncs until nothing is left that had to wait for something else. */
    bool settled(InteropBed &bed);
    Listings onServer();
    Listings onDevice();
    /** The first differences, as people read them. */
    QString differences();
    bool furtherSyncChangesNothing(InteropBed &bed);
    /** Replaces text in the event of this summary. */
    bool editedOnServer(const QString &summary, const QList<QPair<QString, QString>> &replacements);

    RealServer mServer;
    std::unique_ptr<DavClient> mDav;
    EasAccountId mAccount = 0;
    QString mAddress;
    /** Single events of other zones that the device has uploaded: the server keeps the moments alone. */
    QStringList mZoneLost;
    /** Meetings that the device has uploaded. */
    QStringList mRolesLost;
};

void EventsInteropTest::versions()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("user");
    QTest::addColumn<int>("events");
    QTest::addColumn<bool>("withSamples"); // slow to write; the changes need them
    QTest::newRow("12.0") << "12.0"
                          << "bob" << 32 << true;
    QTest::newRow("12.1") << "12.1"
                          << "carol" << 32 << false;
    QTest::newRow("14.0") << "14.0"
                          << "dave" << 32 << true;
    QTest::newRow("14.1") << "14.1"
                          << "alice" << 300 << false;
}

void EventsInteropTest::versionsOfChanges()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("user");
    QTest::newRow("12.0") << "12.0"
                          << "bob";
    QTest::newRow("14.1") << "14.1"
                          << "dave";
}

void EventsInteropTest::initTestCase()
{
    const QString obstacle = RealServer::obstacle();
    if (!obstacle.isEmpty())
        QSKIP(qPrintable(obstacle));
    // The network classes look for a bus when they are first used, which is before there is an engine.
    QVERIFY(PrivateBus::ensure());
    QVERIFY(mServer.start());
}

std::unique_ptr<InteropBed> EventsInteropTest::bed(int events, bool withSamples)
{
    const QString user = *static_cast<QString *>(QTest::qData("user", qMetaTypeId<QString>()));
    const QString version = *static_cast<QString *>(QTest::qData("version", qMetaTypeId<QString>()));
    mDav = std::make_unique<DavClient>(
        DavClient::Calendar, RealServer::host(), mServer.httpPort(), user, RealServer::password());
    if (events > 0 && !mServer.seedEvents(user, events))
        return nullptr;
    const auto samples = withSamples ? EventSamples::all() : QMap<QString, QByteArray>();
    for (auto it = samples.cbegin(); it != samples.cend(); ++it) {
        if (!mDav->put(it.key() + QStringLiteral(".ics"), it.value()))
            return nullptr;
    }
    InteropBed::Connection connection { version };
    connection.calendar = true;
    auto bed = std::make_unique<InteropBed>(mServer, user, connection);
    mAccount = bed->accountId();
    mAddress = RealServer::address(user);
    mZoneLost.clear();
    mRolesLost.clear();
    if (events == 0)
        mRolesLost =
            QStringList { QStringLiteral("Added meeting"), QStringLiteral("meeting (Europe/Berlin)") };
    return bed->isReady() ? std::move(bed) : nullptr;
}

EventsInteropTest::Listings EventsInteropTest::onServer()
{
    Listings listings;
    const auto texts = mDav->texts().value_or(QMap<QString, QString>());
    for (const QString &text : texts) {
        if (isUntold(text))
            continue;
        const auto listing = EventListing::ofText(text, QTimeZone(berlin.toLatin1()));
        listings.insert(listing.value(QStringLiteral("summary")), listing);
    }
    return listings;
}

EventsInteropTest::Listings EventsInteropTest::onDevice()
{
    Listings listings;
    const DeviceCalendar device;
    const Event::List events = device.series(mAccount);
    const auto texts = mDav->texts().value_or(QMap<QString, QString>());
    QStringList untold;
    for (const QString &text : texts) {
        if (isUntold(text))
            untold.append(
                EventListing::ofText(text, QTimeZone(berlin.toLatin1())).value(QStringLiteral("summary")));
    }
    for (const Event::Ptr &event : events) {
        if (untold.contains(event->summary()))
            continue;
        if (mZoneLost.contains(event->summary()))
            EventListing::moveToZone(event, QTimeZone(berlin.toLatin1()));
        listings.insert(event->summary(), EventListing::of(event, device.calendar->eventInstances(event)));
    }
    return listings;
}

QString EventsInteropTest::differences()
{
    const Listings server = onServer();
    const Listings device = onDevice();
    QStringList names = server.keys() + device.keys();
    names.removeDuplicates();
    QStringList lines;
    for (const QString &name : qAsConst(names)) {
        const auto here = device.value(name);
        const auto there = server.value(name);
        lines += mRolesLost.contains(name)
            ? EventListing::differences(name, withoutRoles(here), withoutRoles(there))
            : EventListing::differences(name, here, there);
    }
    return lines.mid(0, 20).join(QLatin1Char('\n'));
}

bool EventsInteropTest::furtherSyncChangesNothing(InteropBed &bed)
{
    const QMap<QString, QString> marks = mDav->marks();
    if (bed.sync() != 0) // The server's key moves once more after the last window.
        return false;
    const auto stored = InteropBed::storedData();
    mServer.forgetRequests();
    if (!stored.contains(QStringLiteral("db:incidences")) || bed.sync() != 0
        || stored != InteropBed::storedData() || marks != mDav->marks())
        return false;
    for (const QString &request : mServer.requests(QStringLiteral("Sync"))) {
        if (request.contains(QStringLiteral("<Commands")))
            return false;
    }
    return !marks.isEmpty();
}

bool EventsInteropTest::settled(InteropBed &bed)
{
    for (int i = 0; i < 2; ++i) {
        bed.clock().advance(5000);
        if (bed.sync() != 0)
            return false;
    }
    return true;
}

void EventsInteropTest::eventsAreTheSame()
{
    QFETCH(int, events);
    QFETCH(bool, withSamples);
    const auto bed = this->bed(events, withSamples);
    QVERIFY(bed);
    QCOMPARE(bed->sync(), 0);
    const auto texts = mDav->texts().value_or(QMap<QString, QString>());
    const int untold = int(std::count_if(texts.cbegin(), texts.cend(), isUntold));
    QCOMPARE(texts.size(), events + (withSamples ? EventSamples::all().size() : 0));
    QVERIFY(untold > 0 || !withSamples);
    QCOMPARE(onServer().size(), texts.size() - untold);
    // What the server does not tell is completed, and stands on the device as well.
    QCOMPARE(DeviceCalendar().series(mAccount).size(), texts.size());
    QCOMPARE(onDevice().size(), texts.size() - untold);
    QCOMPARE(differences(), QString());
    QVERIFY(furtherSyncChangesNothing(*bed));
}

void EventsInteropTest::changesOfTheDeviceArrive()
{
    const auto bed = this->bed(0);
    QVERIFY(bed);
    QCOMPARE(bed->sync(), 0);
    const int before = onDevice().size();
    QCOMPARE(differences(), QString());
    QVERIFY(mDav->leaveThisSecond());
    mZoneLost = QStringList { QStringLiteral("Added: 新"),
        QStringLiteral("summer over midnight (Australia/Sydney)") };
    bed->clock().advance(5000);
    QVERIFY(DeviceEdits::editEvents(*bed));
    QVERIFY(DeviceEdits::editOccurrences(*bed));
    QVERIFY(DeviceEdits::addEvents(*bed, mAddress));
    QVERIFY(settled(*bed));
    QCOMPARE(onServer().size(), before - 1 + 5);
    QCOMPARE(differences(), QString());
    QVERIFY(mDav->leaveThisSecond());
    QVERIFY(furtherSyncChangesNothing(*bed));
    QCOMPARE(differences(), QString());
}

bool EventsInteropTest::editedOnServer(
    const QString &summary, const QList<QPair<QString, QString>> &replacements)
{
    const auto texts = mDav->texts().value_or(QMap<QString, QString>());
    for (auto it = texts.cbegin(); it != texts.cend(); ++it) {
        QString text = it.value();
        if (!text.contains(QStringLiteral("SUMMARY:") + summary))
            continue;
        for (const auto &replacement : replacements) {
            if (!text.contains(replacement.first))
                return false;
            text.replace(replacement.first, replacement.second);
        }
        return mDav->put(it.key(), text.toUtf8());
    }
    return false;
}

void EventsInteropTest::changesOfTheServerArrive()
{
    const auto bed = this->bed(0);
    QVERIFY(bed);
    QCOMPARE(bed->sync(), 0);
    const int before = onDevice().size();
    QVERIFY(mDav->leaveThisSecond());

    QVERIFY(editedOnServer(QStringLiteral("winter (America/New_York)"),
        { { QStringLiteral("SUMMARY:winter"), QStringLiteral("LOCATION:Rink\r\nSUMMARY:Колд") },
            { QStringLiteral("T091500"), QStringLiteral("T090000") } }));
    QVERIFY(editedOnServer(QStringLiteral("days (Asia/Kolkata)"),
        { { QStringLiteral("RRULE:"),
            QStringLiteral("EXDATE;TZID=Asia/Kolkata:20300305T070000\r\nRRULE:") } }));
    QVERIFY(editedOnServer(QStringLiteral("rows (America/St_Johns)"),
        { { QStringLiteral("20300312T"), QStringLiteral("20300313T") },
            { QStringLiteral("SUMMARY:Earlier"), QStringLiteral("SUMMARY:Earlier still") } }));
    QVERIFY(editedOnServer(QStringLiteral("second Sundays in October (America/New_York)"),
        { { QStringLiteral("END:VEVENT"),
            QStringLiteral("END:VEVENT\r\nBEGIN:VEVENT\r\nUID:sample-20\r\nDTSTAMP:20261101T060000Z\r\n"
                           "RECURRENCE-ID;TZID=America/New_York:20311012T200000\r\n"
                           "DTSTART;TZID=America/New_York:20311012T210000\r\n"
                           "DTEND;TZID=America/New_York:20311012T230000\r\nSUMMARY:Late\r\n"
                           "END:VEVENT") } }));
    QVERIFY(editedOnServer(QStringLiteral("one day (Europe/Berlin)"),
        { { QStringLiteral("20300401"), QStringLiteral("20300402") } }));
    QVERIFY(mDav->remove(QStringLiteral("sample-2.ics")));
    QVERIFY(mDav->put(QStringLiteral("added-there.ics"),
        EventSamples::iCalendar(QStringLiteral("Australia/Sydney"),
            { QStringLiteral("UID:added-there"), QStringLiteral("SUMMARY:Added there"),
                QStringLiteral("DTSTART{z}:20300930T083000"), QStringLiteral("DTEND{z}:20300930T093000"),
                QStringLiteral("RRULE:FREQ=DAILY;COUNT=20") })));
    QCOMPARE(bed->sync(), 0);

    QCOMPARE(onDevice().size(), before);
    QCOMPARE(differences(), QString());
    QVERIFY(mDav->leaveThisSecond());
    QVERIFY(furtherSyncChangesNothing(*bed));
}

void EventsInteropTest::theServerReadsUploadsInItsOwnWay_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("user");
    QTest::newRow("14.1") << "14.1"
                          << "dave";
}

/** What the engine uploads is right; that this server makes something else of it has to be known. */
void EventsInteropTest::theServerReadsUploadsInItsOwnWay()
{
    const auto bed = this->bed(0);
    QVERIFY(bed);
    QCOMPARE(bed->sync(), 0);
    bed->clock().advance(5000);
    const auto abroad =
        newEvent(QStringLiteral("Abroad"), at(QDate(2030, 2, 4), QTime(18, 0), "America/New_York"), 60);
    abroad->recurrence()->setWeekly(1);
    abroad->recurrence()->setDuration(8);
    const auto summer =
        newEvent(QStringLiteral("Into summer"), at(QDate(2030, 3, 18), QTime(18, 30), "Europe/Berlin"), 60);
    summer->recurrence()->setWeekly(1);
    summer->recurrence()->setDuration(8);
    summer->recurrence()->addExDateTime(at(QDate(2030, 4, 8), QTime(18, 30), "Europe/Berlin"));
    const auto days =
        newEvent(QStringLiteral("Days"), at(QDate(2030, 3, 4), QTime(0, 0), "Europe/Berlin"), 0);
    days->setAllDay(true);
    days->recurrence()->setWeekly(1);
    days->recurrence()->setEndDate(QDate(2030, 3, 25));
    {
        DeviceCalendar device;
        for (const Event::Ptr &event : { abroad, summer, days }) {
            QVERIFY(device.calendar->addEvent(event, device.notebookOf(mAccount)));
            event->setCreated(bed->clock().currentDateTimeUtc());
            stamp(*bed, event);
        }
        QVERIFY(device.storage->save());
    }
    QVERIFY(settled(*bed));
    const auto server = onServer();
    const auto occurrences = [&server](const QString &summary) {
        return server.value(summary).value(QStringLiteral("occurrences")).split(QLatin1Char('|'));
    };
    // The zone of an upload is not looked at, so the clocks change on another day.
    QCOMPARE(
        server.value(abroad->summary()).value(QStringLiteral("wall")), QStringLiteral("2030-02-05T00:00"));
    // An exception is looked for at the time of day, in UTC, that the series begins with.
    QCOMPARE(occurrences(summer->summary()).size(), 8);
    QCOMPARE(occurrences(days->summary()).last(), QStringLiteral("2030-03-25"));
    QVERIFY(mDav->leaveThisSecond());
    QVERIFY(furtherSyncChangesNothing(*bed));
}

FENNEL_REGISTER_TEST(EventsInteropTest)
#include "eventsinteroptest.moc"
