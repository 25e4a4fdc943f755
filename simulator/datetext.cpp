// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/datetext.h"

#include <QtEndian>

namespace Simulator {

QString DateText::withDashes(const QDateTime &time)
{
    return time.toUTC().toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz")) + QLatin1Char('Z');
}

QString DateText::compact(const QDateTime &time)
{
    return time.toUTC().toString(QStringLiteral("yyyyMMddTHHmmss")) + QLatin1Char('Z');
}

QDateTime DateText::parse(const QString &text)
{
    static const char *const forms[] = { "yyyy-MM-ddTHH:mm:ss.zzzZ", "yyyy-MM-ddTHH:mm:ssZ",
        "yyyyMMddTHHmmssZ", "yyyy-MM-dd", "yyyyMMdd" };
    for (const char *form : forms) {
        // The Z has to be quoted, or it would be read as a part of the time.
        const QString quoted = QString::fromLatin1(form).replace(QLatin1Char('Z'), QStringLiteral("'Z'"));
        QDateTime time = QDateTime::fromString(text, quoted);
        time.setTimeSpec(Qt::UTC);
        if (time.isValid())
            return time;
    }
    return QDateTime();
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
