// SPDX-License-Identifier: LGPL-2.1-or-later
#include "dbus/dbusinterfacethread.h"

#include "application/base/logging.h"
#include "common/dbustypes.h"
#include "common/exchangeactivesync.h"
#include "dbus/accountreader.h"
#include "dbus/dbusinterfaceadapter.h"
#include "dbus/dbuspeerinterfaceadapter.h"
#include "dbus/peerservice.h"
#include "protocol/base/protocoltime.h"

#include <QDBusConnection>
#include <QDBusError>

#include <utility>

namespace {

const QString SessionBusName = QStringLiteral("session_bus");
const QString SchedulerService = QStringLiteral("com.plover.msyncd");
const QString SchedulerPath = QStringLiteral("/synchronizer");
const QString SchedulerSignal = QStringLiteral("syncedExternallyStatus");

/** A result leaves as a signal of an adapter. */
template <typename Adapter, typename... Parameters, typename... Arguments>
void report(Adapter *adapter, void (Adapter::*signal)(Parameters...), Arguments &&...arguments)
{
    if (!adapter) {
        qCWarning(eas()) << "No adapter";
        return;
    }
    Q_EMIT(adapter->*signal)(std::forward<Arguments>(arguments)...);
}

} // namespace

DBusInterfaceThread::DBusInterfaceThread()
{
    setObjectName(QStringLiteral("DBusInterfaceThread"));
}

DBusInterfaceThread::~DBusInterfaceThread() = default;

void DBusInterfaceThread::run()
{
    ExchangeActiveSync::registerDBusTypes();
    // What is created here belongs to this thread and goes with it.
    mPeers = std::make_unique<PeerService>();
    connect(&mPeers->server(), &QDBusServer::newConnection, this, &DBusInterfaceThread::newP2PConnection);
    mAccounts = std::make_unique<AccountReader>();
    mAdapter = new DBusInterfaceAdapter(this);
    connectSessionBus();
    Q_EMIT serving();

    const int code = exec();
    qCInfo(eas()) << "exec returned:" << code;

    leaveConnections();
    QDBusConnection::disconnectFromBus(SessionBusName);
    const std::unique_ptr<DBusInterfaceAdapter> adapter(mAdapter);
    mAdapter = nullptr;
    mPeers.reset();
    mAccounts.reset();
}

void DBusInterfaceThread::connectSessionBus()
{
    // The default connection belongs to the main thread.
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, SessionBusName);
    if (!bus.isConnected())
        qCCritical(eas()) << "Session bus is not connected" << bus.lastError().message();
    if (!bus.registerObject(ExchangeActiveSync::EAS_DBUS_PATH_NAME, this, QDBusConnection::ExportAdaptors))
        qCCritical(eas()) << "Cannot register object";
    if (!bus.registerService(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME))
        qCCritical(eas()) << "Cannot register service: " << bus.lastError().message();
    // Found anew by its name, so that the subscription lives on the thread's own connection.
    QDBusConnection(SessionBusName)
        .connect(SchedulerService, SchedulerPath, SchedulerService, SchedulerSignal, this,
            SIGNAL(alwaysOnStatus(uint, QString, bool)));
}

void DBusInterfaceThread::newP2PConnection(const QDBusConnection &connection)
{
    mPeers->add(connection);
}

void DBusInterfaceThread::leaveConnections()
{
    // A connection that is closed looks, in the library's own thread, at each object that is still tied to
    // it; these may be gone by then.
    QDBusConnection bus(SessionBusName);
    bus.unregisterObject(ExchangeActiveSync::EAS_DBUS_PATH_NAME);
    bus.disconnect(SchedulerService, SchedulerPath, SchedulerService, SchedulerSignal, this,
        SIGNAL(alwaysOnStatus(uint, QString, bool)));
    mPeers->leave();
}

int DBusInterfaceThread::protocolVersion(qulonglong accountId)
{
    return mAccounts->protocolVersion(accountId);
}

QVariantMap DBusInterfaceThread::pushState(qulonglong accountId)
{
    return mPushStates.of(accountId);
}

