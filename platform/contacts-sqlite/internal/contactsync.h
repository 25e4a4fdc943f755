// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "internal/collectiontable.h"
#include "internal/contactchanges.h"
#include "internal/contacttable.h"

#include <QtContacts/QContactManager>

#include <QHash>

/** The store as somebody sees it who synchronises a collection: changes apart, and stores that leave no
 * change. Each call runs within a transaction of its caller. */
class ContactSync
{
public:
    typedef QHash<QtContacts::QContactCollection *, QList<QtContacts::QContact> *> ContactsByCollection;
    typedef QtContacts::QContactManager::Error Error;

    ContactSync(ContactTable &contacts, CollectionTable &collections, ContactChanges &changes);

    /** All of it or, with an error, something that is not to be committed. */
    Error store(const ContactsByCollection &added, const ContactsByCollection &modified,
        const QList<QtContacts::QContactCollectionId> &deleted, bool clearsFlags);
    Error removeCollection(quint64 number);
    /** Of the collection and its contacts; purges what is deleted. */
    Error clearCollectionFlags(quint64 number);

private:
    Error storeAdded(const ContactsByCollection &collections);
    Error storeModified(const ContactsByCollection &collections);
    Error insert(QtContacts::QContact contact, quint64 collection, QList<QtContacts::QContact> *stored);
    Error update(
        const QtContacts::QContact &contact, quint64 collection, QList<QtContacts::QContact> *stored);
    Error remove(
        const QtContacts::QContact &contact, quint64 collection, QList<QtContacts::QContact> *stored);
    Error storeByFlags(quint64 collection, QList<QtContacts::QContact> *contacts);

    ContactTable &mContacts;
    CollectionTable &mCollections;
    ContactChanges &mChanges;
};
