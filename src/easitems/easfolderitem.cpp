// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/easfolderitem.h"

bool EasFolderItem::isEmailFolder(FolderType type)
{
    return (type >= UserCreatedGenericFolder && type <= DefaultOutboxFolder) || type == UserCreatedMailFolder;
}
