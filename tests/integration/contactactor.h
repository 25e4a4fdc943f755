// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "integration/itemactor.h"
#include "support/contactfixture.h"

class SyncTestBed;

namespace Simulator {
class Contact;
}

/** Contacts of two folders are made, changed in one field or another, moved and deleted. */
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
    void changeOnServer(Simulator::Contact &contact, int what, Dice &dice);
    void changeOnDevice(QtContacts::QContact &contact, int what, Dice &dice);

    ContactFixture mStore;
    SyncTestBed &mBed;
    /** Server identifiers of the two folders of contacts. */
    const QStringList mFolders;
    int mCreated = 0;
    int mPictures = 0;
};
