// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactfolders.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/base/protocolutils.h"
#include "storages/contacts/contactavatars.h"
#include "storages/contacts/contactstorecontext.h"

#include <QtContacts/QContactAvatar>
#include <QtContacts/QContactManager>

QTCONTACTS_USE_NAMESPACE

namespace {

// The keys of a collection's metadata.
const auto accountIdKey = QStringLiteral("AccountId");
const auto applicationNameKey = QStringLiteral("ApplicationName");
const auto serverIdKey = QStringLiteral("ServerId");
const auto serverParentIdKey = QStringLiteral("ServerParentId");
const auto syncKeyKey = QStringLiteral("SyncKey");
const auto folderTypeKey = QStringLiteral("FolderType");
const auto sentAnewKey = QStringLiteral("SentAnew");

} // namespace

ContactFolders::ContactFolders(const ContactStoreContext &context)
    : mContext(context)
{
}

bool ContactFolders::belongsTo(
    const QContactCollection &collection, EasAccountId accountId, const QString &applicationName)
{
    // The store keeps 32 bits of the number.
    return collection.extendedMetaData(accountIdKey).toInt() == int(accountId)
        && collection.extendedMetaData(applicationNameKey).toString() == applicationName;
}

QString ContactFolders::serverIdOf(const QContactCollection &collection)
{
    return collection.extendedMetaData(serverIdKey).toString();
}

QList<QContactCollection> ContactFolders::collections(bool *complete) const
{
    QList<QContactCollection> own;
    const QList<QContactCollection> all = mContext.manager->collections();
    *complete = mContext.manager->error() == QContactManager::NoError;
    for (const QContactCollection &collection : all) {
        if (belongsTo(collection, mContext.accountId, ContactStoreContext::applicationName()))
            own.append(collection);
    }
    return own;
}

ContactFolders::Lookup ContactFolders::find(const QString &folderServerId) const
{
    Lookup lookup;
    const QList<QContactCollection> own = collections(&lookup.complete);
    for (const QContactCollection &collection : own) {
        if (serverIdOf(collection) == folderServerId)
            lookup.collection = collection;
    }
    return lookup;
}

void ContactFolders::populateCollection(const EasFolderItem &item, QContactCollection *collection) const
{
    const bool nameless = item.type() == EasFolderItem::DefaultContactsFolder && item.displayName().isEmpty();
    collection->setMetaData(
        QContactCollection::KeyName, nameless ? QStringLiteral("Exchange Contacts") : item.displayName());
    collection->setExtendedMetaData(accountIdKey, mContext.accountId);
    collection->setExtendedMetaData(applicationNameKey, ContactStoreContext::applicationName());
    collection->setExtendedMetaData(serverIdKey, item.serverId());
    collection->setExtendedMetaData(serverParentIdKey, item.serverParentId());
    collection->setExtendedMetaData(syncKeyKey, item.syncKey());
    collection->setExtendedMetaData(folderTypeKey, int(item.type()));
}

bool ContactFolders::updateFolders(
    QList<EasFolderItem> &added, QList<EasFolderItem> &changed, const QStringList &deleted) const
{
    if (!handleAddedFolders(added)) {
        qCCritical(eas()) << "Failed to add contacts folders";
        return false;
    }
    if (!handleUpdatedFolders(changed)) {
        qCCritical(eas()) << "Failed to update contacts folders";
        return false;
    }
    return handleDeletedFolders(deleted);
}

bool ContactFolders::handleAddedFolders(QList<EasFolderItem> &items) const
{
    QList<QContactCollection> saved;
    for (EasFolderItem &item : items) {
        if (!item.isContacts())
            continue;
        // It may be there from a run that did not get as far as the mapping.
        const Lookup present = find(item.serverId());
        QContactCollection collection = present.collection.value_or(QContactCollection());
        populateCollection(item, &collection);
        if (!present.complete || !mContext.manager->saveCollection(&collection)) {
            qCCritical(eas()) << "Failed to save new folder as local collection: " << item.displayName()
                              << mContext.manager->error();
            rollBack(saved);
            return false;
        }
        if (!present.collection)
            saved.append(collection);
        item.setLocalId(collection.id().toString());
        qCInfo(eas()) << "New folder " << item.displayName() << " assigned local id " << item.localId();
        for (EasFolderItem &child : items) {
            if (child.serverParentId() == item.serverId())
                child.setLocalParentId(item.localId());
        }
    }
    return true;
}

void ContactFolders::rollBack(const QList<QContactCollection> &added) const
{
    for (const QContactCollection &collection : added) {
        if (!removeCollection(collection))
            qCWarning(eas()) << "Failed to clean up added folder collection: " << collection.id();
    }
}

bool ContactFolders::handleUpdatedFolders(QList<EasFolderItem> &items) const
{
    bool updated = true;
    for (EasFolderItem &item : items) {
        if (!item.isContacts())
            continue;
        const Lookup present = find(item.serverId());
        if (present.complete && !present.collection) {
            // It is made again with its next contacts.
            qCWarning(eas()) << "Cannot find folder " << item.serverId();
            continue;
        }
        QContactCollection collection = present.collection.value_or(QContactCollection());
        populateCollection(item, &collection);
        if (!present.complete || !mContext.manager->saveCollection(&collection)) {
            qCCritical(eas()) << "Failed to save updates to contacts collection for folder" << item.serverId()
                              << mContext.manager->error();
            updated = false;
            continue;
        }
        item.setLocalId(collection.id().toString());
        qCInfo(eas()) << "Folder " << item.displayName() << " was updated";
    }
    return updated;
}

