// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/easdatabase.h"
#include "application/requestmanager.h"
#include "common/busthread.h"
#include "protocol/wbxml/debugtools.h"
#include "quitsignals.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QPointer>

#include <sys/stat.h>

int main(int argc, char **argv)
{
    // Only the user may read the databases, pictures and files that are made from here on.
    umask(S_IRWXG | S_IRWXO);
    QCoreApplication application(argc, argv);
    QuitSignals quitSignals;
    QCoreApplication::setApplicationName(QStringLiteral("fennel-eas"));
    QCoreApplication::setApplicationVersion(QStringLiteral(FENNEL_EAS_VERSION));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Keeps mail, calendar and contacts in step with Exchange ActiveSync servers.\n"
        "Serves org.fennelos.easdaemon on the session bus, which starts it when it is called,\n"
        "and ends by itself when no account is enabled."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.process(application);

    DebugTools::init();
    RequestManager::initializeInstance(&application);
    const QPointer<RequestManager> manager(RequestManager::instance());
    manager->init();
    QObject::connect(&quitSignals, &QuitSignals::quitRequested, &application, [manager] {
        // Gone when the process is ending already; instance() would make a new one.
        if (manager)
            manager->onQuitRequest();
    });
    const int code = QCoreApplication::exec();
    EasDatabase::releaseInstance();
    BusThread::settle();
    return code;
}
