// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/requestrun.h"

#include "client/accountdirectory.h"
#include "client/commandcontext.h"
#include "client/interruptguard.h"
#include "client/statustext.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <algorithm>

namespace {

constexpr int PatienceMs = 5000;
constexpr int SecondMs = 1000;

} // namespace

RequestRun::RequestRun(CommandContext &context)
    : mContext(context)
    , mProgress(context.showsProgress())
{
    mPatience.setSingleShot(true);
    mPatience.setInterval(PatienceMs);
    connect(&mPatience, &QTimer::timeout, this, &RequestRun::onPatienceEnded);
    mSecond.setInterval(SecondMs);
    connect(&mSecond, &QTimer::timeout, this, &RequestRun::showWaiting);
}

RequestRun::~RequestRun() = default;

DaemonRequest &RequestRun::add(EasAccountId accountId, DaemonRequest::Call call, const QString &purpose)
{
    mEntries.push_back({ std::make_unique<DaemonRequest>(accountId), std::move(call),
        purpose.isEmpty() ? QStringLiteral("account %1").arg(accountId) : purpose });
    DaemonRequest &request = *mEntries.back().request;
    connect(&request, &DaemonRequest::ended, this, &RequestRun::onEnded);
    connect(&request, &DaemonRequest::atWork, this, &RequestRun::showWaiting);
    connect(&request, &DaemonRequest::progressed, &mProgress, &ProgressLine::showShare);
    return request;
}

QList<const DaemonRequest *> RequestRun::requests() const
{
    QList<const DaemonRequest *> all;
    for (const Entry &entry : mEntries)
        all.append(entry.request.get());
    return all;
}

int RequestRun::exec()
{
    mInterrupts = std::make_unique<InterruptGuard>();
    mNotifier = std::make_unique<QSocketNotifier>(mInterrupts->descriptor(), QSocketNotifier::Read);
    connect(mNotifier.get(), &QSocketNotifier::activated, this, &RequestRun::onInterrupt);
    mSinceStart.start();
    mSecond.start();
    for (const Entry &entry : mEntries)
        entry.request->start(entry.call);
    if (!mEntries.empty())
        QCoreApplication::exec();
    mNotifier.reset();
    mInterrupts.reset();
    mProgress.clear();
    return report();
}

int RequestRun::report() const
{
    int result = ExitSuccess;
    for (const Entry &entry : mEntries) {
        QString error;
        const int judged = judge(*entry.request, &error);
        if (judged == ExitSuccess)
            continue;
        Output::error(mEntries.size() == 1 ? error : QStringLiteral("%1: %2").arg(entry.purpose, error));
        if (result == ExitSuccess)
            result = judged;
    }
    return result;
}

int RequestRun::judge(const DaemonRequest &request, QString *error) const
{
    *error = request.error();
    if (request.exitStatus() == ExitFailure && mAccepted.contains(request.status()))
        return ExitSuccess;
    if (request.exitStatus() == ExitFailure && mExplanations.contains(request.status()))
        *error = StatusText::withName(mExplanations.value(request.status()), request.status());
    // The engine has one status for what was cancelled and for what it does not do for a blocked account.
    if (request.exitStatus() == ExitCancelled && !mIsInterrupted
        && mContext.accounts().isBlocked(request.accountId())) {
        *error = StatusText::withName(StatusText::blocked(), request.status());
        return ExitFailure;
    }
    return request.exitStatus();
}

void RequestRun::onEnded()
{
    const bool isOver = std::all_of(
        mEntries.cbegin(), mEntries.cend(), [](const Entry &entry) { return entry.request->hasEnded(); });
    if (isOver)
        QCoreApplication::quit();
}

void RequestRun::onInterrupt()
{
    // The descriptor stays readable; a second signal ends the process.
    mNotifier->setEnabled(false);
    mIsInterrupted = true;
    mProgress.clear();
    mSecond.stop();
    mProgress.say(QStringLiteral("cancelling; interrupt again to leave at once"));
    mPatience.start();
    for (const Entry &entry : mEntries) {
        if (!entry.request->hasEnded())
            entry.request->cancel();
    }
}

void RequestRun::onPatienceEnded()
{
    for (const Entry &entry : mEntries)
        entry.request->abandon(
            QStringLiteral("cancelled, but the daemon has not confirmed it; the request may go on"));
}

void RequestRun::showWaiting()
{
    const auto waits = std::find_if(
        mEntries.cbegin(), mEntries.cend(), [](const Entry &entry) { return !entry.request->hasEnded(); });
    if (waits == mEntries.cend())
        return;
    const bool isAtWork = std::any_of(mEntries.cbegin(), mEntries.cend(),
        [](const Entry &entry) { return entry.request->isAtWork() && !entry.request->hasEnded(); });
    mProgress.showWaiting(isAtWork, int(mSinceStart.elapsed() / SecondMs));
}
