// SPDX-License-Identifier: LGPL-2.1-or-later
#include "devicelockfile.h"

#include <QSettings>
#include <QStandardPaths>

namespace {

QVariant lockValue(const QString &key)
{
    const QSettings settings(DeviceLockFile::path(), QSettings::IniFormat);
    return settings.value(QStringLiteral("lock/") + key);
}

} // namespace

QString DeviceLockFile::path()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/fennel-device.conf");
}

bool DeviceLockFile::isEnabled()
{
    return lockValue(QStringLiteral("enabled")).toBool();
}

int DeviceLockFile::timeout()
{
    return lockValue(QStringLiteral("timeout")).toInt();
}
