// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/elements/synccommandbasic.h"

/** Asks for whole items within a Sync. */
class SyncCommandFetch : public SyncCommandBasic
{
    Q_OBJECT

public:
    explicit SyncCommandFetch(QObject *parent = nullptr);

    Type type() const override;
};
