// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/fetchfilerequest.h"

/** Fetches the file of an event's attachment, whole, and stores it on the device. */
class AttachmentDownloadRequest : public FetchFileRequest
{
    Q_OBJECT

public:
    /** uri: of the attachment, as the event has it. */
    AttachmentDownloadRequest(
        EasAccountId accountId, quint64 requestId, const QString &uri, QObject *parent = nullptr);

protected:
    bool findFile(EasAccount &account, QString *fileReference, int *estimatedSize) override;
    bool storeFile(EasAccount &account, const QString &mediaType, const FetchedOctets &octets,
        const QString &fileName) override;

private:
    QString mUri;
};
