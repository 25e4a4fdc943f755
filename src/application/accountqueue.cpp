// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/accountqueue.h"

#include "application/account/easaccount.h"
#include "application/base/engine.h"
#include "application/base/logging.h"
#include "requests/request.h"

#include <QPointer>

#include <algorithm>

AccountQueue::AccountQueue(EasAccountId accountId, QObject *parent)
    : QObject(parent)
    , mAccountId(accountId)
{
}

AccountQueue::~AccountQueue() = default;

Request *AccountQueue::find(qulonglong requestId) const
{
    const auto found = std::find_if(mRequests.cbegin(), mRequests.cend(),
        [requestId](const Request *request) { return request->id() == requestId; });
    return found != mRequests.cend() ? *found : nullptr;
}

bool AccountQueue::containsAny(const std::function<bool(const Request *)> &matches) const
{
    return std::any_of(mRequests.cbegin(), mRequests.cend(), matches);
}

void AccountQueue::enter(Request *request)
{
    mRequests.append(request);
    followRemoteWipe();
    if (mRequests.size() == 1)
        return startHead();
    qCWarning(eas()) << "Account" << mAccountId << "is busy, request" << request->id() << "added to queue";
}

bool AccountQueue::remove(Request *request)
{
    if (!mRequests.contains(request)) {
        qCCritical(eas()) << "Queue not contains request:" << request->id();
        return false;
    }
    if (head() == request)
        mHeadStarted = mPasswordAsked = false;
    else
        qCInfo(eas()) << "The first request in a queue" << head()->id() << "does not match completed requests"
                      << request->id();
    mRequests.removeAll(request);
    return true;
}

void AccountQueue::startHead()
{
    // A request may end while it starts, on a blocked account every one does. The loop that started it then
    // goes on with the next, so that a long queue does not nest.
    if (mStarting)
        return;
    mStarting = true;
    const QPointer<AccountQueue> alive(this);
    while (!mRequests.isEmpty() && !mHeadStarted && !waitsForCredentials()) {
        mHeadStarted = true;
        head()->start();
        if (!alive)
            return;
    }
    mStarting = false;
}

bool AccountQueue::waitsForCredentials()
{
    // The server would refuse a request without a password.
    EasAccount *const owner = Engine::accountOf(this, mAccountId);
    if (!owner)
        return false;
    askForPassword(*owner);
    if (owner->isReady())
        return false;
    connect(owner, &EasAccount::readyChanged, this, &AccountQueue::startHead, Qt::UniqueConnection);
    return true;
}

void AccountQueue::askForPassword(EasAccount &owner)
{
    // The sign-on service may have failed before; it is asked once for each request.
    if (mPasswordAsked || !owner.isReady() || !owner.password().isEmpty() || owner.isCredentialsNeedUpdate())
        return;
    mPasswordAsked = true;
    owner.onAuthenticationFailedError();
}

void AccountQueue::followRemoteWipe()
{
    EasAccount *const owner = Engine::accountOf(this, mAccountId);
    if (!owner)
        return;
    connect(owner, &EasAccount::remoteWipeOrdered, this, &AccountQueue::onRemoteWipeOrdered,
        Qt::UniqueConnection);
    connect(
        owner, &EasAccount::remoteWipeBegun, this, &AccountQueue::onRemoteWipeBegun, Qt::UniqueConnection);
}

void AccountQueue::onRemoteWipeOrdered()
{
    if (!isEmpty() && !head()->isProvisioning())
        head()->cancel();
}

void AccountQueue::onRemoteWipeBegun()
{
    if (!isEmpty())
        head()->cancel();
}

void AccountQueue::cancelHungHead()
{
    if (isEmpty() || !head()->isExpired())
        return;
    qCWarning(eas()) << "The first request in a queue" << head()->id()
                     << "is still active. Trying to force request cancellation";
    head()->cancel();
}

void AccountQueue::cancelAll()
{
    const QList<Request *> requests = mRequests;
    std::for_each(requests.crbegin(), requests.crend(), [](Request *request) { request->cancel(); });
}
