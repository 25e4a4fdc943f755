// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/easgeneralitem.h"

void EasGeneralItem::appendChangedField(uint tag)
{
    if (!mChangedFields.contains(tag)) {
        mChangedFields.append(tag);
    }
}
