// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/mailbox.h"

namespace Simulator {

/**
 * A directory of `.eml` files as a mailbox: files at the top are in the Inbox, sub-directories are mail
 * folders, those with the name of a standard folder that folder.
 */
namespace MailboxDirectory {

/** Delivers all messages and returns their number, -1 if there is no such directory. */
int load(const QString &path, Mailbox &mailbox);

} // namespace MailboxDirectory
} // namespace Simulator
