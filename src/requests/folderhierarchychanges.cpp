// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/folderhierarchychanges.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "storages/calendarstorage.h"
#include "storages/contactstorage.h"
#include "storages/mailstorage.h"

#include <QMap>

#include <algorithm>
#include <iterator>

namespace {

/** Moves the folders of one kind out of a list. */
QList<EasFolderItem> takeKind(QList<EasFolderItem> *items, bool (EasFolderItem::*isKind)() const)
{
    const auto others = std::stable_partition(
        items->begin(), items->end(), [isKind](const EasFolderItem &item) { return (item.*isKind)(); });
    QList<EasFolderItem> taken;
    std::move(items->begin(), others, std::back_inserter(taken));
    items->erase(items->begin(), others);
    return taken;
}

void appendAllFields(EasFolderItem &item)
{
    item.appendChangedField(Wbxml::FolderHierarchy::DisplayName.key());
    if (!item.serverParentId().isEmpty())
        item.appendChangedField(Wbxml::FolderHierarchy::ParentId.key());
}

} // namespace

FolderHierarchyChanges::FolderHierarchyChanges(EasAccount &account, const FolderChanges &changes)
    : mAccount(account)
    , mAccountId(account.id())
    , mAdded(changes.added)
    , mUpdated(changes.updated)
    , mDeleted(changes.deleted)
{
    const Lookup<QMap<QString, QString>> known = EasDatabase::instance()->serverToLocalFolderIds(mAccountId);
    if (!known)
        return;
    recogniseRepeatedFolders(*known);
    mFoldersRead = bindUpdatedFolders(*known);
}

void FolderHierarchyChanges::recogniseRepeatedFolders(const QMap<QString, QString> &known)
{
    QList<EasFolderItem> unknown;
    QSet<QString> seen;
    for (EasFolderItem &item : mAdded) {
        if (item.serverId().isEmpty() || seen.contains(item.serverId())) {
            qCWarning(eas()) << "added folder without a name of its own, leaving it out:" << item.serverId();
            continue;
        }
        seen.insert(item.serverId());
        const auto localId = known.constFind(item.serverId());
        const bool hasRow = localId != known.constEnd();
        if (hasRow)
            appendAllFields(item);
        if (hasRow && !(item.isEmail() && localId->isEmpty())) {
            mUpdated.append(item);
            continue;
        }
        if (hasRow)
            mRowsWithoutFolder.insert(item.serverId());
        unknown.append(item);
    }
    mAdded = unknown;
}

bool FolderHierarchyChanges::bindUpdatedFolders(const QMap<QString, QString> &known)
{
    // A folder row is always written with its local binding, which a reply cannot know.
    for (EasFolderItem &item : mUpdated) {
        const Lookup<EasFolderItem> stored =
            EasDatabase::instance()->folderItemByServerId(mAccountId, item.serverId());
        if (!stored)
            return false;
        item.setLocalId(stored->localId());
        item.setLocalParentId(known.value(item.serverParentId()));
        item.setSavedInStorage(stored->savedInStorage());
        if (!item.changedFields().contains(Wbxml::FolderHierarchy::Type.key()))
            item.setType(stored->type());
    }
    return true;
}

bool FolderHierarchyChanges::isReady(MailStore mailStore) const
{
    // What is known would look new, and come into the stores a second time.
    if (!mFoldersRead) {
        qCCritical(eas()) << "failed to read folders from EAS DB";
        return false;
    }
    if (!mAccount.calendarStorage()) {
        qCCritical(eas()) << "CalendarStorage is null";
        return false;
    }
    if (!mAccount.contactStorage()) {
        qCCritical(eas()) << "ContactStorage is null";
        return false;
    }
    if (mailStore == MailStore::Needed && !mAccount.mailStorage()) {
        qCCritical(eas()) << "MailStorage is null";
        return false;
    }
    return true;
}

