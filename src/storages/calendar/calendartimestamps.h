// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/localquery.h"

#include <KCalendarCore/Incidence>

#include <QHash>
#include <QMap>
#include <QSet>
#include <QString>

struct CalendarStoreContext;

/**
 * Tells the user's changes from the engine's: the time of change of each event against the stamp that the
 * mapping database holds of its last known state. Equal stamps mean that the event is as the server knows it.
 *
 * A series has one stamp, the latest of its own and its exceptions'. Stamps are seconds since the epoch, or
 * EasDatabase::TimestampInvalid.
 */
class CalendarTimestamps
{
public:
    explicit CalendarTimestamps(const CalendarStoreContext &context);

    /**
     * To be called last of all, before the save. Stamps are seconds: what the engine writes counts as changed
     * a second ago, so that an edit of the user's in the very second has another stamp.
     */
    static void markAsOwnWrite(KCalendarCore::Incidence &incidence);

    /** TimestampInvalid for an invalid time. */
    static uint timeToStamp(const QDateTime &time);

    /**
     * Rebuilds the cache from the incidences of a notebook, which it loads, and reads the stamps of the
     * mapping.
     */
    LocalQuery updateTimestampCache(const QString &notebookUid);
    /** The same of these events alone, which costs nothing for the others of the notebook. */
    LocalQuery updateTimestampCache(const QString &notebookUid, const QSet<QString> &uids);
    /** Of the cache; TimestampInvalid for an event that is not there. */
    uint eventTimestamp(const QString &uid) const;
    /** Whether the event is not as the server knows it; false for one that the server does not know. */
    bool isChanged(const QString &uid) const;
    /** What the mapping holds; TimestampInvalid for an event that the server does not know. */
    uint storedTimestamp(const QString &uid) const;

private:
    bool readStored();
    void enterLoaded(const QString &notebookUid);
    void enter(const KCalendarCore::Incidence::Ptr &incidence);

    const CalendarStoreContext &mContext;
    QHash<QString, uint> mStamps;
    QMap<QString, uint> mStored;
};
