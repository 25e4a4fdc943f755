// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/eventrows.h"

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

const ItemTable Events { "calendar", CantQueryCalendar,
    "can't execute calendar table query. Error:", CantQuery, "can't delete calendar items for account" };

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

EventRows::EventRows(PreparedStatements &statements)
    : ItemRows(statements, Events)
{
}

bool EventRows::add(EasAccountId accountId, const QList<EasCalendarItem> &items) const
{
    if (items.isEmpty())
        return true;
    return DatabaseStatement::insertRows(statements(), QStringLiteral("INSERT INTO calendar"),
        QStringLiteral("(NULL, %1, ?, ?, ?, ?)").arg(accountId),
        { column(items, &EasCalendarItem::serverId), column(items, &EasCalendarItem::collectionId),
            column(items, &EasCalendarItem::localId), column(items, &EasCalendarItem::localTimestamp) },
        "can't add calendar items for account", accountId);
}

bool EventRows::update(EasAccountId accountId, const QList<EasCalendarItem> &items) const
{
    if (items.isEmpty())
        return true;
    DatabaseStatement update(statements(),
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

Lookup<QString> EventRows::collectionId(EasAccountId accountId, const QString &serverId) const
{
    DatabaseStatement select(statements(),
        QStringLiteral("SELECT collection_id FROM calendar WHERE account_id=%1 AND server_id=?")
            .arg(accountId));
    OnlyValue onlyCollection("EAS collection id not unique for server id:", serverId);
    const bool complete =
        DatabaseReading::eachRow(select.bind(serverId), CantQueryCalendar, std::ref(onlyCollection));
    return complete ? Lookup<QString>(onlyCollection.value()) : Lookup<QString>::unread();
}

Lookup<QString> EventRows::serverId(EasAccountId accountId, const QString &localId) const
{
    DatabaseStatement select(statements(),
        QStringLiteral("SELECT server_id FROM calendar WHERE account_id=%1 AND local_id=?").arg(accountId));
    OnlyValue onlyServerId("EAS server id not unique for local id:", localId);
    const bool complete = DatabaseReading::eachRow(select.bind(localId), CantQuery, std::ref(onlyServerId));
    return complete ? Lookup<QString>(onlyServerId.value()) : Lookup<QString>::unread();
}

// An event that moves between two calendars has a row of each until the server has deleted the old one: the
// newer row tells its time, here and below.
Lookup<uint> EventRows::updateTime(EasAccountId accountId, const QString &localId) const
{
    DatabaseStatement select(statements(),
        QStringLiteral("SELECT timestamp FROM calendar WHERE account_id=%1 AND local_id=? ORDER BY id DESC")
            .arg(accountId));
    const Lookup<uint> timestamp = DatabaseReading::value(
        select.bind(localId), CantQueryTimestamp, uint(EasDatabase::TimestampInvalid), stampOf);
    if (!timestamp || *timestamp == EasDatabase::TimestampInvalid)
        qCDebug(eas()) << "No timestamp for:" << localId << ", account:" << accountId;
    else
        qCDebug(eas()) << "Timestamp for:" << localId << ", account:" << accountId << "is:" << *timestamp;
    return timestamp;
}

Lookup<QMap<QString, uint>> EventRows::updateTimes(EasAccountId accountId) const
{
    DatabaseStatement select(statements(),
        QStringLiteral("SELECT local_id, timestamp FROM calendar WHERE account_id=%1"
                       " AND timestamp IS NOT NULL ORDER BY id")
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
