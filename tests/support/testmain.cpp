// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/testmain.h"
#include "common/busthread.h"
#include "support/buildpaths.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <cerrno>
#include <cstring>
#include <unistd.h>
#include <vector>

namespace {

struct Entry
{
    QString name;
    TestRegistration::Factory factory;
};

std::vector<Entry> &entries()
{
    static std::vector<Entry> list;
    return list;
}

QString temporaryTemplate()
{
    // A file system in memory where there is one: the database commits each row by itself.
    const QString memory = QStringLiteral("/dev/shm");
    const QString base = QFileInfo(memory).isWritable() ? memory : QDir::tempPath();
    return base + QStringLiteral("/fennel-test-XXXXXX");
}

/** Nothing of the user's own data or network may matter to a test. */
void isolateEnvironment(const QString &home)
{
    const auto folder = [&home](const char *variable, const QString &name) {
        const QString path = home + QLatin1Char('/') + name;
        QDir().mkpath(path);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv(variable, path.toLocal8Bit());
    };
    qputenv("HOME", home.toLocal8Bit());
    folder("XDG_CONFIG_HOME", QStringLiteral("config"));
    folder("XDG_DATA_HOME", QStringLiteral("data"));
    folder("XDG_CACHE_HOME", QStringLiteral("cache"));
    folder("XDG_RUNTIME_DIR", QStringLiteral("runtime"));
    folder("ACCOUNTS", QStringLiteral("accounts"));
    folder("SSO_STORAGE_PATH", QStringLiteral("signon"));
    folder("QMF_DATA", QStringLiteral("mail"));
    folder("CONTACTS_DATA", QStringLiteral("contacts"));
    qputenv("SSO_DAEMON_TIMEOUT", "0");
    const QByteArray accounts = BuildPaths::source(QStringLiteral("data/accounts/")).toLocal8Bit();
    qputenv("AG_PROVIDERS", accounts + "providers");
    qputenv("AG_SERVICES", accounts + "services");
    qputenv("AG_SERVICE_TYPES", accounts + "service_types");
    qputenv("AG_APPLICATIONS", accounts + "applications");
    qputenv("QT_PLUGIN_PATH", BuildPaths::plugins().toLocal8Bit());
    qputenv("QT_EXCLUDE_GENERIC_BEARER", "1");
    qputenv("FENNEL_TEST_BEARER_FILE", (home + QStringLiteral("/bearer")).toLocal8Bit());
    // The device is the same on every machine.
    qputenv("PLATFORM_DEVICE_MODEL", "Phone");
    qputenv("PLATFORM_DEVICE_UID", "490154203237518");
    qputenv("TZ", "UTC");
    qputenv("LC_ALL", "C.UTF-8");
}

} // namespace

TestRegistration::TestRegistration(const char *name, Factory factory)
{
    entries().push_back({ QString::fromLatin1(name), std::move(factory) });
}

namespace {

/** The process that has its environment already; its children, which have this as well, are others. */
constexpr char IsolatedProcess[] = "FENNEL_TEST_PROCESS";

/** Begins the program anew in a home of its own: constants of libraries have read the environment before
 * main().
 */
void beginIsolated(char **argv)
{
    QTemporaryDir home(temporaryTemplate());
    home.setAutoRemove(false);
    isolateEnvironment(home.path());
    qputenv(IsolatedProcess, QByteArray::number(getpid()));
    execv("/proc/self/exe", argv);
    qFatal("cannot begin anew: %s", strerror(errno));
}

int runTests(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("fennel-eas-test"));

    QStringList arguments = application.arguments();
    const QString wanted = arguments.size() > 1 && !arguments.at(1).startsWith(QLatin1Char('-'))
        ? arguments.takeAt(1)
        : QString();
    int failed = 0;
    int run = 0;
    for (const Entry &entry : entries()) {
        if (!wanted.isEmpty() && entry.name.compare(wanted, Qt::CaseInsensitive) != 0)
            continue;
        const std::unique_ptr<QObject> test = entry.factory();
        failed += QTest::qExec(test.get(), arguments) != 0 ? 1 : 0;
        ++run;
    }
    if (run == 0)
        qCritical("no test class is called %s", qPrintable(wanted));
    BusThread::settle();
    return run == 0 || failed > 0 ? 1 : 0;
}

} // namespace

int main(int argc, char **argv)
{
    if (qgetenv(IsolatedProcess) != QByteArray::number(getpid()))
        beginIsolated(argv);
    const QString home = qEnvironmentVariable("HOME");
    const int result = runTests(argc, argv);
    QDir(home).removeRecursively();
    return result;
}
