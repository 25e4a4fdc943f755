// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easfolderitem.h"

#include <QList>
#include <QStringList>

#include <qmailid.h>

struct MailStoreContext;

/**
 * The difference between the mapping database and the folders of the mail store, as an interrupted run has
 * left it: what to add to the store, update in it and remove from it.
 */
struct MailFolderRepair
{
    QList<EasFolderItem> added;
    QList<EasFolderItem> updated;
    QMailFolderIdList removed;
    /** Server identifiers of those among the added whose folder was in the store once. */
    QStringList lost;

    bool isEmpty() const;

    /** Nothing to do if the mapping cannot be read: a folder without a row is then not a stray one. */
    static MailFolderRepair find(const MailStoreContext &context);

    /** Enters in the mapping that all rows now have their folders; false if that failed. */
    bool save(const MailStoreContext &context);
};
