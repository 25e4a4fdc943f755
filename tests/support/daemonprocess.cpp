// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/daemonprocess.h"

#include "common/easdbusinterfaceproxy.h"
#include "common/exchangeactivesync.h"
#include "support/buildpaths.h"
#include "support/waiting.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>
#include <QProcess>

#include <csignal>
#include <sys/prctl.h>

namespace {

constexpr int Patience = 180000;

/** Dies with the test, however that ends. */
class Process : public QProcess
{
protected:
    void setupChildProcess() override { prctl(PR_SET_PDEATHSIG, SIGKILL); }
};

} // namespace

QString DaemonProcess::program()
{
    return QStringLiteral("fennel-eas-test-daemon");
}

DaemonProcess::DaemonProcess(const QProcessEnvironment &environment)
    : mProcess(new Process)
{
    mProcess->setProcessEnvironment(environment);
    mProcess->setProcessChannelMode(QProcess::MergedChannels);
    connect(mProcess.data(), &QProcess::readyRead, this, [this] { mLog += mProcess->readAll(); });
}

DaemonProcess::~DaemonProcess()
{
    kill();
}

bool DaemonProcess::start()
{
    QDBusConnectionInterface *bus = QDBusConnection::sessionBus().interface();
    // The bus may still think that an earlier process, which was killed, has the name.
    bool serves = false;
    QDBusServiceWatcher watcher(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME, QDBusConnection::sessionBus(),
        QDBusServiceWatcher::WatchForRegistration);
    connect(&watcher, &QDBusServiceWatcher::serviceRegistered, this,
        [&](const QString &name) { serves = bus->servicePid(name).value() == mProcess->processId(); });
    mProcess->start(BuildPaths::binary(QStringLiteral("bin/")) + program(), QStringList());
    startTimer();
    const bool ended = Waiting::until([&] { return serves || hasDied(); }, Patience);
    if (!ended || !serves)
        return false;
    connectToService();
    return true;
}

void DaemonProcess::connectToService()
{
    mProxy.reset(new EasDBusInterfaceProxy(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME,
        ExchangeActiveSync::EAS_DBUS_PATH_NAME, QDBusConnection::sessionBus()));
    connect(mProxy.data(), &EasDBusInterfaceProxy::requestFinished, this,
        [this](qulonglong, qulonglong requestId, int status) { mFinished.insert(requestId, status); });
}

int DaemonProcess::sync(EasAccountId accountId)
{
    return runRequest([&](EasDBusInterfaceProxy &proxy) { return proxy.sync(accountId); });
}

int DaemonProcess::downloadPart(EasAccountId accountId, qulonglong messageId, const QString &location)
{
    return runRequest([&](EasDBusInterfaceProxy &proxy) {
        return proxy.downloadMessagePart(accountId, messageId, location);
    });
}

int DaemonProcess::answerMeeting(
    EasAccountId accountId, qulonglong messageId, int response, qulonglong replyId)
{
    return runRequest([&](EasDBusInterfaceProxy &proxy) {
        return proxy.meetingResponse(
            accountId, messageId, response, 0, replyId, QString(), QString(), QString());
    });
}

int DaemonProcess::answerEvent(
    EasAccountId accountId, const QString &eventId, int response, qulonglong replyId)
{
    return runRequest([&](EasDBusInterfaceProxy &proxy) {
        return proxy.meetingResponseCalendar(
            accountId, eventId, response, 0, replyId, QString(), QString(), QString());
    });
}

int DaemonProcess::sendMail(EasAccountId accountId, qulonglong messageId)
{
    return runRequest([&](EasDBusInterfaceProxy &proxy) { return proxy.sendMail(accountId, messageId); });
}

int DaemonProcess::runRequest(const Call &call)
{
    if (!mProxy && !start())
        return hasDied() ? Died : NeverEnded;
    const QDBusPendingReply<qulonglong> reply = call(*mProxy);
    const auto hasFinished = [&] {
        return reply.isFinished() && !reply.isError() && mFinished.contains(reply.value());
    };
    if (!Waiting::until([&] { return hasFinished() || hasDied(); }, Patience))
        return NeverEnded;
    return hasFinished() ? mFinished.value(reply.value()) : Died;
}

void DaemonProcess::startTimer()
{
    if (!mLife || !mProcess->waitForStarted())
        return;
    mTimer = std::thread([this, process = pid_t(mProcess->processId())] {
        std::unique_lock<std::mutex> lock(mMutex);
        if (!mStopped.wait_for(lock, *mLife, [this] { return mStopTimer; }))
            ::kill(process, SIGKILL);
    });
}

void DaemonProcess::stopTimer()
{
    if (!mTimer.joinable())
        return;
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mStopTimer = true;
    }
    mStopped.notify_one();
    mTimer.join();
}

void DaemonProcess::kill()
{
    stopTimer();
    if (mProcess->state() == QProcess::NotRunning)
        return;
    mProcess->kill();
    mProcess->waitForFinished();
}

bool DaemonProcess::hasDied() const
{
    return mProcess->state() == QProcess::NotRunning;
}

qint64 DaemonProcess::processId() const
{
    return mProcess->processId();
}