QString DBusInterfaceThread::emailAddress(qulonglong accountId)
{
    return mAccounts->emailAddress(accountId);
}

qulonglong DBusInterfaceThread::queryRequestId()
{
    if (++mLastRequestId == 0)
        mLastRequestId = 1;
    return mLastRequestId;
}

template <typename Call> qulonglong DBusInterfaceThread::withRequestId(Call call)
{
    const qulonglong id = queryRequestId();
    call(id);
    return id;
}

void DBusInterfaceThread::quit()
{
    Q_EMIT requestedQuit();
}

void DBusInterfaceThread::reconfig()
{
    Q_EMIT requestedReconfig();
}

void DBusInterfaceThread::cancelRequest(qulonglong accountId, qulonglong requestId)
{
    Q_EMIT requestedCancelRequest(accountId, requestId);
}

qulonglong DBusInterfaceThread::sync(qulonglong accountId)
{
    return withRequestId([&](qulonglong id) { Q_EMIT requestedSync(accountId, id); });
}

qulonglong DBusInterfaceThread::foldersSync(qulonglong accountId)
{
    return withRequestId([&](qulonglong id) { Q_EMIT requestedFoldersSync(accountId, id); });
}

qulonglong DBusInterfaceThread::syncFolders(qulonglong accountId, const QList<qulonglong> &folderIds)
{
    QStringList texts;
    for (const qulonglong folderId : folderIds)
        texts.append(QString::number(folderId));
    return syncFolders(accountId, texts);
}

qulonglong DBusInterfaceThread::syncFolders(qulonglong accountId, const QStringList &folderIds)
{
    return withRequestId([&](qulonglong id) { Q_EMIT requestedSyncFolders(accountId, folderIds, id); });
}

qulonglong DBusInterfaceThread::syncService(qulonglong accountId, int service)
{
    return withRequestId([&](qulonglong id) { Q_EMIT requestedSyncService(accountId, service, id); });
}

qulonglong DBusInterfaceThread::sendMail(qulonglong accountId, qulonglong messageId)
{
    return withRequestId([&](qulonglong id) { Q_EMIT requestedSendMail(accountId, messageId, id); });
}

qulonglong DBusInterfaceThread::meetingResponse(qulonglong accountId, qulonglong requestMessageId,
    int userResponse, qlonglong instanceId, qulonglong replyMessageId)
{
    return meetingResponse(accountId, requestMessageId, userResponse, instanceId, replyMessageId, {}, {}, {});
}

qulonglong DBusInterfaceThread::meetingResponse(qulonglong accountId, qulonglong requestMessageId,
    int userResponse, qlonglong instanceId, qulonglong replyMessageId, const QString &newStartTime,
    const QString &newEndTime, const QString &newTimeComment)
{
    return withRequestId([&](qulonglong id) {
        Q_EMIT requestedMeetingResponse(accountId, id, requestMessageId, instanceId, userResponse,
            replyMessageId, newStartTime, newEndTime, newTimeComment);
    });
}

qulonglong DBusInterfaceThread::meetingResponseCalendar(qulonglong accountId, const QString &requestEventId,
    int userResponse, qlonglong instanceId, qulonglong replyMessageId)
{
    return meetingResponseCalendar(
        accountId, requestEventId, userResponse, instanceId, replyMessageId, {}, {}, {});
}

qulonglong DBusInterfaceThread::meetingResponseCalendar(qulonglong accountId, const QString &requestEventId,
    int userResponse, qlonglong instanceId, qulonglong replyMessageId, const QString &newStartTime,
    const QString &newEndTime, const QString &newTimeComment)
{
    return withRequestId([&](qulonglong id) {
        Q_EMIT requestedMeetingResponseCalendar(accountId, id, requestEventId, instanceId, userResponse,
            replyMessageId, newStartTime, newEndTime, newTimeComment);
    });
}

qulonglong DBusInterfaceThread::createFolder(
    qulonglong accountId, const QString &name, const QString &parentFolderId, uint folderType)
{
    return withRequestId([&](qulonglong id) {
        Q_EMIT requestedCreateFolder(accountId, name, parentFolderId, folderType, id);
    });
}

