// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/contactfixture.h"

#include "storages/contacts/contactstoremanager.h"

#include <qtcontacts-extensions.h>

#include <QtContacts/QContactCollectionFilter>
#include <QtContacts/QContactName>

QTCONTACTS_USE_NAMESPACE

QString ContactFixture::Changes::counts() const
{
    return QStringLiteral("%1 %2 %3 %4")
        .arg(added.size())
        .arg(modified.size())
        .arg(deleted.size())
        .arg(unmodified.size());
}

ContactFixture::ContactFixture()
{
    empty();
    mManager.reset(ContactStoreManager::create(nullptr));
}

void ContactFixture::empty()
{
    // By a manager of its own, which ends before the test's begins: that one does not hear of it.
    const std::unique_ptr<QContactManager> manager(ContactStoreManager::create(nullptr));
    if (!manager)
        return;
    auto *engine = QtContactsSqliteExtensions::contactManagerEngine(*manager);
    manager->removeContacts(manager->contactIds());
    const QContactCollectionId own = manager->defaultCollectionId();
    const QList<QContactCollection> collections = manager->collections();
    for (const QContactCollection &collection : collections) {
        QContactManager::Error error = QContactManager::NoError;
        if (collection.id() != own && manager->removeCollection(collection.id()))
            engine->clearChangeFlags(collection.id(), &error);
    }
}

ContactFixture::Engine *ContactFixture::engine() const
{
    return QtContactsSqliteExtensions::contactManagerEngine(*mManager);
}

QContactCollection ContactFixture::addCollection(const QString &name, const QVariantMap &extended) const
{
    QContactCollection collection;
    collection.setMetaData(QContactCollection::KeyName, name);
    for (auto it = extended.cbegin(); it != extended.cend(); ++it)
        collection.setExtendedMetaData(it.key(), it.value());
    mManager->saveCollection(&collection);
    return collection;
}

QContact ContactFixture::addContact(const QContactCollectionId &collection, const QString &firstName) const
{
    QContact contact = named(firstName);
    contact.setCollectionId(collection);
    mManager->saveContact(&contact);
    return contact;
}

ContactFixture::Changes ContactFixture::changes(const QContactCollectionId &collection) const
{
    Changes changes;
    QContactManager::Error error = QContactManager::NoError;
    engine()->fetchContactChanges(
        collection, &changes.added, &changes.modified, &changes.deleted, &changes.unmodified, &error);
    return changes;
}

QList<QContact> ContactFixture::contacts(const QContactCollectionId &collection) const
{
    QContactCollectionFilter filter;
    filter.setCollectionId(collection);
    return mManager->contacts(filter);
}

QStringList ContactFixture::names(const QList<QContact> &contacts)
{
    QStringList list;
    for (const QContact &contact : contacts)
        list.append(name(contact));
    list.sort();
    return list;
}

QString ContactFixture::name(const QContact &contact)
{
    return contact.detail<QContactName>().firstName();
}

QContact ContactFixture::named(const QString &firstName)
{
    QContact contact;
    QContactName name;
    name.setFirstName(firstName);
    contact.saveDetail(&name);
    return contact;
}
