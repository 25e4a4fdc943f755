// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/engine.h"
#include "application/networkmanager.h"
#include "common/easaccountid.h"
#include "common/failedpolicymap.h"
#include "common/galitem.h"
#include "easitems/containers/easoofcontainer.h"

#include <QLatin1String>
#include <QList>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QStringList>

#include <functional>
#include <memory>

class AccountQueue;
class AccountStorage;
class DBusInterfaceThread;
class EasAccount;
class FolderSyncRequest;
class QNetworkSession;
class Request;
class SyncRequest;

/**
 * The hub of the daemon: takes every client call from the service thread, builds one request for it, and runs
 * the requests of each account strictly one after another, those of different accounts side by side.
 *
 * There is one a process, on the main thread. It owns the account storage, the network manager, the service
 * thread and all requests; a finished request is deleted later. A queue exists exactly while its account is
 * busy, and its head is the request that runs. Requests that come before the account storage is ready wait.
 *
 * Another implementation can stand in through initializeInstance(RequestManager *): accounts(), account(),
 * networkManager() and init() are virtual for it, and the protected constructor builds a manager without a
 * service thread.
 */
class RequestManager : public QObject, public Engine
{
    Q_OBJECT
    Q_INTERFACES(Engine)

public:
    explicit RequestManager(QObject *parent);
    ~RequestManager() override;

    /** Creates and initialises the manager at the first call; needs the application object. */
    static RequestManager *instance();
    /** Creates the manager if there is none; the caller calls init(). */
    static void initializeInstance(QObject *parent);
    /** Puts an implementation in; releaseInstance() deletes it. */
    static void initializeInstance(RequestManager *manager);
    static void releaseInstance();

    NetworkManager *networkManager() override;
    virtual QList<EasAccountId> accounts() const;
    EasAccount *account(EasAccountId accountId) const override;
    virtual void init();
    virtual bool isReady() const;
    QNetworkSession *networkSession(EasAccountId accountId);

    /** Takes a request over: it starts at once if its account is idle. A request that heads the queue for too
     * long is cancelled. */
    void processNewRequest(Request *request);
    void processNewSyncRequest(SyncRequest *request);
    void processNewFolderSyncRequest(FolderSyncRequest *request);

public Q_SLOTS:
    virtual void onAccountStorageReady();
    virtual void onAccountUpdated(EasAccountId accountId);
    virtual void onAccountDeleted(EasAccountId accountId);

    void onQuitRequest();
    void onReconfigRequest();
    void onCancelRequest(EasAccountId accountId, qulonglong requestId);
    void onAlwaysOnStatus(uint accountId, const QString &profile, bool enabled);

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
    void changesAvailable();
    void requestFinished(EasAccountId accountId, qulonglong requestId, int status);
    void requestProgress(
        EasAccountId accountId, qulonglong requestId, qlonglong maxValue, qlonglong currentValue);
    void provisionRequestFinished(EasAccountId accountId, qulonglong requestId, int status,
        const FailedPolicyMap &provisionPolicy, int policyStatus);
    void searchMessagesFinished(EasAccountId accountId, qulonglong requestId, int status, uint remainingCount,
        const QList<qulonglong> &matchingIds);
    void searchGALFinished(EasAccountId accountId, qulonglong requestId, int status, uint totalItemCount,
        const QList<qulonglong> &matchingIds);
    void findMessagesFinished(EasAccountId accountId, qulonglong requestId, int status, uint remainingCount,
        const QList<qulonglong> &matchingIds);
    void galItemReceived(
        qulonglong accountId, qulonglong requestId, qulonglong matchingId, const GalItem &galItem);
    void syncStarted(EasAccountId accountId, qulonglong requestId);
    void syncCompleted(EasAccountId accountId, qulonglong requestId, int status);
    void accountAdded(EasAccountId accountId);
    void accountUpdated(EasAccountId accountId);
    void accountDeleted(EasAccountId accountId);
    void networkStateChanged(EasAccountId accountId, bool enabled);
    void oofStateFetched(EasAccountId accountId, qulonglong requestId, const EasOofContainer &state);
    void attendeesAvailableDataReady(qulonglong requestId, const QStringList &emails,
        const QStringList &names, const QStringList &statuses);

protected:
    /** A manager that serves the clients of this thread; null for none. */
    RequestManager(std::unique_ptr<DBusInterfaceThread> thread, QObject *parent);

    /** Takes the storage over as a child and follows it. */
    void setAccountStorage(AccountStorage *storage);

private Q_SLOTS:
    void onRequestCompleted(EasAccountId accountId, qulonglong requestId);
    void onRequestDownloadProgress(
        EasAccountId accountId, qulonglong requestId, qlonglong bytesReceived, qlonglong bytesTotal);
    void onCheckAccountsCount();

private:
    /** Which signal tells a client about the end of a request that is not built. */
    enum class ResultSignal {
        RequestFinished,
        SearchMessagesFinished,
        SearchGALFinished,
        FindMessagesFinished
    };

    void connectCalls();
    void connectReports();
    void checkAccountsCount();
    void quitApplication();
    void addRequestInQueue(Request *request);
    bool endRequest(Request *request, EasAccountId accountId);
    void dropPendingRequests(EasAccountId accountId, const std::function<bool(const Request &)> &matches);
    /** The one place for calls whose request does not exist yet. */
    void reportNotSupported(EasAccountId accountId, qulonglong requestId, QLatin1String command,
        ResultSignal result = ResultSignal::RequestFinished);
    bool acceptMeetingResponse(
        EasAccountId accountId, qulonglong requestId, int userResponse, const QString &respondedId);

    QPointer<AccountStorage> mAccountStorage;
    std::unique_ptr<DBusInterfaceThread> mDBusThread;
    QPointer<NetworkManager> mNetworkManager;
    QList<Request *> mPendingRequests;
    QMap<EasAccountId, AccountQueue *> mRequestQueues;
};
