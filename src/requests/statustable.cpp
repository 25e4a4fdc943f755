// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/statustable.h"

#include "application/base/logging.h"

void logStatusText(QtMsgType level, const char *text, const QString &subject)
{
    if (!text)
        return;
    // One pass: a subject that holds a %1 of its own stays as it is.
    const QString line = QString::fromUtf8(text).replace(QLatin1String("%1"), subject);
    switch (level) {
    case QtDebugMsg:
        qCDebug(eas()).noquote() << line;
        break;
    case QtInfoMsg:
        qCInfo(eas()).noquote() << line;
        break;
    case QtWarningMsg:
        qCWarning(eas()).noquote() << line;
        break;
    default:
        qCCritical(eas()).noquote() << line;
        break;
    }
}
