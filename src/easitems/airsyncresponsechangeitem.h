// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascommonbase.h"

/** What the server says about one item that the device changed. A plain value. */
class AirSyncResponseChangeItem : public EasCommonBase
{
    Q_GADGET

public:
    uint status() const { return mStatus; }
    void setStatus(uint status) { mStatus = status; }
    QString getClass() const { return mClass; }
    void setClass(const QString &itemClass) { mClass = itemClass; }

    void clear() { *this = AirSyncResponseChangeItem(); }

private:
    uint mStatus = 0;
    QString mClass;
};
