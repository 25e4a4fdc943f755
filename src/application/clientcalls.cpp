// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/clientcalls.h"

#include "application/base/logging.h"
#include "application/searchassembly.h"
#include "easitems/easitemscommon.h"
#include "protocol/base/protocoltime.h"
#include "requests/addresslist.h"
#include "requests/attachmentdownloadrequest.h"
#include "requests/attendeesavailablerequest.h"
#include "requests/fetchmessagesrequest.h"
#include "requests/fetchpartrequest.h"
#include "requests/findrequest.h"
#include "requests/foldercreaterequest.h"
#include "requests/folderdeleterequest.h"
#include "requests/foldersyncrequest.h"
#include "requests/folderupdaterequest.h"
#include "requests/galsearchrequest.h"
#include "requests/meetingresponserequest.h"
#include "requests/oofrequest.h"
#include "requests/provisionrequest.h"
#include "requests/searchrequest.h"
#include "requests/sendmailrequest.h"
#include "requests/syncrequest.h"

namespace {

/** Bytes of one range of an attachment. */
constexpr int DownloadPartSize = 65536;

} // namespace

ClientCalls::ClientCalls(QObject *parent)
    : QObject(parent)
{
}

ClientCalls::~ClientCalls() = default;

void ClientCalls::forwardSync(const HierarchyRequest &request)
{
    connect(&request, &HierarchyRequest::syncStarted, this, &ClientCalls::syncStarted);
    connect(&request, &HierarchyRequest::syncCompleted, this, &ClientCalls::syncCompleted);
    connect(&request, &HierarchyRequest::changesReceived, this, &ClientCalls::changesReceived);
}

void ClientCalls::processNewRequest(Request *request)
{
    processNewRequest(request, [this](EasAccountId accountId, qulonglong requestId, int status) {
        Q_EMIT requestFinished(accountId, requestId, status);
    });
}

void ClientCalls::processNewProvisionRequest(ProvisionRequest *request)
{
    processNewRequest(request, [this, request](EasAccountId accountId, qulonglong requestId, int status) {
        Q_EMIT provisionRequestFinished(
            accountId, requestId, status, request->provisionPolicies(), request->policyStatus());
    });
}

void ClientCalls::processNewSearchRequest(ServerSearchRequest *request, const EndReport &report)
{
    connect(request, &ServerSearchRequest::galItemReceived, this,
        [this, request](quint64 matchingId, const GalItem &item) {
            qCDebug(eas()) << "Got gal item for accountId:" << request->accountId()
                           << ", requestId:" << request->id();
            Q_EMIT galItemReceived(request->accountId(), request->id(), matchingId, item);
        });
    connect(request, &ServerSearchRequest::resyncFolders, request,
        [this](EasAccountId resyncedId, qulonglong resyncId) { syncAnew(resyncedId, resyncId); });
    processNewRequest(request, report);
}

void ClientCalls::syncAnew(EasAccountId accountId, qulonglong requestId)
{
    processNewSyncRequest(new SyncRequest(accountId, requestId, this));
}

void ClientCalls::processNewSyncRequest(SyncRequest *request)
{
    forwardSync(*request);
    processNewRequest(request);
}

void ClientCalls::processNewFolderSyncRequest(FolderSyncRequest *request)
{
    forwardSync(*request);
    processNewRequest(request);
}

void ClientCalls::onFullSyncRequest(EasAccountId accountId, qulonglong requestId)
{
    qCInfo(eas()) << "Full Sync: account: " << accountId << ", requestId: " << requestId;
    processNewSyncRequest(new SyncRequest(accountId, requestId, this));
}

void ClientCalls::onSyncFoldersRequest(
    EasAccountId accountId, const QStringList &folderIds, qulonglong requestId)
{
    qCInfo(eas()) << "Sync Folders: account: " << accountId << ", folders: " << folderIds
                  << ", requestId: " << requestId;
    auto *const request = new SyncRequest(accountId, requestId, this);
    request->setSyncFolders(folderIds);
    processNewSyncRequest(request);
}

void ClientCalls::onSyncServiceRequest(EasAccountId accountId, int service, qulonglong requestId)
{
    qCInfo(eas()) << "Sync Service: account: " << accountId << ", service: " << service
                  << ", requestId: " << requestId;
    auto *const request = new SyncRequest(accountId, requestId, this);
    request->setSyncService(service);
    processNewSyncRequest(request);
}

