// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/containers/easbodycontainer.h"

bool EasBodyContainer::isEmpty() const
{
    return mType == UnspecifiedBodyType && mData.isEmpty() && mMime.isEmpty() && mEstimatedDataSize == 0
        && mPart == 0 && !mTruncated && !mSmartMimeData;
}
