// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QList>
#include <QObject>

#include <functional>

class Engine;
class EasAccount;
class Request;

/**
 * The requests of one account, which run strictly one after another.
 *
 * The head is the request that runs. It is started once, as soon as the account's password is there, and
 * whatever happens to the requests behind it does not start it again; its end starts the next one. The queue
 * neither owns nor deletes requests. It belongs to the engine that it was made for, its parent. Main thread
 * only.
 */
class AccountQueue : public QObject
{
    Q_OBJECT

public:
    /** `parent` is an Engine. */
    AccountQueue(EasAccountId accountId, QObject *parent);
    ~AccountQueue() override;

    bool isEmpty() const { return mRequests.isEmpty(); }
    /** Null if the queue is empty. */
    Request *head() const { return mRequests.value(0); }
    /** The first request with an identifier; null without one. */
    Request *find(qulonglong requestId) const;
    bool containsAny(const std::function<bool(const Request *)> &matches) const;

    /** Appends a request, and starts it if the account is idle. */
    void enter(Request *request);
    /** Takes a request out that has ended; false, logged, for one that is not here. */
    bool remove(Request *request);
    /** Cancels a head that has been running for too long. */
    void cancelHungHead();
    /** Cancels all requests, from the last to the first, so that none of them starts. */
    void cancelAll();

public Q_SLOTS:
    /** Starts the head, unless it was started before; for a queue whose head has ended. */
    void startHead();

private Q_SLOTS:
    /** Cancels a head that runs, unless it is what brings the server its acknowledgement. */
    void onRemoteWipeOrdered();
    void onRemoteWipeBegun();

private:
    /** Those who wait end by themselves at their start. */
    void followRemoteWipe();
    /** Whether the account's password is on its way; the head starts when that has come. */
    bool waitsForCredentials();
    void askForPassword(EasAccount &owner);

    EasAccountId mAccountId;
    QList<Request *> mRequests;
    bool mHeadStarted = false;
    /** The sign-on service was asked for a password that the head lacks. */
    bool mPasswordAsked = false;
    /** A head is being started further up the stack. */
    bool mStarting = false;
};
