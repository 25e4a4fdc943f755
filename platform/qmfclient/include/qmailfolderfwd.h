// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailglobal.h>

/** Holds the enumerations of QMailFolder, for headers that need no more. */
class QMF_EXPORT QMailFolderFwd
{
public:
    enum PredefinedFolderId { LocalStorageFolderId = 1 };
    enum StandardFolder { InboxFolder = 1, OutboxFolder, DraftsFolder, SentFolder, TrashFolder, JunkFolder };
};
