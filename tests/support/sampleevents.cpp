// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/sampleevents.h"

using namespace Simulator;

namespace {

const QByteArray berlin = QByteArrayLiteral("Europe/Berlin");

} // namespace

Event SampleEvents::weekly()
{
    Event event =
        Event::timed(QStringLiteral("Team"), berlin, QDateTime(QDate(2026, 1, 5), QTime(9, 30)), 45);
    event.rule = EventRule();
    event.rule->type = EventRule::Weekly;
    event.rule->dayOfWeek = EventRule::Monday | EventRule::Thursday;
    event.rule->firstDayOfWeek = 1;
    event.location.name = QStringLiteral("Raum 7");
    event.reminder = 15;
    event.editOccurrence(QDate(2026, 4, 2), [](EventDetails &details) {
        details.start = details.start.addSecs(3600);
        details.end = details.end.addSecs(7200);
        details.subject.clear();
        details.reminder = 5;
    });
    event.deleteOccurrence(QDate(2026, 11, 2));
    return event;
}

Event SampleEvents::wholeDay()
{
    Event event = Event::wholeDay(QStringLiteral("Fair"), QDate(2026, 6, 30), 3);
    event.zone = EventZone::named(berlin, event.start);
    event.rule = EventRule();
    event.rule->type = EventRule::YearlyByDay;
    event.rule->dayOfMonth = 30;
    event.rule->monthOfYear = 6;
    event.rule->until = QDateTime(QDate(2031, 6, 30), QTime(0, 0), Qt::UTC);
    event.deleteOccurrence(QDate(2028, 6, 30));
    event.editOccurrence(QDate(2029, 6, 30), [](EventDetails &details) {
        details.end = details.end.addDays(1);
        details.location.name = QStringLiteral("Hall 3");
    });
    return event;
}

Event SampleEvents::meeting()
{
    Event event = Event::timed(
        QStringLiteral("Review <äöü>"), "America/New_York", QDateTime(QDate(2036, 7, 1), QTime(14, 0)), 60);
    event.uid = QStringLiteral("meeting-1");
    event.organizerName = QStringLiteral("Ann Author");
    event.organizerEmail = QStringLiteral("ann@example.com");
    event.location = { QStringLiteral("Office"),
        { { QStringLiteral("City"), QStringLiteral("New York") },
            { QStringLiteral("Latitude"), QStringLiteral("40.7") } } };
    event.body = { QStringLiteral("Bring the figures."), QStringLiteral("<b>Bring</b> the figures.") };
    event.categories = QStringList { QStringLiteral("Work"), QStringLiteral("Büro") };
    const QDateTime proposed = event.start.addSecs(1800);
    event.attendees = { { QStringLiteral("bob@example.com"), QStringLiteral("Bob"), 3, 1, {}, {} },
        { QStringLiteral("eve@example.com"), QStringLiteral("Eve"), 4, 2, proposed,
            proposed.addSecs(3600) } };
    event.attach(QStringLiteral("figures.txt"), "1 2 3").contentId = QStringLiteral("figures@example.com");
    event.reminder = 0;
    event.sensitivity = 2;
    event.busyStatus = 3;
    event.meetingStatus = 3;
    event.responseType = 3;
    event.replyTime = QDateTime(QDate(2026, 6, 1), QTime(8, 0), Qt::UTC);
    event.stamp = event.replyTime;
    event.conferenceLink = QStringLiteral("conf:sip:ann@example.com");
    event.externalLink = QStringLiteral("https://meet.example.com/1");
    event.responseRequested = true;
    event.disallowNewTimeProposal = true;
    return event;
}

QString SampleEvents::timesXml()
{
    return QStringLiteral(
        "<k:StartTime>20260504T100000Z</k:StartTime><k:EndTime>20260504T110000Z</k:EndTime>");
}

QString SampleEvents::fileXml(const QString &name)
{
    const QString content = QStringLiteral("content of ") + name;
    return QStringLiteral("<b:Attachments><b:Add><b:ClientId>%1</b:ClientId><b:Method>1</b:Method>"
                          "<b:Content encoding='opaque'>%2</b:Content><b:DisplayName>%1</b:DisplayName>"
                          "<b:ContentId>id-%1</b:ContentId></b:Add></b:Attachments>")
        .arg(name, content);
}
