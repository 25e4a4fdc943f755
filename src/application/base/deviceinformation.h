// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/** Tells servers who the device is. All values come from the platform; nothing here is an account's. */
class DeviceInformation
{
public:
    DeviceInformation() = delete;

    static QString model();
    static QString deviceModel();
    static QString imei();
    static QString friendlyName();
    static QString os();
    static QString osLanguage();
    static QString userAgent();

    /** The device identifier of every request's URL, at most 32 characters; computed at the first call. */
    static QString deviceId();
    /** Computes the identifier anew, for a server that refuses the present one. */
    static void refreshDeviceId();
    /** The product identifier of iCalendar text that is made here. */
    static QString prodId();

    /** The identifier of a device: letters and digits of the model, as much of the IMEI as fits, and a suffix
     * that tells the users of one device apart. */
    static QString composeDeviceId(const QString &deviceModel, const QString &imei, const QString &userName);
};
