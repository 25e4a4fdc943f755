// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/wbxml/asprotocolitem.h"

#include "application/base/logging.h"

AsProtocolItem::AsProtocolItem(QObject *parent)
    : QObject(parent)
{
}

AsProtocolItem::~AsProtocolItem() = default;

void AsProtocolItem::encode(WbxmlEncoder &encoder) const
{
    Q_UNUSED(encoder)
    qCCritical(eas()) << "No implementation";
}
