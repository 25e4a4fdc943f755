// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/sessionbus.h"

#include <QFileInfo>
#include <QtGlobal>

bool sessionBusIsThere()
{
    if (!qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
        return true;
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return !runtime.isEmpty() && QFileInfo::exists(runtime + QLatin1String("/bus"));
}