qulonglong DBusInterfaceThread::updateFolder(
    qulonglong accountId, const QString &folderId, const QString &parentFolderId, const QString &name)
{
    return withRequestId(
        [&](qulonglong id) { Q_EMIT requestedUpdateFolder(accountId, folderId, parentFolderId, name, id); });
}

qulonglong DBusInterfaceThread::downloadCalendarAttachment(qulonglong accountId, const QString &uri)
{
    return withRequestId(
        [&](qulonglong id) { Q_EMIT requestedDownloadCalendarAttachment(accountId, id, uri); });
}

qulonglong DBusInterfaceThread::deleteFolder(qulonglong accountId, const QString &folderId)
{
    return withRequestId([&](qulonglong id) { Q_EMIT requestedDeleteFolder(accountId, folderId, id); });
}

qulonglong DBusInterfaceThread::provisionPolicy(qulonglong accountId)
{
    return withRequestId([&](qulonglong id) { Q_EMIT requestedProvisionPolicy(accountId, id); });
}

qulonglong DBusInterfaceThread::downloadMessagePart(
    qulonglong accountId, qulonglong messageId, const QString &location)
{
    return withRequestId(
        [&](qulonglong id) { Q_EMIT requestedDownloadMessagePart(accountId, messageId, location, id); });
}

qulonglong DBusInterfaceThread::downloadMessages(
    qulonglong accountId, const QList<qulonglong> &messageIds, bool fullContentDownload)
{
    return withRequestId([&](qulonglong id) {
        Q_EMIT requestedDownloadMessages(accountId, messageIds, fullContentDownload, id);
    });
}

qulonglong DBusInterfaceThread::searchMessages(qulonglong accountId, const QString &folderId,
    const QString &dateFrom, const QString &dateTo, const QString &bodyText, qulonglong limit)
{
    return withRequestId([&](qulonglong id) {
        Q_EMIT requestedSearchMessages(accountId, folderId, dateFrom, dateTo, bodyText, limit, id);
    });
}

qulonglong DBusInterfaceThread::searchGAL(qulonglong accountId, const QString &queryString, int rangeMin,
    int rangeMax, bool rebuildResults, bool deepTraversal)
{
    return withRequestId([&](qulonglong id) {
        Q_EMIT requestedSearchGAL(
            accountId, queryString, rangeMin, rangeMax, rebuildResults, deepTraversal, id);
    });
}

qulonglong DBusInterfaceThread::find(qulonglong accountId, const QString &folderId,
    const QString &searchQuery, int searchType, qulonglong limit)
{
    return withRequestId([&](qulonglong id) {
        Q_EMIT requestedFind(accountId, folderId, searchQuery, searchType, limit, id);
    });
}

qulonglong DBusInterfaceThread::getOofState(qulonglong accountId)
{
    return withRequestId([&](qulonglong id) { Q_EMIT requestedGetOofState(accountId, id); });
}

qulonglong DBusInterfaceThread::setOofState(qulonglong accountId, bool enabled, bool timeRangeEnabled,
    const QString &startTime, const QString &endTime, const QString &internalMessage,
    bool externalMessageEnabled, bool externalMessageToAnyone, const QString &externalMessage)
{
    EasOofContainer state;
    state.setOofEnabled(enabled);
    state.setTimeRangeEnabled(timeRangeEnabled);
    state.setStartTime(ProtocolTime::fromClient(startTime));
    state.setEndTime(ProtocolTime::fromClient(endTime));
    state.setInternalMessage(internalMessage);
    state.setExternalMessageEnabled(externalMessageEnabled);
    state.setExternalMessageToAnyone(externalMessageToAnyone);
    state.setExternalMessage(externalMessage);
    return withRequestId([&](qulonglong id) { Q_EMIT requestedSetOofState(accountId, id, state); });
}

qulonglong DBusInterfaceThread::attendeesAvailable(
    qulonglong accountId, const QString &emailAddresses, const QString &startTime, const QString &endTime)
{
    return withRequestId([&](qulonglong id) {
        Q_EMIT requestedAttendeesAvailable(accountId, id, emailAddresses, startTime, endTime);
    });
}

