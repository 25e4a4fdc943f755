// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDateTime>
#include <QString>

/** Moments as they stand in the commands of clients and in those of the protocol. */
namespace ProtocolTime {

/** "2024-05-01T10:00:00.000Z", always in UTC; empty for an invalid time. */
QString toWire(const QDateTime &time);

/** A time of a client: ISO 8601, without a zone a local one; invalid if the text is no time. */
QDateTime fromClient(const QString &text);

/** Whether a stretch of time begins and ends, and the one before the other. */
bool isSpan(const QDateTime &start, const QDateTime &end);

} // namespace ProtocolTime
