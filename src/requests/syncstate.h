// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/uploadprogress.h"

#include <QList>
#include <QMap>
#include <QPair>
#include <QStringList>

/** What a running SyncRequest still has to do. */
struct SyncState
{
    /** The server has told something that the device did not know. */
    bool hasBroughtChanges = false;
    /** Server identifiers that a MoveItems has just retired. */
    QStringList movedServerIds;
    /** Collections still to be synchronised. */
    QStringList collectionsToSync;
    /** Collections that must start again from key "0". */
    QStringList collectionsToResync;
    /** Collections that must go in the next Sync, alone. */
    QStringList collectionsToRetry;
    /** Collections without a key that the server passed over in silence: they are asked for one by one. */
    QStringList collectionsToAskAlone;
    /** Those that were asked for alone, so that it is not done twice. */
    QStringList collectionsAskedAlone;
    /** Collections that got no key, with the status: the others go on, and then they are tried again. */
    QMap<QString, int> collectionsSetAside;
    /** By collection, as far as local changes have gone up in this request. */
    QMap<QString, UploadProgress> uploads;
    /** Per collection the occurrences that wait until their series exists on the server. */
    QMap<QString, QList<QPair<QString, QString>>> calendarExceptionsForLater;
    /** Those that have waited once: a series that the server does not take must not be tried for ever. */
    QMap<QString, QList<QPair<QString, QString>>> calendarExceptionsTouched;

    static void addOnce(QStringList &list, const QString &id);

    /** Takes a collection off the lists of what is still to be done. */
    void collectionSynced(const QString &serverId);

    /** Notes that the changes under way were answered; true if more of them wait. */
    bool uploadAnswered(const QString &serverId);

    /** Takes a collection off all lists. */
    void leaveOut(const QString &serverId);
    void setAside(const QString &serverId, int status);
    /** Puts what was set aside back to be synchronised; the status of one of them, 0 if there are none. */
    int takeSetAside();

    /** Status 15: the server wants fewer collections, so the next Sync carries one. */
    void processSyncRequestInvalidSyncError();
};
