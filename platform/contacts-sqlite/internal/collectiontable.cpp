// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/collectiontable.h"

#include "internal/contactids.h"

#include <qcontactstatusflags.h>

#include <QDataStream>
#include <QIODevice>

QTCONTACTS_USE_NAMESPACE

namespace {

const int added = QContactStatusFlags::IsAdded;
const int modified = QContactStatusFlags::IsModified;
const int deleted = QContactStatusFlags::IsDeleted;

template <typename Map> QByteArray toBytes(const Map &map)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_5_15);
    stream << map;
    return bytes;
}

template <typename Map> Map fromBytes(const QByteArray &bytes)
{
    Map map;
    QDataStream stream(bytes);
    stream.setVersion(QDataStream::Qt_5_15);
    stream >> map;
    return map;
}

/** Everything comes back as a number or a text, the account as a number of 32 bits. */
QVariant asStored(const QString &key, const QVariant &value)
{
    if (key == QLatin1String("AccountId"))
        return int(value.toLongLong());
    switch (value.userType()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return value.toLongLong();
    case QMetaType::Bool:
        return value;
    default:
        return value.toString();
    }
}

QVariantMap asStored(const QVariantMap &values)
{
    QVariantMap stored;
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        stored.insert(it.key(), asStored(it.key(), it.value()));
    return stored;
}

QMap<int, QVariant> metadata(const QContactCollection &collection)
{
    QMap<int, QVariant> values;
    const auto all = collection.metaData();
    for (auto it = all.cbegin(); it != all.cend(); ++it) {
        if (it.key() != QContactCollection::KeyExtended)
            values.insert(it.key(), it.value());
    }
    return values;
}

} // namespace

CollectionTable::CollectionTable(ContactDatabase &database)
    : mDatabase(database)
{
}

QList<CollectionTable::Row> CollectionTable::read(const QString &condition, const QVariantList &values) const
{
    QList<Row> rows;
    mDatabase.select(
        QStringLiteral("SELECT id, metadata, extended, flags FROM collections WHERE %1 ORDER BY id")
            .arg(condition),
        values, [&rows](const QSqlQuery &row) {
            QContactCollection collection;
            const quint64 number = row.value(0).toULongLong();
            collection.setId(ContactIds::collection(number));
            const auto metadata = fromBytes<QMap<int, QVariant>>(row.value(1).toByteArray());
            for (auto it = metadata.cbegin(); it != metadata.cend(); ++it)
                collection.setMetaData(QContactCollection::MetaDataKey(it.key()), it.value());
            QVariantMap extended = fromBytes<QVariantMap>(row.value(2).toByteArray());
            if (number > ContactIds::localCollection) {
                if (!extended.contains(QStringLiteral("Aggregable")))
                    extended.insert(QStringLiteral("Aggregable"), true);
                if (!extended.contains(QStringLiteral("RemotePath")))
                    extended.insert(QStringLiteral("RemotePath"), QString());
            }
            for (auto it = extended.cbegin(); it != extended.cend(); ++it)
                collection.setExtendedMetaData(it.key(), it.value());
            rows.append({ collection, row.value(3).toInt() });
        });
    return rows;
}

QList<QContactCollection> CollectionTable::collections() const
{
    QList<QContactCollection> list;
    const QList<Row> rows = read(QStringLiteral("flags & %1 = 0").arg(deleted), {});
    for (const Row &row : rows)
        list.append(row.collection);
    return list;
}

std::optional<QContactCollection> CollectionTable::collection(quint64 number) const
{
    const QList<Row> rows = read(QStringLiteral("id = ? AND flags & %1 = 0").arg(deleted), { number });
    return rows.isEmpty() ? std::nullopt : std::make_optional(rows.first().collection);
}

bool CollectionTable::exists(quint64 number) const
{
    return collection(number).has_value();
}

QList<CollectionTable::Row> CollectionTable::withDeleted() const
{
    return read(QStringLiteral("id > %1").arg(ContactIds::localCollection), {});
}

bool CollectionTable::insert(QContactCollection *collection, Origin origin)
{
    const bool inserted =
        mDatabase.run(QStringLiteral("INSERT INTO collections (metadata, extended, flags) VALUES (?, ?, ?)"),
            { toBytes(metadata(*collection)), toBytes(asStored(collection->extendedMetaData())),
                origin == Local ? added : 0 });
    if (inserted)
        collection->setId(ContactIds::collection(mDatabase.lastInsertId()));
    return inserted;
}

bool CollectionTable::update(const QContactCollection &collection, Origin origin)
{
    const QString flags = origin == Local
        ? QStringLiteral(", flags = flags | CASE WHEN flags & %1 THEN 0 ELSE %2 END").arg(added).arg(modified)
        : QString();
    return mDatabase.run(
               QStringLiteral("UPDATE collections SET metadata = ?, extended = ?%1 WHERE id = ?").arg(flags),
               { toBytes(metadata(collection)), toBytes(asStored(collection.extendedMetaData())),
                   ContactIds::number(collection.id()) })
        && mDatabase.changedRows() == 1;
}

bool CollectionTable::markDeleted(quint64 number)
{
    return mDatabase.run(
        QStringLiteral("UPDATE collections SET flags = flags | %1 WHERE id = ?").arg(deleted), { number });
}

bool CollectionTable::clearFlags(quint64 number)
{
    return mDatabase.run(QStringLiteral("UPDATE collections SET flags = 0 WHERE id = ?"), { number });
}

bool CollectionTable::purge(quint64 number)
{
    return mDatabase.run(QStringLiteral("DELETE FROM collections WHERE id = ?"), { number });
}

bool CollectionTable::readMarkedDeleted(quint64 number, bool *marked) const
{
    *marked = false;
    return mDatabase.select(QStringLiteral("SELECT flags FROM collections WHERE id = ?"), { number },
        [marked](const QSqlQuery &row) { *marked = row.value(0).toInt() & deleted; });
}
