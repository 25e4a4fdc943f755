// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/elements/synccommandchange.h"

#include "protocol/wbxml/wbxmlencoder.h"

using namespace Wbxml;

SyncCommandChange::SyncCommandChange(QObject *parent)
    : SyncCommandAdd(parent)
{
}

SyncCommandBase::Type SyncCommandChange::type() const
{
    return ChangeCommand;
}

void SyncCommandChange::encodeEmailItem(
    const EasEmailItem &item, WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const
{
    if (item.changedFields() != QList<uint> { Email::Read }) {
        SyncCommandAdd::encodeEmailItem(item, encoder, version);
        return;
    }
    encoder.appendElement(AirSync::ApplicationData, true);
    encoder.appendIntElement(Email::Read, item.read() ? 1 : 0);
    encoder.setCurrentNodeToParent();
}
