// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>

/**
 * Says after how long the device locks itself. This one is a stand-in, which reads "timeout" of the group
 * "lock" in the file of DeviceLockFile, in the unit of the policies' MaxInactivityTimeDeviceLock (seconds);
 * 0 without one. Made for one call.
 */
class Q_DECL_EXPORT DisplaySettings : public QObject
{
    Q_OBJECT

public:
    explicit DisplaySettings(QObject *parent = nullptr);

    int devicelockTimeout() const;
};
