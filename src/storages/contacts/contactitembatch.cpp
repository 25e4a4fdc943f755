// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactitembatch.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "storages/contacts/contactstorecontext.h"

#include <QtContacts/QContactAvatar>

QTCONTACTS_USE_NAMESPACE

ContactItemBatch::ContactItemBatch(const ContactStoreContext &context)
    : mContext(context)
    , mFolders(context)
    , mStrays(context)
    , mStore(context)
    , mWriter(context)
{
}

bool ContactItemBatch::updateItems(const QString &folderServerId, QList<EasContactsItem> &added,
    QList<EasContactsItem> &changed, const QStringList &deleted)
{
    if (!mContext.manager) {
        qCCritical(eas()) << "The contact manager is not initialized";
        return false;
    }
    const ContactFolders::Lookup folder = mFolders.find(folderServerId);
    if (!folder.complete || !readState(folder.collection, folderServerId))
        return false;
    const ContactItemPlan plan(mState, added, changed, deleted);
    for (const QString &serverId : plan.unknown())
        qCWarning(eas()) << "Cannot map contact with identifer " << serverId;
    qCDebug(eas()) << "Need to add " << added.size();
    if (!carryOut(plan, folderServerId, folder.collection)) {
        mWriter.dropAvatars();
        return false;
    }
    added.clear();
    changed.clear();
    for (const ContactItemPlan::Entry &entry : qAsConst(mEntries))
        (entry.hasRow ? changed : added).append(entry.item);
    return true;
}

bool ContactItemBatch::readState(
    const std::optional<QContactCollection> &collection, const QString &folderServerId)
{
    const auto rows = ContactFolderRows::read(mContext.accountId, folderServerId);
    QList<QContact> strays;
    if (!rows || (collection && !mStrays.find(*collection, *rows, &strays)))
        return false;
    mState = { *rows, mStrays.byServerId(strays), !collection };
    return true;
}

bool ContactItemBatch::carryOut(
    const ContactItemPlan &plan, const QString &folderServerId, std::optional<QContactCollection> collection)
{
    Contacts contacts;
    Departures departures;
    if (!prepareContacts(plan, &contacts) || !handleDeletedContacts(plan, &departures))
        return false;
    if (!collection)
        collection = mFolders.recreate(folderServerId);
    if (!collection || !mStore.store(*collection, contacts))
        return false;
    mWriter.keepAvatars();
    takeLocalIds(contacts);
    return removeContacts(folderServerId, *collection, departures);
}

bool ContactItemBatch::prepareContacts(const ContactItemPlan &plan, Contacts *contacts)
{
    mEntries = plan.entries();
    for (int i = 0; i < mEntries.size(); ++i) {
        if (!mEntries.at(i).isStored)
            continue;
        EasContactsItem &item = mEntries[i].item;
        const QContact contact = mWriter.prepareContact(item);
        if (contact.isEmpty())
            qCWarning(eas()) << "Empty contact prepared for " << item.serverId() << " at " << i;
        else
            contacts->append(contact);
    }
    return !mWriter.hasFailed();
}

bool ContactItemBatch::handleDeletedContacts(const ContactItemPlan &plan, Departures *departures) const
{
    for (const ContactItemPlan::Deletion &deletion : plan.deletions()) {
        const QContactId id = QContactId::fromString(deletion.localId);
        if (id.isNull())
            continue;
        QContact contact;
        if (!mContext.read(id, &contact))
            return false;
        qCDebug(eas()) << "Contact " << id << " to remove";
        departures->ids.append(id);
        if (!mStrays.originOf(contact).isEmpty())
            departures->signedIds.append(deletion.serverId);
        for (const QUrl &url : { deletion.avatar, contact.detail<QContactAvatar>().imageUrl() }) {
            if (url.isEmpty() || departures->avatars.contains(url))
                continue;
            qCDebug(eas()) << "Avatar file " << url.toLocalFile();
            departures->avatars.append(url);
        }
    }
    return true;
}

bool ContactItemBatch::removeContacts(
    const QString &folderServerId, const QContactCollection &collection, const Departures &departures) const
{
    // Until its flags are cleared the store tells a contact that was removed here from none that the user has
    // removed; without a row it is not taken for the user's.
    return (departures.signedIds.isEmpty()
               || EasDatabase::instance()->deleteContactsItems(
                   mContext.accountId, departures.signedIds, folderServerId))
        && mStore.remove(collection, departures.ids, departures.avatars);
}

void ContactItemBatch::takeLocalIds(const Contacts &stored)
{
    QMap<QString, QContactId> ids;
    for (const QContact &contact : stored)
        ids.insert(mStrays.originOf(contact), contact.id());
    for (ContactItemPlan::Entry &entry : mEntries) {
        EasContactsItem &item = entry.item;
        const QContactId id = ids.value(item.serverId());
        if (id.isNull() || item.localId() == id.toString())
            continue;
        item.setLocalId(id.toString());
        qCDebug(eas()) << "New contact " << id << " was saved for item " << item.serverId();
    }
}
