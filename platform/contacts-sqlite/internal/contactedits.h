// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "internal/collectiontable.h"
#include "internal/contactchanges.h"
#include "internal/contacttable.h"

#include <QtContacts/QContactManager>

/** The store as a program sees it that edits contacts for the user: each edit is a change that waits for
 * those who synchronise. Each call runs within a transaction of its caller. */
class ContactEdits
{
public:
    typedef QtContacts::QContactManager::Error Error;

    ContactEdits(ContactTable &contacts, CollectionTable &collections, ContactChanges &changes);

    /** Adds or updates, only the details of these types if any are named, and reads it back. */
    Error save(QtContacts::QContact &contact, const QList<QtContacts::QContactDetail::DetailType> &typeMask);
    Error remove(const QtContacts::QContactId &id);
    /** Adds or updates. */
    Error saveCollection(QtContacts::QContactCollection &collection);

private:
    Error insert(QtContacts::QContact &contact, quint64 *collection);
    Error update(const QtContacts::QContact &contact,
        const QList<QtContacts::QContactDetail::DetailType> &typeMask, quint64 *collection);

    ContactTable &mContacts;
    CollectionTable &mCollections;
    ContactChanges &mChanges;
};
