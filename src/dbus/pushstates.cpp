// SPDX-License-Identifier: LGPL-2.1-or-later
#include "dbus/pushstates.h"

QVariantMap PushStates::of(qulonglong accountId) const
{
    static const QVariantMap off { { QStringLiteral("enabled"), false },
        { QStringLiteral("nextStep"), QStringLiteral("off") } };
    return mStates.value(accountId, off);
}

bool PushStates::change(qulonglong accountId, const QVariantMap &state)
{
    const QVariantMap before = of(accountId);
    if (state.isEmpty())
        mStates.remove(accountId);
    else
        mStates.insert(accountId, state);
    return of(accountId) != before;
}
