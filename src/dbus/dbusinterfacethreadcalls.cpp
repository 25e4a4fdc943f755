// SPDX-License-Identifier: LGPL-2.1-or-later
// The calls of the bus: each takes an identifier, goes on as a signal and returns.
#include "dbus/dbusinterfacethread.h"

#include <QDateTime>

namespace {

QDateTime timeFromBus(const QString &text)
{
    return QDateTime::fromString(text, Qt::ISODate);
}

} // namespace

qulonglong DBusInterfaceThread::queryRequestId()
{
    if (++mLastRequestId == 0)
        mLastRequestId = 1;
    return mLastRequestId;
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
    const qulonglong id = queryRequestId();
    Q_EMIT requestedSync(accountId, id);
    return id;
}

qulonglong DBusInterfaceThread::foldersSync(qulonglong accountId)
{
    const qulonglong id = queryRequestId();
    Q_EMIT requestedFoldersSync(accountId, id);
    return id;
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
    const qulonglong id = queryRequestId();
    Q_EMIT requestedSyncFolders(accountId, folderIds, id);
    return id;
}

qulonglong DBusInterfaceThread::syncService(qulonglong accountId, int service)
{
    const qulonglong id = queryRequestId();
    Q_EMIT requestedSyncService(accountId, service, id);
    return id;
}

qulonglong DBusInterfaceThread::sendMail(qulonglong accountId, qulonglong messageId)
{
    const qulonglong id = queryRequestId();
    Q_EMIT requestedSendMail(accountId, messageId, id);
    return id;
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
    const qulonglong id = queryRequestId();
    Q_EMIT requestedMeetingResponse(accountId, id, requestMessageId, instanceId, userResponse, replyMessageId,
        newStartTime, newEndTime, newTimeComment);
    return id;
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
    const qulonglong id = queryRequestId();
    Q_EMIT requestedMeetingResponseCalendar(accountId, id, requestEventId, instanceId, userResponse,
        replyMessageId, newStartTime, newEndTime, newTimeComment);
    return id;
}

qulonglong DBusInterfaceThread::createFolder(
    qulonglong accountId, const QString &name, const QString &parentFolderId, uint folderType)
{
    const qulonglong id = queryRequestId();
    Q_EMIT requestedCreateFolder(accountId, name, parentFolderId, folderType, id);
    return id;
}

qulonglong DBusInterfaceThread::updateFolder(
    qulonglong accountId, const QString &folderId, const QString &parentFolderId, const QString &name)
{
    const qulonglong id = queryRequestId();
    Q_EMIT requestedUpdateFolder(accountId, folderId, parentFolderId, name, id);
    return id;
}

qulonglong DBusInterfaceThread::downloadCalendarAttachment(qulonglong accountId, const QString &uri)
{
    const qulonglong id = queryRequestId();
    Q_EMIT requestedDownloadCalendarAttachment(accountId, id, uri);
    return id;
}

qulonglong DBusInterfaceThread::deleteFolder(qulonglong accountId, const QString &folderId)
{
    const qulonglong id = queryRequestId();
    Q_EMIT requestedDeleteFolder(accountId, folderId, id);
    return id;
}

qulonglong DBusInterfaceThread::provisionPolicy(qulonglong accountId)
{
    const qulonglong id = queryRequestId();
    Q_EMIT requestedProvisionPolicy(accountId, id);
    return id;
}

qulonglong DBusInterfaceThread::downloadMessagePart(
    qulonglong accountId, qulonglong messageId, const QString &location)
{
    const qulonglong id = queryRequestId();
    Q_EMIT requestedDownloadMessagePart(accountId, messageId, location, id);
    return id;
}

qulonglong DBusInterfaceThread::downloadMessages(
    qulonglong accountId, const QList<qulonglong> &messageIds, bool fullContentDownload)
{
    const qulonglong id = queryRequestId();
    Q_EMIT requestedDownloadMessages(accountId, messageIds, fullContentDownload, id);
    return id;
}

qulonglong DBusInterfaceThread::searchMessages(qulonglong accountId, const QString &folderId,
    const QString &dateFrom, const QString &dateTo, const QString &bodyText, qulonglong limit)
{
    const qulonglong id = queryRequestId();
    Q_EMIT requestedSearchMessages(accountId, folderId, dateFrom, dateTo, bodyText, limit, id);
    return id;
}

qulonglong DBusInterfaceThread::searchGAL(qulonglong accountId, const QString &queryString, int rangeMin,
    int rangeMax, bool rebuildResults, bool deepTraversal)
{
    const qulonglong id = queryRequestId();
    Q_EMIT requestedSearchGAL(accountId, queryString, rangeMin, rangeMax, rebuildResults, deepTraversal, id);
    return id;
}

qulonglong DBusInterfaceThread::find(qulonglong accountId, const QString &folderId,
    const QString &searchQuery, int searchType, qulonglong limit)
{
    const qulonglong id = queryRequestId();
    Q_EMIT requestedFind(accountId, folderId, searchQuery, searchType, limit, id);
    return id;
}

qulonglong DBusInterfaceThread::getOofState(qulonglong accountId)
{
    const qulonglong id = queryRequestId();
    Q_EMIT requestedGetOofState(accountId, id);
    return id;
}

qulonglong DBusInterfaceThread::setOofState(qulonglong accountId, bool enabled, bool timeRangeEnabled,
    const QString &startTime, const QString &endTime, const QString &internalMessage,
    bool externalMessageEnabled, bool externalMessageToAnyone, const QString &externalMessage)
{
    EasOofContainer state;
    state.setOofEnabled(enabled);
    state.setTimeRangeEnabled(timeRangeEnabled);
    state.setStartTime(timeFromBus(startTime));
    state.setEndTime(timeFromBus(endTime));
    state.setInternalMessage(internalMessage);
    state.setExternalMessageEnabled(externalMessageEnabled);
    state.setExternalMessageToAnyone(externalMessageToAnyone);
    state.setExternalMessage(externalMessage);
    const qulonglong id = queryRequestId();
    Q_EMIT requestedSetOofState(accountId, id, state);
    return id;
}

qulonglong DBusInterfaceThread::attendeesAvailable(
    qulonglong accountId, const QString &emailAddresses, const QString &startTime, const QString &endTime)
{
    const qulonglong id = queryRequestId();
    Q_EMIT requestedAttendeesAvailable(accountId, id, emailAddresses, startTime, endTime);
    return id;
}
