// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/elements/synccommanddelete.h"

SyncCommandDelete::SyncCommandDelete(QObject *parent)
    : SyncCommandBasic(parent)
{
}

SyncCommandBase::Type SyncCommandDelete::type() const
{
    return DeleteCommand;
}
