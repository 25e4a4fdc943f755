// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

/** Events as another calendar program writes them, in many zones and with rules of each kind. */
namespace EventSamples {

/** By their UID. The summaries differ. */
QMap<QString, QByteArray> all();

/** An iCalendar of one event, given line by line; "{z}" stands for the zone's parameter. */
QByteArray iCalendar(const QString &zone, const QStringList &lines);

} // namespace EventSamples
