// SPDX-License-Identifier: LGPL-2.1-or-later
#include "displaysettings.h"

#include "devicelockfile.h"

DisplaySettings::DisplaySettings(QObject *parent)
    : QObject(parent)
{
}

int DisplaySettings::devicelockTimeout() const
{
    return DeviceLockFile::timeout();
}
