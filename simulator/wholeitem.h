// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/item.h"

namespace Simulator {

/** An item that is sent as a whole whenever anything of it changes, and that is in conflict as a whole. */
class WholeItem : public Item
{
public:
    ItemState state() const override { return mState; }
    QVector<WbxmlNode> changedElements(const ItemState &, const ItemShape &shape) const override
    {
        return elements(shape);
    }

protected:
    WholeItem();

private:
    ItemState mState; ///< differs from that of any other item
};

} // namespace Simulator
