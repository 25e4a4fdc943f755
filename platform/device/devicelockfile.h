// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/** The settings of a lock that no device has: "fennel-device.conf" in the user's configuration. */
namespace DeviceLockFile {

QString path();
/** Of the group "lock"; read at each call. */
bool isEnabled();
int timeout();

} // namespace DeviceLockFile
