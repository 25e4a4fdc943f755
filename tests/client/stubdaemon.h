// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/failedpolicymap.h"
#include "easitems/containers/easoofcontainer.h"

#include <QDBusContext>
#include <QMap>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QVariantMap>

#include <functional>

/**
 * The daemon as clients see it on the bus, in the test process: notes what it is asked for and ends each
 * request with the status that the test wants, or leaves it open until it is cancelled. Owned by the test.
 */
class StubDaemon : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.fennelos.easdaemon")

public:
    /** In place of a status: the request stays open. */
    static constexpr int Open = 1000000;
    /** In place of a status: not even the call is answered. */
    static constexpr int Silent = 1000001;
    /** In place of a status: the request stays open, and cannot be cancelled. */
    static constexpr int Deaf = 1000002;

    StubDaemon();
    ~StubDaemon() override;

    bool isServing() const { return mIsServing; }
    void setStatus(int status) { mStatus = status; }
    /** Everything about a request is told before the call for it is answered. */
    void setHasty(bool isHasty) { mIsHasty = isHasty; }
    /** The calls so far: "sync 1", "cancelRequest 1 7". */
    QStringList calls() const { return mCalls; }
    /** What pushState() answers for an account, told as a signal as well. */
    void setPushState(qulonglong accountId, const QVariantMap &state);
    /** What provisionPolicy() brings: the document, unless it is empty, what fails, and what became of it. */
    void setPolicy(const QVariantMap &document, const FailedPolicyMap &failed, int policyStatus);
    /** What getOofState() brings, and setOofState() has left. */
    void setOof(const EasOofContainer &state) { mOof = state; }
    const EasOofContainer &oof() const { return mOof; }
    /** What attendeesAvailable() brings; empty lists at first. */
    void setAvailability(const QStringList &emails, const QStringList &names, const QStringList &statuses);
    /** What sendMail() does with a message, and the status that it then ends with. */
    void setSender(const std::function<int(qulonglong messageId)> &sender) { mSender = sender; }
    /** What downloadMessages() does before it ends; nothing at first. */
    void setDownloader(const std::function<void(const QList<qulonglong> &messageIds)> &downloader)
    {
        mDownloader = downloader;
    }
    /** What searches bring; of messages so many more, of people so many in all. */
    void setMatches(const QList<qulonglong> &matches, uint count);
    /** Runs before a search ends. */
    void setSearcher(const std::function<void(qulonglong accountId, qulonglong requestId)> &searcher)
    {
        mSearcher = searcher;
    }
    /** What protocolVersion() answers; 14.1 at first. */
    void setProtocolVersion(int version) { mProtocolVersion = version; }
    /** Ends a request that stays open. */
    void end(qulonglong accountId, qulonglong requestId, int status);

public Q_SLOTS:
    Q_SCRIPTABLE qulonglong sync(qulonglong accountId);
    Q_SCRIPTABLE qulonglong foldersSync(qulonglong accountId);
    Q_SCRIPTABLE qulonglong syncFolders(qulonglong accountId, const QStringList &folderIds);
    Q_SCRIPTABLE qulonglong syncService(qulonglong accountId, int service);
    Q_SCRIPTABLE qulonglong createFolder(
        qulonglong accountId, const QString &name, const QString &parentFolderId, uint folderType);
    Q_SCRIPTABLE qulonglong updateFolder(
        qulonglong accountId, const QString &folderId, const QString &parentFolderId, const QString &name);
    Q_SCRIPTABLE qulonglong deleteFolder(qulonglong accountId, const QString &folderId);
    Q_SCRIPTABLE qulonglong downloadMessagePart(
        qulonglong accountId, qulonglong messageId, const QString &location);
    Q_SCRIPTABLE qulonglong downloadMessages(
        qulonglong accountId, const QList<qulonglong> &messageIds, bool fullContentDownload);
    Q_SCRIPTABLE qulonglong sendMail(qulonglong accountId, qulonglong messageId);
    Q_SCRIPTABLE qulonglong meetingResponse(qulonglong accountId, qulonglong requestMessageId,
        int userResponse, qlonglong instanceId, qulonglong replyMessageId, const QString &newStartTime,
        const QString &newEndTime, const QString &newTimeComment);
    Q_SCRIPTABLE qulonglong meetingResponseCalendar(qulonglong accountId, const QString &requestEventId,
        int userResponse, qlonglong instanceId, qulonglong replyMessageId, const QString &newStartTime,
        const QString &newEndTime, const QString &newTimeComment);
    Q_SCRIPTABLE int protocolVersion(qulonglong accountId);
    Q_SCRIPTABLE qulonglong provisionPolicy(qulonglong accountId);
    Q_SCRIPTABLE qulonglong getOofState(qulonglong accountId);
    Q_SCRIPTABLE qulonglong setOofState(qulonglong accountId, bool enabled, bool timeRangeEnabled,
        const QString &startTime, const QString &endTime, const QString &internalMessage,
        bool externalMessageEnabled, bool externalMessageToAnyone, const QString &externalMessage);
    Q_SCRIPTABLE qulonglong attendeesAvailable(qulonglong accountId, const QString &emailAddresses,
        const QString &startTime, const QString &endTime);
    Q_SCRIPTABLE qulonglong searchMessages(qulonglong accountId, const QString &folderId,
        const QString &dateFrom, const QString &dateTo, const QString &bodyText, qulonglong limit);
    Q_SCRIPTABLE qulonglong searchGAL(qulonglong accountId, const QString &queryString, int rangeMin,
        int rangeMax, bool rebuildResults, bool deepTraversal);
    Q_SCRIPTABLE qulonglong find(qulonglong accountId, const QString &folderId, const QString &searchQuery,
        int searchType, qulonglong limit);
    Q_SCRIPTABLE QVariantMap pushState(qulonglong accountId);
    Q_SCRIPTABLE void cancelRequest(qulonglong accountId, qulonglong requestId);
    Q_SCRIPTABLE void reconfig();
    Q_SCRIPTABLE void quit();

