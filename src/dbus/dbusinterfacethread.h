// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/failedpolicymap.h"
#include "common/galitem.h"
#include "dbus/pushstates.h"
#include "easitems/containers/easoofcontainer.h"

#include <QList>
#include <QStringList>
#include <QThread>
#include <QVariantMap>

#include <memory>

class AccountReader;
class DBusInterfaceAdapter;
class PeerService;
class QDBusConnection;

/**
 * The daemon's face on the session bus, on a thread of its own, so that calls are answered while the engine
 * works.
 *
 * Each call gets its request identifier at once and goes on as a requested... signal; results come in through
 * the report... slots and leave as signals on the bus. The RequestManager creates the object, moves it to
 * itself before start(), so that its slots run on the thread it starts, and ends it with exit(). A thread
 * that finds no bus runs without clients.
 *
 * All slots run on the service thread; the values of the bus are plain numbers and texts.
 */
class DBusInterfaceThread : public QThread
{
    Q_OBJECT

public:
    DBusInterfaceThread();
    ~DBusInterfaceThread() override;

public Q_SLOTS:
    // The calls, as they stand in the introspection text.
    void quit();
    void reconfig();
    int protocolVersion(qulonglong accountId);
    QString emailAddress(qulonglong accountId);
    QVariantMap pushState(qulonglong accountId);
    void cancelRequest(qulonglong accountId, qulonglong requestId);
    qulonglong sync(qulonglong accountId);
    qulonglong foldersSync(qulonglong accountId);
    qulonglong syncFolders(qulonglong accountId, const QList<qulonglong> &folderIds);
    qulonglong syncFolders(qulonglong accountId, const QStringList &folderIds);
    qulonglong syncService(qulonglong accountId, int service);
    qulonglong sendMail(qulonglong accountId, qulonglong messageId);
    qulonglong meetingResponse(qulonglong accountId, qulonglong requestMessageId, int userResponse,
        qlonglong instanceId, qulonglong replyMessageId);
    qulonglong meetingResponse(qulonglong accountId, qulonglong requestMessageId, int userResponse,
        qlonglong instanceId, qulonglong replyMessageId, const QString &newStartTime,
        const QString &newEndTime, const QString &newTimeComment);
    qulonglong meetingResponseCalendar(qulonglong accountId, const QString &requestEventId, int userResponse,
        qlonglong instanceId, qulonglong replyMessageId);
    qulonglong meetingResponseCalendar(qulonglong accountId, const QString &requestEventId, int userResponse,
        qlonglong instanceId, qulonglong replyMessageId, const QString &newStartTime,
        const QString &newEndTime, const QString &newTimeComment);
    qulonglong createFolder(
        qulonglong accountId, const QString &name, const QString &parentFolderId, uint folderType);
    qulonglong updateFolder(
        qulonglong accountId, const QString &folderId, const QString &parentFolderId, const QString &name);
    qulonglong downloadCalendarAttachment(qulonglong accountId, const QString &uri);
    qulonglong deleteFolder(qulonglong accountId, const QString &folderId);
    qulonglong provisionPolicy(qulonglong accountId);
    qulonglong downloadMessagePart(qulonglong accountId, qulonglong messageId, const QString &location);
    qulonglong searchMessages(qulonglong accountId, const QString &folderId, const QString &dateFrom,
        const QString &dateTo, const QString &bodyText, qulonglong limit);
    qulonglong searchGAL(qulonglong accountId, const QString &queryString, int rangeMin, int rangeMax,
        bool rebuildResults, bool deepTraversal);
    qulonglong find(qulonglong accountId, const QString &folderId, const QString &searchQuery, int searchType,
        qulonglong limit);
    qulonglong downloadMessages(
        qulonglong accountId, const QList<qulonglong> &messageIds, bool fullContentDownload);
    qulonglong getOofState(qulonglong accountId);
    qulonglong setOofState(qulonglong accountId, bool enabled, bool timeRangeEnabled,
        const QString &startTime, const QString &endTime, const QString &internalMessage,
        bool externalMessageEnabled, bool externalMessageToAnyone, const QString &externalMessage);
    qulonglong attendeesAvailable(qulonglong accountId, const QString &emailAddresses,
        const QString &startTime, const QString &endTime);