void ClientCalls::onFoldersSyncRequest(EasAccountId accountId, qulonglong requestId)
{
    qCInfo(eas()) << "Folders Sync: account: " << accountId << ", requestId: " << requestId;
    auto *const request = new FolderSyncRequest(accountId, requestId, this);
    // The request is the context, because the wish comes after its end, when this one listens no more.
    connect(request, &FolderSyncRequest::resyncFolders, request,
        [this](EasAccountId resyncedId, qulonglong resyncId) { syncAnew(resyncedId, resyncId); });
    processNewFolderSyncRequest(request);
}

void ClientCalls::onDownloadMessagePartRequest(
    EasAccountId accountId, qulonglong messageId, const QString &location, qulonglong requestId)
{
    qCInfo(eas()) << "Download Message Part: account: " << accountId << ", messageId: " << messageId
                  << ", location: " << location << ", requestId: " << requestId;
    auto *const request = new FetchPartRequest(accountId, requestId, messageId, location, this);
    request->setPartSize(DownloadPartSize);
    processNewRequest(request);
}

void ClientCalls::onDownloadMessagesRequest(EasAccountId accountId, const QList<qulonglong> &messageIds,
    bool fullContentDownload, qulonglong requestId)
{
    qCInfo(eas()) << "Download Messages: account: " << accountId << ", messages: " << messageIds
                  << ", fullContentDownload: " << fullContentDownload << ", requestId: " << requestId;
    processNewRequest(new FetchMessagesRequest(accountId, requestId, messageIds, fullContentDownload, this));
}

void ClientCalls::onProvisionPolicyRequest(EasAccountId accountId, qulonglong requestId)
{
    qCInfo(eas()) << "Provision Policy: account: " << accountId << ", requestId: " << requestId;
    processNewProvisionRequest(
        new ProvisionRequest(accountId, requestId, ProvisionRequest::InitialPolicyKey, this));
}

void ClientCalls::onMeetingResponseRequest(EasAccountId accountId, qulonglong requestId,
    qulonglong requestMessageId, qlonglong instanceId, int userResponse, qulonglong replyMessageId,
    const QString &newStartTime, const QString &newEndTime, const QString &newTimeComment)
{
    qCInfo(eas()) << "Meeting Response: account: " << accountId << ", requestMessageId: " << requestMessageId
                  << ", instanceId: " << instanceId << ", userResponse: " << userResponse
                  << ", replyMessageId: " << replyMessageId << ", newStartTime: " << newStartTime
                  << ", newEndTime: " << newEndTime << ", requestId: " << requestId;
    if (!acceptMeetingResponse(accountId, requestId, userResponse,
            requestMessageId != 0 ? QString::number(requestMessageId) : QString()))
        return;
    auto *const request = new MeetingResponseRequest(accountId, requestId, this);
    request->setOptions({ newStartTime, newEndTime, newTimeComment });
    request->appendRequest(static_cast<EasItemsCommon::UserResponseType>(userResponse), requestMessageId,
        instanceId, replyMessageId);
    processNewRequest(request);
}

void ClientCalls::onMeetingResponseCalendarRequest(EasAccountId accountId, qulonglong requestId,
    const QString &requestEventId, qlonglong instanceId, int userResponse, qulonglong replyMessageId,
    const QString &newStartTime, const QString &newEndTime, const QString &newTimeComment)
{
    qCInfo(eas()) << "Meeting Response Calendar: account: " << accountId
                  << ", requestEventId: " << requestEventId << ", instanceId: " << instanceId
                  << ", userResponse: " << userResponse << ", replyMessageId: " << replyMessageId
                  << ", newStartTime: " << newStartTime << ", newEndTime: " << newEndTime
                  << ", requestId: " << requestId;
    if (!acceptMeetingResponse(accountId, requestId, userResponse, requestEventId))
        return;
    auto *const request = new MeetingResponseRequest(accountId, requestId, this);
    request->setOptions({ newStartTime, newEndTime, newTimeComment });
    request->appendRequestEvent(static_cast<EasItemsCommon::UserResponseType>(userResponse), requestEventId,
        instanceId, replyMessageId);
    processNewRequest(request);
}

