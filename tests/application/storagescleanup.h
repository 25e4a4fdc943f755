// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QList>

/**
 * While it lives, the stores are not asked to clean up: the calls are noted and answered as the test wants.
 *
 * The test executable defines the two operations of StoragesFactory itself, which come before those of the
 * library; without such an object they pass the calls on.
 */
class StoragesCleanUp
{
public:
    StoragesCleanUp();
    ~StoragesCleanUp();
    Q_DISABLE_COPY(StoragesCleanUp)

    bool succeeds = true;
    /** The accounts of each call. */
    QList<QList<EasAccountId>> deleted;
    QList<QList<EasAccountId>> cleared;
};
