// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/calendarrows.h"

#include "internal/incidencecodec.h"
#include "internal/recurrencekey.h"
#include "support/sqlitedatabase.h"

#include <KCalendarCore/Event>

#include <QDebug>

namespace mKCal {

using KCalendarCore::Incidence;

namespace {

const QLatin1String sameIncidence(" WHERE uid = ? AND recurrence IN (?, ?)");

/** The values of sameIncidence. */
QVariantList identity(const Incidence::Ptr &incidence)
{
    const QStringList keys = RecurrenceKey::candidates(incidence->recurrenceId());
    return { incidence->uid(), keys.at(0), keys.at(1) };
}

QVariant seconds(const QDateTime &time)
{
    return time.isValid() ? QVariant(time.toSecsSinceEpoch()) : QVariant(QVariant::LongLong);
}

/** Where an incidence begins and ends for queries of a range; a series has no end there. */
QVariantList range(const Incidence::Ptr &incidence)
{
    const QVariant first = seconds(incidence->dtStart());
    if (incidence->recurs())
        return { first, QVariant(QVariant::LongLong) };
    const QDateTime end = incidence->dateTime(Incidence::RoleEnd);
    return { first, end.isValid() ? seconds(end) : first };
}

QVariantList content(
    const Incidence::Ptr &incidence, const QString &notebookUid, const EncodedIncidence &encoded)
{
    return QVariantList { RecurrenceKey::key(incidence->recurrenceId()), notebookUid,
        incidence->created().toSecsSinceEpoch(), incidence->lastModified().toSecsSinceEpoch() }
    + range(incidence) + QVariantList { encoded.text, encoded.rest };
}

Incidence::Ptr fromRow(const QSqlQuery &row)
{
    const Incidence::Ptr incidence =
        IncidenceCodec::decode({ row.value(5).toByteArray(), row.value(6).toByteArray() });
    if (!incidence)
        return incidence;
    incidence->setCreated(QDateTime::fromSecsSinceEpoch(row.value(3).toLongLong(), Qt::UTC));
    incidence->setLastModified(QDateTime::fromSecsSinceEpoch(row.value(4).toLongLong(), Qt::UTC));
    return incidence;
}

} // namespace

bool IncidenceRows::read(const RowFilter &filter, const Handler &handler, const Wanted &wanted)
{
    const QString sql = QLatin1String("SELECT uid, recurrence, notebook, created, modified, text, rest"
                                      " FROM incidences WHERE ")
        + filter.condition + QLatin1String(" ORDER BY recurrence <> '', id");
    return mDatabase.select(sql, filter.values, [&handler, &wanted](const QSqlQuery &row) {
        const QString uid = row.value(0).toString();
        if (wanted && !wanted(uid, RecurrenceKey::recurrenceId(row.value(1).toString())))
            return;
        const Incidence::Ptr incidence = fromRow(row);
        if (incidence)
            handler(incidence, row.value(2).toString());
        else
            qWarning() << "the incidence" << uid << "cannot be read";
    });
}

bool IncidenceRows::insert(const Incidence::Ptr &incidence, const QString &notebookUid)
{
    const EncodedIncidence encoded = IncidenceCodec::encode(incidence);
    return !encoded.text.isEmpty() && eraseDeleted(incidence)
        && mDatabase.run(
            QStringLiteral("INSERT INTO incidences (uid, recurrence, notebook, created, modified, first,"
                           " last, text, rest) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"),
            QVariantList { incidence->uid() } + content(incidence, notebookUid, encoded));
}

bool IncidenceRows::update(const Incidence::Ptr &incidence, const QString &notebookUid)
{
    const EncodedIncidence encoded = IncidenceCodec::encode(incidence);
    return !encoded.text.isEmpty()
        && mDatabase.run(
            QLatin1String("UPDATE incidences SET recurrence = ?, notebook = ?, created = ?, modified = ?,"
                          " first = ?, last = ?, text = ?, rest = ?")
                + sameIncidence + QLatin1String(" AND deleted IS NULL"),
            content(incidence, notebookUid, encoded) + identity(incidence));
}

bool IncidenceRows::markDeleted(const Incidence::Ptr &incidence, const QDateTime &time)
{
    return mDatabase.run(QLatin1String("UPDATE incidences SET deleted = ?") + sameIncidence
            + QLatin1String(" AND deleted IS NULL"),
        QVariantList { seconds(time) } + identity(incidence));
}

bool IncidenceRows::erase(const Incidence::Ptr &incidence)
{
    return mDatabase.run(QLatin1String("DELETE FROM incidences") + sameIncidence, identity(incidence));
}

bool IncidenceRows::eraseDeleted(const Incidence::Ptr &incidence)
{
    return mDatabase.run(
        QLatin1String("DELETE FROM incidences") + sameIncidence + QLatin1String(" AND deleted IS NOT NULL"),
        identity(incidence));
}

QDateTime IncidenceRows::deletedDate(const Incidence::Ptr &incidence)
{
    const std::optional<QVariant> time = mDatabase.value(
        QLatin1String("SELECT MAX(deleted) FROM incidences") + sameIncidence, identity(incidence));
    return !time || time->isNull() ? QDateTime() : QDateTime::fromSecsSinceEpoch(time->toLongLong(), Qt::UTC);
}

} // namespace mKCal
