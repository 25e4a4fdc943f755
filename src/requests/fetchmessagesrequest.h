// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easemailitem.h"
#include "requests/fetchedfiles.h"
#include "requests/fetchrequest.h"
#include "requests/mailserverids.h"

#include <QList>
#include <QSharedPointer>
#include <QStringList>

class FetchPartRequest;
class ItemOperationsFetchItem;
class MailStorage;

/**
 * Fetches whole messages with their bodies and, if asked for, all their attachments one after another; or,
 * in the form with a location, the body of one message.
 *
 * A message that the server refuses, or whose body it cuts short, does not keep the others from coming; the
 * request ends with the first such failure once all has been asked for.
 *
 * Queued and owned by the RequestManager, or owned by a FetchPartRequest. Main thread only.
 */
class FetchMessagesRequest : public FetchRequest
{
    Q_OBJECT

public:
    FetchMessagesRequest(EasAccountId accountId, quint64 requestId, const QList<quint64> &messageIds,
        bool fullContentDownload, QObject *parent = nullptr);
    FetchMessagesRequest(EasAccountId accountId, quint64 requestId, quint64 messageId,
        const QString &location, QObject *parent = nullptr);

protected:
    void startRequest() override;
    void cancelRequest() override;
    void onCommandFinished(bool success) override;
    void processCommandSuccess() override;

private Q_SLOTS:
    void onFetchItemCommandFinished(bool success);
    void onFetchAttachmentCompleted(EasAccountId accountId, qulonglong requestId);

private:
    /** Null, logged, if there is none (any more). */
    QSharedPointer<MailStorage> mailStorage() const;
    /** The messages of each folder by themselves: not every server answers for several folders at once. */
    Lookup<QList<QList<quint64>>> messagesByFolder(MailStorage &storage);
    bool updateMessages(MailStorage &storage, const MailServerIds &ids);
    /** Of the reply's messages; what cannot be stored is a failure of the message, not of the request. */
    void updateBodies(MailStorage &storage, const MailServerIds &ids);
    void noteFailure(int status);
    /** Stores the files that are held. */
    void storeFiles();
    /** Ends with the first failure of a message, if there was one. */
    void finish();
    quint64 localIdOf(const ItemOperationsFetchItem &fetch, const MailServerIds &ids) const;
    /** The identifiers of the messages of the reply. */
    Lookup<MailServerIds> receivedIds() const;
    QList<EasEmailItem> receivedItems(const MailServerIds &ids) const;
    void noteRefusals();
    /** Whether the reply has each message that was asked for, as it was named. */
    bool answersAll(MailStorage &storage, const MailServerIds &ids) const;
    void downloadNextAttachment();
    /** False, logged, if the mail store has gone. */
    bool queueAttachments();
    FetchPartRequest *attachmentRequest(quint64 messageId, const QString &location);

    bool mFullContentDownload = false;
    QList<quint64> mMessageIds;
    QString mLocation;
    /** Messages still to be asked for, folder by folder. */
    QList<QList<quint64>> mPendingFolders;
    quint64 mAttachmentMessage = 0;
    QStringList mAttachmentLocations;
    QPointer<FetchPartRequest> mFetchPartRequest;
    FetchedFiles mFiles;
    int mFailure = RequestStatusSuccess;
};
