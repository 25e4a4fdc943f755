// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

/** Says which device this is. Texts are empty where that is unknown. */
class Q_DECL_EXPORT DeviceIdentityInfo
{
public:
    DeviceIdentityInfo();
    QString deviceModel() const;
    /** IMEI, or another text that no other device has. */
    QString deviceUid() const;
};
