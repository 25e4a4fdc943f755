// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascommonbase.h"

/** What the server says about one item that the device deleted. A plain value. */
class AirSyncResponseDeleteItem : public EasCommonBase
{
    Q_GADGET

public:
    uint status() const { return mStatus; }
    void setStatus(uint status) { mStatus = status; }

    void clear() { *this = AirSyncResponseDeleteItem(); }

private:
    uint mStatus = 0;
};
