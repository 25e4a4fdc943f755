// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QHash>
#include <QVariantMap>

/**
 * What the engine told last of each account's push, so that clients are answered while it works. Used on one
 * thread.
 */
class PushStates
{
public:
    /** An account of which nothing is kept is off. */
    QVariantMap of(qulonglong accountId) const;
    /** Whether clients now get another answer; an empty state is that of an account that has gone. */
    bool change(qulonglong accountId, const QVariantMap &state);

private:
    QHash<qulonglong, QVariantMap> mStates;
};
