// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/contacts/contactcases.h"
#include "storages/contacts/contactfolderrows.h"
#include "storages/contacts/contactitemplan.h"

#include <QtContacts/QContact>
#include <QtContacts/QContactCollection>

#include <QList>
#include <QMap>

struct ContactStoreContext;

/** Contacts of a folder without a row of the mapping, and what tells a contact's case. */
class ContactStrays
{
public:
    explicit ContactStrays(const ContactStoreContext &context);

    /** Contacts of the collection that have no row. False if the store could not be asked. */
    bool find(const QtContacts::QContactCollection &collection, const ContactFolderRows &rows,
        QList<QtContacts::QContact> *strays) const;

    /** Those of them that came from the server, by their server identifiers. */
    QMap<QString, ContactFolderState::Stray> byServerId(const QList<QtContacts::QContact> &strays) const;

    ContactCases::State state(const QtContacts::QContact &contact, bool hasRow) const;
    /** The server identifier that the contact came with; empty if it was made on the device. */
    QString originOf(const QtContacts::QContact &contact) const;

    /** What the user changed and the server does not know yet. */
    static bool isEdited(const QtContacts::QContact &contact);

private:
    const ContactStoreContext &mContext;
};
