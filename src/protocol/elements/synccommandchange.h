// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/elements/synccommandadd.h"

/** Uploads changed items. A mail of which only the read mark changed goes as that mark alone. */
class SyncCommandChange : public SyncCommandAdd
{
    Q_OBJECT

public:
    explicit SyncCommandChange(QObject *parent = nullptr);

    Type type() const override;

protected:
    void encodeEmailItem(const EasEmailItem &item, WbxmlEncoder &encoder,
        ExchangeActiveSync::ProtocolVersion version) const override;
};