bool ClientCalls::acceptMeetingResponse(
    EasAccountId accountId, qulonglong requestId, int userResponse, const QString &respondedId)
{
    const bool known =
        userResponse >= EasItemsCommon::UserResponseMin && userResponse <= EasItemsCommon::UserResponseMax;
    if (known && !respondedId.isEmpty())
        return true;
    qCCritical(eas()) << "Wrong args, userResponse:" << userResponse << ", requestMessageId:" << respondedId;
    Q_EMIT requestFinished(accountId, requestId, EasRequestStatus::RequestStatusBadRequest);
    return false;
}

void ClientCalls::onSendMailRequest(EasAccountId accountId, qulonglong messageId, qulonglong requestId)
{
    qCInfo(eas()) << "Send Mail: account: " << accountId << ", messageId: " << messageId
                  << ", requestId: " << requestId;
    processNewRequest(new SendMailRequest(accountId, requestId, messageId, this));
}

void ClientCalls::onCreateFolderRequest(EasAccountId accountId, const QString &name,
    const QString &parentFolderId, uint folderType, qulonglong requestId)
{
    qCInfo(eas()) << "Create Folder: account: " << accountId << ", name: " << name
                  << ", parentFolderId: " << parentFolderId << ", folderType: " << folderType
                  << ", requestId: " << requestId;
    processNewRequest(new FolderCreateRequest(accountId, parentFolderId, name, folderType, requestId, this));
}

void ClientCalls::onDeleteFolderRequest(EasAccountId accountId, const QString &folderId, qulonglong requestId)
{
    qCInfo(eas()) << "Delete Folder: account: " << accountId << ", folderId: " << folderId
                  << ", requestId: " << requestId;
    processNewRequest(new FolderDeleteRequest(accountId, folderId, requestId, this));
}

void ClientCalls::onUpdateFolderRequest(EasAccountId accountId, const QString &folderId,
    const QString &parentFolderId, const QString &name, qulonglong requestId)
{
    qCInfo(eas()) << "Update Folder: account: " << accountId << ", folderId: " << folderId
                  << ", parentFolderId: " << parentFolderId << ", name: " << name
                  << ", requestId: " << requestId;
    processNewRequest(new FolderUpdateRequest(accountId, folderId, parentFolderId, name, requestId, this));
}

void ClientCalls::onGetOofRequest(EasAccountId accountId, qulonglong requestId)
{
    qCInfo(eas()) << "Get Oof: account: " << accountId << ", requestId: " << requestId;
    auto *const request = new OofRequest(accountId, requestId, OofRequest::Get, this);
    processNewRequest(request, [this, request](EasAccountId ofAccount, qulonglong id, int status) {
        onGetOofRequestCompleted(*request, status);
        Q_EMIT requestFinished(ofAccount, id, status);
    });
}

void ClientCalls::onSetOofStateRequest(
    EasAccountId accountId, qulonglong requestId, const EasOofContainer &state)
{
    qCInfo(eas()) << "Set Oof State: account: " << accountId << ", enabled: " << state.oofEnabled()
                  << ", timeRangeEnabled: " << state.timeRangeEnabled() << ", requestId: " << requestId;
    auto *const request = new OofRequest(accountId, requestId, OofRequest::Set, this);
    request->setOofState(state);
    processNewRequest(request);
}

void ClientCalls::onGetOofRequestCompleted(const OofRequest &request, int status)
{
    qCInfo(eas()) << "Finished: accountId:" << request.accountId() << ", requestId:" << request.id()
                  << ", status:" << status;
    if (status == EasRequestStatus::RequestStatusSuccess)
        Q_EMIT oofStateFetched(request.accountId(), request.id(), request.getOofState());
}

void ClientCalls::onCalendarAttachmentDownloadRequest(
    EasAccountId accountId, qulonglong requestId, const QString &uri)
{
    qCInfo(eas()) << "Download Calendar Attachment: account: " << accountId << ", uri: " << uri
                  << ", requestId: " << requestId;
    processNewRequest(new AttachmentDownloadRequest(accountId, requestId, uri, this));
}

