// SPDX-License-Identifier: LGPL-2.1-or-later
#include <qmailstore.h>

#include <QCoreApplication>
#include <QSocketNotifier>
#include <QTextStream>

#include <cstdio>
#include <unistd.h>

// flood ACCOUNT FOLDER: adds lists of ten messages until it is killed, a line of output a list.
// talk ACCOUNT FOLDER: prints what it hears, adds a message for each line of input, ends with the input.

namespace {

void print(const QString &line)
{
    std::fputs(qPrintable(line + QLatin1Char('\n')), stdout);
    std::fflush(stdout);
}

QMailMessage message(const QStringList &arguments, const QString &uid)
{
    QMailMessage message;
    message.setParentAccountId(QMailAccountId(arguments.at(2).toULongLong()));
    message.setParentFolderId(QMailFolderId(arguments.at(3).toULongLong()));
    message.setServerUid(uid);
    message.setCustomField(QStringLiteral("uid"), uid);
    message.setBody(QMailMessageBody::fromData(
        uid.repeated(100), QMailMessageContentType("text/plain; charset=UTF-8"), QMailMessageBody::EightBit));
    return message;
}

[[noreturn]] void flood(const QStringList &arguments)
{
    const int length = 10;
    for (int list = 0;; ++list) {
        QVector<QMailMessage> messages(length);
        QList<QMailMessage *> pointers;
        for (int i = 0; i < length; ++i) {
            const QString uid =
                QStringLiteral("%1-%2-%3").arg(QCoreApplication::applicationPid()).arg(list).arg(i);
            messages[i] = message(arguments, uid);
            pointers.append(&messages[i]);
        }
        print(QMailStore::instance()->addMessages(pointers) ? QStringLiteral("added")
                                                            : QStringLiteral("failed"));
    }
}

int talk(QCoreApplication &application, const QStringList &arguments)
{
    QMailStore *store = QMailStore::instance();
    QObject::connect(store, &QMailStore::messagesAdded, [](const QMailMessageIdList &ids) {
        print(QStringLiteral("heard %1").arg(QMailMessageMetaData(ids.first()).serverUid()));
    });
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QTextStream lines(stdin);
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        const QString line = lines.readLine();
        if (line.isEmpty()) {
            application.quit();
            return;
        }
        QMailMessage added = message(arguments, line);
        if (!store->addMessage(&added))
            print(QStringLiteral("failed"));
        store->flushIpcNotifications();
    });
    print(QStringLiteral("ready"));
    return application.exec();
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.value(1) == QLatin1String("flood") && arguments.size() == 4)
        flood(arguments);
    if (arguments.value(1) == QLatin1String("talk") && arguments.size() == 4)
        return talk(application, arguments);
    return 2;
}
