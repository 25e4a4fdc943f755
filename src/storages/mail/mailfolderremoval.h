// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailid.h>

struct MailStoreContext;
class MailFolderChanges;

/**
 * Removes folders of an account from the mail store, and with them nothing that the server has elsewhere.
 *
 * A folder below a removed one goes along if it has no row in the mapping. With a row it is a folder of the
 * server, which tells of its removal by name; until then it stands at the root. A message whose move into a
 * removed folder has not been uploaded returns to the folder in which the server has it; one that the server
 * never had goes to the store's own folder. An object of the moment; main thread only.
 */
class MailFolderRemoval
{
public:
    MailFolderRemoval(const MailStoreContext &context, MailFolderChanges &changes);

    /** False if the mapping could not be read or the store refused; folders may have gone in part then. */
    bool remove(const QMailFolderIdList &ids) const;

private:
    struct Plan;
    bool findDescendants(Plan *plan) const;
    bool moveToRoot(const QMailFolderIdList &ids) const;
    bool returnMovedMessages(const QMailFolderIdList &removed) const;

    const MailStoreContext &mContext;
    MailFolderChanges &mChanges;
};
