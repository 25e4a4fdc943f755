// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactstorecalls.h"

#include "application/base/logging.h"
#include "storages/contacts/contactavatars.h"
#include "storages/contacts/contactsecondname.h"
#include "storages/contacts/contactstorecontext.h"

#include <qcontactstatusflags.h>

QTCONTACTS_USE_NAMESPACE

namespace {

/** The contact's own detail: beside a second one the store would not look at the flag. */
void setFlag(QContact &contact, QContactStatusFlags::Flag flag)
{
    auto flags = contact.detail<QContactStatusFlags>();
    flags.setFlag(flag, true);
    contact.saveDetail(&flags, QContact::IgnoreAccessConstraints);
}

} // namespace

ContactStoreCalls::ContactStoreCalls(const ContactStoreContext &context)
    : mContext(context)
{
}

bool ContactStoreCalls::store(const QContactCollection &collection, Contacts &contacts) const
{
    if (contacts.isEmpty())
        return true;
    const Contacts asTheyCame = contacts;
    QContactManager::Error error = QContactManager::UnspecifiedError;
    bool stored = storeChanges(collection, contacts, &error);
    if (!stored && error == QContactManager::LimitReachedError) {
        // Not every release of the store takes two names, and one such contact keeps out all of the list.
        qCWarning(eas()) << "the contact store takes one name of a contact, storing the second ones as texts";
        contacts = ContactSecondName::asTexts(asTheyCame);
        stored = storeChanges(collection, contacts, &error);
    }
    if (!stored)
        qCCritical(eas()) << "Failed to save contact changes for collection: " << collection.id() << error;
    return stored;
}

bool ContactStoreCalls::storeChanges(
    const QContactCollection &collection, Contacts &contacts, QContactManager::Error *error) const
{
    auto *engine = mContext.engine();
    QContactCollection target = collection;
    QHash<QContactCollection *, Contacts *> modified { { &target, &contacts } };
    // The flags stay: changes that the user made since they were fetched are among them.
    return engine
        && engine->storeChanges(nullptr, &modified, {},
            QtContactsSqliteExtensions::ContactManagerEngine::PreserveRemoteChanges, false, error);
}

bool ContactStoreCalls::rewrite(const QContactCollection &collection, Contacts contacts) const
{
    for (QContact &contact : contacts)
        setFlag(contact, QContactStatusFlags::IsModified);
    return store(collection, contacts);
}

bool ContactStoreCalls::remove(
    const QContactCollection &collection, const QList<QContactId> &ids, const QList<QUrl> &avatarFiles) const
{
    if (ids.isEmpty())
        return true;
    Contacts present;
    if (!readPresent(ids, &present))
        return false;
    for (QContact &contact : present)
        setFlag(contact, QContactStatusFlags::IsDeleted);
    QContactManager::Error error = QContactManager::UnspecifiedError;
    auto *engine = mContext.engine();
    if ((!present.isEmpty() && !storeChanges(collection, present, &error)) || !engine
        || !engine->clearChangeFlags(ids, &error)) {
        qCCritical(eas()) << "Failed to remove contacts with error: " << error;
        return false;
    }
    qCInfo(eas()) << ids.size() << " contacts were removed";
    ContactAvatars(mContext.accountId).removeAvatars(avatarFiles);
    return true;
}

bool ContactStoreCalls::readPresent(const QList<QContactId> &ids, Contacts *present) const
{
    for (const QContactId &id : ids) {
        QContact contact;
        if (!mContext.read(id, &contact))
            return false;
        if (!contact.id().isNull())
            present->append(contact);
    }
    return true;
}
