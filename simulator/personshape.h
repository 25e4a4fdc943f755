// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/person.h"
#include "simulator/wbxmlnode.h"

namespace Simulator {

/** How a reply tells of the people's pictures: counts them, since only so many are wanted. */
class PersonShape
{
public:
    /** The Picture of a request's Options; a null node asks for none. */
    explicit PersonShape(const WbxmlNode &picture);

    /** All elements of the entry's Properties. */
    QVector<WbxmlNode> elements(const Person &person);

private:
    WbxmlNode pictureElement(const QByteArray &picture);

    bool mIsWanted;
    /** Bytes and number; -1 for any. */
    int mMaxSize = -1;
    int mMaxPictures = -1;
    int mCount = 0;
};

} // namespace Simulator
