// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "integration/itemactor.h"

#include <QDate>

class DeviceCalendar;
class SyncTestBed;

/** Events and series are made, moved, relabelled and deleted, and single occurrences too. */
class EventActor : public ItemActor
{
public:
    explicit EventActor(SyncTestBed &bed);

    Edit editServer(Dice &dice, const QSet<QString> &delicate) override;
    Edit editDevice(Dice &dice, const QSet<QString> &delicate) override;
    State serverState() override;
    State deviceState() override;

private:
    Edit createOnServer(Dice &dice);
    Edit createOnDevice(Dice &dice, DeviceCalendar &device);
    QString newName();

    SyncTestBed &mBed;
    int mCreated = 0;
};
