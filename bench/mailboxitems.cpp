// SPDX-License-Identifier: LGPL-2.1-or-later
#include "mailboxitems.h"

#include "portrait.h"

#include <QRandomGenerator>

using namespace Simulator;

namespace {

constexpr int messageSize = 4096;
constexpr int lineLength = 70;
constexpr int seriesEvery = 10;
constexpr int meetingEvery = 5;

void repeatWeekly(Event &event, const QDate &first)
{
    constexpr int moved = 3 * 7;
    constexpr int deleted = 5 * 7;
    event.rule = EventRule();
    event.rule->type = EventRule::Weekly;
    event.rule->dayOfWeek = 1 << (first.dayOfWeek() % 7);
    event.rule->occurrences = 26;
    event.editOccurrence(first.addDays(moved), [](EventDetails &details) {
        details.start = details.start.addSecs(3600);
        details.end = details.end.addSecs(3600);
        details.location.name = QStringLiteral("Room 9");
    });
    event.deleteOccurrence(first.addDays(deleted));
}

void invite(Event &event)
{
    event.organizerName = QStringLiteral("Ada Lovelace");
    event.organizerEmail = QStringLiteral("ada@example.com");
    event.meetingStatus = 1;
    event.attendees = {
        { QStringLiteral("ann@example.com"), QStringLiteral("Ann Author"), 3, 1, {}, {} },
        { QStringLiteral("bob@example.com"), QStringLiteral("Bob Reader"), 2, 1, {}, {} },
        { QStringLiteral("eve@example.com"), QStringLiteral("Eve Guest"), 5, 2, {}, {} },
    };
}

QByteArray bytesOfFile(int size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator generator(1);
    for (char &byte : bytes)
        byte = char(generator.bounded(256));
    return bytes;
}

QByteArray inLines(const QByteArray &base64)
{
    constexpr int mimeLine = 76;
    QByteArray lines;
    lines.reserve(base64.size() + 2 * (base64.size() / mimeLine + 1));
    for (int from = 0; from < base64.size(); from += mimeLine)
        lines += base64.mid(from, mimeLine) + "\r\n";
    return lines;
}

} // namespace

QByteArray MailboxItems::message(int number)
{
    const QDateTime date = QDateTime::currentDateTimeUtc().addSecs(-number);
    QByteArray text = QStringLiteral("From: Ada Lovelace <ada@example.com>\r\n"
                                     "To: Charles Babbage <charles@example.com>\r\n"
                                     "Subject: Notes on the engine, part %1\r\n"
                                     "Date: %2\r\n"
                                     "Message-ID: <%1@example.com>\r\n"
                                     "MIME-Version: 1.0\r\n"
                                     "Content-Type: text/plain; charset=utf-8\r\n\r\n")
                          .arg(number)
                          .arg(date.toString(Qt::RFC2822Date))
                          .toUtf8();
    const QByteArray sentence =
        "Part " + QByteArray::number(number) + " tells what the engine weaves, and why. ";
    while (text.size() < messageSize)
        text += sentence.repeated(1 + lineLength / sentence.size()).left(lineLength) + "\r\n";
    return text;
}

QByteArray MailboxItems::messageWithFile(int megabytes)
{
    const QDateTime date = QDateTime::currentDateTimeUtc();
    return "From: Ada Lovelace <ada@example.com>\r\nTo: Charles Babbage <charles@example.com>\r\n"
           "Subject: The drawings\r\nDate: "
        + date.toString(Qt::RFC2822Date).toUtf8()
        + "\r\nMessage-ID: <drawings@example.com>\r\nMIME-Version: 1.0\r\n"
          "Content-Type: multipart/mixed; boundary=\"next\"\r\n\r\n"
          "--next\r\nContent-Type: text/plain; charset=utf-8\r\n\r\nAll drawings.\r\n"
          "--next\r\nContent-Type: application/octet-stream\r\nContent-Transfer-Encoding: base64\r\n"
          "Content-Disposition: attachment; filename=\"drawings.bin\"\r\n\r\n"
        + inLines(bytesOfFile(megabytes * 1024 * 1024).toBase64()) + "--next--\r\n";
}

Event MailboxItems::event(int number)
{
    const QDateTime start(QDate::currentDate().addDays(number % 60), QTime(8 + number % 10, 30));
    Event event =
        Event::timed(QStringLiteral("Work on the engine, part %1").arg(number), "Europe/Berlin", start, 45);
    event.location.name = QStringLiteral("Room 7");
    event.body.plain = QStringLiteral("Part %1: what we did, and what comes next. ").arg(number).repeated(5);
    event.reminder = 15;
    event.categories = QStringList { QStringLiteral("Work") };
    if (number % meetingEvery == 1)
        invite(event);
    if (number % seriesEvery == 0)
        repeatWeekly(event, start.date());
    return event;
}

Contact MailboxItems::contact(int number)
{
    const QString text = QString::number(number);
    Contact contact;
    contact.setText(QStringLiteral("FirstName"), QStringLiteral("Ada"))
        .setText(QStringLiteral("LastName"), QStringLiteral("Lovelace ") + text)
        .setText(QStringLiteral("FileAs"), QStringLiteral("Lovelace %1, Ada").arg(text))
        .setText(QStringLiteral("Email1Address"), QStringLiteral("ada%1@example.com").arg(text))
        .setText(QStringLiteral("Email2Address"), QStringLiteral("ada%1@example.org").arg(text))
        .setText(QStringLiteral("MobilePhoneNumber"), QStringLiteral("+49 170 ") + text)
        .setText(QStringLiteral("BusinessPhoneNumber"), QStringLiteral("+49 221 ") + text)
        .setText(QStringLiteral("HomePhoneNumber"), QStringLiteral("+49 30 ") + text)
        .setText(QStringLiteral("CompanyName"), QStringLiteral("Engines"))
        .setText(QStringLiteral("JobTitle"), QStringLiteral("Author"))
        .setText(QStringLiteral("HomeAddressStreet"), text + QStringLiteral(" Main Street"))
        .setText(QStringLiteral("HomeAddressCity"), QStringLiteral("London"))
        .setDate(QStringLiteral("Birthday"), QDate(1950, 12, 10).addDays(number))
        .setNote(QStringLiteral("Number %1 of those who know the engine. ").arg(text).repeated(3))
        .setPicture(Bench::portrait(number));
    return contact;
}
