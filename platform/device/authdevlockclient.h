// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QObject>

/**
 * Says whether the device has a lock. This one is a stand-in, which reads "enabled" of the group "lock" in
 * the file of DeviceLockFile; false without one. Made for one call.
 */
class Q_DECL_EXPORT AuthDevlockClient : public QObject
{
    Q_OBJECT

public:
    explicit AuthDevlockClient(QObject *parent = nullptr);

    bool enabled() const;
};
