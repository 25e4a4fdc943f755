// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/fetchitemrequest.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "requests/fetchedfiles.h"
#include "storages/mailstorage.h"

FetchItemRequest::FetchItemRequest(
    EasAccountId accountId, quint64 requestId, quint64 messageId, const QString &location, QObject *parent)
    : FetchFileRequest(accountId, requestId, parent)
    , mMessageId(messageId)
    , mLocation(location)
{
}

bool FetchItemRequest::findFile(EasAccount &account, QString *fileReference, int *estimatedSize)
{
    const QSharedPointer<MailStorage> storage = account.mailStorage();
    if (!storage) {
        qCCritical(eas()) << "MailStorage is null";
        return false;
    }
    *fileReference = storage->fileReferenceFromLocation(mMessageId, mLocation);
    if (fileReference->isEmpty()) {
        qCWarning(eas()) << "file reference is empty for message" << mMessageId << ", mLocation is"
                         << mLocation;
        return false;
    }
    *estimatedSize = storage->estimatedDataSizeFromLocation(mMessageId, mLocation);
    return true;
}

bool FetchItemRequest::storeFile(
    EasAccount &account, const QString &mediaType, const FetchedOctets &octets, const QString &fileName)
{
    const QSharedPointer<MailStorage> storage = account.mailStorage();
    if (!storage) {
        qCCritical(eas()) << "MailStorage is null";
        return false;
    }
    if (mFiles)
        return mFiles->take(*storage, mMessageId, { mLocation, mediaType, octets, fileName });
    if (storage->updateMessagePart(mMessageId, mLocation, mediaType, octets, fileName))
        return true;
    qCCritical(eas()) << "failed to update attachment";
    return false;
}
