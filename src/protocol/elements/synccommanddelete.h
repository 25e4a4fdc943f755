// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "protocol/elements/synccommandbasic.h"

/** Deletes items, or single occurrences of a series, on the server. */
class SyncCommandDelete : public SyncCommandBasic
{
    Q_OBJECT

public:
    explicit SyncCommandDelete(QObject *parent = nullptr);

    Type type() const override;
};
