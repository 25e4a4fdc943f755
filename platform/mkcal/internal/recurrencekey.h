// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

/**
 * Recurrence ids as the store keeps them, comparable whatever zone the reader lives in: a moment ("m" and the
 * seconds since the epoch), a floating time ("f" and its text), or nothing for an incidence that is none of a
 * series.
 */
namespace RecurrenceKey {

QString key(const QDateTime &recurrenceId);
/** All keys under which this recurrence id may stand: a moment is also a floating time of the local zone. */
QStringList candidates(const QDateTime &recurrenceId);
QDateTime recurrenceId(const QString &key);

} // namespace RecurrenceKey