void ClientCalls::onSearchMessagesRequest(EasAccountId accountId, const QString &folderId,
    const QString &dateFrom, const QString &dateTo, const QString &bodyText, qulonglong limit,
    qulonglong requestId)
{
    qCInfo(eas()) << "Search Messages: account: " << accountId << ", folderId: " << folderId
                  << ", dateFrom: " << dateFrom << ", dateTo: " << dateTo << ", bodyText: " << bodyText
                  << ", limit: " << limit << ", requestId: " << requestId;
    SearchQuery query;
    const int refusal =
        SearchAssembly::mailQuery(accountId, { folderId, dateFrom, dateTo, bodyText, limit }, &query);
    if (refusal != EasRequestStatus::RequestStatusSuccess)
        return Q_EMIT searchMessagesFinished(accountId, requestId, refusal, 0, {});
    auto *const request =
        new SearchRequest(accountId, requestId, query, SearchAssembly::mailOptions(limit), this);
    processNewSearchRequest(request, [this, request](EasAccountId account, qulonglong id, int status) {
        Q_EMIT searchMessagesFinished(account, id, status, request->remainingCount(), request->matchingIds());
    });
}

void ClientCalls::onSearchGALRequest(EasAccountId accountId, const QString &queryString, int rangeMin,
    int rangeMax, bool rebuildResults, bool deepTraversal, qulonglong requestId)
{
    qCInfo(eas()) << "Search GAL: account: " << accountId << ", query: " << queryString
                  << ", rangeMin: " << rangeMin << ", rangeMax: " << rangeMax
                  << ", rebuildResults: " << rebuildResults << ", deepTraversal: " << deepTraversal
                  << ", requestId: " << requestId;
    const int refusal = SearchAssembly::acceptPeople(queryString);
    if (refusal != EasRequestStatus::RequestStatusSuccess)
        return Q_EMIT searchGALFinished(accountId, requestId, refusal, 0, {});
    auto *const request = new GalSearchRequest(accountId, requestId, queryString, this);
    request->setOptions(SearchAssembly::directoryOptions(rangeMin, rangeMax, rebuildResults, deepTraversal));
    processNewSearchRequest(request, [this, request](EasAccountId account, qulonglong id, int status) {
        Q_EMIT searchGALFinished(account, id, status, request->totalItemsCount(), request->matchingIds());
    });
}

void ClientCalls::onFindRequest(EasAccountId accountId, const QString &folderId, const QString &searchQuery,
    int searchType, qulonglong limit, qulonglong requestId)
{
    qCInfo(eas()) << "Find: account: " << accountId << ", folderId: " << folderId
                  << ", query: " << searchQuery << ", searchType: " << searchType << ", limit: " << limit
                  << ", requestId: " << requestId;
    FindCommand::Query query;
    const int refusal =
        SearchAssembly::findQuery(accountId, folderId, searchQuery, searchType, limit, &query);
    if (refusal != EasRequestStatus::RequestStatusSuccess)
        return Q_EMIT findMessagesFinished(accountId, requestId, refusal, 0, {});
    auto *const request = new FindRequest(accountId, requestId, this);
    request->setQuery(query);
    request->setOptions(SearchAssembly::findOptions(query, limit));
    processNewSearchRequest(request, [this, request](EasAccountId account, qulonglong id, int status) {
        Q_EMIT findMessagesFinished(account, id, status, request->remainingCount(), request->matchingIds());
    });
}

void ClientCalls::onAttendeesAvailableRequest(EasAccountId accountId, qulonglong requestId,
    const QString &emailAddresses, const QString &startTime, const QString &endTime)
{
    qCInfo(eas()) << "Attendees Available: account: " << accountId << ", addresses: " << emailAddresses
                  << ", startTime: " << startTime << ", endTime: " << endTime << ", requestId: " << requestId;
    auto *const request = new AttendeesAvailableRequest(accountId, requestId,
        { AddressList::addresses(emailAddresses), ProtocolTime::fromClient(startTime),
            ProtocolTime::fromClient(endTime) },
        this);
    connect(request, &AttendeesAvailableRequest::dataReady, this, &ClientCalls::attendeesAvailableDataReady);
    // The lists, which are empty after a failure, are all that clients are told of the end.
    processNewRequest(request, [](EasAccountId, qulonglong, int) {});
}
