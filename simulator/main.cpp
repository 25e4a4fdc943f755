// SPDX-License-Identifier: LGPL-2.1-or-later
// The simulated Exchange as a server of its own, for demonstrations and for trying clients by hand.
#include "simulator/controlchannel.h"
#include "simulator/exchangeserver.h"
#include "simulator/mailboxdirectory.h"
#include "simulator/sampleitems.h"
#include "simulator/samplemailbox.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>

#include <cstdio>

namespace {

const char passwordVariable[] = "FENNEL_SIMULATOR_PASSWORD";
const QString defaultPassword = QStringLiteral("secret");

void print(const QString &text)
{
    std::fputs(qUtf8Printable(text + QLatin1Char('\n')), stdout);
    std::fflush(stdout);
}

int fail(const QString &text)
{
    std::fputs(qUtf8Printable(QStringLiteral("fennel-exchange-simulator: %1\n").arg(text)), stderr);
    return 1;
}

void addOptions(QCommandLineParser &parser)
{
    const QString number = QStringLiteral("number");
    const QString list = QStringLiteral("list");
    const QString file = QStringLiteral("file");
    parser.addOptions({
        { QStringLiteral("port"), QStringLiteral("Listen on this port of 127.0.0.1; any free one without."),
            number, QStringLiteral("0") },
        { QStringLiteral("https"), QStringLiteral("Speak TLS, with a certificate made at the start.") },
        { QStringLiteral("certificate"), QStringLiteral("Write that certificate there, as PEM."), file },
        { QStringLiteral("user"), QStringLiteral("Name of the user."), QStringLiteral("name"),
            QStringLiteral("user") },
        { QStringLiteral("other-user"),
            QStringLiteral("Name of one more user, with an empty mailbox and the same password."),
            QStringLiteral("name") },
        { QStringLiteral("password-file"),
            QStringLiteral(
                "Read the password from the first line of the file; otherwise it is taken from %1, or "
                "else it is \"%2\".")
                .arg(QLatin1String(passwordVariable), defaultPassword),
            file },
        { QStringLiteral("versions"), QStringLiteral("Announced versions, \"12.1,14.1\"; all without."),
            list },
        { QStringLiteral("commands"), QStringLiteral("Announced commands, \"Sync,FolderSync\"; all without."),
            list },
        { QStringLiteral("mailbox"), QStringLiteral("A directory of .eml, .ics and .vcf files as mailbox."),
            QStringLiteral("dir") },
        { QStringLiteral("sample"),
            QStringLiteral("Fill the mailbox with sample messages, events and contacts, and the address list "
                           "with people.") },
        { QStringLiteral("directory"), QStringLiteral("A vCard file whose people stand in the address list."),
            file },
        { QStringLiteral("window"), QStringLiteral("Items in a reply where the client does not say."), number,
            QStringLiteral("100") },
        { QStringLiteral("quiet"), QStringLiteral("Do not print the dialogue.") },
    });
}

/** False if there is a file and it cannot be read. */
bool readPassword(const QString &fileName, QString *password)
{
    *password = qEnvironmentVariable(passwordVariable, defaultPassword);
    if (fileName.isEmpty())
        return true;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    *password = QString::fromUtf8(file.readLine()).remove(QLatin1Char('\n')).remove(QLatin1Char('\r'));
    return true;
}

void fillWithSamples(Simulator::ExchangeServer &server, Simulator::Mailbox &mailbox)
{
    Simulator::SampleMailbox::fill(mailbox);
    server.changeDirectory([](Simulator::Directory &directory) {
        const QVector<Simulator::Contact> contacts = Simulator::SampleItems::contacts();
        for (const Simulator::Contact &contact : contacts)
            directory.add(Simulator::Person::fromContact(contact));
    });
}

/** False if nobody is in the file. */
bool readDirectory(Simulator::ExchangeServer &server, const QString &fileName)
{
    QFile file(fileName);
    bool hasPeople = false;
    if (file.open(QIODevice::ReadOnly)) {
        const QByteArray cards = file.readAll();
        server.changeDirectory(
            [&](Simulator::Directory &directory) { hasPeople = directory.addCards(cards); });
    }
    return hasPeople;
}

/** What is wrong with the options; empty if all is well. */
QString setUp(Simulator::ExchangeServer &server, const QCommandLineParser &parser)
{
    QString password;
    if (!readPassword(parser.value(QStringLiteral("password-file")), &password))
        return QStringLiteral("cannot read the password file");
    Simulator::Mailbox &mailbox = server.addUser(parser.value(QStringLiteral("user")), password);
    for (const QString &name : parser.values(QStringLiteral("other-user")))
        server.addUser(name, password);
    if (parser.isSet(QStringLiteral("versions")))
        server.setVersions(parser.value(QStringLiteral("versions")).split(QLatin1Char(',')));
    if (parser.isSet(QStringLiteral("commands")))
        server.setCommands(parser.value(QStringLiteral("commands")).split(QLatin1Char(',')));
    server.setWindowSize(parser.value(QStringLiteral("window")).toInt());
    if (parser.isSet(QStringLiteral("sample")))
        fillWithSamples(server, mailbox);
    const QString people = parser.value(QStringLiteral("directory"));
    if (!people.isEmpty() && !readDirectory(server, people))
        return QStringLiteral("there are no people in ") + people;
    const QString directory = parser.value(QStringLiteral("mailbox"));
    if (!directory.isEmpty() && Simulator::MailboxDirectory::load(directory, mailbox) < 0)
        return QStringLiteral("there is no directory ") + directory;
    return QString();
}

bool writeCertificate(const QString &fileName, const QSslCertificate &certificate)
{
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly) && file.write(certificate.toPem()) > 0;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("fennel-exchange-simulator"));
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("A simulated Exchange server for ActiveSync 12.0 to 16.1.\n\n")
        + ControlChannel::help());
    parser.addHelpOption();
    addOptions(parser);
    parser.process(application);

    Simulator::ExchangeServer server;
    const QString complaint = setUp(server, parser);
    if (!complaint.isEmpty())
        return fail(complaint);
    const bool https = parser.isSet(QStringLiteral("https"));
    const quint16 port = parser.value(QStringLiteral("port")).toUShort();
    if (!server.start(https ? Simulator::ExchangeServer::Https : Simulator::ExchangeServer::Http, port))
        return fail(QStringLiteral("cannot listen on port %1").arg(port));
    const QString certificateFile = parser.value(QStringLiteral("certificate"));
    if (https && !certificateFile.isEmpty() && !writeCertificate(certificateFile, server.certificate()))
        return fail(QStringLiteral("cannot write ") + certificateFile);

    ControlChannel control(server, nullptr);
    QObject::connect(&control, &ControlChannel::quitRequested, &application, &QCoreApplication::quit);
    if (!parser.isSet(QStringLiteral("quiet"))) {
        QObject::connect(&server, &Simulator::ExchangeServer::replied, &application,
            [](const Simulator::RecordedRequest &request) { print(request.dump()); });
    }
    print(QStringLiteral("listening on %1").arg(server.url().toString()));
    return application.exec();
}
