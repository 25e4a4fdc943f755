// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/request.h"

#include <QByteArray>
#include <QPointer>

class FetchItemCommand;

/**
 * Fetches one attached file, in ranges of partSize() bytes or, with 0, whole.
 *
 * Nothing is stored before all of it has arrived; what did arrive survives a pause for provisioning. Owned by
 * the RequestManager or by the request that it works for; a subclass knows whose file it is and where it
 * goes. Progress is in bytes. Main thread only.
 */
class FetchFileRequest : public Request
{
    Q_OBJECT

public:
    using Request::Request;

    uint partSize() const { return mPartSize; }
    void setPartSize(uint bytes) { mPartSize = bytes; }

public Q_SLOTS:
    void retrySend() override;

protected:
    void startRequest() override;
    void cancelRequest() override;
    QString commandName() const override;

    /** The server's reference of the file and its size as far as known; false, logged, without one. */
    virtual bool findFile(EasAccount &account, QString *fileReference, int *estimatedSize) = 0;
    virtual bool storeFile(
        EasAccount &account, const QString &mediaType, const QByteArray &data, const QString &fileName) = 0;

protected Q_SLOTS:
    virtual void onCommandFinished(bool success);

private Q_SLOTS:
    void onDownloadProgress(qlonglong bytesReceived, qlonglong bytesTotal);

private:
    void dropCommand();
    void createCommand(const QString &fileReference);
    bool handleMultiPart();
    void takePart();
    void requestNextPart();
    void processCommandSuccess();
    bool store(const QString &contentType, const QByteArray &data);

    QPointer<FetchItemCommand> mCommand;
    uint mPartSize = 0;
    QByteArray mData;
};
