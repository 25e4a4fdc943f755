// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/stubdaemon.h"

#include "common/dbustypes.h"
#include "common/exchangeactivesync.h"

#include <QDBusConnection>

StubDaemon::StubDaemon()
{
    ExchangeActiveSync::registerDBusTypes();
    QDBusConnection bus = QDBusConnection::sessionBus();
    mIsServing = bus.registerObject(ExchangeActiveSync::EAS_DBUS_PATH_NAME, this,
                     QDBusConnection::ExportScriptableSlots | QDBusConnection::ExportScriptableSignals)
        && bus.registerService(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME);
}

StubDaemon::~StubDaemon()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.unregisterService(ExchangeActiveSync::EAS_DBUS_SERVICE_NAME);
    bus.unregisterObject(ExchangeActiveSync::EAS_DBUS_PATH_NAME);
}

void StubDaemon::note(const QString &call)
{
    mCalls.append(call);
    Q_EMIT called();
}

qulonglong StubDaemon::begin(const QString &call, qulonglong accountId, const End &end)
{
    note(call);
    if (mStatus == Silent) {
        setDelayedReply(true);
        return 0;
    }
    const qulonglong request = ++mLast;
    if (end)
        mEnds.insert(request, end);
    if (call.startsWith(QLatin1String("provisionPolicy")))
        mPolicyRequests.insert(request);
    if (mIsHasty)
        tell(accountId, request);
    else // behind the reply, as the daemon has it
        QMetaObject::invokeMethod(
            this, [this, accountId, request] { tell(accountId, request); }, Qt::QueuedConnection);
    return request;
}

void StubDaemon::tell(qulonglong accountId, qulonglong requestId)
{
    Q_EMIT syncStarted(accountId, requestId);
    if (mPolicyRequests.contains(requestId) && !mDocument.isEmpty())
        Q_EMIT policyDocumentReceived(accountId, requestId, mDocument);
    const int status = mOwnEnds.value(requestId, mStatus);
    if (status < Open)
        end(accountId, requestId, status);
}

void StubDaemon::end(qulonglong accountId, qulonglong requestId, int status)
{
    if (const End ownEnd = mEnds.take(requestId))
        ownEnd(accountId, requestId, status);
    else if (!mPolicyRequests.remove(requestId))
        Q_EMIT requestFinished(accountId, requestId, status);
    else
        Q_EMIT provisionRequestFinished(accountId, requestId, status, mFailed, mPolicyStatus);
}

void StubDaemon::setMatches(const QList<qulonglong> &matches, uint count)
{
    mMatches = matches;
    mMatchCount = count;
}

template <class Count>
StubDaemon::End StubDaemon::searchEnd(
    void (StubDaemon::*signal)(qulonglong, qulonglong, int, Count, const QList<qulonglong> &))
{
    return [this, signal](qulonglong accountId, qulonglong requestId, int status) {
        if (mSearcher)
            mSearcher(accountId, requestId);
        const bool isFound = status == 0;
        Q_EMIT(this->*signal)
        (accountId, requestId, status, Count(isFound ? mMatchCount : 0),
            isFound ? mMatches : QList<qulonglong>());
    };
}

int StubDaemon::protocolVersion(qulonglong)
{
    return mProtocolVersion;
}

qulonglong StubDaemon::searchMessages(qulonglong accountId, const QString &folderId, const QString &dateFrom,
    const QString &dateTo, const QString &bodyText, qulonglong limit)
{
    return begin(
        QStringLiteral("searchMessages %1|%2|%3|%4|%5|%6")
            .arg(QString::number(accountId), folderId, dateFrom, dateTo, bodyText, QString::number(limit)),
        accountId, searchEnd(&StubDaemon::searchMessagesFinished));
}

qulonglong StubDaemon::searchGAL(
    qulonglong accountId, const QString &queryString, int rangeMin, int rangeMax, bool, bool)
{
    return begin(QStringLiteral("searchGAL %1|%2|%3-%4")
                     .arg(QString::number(accountId), queryString, QString::number(rangeMin),
                         QString::number(rangeMax)),
        accountId, searchEnd(&StubDaemon::searchGALFinished));
}