bool ContactFolders::handleDeletedFolders(const QStringList &serverIds) const
{
    bool removed = true;
    for (const QString &serverId : serverIds)
        removed = handleDeletedFolder(serverId) && removed;
    return removed;
}

bool ContactFolders::handleDeletedFolder(const QString &serverId) const
{
    EasDatabase *database = EasDatabase::instance();
    const auto type = database->folderTypeByServerId(mContext.accountId, serverId);
    const auto item = database->folderItemByServerId(mContext.accountId, serverId);
    if (!type || !item)
        return false;
    EasFolderItem typed;
    typed.setType(*type);
    if (!typed.isContacts())
        return true;
    if (item->serverId() != serverId) {
        qCWarning(eas()) << "Cannot find folder " << serverId << " for delete";
        return true;
    }
    if (!cleanUpFolder(*item)) {
        qCWarning(eas()) << "Failed to clear folder " << item->displayName();
        return false;
    }
    qCInfo(eas()) << "Folder " << item->displayName() << " with local id " << item->localId()
                  << " was removed";
    return true;
}

bool ContactFolders::cleanUpFolder(const EasFolderItem &folder) const
{
    EasDatabase *database = EasDatabase::instance();
    const auto avatars = database->localContactIdsToAvatarsUrls(mContext.accountId);
    const auto localIds = database->localContactIds(mContext.accountId, folder.serverId());
    if (!avatars || !localIds)
        return false;
    QList<QUrl> files;
    for (const QString &localId : *localIds) {
        if (QContactId::fromString(localId).isNull())
            qCWarning(eas()) << "Invalid database contact id:" << localId;
        if (!avatars->value(localId).isEmpty()) {
            qCDebug(eas()) << "Removing avatar file" << avatars->value(localId) << "for contact" << localId;
            files.append(avatars->value(localId));
        }
    }
    const Lookup present = find(folder.serverId());
    if (!present.complete)
        return false;
    if (present.collection && !appendAvatarsIn(*present.collection, &files))
        return false;
    if (!present.collection) {
        qCWarning(eas()) << "unable to find contact collection for removed folder: " << folder.serverId();
    } else if (!removeCollection(*present.collection)) {
        qCWarning(eas()) << "unable to delete contact collection: " << present.collection->id()
                         << " for removed folder: " << folder.serverId();
        return false;
    }
    ContactAvatars(mContext.accountId).removeAvatars(files);
    return true;
}

bool ContactFolders::appendAvatarsIn(const QContactCollection &collection, QList<QUrl> *files) const
{
    // The mapping may not know all of them.
    const QList<QContact> contacts = mContext.manager->contacts(ContactStoreContext::contactsOf(collection));
    if (contacts.isEmpty() && mContext.manager->error() != QContactManager::NoError) {
        qCWarning(eas()) << "failed to list the contacts of collection" << collection.id()
                         << mContext.manager->error();
        return false;
    }
    for (const QContact &contact : contacts)
        files->append(contact.detail<QContactAvatar>().imageUrl());
    return true;
}

bool ContactFolders::removeCollection(const QContactCollection &collection) const
{
    auto *const engine = mContext.engine();
    if (!engine)
        return false;
    // In one step with the rows that the store would else keep for a sync which asks what was removed: cut
    // short between the two, they would stay for good.
    // A collection that went meanwhile is told as an error, too, as one is that could not be looked up: the
    // next attempt does not find it any more.
    QContactManager::Error error = QContactManager::UnspecifiedError;
    return engine->storeChanges(nullptr, nullptr, { collection.id() },
        QtContactsSqliteExtensions::ContactManagerEngine::PreserveRemoteChanges, true, &error);
}

bool ContactFolders::isSentAnew(const QContactCollection &collection)
{
    return collection.extendedMetaData(sentAnewKey).toBool();
}

bool ContactFolders::markAsSentAnew(QContactCollection collection, bool sentAnew) const
{
    collection.setExtendedMetaData(sentAnewKey, sentAnew);
    if (mContext.manager->saveCollection(&collection))
        return true;
    qCCritical(eas()) << "failed to mark contacts collection" << collection.id() << mContext.manager->error();
    return false;
}

std::optional<QContactCollection> ContactFolders::recreate(const QString &folderServerId) const
{
    EasDatabase *database = EasDatabase::instance();
    const auto row = database->folderItemByServerId(mContext.accountId, folderServerId);
    if (!row || row->serverId().isEmpty()) {
        qCCritical(eas()) << "Failed to find local collection for remote folder: " << folderServerId;
        return std::nullopt;
    }
    EasFolderItem item = *row;
    qCInfo(eas()) << "Creating missing QContactCollection for contacts folder: " << item.displayName();
    QContactCollection collection;
    populateCollection(item, &collection);
    if (!mContext.manager->saveCollection(&collection)) {
        qCCritical(eas()) << "Failed to save recreated folder as local collection: " << item.displayName()
                          << mContext.manager->error();
        return std::nullopt;
    }
    item.setLocalId(collection.id().toString());
    item.clearChangedFields();
    if (!database->updateFolderItems(mContext.accountId, { item }))
        return std::nullopt;
    qCInfo(eas()) << "Recreated folder " << item.displayName() << " assigned local id " << item.localId();
    return collection;
}
