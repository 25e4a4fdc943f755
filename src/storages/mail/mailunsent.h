// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailmessagekey.h>

class QMailStore;

/**
 * Messages that the user wrote on this device and that the server has not: they wait in the Outbox or in
 * Drafts, and no sync brings them again.
 */
namespace MailUnsent {

QMailMessageKey key(const QMailAccountId &account);

/** Moves those of some folders that are to be removed into the store's own folder; false if the store
 * refused. */
bool rescue(QMailStore &store, const QMailAccountId &account, const QMailMessageKey &folders);

} // namespace MailUnsent
