// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/lookup.h"
#include "common/easaccountid.h"

#include <QString>

/**
 * The key of an account's folder hierarchy in the mapping database, as the commands of the hierarchy need
 * it. A value on the stack of a request's slot. Main thread only.
 */
class HierarchyKey
{
public:
    explicit HierarchyKey(EasAccountId accountId);

    /** An unread key is logged; it is not the key of a new account. */
    Lookup<QString> read() const;
    /**
     * Stores what a server has answered; false, logged, if the database refused.
     *
     * The initial key is left out: in the database it stands for an account that is half cleared, and the
     * next FolderSync would clear the rest.
     */
    bool store(const QString &answered) const;

private:
    EasAccountId mAccountId;
};