Q_SIGNALS:
    Q_SCRIPTABLE void requestFinished(qulonglong accountId, qulonglong requestId, int status);
    Q_SCRIPTABLE void syncStarted(qulonglong accountId, qulonglong requestId);
    Q_SCRIPTABLE void policyDocumentReceived(
        qulonglong accountId, qulonglong requestId, const QVariantMap &policies);
    Q_SCRIPTABLE void provisionRequestFinished(qulonglong accountId, qulonglong requestId, int status,
        const FailedPolicyMap &provisionPolicy, int policyStatus);
    Q_SCRIPTABLE void getOofFinished(qulonglong accountId, qulonglong requestId, bool enabled,
        bool timeRangeEnabled, const QString &startTime, const QString &endTime,
        const QString &internalMessage, bool externalMessageEnabled, bool externalMessageToAnyone,
        const QString &externalMessage);
    Q_SCRIPTABLE void attendeesAvailableDataReady(qulonglong requestId, const QStringList &emails,
        const QStringList &names, const QStringList &statuses);
    Q_SCRIPTABLE void searchMessagesFinished(qulonglong accountId, qulonglong requestId, int status,
        uint remainingCount, const QList<qulonglong> &matchingIds);
    Q_SCRIPTABLE void searchGALFinished(qulonglong accountId, qulonglong requestId, int status,
        int totalItemsCount, const QList<qulonglong> &matchingIds);
    Q_SCRIPTABLE void findMessagesFinished(qulonglong accountId, qulonglong requestId, int status,
        uint remainingCount, const QList<qulonglong> &matchingIds);
    Q_SCRIPTABLE void pushStateChanged(qulonglong accountId, const QVariantMap &state);
    /** For the test, not for the bus. */
    void called();

private:
    using End = std::function<void(qulonglong accountId, qulonglong requestId, int status)>;

    /** A request that ends with requestFinished(), unless it is given another end. */
    qulonglong begin(const QString &call, qulonglong accountId, const End &end = {});
    /** Ends a search with a signal of the daemon. */
    template <class Count>
    End searchEnd(void (StubDaemon::*signal)(qulonglong, qulonglong, int, Count, const QList<qulonglong> &));
    void endOofRead(qulonglong accountId, qulonglong requestId, int status);
    void tell(qulonglong accountId, qulonglong requestId);
    void note(const QString &call);

    bool mIsServing = false;
    bool mIsHasty = false;
    int mStatus = 0;
    int mProtocolVersion = 0x1401;
    std::function<int(qulonglong)> mSender;
    std::function<void(const QList<qulonglong> &)> mDownloader;
    std::function<void(qulonglong, qulonglong)> mSearcher;
    QList<qulonglong> mMatches;
    uint mMatchCount = 0;
    /** The requests that end in a way of their own. */
    QMap<qulonglong, int> mOwnEnds;
    qulonglong mLast = 0;
    QStringList mCalls;
    QMap<qulonglong, QVariantMap> mPushStates;
    /** The requests that end with a policy. */
    QSet<qulonglong> mPolicyRequests;
    QVariantMap mDocument;
    FailedPolicyMap mFailed;
    int mPolicyStatus = 1;
    EasOofContainer mOof;
    QStringList mEmails;
    QStringList mNames;
    QStringList mStatuses;
    QMap<qulonglong, End> mEnds;
};
