// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QList>

class EasEmailItem;

/** The messages of a search among those that are synchronised. */
namespace SearchedMessages {

/**
 * Names the messages by the identifiers under which they are kept, or would be, so that the store finds those
 * that it has. One whose identifier cannot be kept is left out. False if the mapping could not be read.
 */
bool name(EasAccountId accountId, QList<EasEmailItem> &items);

} // namespace SearchedMessages
