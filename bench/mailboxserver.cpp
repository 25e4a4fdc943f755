// SPDX-License-Identifier: LGPL-2.1-or-later
// The other side of the measurements: a simulated Exchange with so many generated items, whose answers can be
// recorded and given again, so that they cost the server next to nothing.
#include "mailboxitems.h"

#include "simulator/contactitem.h"
#include "simulator/eventitem.h"
#include "simulator/exchangeserver.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDataStream>
#include <QFile>
#include <QSocketNotifier>

#include <cstdio>
#include <iostream>
#include <optional>
#include <string>

using namespace Simulator;

namespace {

QString optionsCommand()
{
    return QStringLiteral("OPTIONS");
}

void fill(Mailbox &mailbox, int messages, int events, int contacts)
{
    for (int number = 1; number <= messages; ++number)
        mailbox.deliver(mailbox.inboxId(), MailboxItems::message(number));
    for (int number = 0; number < events; ++number)
        mailbox.addItem(
            mailbox.folderOfType(CalendarFolder).id, EventItem::make(MailboxItems::event(number)));
    for (int number = 0; number < contacts; ++number)
        mailbox.addItem(
            mailbox.folderOfType(ContactsFolder).id, ContactItem::make(MailboxItems::contact(number)));
}

/** How many events and exceptions, contacts and pictures there are. */
std::string count(const Mailbox &mailbox)
{
    int exceptions = 0;
    const QVector<ItemEntry> events = mailbox.items(mailbox.folderOfType(CalendarFolder).id);
    for (const ItemEntry &entry : events) {
        const std::optional<Event> event = mailbox.value<EventItem>(entry.serverId);
        for (const EventException &exception : event->exceptions)
            exceptions += exception.isDeleted ? 0 : 1;
    }
    int pictures = 0;
    const QVector<ItemEntry> contacts = mailbox.items(mailbox.folderOfType(ContactsFolder).id);
    for (const ItemEntry &entry : contacts)
        pictures += mailbox.value<ContactItem>(entry.serverId)->picture().isEmpty() ? 0 : 1;
    return QStringLiteral("%1 %2 %3 %4")
        .arg(events.size())
        .arg(exceptions)
        .arg(contacts.size())
        .arg(pictures)
        .toStdString();
}

bool record(const ExchangeServer &server, const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    QDataStream stream(&file);
    const QVector<RecordedRequest> requests = server.requests();
    for (const RecordedRequest &request : requests) {
        if (request.command != optionsCommand())
            stream << request.command << request.replyHeader("Content-Type") << request.replyBody;
    }
    return stream.status() == QDataStream::Ok;
}

/** The client must ask as it did when the answers were recorded. */
bool replay(ExchangeServer &server, const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QDataStream stream(&file);
    server.letThrough({ optionsCommand() });
    while (!stream.atEnd()) {
        QString command;
        QByteArray type;
        QByteArray body;
        stream >> command >> type >> body;
        server.expect(command).reply(body.isEmpty() ? Override::empty() : Override::bytes(body, type));
    }
    return stream.status() == QDataStream::Ok;
}

struct Weather
{
    const char *name;
    Override (*answer)(const Mailbox &mailbox);
};

Override pingAnswer(int status, const QString &folderId = {})
{
    WbxmlNode root(QStringLiteral("Ping:Ping"));
    root.append(QStringLiteral("Status"), status);
    if (!folderId.isEmpty())
        root.append(QStringLiteral("Folders")).append(QStringLiteral("Folder"), folderId);
    return Override::document(root);
}

/** What the server has to say to each Ping, for ever. */
const Weather weathers[] = {
    { "changed",
        [](const Mailbox &mailbox) {
            return pingAnswer(2, mailbox.inboxId());
        } },
    { "at-once",
        [](const Mailbox &) {
            return pingAnswer(1);
        } },
    { "silent",
        [](const Mailbox &) {
            return Override::hang();
        } },
    { "busy",
        [](const Mailbox &) {
            return Override::httpStatus(503, { { "Retry-After", "60" } });
        } },
};

bool setWeather(ExchangeServer &server, const Mailbox &mailbox, const std::string &name)
{
    for (const Weather &weather : weathers) {
        if (name == weather.name) {
            server.overrideAll(QStringLiteral("Ping"), weather.answer(mailbox));
            return true;
        }
    }
    return false;
}

void say(const std::string &text)
{
    std::cout << text << std::endl;
}

int fail(const QString &text)
{
    std::cerr << "bench-mailboxserver: " << qPrintable(text) << std::endl;
    return 1;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    const QString file = QStringLiteral("file");
    const QString number = QStringLiteral("number");
    const QString none = QStringLiteral("0");
    const QCommandLineOption messages(
        QStringLiteral("messages"), QStringLiteral("Messages in the Inbox."), number, none);
    const QCommandLineOption events(
        QStringLiteral("events"), QStringLiteral("Events in the Calendar."), number, none);
    const QCommandLineOption contacts(QStringLiteral("contacts"),
        QStringLiteral("Contacts in Contacts and in the address list."), number, none);
    const QCommandLineOption recordTo(
        QStringLiteral("record"), QStringLiteral("Keep the answers there at the end."), file);
    const QCommandLineOption replayFrom(
        QStringLiteral("replay"), QStringLiteral("Give the answers that are kept there."), file);
    const QCommandLineOption users(
        QStringLiteral("users"), QStringLiteral("Users with such a mailbox."), number, QStringLiteral("1"));
    const QCommandLineOption megabytes(
        QStringLiteral("file"), QStringLiteral("Megabytes of a file in a message."), number, none);
    const QCommandLineOption heartbeat(
        QStringLiteral("heartbeat"), QStringLiteral("The longest seconds that a Ping may wait."), number);
    parser.addOptions({ messages, events, contacts, users, megabytes, heartbeat, recordTo, replayFrom });
    parser.process(application);

    ExchangeServer server;
    const QString password = qEnvironmentVariable("FENNEL_BENCH_PASSWORD", QStringLiteral("secret"));
    Mailbox &mailbox = server.addUser(QStringLiteral("bench"), password);
    const bool isReplay = parser.isSet(replayFrom);
    if (isReplay && !replay(server, parser.value(replayFrom)))
        return fail(QStringLiteral("cannot read the recorded answers"));
    const auto fillAsAsked = [&](Mailbox &one) {
        fill(one, parser.value(messages).toInt(), parser.value(events).toInt(),
            parser.value(contacts).toInt());
    };
    if (!isReplay)
        fillAsAsked(mailbox);
    for (int user = 2; user <= parser.value(users).toInt(); ++user)
        fillAsAsked(server.addUser(QStringLiteral("bench%1").arg(user), password));
    server.changeDirectory([&](Directory &directory) {
        for (int i = 0; i < parser.value(contacts).toInt(); ++i)
            directory.add(Person::fromContact(MailboxItems::contact(i)));
    });
    if (parser.isSet(megabytes))
        mailbox.deliver(mailbox.inboxId(), MailboxItems::messageWithFile(parser.value(megabytes).toInt()));
    if (parser.isSet(heartbeat))
        server.setHeartbeatLimits(1, parser.value(heartbeat).toInt());
    int requests = 0;
    int pings = 0;
    QObject::connect(&server, &ExchangeServer::requestReceived, [&](const RecordedRequest &request) {
        ++requests;
        pings += request.command == QLatin1String("Ping") ? 1 : 0;
    });
    if (!server.start())
        return fail(QStringLiteral("cannot listen"));
    if (!parser.isSet(recordTo)) {
        // What went over the line would otherwise pile up.
        QObject::connect(&server, &ExchangeServer::replied, &server, &ExchangeServer::clearRequests);
    }
    say("listening on " + server.url().toString().toStdString());

    int status = 0;
    QSocketNotifier input(0, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &application, [&] {
        std::string line;
        std::getline(std::cin, line);
        if (line == "deliver") {
            mailbox.deliver(mailbox.inboxId(), MailboxItems::message(0));
            return say("ok");
        }
        if (line == "requests")
            return say(std::to_string(requests));
        if (line == "pings")
            return say(std::to_string(pings));
        if (setWeather(server, mailbox, line))
            return say("ok");
        if (line == "count")
            return say(count(mailbox));
        const QStringList complaints = server.finish();
        if (!complaints.isEmpty())
            status = fail(complaints.join(QStringLiteral("; ")));
        else if (parser.isSet(recordTo) && !record(server, parser.value(recordTo)))
            status = fail(QStringLiteral("cannot keep the answers"));
        application.exit(status);
    });
    return application.exec();
}
