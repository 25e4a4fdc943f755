// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "client/daemonrequest.h"
#include "client/progressline.h"

#include <QElapsedTimer>
#include <QObject>
#include <QSet>
#include <QTimer>

#include <memory>
#include <vector>

class CommandContext;
class InterruptGuard;
class QSocketNotifier;

/**
 * Has the daemon do one request, or several side by side, and waits for their ends: shows what is going on,
 * cancels all of them at an interrupt (Ctrl-C) and leaves if the daemon does not end them soon after that.
 * Used once, on the stack of a command; runs the application's event loop.
 */
class RequestRun : public QObject
{
    Q_OBJECT

public:
    explicit RequestRun(CommandContext &context);
    ~RequestRun() override;

    /** How long the daemon has to end what was cancelled. */
    void setPatience(int milliseconds) { mPatience.setInterval(milliseconds); }

    /** The request is this object's. Of several, errors begin with what each is for: the account unless it is
     * told. */
    DaemonRequest &add(EasAccountId accountId, DaemonRequest::Call call, const QString &purpose = QString());
    /** What a status means for these requests, in place of what it means in general. */
    void setExplanation(int status, const QString &sentence) { mExplanations.insert(status, sentence); }
    /** A status that is no failure of these requests. */
    void accept(int status) { mAccepted.insert(status); }
    /** Waits for the end of all; prints the errors of those that failed. The exit status of the first such.
     */
    int exec();

    /** What a single request came to; see DaemonRequest. */
    const DaemonRequest &first() const { return *mEntries.front().request; }
    /** In the order in which they were added. */
    QList<const DaemonRequest *> requests() const;
    /** The exit status of a request that has ended, and why it failed. */
    int judge(const DaemonRequest &request, QString *error) const;

private:
    struct Entry
    {
        std::unique_ptr<DaemonRequest> request;
        DaemonRequest::Call call;
        QString purpose;
    };

    void onEnded();
    void onInterrupt();
    void onPatienceEnded();
    void showWaiting();
    int report() const;

    CommandContext &mContext;
    std::vector<Entry> mEntries;
    QMap<int, QString> mExplanations;
    QSet<int> mAccepted;
    bool mIsInterrupted = false;
    ProgressLine mProgress;
    QTimer mPatience;
    QTimer mSecond;
    QElapsedTimer mSinceStart;
    std::unique_ptr<InterruptGuard> mInterrupts;
    std::unique_ptr<QSocketNotifier> mNotifier;
};
