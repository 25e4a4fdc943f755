// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "integration/itemactor.h"
#include "support/contactfixture.h"

class SyncTestBed;

/** Contacts are made, changed in one field or another, and deleted. */
class ContactActor : public ItemActor
{
public:
    explicit ContactActor(SyncTestBed &bed);

    Edit editServer(Dice &dice, const QSet<QString> &delicate) override;
    Edit editDevice(Dice &dice, const QSet<QString> &delicate) override;
    State serverState() override;
    State deviceState() override;

private:
    Edit createOnServer(Dice &dice);
    Edit createOnDevice(Dice &dice);
    QString newName();

    ContactFixture mStore;
    SyncTestBed &mBed;
    int mCreated = 0;
    int mPictures = 0;
};
