// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactstrays.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "storages/contacts/contactavatars.h"
#include "storages/contacts/contactstorecontext.h"

#include <qcontactstatusflags.h>

#include <QtContacts/QContactAvatar>
#include <QtContacts/QContactCollectionFilter>
#include <QtContacts/QContactGuid>
#include <QtContacts/QContactManager>

#include <QFileInfo>

#include <algorithm>

QTCONTACTS_USE_NAMESPACE

namespace {

QContactCollectionFilter contactsOf(const QContactCollection &collection)
{
    QContactCollectionFilter filter;
    filter.setCollectionId(collection.id());
    return filter;
}

} // namespace

ContactStrays::ContactStrays(const ContactStoreContext &context)
    : mContext(context)
    , mFolders(context)
{
}

bool ContactStrays::find(const QContactCollection &collection, QList<QContact> *strays) const
{
    EasDatabase *database = EasDatabase::instance();
    const QMap<QString, QString> mapped = database->localToServerContactIds(mContext.accountId, QString());
    if (database->lookupFailed())
        return false;
    const QList<QContactId> ids = mContext.manager->contactIds(contactsOf(collection));
    if (mContext.manager->error() != QContactManager::NoError)
        return false;
    for (const QContactId &id : ids) {
        if (mapped.contains(id.toString()))
            continue;
        QContact contact;
        if (!mContext.read(id, &contact))
            return false;
        if (!contact.id().isNull())
            strays->append(contact);
    }
    return true;
}

QString ContactStrays::serverIdOf(const QContact &contact) const
{
    return mContext.serverIdOf(contact.detail<QContactGuid>().guid());
}

QMap<QString, QContact> ContactStrays::byServerId(const QList<QContact> &strays) const
{
    QMap<QString, QContact> map;
    for (const QContact &contact : strays) {
        if (!serverIdOf(contact).isEmpty())
            map.insert(serverIdOf(contact), contact);
    }
    return map;
}

bool ContactStrays::hasLocalChange(const QContact &contact)
{
    const auto flags = contact.detail<QContactStatusFlags>();
    return flags.testFlag(QContactStatusFlags::IsAdded) || flags.testFlag(QContactStatusFlags::IsModified);
}

bool ContactStrays::removeContacts(
    const QContactCollection &collection, const QList<QContactId> &ids, const QList<QUrl> &avatarFiles) const
{
    if (ids.isEmpty())
        return true;
    QContactManager::Error error = QContactManager::UnspecifiedError;
    auto *engine = mContext.engine();
    if (!engine || !removePresent(collection, ids, &error) || !engine->clearChangeFlags(ids, &error)) {
        qCCritical(eas()) << "Failed to remove contacts with error: " << error;
        return false;
    }
    qCInfo(eas()) << ids.size() << " contacts were removed";
    ContactAvatars(mContext.accountId).removeAvatars(avatarFiles);
    return true;
}

bool ContactStrays::removePresent(
    const QContactCollection &collection, const QList<QContactId> &ids, QContactManager::Error *error) const
{
    // Through the manager this would be a deletion of the user's until its flags are cleared, and go up as
    // one if the process died in between. What the user has removed already is not there.
    QList<QContact> contacts;
    for (const QContactId &id : ids) {
        QContact contact;
        if (!mContext.read(id, &contact))
            return false;
        if (contact.id().isNull())
            continue;
        auto flags = contact.detail<QContactStatusFlags>();
        flags.setFlag(QContactStatusFlags::IsDeleted, true);
        contact.saveDetail(&flags, QContact::IgnoreAccessConstraints);
        contacts.append(contact);
    }
    QContactCollection target = collection;
    QHash<QContactCollection *, QList<QContact> *> modified { { &target, &contacts } };
    return contacts.isEmpty()
        || mContext.engine()->storeChanges(nullptr, &modified, {},
            QtContactsSqliteExtensions::ContactManagerEngine::PreserveRemoteChanges, false, error);
}

void ContactStrays::repair() const
{
    bool complete = false;
    const QList<QContactCollection> collections = mFolders.collections(&complete);
    if (!complete)
        return;
    QList<QContactCollection> present;
    for (const QContactCollection &collection : collections) {
        if (!removeUnknownFolder(collection)) {
            complete = repairFolder(collection) && complete;
            present.append(collection);
        }
    }
    if (complete)
        removeOrphanedPictures(present);
}

bool ContactStrays::removeUnknownFolder(const QContactCollection &collection) const
{
    EasDatabase *database = EasDatabase::instance();
    const QString serverId = ContactFolders::serverIdOf(collection);
    const EasFolderItem folder = database->folderItemByServerId(mContext.accountId, serverId);
    if (database->lookupFailed() || folder.serverId() == serverId)
        return false;
    const QList<QContact> contacts = mContext.manager->contacts(contactsOf(collection));
    if (mContext.manager->error() != QContactManager::NoError
        || std::any_of(contacts.cbegin(), contacts.cend(), hasLocalChange))
        return false;
    qCInfo(eas()) << "removing the contacts folder of an interrupted run:" << serverId;
    return mFolders.removeCollection(collection);
}

bool ContactStrays::repairFolder(const QContactCollection &collection) const
{
    QList<QContact> strays;
    if (!find(collection, &strays))
        return false;
    QList<QContactId> ids;
    QList<QUrl> avatars;
    for (const QContact &contact : qAsConst(strays)) {
        if (serverIdOf(contact).isEmpty() || hasLocalChange(contact))
            continue;
        ids.append(contact.id());
        avatars.append(contact.detail<QContactAvatar>().imageUrl());
    }
    if (!ids.isEmpty())
        qCInfo(eas()) << "removing contacts of an interrupted run:" << ids.size();
    return removeContacts(collection, ids, avatars);
}

void ContactStrays::removeOrphanedPictures(const QList<QContactCollection> &collections) const
{
    QSet<QString> used;
    const auto add = [&used](const QUrl &url) {
        if (url.isLocalFile())
            used.insert(QFileInfo(url.toLocalFile()).absoluteFilePath());
    };
    for (const QContactCollection &collection : collections) {
        const QList<QContact> contacts = mContext.manager->contacts(contactsOf(collection));
        if (mContext.manager->error() != QContactManager::NoError)
            return;
        for (const QContact &contact : contacts)
            add(contact.detail<QContactAvatar>().imageUrl());
    }
    ContactAvatars(mContext.accountId).removeOrphans(used);
}
