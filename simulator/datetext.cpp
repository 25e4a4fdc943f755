// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/datetext.h"

#include <QtEndian>

namespace Simulator {

QString DateText::withDashes(const QDateTime &time)
{
    return time.toUTC().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz")) + QLatin1Char('Z');
}

QByteArray DateText::fileTime(const QDateTime &time)
{
    const qint64 secondsFrom1601 = 11644473600;
    const quint64 ticks = quint64((time.toMSecsSinceEpoch() + secondsFrom1601 * 1000) * 10000);
    QByteArray bytes(8, '\0');
    qToBigEndian(ticks, bytes.data());
    return bytes;
}

} // namespace Simulator
