// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/elements/synccommandbase.h"

SyncCommandBase::SyncCommandBase(QObject *parent)
    : AsProtocolItem(parent)
{
}
