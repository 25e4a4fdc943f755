// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"
#include "common/easrequeststatus.h"
#include "common/exchangeactivesync.h"
#include "requests/attempts.h"
#include "requests/outcome.h"
#include "requests/requestverb.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <vector>

class BaseProtocolCommand;
class EasAccount;
class ProvisionRequest;
class QNetworkReply;
class VersionNegotiator;

/**
 * A unit of work for one account: one client call or internal task, with one end.
 *
 * The base owns the life: the gates (account not blocked, network up, protocol version known, command
 * offered), the resend timer, provisioning demands, cancelling, and the one requestCompleted(). A subclass
 * gives startRequest(), which runs its first command, cancelRequest(), which stops the command that runs,
 * commandName(), and a slot onCommandFinished(bool) that reads:
 *
 *     if (!acceptResult(mCommand, success)) // gone, or paused for provisioning
 *         return dropCommand();
 *     if (!handleCommonStatus(status(), { { { 1 }, [this] { processReply(); } }, ... }))
 *         completeUnhandled();
 *
 * A row names statuses and an action; the request's own rows come before the common ones, so that a request
 * replaces a common row by naming its status. The actions are the verbs below.
 *
 * A failed attempt is repeated through startResendTimer(), which ends in retrySend(); the delay triples with
 * each use until resetTimeoutFactor(). consumeRetry() counts the attempts.
 *
 * A request belongs to the RequestManager, which starts it when it is the head of its account's queue and
 * deletes it later once it completed; a nested one belongs to its outer request. Needs the RequestManager
 * to be ready. Main thread only.
 */
class Request : public QObject, public EasRequestStatus
{
    Q_OBJECT

public:
    Request(EasAccountId accountId, qulonglong requestId, QObject *parent = nullptr);
    ~Request() override;

    EasAccountId accountId() const;
    qulonglong id() const;
    /** Asked for anew each time; may be null. */
    EasAccount *account() const;
    int status() const;
    void setStatus(int status);
    /** Whether it has been running for more than five minutes since its last start(). */
    bool isExpired() const;

    virtual bool successfullyFinished() const;
    /** Past the network gate and not yet completed. */
    virtual bool started() const;
    virtual void onNetworkOperationFinished(QNetworkReply *reply);
    virtual void onNetworkError(int error);

public Q_SLOTS:
    void start();
    void cancel();
    void resetTimeoutFactor();
    virtual void onReadyRead();
    /** The provisioning run that paused this request is over. */
    virtual void resumeRequest(bool success);
    /** Tries the present step again, if an attempt is left. */
    virtual void retrySend();

Q_SIGNALS:
    /** The one end of the request; its status says how. */
    void requestCompleted(EasAccountId accountId, qulonglong requestId);
    void requestDownloadProgress(
        EasAccountId accountId, qulonglong requestId, qlonglong bytesReceived, qlonglong bytesTotal);

protected:
    using StatusAction = std::function<void()>;
    struct StatusRow
    {
        std::vector<int> statuses;
        StatusAction action;
    };
    using StatusRows = std::vector<StatusRow>;

    virtual void startRequest() = 0;
    virtual void cancelRequest() = 0;
    virtual QString commandName() const;
    virtual bool isCommandSupported();
    virtual void protocolVersionConfirmed(ExchangeActiveSync::ProtocolVersion version);
    virtual void startResendTimer();
    /** Ends the request with its present status; a request that has ended already does not end again. An
     * override calls this, and does its own part only while hasEnded() is false. */
    virtual void reportRequestCompleted();
    /** The nested request that meets a demand for provisioning. */
    virtual ProvisionRequest *createProvisionRequest(bool remoteWipe);

    /** True from requestCompleted() to the next start(). */
    bool hasEnded() const;
    void checkProtocolVersion();
    bool checkProvisionStatus(BaseProtocolCommand *command);
    void startProvisionRequest(bool remoteWipe);

    /** Takes over the status of a finished command; one that failed without a status counts as -2. False if
     * the command is gone, and the request has ended, or if it is paused for provisioning: either way the
     * caller drops its command and returns. */
    bool acceptResult(BaseProtocolCommand *command, bool success);
    /** Does what the row of a status says, a row of the own table or else of the common one; false if no row
     * names it. `subject` is what the texts of the own rows are about. */
    bool handleStatus(int status, const RequestStatusTable &ownTable = {}, const QString &subject = {});
    /** The same with actions in place of verbs. */
    bool handleCommonStatus(int status, const StatusRows &ownRows = {});
    /** Takes the reply of a command that did what was asked: the verb Process. */
    virtual void processReply();
    /** Counts an attempt. False if none was left, and the request has ended with the status as it stands. */
    bool consumeRetry();
    void clearRetries();
    /** For the collaborators of a request that consists of several steps. */
    Attempts &attempts() { return mAttempts; }
    Outcome &outcome() { return mOutcome; }

    // What a status can make a request do.
    void complete();
    void completeWith(int status);
    void completeCancelled();
    void completeUnhandled();
    void refreshDeviceAndRetryLater();

private Q_SLOTS:
    void onProvisionRequestCompleted(EasAccountId accountId, qulonglong requestId);
    void onResendTimer();
    void onVersionNegotiationReady(bool success);

private:
    bool refuseBlockedAccount();
    void waitForNetwork();
    void cancelNegotiation();
    void takeNegotiatedVersion(
        const QList<ExchangeActiveSync::ProtocolVersion> &versions, const QStringList &commands);
    void submitDefaultPolicyKey();
    void perform(RequestVerb verb);

    QTimer mResendTimer;
    bool mStarted = false;
    EasAccountId mAccountId;
    qulonglong mId;
    qint64 mStartTime = 0;
    Outcome mOutcome;
    Attempts mAttempts;
    QPointer<VersionNegotiator> mVersionNegotiator;
    QPointer<ProvisionRequest> mProvisionRequest;
    bool mEnded = false;
};
