// SPDX-License-Identifier: LGPL-2.1-or-later
// The other side of the measurements: a simulated Exchange with so many generated messages, whose answers can
// be recorded and given again, so that they cost the server next to nothing.
#include "simulator/exchangeserver.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDataStream>
#include <QDateTime>
#include <QFile>
#include <QSocketNotifier>

#include <cstdio>
#include <iostream>
#include <string>

using namespace Simulator;

namespace {

constexpr int messageSize = 4096;
constexpr int lineLength = 70;

QString optionsCommand()
{
    return QStringLiteral("OPTIONS");
}

/** A message of its own text; the later the number the older it is. */
QByteArray message(int number)
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

void fill(Mailbox &mailbox, int count)
{
    const QString inbox = mailbox.inboxId();
    for (int number = 1; number <= count; ++number)
        mailbox.deliver(inbox, message(number));
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
    const QCommandLineOption messages(QStringLiteral("messages"), QStringLiteral("Messages in the Inbox."),
        QStringLiteral("number"), QStringLiteral("0"));
    const QCommandLineOption recordTo(
        QStringLiteral("record"), QStringLiteral("Keep the answers there at the end."), file);
    const QCommandLineOption replayFrom(
        QStringLiteral("replay"), QStringLiteral("Give the answers that are kept there."), file);
    parser.addOptions({ messages, recordTo, replayFrom });
    parser.process(application);

    ExchangeServer server;
    Mailbox &mailbox = server.addUser(
        QStringLiteral("bench"), qEnvironmentVariable("FENNEL_BENCH_PASSWORD", QStringLiteral("secret")));
    const bool isReplay = parser.isSet(replayFrom);
    if (isReplay && !replay(server, parser.value(replayFrom)))
        return fail(QStringLiteral("cannot read the recorded answers"));
    if (!isReplay)
        fill(mailbox, parser.value(messages).toInt());
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
        if (std::getline(std::cin, line) && line == "deliver") {
            mailbox.deliver(mailbox.inboxId(), message(0));
            return say("ok");
        }
        const QStringList complaints = server.finish();
        if (!complaints.isEmpty())
            status = fail(complaints.join(QStringLiteral("; ")));
        else if (parser.isSet(recordTo) && !record(server, parser.value(recordTo)))
            status = fail(QStringLiteral("cannot keep the answers"));
        application.exit(status);
    });
    return application.exec();
}
