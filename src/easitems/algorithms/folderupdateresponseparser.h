// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/algorithms/foldercommandresponseparser.h"

/** Reads the reply of a FolderUpdate. */
class FolderUpdateResponseParser : public FolderCommandResponseParser
{
    Q_OBJECT

public:
    explicit FolderUpdateResponseParser(QObject *parent = nullptr)
        : FolderCommandResponseParser(Wbxml::FolderHierarchy::FolderUpdate, parent)
    {
    }
};
