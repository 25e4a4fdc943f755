// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactlocalchanges.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "storages/contacts/contactavatars.h"
#include "storages/contacts/contactfolders.h"
#include "storages/contacts/contactreader.h"
#include "storages/contacts/contactstorecontext.h"
#include "storages/uploadbudget.h"

#include <QtContacts/QContactAvatar>
#include <QtContacts/QContactManager>

#include <algorithm>

QTCONTACTS_USE_NAMESPACE
using ContactCases::Action;
using ContactCases::Moment;

namespace {

/** Whether a contact goes up now; its picture is read for that alone. */
bool fits(const QContact &contact, UploadBudget *budget)
{
    return !budget || budget->take(contact.id().toString());
}

void noteSize(const EasContactsItem &item, UploadBudget *budget)
{
    if (budget)
        budget->note(item);
}

} // namespace

ContactLocalChanges::ContactLocalChanges(const ContactStoreContext &context)
    : mContext(context)
    , mStrays(context)
{
}

EasContactsItem ContactLocalChanges::toItem(const QContact &contact, const EasFolderItem &folder) const
{
    EasContactsItem item = ContactReader(mContext).convertContact(contact);
    item.setCollectionId(folder.serverId());
    return item;
}

EasContactsItem ContactLocalChanges::toChangedItem(
    const QContact &contact, const EasFolderItem &folder, const ContactFolderRows &rows) const
{
    EasContactsItem item = toItem(contact, folder);
    item.setServerId(rows.serverId(item.localId()));
    // Without a word about it the server would keep the picture that the user has removed.
    if (item.avatarUrl().isEmpty() && !rows.avatar(item.localId()).isEmpty())
        item.appendChangedField(Wbxml::Contacts::Picture.key());
    qCDebug(eas()) << "updated contact item local id=" << item.localId();
    return item;
}

LocalQuery ContactLocalChanges::queryChanges(const EasFolderItem &folder, QList<EasContactsItem> *added,
    QList<EasContactsItem> *changed, QStringList *deletedServerIds, UploadBudget *budget)
{
    qCDebug(eas()) << "query changes for folder " << folder.serverId();
    const ContactFolders::Lookup present = ContactFolders(mContext).find(folder.serverId());
    if (!present.collection) {
        qCWarning(eas()) << "Unable to find local collection matching server id: " << folder.serverId();
        return LocalQuery::StoreSilent;
    }
    // Before the changes are fetched: what the user removes after that is missing and no pending removal.
    const auto rows = ContactFolderRows::read(mContext.accountId, folder.serverId());
    if (!rows)
        return LocalQuery::MappingFailed;
    QStringList missing;
    Fetched fetched;
    if (!findMissing(*present.collection, *rows, &missing) || !fetch(folder, *present.collection, &fetched))
        return LocalQuery::StoreSilent;
    // One with a row that is still marked as added is at the server already.
    for (const QContact &contact : fetched.added + fetched.modified) {
        const bool hasRow = rows->hasLocalId(contact.id().toString());
        if (ContactCases::action(Moment::Query, mStrays.state(contact, hasRow)) != Action::UploadAsChange
            || !fits(contact, budget))
            continue;
        changed->append(toChangedItem(contact, folder, *rows));
        noteSize(changed->last(), budget);
    }
    for (const QContact &contact : qAsConst(fetched.deleted)) {
        const QString serverId = rows->serverId(contact.id().toString());
        if (!serverId.isEmpty())
            deletedServerIds->append(serverId);
    }
    if (!appendAdded(*present.collection, *rows, folder, added, budget))
        return LocalQuery::StoreSilent;
    return forgetLost(missing, fetched.deleted, *rows, folder.serverId()) ? LocalQuery::Answered
                                                                          : LocalQuery::MappingFailed;
}

