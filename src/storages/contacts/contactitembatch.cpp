// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactitembatch.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "storages/contacts/contactstorecontext.h"

#include <QtContacts/QContactAvatar>
#include <QtContacts/QContactGuid>
#include <QtContacts/QContactManager>

#include <QHash>

QTCONTACTS_USE_NAMESPACE

ContactItemBatch::ContactItemBatch(const ContactStoreContext &context)
    : mContext(context)
    , mFolders(context)
    , mStrays(context)
    , mWriter(context)
{
}

bool ContactItemBatch::updateItems(const QString &folderServerId, QList<EasContactsItem> &added,
    QList<EasContactsItem> &changed, const QStringList &deleted)
{
    ContactFolders::Lookup folder = mFolders.find(folderServerId);
    if (!folder.complete || !readMapping() || !findStrays(folder.collection))
        return false;
    mCollectionIsNew = !folder.collection;
    sortOut(added, changed);

    Contacts contacts;
    QList<QContactId> contactsToDelete;
    QList<QUrl> avatarFiles;
    bool stored = handleAddedContacts(added, contacts) && handleUpdatedContacts(changed, contacts)
        && handleDeletedContacts(deleted, contactsToDelete, avatarFiles);
    if (stored && !folder.collection)
        folder.collection = mFolders.recreate(folderServerId);
    stored = stored && folder.collection && store(*folder.collection, contacts);
    if (!stored) {
        mWriter.dropAvatars();
        return false;
    }
    mWriter.keepAvatars();
    takeLocalIds(contacts, added);
    takeLocalIds(contacts, changed);
    return mStrays.removeContacts(*folder.collection, contactsToDelete, avatarFiles);
}

bool ContactItemBatch::readMapping()
{
    EasDatabase *database = EasDatabase::instance();
    mServerToLocal = database->serverToLocalContactIds(mContext.accountId);
    if (database->lookupFailed())
        return false;
    mAvatars = database->localContactIdsToAvatarsUrls(mContext.accountId);
    return !database->lookupFailed();
}

bool ContactItemBatch::findStrays(const std::optional<QContactCollection> &collection)
{
    QList<QContact> strays;
    if (collection && !mStrays.find(*collection, &strays))
        return false;
    mAdoptable = mStrays.byServerId(strays);
    return true;
}

void ContactItemBatch::sortOut(QList<EasContactsItem> &added, QList<EasContactsItem> &changed) const
{
    QList<EasContactsItem> toAdd;
    QList<EasContactsItem> toChange;
    QHash<QString, int> places;
    const auto sort = [&](const EasContactsItem &item) {
        QList<EasContactsItem> &list = mServerToLocal.contains(item.serverId()) ? toChange : toAdd;
        const auto place = places.constFind(item.serverId());
        if (place != places.constEnd()) {
            list[*place] = item; // what a reply says last holds
            return;
        }
        places.insert(item.serverId(), list.size());
        list.append(item);
    };
    for (const EasContactsItem &item : qAsConst(added))
        sort(item);
    for (const EasContactsItem &item : qAsConst(changed)) {
        if (!mServerToLocal.contains(item.serverId()))
            qCWarning(eas()) << "Cannot map contact with identifer " << item.serverId();
        sort(item);
    }
    added = toAdd;
    changed = toChange;
}

bool ContactItemBatch::handleAddedContacts(QList<EasContactsItem> &items, Contacts &contacts)
{
    if (!mContext.manager) {
        qCCritical(eas()) << "The contact manager is not initialized";
        return false;
    }
    qCDebug(eas()) << "Need to add " << items.size();
    for (int i = 0; i < items.size(); ++i) {
        const QContact adopted = mAdoptable.value(items.at(i).serverId());
        items[i].setLocalId(adopted.id().isNull() ? QString() : adopted.id().toString());
        if (!adopted.id().isNull() && ContactStrays::hasLocalChange(adopted)) {
            // Mapped as it is, it goes up as a change; what the user made of it is the newer one.
            items[i].setAvatarUrl(adopted.detail<QContactAvatar>().imageUrl());
            continue;
        }
        prepare(items[i], i, contacts);
    }
    return !mWriter.hasFailed();
}

bool ContactItemBatch::handleUpdatedContacts(QList<EasContactsItem> &items, Contacts &contacts)
{
    for (int i = 0; i < items.size(); ++i) {
        const QString localId = mServerToLocal.value(items.at(i).serverId());
        items[i].setLocalId(mCollectionIsNew ? QString() : localId);
        items[i].setAvatarUrl(mAvatars.value(localId));
        prepare(items[i], i, contacts);
    }
    return !mWriter.hasFailed();
}

void ContactItemBatch::prepare(EasContactsItem &item, int index, Contacts &contacts)
{
    const QContact contact = mWriter.prepareContact(item);
    if (contact.isEmpty())
        qCWarning(eas()) << "Empty contact prepared for " << item.serverId() << " at " << index;
    else
        contacts.append(contact);
}

bool ContactItemBatch::handleDeletedContacts(
    const QStringList &serverIds, QList<QContactId> &contacts, QList<QUrl> &avatarFiles) const
{
    for (const QString &serverId : serverIds) {
        const QString localId = mServerToLocal.value(serverId);
        const QContactId id = mServerToLocal.contains(serverId) ? QContactId::fromString(localId)
                                                                : mAdoptable.value(serverId).id();
        if (id.isNull()) {
            qCWarning(eas()) << "Cannot map contact with identifer " << serverId;
            continue;
        }
        QContact contact;
        if (!mContext.read(id, &contact))
            return false;
        qCDebug(eas()) << "Contact " << id << " to remove";
        contacts.append(id);
        for (const QUrl &url : { mAvatars.value(localId), contact.detail<QContactAvatar>().imageUrl() }) {
            if (url.isEmpty() || avatarFiles.contains(url))
                continue;
            qCDebug(eas()) << "Avatar file " << url.toLocalFile();
            avatarFiles.append(url);
        }
    }
    return true;
}

bool ContactItemBatch::store(const QContactCollection &collection, Contacts &contacts) const
{
    if (contacts.isEmpty())
        return true;
    auto *engine = mContext.engine();
    QContactCollection target = collection;
    QHash<QContactCollection *, Contacts *> modified { { &target, &contacts } };
    QContactManager::Error error = QContactManager::UnspecifiedError;
    // The flags stay: changes that the user made since they were fetched are among them.
    const bool stored = engine
        && engine->storeChanges(nullptr, &modified, {},
            QtContactsSqliteExtensions::ContactManagerEngine::PreserveRemoteChanges, false, &error);
    if (!stored)
        qCCritical(eas()) << "Failed to save contact changes for collection: " << collection.id() << error;
    return stored;
}

void ContactItemBatch::takeLocalIds(const Contacts &stored, QList<EasContactsItem> &items) const
{
    QMap<QString, QContactId> ids;
    for (const QContact &contact : stored)
        ids.insert(mStrays.serverIdOf(contact), contact.id());
    for (EasContactsItem &item : items) {
        const QContactId id = ids.value(item.serverId());
        if (id.isNull() || item.localId() == id.toString())
            continue;
        item.setLocalId(id.toString());
        qCDebug(eas()) << "New contact " << id << " was saved for item " << item.serverId();
    }
}
