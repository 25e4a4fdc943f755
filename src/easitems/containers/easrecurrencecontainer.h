// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>
#include <QString>

/** How an event or a meeting of an invitation repeats. Numbers out of their range are refused. A plain value.
 */
class EasRecurrenceContainer
{
    Q_GADGET

public:
    enum RecurrenceType : int {
        UndefinedRecurrence = -1,
        DailyRecurrence = 0,
        WeeklyRecurrence = 1,
        MonthlyRecurrence = 2,
        MonthlyNthDayRecurrence = 3,
        YearlyRecurrence = 5,
        YearlyNthDayRecurrence = 6
    };
    Q_ENUM(RecurrenceType)

    enum CalendarType : int {
        DefaultCalendar = 0,
        GregorianCalendar = 1,
        GregorianUSCalendar = 2,
        JapaneseEmperorEraCalendar = 3,
        TaiwanCalendar = 4,
        KoreanTangunEraCalendar = 5,
        HijriCalendar = 6,
        ThaiCalendar = 7,
        HebrewLunarCalendar = 8,
        GregorianMiddleEastFrenchCalendar = 9,
        GregorianArabicCalendar = 10,
        GregorianTransliteratedEnglishCalendar = 11,
        GregorianTransliteratedFrenchCalendar = 12,
        JapaneseLunarCalendar = 14,
        ChineseLunarCalendar = 15,
        KoreanLunarCalendar = 20
    };
    Q_ENUM(CalendarType)

    enum FirstDayOfWeek : int {
        UndefinedFirstDay = -1,
        SundayFirstDay = 0,
        MondayFirstDay = 1,
        TuesdayFirstDay = 2,
        WednesdayFirstDay = 3,
        ThursdayFirstDay = 4,
        FridayFirstDay = 5,
        SaturdayFirstDay = 6
    };
    Q_ENUM(FirstDayOfWeek)

    QString recurrenceId() const { return mRecurrenceId; }
    void setRecurrenceId(const QString &recurrenceId) { mRecurrenceId = recurrenceId; }
    QString until() const { return mUntil; }
    void setUntil(const QString &until) { mUntil = until; }
    RecurrenceType type() const { return mType; }
    void setType(RecurrenceType type) { mType = type; }
    CalendarType calendarType() const { return mCalendarType; }
    void setCalendarType(CalendarType calendarType) { mCalendarType = calendarType; }
    FirstDayOfWeek firstDayOfWeek() const { return mFirstDayOfWeek; }
    void setFirstDayOfWeek(FirstDayOfWeek firstDayOfWeek) { mFirstDayOfWeek = firstDayOfWeek; }
    int interval() const { return mInterval; }
    void setInterval(int interval) { mInterval = interval; }
    int occurrences() const { return mOccurrences; }
    void setOccurrences(int occurrences) { mOccurrences = occurrences; }

    /** 0 or 1. */
    quint8 leapMonth() const { return mLeapMonth; }
    void setLeapMonth(int leapMonth);

    /** 0 to 5; 5 is the last week. */
    int weekOfMonth() const { return mWeekOfMonth; }
    void setWeekOfMonth(int weekOfMonth);

    /** 0 to 31. */
    int dayOfMonth() const { return mDayOfMonth; }
    void setDayOfMonth(int dayOfMonth);

    /** A set of bits, 0 to 127, Sunday the lowest. */
    int dayOfWeek() const { return mDayOfWeek; }
    void setDayOfWeek(int dayOfWeek);

    /** 0 to 12. */
    int monthOfYear() const { return mMonthOfYear; }
    void setMonthOfYear(int monthOfYear);

    void clear() { *this = EasRecurrenceContainer(); }

private:
    QString mRecurrenceId;
    QString mUntil;
    RecurrenceType mType = UndefinedRecurrence;
    CalendarType mCalendarType = DefaultCalendar;
    FirstDayOfWeek mFirstDayOfWeek = UndefinedFirstDay;
    quint8 mLeapMonth = 0;
    int mInterval = -1;
    int mOccurrences = 0;
    int mWeekOfMonth = 0;
    int mDayOfMonth = 0;
    int mDayOfWeek = 0;
    int mMonthOfYear = 0;
};
