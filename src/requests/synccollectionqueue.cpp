// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/synccollectionqueue.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/base/protocolutils.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "requests/synccollectionbuilder.h"
#include "requests/syncstate.h"
#include "storages/calendarstorage.h"
#include "storages/contactstorage.h"
#include "storages/mailstorage.h"

#include <algorithm>

SyncCollectionQueue::SyncCollectionQueue(EasAccount &account, SyncState &state)
    : mAccount(account)
    , mState(state)
{
}

Lookup<EasFolderItem> SyncCollectionQueue::readFolder(const QString &serverId) const
{
    Lookup<EasFolderItem> folder = EasDatabase::instance()->folderItemByServerId(mAccount.id(), serverId);
    if (!folder)
        qCCritical(eas()) << "failed to read folders from EAS DB";
    return folder;
}

bool SyncCollectionQueue::append(QList<SyncCollection> &collections, const Lookup<SyncCollection> &collection)
{
    if (collection)
        collections.append(*collection);
    else
        qCCritical(eas()) << "failed to read the local changes of a collection";
    return bool(collection);
}

bool SyncCollectionQueue::readFolders(QHash<QString, EasFolderItem> *known)
{
    for (QStringList *serverIds : { &mState.collectionsToResync, &mState.collectionsToRetry,
             &mState.collectionsToSync, &mState.collectionsToAskAlone }) {
        QStringList kept;
        for (const QString &serverId : qAsConst(*serverIds)) {
            const Lookup<EasFolderItem> folder = readFolder(serverId);
            if (!folder)
                return false;
            if (folder->serverId() == serverId && folder->type() != EasFolderItem::UnknownFolder) {
                known->insert(serverId, *folder);
                kept.append(serverId);
            } else {
                qCInfo(eas()) << "collection is gone, leaving it out:" << serverId;
            }
        }
        *serverIds = kept;
    }
    return true;
}

bool SyncCollectionQueue::queryCollectionsForSync(
    QList<SyncCollection> &initial, QList<SyncCollection> &continuing)
{
    QHash<QString, EasFolderItem> known;
    if (!readFolders(&known))
        return false;
    QList<EasFolderItem> folders;
    const auto mark = [&](const QStringList &serverIds, const char *reason, bool resync) {
        for (const QString &serverId : serverIds) {
            const bool listed = std::any_of(folders.cbegin(), folders.cend(),
                [&](const EasFolderItem &other) { return other.serverId() == serverId; });
            if (listed)
                continue;
            qCDebug(eas()) << reason << serverId;
            EasFolderItem folder = known.value(serverId);
            if (resync)
                folder.setSyncKey(ProtocolUtils::InitialSyncKey);
            folders.append(folder);
        }
    };
    mark(mState.collectionsToResync, "Marking collection for sync due to resync:", true);
    if (mState.collectionsToRetry.isEmpty())
        mark(mState.collectionsToSync, "Marking collection for sync due to needing sync:", false);
    else
        mark(mState.collectionsToRetry, "Marking collection for sync due to retry:", false);

    const QList<EasFolderItem> withoutKey = foldersWithoutKey(folders);
    SyncCollectionBuilder builder(mAccount, mState);
    for (const EasFolderItem &folder : withoutKey.isEmpty() ? folders : withoutKey) {
        if (known.value(folder.serverId()).syncKey() == ProtocolUtils::InitialSyncKey
            && !forgetCollection(folder))
            return false;
        qCDebug(eas()) << "Have collection:" << folder.serverId() << "=" << folder.localId()
                       << "with syncKey:" << folder.syncKey()
                       << (withoutKey.isEmpty() ? "- requires normal sync." : "- requires initial sync.");
        if (!append(withoutKey.isEmpty() ? continuing : initial, builder.setupSyncCollection(folder)))
            return false;
        if (builder.isFull())
            break;
    }
    return true;
}

QList<EasFolderItem> SyncCollectionQueue::foldersWithoutKey(const QList<EasFolderItem> &folders) const
{
    QList<EasFolderItem> withoutKey;
    for (const EasFolderItem &folder : folders) {
        if (!folder.syncKey().isEmpty() && folder.syncKey() != ProtocolUtils::InitialSyncKey)
            continue;
        if (mState.collectionsToAskAlone.contains(folder.serverId()))
            return { folder };
        withoutKey.append(folder);
    }
    return withoutKey;
}

