// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/eascalendaritem.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QtTest>

class EasCalendarItemTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachParameterIsMarkedOnce()
    {
        EasCalendarItem item;
        QVERIFY(!item.parameterHasBeenChanged(EasCalendarItem::SubjectParameter));
        item.setSubject(QString());
        item.setSubject(QStringLiteral("again"));
        QVERIFY(item.parameterHasBeenChanged(EasCalendarItem::SubjectParameter));
        QCOMPARE(item.changedParameters(),
            QList<EasCalendarItem::CalendarItemParameter> { EasCalendarItem::SubjectParameter });
        item.clear();
        QVERIFY(item.changedParameters().isEmpty());
        QVERIFY(item.subject().isEmpty());
    }

    void everyPartOfTheBodyMarksTheBody()
    {
        const auto marks = [](auto set) {
            EasCalendarItem item;
            set(item);
            return item.changedParameters()
                == QList<EasCalendarItem::CalendarItemParameter> { EasCalendarItem::BodyParameter };
        };
        QVERIFY(marks([](EasCalendarItem &i) { i.setBodyContainerType(EasBodyContainer::HTMLBodyType); }));
        QVERIFY(marks([](EasCalendarItem &i) { i.setBodyContainerData(QStringLiteral("data")); }));
        QVERIFY(marks([](EasCalendarItem &i) { i.setBodyContainerEstimatedDataSize(4); }));
        QVERIFY(marks([](EasCalendarItem &i) { i.setBodyContainerTruncated(true); }));
    }

    void deletedIsZeroOrOne()
    {
        const LogCollector log;
        EasCalendarItem item;
        item.setExceptionDeleted(2);
        QCOMPARE(int(item.exceptionDeleted()), 0);
        QVERIFY(log.contains(QtCriticalMsg, { "Tried to set deleted value to", "2" }));
        QVERIFY(!item.parameterHasBeenChanged(EasCalendarItem::ExceptionDeletedParameter));
        item.setExceptionDeleted(1);
        QCOMPARE(int(item.exceptionDeleted()), 1);
        QVERIFY(item.parameterHasBeenChanged(EasCalendarItem::ExceptionDeletedParameter));
    }

    void aNewItemHasNothingSet()
    {
        const EasCalendarItem item;
        QCOMPARE(int(item.allDayEvent()), -1);
        QCOMPARE(int(item.busyStatus()), -1);
        QCOMPARE(int(item.sensitivity()), -1);
        QCOMPARE(int(item.meetingStatus()), -1);
        QCOMPARE(int(item.responseType()), -1);
        QCOMPARE(int(item.responseRequested()), -1);
        QCOMPARE(item.reminder(), -1);
        QCOMPARE(item.localTimestamp(), 0xFFFFFFFFU);
        QCOMPARE(item.createdTimestamp(), qint64(0));
        QVERIFY(!item.hasExceptions());
        QVERIFY(!item.itemChanged());
    }

    void exceptionsAreAppended()
    {
        EasCalendarItem series;
        series.appendException(EasCalendarItem());
        QVERIFY(series.hasExceptions());
        QVERIFY(series.parameterHasBeenChanged(EasCalendarItem::ExceptionsParameter));
    }

    void aRecurrenceRefusesWhatIsOutOfRange_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<int>("accepted");
        QTest::addColumn<int>("refused");
        QTest::newRow("week of the month") << "WeekOfMonth" << 5 << 6;
        QTest::newRow("day of the month") << "DayOfMonth" << 31 << 32;
        QTest::newRow("days of the week") << "DayOfWeek" << 127 << 128;
        QTest::newRow("month of the year") << "MonthOfYear" << 12 << 13;
        QTest::newRow("leap month") << "LeapMonth" << 1 << 2;
        QTest::newRow("a negative week of the month") << "WeekOfMonth" << 0 << -1;
    }

    void aRecurrenceRefusesWhatIsOutOfRange()
    {
        QFETCH(QString, field);
        QFETCH(int, accepted);
        QFETCH(int, refused);
        EasRecurrenceContainer recurrence;
        const auto set = [&](int value) {
            if (field == QLatin1String("WeekOfMonth"))
                recurrence.setWeekOfMonth(value);
            else if (field == QLatin1String("DayOfMonth"))
                recurrence.setDayOfMonth(value);
            else if (field == QLatin1String("DayOfWeek"))
                recurrence.setDayOfWeek(value);
            else if (field == QLatin1String("MonthOfYear"))
                recurrence.setMonthOfYear(value);
            else
                recurrence.setLeapMonth(value);
        };
        const auto sum = [&] {
            return recurrence.weekOfMonth() + recurrence.dayOfMonth() + recurrence.dayOfWeek()
                + recurrence.monthOfYear() + recurrence.leapMonth();
        };
        const LogCollector log;
        set(refused);
        QCOMPARE(sum(), 0);
        QVERIFY(log.contains(QtCriticalMsg,
            { QStringLiteral("Tried to set %1 value to").arg(field), QString::number(refused) }));
        set(accepted);
        QCOMPARE(sum(), accepted);
    }

    void attendeesAreComparedByTheirFields()
    {
        EasAttendeeContainer one;
        one.setEmail(QStringLiteral("a@example.org"));
        one.setName(QStringLiteral("A"));
        EasAttendeeContainer other = one;
        QCOMPARE(one, other);
        other.setAttendeeStatus(EasAttendeeContainer::AcceptAttendeeStatus);
        QVERIFY(one != other);
        other = one;
        other.setAttendeeType(EasAttendeeContainer::OptionalAttendeeType);
        QVERIFY(one != other);
        other = one;
        other.setProposedStartTime(QDateTime(QDate(2024, 5, 1), QTime(10, 0), Qt::UTC));
        QVERIFY(one != other);
        other = one;
        other.setName(QStringLiteral("B"));
        QVERIFY(one != other);
    }
};

FENNEL_REGISTER_TEST(EasCalendarItemTest)
#include "eascalendaritemtest.moc"
