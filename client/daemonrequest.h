// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QDBusPendingReply>
#include <QObject>
#include <QScopedPointer>

#include <functional>

class EasDBusInterfaceProxy;
class QSocketNotifier;

/**
 * One request of the daemon from the call to its result: the identifier comes back at once, progress and the
 * end come as signals. An interrupt (Ctrl-C) cancels the request and waits for its end. Used once, on the
 * stack of a command; runs the application's event loop while it waits.
 */
class DaemonRequest : public QObject
{
    Q_OBJECT

public:
    using Call = std::function<QDBusPendingReply<qulonglong>(EasDBusInterfaceProxy &)>;

    DaemonRequest(EasAccountId accountId, bool showProgress);
    ~DaemonRequest() override;

    /** Returns the exit status; statusOf the request stands in status() then. */
    int run(const Call &call);

    int status() const { return mStatus; }
    qulonglong id() const { return mRequestId; }

private Q_SLOTS:
    void onFinished(qulonglong accountId, qulonglong requestId, int status);
    void onProgress(qulonglong accountId, qulonglong requestId, qlonglong maximum, qlonglong current);
    void onDaemonGone();
    void onInterrupt();

private:
    void finish(int exitStatus);
    void clearProgress();

    EasAccountId mAccountId;
    bool mShowProgress;
    bool mProgressShown = false;
    qulonglong mRequestId = 0;
    int mStatus = 0;
    QScopedPointer<EasDBusInterfaceProxy> mProxy;
    QScopedPointer<QSocketNotifier> mInterrupts;
};
