// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/sampleitems.h"

#include <QFile>

namespace Simulator {
namespace {

const QByteArray berlin = QByteArrayLiteral("Europe/Berlin");

QDate mondayOf(const QDate &day)
{
    return day.addDays(1 - day.dayOfWeek());
}

Event teamSeries(const QDate &monday)
{
    Event event = Event::timed(QStringLiteral("Team meeting"), berlin, QDateTime(monday, QTime(9, 30)), 45);
    event.location.name = QStringLiteral("Room 7");
    event.body.plain = QStringLiteral("What we did, what comes next.");
    event.reminder = 10;
    event.categories = QStringList { QStringLiteral("Work") };
    event.rule = EventRule();
    event.rule->type = EventRule::Weekly;
    event.rule->dayOfWeek = EventRule::Monday;
    event.rule->occurrences = 12;
    event.editOccurrence(monday.addDays(7), [](EventDetails &details) {
        details.start = details.start.addSecs(24 * 3600 + 3600);
        details.end = details.end.addSecs(24 * 3600 + 3600);
        details.location.name = QStringLiteral("Übergang 3");
    });
    event.deleteOccurrence(monday.addDays(14));
    return event;
}

Event conference(const QDate &monday)
{
    Event event = Event::wholeDay(QStringLiteral("Conference"), monday.addDays(9), 2);
    event.location.name = QStringLiteral("Köln");
    event.zone = EventZone::named(berlin, event.start);
    event.busyStatus = 3;
    return event;
}

Event callAbroad(const QDate &monday)
{
    Event event = Event::timed(QStringLiteral("Call with the office in New York"), "America/New_York",
        QDateTime(monday.addDays(2), QTime(10, 0)), 30);
    event.reminder = 15;
    return event;
}

Event review(const QDate &monday)
{
    Event event =
        Event::timed(QStringLiteral("Review"), berlin, QDateTime(monday.addDays(3), QTime(14, 0)), 90);
    event.organizerName = QStringLiteral("Demo User");
    event.organizerEmail = QStringLiteral("user@example.com");
    event.meetingStatus = 1;
    event.responseRequested = true;
    event.attendees = {
        { QStringLiteral("ann@example.com"), QStringLiteral("Ann Author"), 3, 1, {}, {} },
        { QStringLiteral("bob@example.com"), QStringLiteral("Bob Reader"), 2, 1, {}, {} },
        { QStringLiteral("eve@example.com"), QStringLiteral("Eve Guest"), 5, 2, {}, {} },
    };
    return event;
}

Contact named(const char *first, const char *last)
{
    Contact contact;
    contact.setText(QStringLiteral("FirstName"), QString::fromUtf8(first));
    contact.setText(QStringLiteral("LastName"), QString::fromUtf8(last));
    contact.setText(
        QStringLiteral("FileAs"), QString::fromUtf8(last) + QStringLiteral(", ") + QString::fromUtf8(first));
    return contact;
}

QByteArray portrait()
{
    QFile source(QStringLiteral(":/sample/portrait.png"));
    const bool open = source.open(QIODevice::ReadOnly);
    Q_ASSERT_X(open, "SampleItems", "portrait.png");
    return open ? source.readAll() : QByteArray();
}

} // namespace

QVector<Event> SampleItems::events(const QDate &today)
{
    const QDate monday = mondayOf(today);
    return { teamSeries(monday), conference(monday), callAbroad(monday), review(monday) };
}

QVector<Contact> SampleItems::contacts()
{
    Contact ann = named("Ann", "Author");
    ann.setText(QStringLiteral("Email1Address"), QStringLiteral("ann@example.com"))
        .setText(QStringLiteral("MobilePhoneNumber"), QStringLiteral("+49 170 1234567"))
        .setText(QStringLiteral("CompanyName"), QStringLiteral("Example"))
        .setText(QStringLiteral("JobTitle"), QStringLiteral("Editor"))
        .setDate(QStringLiteral("Birthday"), QDate(1984, 2, 29))
        .setPicture(portrait());
    Contact bob = named("Bob", "Reader");
    bob.setText(QStringLiteral("Email1Address"), QStringLiteral("bob@example.com"))
        .setText(QStringLiteral("HomePhoneNumber"), QStringLiteral("+1 555 0100"))
        .setText(QStringLiteral("HomeAddressStreet"), QStringLiteral("1 Main Street"))
        .setText(QStringLiteral("HomeAddressCity"), QStringLiteral("Springfield"))
        .setNote(QStringLiteral("Reads everything."));
    Contact juergen = named("Jürgen", "Müller-Lüdenscheidt");
    juergen.setText(QStringLiteral("BusinessPhoneNumber"), QStringLiteral("+49 221 987654"))
        .setCategories({ QStringLiteral("Freunde"), QStringLiteral("Köln") });
    Contact hanako = named("花子", "山田");
    hanako.setText(QStringLiteral("YomiFirstName"), QStringLiteral("はなこ"))
        .setText(QStringLiteral("YomiLastName"), QStringLiteral("やまだ"))
        .setText(QStringLiteral("Email1Address"), QStringLiteral("hanako@example.com"));
    return { ann, bob, juergen, hanako };
}

} // namespace Simulator
