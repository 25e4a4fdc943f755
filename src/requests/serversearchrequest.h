// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/galitem.h"
#include "requests/commandrequest.h"

#include <QList>
#include <QPointer>

class FolderSyncRequest;
class ServerSearchCommand;

/** What a status of the server's store makes of a search. */
enum class SearchVerb {
    /** The results are there; they are delivered, and the search is done. */
    Deliver,
    /** The request ends with RequestStatusInternalError. */
    Fail,
    /** The same search goes out again after the delay. */
    RetryLater,
    /** The folder hierarchy is refreshed, and the same search goes out again. */
    SyncFolders
};

using SearchStatusTable = StatusTable<SearchVerb>;

/**
 * What the requests share that look something up on the server: one command, its statuses, the status of the
 * server's store, a refresh of the folders in between where the server wants one, and the delivery.
 *
 * Messages go into the mail store as temporary ones, and matchingIds() are their local identifiers. People
 * are told with galItemReceived(), each before the end of the request, and matchingIds() number them from 1.
 * Nothing is delivered twice. After a failure there are no matching identifiers, and the counts are 0.
 *
 * Lives as a Request does. Main thread only.
 */
class ServerSearchRequest : public CommandRequest
{
    Q_OBJECT

public:
    ServerSearchRequest(EasAccountId accountId, quint64 requestId, QObject *parent);
    ~ServerSearchRequest() override;

    QList<quint64> matchingIds() const { return mMatchingIds; }
    /** How many matches there are on the server. */
    uint totalItemsCount() const { return mTotalItemsCount; }
    /** How many of them come behind the last one that was delivered. */
    uint remainingCount() const { return mRemainingCount; }

    bool isProvisioning() const override;

public Q_SLOTS:
    void retrySend() override;

Q_SIGNALS:
    void galItemReceived(quint64 matchingId, const GalItem &item);
    /** The account had to be cleared for the refresh of its folders, and needs its items again. */
    void resyncFolders(EasAccountId accountId, qulonglong requestId);

protected:
    void startRequest() override;
    void cancelRequest() override;
    void onCommandFinished(bool success) override;
    void processReply() override;

    virtual ServerSearchCommand *createCommand() = 0;
    /** Whether people are looked for, otherwise messages; what the server sends besides is dropped. */
    virtual bool looksForPeople() const = 0;
    /** The command's own statuses, success among them, beside those of all requests. */
    virtual const RequestStatusTable &statuses() const = 0;
    /** What a status of the store means; null if no row names it. */
    virtual const SearchStatusTable::Row *storeRow(int storeStatus) const = 0;
    /** Whether a status of the command is in truth one of the store. */
    virtual bool isOfStore(int) const { return false; }
    /** What the log says of a status of the store without a row. */
    virtual void logUnhandledStoreStatus(int storeStatus) const;
    /** What the log says of a command that failed by itself, before its status. */
    virtual const char *failureText() const = 0;

private:
    enum State { Idle = 0, Searching = 1, SyncingFolders = 2 };

    ServerSearchCommand *searchCommand() const;
    void startSearchCommand();
    void handleStore(int storeStatus);
    void startFolderSyncRequest();
    void onFolderSyncRequestCompleted(quint64 requestId);
    void endUnhandled(bool success);
    void fail();
    bool deliver();
    bool deliverMessages();
    void deliverPeople();

    State mState = Idle;
    QPointer<FolderSyncRequest> mFolderSyncRequest;
    QList<quint64> mMatchingIds;
    uint mTotalItemsCount = 0;
    uint mRemainingCount = 0;
};
