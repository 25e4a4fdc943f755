// SPDX-License-Identifier: LGPL-2.1-or-later
// Rows of events.
#include "application/base/logging.h"
#include "application/mapping/databasecolumns.h"
#include "application/mapping/databasereading.h"
#include "application/mapping/easdatabase.h"
#include "easitems/eascalendaritem.h"

using DatabaseColumns::column;

namespace {

const char CantQueryCalendar[] = "Calendar table query failed, error:";
const char CantQueryTimestamp[] = "SQL query failed, error:";
const char CantQuery[] = "EAS DB query failed, error:";

/** NULL would convert to 0 and pass for the beginning of time. */
uint stampOf(const DatabaseStatement &row)
{
    bool isNumber = false;
    const uint stamp = row.value(0).isNull() ? 0 : row.value(0).toUInt(&isNumber);
    return isNumber ? stamp : EasDatabase::TimestampInvalid;
}

/** The rows should hold one value. The last one wins; a second one that is not empty is worth a warning. */
class OnlyValue
{
public:
    OnlyValue(const char *warning, const QString &id)
        : mWarning(warning)
        , mId(id)
    {
    }

    void operator()(const DatabaseStatement &row)
    {
        if (!mValue.isEmpty() && !row.text(0).isEmpty())
            qCWarning(eas()) << mWarning << mId;
        mValue = row.text(0);
    }

    QString value() const { return mValue; }

private:
    const char *mWarning;
    QString mId;
    QString mValue;
};

} // namespace

bool EasDatabase::addCalendarItems(EasAccountId accountId, const QList<EasCalendarItem> &items)
{
    if (items.isEmpty())
        return true;
    DatabaseStatement insert(mDatabase, QStringLiteral("INSERT INTO calendar VALUES (?, ?, ?, ?, ?, ?)"));
    insert.bindColumn(DatabaseColumns::assignedIds(items.size()))
        .bindColumn(DatabaseColumns::repeated(accountId, items.size()))
        .bindColumn(column(items, &EasCalendarItem::serverId))
        .bindColumn(column(items, &EasCalendarItem::collectionId))
        .bindColumn(column(items, &EasCalendarItem::localId))
        .bindColumn(column(items, &EasCalendarItem::localTimestamp));
    return insert.runBatch() || insert.fail("can't add calendar items for account", accountId);
}

bool EasDatabase::updateCalendarItems(EasAccountId accountId, const QList<EasCalendarItem> &items)
{
    if (items.isEmpty())
        return true;
    DatabaseStatement update(mDatabase,
        QStringLiteral("UPDATE calendar SET account_id=?, server_id=?, collection_id=?, local_id=?, "
                       "timestamp=? WHERE server_id=? AND account_id=%1")
            .arg(accountId));
    update.bindColumn(DatabaseColumns::repeated(accountId, items.size()))
        .bindColumn(column(items, &EasCalendarItem::serverId))
        .bindColumn(column(items, &EasCalendarItem::collectionId))
        .bindColumn(column(items, &EasCalendarItem::localId))
        .bindColumn(column(items, &EasCalendarItem::localTimestamp))
        .bindColumn(column(items, &EasCalendarItem::serverId));
    return update.runBatch() || update.fail("can't update calendar items for account", accountId);
}

bool EasDatabase::deleteCalendarItems(EasAccountId accountId, const QStringList &serverIds)
{
    return deleteItems("calendar", accountId, serverIds, "can't delete calendar items for account");
}

bool EasDatabase::calendarItemsChanges(EasAccountId accountId, const QList<EasCalendarItem> &added,
    const QList<EasCalendarItem> &updated, const QStringList &deletedServerIds,
    const QStringList &replacedServerIds)
{
    deleteCalendarItems(accountId, replacedServerIds);
    return addCalendarItems(accountId, added) && updateCalendarItems(accountId, updated)
        && deleteCalendarItems(accountId, deletedServerIds);
}

Lookup<QStringList> EasDatabase::localCalendarIds(EasAccountId accountId, const QString &collectionId) const
{
    DatabaseStatement select(mDatabase,
        QStringLiteral("SELECT local_id FROM calendar WHERE account_id=%1 AND collection_id=?")
            .arg(accountId));
    return DatabaseReading::texts(select.bind(collectionId), "can't execute calendar table query. Error:");
}

