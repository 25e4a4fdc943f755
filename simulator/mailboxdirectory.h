// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/mailbox.h"

#include <QStringList>

namespace Simulator {

/**
 * A directory of files as a mailbox. `.eml` files at the top are in the Inbox, `.ics` files in the Calendar,
 * `.vcf` files among the Contacts. Sub-directories are folders, those with the name of a standard folder that
 * folder: for mail, or for events or contacts where that is what they hold.
 */
namespace MailboxDirectory {

/** Puts all of it there and returns the number of items, -1 if there is no such directory. */
int load(const QString &path, Mailbox &mailbox);
/** One file of any of these kinds; the identifiers of what it held. Without a folder it goes where its kind
 * goes. */
QStringList loadFile(const QString &fileName, Mailbox &mailbox, const QString &folderId = QString());

} // namespace MailboxDirectory
} // namespace Simulator
