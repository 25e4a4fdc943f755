// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/attachmentdownloadrequest.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "storages/calendarstorage.h"

AttachmentDownloadRequest::AttachmentDownloadRequest(
    EasAccountId accountId, quint64 requestId, const QString &uri, QObject *parent)
    : FetchFileRequest(accountId, requestId, parent)
    , mUri(uri)
{
}

bool AttachmentDownloadRequest::findFile(EasAccount &account, QString *fileReference, int *estimatedSize)
{
    const QSharedPointer<CalendarStorage> storage = account.calendarStorage();
    if (!storage) {
        qCCritical(eas()) << "CalendarStorage is null";
        return false;
    }
    *fileReference = storage->fileReferenceForAttachment(mUri);
    if (fileReference->isEmpty()) {
        qCWarning(eas()) << "file reference is empty for uri" << mUri;
        return false;
    }
    *estimatedSize = storage->estimatedDataSizeForAttachment(mUri);
    return true;
}

bool AttachmentDownloadRequest::storeFile(
    EasAccount &account, const QString &mediaType, const FetchedOctets &octets, const QString &fileName)
{
    // The event knows name and kind of its attachment.
    Q_UNUSED(mediaType)
    Q_UNUSED(fileName)
    const QSharedPointer<CalendarStorage> storage = account.calendarStorage();
    if (!storage) {
        qCCritical(eas()) << "CalendarStorage is null";
        return false;
    }
    if (storage->updateAttachmentForEvent(octets.all(), mUri))
        return true;
    qCCritical(eas()) << "failed to save attachment";
    return false;
}
