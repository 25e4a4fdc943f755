// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"
#include "common/easrequeststatus.h"
#include "common/exchangeactivesync.h"
#include "requests/attempts.h"
#include "requests/outcome.h"

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QVariantMap>

class BaseProtocolCommand;
class EasAccount;
class ProvisionDemands;
class ProvisionRequest;
class QNetworkReply;
class VersionNegotiator;

/**
 * A unit of work for one account: one client call or internal task, with one end.
 *
 * The base owns the life: the gates (account not blocked, network up, protocol version known, command
 * offered), the resend timer, provisioning demands, cancelling, and the one requestCompleted(). A subclass
 * gives startRequest(), which begins its work, cancelRequest(), which stops what runs, and commandName().
 *
 * A failed attempt is repeated through startResendTimer(), which ends in retrySend(); the delay triples with
 * each use until resetTimeoutFactor(). consumeRetry() counts the attempts.
 *
 * A request belongs to the engine, which starts it when it is the head of its account's queue and deletes it
 * later once it completed; a nested one belongs to its outer request. It finds the engine above itself, which
 * has to be ready. Main thread only.
 */
class Request : public QObject, public EasRequestStatus
{
    Q_OBJECT

public:
    Request(EasAccountId accountId, qulonglong requestId, QObject *parent = nullptr);
    ~Request() override;

    EasAccountId accountId() const { return mAccountId; }
    qulonglong id() const { return mId; }
    /** Asked for anew each time; may be null. */
    EasAccount *account() const;
    int status() const { return mOutcome.status(); }
    void setStatus(int status) { mOutcome.setStatus(status); }
    /** Whether it has been running for more than five minutes since its last start(). */
    bool isExpired() const;

    virtual bool successfullyFinished() const;
    /** Past the network gate and not yet completed. */
    virtual bool started() const;
    /** Whether it talks with the server about policies or a wipe, itself or by a nested request. */
    virtual bool isProvisioning() const { return mState == State::Paused; }
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
    /** A policy document of the server was read, in this request or in a nested one: its values under their
     * published names. The verdict on it has not gone out yet. */
    void policyDocumentReceived(EasAccountId accountId, qulonglong requestId, const QVariantMap &policies);

protected:
    virtual void startRequest() = 0;
    virtual void cancelRequest() = 0;
    virtual QString commandName() const;
    virtual bool isCommandSupported();
    virtual void protocolVersionConfirmed(ExchangeActiveSync::ProtocolVersion version);
    virtual void startResendTimer();
    /** Ends the request with its present status; a request that has ended already does not end again. An
     * override calls this, and does its own part only while hasEnded() is false. A request that never began
     * its work (account blocked, no network, cancelled in the queue) and one whose provisioning failed end
     * without this. */
    virtual void reportRequestCompleted();
    /** The nested request that meets a demand for provisioning. */
    virtual ProvisionRequest *createProvisionRequest(bool remoteWipe);

    /** True from requestCompleted() to the next start(). */
    bool hasEnded() const { return mState == State::Ended; }
    void checkProtocolVersion();
    /** Whether a finished command's status demands provisioning; if so, the request pauses, and meets the
     * demand once the finished command has unwound. */
    bool checkProvisionStatus(BaseProtocolCommand *command);
    void startProvisionRequest(bool remoteWipe);

    /** Counts an attempt. False if none was left, and the request has ended with the status as it stands. */
    bool consumeRetry();
    void clearRetries();
    /** For the collaborators of a request that consists of several steps. */
    Attempts &attempts() { return mAttempts; }
    Outcome &outcome() { return mOutcome; }

    /** Ends the request with the status as it stands, or with another one. */
    void complete();
    void completeWith(int status);
    void completeCancelled();

private Q_SLOTS:
    void onDemandsOver(bool isMet, int status);
    void onResendTimer();
    void onVersionNegotiationReady(bool success);

private:
    enum class State {
        Idle, ///< in its queue
        WaitingForNetwork, ///< the resend timer starts it again
        Negotiating, ///< a protocol version is being found out
        Running, ///< a step of its own is under way
        WaitingToRetry, ///< the resend timer repeats the step
        Paused, ///< until the server's demand for provisioning is met
        Ended ///< requestCompleted() was emitted
    };

    bool isUnderWay() const;
    bool refuseWipedAccount();
    bool refuseBlockedAccount();
    void finish();
    void finishWith(int status);
    void run();

    EasAccountId mAccountId;
    qulonglong mId;
    State mState = State::Idle;
    qint64 mStartTime = 0;
    Outcome mOutcome;
    Attempts mAttempts;
    QTimer mResendTimer;
    ProvisionDemands *const mDemands;
    QPointer<VersionNegotiator> mVersionNegotiator;
};
