// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/base/protocoltime.h"

QString ProtocolTime::toWire(const QDateTime &time)
{
    return time.isValid() ? time.toUTC().toString(QStringLiteral("yyyy-MM-dd'T'HH:mm:ss.zzz'Z'")) : QString();
}

QDateTime ProtocolTime::fromClient(const QString &text)
{
    return QDateTime::fromString(text, Qt::ISODate);
}

bool ProtocolTime::isSpan(const QDateTime &start, const QDateTime &end)
{
    return start.isValid() && end.isValid() && start < end;
}
