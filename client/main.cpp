// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/commandrunner.h"
#include "common/busthread.h"

#include <QCoreApplication>

#include <clocale>

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("fennel-easctl"));
    QCoreApplication::setApplicationVersion(QStringLiteral(FENNEL_EAS_VERSION));
    std::setlocale(LC_ALL, "");
    const int status = CommandRunner::run(QCoreApplication::arguments().mid(1));
    BusThread::settle();
    return status;
}
