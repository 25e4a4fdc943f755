// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailglobal.h>

/** The order of a query of folders; without one it is ascending by id. */
class QMF_EXPORT QMailFolderSortKey
{
};