void DBusInterfaceThread::reportRequestFinished(qulonglong accountId, qulonglong requestId, int status)
{
    report(mAdapter, &DBusInterfaceAdapter::requestFinished, accountId, requestId, status);
}

void DBusInterfaceThread::reportRequestProgress(
    qulonglong accountId, qulonglong requestId, qlonglong maxValue, qlonglong currentValue)
{
    report(mAdapter, &DBusInterfaceAdapter::requestProgress, accountId, requestId, maxValue, currentValue);
}

void DBusInterfaceThread::reportProvisionRequestFinished(qulonglong accountId, qulonglong requestId,
    int status, const FailedPolicyMap &provisionPolicy, int policyStatus)
{
    report(mAdapter, &DBusInterfaceAdapter::provisionRequestFinished, accountId, requestId, status,
        provisionPolicy, policyStatus);
}

void DBusInterfaceThread::reportPolicyDocumentReceived(
    qulonglong accountId, qulonglong requestId, const QVariantMap &policies)
{
    report(mAdapter, &DBusInterfaceAdapter::policyDocumentReceived, accountId, requestId, policies);
}

void DBusInterfaceThread::reportSearchMessagesFinished(qulonglong accountId, qulonglong requestId, int status,
    uint remainingCount, const QList<qulonglong> &matchingIds)
{
    report(mAdapter, &DBusInterfaceAdapter::searchMessagesFinished, accountId, requestId, status,
        remainingCount, matchingIds);
}

void DBusInterfaceThread::reportSearchGALFinished(qulonglong accountId, qulonglong requestId, int status,
    uint totalItemsCount, const QList<qulonglong> &matchingIds)
{
    report(mAdapter, &DBusInterfaceAdapter::searchGALFinished, accountId, requestId, status,
        static_cast<int>(totalItemsCount), matchingIds);
}

void DBusInterfaceThread::reportFindMessagesFinished(qulonglong accountId, qulonglong requestId, int status,
    uint remainingCount, const QList<qulonglong> &matchingIds)
{
    report(mAdapter, &DBusInterfaceAdapter::findMessagesFinished, accountId, requestId, status,
        remainingCount, matchingIds);
}

void DBusInterfaceThread::reportGalItemReceived(
    qulonglong accountId, qulonglong requestId, qulonglong matchingId, const GalItem &item)
{
    report(mPeers ? mPeers->adapter() : nullptr, &DBusPeerInterfaceAdapter::galItemReceived, accountId,
        requestId, matchingId, item);
}

void DBusInterfaceThread::reportSyncStarted(qulonglong accountId, qulonglong requestId)
{
    report(mAdapter, &DBusInterfaceAdapter::syncStarted, accountId, requestId);
}

void DBusInterfaceThread::reportSyncCompleted(qulonglong accountId, qulonglong requestId, int status)
{
    report(mAdapter, &DBusInterfaceAdapter::syncCompleted, accountId, requestId, status);
}

void DBusInterfaceThread::reportPushState(qulonglong accountId, const QVariantMap &state)
{
    if (mPushStates.change(accountId, state))
        report(mAdapter, &DBusInterfaceAdapter::pushStateChanged, accountId, mPushStates.of(accountId));
}

void DBusInterfaceThread::reportGetOofFinished(
    qulonglong accountId, qulonglong requestId, const EasOofContainer &state)
{
    qCDebug(eas()) << "Oof state, internal message enabled:" << state.internalMessageEnabled();
    report(mAdapter, &DBusInterfaceAdapter::getOofFinished, accountId, requestId, state.oofEnabled(),
        state.timeRangeEnabled(), state.startTime().toString(Qt::ISODate),
        state.endTime().toString(Qt::ISODate), state.internalMessage(), state.externalMessageEnabled(),
        state.externalMessageToAnyone(), state.externalMessage());
}

void DBusInterfaceThread::attendeesAvailableDataReady(
    qulonglong requestId, const QStringList &emails, const QStringList &names, const QStringList &statuses)
{
    report(mAdapter, &DBusInterfaceAdapter::attendeesAvailableDataReady, requestId, emails, names, statuses);
}
