// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easgeneralitem.h"
#include "protocol/base/eas.h"
#include "requests/syncitemstatus.h"

#include <QList>
#include <QMap>
#include <QSet>
#include <QString>

class EasAccount;
class SyncCollection;
struct SyncState;

/**
 * Takes one collection of a Sync reply into the store of its class and into the mapping database.
 *
 * The three subclasses differ in what they do in which order; what an item's status means, and which of the
 * sent items count as acknowledged, is decided here. Made for one reply, on the stack of the request's slot;
 * account and state must outlive it. Main thread only.
 */
class SyncResultHandler
{
public:
    SyncResultHandler(EasAccount &account, SyncState &state);
    virtual ~SyncResultHandler();

    /** False if the collection has to be repeated from its old key; status() then tells why. */
    virtual bool handle(SyncCollection &collection) = 0;

    /** What the request has to end with, 0 if nothing was recorded. */
    int status() const { return mStatus; }

protected:
    EasAccount &account() const { return mAccount; }
    SyncState &state() const { return mState; }

    /** Logs, records the status of an internal failure and returns false. */
    bool fail(const char *text);

    /** Decides on one item; false if the handler has to stop. */
    bool judge(SyncItemStatus::Operation operation, uint status, const QString &serverId,
        const QString &localId, bool &acknowledged);

    /**
     * Has a collection begin anew after this reply if it changes items that the device never got: a server
     * says so that takes a window for received that was not. Not more than once a day; logged.
     */
    void beginAnewFor(const SyncCollection &collection, const QStringList &unknownIds);

    QStringList failedLocalIds() const { return mFailedLocalIds; }

    /**
     * The sent entries (items, or server identifiers) that the reply acknowledges: all of them if it holds no
     * responses, otherwise those whose response says so.
     *
     * Some servers answer without saying which item they mean. Where no response of the kind says so, and all
     * are successes, everything that was sent has arrived; otherwise such a response acknowledges nothing.
     */
    template <typename Sent, typename Response>
    bool acknowledged(SyncItemStatus::Operation operation, const QString &collectionId,
        const QList<Sent> &sent, const QList<Response> &responses, const QMap<QString, QString> &localIds,
        QList<Sent> &result)
    {
        if (responses.isEmpty()) {
            result = sent;
            return true;
        }
        // One item can go up as several changes, and has arrived if all of them have.
        QSet<QString> taken;
        QSet<QString> refused;
        bool isNamed = false;
        bool isFailure = false;
        mCollectionId = collectionId;
        for (const Response &response : responses) {
            bool isTaken = false;
            const QString serverId = response.serverId();
            if (!judge(operation, response.status(), serverId, localIds.value(serverId), isTaken))
                return false;
            (isTaken ? taken : refused).insert(serverId);
            isNamed = isNamed || !serverId.isEmpty();
            isFailure = isFailure || response.status() > Eas::SyncStatusSuccess;
        }
        if (!isNamed && !isFailure) {
            result = sent;
            return true;
        }
        for (const Sent &entry : sent) {
            const QString serverId = serverIdOf(entry);
            if (taken.contains(serverId) && !refused.contains(serverId))
                result.append(entry);
        }
        return true;
    }

private:
    static const QString &serverIdOf(const QString &serverId) { return serverId; }
    static QString serverIdOf(const EasGeneralItem &item) { return item.serverId(); }

    EasAccount &mAccount;
    SyncState &mState;
    QString mCollectionId;
    QStringList mFailedLocalIds;
    int mStatus = 0;
};
