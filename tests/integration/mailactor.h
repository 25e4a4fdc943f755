// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "integration/itemactor.h"

class SyncTestBed;

/** Mail arrives, is marked, moved and deleted in three folders. */
class MailActor : public ItemActor
{
public:
    explicit MailActor(SyncTestBed &bed);

    Edit editServer(Dice &dice, const QSet<QString> &delicate) override;
    Edit editDevice(Dice &dice, const QSet<QString> &delicate) override;
    State serverState() override;
    State deviceState() override;

private:
    Edit deliver(Dice &dice);
    static State fromLines(const QStringList &lines);

    SyncTestBed &mBed;
    int mDelivered = 0;
};
