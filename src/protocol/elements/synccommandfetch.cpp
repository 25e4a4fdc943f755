// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/elements/synccommandfetch.h"

SyncCommandFetch::SyncCommandFetch(QObject *parent)
    : SyncCommandBasic(parent)
{
}

SyncCommandBase::Type SyncCommandFetch::type() const
{
    return FetchCommand;
}
