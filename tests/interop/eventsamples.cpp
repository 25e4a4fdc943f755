// SPDX-License-Identifier: LGPL-2.1-or-later
#include "interop/eventsamples.h"

#include <QStringList>

namespace {

struct Zone
{
    const char *id;
    const char *offset;
    const char *summerOffset; ///< null without a summer time
    const char *summerRule;
    const char *summerStart;
    const char *winterRule;
    const char *winterStart;
};

const Zone zones[] = {
    { "Europe/Berlin", "+0100", "+0200", "BYMONTH=3;BYDAY=-1SU", "19960331T020000", "BYMONTH=10;BYDAY=-1SU",
        "19961027T030000" },
    { "America/New_York", "-0500", "-0400", "BYMONTH=3;BYDAY=2SU", "20070311T020000", "BYMONTH=11;BYDAY=1SU",
        "20071104T020000" },
    { "America/St_Johns", "-0330", "-0230", "BYMONTH=3;BYDAY=2SU", "20070311T020000", "BYMONTH=11;BYDAY=1SU",
        "20071104T020000" },
    { "Australia/Sydney", "+1000", "+1100", "BYMONTH=10;BYDAY=1SU", "20081005T020000", "BYMONTH=4;BYDAY=1SU",
        "20080406T030000" },
    { "Asia/Kolkata", "+0530", nullptr, nullptr, nullptr, nullptr, nullptr },
    { "Asia/Tokyo", "+0900", nullptr, nullptr, nullptr, nullptr, nullptr },
};

struct Kind
{
    const char *name;
    const char *lines;
};

/** In each zone; the weeks of March and April 2030 hold the changes of the clocks. */
const Kind zoned[] = {
    { "winter", "DTSTART{z}:20300115T091500\nDTEND{z}:20300115T101500" },
    { "summer over midnight", "DTSTART{z}:20300715T233000\nDTEND{z}:20300716T003000" },
    { "days", "DTSTART{z}:20300228T070000\nDTEND{z}:20300228T073000\nRRULE:FREQ=DAILY;COUNT=60" },
    { "each third day",
        "DTSTART{z}:20301001T220000\nDTEND{z}:20301001T230000\nRRULE:FREQ=DAILY;INTERVAL=3;UNTIL=20301220T"
        "000000Z" },
    { "weeks",
        "DTSTART{z}:20300107T093000\nDTEND{z}:20300107T103000\n"
        "RRULE:FREQ=WEEKLY;BYDAY=MO,TH;UNTIL=20301220T000000Z\n"
        "EXDATE{z}:20300110T093000\nEXDATE{z}:20300715T093000" },
    { "other weeks", "DTSTART{z}:20300325T160000\nDTEND{z}:20300325T170000\nRRULE:FREQ=WEEKLY;INTERVAL=2" },
    { "months", "DTSTART{z}:20300131T120000\nDTEND{z}:20300131T130000\nRRULE:FREQ=MONTHLY;BYMONTHDAY=15" },
    { "last Fridays",
        "DTSTART{z}:20300125T083000\nDTEND{z}:20300125T090000\nRRULE:FREQ=MONTHLY;BYDAY=-1FR;COUNT=24" },
    { "years",
        "DTSTART{z}:20300331T013000\nDTEND{z}:20300331T014500\n"
        "RRULE:FREQ=YEARLY;BYMONTH=3;BYMONTHDAY=31;UNTIL=20340401T000000Z" },
    { "second Sundays in October",
        "DTSTART{z}:20301013T200000\nDTEND{z}:20301013T220000\nRRULE:FREQ=YEARLY;BYMONTH=10;BYDAY=2SU;COUNT="
        "4" },
};

const Kind once[] = {
    { "one day", "DTSTART;VALUE=DATE:20300331\nDTEND;VALUE=DATE:20300401\nTRANSP:TRANSPARENT" },
    { "two weeks", "DTSTART;VALUE=DATE:20301020\nDTEND;VALUE=DATE:20301103\nTRANSP:TRANSPARENT" },
    { "birthday 誕生日",
        "DTSTART;VALUE=DATE:20300228\nDTEND;VALUE=DATE:20300301\nRRULE:FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=28" },
    { "leap days",
        "DTSTART;VALUE=DATE:20320229\nDTEND;VALUE=DATE:20320301\nRRULE:FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=29" },
    { "fair",
        "DTSTART;VALUE=DATE:20300304\nDTEND;VALUE=DATE:20300306\n"
        "RRULE:FREQ=WEEKLY;UNTIL=20300617;BYDAY=MO\nEXDATE;VALUE=DATE:20300401" },
    { "moment", "DTSTART:20300610T120000Z\nDTEND:20300610T121500Z" },
    { "moments", "DTSTART:20300311T233000Z\nDTEND:20300312T001500Z\nRRULE:FREQ=DAILY;COUNT=30" },
    { "none", "DTSTART{z}:20300610T120000\nDTEND{z}:20300610T120000" },
    { "private", "DTSTART{z}:20300611T120000\nDTEND{z}:20300611T130000\nCLASS:PRIVATE\nSTATUS:CONFIRMED" },
    { "secret",
        "DTSTART{z}:20300612T120000\nDTEND{z}:20300612T130000\nCLASS:CONFIDENTIAL\nTRANSP:TRANSPARENT" },
    { "perhaps", "DTSTART{z}:20300613T120000\nDTEND{z}:20300613T130000\nSTATUS:TENTATIVE" },
    { "texts: «Ąčé» \\; 🎉",
        "DTSTART{z}:20300614T120000\nDTEND{z}:20300614T130000\nLOCATION:Straße 5\\, Zürich\\; 北京\n"
        "DESCRIPTION:First\\nSecond\\n\\nLast 🎉\\, <b>&amp\\;\nCATEGORIES:Büro,Work,予定" },
    { "alarm just before",
        "DTSTART{z}:20300615T120000\nDTEND{z}:20300615T130000\n"
        "BEGIN:VALARM\nACTION:DISPLAY\nDESCRIPTION:x\nTRIGGER:-PT1M\nEND:VALARM" },
    { "alarm the day before",
        "DTSTART;VALUE=DATE:20300616\nDTEND;VALUE=DATE:20300617\n"
        "BEGIN:VALARM\nACTION:DISPLAY\nDESCRIPTION:x\nTRIGGER:-P1D\nEND:VALARM" },
    { "meeting",
        "DTSTART{z}:20300617T120000\nDTEND{z}:20300617T130000\nRRULE:FREQ=WEEKLY;COUNT=6\n"
        "ORGANIZER;CN=Ann Author:mailto:ann@example.com\n"
        "ATTENDEE;CN=Bob;ROLE=REQ-PARTICIPANT;PARTSTAT=ACCEPTED:mailto:bob.ext@example.com\n"
        "ATTENDEE;CN=Çelik;ROLE=OPT-PARTICIPANT;PARTSTAT=DECLINED:mailto:celik@example.com\n"
        "ATTENDEE;CN=Dan;ROLE=REQ-PARTICIPANT;PARTSTAT=TENTATIVE:mailto:dan@example.com\n"
        "ATTENDEE;CN=Eve;ROLE=REQ-PARTICIPANT;PARTSTAT=NEEDS-ACTION;RSVP=TRUE:mailto:eve@example.com" },
};

/** Occurrences of their own, each as a whole event. */
const Kind exceptions[] = {
    { "rows",
        "DTSTART{z}:20300304T180000\nDTEND{z}:20300304T190000\nRRULE:FREQ=WEEKLY;COUNT=10\n"
        "EXDATE{z}:20300318T180000\nLOCATION:Hall\nDESCRIPTION:Bring shoes\nCATEGORIES:Sport\n"
        "BEGIN:VALARM\nACTION:DISPLAY\nDESCRIPTION:x\nTRIGGER:-PT15M\nEND:VALARM\n"
        "END:VEVENT\nBEGIN:VEVENT\nUID:{uid}\nDTSTAMP:20261101T060000Z\n"
        "RECURRENCE-ID{z}:20300311T180000\nDTSTART{z}:20300312T200000\nDTEND{z}:20300312T220000\n"
        "SUMMARY:Moved 移動\nLOCATION:Pool\nDESCRIPTION:Bring a towel\nCATEGORIES:Sport,Wet\n"
        "BEGIN:VALARM\nACTION:DISPLAY\nDESCRIPTION:x\nTRIGGER:-PT45M\nEND:VALARM\n"
        "END:VEVENT\nBEGIN:VEVENT\nUID:{uid}\nDTSTAMP:20261101T060000Z\n"
        "RECURRENCE-ID{z}:20300325T180000\nDTSTART{z}:20300325T173000\nDTEND{z}:20300325T190000\n"
        "SUMMARY:Earlier\nLOCATION:Hall\nDESCRIPTION:Bring shoes\nCATEGORIES:Sport\n"
        "BEGIN:VALARM\nACTION:DISPLAY\nDESCRIPTION:x\nTRIGGER:-PT15M\nEND:VALARM" },
    { "holidays",
        "DTSTART;VALUE=DATE:20300701\nDTEND;VALUE=DATE:20300703\nRRULE:FREQ=MONTHLY;BYDAY=1MO;COUNT=9\n"
        "EXDATE;VALUE=DATE:20300902\n"
        "END:VEVENT\nBEGIN:VEVENT\nUID:{uid}\nDTSTAMP:20261101T060000Z\n"
        "RECURRENCE-ID;VALUE=DATE:20301104\nDTSTART;VALUE=DATE:20301107\nDTEND;VALUE=DATE:20301110\n"
        "SUMMARY:Later days" },
};

const Zone &zoneOf(const QString &id)
{
    for (const Zone &zone : zones) {
        if (id == QLatin1String(zone.id))
            return zone;
    }
    return zones[0];
}

QStringList change(const char *kind, const char *start, const char *from, const char *to, const char *rule)
{
    QStringList lines { QStringLiteral("BEGIN:") + QLatin1String(kind),
        QStringLiteral("DTSTART:") + QLatin1String(start),
        QStringLiteral("TZOFFSETFROM:") + QLatin1String(from),
        QStringLiteral("TZOFFSETTO:") + QLatin1String(to) };
    if (rule)
        lines.append(QStringLiteral("RRULE:FREQ=YEARLY;") + QLatin1String(rule));
    lines.append(QStringLiteral("END:") + QLatin1String(kind));
    return lines;
}

QStringList zoneLines(const Zone &zone)
{
    QStringList lines { QStringLiteral("BEGIN:VTIMEZONE"), QStringLiteral("TZID:") + QLatin1String(zone.id) };
    if (zone.summerOffset) {
        lines += change("DAYLIGHT", zone.summerStart, zone.offset, zone.summerOffset, zone.summerRule);
        lines += change("STANDARD", zone.winterStart, zone.summerOffset, zone.offset, zone.winterRule);
    } else {
        lines += change("STANDARD", "19700101T000000", zone.offset, zone.offset, nullptr);
    }
    lines.append(QStringLiteral("END:VTIMEZONE"));
    return lines;
}

QByteArray event(const QString &uid, const QString &summary, const Kind &kind, const QString &zone)
{
    QStringList lines { QStringLiteral("UID:") + uid, QStringLiteral("DTSTAMP:20261101T060000Z"),
        QStringLiteral("SUMMARY:") + summary };
    lines += QString::fromUtf8(kind.lines).replace(QStringLiteral("{uid}"), uid).split(QLatin1Char('\n'));
    return EventSamples::iCalendar(zone, lines);
}

} // namespace

