// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascontactsitem.h"

#include <QMetaType>

/** A contact of the global address list, with what became of its picture there. A plain value. */
class EasGalItem : public EasContactsItem
{
    Q_GADGET

public:
    int pictureStatus() const { return mPictureStatus; }
    void setPictureStatus(int pictureStatus) { mPictureStatus = pictureStatus; }

    void clear() { *this = EasGalItem(); }

private:
    int mPictureStatus = 0;
};
