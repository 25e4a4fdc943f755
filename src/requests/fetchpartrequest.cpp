// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/fetchpartrequest.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "protocol/base/protocolutils.h"
#include "requests/fetchitemrequest.h"
#include "requests/fetchmessagesrequest.h"
#include "storages/mailstorage.h"

FetchPartRequest::FetchPartRequest(
    EasAccountId accountId, quint64 requestId, quint64 messageId, const QString &location, QObject *parent)
    : Request(accountId, requestId, parent)
    , mMessageId(messageId)
    , mLocation(location)
{
}

QString FetchPartRequest::commandName() const
{
    return ProtocolUtils::CommandItemOperations;
}

void FetchPartRequest::startRequest()
{
    EasAccount *easAccount = account();
    if (!easAccount) {
        qCCritical(eas()) << "Invalid easAccount";
        return completeWith(RequestStatusInternalError);
    }
    if (!easAccount->mailStorage()) {
        qCCritical(eas()) << "MailStorage is null";
        return completeWith(RequestStatusInternalError);
    }
    mRequest = createInnerRequest();
    if (!mRequest) {
        qCWarning(eas()) << "Undefined type of part";
        return completeWith(RequestStatusInternalError);
    }
    connect(mRequest, &Request::requestCompleted, this, &FetchPartRequest::onRequestCompleted);
    connect(mRequest, &Request::requestDownloadProgress, this, &FetchPartRequest::requestDownloadProgress);
    mRequest->start();
}

Request *FetchPartRequest::createInnerRequest()
{
    switch (account()->mailStorage()->isAttachmentPart(mMessageId, mLocation)) {
    case EasItemsCommon::TFalse:
        return new FetchMessagesRequest(accountId(), id(), mMessageId, mLocation, this);
    case EasItemsCommon::TTrue: {
        auto *request = new FetchItemRequest(accountId(), id(), mMessageId, mLocation, this);
        request->setPartSize(mPartSize);
        request->setFiles(mFiles);
        return request;
    }
    case EasItemsCommon::TUndefined:
        break;
    }
    return nullptr;
}

void FetchPartRequest::onRequestCompleted(EasAccountId, qulonglong)
{
    const int result = mRequest ? mRequest->status() : int(RequestStatusInternalError);
    if (mRequest) {
        mRequest->disconnect(this);
        mRequest->deleteLater();
        mRequest.clear();
    }
    completeWith(result);
}

void FetchPartRequest::cancelRequest()
{
    if (mRequest)
        mRequest->cancel();
}

void FetchPartRequest::retrySend()
{
    qCWarning(eas()) << "Unexpected retrySend";
}
