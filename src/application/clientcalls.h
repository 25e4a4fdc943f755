// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"
#include "common/failedpolicymap.h"
#include "common/galitem.h"
#include "easitems/containers/easoofcontainer.h"

#include <QList>
#include <QObject>
#include <QStringList>

#include <functional>

class FolderSyncRequest;
class HierarchyRequest;
class OofRequest;
class ProvisionRequest;
class Request;
class ServerSearchRequest;
class SyncRequest;

/**
 * What the calls of clients build: one handler a call, which makes its request and hands it over. The
 * identifier of a request was given to it by the service thread.
 *
 * The RequestManager is the one that takes the requests over, as their parent. Main thread only.
 */
class ClientCalls : public QObject
{
    Q_OBJECT

public:
    explicit ClientCalls(QObject *parent);
    ~ClientCalls() override;

    /** Tells clients of the end of one request, which still exists; every success has the status 0. */
    using EndReport = std::function<void(EasAccountId accountId, qulonglong requestId, int status)>;

    /** Takes a request over, and reports its one end like this. */
    virtual void processNewRequest(Request *request, const EndReport &report) = 0;
    /** Takes a request over that has no result of its own: its end is a requestFinished(). */
    void processNewRequest(Request *request);
    void processNewProvisionRequest(ProvisionRequest *request);
    void processNewSearchRequest(ServerSearchRequest *request, const EndReport &report);
    void processNewSyncRequest(SyncRequest *request);
    void processNewFolderSyncRequest(FolderSyncRequest *request);

public Q_SLOTS:
    void onFullSyncRequest(EasAccountId accountId, qulonglong requestId);
    void onSyncFoldersRequest(EasAccountId accountId, const QStringList &folderIds, qulonglong requestId);
    void onSyncServiceRequest(EasAccountId accountId, int service, qulonglong requestId);
    void onFoldersSyncRequest(EasAccountId accountId, qulonglong requestId);
    void onSendMailRequest(EasAccountId accountId, qulonglong messageId, qulonglong requestId);
    void onCreateFolderRequest(EasAccountId accountId, const QString &name, const QString &parentFolderId,
        uint folderType, qulonglong requestId);
    void onDeleteFolderRequest(EasAccountId accountId, const QString &folderId, qulonglong requestId);
    void onUpdateFolderRequest(EasAccountId accountId, const QString &folderId, const QString &parentFolderId,
        const QString &name, qulonglong requestId);
    void onDownloadMessagePartRequest(
        EasAccountId accountId, qulonglong messageId, const QString &location, qulonglong requestId);
    void onDownloadMessagesRequest(EasAccountId accountId, const QList<qulonglong> &messageIds,
        bool fullContentDownload, qulonglong requestId);
    void onMeetingResponseRequest(EasAccountId accountId, qulonglong requestId, qulonglong requestMessageId,
        qlonglong instanceId, int userResponse, qulonglong replyMessageId, const QString &newStartTime,
        const QString &newEndTime, const QString &newTimeComment);
    void onMeetingResponseCalendarRequest(EasAccountId accountId, qulonglong requestId,
        const QString &requestEventId, qlonglong instanceId, int userResponse, qulonglong replyMessageId,
        const QString &newStartTime, const QString &newEndTime, const QString &newTimeComment);
    void onProvisionPolicyRequest(EasAccountId accountId, qulonglong requestId);
    void onGetOofRequest(EasAccountId accountId, qulonglong requestId);
    void onSetOofStateRequest(EasAccountId accountId, qulonglong requestId, const EasOofContainer &state);
    void onCalendarAttachmentDownloadRequest(
        EasAccountId accountId, qulonglong requestId, const QString &uri);
    void onSearchMessagesRequest(EasAccountId accountId, const QString &folderId, const QString &dateFrom,
        const QString &dateTo, const QString &bodyText, qulonglong limit, qulonglong requestId);
    void onSearchGALRequest(EasAccountId accountId, const QString &queryString, int rangeMin, int rangeMax,
        bool rebuildResults, bool deepTraversal, qulonglong requestId);
    void onFindRequest(EasAccountId accountId, const QString &folderId, const QString &searchQuery,
        int searchType, qulonglong limit, qulonglong requestId);
    void onAttendeesAvailableRequest(EasAccountId accountId, qulonglong requestId,
        const QString &emailAddresses, const QString &startTime, const QString &endTime);

Q_SIGNALS:
    void requestFinished(EasAccountId accountId, qulonglong requestId, int status);
    void provisionRequestFinished(EasAccountId accountId, qulonglong requestId, int status,
        const FailedPolicyMap &provisionPolicy, int policyStatus);
    void searchMessagesFinished(EasAccountId accountId, qulonglong requestId, int status, uint remainingCount,
        const QList<qulonglong> &matchingIds);
    void searchGALFinished(EasAccountId accountId, qulonglong requestId, int status, uint totalItemCount,
        const QList<qulonglong> &matchingIds);
    void findMessagesFinished(EasAccountId accountId, qulonglong requestId, int status, uint remainingCount,
        const QList<qulonglong> &matchingIds);
    /** Before the requestFinished() of a read that ended well. */
    void oofStateFetched(EasAccountId accountId, qulonglong requestId, const EasOofContainer &state);
    /** The one end of that request; empty lists tell of a failure. */
    void attendeesAvailableDataReady(qulonglong requestId, const QStringList &emails,
        const QStringList &names, const QStringList &statuses);
    /** Each entry that was found, before the end of its request. */
    void galItemReceived(
        qulonglong accountId, qulonglong requestId, qulonglong matchingId, const GalItem &galItem);
    void syncStarted(EasAccountId accountId, qulonglong requestId);
    void syncCompleted(EasAccountId accountId, qulonglong requestId, int status);
    /** A sync brought something new; right before its syncCompleted(). */
    void changesReceived(EasAccountId accountId);

private:
    void forwardSync(const HierarchyRequest &request);
    void onGetOofRequestCompleted(const OofRequest &request, int status);

    /** Starts a full sync once a refresh of the folders has had to clear the account. */
    void syncAnew(EasAccountId accountId, qulonglong requestId);

    bool acceptMeetingResponse(
        EasAccountId accountId, qulonglong requestId, int userResponse, const QString &respondedId);
};
