// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/algorithms/foldercommandresponseparser.h"

/** Reads the reply of a FolderCreate. */
class FolderCreateResponseParser : public FolderCommandResponseParser
{
    Q_OBJECT

public:
    explicit FolderCreateResponseParser(QObject *parent = nullptr)
        : FolderCommandResponseParser(Wbxml::FolderHierarchy::FolderCreate, parent)
    {
    }

    /** Of the folder that was made. */
    QString serverId() const { return mServerId; }
};
