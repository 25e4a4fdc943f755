// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "integration/itemactor.h"

#include <QDate>
#include <QStringList>

class DeviceCalendar;
class SyncTestBed;

/** Events and series of each kind are made in two calendars, moved between them, relabelled and deleted, and
 * single occurrences too. */
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
    /** The server's identifiers of the two calendars. */
    const QStringList mFolders;
    int mCreated = 0;
};
