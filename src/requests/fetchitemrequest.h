// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/fetchfilerequest.h"

class FetchedFiles;

/** Fetches one attachment of a message. Nothing is stored before all of it has arrived. */
class FetchItemRequest : public FetchFileRequest
{
    Q_OBJECT

public:
    FetchItemRequest(EasAccountId accountId, quint64 requestId, quint64 messageId, const QString &location,
        QObject *parent = nullptr);

    /** Where the file goes in place of the store; the owner outlives this request. Null: to the store. */
    void setFiles(FetchedFiles *files) { mFiles = files; }

protected:
    bool findFile(EasAccount &account, QString *fileReference, int *estimatedSize) override;
    bool storeFile(EasAccount &account, const QString &mediaType, const FetchedOctets &octets,
        const QString &fileName) override;

private:
    quint64 mMessageId;
    QString mLocation;
    FetchedFiles *mFiles = nullptr;
};
