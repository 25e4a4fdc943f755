// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/commandcontext.h"
#include "client/commandtable.h"
#include "client/exitstatus.h"

#include <QCoreApplication>
#include <QTextStream>

#include <clocale>
#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("fennel-easctl"));
    QCoreApplication::setApplicationVersion(QStringLiteral(FENNEL_EAS_VERSION));
    std::setlocale(LC_ALL, "");

    QStringList arguments = QCoreApplication::arguments().mid(1);
    CommandContext::Options options;
    options.json = arguments.removeAll(QStringLiteral("--json")) > 0;
    options.progress = arguments.removeAll(QStringLiteral("--progress")) > 0;
    const int account = arguments.indexOf(QStringLiteral("--account"));
    if (account >= 0 && account + 1 < arguments.size()) {
        options.account = arguments.at(account + 1);
        arguments.erase(arguments.begin() + account, arguments.begin() + account + 2);
    }
    const QString first = arguments.value(0);
    if (first == QLatin1String("help") || first == QLatin1String("--help") || first == QLatin1String("-h")) {
        QTextStream(stdout) << CommandTable::help();
        return ExitSuccess;
    }
    if (first == QLatin1String("--version")) {
        QTextStream(stdout) << QStringLiteral("fennel-easctl ") << QCoreApplication::applicationVersion()
                            << '\n';
        return ExitSuccess;
    }
    const Command *command = CommandTable::take(arguments);
    if (!command) {
        QTextStream(stderr) << CommandTable::help();
        return ExitUsage;
    }
    return command->run(CommandContext(QString::fromLatin1(command->name), arguments, options));
}
