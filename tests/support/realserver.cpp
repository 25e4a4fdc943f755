// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/realserver.h"
#include "support/buildpaths.h"

#include <QCoreApplication>
#include <QDebug>
#include <QFileInfo>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QTcpServer>

#include <algorithm>
#include <memory>
#include <vector>

#include <unistd.h>

namespace {

constexpr int PortCount = 11;
constexpr int FirstPort = 26880;
constexpr int LastPort = 30880;
/** The first start on a machine installs packages. */
constexpr int StartTimeout = 600000;
constexpr int SeedTimeout = 300000;
constexpr int StopTimeout = 30000;

QString scripts()
{
    const QString chosen = qEnvironmentVariable("FENNEL_REALSERVER");
    return chosen.isEmpty() ? QDir(BuildPaths::source(QStringLiteral("../shared/realserver"))).absolutePath()
                            : chosen;
}

bool areFree(int base)
{
    std::vector<std::unique_ptr<QTcpServer>> servers;
    for (int port = base; port < base + PortCount; ++port) {
        servers.push_back(std::make_unique<QTcpServer>());
        if (!servers.back()->listen(QHostAddress::LocalHost, quint16(port)))
            return false;
    }
    return true;
}

/** Processes that look at the same time begin at different places. */
int freePorts()
{
    const int places = (LastPort - FirstPort) / PortCount;
    const int first = int(QCoreApplication::applicationPid() % places);
    for (int i = 0; i < places; ++i) {
        const int base = FirstPort + (first + i) % places * PortCount;
        if (areFree(base))
            return base;
    }
    return 0;
}

} // namespace

QString RealServer::obstacle()
{
    const QString up = scripts() + QStringLiteral("/up");
    if (!QFileInfo(up).isExecutable())
        return QStringLiteral("no real server here: set FENNEL_REALSERVER to the folder of its scripts");
    if (geteuid() != 0)
        return QStringLiteral("the real server can be started by root alone");
    return QString();
}

RealServer::~RealServer()
{
    if (mGuard.state() == QProcess::NotRunning)
        return;
    mGuard.closeWriteChannel();
    if (!mGuard.waitForFinished(StopTimeout))
        qWarning() << "the server did not stop";
}

bool RealServer::start()
{
    mBasePort = freePorts();
    if (mBasePort == 0 || !mState.isValid()) {
        qWarning() << "no ports or no folder for the server";
        return false;
    }
    // Its daemons run as users of their own, who have to reach their files.
    QFile::setPermissions(mState.path(),
        QFile::permissions(mState.path()) | QFile::ReadGroup | QFile::ExeGroup | QFile::ReadOther
            | QFile::ExeOther);
    // The pipe closes when this process ends, even by a signal.
    prepare(mGuard);
    mGuard.start(QStringLiteral("/bin/sh"),
        { QStringLiteral("-c"), QStringLiteral("cat >/dev/null; exec \"$0\" --wipe"),
            scripts() + QStringLiteral("/down") });
    return mGuard.waitForStarted() && run(QStringLiteral("up"), {}, StartTimeout);
}

void RealServer::prepare(QProcess &process) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("EAS_REALSERVER_STATE"), mState.path());
    environment.insert(QStringLiteral("EAS_REALSERVER_PORT"), QString::number(mBasePort));
    // A worker is held by each connection that is kept; one device needs few.
    environment.insert(QStringLiteral("EAS_REALSERVER_WORKERS"), QStringLiteral("4"));
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
}

bool RealServer::run(const QString &script, const QStringList &arguments, int timeout) const
{
    QProcess process;
    prepare(process);
    process.setStandardOutputFile(mState.filePath(script + QStringLiteral(".out")));
    process.start(scripts() + QLatin1Char('/') + script, arguments);
    if (process.waitForFinished(timeout) && process.exitStatus() == QProcess::NormalExit
        && process.exitCode() == 0)
        return true;
    QFile output(mState.filePath(script + QStringLiteral(".out")));
    if (output.open(QIODevice::ReadOnly))
        qWarning().noquote() << script << "failed:" << QString::fromUtf8(output.readAll());
    return false;
}

bool RealServer::seed(const QString &user, int count, const QString &folder) const
{
    return run(QStringLiteral("seed"),
        { user, QString::number(count), QStringLiteral("--events"), QStringLiteral("0"),
            QStringLiteral("--contacts"), QStringLiteral("0"), QStringLiteral("--folder"), folder },
        SeedTimeout);
}

bool RealServer::seedEvents(const QString &user, int count) const
{
    return run(QStringLiteral("seed"),
        { user, QStringLiteral("0"), QStringLiteral("--events"), QString::number(count),
            QStringLiteral("--contacts"), QStringLiteral("0") },
        SeedTimeout);
}

bool RealServer::seedContacts(const QString &user, int count) const
{
    return run(QStringLiteral("seed"),
        { user, QStringLiteral("0"), QStringLiteral("--events"), QStringLiteral("0"),
            QStringLiteral("--contacts"), QString::number(count) },
        SeedTimeout);
}

QString RealServer::logPath() const
{
    return mState.filePath(QStringLiteral("log/sogod.log"));
}

void RealServer::forgetRequests()
{
    mLogStart = QFileInfo(logPath()).size();
}

QStringList RealServer::requests(const QString &rootElement) const
{
    QFile log(logPath());
    if (!log.open(QIODevice::ReadOnly) || !log.seek(mLogStart))
        return {};
    const QString text = QString::fromUtf8(log.readAll());
    static const QRegularExpression request(
        QStringLiteral("EAS - request for device [^:]*: (<\\?xml.*?)\\n\\n"),
        QRegularExpression::DotMatchesEverythingOption);
    QStringList found;
    for (auto matches = request.globalMatch(text); matches.hasNext();) {
        const QString document = matches.next().captured(1);
        if (document.contains(QLatin1Char('<') + rootElement + QStringLiteral(" xmlns=")))
            found.append(document);
    }
    return found;
}