bool SyncCollectionQueue::restart(QList<SyncCollection> &collections)
{
    SyncCollectionBuilder builder(mAccount, mState);
    for (const QString &serverId : qAsConst(mState.collectionsToResync)) {
        const Lookup<EasFolderItem> known = readFolder(serverId);
        if (!known || !forgetCollection(*known))
            return false;
        EasFolderItem folder = *known;
        folder.setSyncKey(ProtocolUtils::InitialSyncKey);
        if (!append(collections, builder.setupSyncCollection(folder)))
            return false;
    }
    return true;
}

bool SyncCollectionQueue::leaveOut(const SyncCollection &silent)
{
    const Lookup<EasFolderItem> folder = readFolder(silent.id());
    if (!folder || !anyHasKey())
        return false;
    qCWarning(eas()) << "no answer about collection, leaving it out:" << silent.id() << folder->displayName();
    mState.leaveOut(silent.id());
    return true;
}

bool SyncCollectionQueue::anyHasKey() const
{
    const Lookup<QMap<QString, QString>> known =
        EasDatabase::instance()->serverToLocalFolderIds(mAccount.id());
    const QStringList serverIds = known ? known->keys() : QStringList();
    return std::any_of(serverIds.cbegin(), serverIds.cend(), [this](const QString &serverId) {
        const Lookup<EasFolderItem> folder =
            serverId.isEmpty() ? Lookup<EasFolderItem>::unread() : readFolder(serverId);
        return folder && !folder->syncKey().isEmpty() && folder->syncKey() != ProtocolUtils::InitialSyncKey;
    });
}

bool SyncCollectionQueue::forgetCollection(const EasFolderItem &folder)
{
    // The key goes first: items that were wiped under a key that still holds would never come again. The
    // initial key stands in the row until all is wiped, so that an interruption is noticed by the next sync.
    return setSyncKey(folder, ProtocolUtils::InitialSyncKey) && forgetItems(folder)
        && setSyncKey(folder, QString());
}

bool SyncCollectionQueue::setSyncKey(const EasFolderItem &folder, const QString &key)
{
    EasFolderItem changed = folder;
    changed.setSyncKey(key);
    changed.appendChangedField(Wbxml::AirSync::SyncKey.key());
    return EasDatabase::instance()->updateFolderItems(mAccount.id(), { changed });
}

bool SyncCollectionQueue::forgetItems(const EasFolderItem &folder)
{
    EasDatabase *database = EasDatabase::instance();
    if (folder.isCalendar()) {
        const QSharedPointer<CalendarStorage> storage = mAccount.calendarStorage();
        if (!storage) {
            qCWarning(eas()) << "CalendarStorage is null";
            return false;
        }
        return storage->cleanUpFolder(folder)
            && database->clearCalendarFolder(mAccount.id(), folder.serverId());
    }
    if (folder.isContacts())
        return expectContacts(folder);
    if (!folder.isEmail())
        return true;
    if (const QSharedPointer<MailStorage> storage = mAccount.mailStorage()) {
        return storage->cleanUpFolder(folder) && database->clearEmailFolder(mAccount.id(), folder.serverId());
    }
    qCWarning(eas()) << "MailStorage is null";
    return true;
}

bool SyncCollectionQueue::expectContacts(const EasFolderItem &folder)
{
    // Contacts stay until it is known which of them the server does not have any more.
    const QSharedPointer<ContactStorage> storage = mAccount.contactStorage();
    if (!storage) {
        qCWarning(eas()) << "ContactStorage is null";
        return true;
    }
    return storage->expectAll(folder);
}

bool SyncCollectionQueue::updateFolderSyncKeys(const QList<SyncCollection> &collections)
{
    QList<EasFolderItem> items;
    for (const SyncCollection &collection : collections) {
        const Lookup<EasFolderItem> known = readFolder(collection.id());
        if (!known)
            return false;
        EasFolderItem folder = *known;
        // No server gives the initial key for what comes next, unless it means to refuse.
        if (collection.syncKey().isEmpty() || collection.syncKey() == ProtocolUtils::InitialSyncKey
            || collection.syncKey() == folder.syncKey()) {
            qCDebug(eas()) << "No need to update folder sync key to:" << collection.syncKey()
                           << "for folder:" << folder.localId() << "with server id:" << collection.id();
            continue;
        }
        qCDebug(eas()) << "Updating folder sync key from:" << folder.syncKey()
                       << "to:" << collection.syncKey() << "for folder:" << folder.localId()
                       << "with server id:" << collection.id();
        folder.setSyncKey(collection.syncKey());
        folder.appendChangedField(Wbxml::AirSync::SyncKey.key());
        items.append(folder);
    }
    if (EasDatabase::instance()->updateFolderItems(mAccount.id(), items))
        return true;
    qCCritical(eas()) << "failed to update folders in EAS DB";
    return false;
}
