// SPDX-License-Identifier: LGPL-2.1-or-later
#include <QtContacts/QContactManager>
#include <QtContacts/QContactName>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTextStream>

#include <cstdio>
#include <unistd.h>

QTCONTACTS_USE_NAMESPACE

// Prints the names of contacts that it hears of, adds one to the collection for each line of input, ends with
// an empty line.

namespace {

void print(const QString &line)
{
    std::fputs(qPrintable(line + QLatin1Char('\n')), stdout);
    std::fflush(stdout);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QContactCollectionId collection =
        QContactCollectionId::fromString(application.arguments().value(1));
    QContactManager manager(QStringLiteral("org.plover.contacts.sqlite"));
    if (manager.collection(collection).id() != collection)
        return 2;
    QObject::connect(&manager, &QContactManager::contactsAdded, [&manager](const QList<QContactId> &ids) {
        for (const QContactId &id : ids)
            print(QStringLiteral("heard ") + manager.contact(id).detail<QContactName>().firstName());
    });
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QTextStream lines(stdin);
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        const QString line = lines.readLine();
        if (line.isEmpty()) {
            application.quit();
            return;
        }
        QContactName name;
        name.setFirstName(line);
        QContact contact;
        contact.setCollectionId(collection);
        contact.saveDetail(&name);
        if (!manager.saveContact(&contact))
            print(QStringLiteral("failed"));
    });
    print(QStringLiteral("ready"));
    return application.exec();
}
