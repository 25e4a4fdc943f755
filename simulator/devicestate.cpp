// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/devicestate.h"

namespace Simulator {

const ItemState *KnownItems::find(const QString &id) const
{
    const auto found = mItems.constFind(id);
    return found == mItems.constEnd() ? nullptr : &*found;
}

void KnownItems::settle()
{
    if (mIsMarked)
        mBefore.clear();
    mIsMarked = false;
}

void KnownItems::remember(const QString &id)
{
    settle();
    if (mBefore.contains(id))
        return;
    const ItemState *state = find(id);
    mBefore.insert(id, state ? std::optional<ItemState>(*state) : std::nullopt);
}

void KnownItems::insert(const QString &id, const ItemState &state)
{
    remember(id);
    mItems.insert(id, state);
}

void KnownItems::remove(const QString &id)
{
    remember(id);
    mItems.remove(id);
}

void KnownItems::goBack()
{
    for (auto before = mBefore.constBegin(); before != mBefore.constEnd(); ++before) {
        if (before.value())
            mItems.insert(before.key(), *before.value());
        else
            mItems.remove(before.key());
    }
    mBefore.clear();
    mIsMarked = false;
}

} // namespace Simulator
