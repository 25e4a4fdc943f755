// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easemailitem.h"
#include "requests/request.h"

#include <QList>
#include <QPointer>
#include <QStringList>

class FetchItemCommand;
class FetchPartRequest;

/**
 * Fetches whole messages with their bodies and, if asked for, all their attachments one after another; or,
 * in the form with a location, the body of one message.
 *
 * Queued and owned by the RequestManager, or owned by a FetchPartRequest. Main thread only.
 */
class FetchMessagesRequest : public Request
{
    Q_OBJECT

public:
    FetchMessagesRequest(EasAccountId accountId, quint64 requestId, const QList<quint64> &messageIds,
        bool fullContentDownload, QObject *parent = nullptr);
    FetchMessagesRequest(EasAccountId accountId, quint64 requestId, quint64 messageId,
        const QString &location, QObject *parent = nullptr);

public Q_SLOTS:
    void retrySend() override;

protected:
    void startRequest() override;
    void cancelRequest() override;
    QString commandName() const override;

private Q_SLOTS:
    void onFetchItemCommandFinished(bool success);
    void onFetchAttachmentCompleted(EasAccountId accountId, qulonglong requestId);

private:
    void dropCommand();
    /** The messages of each folder by themselves: not every server answers for several folders at once. */
    QList<QList<quint64>> messagesByFolder();
    void processCommandSuccess();
    bool updateBody();
    bool updateMessages();
    bool receivedItems(QList<EasEmailItem> &items);
    int firstItemFailure() const;
    void downloadNextAttachment();
    void queueAttachments();
    FetchPartRequest *attachmentRequest(quint64 messageId, const QString &location);

    bool mFullContentDownload = false;
    QList<quint64> mMessageIds;
    QString mLocation;
    /** Messages still to be asked for, folder by folder. */
    QList<QList<quint64>> mPendingFolders;
    quint64 mAttachmentMessage = 0;
    QStringList mAttachmentLocations;
    QPointer<FetchItemCommand> mCommand;
    QPointer<FetchPartRequest> mFetchPartRequest;
};
