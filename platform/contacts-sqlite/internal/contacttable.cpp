// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/contacttable.h"

#include "internal/contactids.h"
#include "internal/detailcodec.h"
#include "internal/madeupdetails.h"

#include <qcontactstatusflags.h>

#include <QDateTime>
#include <QStringList>

QTCONTACTS_USE_NAMESPACE

namespace {

const int added = QContactStatusFlags::IsAdded;
const int modified = QContactStatusFlags::IsModified;
const int deleted = QContactStatusFlags::IsDeleted;

QString notDeleted()
{
    return QStringLiteral("flags & %1 = 0").arg(deleted);
}

QString ofCollections(const QSet<quint64> &collections)
{
    if (collections.isEmpty())
        return QString();
    QStringList list;
    for (const quint64 collection : collections)
        list.append(QString::number(collection));
    return QStringLiteral(" AND collection IN (%1)").arg(list.join(QLatin1Char(',')));
}

/** Changes count as unhandled once somebody has fetched the collection's changes. */
QString unhandled(int flag)
{
    return QStringLiteral("unhandled | (SELECT recording FROM collections WHERE id = collection) * %1")
        .arg(flag);
}

// What has been deleted after the last fetch is news, not something that has been seen to.
QString purgeDeleted(const char *condition)
{
    return QStringLiteral("DELETE FROM contacts WHERE %1 = ? AND flags & %2 <> 0 AND unhandled & %2 = 0")
        .arg(QLatin1String(condition))
        .arg(deleted);
}

QString forget(const char *condition)
{
    return QStringLiteral("UPDATE contacts SET flags = unhandled, unhandled = 0 WHERE %1 = ?")
        .arg(QLatin1String(condition));
}

} // namespace

ContactTable::ContactTable(ContactDatabase &database)
    : mDatabase(database)
{
}

QList<quint64> ContactTable::numbers(const QSet<quint64> &collections) const
{
    return mDatabase.numbers(QStringLiteral("SELECT id FROM contacts WHERE %1%2 ORDER BY id")
                                 .arg(notDeleted(), ofCollections(collections)));
}

QList<QContact> ContactTable::contacts(const QSet<quint64> &collections) const
{
    return read(notDeleted() + ofCollections(collections), {});
}

QContact ContactTable::contact(quint64 number) const
{
    return read(QStringLiteral("id = ? AND ") + notDeleted(), { number }).value(0);
}

quint64 ContactTable::collectionOf(quint64 number) const
{
    const auto collection = mDatabase.value(
        QStringLiteral("SELECT collection FROM contacts WHERE id = ? AND ") + notDeleted(), { number });
    return collection.value_or(QVariant()).toULongLong();
}

QList<QContact> ContactTable::withDeleted(quint64 collection) const
{
    return read(QStringLiteral("collection = ?"), { collection });
}

QList<QContact> ContactTable::changed(quint64 collection) const
{
    return read(QStringLiteral("collection = ? AND flags <> 0"), { collection });
}

QList<QContact> ContactTable::read(const QString &condition, const QVariantList &values) const
{
    QList<QContact> contacts;
    mDatabase.select(
        QStringLiteral("SELECT id, collection, flags, created, modified, details FROM contacts WHERE %1"
                       " ORDER BY id")
            .arg(condition),
        values, [&contacts](const QSqlQuery &row) {
            QContact contact;
            contact.setId(ContactIds::contact(row.value(0).toULongLong()));
            contact.setCollectionId(ContactIds::collection(row.value(1).toULongLong()));
            DetailCodec::decode(row.value(5).toByteArray(), &contact);
            MadeUpDetails::add(
                &contact, { row.value(2).toInt(), row.value(3).toLongLong(), row.value(4).toLongLong() });
            contacts.append(contact);
        });
    return contacts;
}

bool ContactTable::insert(QContact *contact, quint64 collection, Origin origin)
{
    const int flags = origin == Local ? added : 0;
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    const bool inserted = mDatabase.run(
        QStringLiteral("INSERT INTO contacts (collection, flags, unhandled, created, modified, details)"
                       " SELECT id, ?, recording * ?, ?, ?, ? FROM collections WHERE id = ?"),
        { flags, flags, now, now, DetailCodec::encode(*contact), collection });
    if (!inserted || mDatabase.changedRows() != 1)
        return false;
    contact->setId(ContactIds::contact(mDatabase.lastInsertId()));
    contact->setCollectionId(ContactIds::collection(collection));
    return true;
}

bool ContactTable::update(const QContact &contact, Origin origin)
{
    const QString flags = origin == Synchronised
        ? QString()
        : QStringLiteral(", flags = flags | CASE WHEN flags & %1 THEN 0 ELSE %2 END, unhandled = %3")
              .arg(added)
              .arg(modified)
              .arg(unhandled(modified));
    return mDatabase.run(QStringLiteral("UPDATE contacts SET details = ?, modified = ?%1 WHERE id = ? AND %2")
                             .arg(flags, notDeleted()),
               { DetailCodec::encode(contact), QDateTime::currentMSecsSinceEpoch(),
                   ContactIds::number(contact.id()) })
        && mDatabase.changedRows() == 1;
}

bool ContactTable::remove(quint64 number, Origin origin)
{
    const QString news =
        origin == Synchronised ? QString() : QStringLiteral(", unhandled = %1").arg(unhandled(deleted));
    return mDatabase.run(QStringLiteral("UPDATE contacts SET flags = flags | %1%2 WHERE id = ? AND %3")
                             .arg(deleted)
                             .arg(news, notDeleted()),
               { number })
        && mDatabase.changedRows() == 1;
}

bool ContactTable::purge(quint64 number)
{
    return mDatabase.run(QStringLiteral("DELETE FROM contacts WHERE id = ?"), { number })
        && mDatabase.changedRows() == 1;
}

bool ContactTable::removeAll(quint64 collection, QList<quint64> *numbersOut)
{
    *numbersOut = numbers({ collection });
    return mDatabase.run(
        QStringLiteral("UPDATE contacts SET flags = flags | %1 WHERE collection = ?").arg(deleted),
        { collection });
}

bool ContactTable::startRecording(quint64 collection)
{
    return mDatabase.run(
               QStringLiteral("UPDATE contacts SET unhandled = 0 WHERE collection = ?"), { collection })
        && mDatabase.run(QStringLiteral("UPDATE collections SET recording = 1 WHERE id = ?"), { collection });
}

bool ContactTable::clearFlags(quint64 number)
{
    return mDatabase.run(purgeDeleted("id"), { number }) && mDatabase.run(forget("id"), { number });
}

bool ContactTable::clearAllFlags(quint64 collection)
{
    return mDatabase.run(purgeDeleted("collection"), { collection })
        && mDatabase.run(forget("collection"), { collection });
}

bool ContactTable::purgeAll(quint64 collection)
{
    return mDatabase.run(QStringLiteral("DELETE FROM contacts WHERE collection = ?"), { collection });
}
