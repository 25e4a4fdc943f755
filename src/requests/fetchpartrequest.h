// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/request.h"

#include <QPointer>

class FetchedFiles;

/**
 * Fetches the part of a message that stands at a location: decides whether it is the body or an attachment
 * and lets the request for that do the work, under its own identifier. Owned by the RequestManager or by the
 * request that it works for. Main thread only.
 */
class FetchPartRequest : public Request
{
    Q_OBJECT

public:
    FetchPartRequest(EasAccountId accountId, quint64 requestId, quint64 messageId, const QString &location,
        QObject *parent = nullptr);

    quint64 messageId() const { return mMessageId; }
    void setLocation(const QString &location) { mLocation = location; }
    uint partSize() const { return mPartSize; }
    /** Bytes of an attachment in one exchange; 0 for all of it. */
    void setPartSize(uint bytes) { mPartSize = bytes; }

    /** Where an attachment goes in place of the store, see FetchItemRequest. */
    void setFiles(FetchedFiles *files) { mFiles = files; }

public Q_SLOTS:
    void retrySend() override;

protected:
    void startRequest() override;
    void cancelRequest() override;
    QString commandName() const override;

private Q_SLOTS:
    void onRequestCompleted(EasAccountId accountId, qulonglong requestId);

private:
    Request *createInnerRequest();

    quint64 mMessageId;
    QString mLocation;
    uint mPartSize = 0;
    QPointer<Request> mRequest;
    FetchedFiles *mFiles = nullptr;
};