bool ContactLocalChanges::hasChanges(const EasFolderItem &folder) const
{
    const ContactFolders::Lookup present = ContactFolders(mContext).find(folder.serverId());
    const auto rows = ContactFolderRows::read(mContext.accountId, folder.serverId());
    Fetched fetched;
    if (!present.collection || !rows || !fetch(folder, *present.collection, &fetched))
        return false;
    const auto goesUp = [&](const QContact &contact) {
        const bool hasRow = rows->hasLocalId(contact.id().toString());
        const Action action = ContactCases::action(Moment::Query, mStrays.state(contact, hasRow));
        return action == Action::UploadAsChange || action == Action::UploadAsNew;
    };
    const auto isKnown = [&](const QContact &contact) {
        return !rows->serverId(contact.id().toString()).isEmpty();
    };
    return std::any_of(fetched.added.cbegin(), fetched.added.cend(), goesUp)
        || std::any_of(fetched.modified.cbegin(), fetched.modified.cend(), goesUp)
        || std::any_of(fetched.deleted.cbegin(), fetched.deleted.cend(), isKnown);
}

bool ContactLocalChanges::fetch(
    const EasFolderItem &folder, const QContactCollection &collection, Fetched *fetched) const
{
    QContactManager::Error error = QContactManager::UnspecifiedError;
    auto *engine = mContext.engine();
    if (engine
        && engine->fetchContactChanges(
            collection.id(), &fetched->added, &fetched->modified, &fetched->deleted, nullptr, &error))
        return true;
    qCCritical(eas()) << "Unable to fetch contact changes for local collection: " << collection.id()
                      << " matching server id: " << folder.serverId() << " : " << error;
    return false;
}

bool ContactLocalChanges::appendAdded(const QContactCollection &collection, const ContactFolderRows &rows,
    const EasFolderItem &folder, QList<EasContactsItem> *added, UploadBudget *budget)
{
    Contacts strays;
    if (!mStrays.find(collection, rows, &strays))
        return false;
    mAwaiting.remove(folder.serverId());
    for (const QContact &contact : qAsConst(strays)) {
        if (ContactCases::action(Moment::Query, mStrays.state(contact, false)) != Action::UploadAsNew) {
            mAwaiting.insert(folder.serverId());
            continue;
        }
        if (!fits(contact, budget))
            continue;
        const EasContactsItem item = toItem(contact, folder);
        qCDebug(eas()) << "added contacts item local id=" << item.localId();
        added->append(item);
        noteSize(item, budget);
    }
    return true;
}

bool ContactLocalChanges::findMissing(
    const QContactCollection &collection, const ContactFolderRows &rows, QStringList *missing) const
{
    const QList<QContactId> ids = mContext.manager->contactIds(ContactStoreContext::contactsOf(collection));
    if (mContext.manager->error() != QContactManager::NoError)
        return false;
    QSet<QString> present;
    for (const QContactId &id : ids)
        present.insert(id.toString());
    const QStringList known = rows.localIds();
    for (const QString &localId : known) {
        if (!present.contains(localId))
            missing->append(localId);
    }
    return true;
}

bool ContactLocalChanges::forgetLost(const QStringList &missing, const Contacts &deleted,
    const ContactFolderRows &rows, const QString &folderServerId) const
{
    QSet<QString> removedByUser;
    for (const QContact &contact : deleted)
        removedByUser.insert(contact.id().toString());
    QStringList serverIds;
    for (const QString &localId : missing) {
        if (!removedByUser.contains(localId))
            serverIds.append(rows.serverId(localId));
    }
    if (serverIds.isEmpty())
        return true;
    // As long as there is a row, what the server sends is a change of a contact that is not there.
    qCWarning(eas()) << "contacts are gone from the store though nobody removed them:" << serverIds;
    return EasDatabase::instance()->deleteContactsItems(mContext.accountId, serverIds, folderServerId);
}

bool ContactLocalChanges::uploadedLocalChanges(const QStringList &addedLocalIds,
    const QStringList &changedLocalIds, const QStringList &deletedLocalIds) const
{
    const auto known = EasDatabase::instance()->localContactIdsToAvatarsUrls(mContext.accountId);
    if (!known)
        return false;
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
        if (contact.detail<QContactAvatar>().imageUrl() != known->value(localId))
            oldAvatars.append(known->value(localId));
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
