// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/synccommandbase.h"

SyncCommandBase::SyncCommandBase(QObject *parent)
    : AsProtocolItem(parent)
{
}
