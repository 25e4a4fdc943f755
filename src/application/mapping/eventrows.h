// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/mapping/itemrows.h"

#include <QList>

class EasCalendarItem;

/** Rows of events. Belongs to EasDatabase, whose connection outlives it. Main thread only. */
class EventRows : public ItemRows
{
public:
    explicit EventRows(PreparedStatements &statements);

    bool add(EasAccountId accountId, const QList<EasCalendarItem> &items) const;
    bool update(EasAccountId accountId, const QList<EasCalendarItem> &items) const;

    /** Of several rows the last one counts, and the others are logged; so with the next one. */
    Lookup<QString> collectionId(EasAccountId accountId, const QString &serverId) const;
    Lookup<QString> serverId(EasAccountId accountId, const QString &localId) const;
    /** Seconds since the epoch, or EasDatabase::TimestampInvalid. */
    Lookup<uint> updateTime(EasAccountId accountId, const QString &localId) const;
    /** The same of all events of an account at once, without those that have no time. */
    Lookup<QMap<QString, uint>> updateTimes(EasAccountId accountId) const;
};
