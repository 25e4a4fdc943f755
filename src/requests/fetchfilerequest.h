// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/fetchrequest.h"

#include <QByteArray>

class EasAccount;

/**
 * Fetches one attached file, in ranges of partSize() bytes or, with 0, whole.
 *
 * Nothing is stored before all of it has arrived; what did arrive survives a pause for provisioning. Owned by
 * the RequestManager or by the request that it works for; a subclass knows whose file it is and where it
 * goes. Progress is in bytes. Main thread only.
 */
class FetchFileRequest : public FetchRequest
{
    Q_OBJECT

public:
    using FetchRequest::FetchRequest;

    uint partSize() const { return mPartSize; }
    void setPartSize(uint bytes) { mPartSize = bytes; }

public Q_SLOTS:
    void retrySend() override;

protected:
    void startRequest() override;

    /** The server's reference of the file and its size as far as known; false, logged, without one. */
    virtual bool findFile(EasAccount &account, QString *fileReference, int *estimatedSize) = 0;
    virtual bool storeFile(
        EasAccount &account, const QString &mediaType, const QByteArray &data, const QString &fileName) = 0;

protected Q_SLOTS:
    void onCommandFinished(bool success) override;

private Q_SLOTS:
    void onDownloadProgress(qlonglong bytesReceived, qlonglong bytesTotal);

private:
    FetchItemCommand *newFileCommand(const QString &fileReference);
    bool handleMultiPart();
    void takePart();
    void requestNextPart(int total);
    void processCommandSuccess() override;
    bool store(const QString &contentType, const QByteArray &data);

    uint mPartSize = 0;
    QByteArray mData;
};
