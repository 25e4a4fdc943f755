// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QList>

class QMailStore;

/** What accounts that are cleared or gone leave behind in the mail store. */
namespace MailAccountFolders {

/** Removes the folders of all these accounts, and so their messages; false, after a log line, if some are
 * left. */
bool remove(QMailStore &store, const QList<quint64> &accountIds);

} // namespace MailAccountFolders
