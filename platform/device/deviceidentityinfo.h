// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/**
 * Says which device this is: a model, and an identifier that no other machine has and that stays over
 * restarts.
 *
 * The model is the system's name. The identifier is made of that of the machine, which does not show from it;
 * a machine without one gets a random identifier, kept in the user's configuration. The environment variables
 * PLATFORM_DEVICE_MODEL and PLATFORM_DEVICE_UID stand in for both, for tests.
 */
class Q_DECL_EXPORT DeviceIdentityInfo
{
public:
    DeviceIdentityInfo();
    QString deviceModel() const;
    /** IMEI, or another text that no other device has. */
    QString deviceUid() const;

    /** What the identifier is for a machine of this id; empty without one. */
    static QString uidOfMachine(const QByteArray &machineId);
    /** The identifier in a file, which is made with a random one if there is none; empty if that fails. */
    static QString uidInFile(const QString &fileName);
};