qulonglong StubDaemon::find(qulonglong accountId, const QString &folderId, const QString &searchQuery,
    int searchType, qulonglong limit)
{
    return begin(QStringLiteral("find %1|%2|%3|%4|%5")
                     .arg(QString::number(accountId), folderId, searchQuery, QString::number(searchType),
                         QString::number(limit)),
        accountId, searchEnd(&StubDaemon::findMessagesFinished));
}

qulonglong StubDaemon::sendMail(qulonglong accountId, qulonglong messageId)
{
    if (mSender)
        mOwnEnds.insert(mLast + 1, mSender(messageId));
    return begin(QStringLiteral("sendMail %1 %2").arg(accountId).arg(messageId), accountId);
}

qulonglong StubDaemon::meetingResponse(qulonglong accountId, qulonglong requestMessageId, int userResponse,
    qlonglong instanceId, qulonglong replyMessageId, const QString &newStartTime, const QString &newEndTime,
    const QString &newTimeComment)
{
    return begin(QStringLiteral("meetingResponse %1 %2 %3 %4 %5 %6 %7 %8")
                     .arg(accountId)
                     .arg(requestMessageId)
                     .arg(userResponse)
                     .arg(instanceId)
                     .arg(replyMessageId)
                     .arg(newStartTime, newEndTime, newTimeComment),
        accountId);
}

qulonglong StubDaemon::meetingResponseCalendar(qulonglong accountId, const QString &requestEventId,
    int userResponse, qlonglong instanceId, qulonglong replyMessageId, const QString &newStartTime,
    const QString &newEndTime, const QString &newTimeComment)
{
    return begin(QStringLiteral("meetingResponseCalendar %1 %2 %3 %4 %5 %6 %7 %8")
                     .arg(accountId)
                     .arg(requestEventId)
                     .arg(userResponse)
                     .arg(instanceId)
                     .arg(replyMessageId)
                     .arg(newStartTime, newEndTime, newTimeComment),
        accountId);
}

qulonglong StubDaemon::provisionPolicy(qulonglong accountId)
{
    return begin(QStringLiteral("provisionPolicy %1").arg(accountId), accountId);
}

void StubDaemon::setPolicy(const QVariantMap &document, const FailedPolicyMap &failed, int policyStatus)
{
    mDocument = document;
    mFailed = failed;
    mPolicyStatus = policyStatus;
}

void StubDaemon::endOofRead(qulonglong accountId, qulonglong requestId, int status)
{
    if (status == 0)
        Q_EMIT getOofFinished(accountId, requestId, mOof.oofEnabled(), mOof.timeRangeEnabled(),
            mOof.startTime().toString(Qt::ISODate), mOof.endTime().toString(Qt::ISODate),
            mOof.internalMessage(), mOof.externalMessageEnabled(), mOof.externalMessageToAnyone(),
            mOof.externalMessage());
    Q_EMIT requestFinished(accountId, requestId, status);
}

qulonglong StubDaemon::getOofState(qulonglong accountId)
{
    return begin(QStringLiteral("getOofState %1").arg(accountId), accountId,
        [this](qulonglong account, qulonglong request, int status) { endOofRead(account, request, status); });
}

qulonglong StubDaemon::setOofState(qulonglong accountId, bool enabled, bool timeRangeEnabled,
    const QString &startTime, const QString &endTime, const QString &internalMessage,
    bool externalMessageEnabled, bool externalMessageToAnyone, const QString &externalMessage)
{
    mOof.setOofEnabled(enabled);
    mOof.setTimeRangeEnabled(timeRangeEnabled);
    mOof.setStartTime(QDateTime::fromString(startTime, Qt::ISODate));
    mOof.setEndTime(QDateTime::fromString(endTime, Qt::ISODate));
    mOof.setInternalMessage(internalMessage);
    mOof.setExternalMessageEnabled(externalMessageEnabled);
    mOof.setExternalMessageToAnyone(externalMessageToAnyone);
    mOof.setExternalMessage(externalMessage);
    return begin(QStringLiteral("setOofState %1").arg(accountId), accountId);
}

