// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/changequeries.h"

namespace mKCal {

namespace {

RowFilter ofNotebook(RowFilter filter, const QString &notebookUid)
{
    if (!notebookUid.isEmpty()) {
        filter.condition += QLatin1String(" AND notebook = ?");
        filter.values.append(notebookUid);
    }
    return filter;
}

} // namespace

RowFilter ChangeQueries::inserted(const QDateTime &after, const QString &notebookUid)
{
    return ofNotebook(
        { QStringLiteral("created >= ? AND deleted IS NULL"), { after.toSecsSinceEpoch() } }, notebookUid);
}

RowFilter ChangeQueries::modified(const QDateTime &after, const QString &notebookUid)
{
    const qint64 time = after.toSecsSinceEpoch();
    return ofNotebook(
        { QStringLiteral("modified >= ? AND created < ? AND deleted IS NULL"), { time, time } }, notebookUid);
}

RowFilter ChangeQueries::deleted(const QDateTime &after, const QString &notebookUid)
{
    if (!after.isValid())
        return ofNotebook({ QStringLiteral("deleted IS NOT NULL"), {} }, notebookUid);
    const qint64 time = after.toSecsSinceEpoch();
    return ofNotebook({ QStringLiteral("deleted >= ? AND created < ?"), { time, time } }, notebookUid);
}

RowFilter ChangeQueries::all(const QString &notebookUid)
{
    return ofNotebook({ QStringLiteral("deleted IS NULL"), {} }, notebookUid);
}

} // namespace mKCal
