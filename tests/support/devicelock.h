// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <devicelockfile.h>

#include <QFile>
#include <QSettings>

/** The lock of the device, as a user sets it; the device has none again when this goes. */
class DeviceLock
{
public:
    DeviceLock(bool isEnabled, int timeout)
    {
        QSettings settings(DeviceLockFile::path(), QSettings::IniFormat);
        settings.setValue(QStringLiteral("lock/enabled"), isEnabled);
        settings.setValue(QStringLiteral("lock/timeout"), timeout);
    }
    ~DeviceLock() { QFile::remove(DeviceLockFile::path()); }
    Q_DISABLE_COPY(DeviceLock)
};
