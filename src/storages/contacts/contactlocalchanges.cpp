// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactlocalchanges.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "storages/contacts/contactavatars.h"
#include "storages/contacts/contactfolders.h"
#include "storages/contacts/contactreader.h"
#include "storages/contacts/contactstorecontext.h"
#include "storages/contacts/contactstrays.h"

#include <QtContacts/QContactAvatar>
#include <QtContacts/QContactManager>

QTCONTACTS_USE_NAMESPACE

ContactLocalChanges::ContactLocalChanges(const ContactStoreContext &context)
    : mContext(context)
{
}

EasContactsItem ContactLocalChanges::toItem(const QContact &contact, const EasFolderItem &folder) const
{
    EasContactsItem item = ContactReader(mContext).convertContact(contact);
    item.setCollectionId(folder.serverId());
    return item;
}

EasContactsItem ContactLocalChanges::toChangedItem(const QContact &contact, const EasFolderItem &folder,
    const QString &serverId, const QMap<QString, QUrl> &knownAvatars) const
{
    EasContactsItem item = toItem(contact, folder);
    item.setServerId(serverId);
    // Without a word about it the server would keep the picture that the user has removed.
    if (item.avatarUrl().isEmpty() && !knownAvatars.value(item.localId()).isEmpty())
        item.appendChangedField(Wbxml::Contacts::Picture.key());
    qCDebug(eas()) << "updated contact item local id=" << item.localId();
    return item;
}

bool ContactLocalChanges::queryChanges(const EasFolderItem &folder, QList<EasContactsItem> *added,
    QList<EasContactsItem> *changed, QStringList *deletedServerIds)
{
    qCDebug(eas()) << "query changes for folder " << folder.serverId();
    const ContactFolders::Lookup present = ContactFolders(mContext).find(folder.serverId());
    if (!present.collection) {
        qCWarning(eas()) << "Unable to find local collection matching server id: " << folder.serverId();
        return false;
    }
    // Before the changes are fetched: a failure after that would let them look handled.
    EasDatabase *database = EasDatabase::instance();
    const QMap<QString, QString> localToServer =
        database->localToServerContactIds(mContext.accountId, folder.serverId());
    if (database->lookupFailed())
        return false;
    const QMap<QString, QUrl> avatars = database->localContactIdsToAvatarsUrls(mContext.accountId);
    if (database->lookupFailed())
        return false;

    Contacts addedContacts;
    Contacts modified;
    Contacts deleted;
    QContactManager::Error error = QContactManager::UnspecifiedError;
    auto *engine = mContext.engine();
    if (!engine
        || !engine->fetchContactChanges(
            present.collection->id(), &addedContacts, &modified, &deleted, nullptr, &error)) {
        qCCritical(eas()) << "Unable to fetch contact changes for local collection: "
                          << present.collection->id() << " matching server id: " << folder.serverId() << " : "
                          << error;
        return false;
    }

    // One with a row that is still marked as added is at the server already.
    for (const QContact &contact : addedContacts + modified) {
        const QString serverId = localToServer.value(contact.id().toString());
        if (!serverId.isEmpty())
            changed->append(toChangedItem(contact, folder, serverId, avatars));
    }
    Contacts unknown;
    if (!appendStrays(*present.collection, &unknown))
        return false;
    for (const QContact &contact : qAsConst(unknown)) {
        const EasContactsItem item = toItem(contact, folder);
        qCDebug(eas()) << "added contacts item local id=" << item.localId();
        added->append(item);
    }
    for (const QContact &contact : qAsConst(deleted)) {
        const QString serverId = localToServer.value(contact.id().toString());
        if (!serverId.isEmpty())
            deletedServerIds->append(serverId);
    }
    return true;
}

bool ContactLocalChanges::appendStrays(const QContactCollection &collection, Contacts *added)
{
    const ContactStrays strays(mContext);
    Contacts unmapped;
    if (!strays.find(collection, &unmapped))
        return false;
    QSet<QString> heldBack;
    QList<QContactId> gone;
    QList<QUrl> avatars;
    for (const QContact &contact : qAsConst(unmapped)) {
        const QString localId = contact.id().toString();
        if (strays.serverIdOf(contact).isEmpty()) {
            // Made here. Without a flag its upload was acknowledged, but not mapped: the server's answer to
            // the same key comes again.
            added->append(contact);
        } else if (!mHeldBack.contains(localId)) {
            // The server sends it again, to be adopted.
            heldBack.insert(localId);
        } else if (ContactStrays::hasLocalChange(contact)) {
            added->append(contact);
        } else {
            gone.append(contact.id());
            avatars.append(contact.detail<QContactAvatar>().imageUrl());
        }
    }
    mHeldBack = heldBack;
    return strays.removeContacts(collection, gone, avatars);
}

bool ContactLocalChanges::uploadedLocalChanges(const QStringList &addedLocalIds,
    const QStringList &changedLocalIds, const QStringList &deletedLocalIds) const
{
    const QMap<QString, QUrl> known =
        EasDatabase::instance()->localContactIdsToAvatarsUrls(mContext.accountId);
    QList<QContactId> ids;
    QList<QUrl> oldAvatars;
    for (const QString &localId : addedLocalIds + changedLocalIds + deletedLocalIds) {
        const QContactId id = QContactId::fromString(localId);
        if (id.isNull()) {
            qCWarning(eas()) << "QContactId is null for specified id" << localId;
            continue;
        }
        // What was removed while its change was on its way waits for the server as a removal.
        QContact contact;
        if (!mContext.read(id, &contact))
            return false;
        if (contact.id().isNull() && !deletedLocalIds.contains(localId))
            continue;
        ids.append(id);
        // The picture that came with it, if the user has given it another one or removed it.
        if (contact.detail<QContactAvatar>().imageUrl() != known.value(localId))
            oldAvatars.append(known.value(localId));
    }
    if (ids.isEmpty())
        return true;
    QContactManager::Error error = QContactManager::UnspecifiedError;
    auto *engine = mContext.engine();
    if (engine && engine->clearChangeFlags(ids, &error)) {
        ContactAvatars(mContext.accountId).removeAvatars(oldAvatars);
        return true;
    }
    qCCritical(eas()) << "Unable to clear change flags for successfully upsynced contacts:" << error;
    return false;
}
