// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/daemonrequest.h"

#include "client/exitstatus.h"
#include "client/output.h"
#include "client/statustext.h"
#include "common/easdbusinterfaceproxy.h"
#include "common/easrequeststatus.h"
#include "common/exchangeactivesync.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QSocketNotifier>

#include <csignal>
#include <cstdio>
#include <sys/signalfd.h>
#include <unistd.h>

namespace {

int interruptDescriptor()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    return signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
}

} // namespace

DaemonRequest::DaemonRequest(EasAccountId accountId, bool showProgress)
    : mAccountId(accountId)
    , mShowProgress(showProgress)
    , mProxy(new EasDBusInterfaceProxy(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME,
          ExchangeActiveSync::EAS_DBUS_PATH_NAME, QDBusConnection::sessionBus()))
{
    mProxy->setTimeout(30000);
    connect(mProxy.data(), &EasDBusInterfaceProxy::requestFinished, this, &DaemonRequest::onFinished);
    connect(mProxy.data(), &EasDBusInterfaceProxy::requestProgress, this, &DaemonRequest::onProgress);
    mInterrupts.reset(new QSocketNotifier(interruptDescriptor(), QSocketNotifier::Read));
    connect(mInterrupts.data(), &QSocketNotifier::activated, this, [this] { onInterrupt(); });
}

DaemonRequest::~DaemonRequest() = default;

int DaemonRequest::run(const Call &call)
{
    // Signals that arrive while the identifier is on its way wait in the event loop until it is known.
    QDBusPendingReply<qulonglong> reply = call(*mProxy);
    reply.waitForFinished();
    if (reply.isError()) {
        Output::error(QStringLiteral("the daemon cannot be reached: %1").arg(reply.error().message()));
        return ExitUnavailable;
    }
    mRequestId = reply.value();
    QDBusServiceWatcher watcher(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME, QDBusConnection::sessionBus(),
        QDBusServiceWatcher::WatchForUnregistration);
    connect(&watcher, &QDBusServiceWatcher::serviceUnregistered, this, &DaemonRequest::onDaemonGone);
    return QCoreApplication::exec();
}

void DaemonRequest::onFinished(qulonglong accountId, qulonglong requestId, int status)
{
    if (accountId != mAccountId || requestId != mRequestId)
        return;
    mStatus = status;
    clearProgress();
    if (status == EasRequestStatus::RequestStatusSuccess)
        return finish(ExitSuccess);
    Output::error(StatusText::explanation(status));
    finish(status == EasRequestStatus::RequestStatusCancelled ? ExitCancelled : ExitFailure);
}

void DaemonRequest::onProgress(
    qulonglong accountId, qulonglong requestId, qlonglong maximum, qlonglong current)
{
    if (!mShowProgress || accountId != mAccountId || requestId != mRequestId || maximum <= 0)
        return;
    constexpr int width = 40;
    const int filled = int(qBound<qlonglong>(0, current * width / maximum, width));
    const char *begin = isatty(STDERR_FILENO) ? "\r" : "";
    const char *end = isatty(STDERR_FILENO) ? "" : "\n";
    std::fprintf(stderr, "%s[%s%s] %3lld %%%s", begin, QByteArray(filled, '#').constData(),
        QByteArray(width - filled, '.').constData(), static_cast<long long>(current * 100 / maximum), end);
    std::fflush(stderr);
    mProgressShown = isatty(STDERR_FILENO);
}

void DaemonRequest::clearProgress()
{
    if (mProgressShown)
        std::fprintf(stderr, "\r%*s\r", 50, "");
    mProgressShown = false;
}

void DaemonRequest::onDaemonGone()
{
    clearProgress();
    Output::error(QStringLiteral("the daemon ended before the request did; call again to start it anew"));
    finish(ExitUnavailable);
}

void DaemonRequest::onInterrupt()
{
    signalfd_siginfo info;
    while (::read(int(mInterrupts->socket()), &info, sizeof info) > 0) {}
    mProxy->cancelRequest(mAccountId, mRequestId);
}

void DaemonRequest::finish(int exitStatus)
{
    QCoreApplication::exit(exitStatus);
}
