// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/contactbook.h"

#include "client/contactview.h"
#include "client/output.h"
#include "easitems/easfolderitem.h"
#include "storages/contacts/contactstoremanager.h"

#include <QtContacts/QContactCollectionFilter>

#include <algorithm>

QTCONTACTS_USE_NAMESPACE

namespace {

bool isDefault(const QContactCollection &collection)
{
    return collection.extendedMetaData(QStringLiteral("FolderType")).toInt()
        == EasFolderItem::DefaultContactsFolder;
}

} // namespace

ContactBook::ContactBook(EasAccountId accountId)
    : mAccountId(accountId)
{
}

ContactBook::~ContactBook() = default;

bool ContactBook::open()
{
    mManager.reset(ContactStoreManager::create(nullptr));
    const QList<QContactCollection> all = mManager ? mManager->collections() : QList<QContactCollection>();
    if (!mManager || mManager->error() != QContactManager::NoError) {
        Output::error(QStringLiteral("the contact store cannot be opened"));
        return false;
    }
    for (const QContactCollection &collection : all) {
        // The store cuts the number of an account.
        const bool isOwn = collection.extendedMetaData(QStringLiteral("AccountId")).toInt() == int(mAccountId)
            && collection.extendedMetaData(QStringLiteral("ApplicationName")).toString()
                == QLatin1String("fennel-eas");
        if (isOwn)
            mCollections.append(collection);
    }
    return true;
}

std::optional<QContactCollection> ContactBook::collection(const QString &wanted) const
{
    const QList<QContactCollection> &own = mCollections;
    for (const QContactCollection &collection : own) {
        const bool isMeant = wanted.isEmpty() ? own.size() == 1 || isDefault(collection)
                                              : collection.id().toString() == wanted
                || name(collection).compare(wanted, Qt::CaseInsensitive) == 0;
        if (isMeant)
            return collection;
    }
    if (own.isEmpty())
        Output::error(QStringLiteral("there is no folder of contacts; fennel-easctl sync brings them"));
    else
        Output::error(wanted.isEmpty()
                ? QStringLiteral("there are several folders of contacts; name one with --folder")
                : QStringLiteral("there is no folder of contacts \"%1\"").arg(wanted));
    return std::nullopt;
}

QString ContactBook::name(const QContactCollection &collection)
{
    return collection.metaData(QContactCollection::KeyName).toString();
}

bool ContactBook::contacts(
    const std::optional<QContactCollection> &collection, QList<QContact> *contacts) const
{
    const QList<QContactCollection> wanted =
        collection ? QList<QContactCollection> { *collection } : mCollections;
    QSet<QContactCollectionId> ids;
    for (const QContactCollection &one : wanted)
        ids.insert(one.id());
    contacts->clear();
    if (ids.isEmpty())
        return true;
    QContactCollectionFilter filter;
    filter.setCollectionIds(ids);
    *contacts = mManager->contacts(filter);
    if (mManager->error() != QContactManager::NoError) {
        Output::error(QStringLiteral("the contacts cannot be read from their store"));
        return false;
    }
    std::sort(contacts->begin(), contacts->end(), [](const QContact &left, const QContact &right) {
        return QString::localeAwareCompare(ContactView::name(left), ContactView::name(right)) < 0;
    });
    return true;
}

QString ContactBook::number(const QContact &contact)
{
    const QString localId = QString::fromUtf8(contact.id().localId());
    return localId.mid(localId.indexOf(QLatin1Char('-')) + 1);
}

bool ContactBook::save(QContact *contact)
{
    if (mManager->saveContact(contact))
        return true;
    Output::error(QStringLiteral("the contact store refused the change"));
    return false;
}

bool ContactBook::remove(const QContact &contact)
{
    if (mManager->removeContact(contact.id()))
        return true;
    Output::error(QStringLiteral("the contact store refused the change"));
    return false;
}
