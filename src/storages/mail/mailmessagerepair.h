// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

struct MailStoreContext;

/** Heals what an interrupted run has left among the messages of an account. */
namespace MailMessageRepair {

/**
 * Removes messages that came from the server and never got a row in the mapping. The sync key was not
 * advanced for them, so the server sends them again, or has deleted them in the meantime; nothing else would
 * ever remove them then. What the user wrote here and what a search found stays. Returns how many it was.
 */
int removeStrays(const MailStoreContext &context);

/** Purges removal records that tell of no message any more, before they are taken for those of another. */
void purgeStaleRemovals(const MailStoreContext &context);

} // namespace MailMessageRepair
