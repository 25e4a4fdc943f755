// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/pushping.h"

#include "application/base/logging.h"
#include "application/requestmanager.h"
#include "requests/pingrequest.h"

PushPing::PushPing(EasAccountId accountId, RequestManager *manager, QObject *parent)
    : QObject(parent)
    , mAccountId(accountId)
    , mManager(manager)
{
}

PushPing::~PushPing()
{
    delete mRequest;
}

void PushPing::start()
{
    stop();
    mRequest = new PingRequest(mAccountId, 0, mManager);
    connect(mRequest, &Request::requestCompleted, this, &PushPing::onRequestCompleted);
    connect(mRequest, &PingRequest::answered, this, &PushPing::answered);
    connect(mRequest, &PingRequest::waiting, this, [this] {
        mFolderCount = mRequest ? mRequest->folderCount() : mFolderCount;
        Q_EMIT waiting();
    });
    mRequest->start();
    qCInfo(eas()) << "ping request started";
}

bool PushPing::stop()
{
    PingRequest *const stopped = mRequest;
    if (!stopped)
        return false;
    mRequest.clear();
    stopped->disconnect(this);
    stopped->cancel();
    stopped->deleteLater();
    qCInfo(eas()) << "Request canceled";
    return true;
}

void PushPing::onRequestCompleted(EasAccountId accountId, qulonglong requestId)
{
    PingRequest *const finished = mRequest;
    if (accountId != mAccountId || !finished || finished->id() != requestId)
        return;
    mRequest.clear();
    finished->deleteLater();
    qCInfo(eas()) << " requestId:" << requestId << "status:" << finished->status();
    Q_EMIT completed(*finished);
}