bool FolderHierarchyChanges::updateStores(OnFailure onFailure, const char *mailFailure)
{
    // Without changes, too: the stores make the folders anew here that they have lost.
    bool updated = true;
    const auto step = [&](bool succeeded, const char *failure) {
        if (!succeeded) {
            qCCritical(eas()) << failure;
            updated = false;
        }
        return succeeded || onFailure == OnFailure::GoOn;
    };
    const QSharedPointer<MailStorage> mail = mAccount.mailStorage();
    mMailStored = mail && mail->updateFolders(mAdded, mUpdated, mDeleted);
    mMailFailed = mail && !mMailStored;
    if (mail && !step(mMailStored, mailFailure))
        return false;
    mCalendarFailed = !mAccount.calendarStorage()->updateFolders(mAdded, mUpdated, mDeleted);
    if (!step(!mCalendarFailed, "failed to update folders in Calendar Storage"))
        return false;
    mContactsFailed = !mAccount.contactStorage()->updateFolders(mAdded, mUpdated, mDeleted);
    step(!mContactsFailed, "failed to update folders in Contact Storage");
    return updated;
}

bool FolderHierarchyChanges::updateStoresOfEachKind(const StoreFailures &failures)
{
    return updateStoreOf(&EasFolderItem::isCalendar, mAccount.calendarStorage().data(), failures.calendar)
        && updateStoreOf(&EasFolderItem::isContacts, mAccount.contactStorage().data(), failures.contacts)
        && (mMailStored =
                updateStoreOf(&EasFolderItem::isEmail, mAccount.mailStorage().data(), failures.mail));
}

template <typename Store>
bool FolderHierarchyChanges::updateStoreOf(
    bool (EasFolderItem::*isOwn)() const, Store *store, const char *failure)
{
    QStringList deleted;
    for (const QString &serverId : qAsConst(mDeleted)) {
        const Lookup<EasFolderItem> item =
            EasDatabase::instance()->folderItemByServerId(mAccountId, serverId);
        if (!item) {
            qCCritical(eas()) << failure;
            return false;
        }
        if (((*item).*isOwn)())
            deleted.append(serverId);
    }
    QList<EasFolderItem> added = takeKind(&mAdded, isOwn);
    QList<EasFolderItem> updated = takeKind(&mUpdated, isOwn);
    const bool concerned = !added.isEmpty() || !updated.isEmpty() || !deleted.isEmpty();
    const bool stored = !concerned || store->updateFolders(added, updated, deleted);
    // The store has written its local identifiers into them.
    mAdded += added;
    mUpdated += updated;
    if (!stored)
        qCCritical(eas()) << failure;
    return stored;
}

void FolderHierarchyChanges::markSaved()
{
    for (QList<EasFolderItem> *items : { &mAdded, &mUpdated }) {
        for (EasFolderItem &item : *items) {
            if (!item.isCalendar() && (!item.isEmail() || mMailStored))
                item.setSavedInStorage(true);
        }
    }
}

bool FolderHierarchyChanges::updateDatabase()
{
    EasDatabase *database = EasDatabase::instance();
    const QStringList deleted = deletedRows();
    for (const QString &serverId : deleted) {
        const bool cleared = database->clearEmailFolder(mAccountId, serverId)
            && database->clearCalendarFolder(mAccountId, serverId)
            && database->clearContactsFolder(mAccountId, serverId);
        if (!cleared)
            return false;
    }
    QList<EasFolderItem> added;
    QList<EasFolderItem> updated = mUpdated;
    for (const EasFolderItem &item : qAsConst(mAdded))
        (mRowsWithoutFolder.contains(item.serverId()) ? updated : added).append(item);
    return database->folderItemsChanges(mAccountId, added, updated, deleted);
}

QStringList FolderHierarchyChanges::deletedRows() const
{
    if (!mMailFailed && !mCalendarFailed && !mContactsFailed)
        return mDeleted;
    // A folder that may still be in its store could not be found there again without its row.
    QStringList deleted;
    for (const QString &serverId : mDeleted) {
        const auto folder = EasDatabase::instance()->folderItemByServerId(mAccountId, serverId);
        if (!folder)
            continue;
        const bool mayBeStored = (mMailFailed && folder->isEmail())
            || (mCalendarFailed && folder->isCalendar()) || (mContactsFailed && folder->isContacts());
        if (!mayBeStored)
            deleted.append(serverId);
    }
    return deleted;
}