void StubDaemon::setAvailability(
    const QStringList &emails, const QStringList &names, const QStringList &statuses)
{
    mEmails = emails;
    mNames = names;
    mStatuses = statuses;
}

qulonglong StubDaemon::attendeesAvailable(
    qulonglong accountId, const QString &emailAddresses, const QString &startTime, const QString &endTime)
{
    const QString call = QStringLiteral("attendeesAvailable %1 ").arg(accountId) + emailAddresses
        + QStringLiteral(" %1 %2").arg(startTime, endTime);
    return begin(call, accountId, [this](qulonglong, qulonglong request, int status) {
        if (status == 0)
            Q_EMIT attendeesAvailableDataReady(request, mEmails, mNames, mStatuses);
        else
            Q_EMIT attendeesAvailableDataReady(request, {}, {}, {});
    });
}

qulonglong StubDaemon::sync(qulonglong accountId)
{
    return begin(QStringLiteral("sync %1").arg(accountId), accountId);
}

qulonglong StubDaemon::foldersSync(qulonglong accountId)
{
    return begin(QStringLiteral("foldersSync %1").arg(accountId), accountId);
}

qulonglong StubDaemon::syncFolders(qulonglong accountId, const QStringList &folderIds)
{
    return begin(
        QStringLiteral("syncFolders %1 %2").arg(accountId).arg(folderIds.join(QLatin1Char(','))), accountId);
}

qulonglong StubDaemon::syncService(qulonglong accountId, int service)
{
    return begin(QStringLiteral("syncService %1 %2").arg(accountId).arg(service), accountId);
}

qulonglong StubDaemon::createFolder(
    qulonglong accountId, const QString &name, const QString &parentFolderId, uint folderType)
{
    return begin(QStringLiteral("createFolder %1 %2 %3 %4")
                     .arg(QString::number(accountId), name, parentFolderId, QString::number(folderType)),
        accountId);
}

qulonglong StubDaemon::updateFolder(
    qulonglong accountId, const QString &folderId, const QString &parentFolderId, const QString &name)
{
    return begin(QStringLiteral("updateFolder %1 %2 %3 %4")
                     .arg(QString::number(accountId), folderId, parentFolderId, name),
        accountId);
}

qulonglong StubDaemon::deleteFolder(qulonglong accountId, const QString &folderId)
{
    return begin(QStringLiteral("deleteFolder %1 %2").arg(QString::number(accountId), folderId), accountId);
}

qulonglong StubDaemon::downloadMessagePart(
    qulonglong accountId, qulonglong messageId, const QString &location)
{
    return begin(QStringLiteral("downloadMessagePart %1 %2 %3")
                     .arg(QString::number(accountId), QString::number(messageId), location),
        accountId);
}

qulonglong StubDaemon::downloadMessages(
    qulonglong accountId, const QList<qulonglong> &messageIds, bool fullContentDownload)
{
    if (mDownloader)
        mDownloader(messageIds);
    return begin(QStringLiteral("downloadMessages %1 %2 %3")
                     .arg(accountId)
                     .arg(messageIds.size())
                     .arg(int(fullContentDownload)),
        accountId);
}

void StubDaemon::setPushState(qulonglong accountId, const QVariantMap &state)
{
    mPushStates.insert(accountId, state);
    Q_EMIT pushStateChanged(accountId, state);
}

QVariantMap StubDaemon::pushState(qulonglong accountId)
{
    note(QStringLiteral("pushState %1").arg(accountId));
    return mPushStates.value(accountId);
}

void StubDaemon::cancelRequest(qulonglong accountId, qulonglong requestId)
{
    note(QStringLiteral("cancelRequest %1 %2").arg(accountId).arg(requestId));
    if (mStatus == Open && requestId <= mLast)
        end(accountId, requestId, -4);
}

void StubDaemon::reconfig()
{
    note(QStringLiteral("reconfig"));
}

void StubDaemon::quit()
{
    note(QStringLiteral("quit"));
}
