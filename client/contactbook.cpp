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
    if (!mManager)
        Output::error(QStringLiteral("the contact store cannot be opened"));
    return mManager != nullptr;
}

QList<QContactCollection> ContactBook::collections() const
{
    QList<QContactCollection> own;
    const QList<QContactCollection> all = mManager->collections();
    for (const QContactCollection &collection : all) {
        // The store cuts the number of an account.
        const bool isOwn = collection.extendedMetaData(QStringLiteral("AccountId")).toInt() == int(mAccountId)
            && collection.extendedMetaData(QStringLiteral("ApplicationName")).toString()
                == QLatin1String("fennel-eas");
        if (isOwn)
            own.append(collection);
    }
    return own;
}

std::optional<QContactCollection> ContactBook::collection(const QString &wanted) const
{
    const QList<QContactCollection> own = collections();
    for (const QContactCollection &collection : own) {
        const bool isMeant = wanted.isEmpty()
            ? own.size() == 1 || isDefault(collection)
            : collection.id().toString() == wanted || name(collection) == wanted;
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

QList<QContact> ContactBook::contacts(const std::optional<QContactCollection> &collection) const
{
    const QList<QContactCollection> wanted =
        collection ? QList<QContactCollection> { *collection } : collections();
    QSet<QContactCollectionId> ids;
    for (const QContactCollection &one : wanted)
        ids.insert(one.id());
    if (ids.isEmpty())
        return {};
    QContactCollectionFilter filter;
    filter.setCollectionIds(ids);
    QList<QContact> found = mManager->contacts(filter);
    std::sort(found.begin(), found.end(), [](const QContact &left, const QContact &right) {
        return QString::localeAwareCompare(ContactView::name(left), ContactView::name(right)) < 0;
    });
    return found;
}

QString ContactBook::number(const QContact &contact)
{
    const QString localId = QString::fromUtf8(contact.id().localId());
    return localId.mid(localId.indexOf(QLatin1Char('-')) + 1);
}

QContact ContactBook::find(const QString &wanted) const
{
    const QList<QContact> all = contacts();
    for (const QContact &contact : all) {
        if (number(contact) == wanted)
            return contact;
    }
    Output::error(QStringLiteral("there is no contact %1").arg(wanted));
    return {};
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
