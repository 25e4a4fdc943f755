// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/emailresulthandler.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "protocol/elements/synccollection.h"
#include "protocol/elements/synccommandchange.h"
#include "protocol/elements/synccommanddelete.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "requests/syncstate.h"
#include "storages/mailstorage.h"

#include <algorithm>

bool EmailResultHandler::handle(SyncCollection &collection)
{
    const QSharedPointer<MailStorage> storage = account().mailStorage();
    if (!storage)
        return fail("MailStorage is null");
    if (!collection.getAddCmdResponses().isEmpty())
        qCWarning(eas()) << "unexpected add responses in a sync response for collection" << collection.id();

    if (!namesAreValid(collection))
        return fail("refused a server identifier with a control character");
    // Unread, known mail would look new, and be added a second time.
    const Lookup<MailServerIds> known = lookUp(collection);
    if (!known)
        return fail("Failed to read emails from EAS DB");
    MailServerIds ids = *known;
    if (!acknowledgeChanges(*storage, collection) || !acknowledgeDeletes(*storage, collection, ids))
        return false;

    nameAsKept(collection, ids);
    recogniseRepeatedAdds(collection, ids);
    beginAnewFor(collection, unknownChanges(ids));
    spareMovedMail();

    if (!storage->updateEmails(mAdded, mChanged, mDeleted))
        return fail("Failed to update emails");
    if (!EasDatabase::instance()->emailItemsChanges(account().id(), mAdded, mChanged, mDeleted))
        return fail("Failed to update emails in EAS DB");
    return true;
}

bool EmailResultHandler::namesAreValid(const SyncCollection &collection)
{
    const QList<EasEmailItem> emails = collection.addedEmails() + collection.changedEmails();
    const QStringList deleted = collection.deletedIds();
    return std::all_of(emails.cbegin(), emails.cend(),
               [](const EasEmailItem &item) { return WireEmailId(item.serverId()).isValid(); })
        && std::all_of(
            deleted.cbegin(), deleted.cend(), [](const QString &id) { return WireEmailId(id).isValid(); });
}

Lookup<MailServerIds> EmailResultHandler::lookUp(const SyncCollection &collection) const
{
    const QList<EasEmailItem> emails = collection.addedEmails() + collection.changedEmails();
    QStringList deleted = collection.deletedIds();
    const QList<QSharedPointer<SyncCommandBase>> commands = collection.commands();
    for (const QSharedPointer<SyncCommandBase> &command : commands) {
        if (command->type() == SyncCommandBase::DeleteCommand)
            deleted += command.staticCast<SyncCommandDelete>()->serverIds();
    }
    QList<MailServerIds::Item> items;
    for (const EasEmailItem &item : emails)
        items.append({ collection.id(), WireEmailId(item.serverId()) });
    for (const QString &wireId : qAsConst(deleted))
        items.append({ collection.id(), WireEmailId(wireId) });
    return MailServerIds::lookUp(account().id(), items);
}

bool EmailResultHandler::acknowledgeChanges(MailStorage &storage, const SyncCollection &collection)
{
    QList<EasEmailItem> sentChanged;
    for (const QSharedPointer<SyncCommandBase> &command : collection.commands()) {
        if (command->type() == SyncCommandBase::ChangeCommand)
            sentChanged.append(command.staticCast<SyncCommandChange>()->emailItems());
    }
    QList<EasEmailItem> acknowledgedItems;
    if (!acknowledged(SyncItemStatus::Operation::MailChange, collection.id(), sentChanged,
            collection.getChangeCmdResponses(), {}, acknowledgedItems))
        return false;
    if (!acknowledgedItems.isEmpty() && !storage.successfullyUpdatedEmails(acknowledgedItems))
        return fail("Can't update state of successfully updated items");
    return true;
}

bool EmailResultHandler::acknowledgeDeletes(
    MailStorage &storage, const SyncCollection &collection, const MailServerIds &ids)
{
    QStringList sentDeleted;
    for (const QSharedPointer<SyncCommandBase> &command : collection.commands()) {
        if (command->type() == SyncCommandBase::DeleteCommand)
            sentDeleted.append(command.staticCast<SyncCommandDelete>()->serverIds());
    }
    QList<QString> acknowledgedIds;
    if (!acknowledged(SyncItemStatus::Operation::MailDelete, collection.id(), QList<QString>(sentDeleted),
            collection.getDeleteCmdResponses(), {}, acknowledgedIds))
        return false;

    QList<KeptEmailId> removed;
    for (const QString &wireId : qAsConst(acknowledgedIds))
        removed.append(ids.kept(collection.id(), WireEmailId(wireId)));
    // An empty list would purge every removal record of the account.
    if (removed.isEmpty())
        return true;
    if (!storage.purgeDeletedEmails(removed))
        return fail("MailStorage is null");
    // The server does not report a delete back to the device that asked for it.
    if (!EasDatabase::instance()->deleteEmailItems(account().id(), KeptEmailId::texts(removed)))
        return fail("Failed to update emails in EAS DB");
    return true;
}

void EmailResultHandler::nameAsKept(const SyncCollection &collection, MailServerIds &ids)
{
    const auto named = [&](QList<EasEmailItem> items) {
        for (EasEmailItem &item : items)
            item.setServerId(ids.kept(collection.id(), WireEmailId(item.serverId())).text());
        return items;
    };
    mChanged = named(collection.changedEmails());
    for (const QString &wireId : collection.deletedIds())
        mDeleted.append(ids.kept(collection.id(), WireEmailId(wireId)).text());
    mAdded = named(collection.addedEmails());
}

void EmailResultHandler::recogniseRepeatedAdds(const SyncCollection &collection, MailServerIds &ids)
{
    QList<EasEmailItem> added;
    for (EasEmailItem &item : mAdded) {
        const KeptEmailId keptId(item.serverId());
        if (ids.contains(keptId)) {
            item.appendChangedField(Wbxml::AirSyncBase::FileReference.key());
            item.appendChangedField(Wbxml::AirSync::Add.key());
            mChanged.append(item);
        } else {
            ids.add(keptId, collection.id());
            added.append(item);
        }
    }
    mAdded = added;
}

QStringList EmailResultHandler::unknownChanges(const MailServerIds &ids) const
{
    QStringList unknown;
    for (const EasEmailItem &item : mChanged) {
        if (!ids.contains(KeptEmailId(item.serverId())) && !state().movedServerIds.contains(item.serverId()))
            unknown.append(item.serverId());
    }
    return unknown;
}

void EmailResultHandler::spareMovedMail()
{
    for (const QString &serverId : qAsConst(state().movedServerIds))
        mDeleted.removeAll(serverId);
    state().movedServerIds.clear();
}