Lookup<QMap<QString, QString>> EasDatabase::serverToLocalCalendarIds(EasAccountId accountId) const
{
    DatabaseStatement select(mDatabase,
        QStringLiteral("SELECT server_id, local_id FROM calendar WHERE account_id=%1").arg(accountId));
    return DatabaseReading::map(select, 0, CantQueryCalendar);
}

Lookup<QMap<QString, QString>> EasDatabase::localToServerCalendarIds(EasAccountId accountId) const
{
    DatabaseStatement select(mDatabase,
        QStringLiteral("SELECT server_id, local_id FROM calendar WHERE account_id=%1").arg(accountId));
    return DatabaseReading::map(select, 1, CantQuery);
}

Lookup<QMap<QString, QString>> EasDatabase::serverCalendarIdToCollectionIds(EasAccountId accountId) const
{
    DatabaseStatement select(mDatabase,
        QStringLiteral("SELECT server_id, collection_id FROM calendar WHERE account_id=%1").arg(accountId));
    return DatabaseReading::map(select, 0, CantQueryCalendar);
}

Lookup<QString> EasDatabase::serverCalendarIdToCollectionId(
    EasAccountId accountId, const QString &serverId) const
{
    DatabaseStatement select(mDatabase,
        QStringLiteral("SELECT collection_id FROM calendar WHERE account_id=%1 AND server_id=?")
            .arg(accountId));
    OnlyValue collectionId("EAS collection id not unique for server id:", serverId);
    const bool complete =
        DatabaseReading::eachRow(select.bind(serverId), CantQueryCalendar, std::ref(collectionId));
    return complete ? Lookup<QString>(collectionId.value()) : Lookup<QString>::unread();
}

Lookup<QString> EasDatabase::localToServerCalendarId(EasAccountId accountId, const QString &localId) const
{
    DatabaseStatement select(mDatabase,
        QStringLiteral("SELECT server_id FROM calendar WHERE account_id=%1 AND local_id=?").arg(accountId));
    OnlyValue serverId("EAS server id not unique for local id:", localId);
    const bool complete = DatabaseReading::eachRow(select.bind(localId), CantQuery, std::ref(serverId));
    return complete ? Lookup<QString>(serverId.value()) : Lookup<QString>::unread();
}

Lookup<uint> EasDatabase::calendarItemUpdateTime(EasAccountId accountId, const QString &localId) const
{
    DatabaseStatement select(mDatabase,
        QStringLiteral("SELECT timestamp FROM calendar WHERE account_id=%1 AND local_id=?").arg(accountId));
    const Lookup<uint> timestamp =
        DatabaseReading::value(select.bind(localId), CantQueryTimestamp, uint(TimestampInvalid), stampOf);
    if (!timestamp || *timestamp == TimestampInvalid)
        qCDebug(eas()) << "No timestamp for:" << localId << ", account:" << accountId;
    else
        qCDebug(eas()) << "Timestamp for:" << localId << ", account:" << accountId << "is:" << *timestamp;
    return timestamp;
}

Lookup<QMap<QString, uint>> EasDatabase::calendarItemUpdateTimes(EasAccountId accountId) const
{
    DatabaseStatement select(mDatabase,
        QStringLiteral("SELECT local_id, timestamp FROM calendar WHERE account_id=%1"
                       " AND timestamp IS NOT NULL")
            .arg(accountId));
    QMap<QString, uint> times;
    const bool complete =
        DatabaseReading::eachRow(select, CantQueryTimestamp, [&times](const DatabaseStatement &row) {
            bool isNumber = false;
            const uint time = row.value(1).toUInt(&isNumber);
            if (isNumber)
                times.insert(row.text(0), time);
        });
    return complete ? Lookup<QMap<QString, uint>>(times) : Lookup<QMap<QString, uint>>::unread();
}

bool EasDatabase::clearCalendarFolder(EasAccountId accountId, const QString &collectionId)
{
    return clearFolder(accountId, collectionId, "calendar", "collection_id", "account_id");
}