    // The results.
    void reportRequestFinished(qulonglong accountId, qulonglong requestId, int status);
    void reportRequestProgress(
        qulonglong accountId, qulonglong requestId, qlonglong maxValue, qlonglong currentValue);
    void reportProvisionRequestFinished(qulonglong accountId, qulonglong requestId, int status,
        const FailedPolicyMap &provisionPolicy, int policyStatus);
    void reportPolicyDocumentReceived(
        qulonglong accountId, qulonglong requestId, const QVariantMap &policies);
    void reportSearchMessagesFinished(qulonglong accountId, qulonglong requestId, int status,
        uint remainingCount, const QList<qulonglong> &matchingIds);
    void reportSearchGALFinished(qulonglong accountId, qulonglong requestId, int status, uint totalItemsCount,
        const QList<qulonglong> &matchingIds);
    void reportFindMessagesFinished(qulonglong accountId, qulonglong requestId, int status,
        uint remainingCount, const QList<qulonglong> &matchingIds);
    void reportGalItemReceived(
        qulonglong accountId, qulonglong requestId, qulonglong matchingId, const GalItem &item);
    void reportSyncStarted(qulonglong accountId, qulonglong requestId);
    void reportSyncCompleted(qulonglong accountId, qulonglong requestId, int status);
    /** Kept for pushState(), and told on the bus if it is another state than before; an empty one is dropped.
     */
    void reportPushState(qulonglong accountId, const QVariantMap &state);
    void reportGetOofFinished(qulonglong accountId, qulonglong requestId, const EasOofContainer &state);
    void attendeesAvailableDataReady(qulonglong requestId, const QStringList &emails,
        const QStringList &names, const QStringList &statuses);

    void newP2PConnection(const QDBusConnection &connection);

Q_SIGNALS:
    void requestedQuit();
    void requestedReconfig();
    void requestedCancelRequest(qulonglong accountId, qulonglong requestId);
    void requestedSync(qulonglong accountId, qulonglong requestId);
    void requestedFoldersSync(qulonglong accountId, qulonglong requestId);
    void requestedSyncFolders(qulonglong accountId, const QStringList &folderIds, qulonglong requestId);
    void requestedSyncService(qulonglong accountId, int service, qulonglong requestId);
    void requestedSendMail(qulonglong accountId, qulonglong messageId, qulonglong requestId);
    void requestedMeetingResponse(qulonglong accountId, qulonglong requestId, qulonglong requestMessageId,
        qlonglong instanceId, int userResponse, qulonglong replyMessageId, const QString &newStartTime,
        const QString &newEndTime, const QString &newTimeComment);
    void requestedMeetingResponseCalendar(qulonglong accountId, qulonglong requestId,
        const QString &requestEventId, qlonglong instanceId, int userResponse, qulonglong replyMessageId,
        const QString &newStartTime, const QString &newEndTime, const QString &newTimeComment);
    void requestedCreateFolder(qulonglong accountId, const QString &name, const QString &parentFolderId,
        uint folderType, qulonglong requestId);
    void requestedUpdateFolder(qulonglong accountId, const QString &folderId, const QString &parentFolderId,
        const QString &name, qulonglong requestId);
    void requestedDownloadCalendarAttachment(qulonglong accountId, qulonglong requestId, const QString &uri);
    void requestedDeleteFolder(qulonglong accountId, const QString &folderId, qulonglong requestId);
    void requestedProvisionPolicy(qulonglong accountId, qulonglong requestId);
    void requestedDownloadMessagePart(
        qulonglong accountId, qulonglong messageId, const QString &location, qulonglong requestId);
    void requestedSearchMessages(qulonglong accountId, const QString &folderId, const QString &dateFrom,
        const QString &dateTo, const QString &bodyText, qulonglong limit, qulonglong requestId);
    void requestedSearchGAL(qulonglong accountId, const QString &queryString, int rangeMin, int rangeMax,
        bool rebuildResults, bool deepTraversal, qulonglong requestId);
    void requestedFind(qulonglong accountId, const QString &folderId, const QString &searchQuery,
        int searchType, qulonglong limit, qulonglong requestId);
    void requestedDownloadMessages(qulonglong accountId, const QList<qulonglong> &messageIds,
        bool fullContentDownload, qulonglong requestId);
    void requestedGetOofState(qulonglong accountId, qulonglong requestId);
    void requestedSetOofState(qulonglong accountId, qulonglong requestId, const EasOofContainer &state);
    void requestedAttendeesAvailable(qulonglong accountId, qulonglong requestId,
        const QString &emailAddresses, const QString &startTime, const QString &endTime);

    /** Comes straight from the scheduler's signal on the bus. */
    void alwaysOnStatus(uint accountId, const QString &profile, bool enabled);

    /** The name on the bus is held and calls are served. */
    void serving();

protected:
    void run() override;

private:
    qulonglong queryRequestId();
    /** Calls with a new identifier, which it returns. */
    template <typename Call> qulonglong withRequestId(Call call);
    void connectSessionBus();
    void leaveConnections();

    qulonglong mLastRequestId = 0;
    DBusInterfaceAdapter *mAdapter = nullptr;
    std::unique_ptr<PeerService> mPeers;
    std::unique_ptr<AccountReader> mAccounts;
    PushStates mPushStates;
};
