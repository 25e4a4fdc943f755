// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/accountwatch.h"

#include <utility>

AccountWatch::AccountWatch()
    : mKnown(mDirectory.accounts())
{
    mDirectory.follow(this, [this] { compare(); });
}

void AccountWatch::compare()
{
    // Of an account that has gone, the store does not tell any more whose it was.
    const QList<EasAccountId> before = std::exchange(mKnown, mDirectory.accounts());
    for (const EasAccountId id : before) {
        if (!mKnown.contains(id))
            Q_EMIT removed(id);
    }
    for (const EasAccountId id : qAsConst(mKnown)) {
        if (!before.contains(id))
            Q_EMIT added(id);
    }
}
