// SPDX-License-Identifier: LGPL-2.1-or-later
#include <deviceidentityinfo.h>

DeviceIdentityInfo::DeviceIdentityInfo() = default;

// Read at each call: a device may learn its identity after the start.
QString DeviceIdentityInfo::deviceModel() const
{
    return qEnvironmentVariable("PLATFORM_DEVICE_MODEL");
}

QString DeviceIdentityInfo::deviceUid() const
{
    return qEnvironmentVariable("PLATFORM_DEVICE_UID");
}
