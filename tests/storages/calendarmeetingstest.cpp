// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarmeetings.h"

#include "common/exchangeactivesync.h"
#include "storages/calendar/calendarstorageimpl.h"
#include "support/calendarbed.h"
#include "support/logcollector.h"
#include "support/testclock.h"
#include "support/testmain.h"

#include <QtTest>

using namespace ExchangeActiveSync;

namespace {

const QTimeZone Berlin("Europe/Berlin");

QDateTime berlin(int month, int day, int hour = 9)
{
    return QDateTime(QDate(2026, month, day), QTime(hour, 0), Berlin);
}

} // namespace

/** Events of the calendar that answers to invitations are about. */
class CalendarMeetingsTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<CalendarBed> mBed;

    /** A daily series of an hour, whose occurrence of the 28th was moved to the afternoon. */
    EasCalendarItem series() const
    {
        EasRecurrenceContainer recurrence;
        recurrence.setType(EasRecurrenceContainer::DailyRecurrence);
        recurrence.setInterval(1);
        EasCalendarItem item = mBed->item();
        item.setStartTime(dateTimeToString(berlin(3, 27)));
        item.setEndTime(dateTimeToString(berlin(3, 27, 10)));
        item.setRecurrence(recurrence);
        EasCalendarItem moved;
        moved.setExceptionStartTime(dateTimeToString(berlin(3, 28)));
        moved.setStartTime(dateTimeToString(berlin(3, 28, 15)));
        moved.setEndTime(dateTimeToString(berlin(3, 28, 16)));
        item.setExceptions({ moved });
        return item;
    }
    QString instance(const QDateTime &start) const
    {
        return mBed->storage->instanceId(mBed->localId(), start);
    }

private Q_SLOTS:
    void init() { mBed = std::make_unique<CalendarBed>(); }
    void cleanup() { mBed.reset(); }

    void anOccurrenceIsNamedByItsOriginalStart()
    {
        QVERIFY(mBed->add(series()));
        QCOMPARE(instance(berlin(3, 29)), QStringLiteral("2026-03-29T07:00:00.000Z"));
        QCOMPARE(instance(berlin(3, 28)), QStringLiteral("2026-03-28T08:00:00.000Z"));
        QCOMPARE(instance(berlin(3, 28, 15)), QStringLiteral("2026-03-28T08:00:00.000Z"));
        // Not of the rules, and nothing was moved there: the server will say what it thinks of it.
        QCOMPARE(instance(berlin(3, 29, 15)), QStringLiteral("2026-03-29T13:00:00.000Z"));
    }

    void aDayIsNamedAsTheServerNamesIt_data()
    {
        QTest::addColumn<int>("version");
        QTest::addColumn<QString>("expected");
        QTest::newRow("14.1") << int(ProtocolVersion141) << "2026-03-29T00:00:00.000Z";
        QTest::newRow("16.1") << int(ProtocolVersion161) << "2026-03-29T00:00:00.000Z";
    }

    void aDayIsNamedAsTheServerNamesIt()
    {
        QFETCH(int, version);
        QFETCH(QString, expected);
        EasCalendarItem item = series();
        item.setExceptions({});
        item.setAllDayEvent(EasCalendarItemCommon::IsAllDayEvent);
        item.setStartTime("20260327T000000Z");
        item.setEndTime("20260328T000000Z");
        QVERIFY(mBed->add(item));
        mBed->account.setProtocolVersion(ProtocolVersion(version));
        QCOMPARE(instance(QDateTime(QDate(2026, 3, 29), QTime(0, 0))), expected);
    }

    void withoutTheEventThereIsNothing()
    {
        const LogCollector log;
        QCOMPARE(mBed->storage->instanceId("nothing", berlin(3, 27)), QString());
        QCOMPARE(mBed->storage->getEventIcal("nothing", berlin(3, 27)), QString());
    }

    void anOccurrenceOfItsOwnComesAsItIs()
    {
        QVERIFY(mBed->add(series()));
        const QString moved = mBed->storage->getEventIcal(mBed->localId(), berlin(3, 28));
        QVERIFY(moved.contains("RECURRENCE-ID"));
        QVERIFY(!moved.contains("RRULE"));
        const QString other = mBed->storage->getEventIcal(mBed->localId(), berlin(3, 29));
        QVERIFY(!other.contains("RECURRENCE-ID"));
        QVERIFY(other.contains("RRULE"));
    }

    void aStoredEventIsAnswered()
    {
        QSharedPointer<FakeEmailConfiguration> email(new FakeEmailConfiguration(mBed->account.id()));
        mBed->account.email = email;
        QVERIFY(mBed->add(series()));
        const CalendarStorageImpl &storage = *mBed->storage;
        const QString whole = storage.encodeMeetingResponse(
            storage.getEventIcal(mBed->localId()), EasItemsCommon::UserResponseAccepted, true);
        QVERIFY(whole.contains("METHOD:REPLY"));
        QVERIFY(whole.contains("PARTSTAT=ACCEPTED:MAILTO:alice@example.com"));
        QVERIFY(whole.contains("RRULE:FREQ=DAILY"));
        QVERIFY(whole.contains("SEQUENCE:0"));
        for (int day : { 28, 29 }) {
            const QDateTime start = berlin(3, day);
            const QString one = storage.encodeMeetingResponse(storage.getEventIcal(mBed->localId(), start),
                EasItemsCommon::UserResponseDeclined, true, start);
            QVERIFY(one.contains("PARTSTAT=DECLINED"));
            QVERIFY(one.contains("RECURRENCE-ID"));
            QVERIFY(one.contains("SEQUENCE:1"));
            QVERIFY(!one.contains("RRULE:FREQ=DAILY"));
        }
    }

    void withoutAnEmailConfigurationThereIsNoAnswer()
    {
        const LogCollector log;
        QVERIFY(mBed->add(mBed->item()));
        mBed->account.email.clear();
        QCOMPARE(mBed->storage->encodeMeetingResponse(mBed->storage->getEventIcal(mBed->localId()),
                     EasItemsCommon::UserResponseAccepted, true),
            QString());
        QVERIFY(log.contains(QtWarningMsg, { "No email configuration" }));
        QVERIFY(log.contains(QtDebugMsg, { "User response code: " }));
        QVERIFY(log.contains(QtDebugMsg, { "Request data:" }));
    }
};

FENNEL_REGISTER_TEST(CalendarMeetingsTest)
#include "calendarmeetingstest.moc"
