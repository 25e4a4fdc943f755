// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/request.h"

#include <QByteArray>
#include <QPointer>

class FetchItemCommand;

/**
 * Fetches one attachment of a message, in ranges of partSize() bytes or, with 0, whole.
 *
 * Nothing is stored before all of it has arrived; what did arrive survives a pause for provisioning. Owned by
 * the RequestManager or by the request that it works for. Progress is in bytes. Main thread only.
 */
class FetchItemRequest : public Request
{
    Q_OBJECT

public:
    FetchItemRequest(EasAccountId accountId, quint64 requestId, quint64 messageId, const QString &location,
        QObject *parent = nullptr);

    uint partSize() const { return mPartSize; }
    void setPartSize(uint bytes) { mPartSize = bytes; }

public Q_SLOTS:
    void retrySend() override;

protected:
    void startRequest() override;
    void cancelRequest() override;
    QString commandName() const override;

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

    quint64 mMessageId;
    QString mLocation;
    QPointer<FetchItemCommand> mCommand;
    uint mPartSize = 0;
    QByteArray mData;
};
