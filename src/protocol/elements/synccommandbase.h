// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/exchangeactivesync.h"
#include "protocol/wbxml/asprotocolitem.h"

/** One kind of local change, or of wish, that goes up with a collection. Owned by its SyncCollections. */
class SyncCommandBase : public AsProtocolItem
{
    Q_OBJECT

public:
    enum Type : int { AddCommand = 0, DeleteCommand = 1, ChangeCommand = 2, FetchCommand = 3 };
    Q_ENUM(Type)

    explicit SyncCommandBase(QObject *parent = nullptr);

    virtual Type type() const = 0;

    using AsProtocolItem::encode;
    virtual void encode(WbxmlEncoder &encoder, ExchangeActiveSync::ProtocolVersion version) const = 0;
};
