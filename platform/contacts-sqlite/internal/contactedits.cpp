// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/contactedits.h"

#include "internal/contactids.h"
#include "internal/detailcodec.h"

QTCONTACTS_USE_NAMESPACE

namespace {

void takeDetails(QContact &contact, const QContact &from, const QList<QContactDetail::DetailType> &types)
{
    for (const QContactDetail::DetailType type : types) {
        const QList<QContactDetail> old = contact.details(type);
        for (QContactDetail detail : old)
            contact.removeDetail(&detail, QContact::IgnoreAccessConstraints);
        const QList<QContactDetail> now = from.details(type);
        for (QContactDetail detail : now)
            contact.saveDetail(&detail, QContact::IgnoreAccessConstraints);
    }
}

} // namespace

ContactEdits::ContactEdits(ContactTable &contacts, CollectionTable &collections, ContactChanges &changes)
    : mContacts(contacts)
    , mCollections(collections)
    , mChanges(changes)
{
}

ContactEdits::Error ContactEdits::save(QContact &contact, const QList<QContactDetail::DetailType> &typeMask)
{
    Error error = DetailCodec::check(contact);
    if (error != QContactManager::NoError)
        return error;
    quint64 collection = ContactIds::number(contact.collectionId());
    error = contact.id().isNull() ? insert(contact, &collection) : update(contact, typeMask, &collection);
    if (error != QContactManager::NoError)
        return error;
    // What the store has made of it: times, label, flags.
    contact = mContacts.contact(ContactIds::number(contact.id()));
    mChanges.add(ContactChanges::CollectionContactsChanged, collection);
    return QContactManager::NoError;
}

ContactEdits::Error ContactEdits::insert(QContact &contact, quint64 *collection)
{
    if (*collection == 0)
        *collection = ContactIds::localCollection;
    if (*collection == ContactIds::aggregateCollection || !mCollections.exists(*collection))
        return QContactManager::BadArgumentError;
    if (!mContacts.insert(&contact, *collection, ContactTable::Local))
        return QContactManager::UnspecifiedError;
    mChanges.add(ContactChanges::ContactsAdded, ContactIds::number(contact.id()));
    return QContactManager::NoError;
}

ContactEdits::Error ContactEdits::update(
    const QContact &contact, const QList<QContactDetail::DetailType> &typeMask, quint64 *collection)
{
    const quint64 number = ContactIds::number(contact.id());
    QContact merged = mContacts.contact(number);
    if (merged.id().isNull())
        return QContactManager::DoesNotExistError;
    const quint64 present = ContactIds::number(merged.collectionId());
    if (*collection != 0 && *collection != present)
        return QContactManager::BadArgumentError;
    *collection = present;
    if (typeMask.isEmpty())
        merged = contact;
    else
        takeDetails(merged, contact, typeMask);
    if (!mContacts.update(merged, ContactTable::Local))
        return QContactManager::UnspecifiedError;
    mChanges.add(ContactChanges::ContactsChanged, number);
    return QContactManager::NoError;
}

ContactEdits::Error ContactEdits::remove(const QContactId &id)
{
    const quint64 number = ContactIds::number(id);
    const quint64 collection = mContacts.collectionOf(number);
    if (collection == 0)
        return QContactManager::DoesNotExistError;
    // The device's own address book is not synchronised, so no flags of it are ever cleared.
    const bool isLocal = collection == ContactIds::localCollection;
    if (!(isLocal ? mContacts.purge(number) : mContacts.remove(number, ContactTable::Local)))
        return QContactManager::UnspecifiedError;
    mChanges.add(ContactChanges::ContactsRemoved, number);
    mChanges.add(ContactChanges::CollectionContactsChanged, collection);
    return QContactManager::NoError;
}

ContactEdits::Error ContactEdits::saveCollection(QContactCollection &collection)
{
    const bool isNew = collection.id().isNull();
    if (!isNew && !mCollections.exists(ContactIds::number(collection.id())))
        return QContactManager::DoesNotExistError;
    if (!(isNew ? mCollections.insert(&collection, CollectionTable::Local)
                : mCollections.update(collection, CollectionTable::Local)))
        return QContactManager::UnspecifiedError;
    mChanges.add(isNew ? ContactChanges::CollectionsAdded : ContactChanges::CollectionsChanged,
        ContactIds::number(collection.id()));
    return QContactManager::NoError;
}
