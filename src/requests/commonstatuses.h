// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/requestverb.h"

/** What a status makes any request do that has no row of its own for it. */
extern const RequestStatusTable commonStatuses;
