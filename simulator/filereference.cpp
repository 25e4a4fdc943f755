// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/filereference.h"

#include <QUrl>

namespace Simulator {

QString FileReference::text(const QString &serverId, int attachment)
{
    const QString plain = QStringLiteral("%1:%2").arg(serverId).arg(attachment);
    return QString::fromLatin1(QUrl::toPercentEncoding(plain));
}

FileReference FileReference::parse(const QString &text)
{
    const QString plain = QUrl::fromPercentEncoding(text.toUtf8());
    bool ok = false;
    const int attachment = plain.section(QLatin1Char(':'), 2, 2).toInt(&ok);
    return { plain.section(QLatin1Char(':'), 0, 1), ok ? attachment : -1 };
}

} // namespace Simulator
