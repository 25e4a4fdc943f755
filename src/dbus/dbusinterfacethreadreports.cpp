// SPDX-License-Identifier: LGPL-2.1-or-later
// The results, which leave as signals of the bus.
#include "application/base/logging.h"
#include "dbus/dbusinterfaceadapter.h"
#include "dbus/dbusinterfacethread.h"
#include "dbus/dbuspeerinterfaceadapter.h"

bool DBusInterfaceThread::hasAdapter() const
{
    if (!mAdapter)
        qCWarning(eas()) << "No adapter";
    return mAdapter;
}

void DBusInterfaceThread::reportRequestFinished(qulonglong accountId, qulonglong requestId, int status)
{
    if (hasAdapter())
        Q_EMIT mAdapter->requestFinished(accountId, requestId, status);
}

void DBusInterfaceThread::reportRequestProgress(
    qulonglong accountId, qulonglong requestId, qlonglong maxValue, qlonglong currentValue)
{
    if (hasAdapter())
        Q_EMIT mAdapter->requestProgress(accountId, requestId, maxValue, currentValue);
}

void DBusInterfaceThread::reportProvisionRequestFinished(qulonglong accountId, qulonglong requestId,
    int status, const FailedPolicyMap &provisionPolicy, int policyStatus)
{
    if (hasAdapter())
        Q_EMIT mAdapter->provisionRequestFinished(
            accountId, requestId, status, provisionPolicy, policyStatus);
}

void DBusInterfaceThread::reportSearchMessagesFinished(qulonglong accountId, qulonglong requestId, int status,
    uint remainingCount, const QList<qulonglong> &matchingIds)
{
    if (hasAdapter())
        Q_EMIT mAdapter->searchMessagesFinished(accountId, requestId, status, remainingCount, matchingIds);
}

void DBusInterfaceThread::reportSearchGALFinished(qulonglong accountId, qulonglong requestId, int status,
    uint totalItemsCount, const QList<qulonglong> &matchingIds)
{
    if (hasAdapter())
        Q_EMIT mAdapter->searchGALFinished(
            accountId, requestId, status, static_cast<int>(totalItemsCount), matchingIds);
}

void DBusInterfaceThread::reportFindMessagesFinished(qulonglong accountId, qulonglong requestId, int status,
    uint remainingCount, const QList<qulonglong> &matchingIds)
{
    if (hasAdapter())
        Q_EMIT mAdapter->findMessagesFinished(accountId, requestId, status, remainingCount, matchingIds);
}

void DBusInterfaceThread::reportGalItemReceived(
    qulonglong accountId, qulonglong requestId, qulonglong matchingId, const GalItem &item)
{
    if (!mPeerAdapter) {
        qCWarning(eas()) << "No adapter";
        return;
    }
    Q_EMIT mPeerAdapter->galItemReceived(accountId, requestId, matchingId, item);
}

void DBusInterfaceThread::reportSyncStarted(qulonglong accountId, qulonglong requestId)
{
    if (hasAdapter())
        Q_EMIT mAdapter->syncStarted(accountId, requestId);
}

void DBusInterfaceThread::reportSyncCompleted(qulonglong accountId, qulonglong requestId, int status)
{
    if (hasAdapter())
        Q_EMIT mAdapter->syncCompleted(accountId, requestId, status);
}

void DBusInterfaceThread::reportGetOofFinished(
    qulonglong accountId, qulonglong requestId, const EasOofContainer &state)
{
    qCDebug(eas()) << "Oof state, internal message enabled:" << state.internalMessageEnabled();
    if (hasAdapter())
        Q_EMIT mAdapter->getOofFinished(accountId, requestId, state.oofEnabled(), state.timeRangeEnabled(),
            state.startTime().toString(Qt::ISODate), state.endTime().toString(Qt::ISODate),
            state.internalMessage(), state.externalMessageEnabled(), state.externalMessageToAnyone(),
            state.externalMessage());
}

void DBusInterfaceThread::attendeesAvailableDataReady(
    qulonglong requestId, const QStringList &emails, const QStringList &names, const QStringList &statuses)
{
    if (hasAdapter())
        Q_EMIT mAdapter->attendeesAvailableDataReady(requestId, emails, names, statuses);
}
