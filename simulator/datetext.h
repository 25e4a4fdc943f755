// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QDateTime>

namespace Simulator {

/** Times in the forms of the protocol. */
namespace DateText {

/** "2024-05-02T09:30:00.000Z" */
QString withDashes(const QDateTime &time);
/** "20240502T093000Z" */
QString compact(const QDateTime &time);
/** Either form, in UTC; invalid if the text is no date. A date alone is its midnight. */
QDateTime parse(const QString &text);
/** Hundreds of nanoseconds since 1601, eight bytes, the highest first. */
QByteArray fileTime(const QDateTime &time);

} // namespace DateText
} // namespace Simulator
