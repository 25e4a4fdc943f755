// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailglobal.h>

/** The services of an account. Kept by the account store, so there is nothing in it here. */
class QMF_EXPORT QMailAccountConfiguration
{
};
