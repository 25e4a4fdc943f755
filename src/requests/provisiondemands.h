// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/attempts.h"
#include "requests/provisiondemand.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <functional>

class BaseProtocolCommand;
class ProvisionRequest;
class Request;

/**
 * Meets what a server demands of one request before it does the request's work: the default policy key, its
 * policies, a wipe. The request is paused meanwhile, and hears with over() whether it goes on.
 *
 * The demands are counted, and a success of a step gives nothing back: a server may demand something anew
 * after every other step. Owned by its request; main thread only.
 */
class ProvisionDemands : public QObject
{
    Q_OBJECT

public:
    /** Makes the nested request that meets a demand. */
    using Factory = std::function<ProvisionRequest *(bool remoteWipe)>;

    ProvisionDemands(Request *request, const Factory &factory);
    ~ProvisionDemands() override;

    /** Whether a finished command demands something. That is met once the command has unwound. */
    bool take(const BaseProtocolCommand &command);
    /** Starts the nested request, in place of one that runs. */
    void startProvisionRequest(bool remoteWipe);
    /** Cancels the nested request, which then is over; false if none runs. */
    bool cancel();
    /** What has been taken is not met any more. */
    void stop() { mTimer.stop(); }
    /** For a request that starts anew. */
    void reset();

Q_SIGNALS:
    /** @p status is the request's from now on. */
    void over(bool isMet, int status);

private:
    void meet();
    void onProvisionRequestCompleted(quint64 accountId, quint64 requestId);

    Request &mRequest;
    const Factory mFactory;
    /** Runs out as soon as the command that brought the demand has unwound. */
    QTimer mTimer;
    ProvisionDemand mDemand = ProvisionDemand::None;
    /** The number that the demand came as, for a request that ends with it. */
    int mStatus = 0;
    Attempts mAttempts;
    bool mIsUnavailable = false;
    QPointer<ProvisionRequest> mProvisionRequest;
};
