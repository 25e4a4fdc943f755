// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailglobal.h>

/** Selects accounts; the one key in use is the empty one, which selects all. */
class QMF_EXPORT QMailAccountKey
{
};
