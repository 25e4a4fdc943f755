// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/contactsync.h"

#include "internal/contactids.h"
#include "internal/detailcodec.h"

#include <qcontactstatusflags.h>

QTCONTACTS_USE_NAMESPACE

ContactSync::ContactSync(ContactTable &contacts, CollectionTable &collections, ContactChanges &changes)
    : mContacts(contacts)
    , mCollections(collections)
    , mChanges(changes)
{
}

ContactSync::Error ContactSync::store(const ContactsByCollection &added, const ContactsByCollection &modified,
    const QList<QContactCollectionId> &deleted, bool clearsFlags)
{
    Error result = storeAdded(added);
    if (result == QContactManager::NoError)
        result = storeModified(modified);
    for (int i = 0; i < deleted.size() && result == QContactManager::NoError; ++i)
        result = removeCollection(ContactIds::number(deleted.at(i)));

    QList<QContactCollectionId> touched;
    if (clearsFlags) {
        for (const QContactCollection *collection : added.keys() + modified.keys())
            touched.append(collection->id());
    }
    // Nothing is left to be told of collections that are removed here.
    touched += deleted;
    for (int i = 0; i < touched.size() && result == QContactManager::NoError; ++i)
        result = clearCollectionFlags(ContactIds::number(touched.at(i)));
    return result;
}

ContactSync::Error ContactSync::storeAdded(const ContactsByCollection &collections)
{
    for (auto it = collections.cbegin(); it != collections.cend(); ++it) {
        if (!it.key()->id().isNull())
            return QContactManager::BadArgumentError;
        if (!mCollections.insert(it.key(), CollectionTable::Synchronised))
            return QContactManager::UnspecifiedError;
        const quint64 number = ContactIds::number(it.key()->id());
        mChanges.add(ContactChanges::CollectionsAdded, number);
        QList<QContact> stored;
        for (const QContact &contact : qAsConst(*it.value())) {
            const Error error = insert(contact, number, &stored);
            if (error != QContactManager::NoError)
                return error;
        }
        *it.value() = stored;
    }
    return QContactManager::NoError;
}

ContactSync::Error ContactSync::storeModified(const ContactsByCollection &collections)
{
    for (auto it = collections.cbegin(); it != collections.cend(); ++it) {
        const quint64 number = ContactIds::number(it.key()->id());
        if (number == 0)
            return QContactManager::BadArgumentError;
        if (!mCollections.exists(number) || !mCollections.update(*it.key(), CollectionTable::Synchronised))
            return QContactManager::DoesNotExistError;
        mChanges.add(ContactChanges::CollectionsChanged, number);
        const Error error = storeByFlags(number, it.value());
        if (error != QContactManager::NoError)
            return error;
    }
    return QContactManager::NoError;
}

ContactSync::Error ContactSync::storeByFlags(quint64 collection, QList<QContact> *contacts)
{
    // Contacts without a flag are passed over, and are gone from the list afterwards.
    QList<QContact> inserted;
    QList<QContact> updated;
    QList<QContact> removed;
    for (const QContact &contact : qAsConst(*contacts)) {
        const auto flags = contact.detail<QContactStatusFlags>();
        Error error = QContactManager::NoError;
        if (flags.testFlag(QContactStatusFlags::IsDeleted))
            error = remove(contact, collection, &removed);
        else if (flags.testFlag(QContactStatusFlags::IsAdded))
            error = insert(contact, collection, &inserted);
        else if (flags.testFlag(QContactStatusFlags::IsModified))
            error = update(contact, collection, &updated);
        if (error != QContactManager::NoError)
            return error;
    }
    *contacts = inserted + updated + removed;
    return QContactManager::NoError;
}

ContactSync::Error ContactSync::insert(QContact contact, quint64 collection, QList<QContact> *stored)
{
    const Error error = DetailCodec::check(contact);
    if (error != QContactManager::NoError)
        return error;
    if (!mContacts.insert(&contact, collection, ContactTable::Synchronised))
        return QContactManager::UnspecifiedError;
    mChanges.add(ContactChanges::ContactsAdded, ContactIds::number(contact.id()));
    mChanges.add(ContactChanges::CollectionContactsChanged, collection);
    stored->append(contact);
    return QContactManager::NoError;
}

ContactSync::Error ContactSync::update(const QContact &contact, quint64 collection, QList<QContact> *stored)
{
    const Error error = DetailCodec::check(contact);
    if (error != QContactManager::NoError)
        return error;
    const quint64 number = ContactIds::number(contact.id());
    if (mContacts.collectionOf(number) != collection)
        return QContactManager::DoesNotExistError;
    if (!mContacts.update(contact, ContactTable::Synchronised))
        return QContactManager::UnspecifiedError;
    mChanges.add(ContactChanges::ContactsChanged, number);
    mChanges.add(ContactChanges::CollectionContactsChanged, collection);
    stored->append(contact);
    return QContactManager::NoError;
}

ContactSync::Error ContactSync::remove(const QContact &contact, quint64 collection, QList<QContact> *stored)
{
    const quint64 number = ContactIds::number(contact.id());
    // Somebody may have removed it here in the meantime.
    const bool isThere = mContacts.collectionOf(number) == collection;
    if (isThere) {
        mChanges.add(ContactChanges::ContactsRemoved, number);
        mChanges.add(ContactChanges::CollectionContactsChanged, collection);
    }
    if (number == 0)
        return QContactManager::DoesNotExistError;
    if (!mContacts.remove(number, ContactTable::Synchronised) && isThere)
        return QContactManager::UnspecifiedError;
    stored->append(contact);
    return QContactManager::NoError;
}

ContactSync::Error ContactSync::removeCollection(quint64 number)
{
    if (number <= ContactIds::localCollection)
        return QContactManager::BadArgumentError;
    if (!mCollections.exists(number))
        return QContactManager::DoesNotExistError;
    QList<quint64> contacts;
    if (!mContacts.removeAll(number, &contacts) || !mCollections.markDeleted(number))
        return QContactManager::UnspecifiedError;
    for (const quint64 contact : qAsConst(contacts))
        mChanges.add(ContactChanges::ContactsRemoved, contact);
    if (!contacts.isEmpty())
        mChanges.add(ContactChanges::CollectionContactsChanged, number);
    mChanges.add(ContactChanges::CollectionsRemoved, number);
    return QContactManager::NoError;
}

ContactSync::Error ContactSync::clearCollectionFlags(quint64 number)
{
    bool markedDeleted = false;
    if (!mCollections.readMarkedDeleted(number, &markedDeleted))
        return QContactManager::UnspecifiedError;
    const bool cleared = markedDeleted ? mContacts.purgeAll(number) && mCollections.purge(number)
                                       : mContacts.clearAllFlags(number) && mCollections.clearFlags(number);
    return cleared ? QContactManager::NoError : QContactManager::UnspecifiedError;
}
