// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QList>
#include <QMap>
#include <QPair>
#include <QStringList>

/** What a running SyncRequest still has to do. */
struct SyncState
{
    /** Server identifiers that a MoveItems has just retired. */
    QStringList movedServerIds;
    /** Collections still to be synchronised. */
    QStringList collectionsToSync;
    /** Collections that must start again from key "0". */
    QStringList collectionsToResync;
    /** Collections that must go in the next Sync, alone. */
    QStringList collectionsToRetry;
    /** Per collection the occurrences that wait until their series exists on the server. */
    QMap<QString, QList<QPair<QString, QString>>> calendarExceptionsForLater;
    /** Those that have waited once: a series that the server does not take must not be tried for ever. */
    QMap<QString, QList<QPair<QString, QString>>> calendarExceptionsTouched;

    static void addOnce(QStringList &list, const QString &id);

    /** Takes a collection off the lists of what is still to be done. */
    void collectionSynced(const QString &serverId);

    /** Status 15: the server wants fewer collections, so the next Sync carries one. */
    void processSyncRequestInvalidSyncError();
};