QByteArray EventSamples::iCalendar(const QString &zone, const QStringList &lines)
{
    QStringList all { QStringLiteral("BEGIN:VCALENDAR"), QStringLiteral("VERSION:2.0"),
        QStringLiteral("PRODID:-//Example//Samples//EN") };
    all += zoneLines(zoneOf(zone));
    all.append(QStringLiteral("BEGIN:VEVENT"));
    all += lines;
    all += QStringList { QStringLiteral("END:VEVENT"), QStringLiteral("END:VCALENDAR"), QString() };
    return all.join(QStringLiteral("\r\n"))
        .replace(QStringLiteral("{z}"), QStringLiteral(";TZID=") + zone)
        .toUtf8();
}

QMap<QString, QByteArray> EventSamples::all()
{
    QMap<QString, QByteArray> samples;
    const auto enter = [&samples](const Kind &kind, const QString &zone) {
        const QString uid = QStringLiteral("sample-%1").arg(samples.size());
        samples.insert(
            uid, event(uid, QStringLiteral("%1 (%2)").arg(QString::fromUtf8(kind.name), zone), kind, zone));
    };
    for (const Zone &zone : zones) {
        for (const Kind &kind : zoned)
            enter(kind, QLatin1String(zone.id));
        enter(exceptions[0], QLatin1String(zone.id));
    }
    for (const Kind &kind : once)
        enter(kind, QStringLiteral("Europe/Berlin"));
    enter(exceptions[1], QStringLiteral("Europe/Berlin"));
    return samples;
}
