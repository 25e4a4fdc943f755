// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"
#include "common/failedpolicymap.h"
#include "easitems/containers/easoofcontainer.h"

#include <QDBusPendingReply>
#include <QJsonObject>
#include <QMap>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <memory>

class EasDBusInterfaceProxy;
class QDBusPendingCallWatcher;

/**
 * One request of the daemon from the call to its result: the identifier comes back first, progress and the
 * end come as signals. Used once; owned by the command, which runs the event loop (see RequestRun).
 */
class DaemonRequest : public QObject
{
    Q_OBJECT

public:
    using Call = std::function<QDBusPendingReply<qulonglong>(EasDBusInterfaceProxy &)>;

    explicit DaemonRequest(EasAccountId accountId);
    ~DaemonRequest() override;

    /** Emits ended() once, whatever becomes of the daemon. */
    void start(const Call &call);
    /** In place of start(): a request that the daemon has begun for another client. */
    void follow(qulonglong requestId);
    /** Has the daemon cancel the request, as soon as its identifier is known; ended() still follows. */
    void cancel();
    /** Ends without waiting for the daemon any longer. */
    void abandon(const QString &reason);

    EasAccountId accountId() const { return mAccountId; }
    /** 0 before the daemon has told it. */
    qulonglong requestId() const { return mRequestId; }
    bool hasEnded() const { return mHasEnded; }
    bool isAtWork() const { return mIsAtWork; }
    /** The daemon has taken it on. */
    bool isAccepted() const { return mRequestId != 0; }
    /** How it ended: the status of the command line, and a sentence where it failed. */
    int exitStatus() const { return mExitStatus; }
    QString error() const { return mError; }
    /** As the daemon told it; 0 before. */
    int status() const { return mStatus; }
    /** "request", "status" and "statusName", as far as the daemon has told them. */
    QJsonObject describe() const;

Q_SIGNALS:
    /** The daemon works on this request, no longer on one before it. */
    void atWork();
    void progressed(qlonglong maximum, qlonglong current);
    /** The policy of the server, by the published names of its values. */
    void policyReceived(const QVariantMap &document);
    /** What the device fails of the policy, and what became of it; before ended(). */
    void policyJudged(const FailedPolicyMap &failed, int policyStatus);
    /** The out-of-office settings that were asked for; before ended(). */
    void oofStateReceived(const EasOofContainer &state);
    /** One entry a person in each list; before ended(). Empty lists tell of a failure, and do not come. */
    void availabilityReceived(
        const QStringList &emails, const QStringList &names, const QStringList &statuses);
    /** What a search has found, and how many more messages or how many people in all there are; before
     * ended(). */
    void matchesReceived(const QList<qulonglong> &matches, uint count);
    void ended();

private Q_SLOTS:
    void onFinished(qulonglong accountId, qulonglong requestId, int status);
    void onProgress(qulonglong accountId, qulonglong requestId, qlonglong maximum, qlonglong current);
    void onSyncStarted(qulonglong accountId, qulonglong requestId);
    void onPolicyDocument(qulonglong accountId, qulonglong requestId, const QVariantMap &document);
    void onOofState(qulonglong accountId, qulonglong requestId, bool enabled, bool timeRangeEnabled,
        const QString &startTime, const QString &endTime, const QString &internalMessage,
        bool externalMessageEnabled, bool externalMessageToAnyone, const QString &externalMessage);
    void onAvailability(qulonglong requestId, const QStringList &emails, const QStringList &names,
        const QStringList &statuses);
    void onProvisionFinished(qulonglong accountId, qulonglong requestId, int status,
        const FailedPolicyMap &failed, int policyStatus);

    void onMatches(
        qulonglong accountId, qulonglong requestId, int status, uint count, const QList<qulonglong> &matches);

private:
    using Act = std::function<void()>;

    void onIdentifier(QDBusPendingCallWatcher *watcher);
    void watchDaemon();
    void onDaemonGone();
    void finish(int status);
    void end(int exitStatus, const QString &error);
    /** Acts on what was told of a request if it is this one; later, if this one's identifier is not known
     * yet. */
    void ifMine(qulonglong accountId, qulonglong requestId, const Act &act);

    EasAccountId mAccountId;
    std::unique_ptr<EasDBusInterfaceProxy> mProxy;
    qulonglong mRequestId = 0;
    /** What was told of requests, in order, before the identifier of this one was known. */
    QMap<qulonglong, QList<Act>> mEarly;
    bool mIsToBeCancelled = false;
    bool mIsAtWork = false;
    bool mHasStatus = false;
    bool mHasEnded = false;
    int mStatus = 0;
    int mExitStatus = 0;
    QString mError;
};
