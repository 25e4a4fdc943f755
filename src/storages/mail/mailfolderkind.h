// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/easfolderitem.h"

#include <qmailfolder.h>

/** What a type of mail folder is in the mail store. */
struct MailFolderKind
{
    EasFolderItem::FolderType type;
    const quint64 &flag;
    QMailFolder::StandardFolder standardFolder; ///< 0: none

    bool isStandard() const { return standardFolder != 0; }

    /** Null for folders of other items. */
    static const MailFolderKind *of(EasFolderItem::FolderType type);
};
