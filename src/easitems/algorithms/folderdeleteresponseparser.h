// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/algorithms/foldercommandresponseparser.h"

/** Reads the reply of a FolderDelete. */
class FolderDeleteResponseParser : public FolderCommandResponseParser
{
    Q_OBJECT

public:
    explicit FolderDeleteResponseParser(QObject *parent = nullptr)
        : FolderCommandResponseParser(Wbxml::FolderHierarchy::FolderDelete, parent)
    {
    }
};
