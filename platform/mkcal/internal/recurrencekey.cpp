// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/recurrencekey.h"

namespace {

QString momentKey(const QDateTime &time)
{
    return QLatin1Char('m') + QString::number(time.toSecsSinceEpoch());
}

QString floatingKey(const QDateTime &time)
{
    return QLatin1Char('f') + time.toLocalTime().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss"));
}

} // namespace

QString RecurrenceKey::key(const QDateTime &recurrenceId)
{
    if (!recurrenceId.isValid())
        return QStringLiteral("");
    return recurrenceId.timeSpec() == Qt::LocalTime ? floatingKey(recurrenceId) : momentKey(recurrenceId);
}

QStringList RecurrenceKey::candidates(const QDateTime &recurrenceId)
{
    if (!recurrenceId.isValid())
        return { key(recurrenceId), key(recurrenceId) };
    return { momentKey(recurrenceId), floatingKey(recurrenceId) };
}

QDateTime RecurrenceKey::recurrenceId(const QString &key)
{
    if (key.startsWith(QLatin1Char('m')))
        return QDateTime::fromSecsSinceEpoch(key.midRef(1).toLongLong(), Qt::UTC);
    return key.isEmpty() ? QDateTime() : QDateTime::fromString(key.mid(1), Qt::ISODate);
}
