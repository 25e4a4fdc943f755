// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "requests/serversearchrequest.h"

/** What the statuses of Search and Find mean. */
namespace SearchStatuses {

/** Of the commands themselves. */
extern const RequestStatusTable ofSearch;
extern const RequestStatusTable ofFind;

/** Of the store that a Search or a Find looked at; null for a status without a row. */
const SearchStatusTable::Row *ofMailbox(int status);
const SearchStatusTable::Row *ofAddressList(int status);
const SearchStatusTable::Row *ofFoundStore(int status);

} // namespace SearchStatuses
