// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QStringList>

#include <qmailid.h>

namespace Simulator {
class Mailbox;
}

/**
 * The mail of a device and that of a server in one form, to be compared: a sorted list with a line a message,
 * "folder path|subject|read" or "...|unread", or with the path of each mail folder.
 */
namespace MailListing {

QStringList deviceMessages(EasAccountId accountId);
QStringList deviceFolders(EasAccountId accountId);
QStringList serverMessages(const Simulator::Mailbox &mailbox);
QStringList serverFolders(const Simulator::Mailbox &mailbox);

/** Invalid if there is none. */
QMailMessageId deviceMessage(EasAccountId accountId, const QString &subject);
QMailFolderId deviceFolder(EasAccountId accountId, const QString &path);

} // namespace MailListing
