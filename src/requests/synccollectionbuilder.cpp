// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/synccollectionbuilder.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "configurations/calendaraccountconfiguration.h"
#include "configurations/contactsaccountconfiguration.h"
#include "configurations/emailaccountconfiguration.h"
#include "easitems/eascalendaritem.h"
#include "easitems/eascontactsitem.h"
#include "easitems/easemailitem.h"
#include "easitems/emailserverid.h"
#include "protocol/base/protocolutils.h"
#include "protocol/elements/airsyncbasepreference.h"
#include "protocol/elements/airsyncoptions.h"
#include "protocol/elements/synccommandadd.h"
#include "protocol/elements/synccommandchange.h"
#include "protocol/elements/synccommanddelete.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "requests/syncstate.h"
#include "storages/calendarstorage.h"
#include "storages/contactstorage.h"
#include "storages/mailstorage.h"

namespace {

/** The mail folders that take part in Sync; an outbox belongs to the hierarchy alone. */
bool isSynchronizedMail(const EasFolderItem &folder)
{
    return folder.isEmail() && folder.type() != EasFolderItem::DefaultOutboxFolder;
}

QString className(const EasFolderItem &folder)
{
    if (folder.isCalendar())
        return ProtocolUtils::ClassCalendar;
    if (folder.isContacts())
        return ProtocolUtils::ClassContacts;
    return folder.isEmail() ? QString(ProtocolUtils::ClassEmail) : QString();
}

QSharedPointer<AirSyncBasePreference> bodyPreference(EasBodyContainer::BodyType type)
{
    QSharedPointer<AirSyncBasePreference> preference(
        new AirSyncBasePreference(Wbxml::AirSyncBase::BodyPreference.token, nullptr));
    preference->setType(type);
    return preference;
}

template <typename Command, typename Items, typename Setter>
void appendCommand(SyncCollection &collection, const Items &items, Setter setter)
{
    if (items.isEmpty())
        return;
    auto *command = new Command;
    (command->*setter)(items);
    collection.appendCommand(command);
}

} // namespace

SyncCollectionBuilder::SyncCollectionBuilder(EasAccount &account, SyncState &state)
    : mAccount(account)
    , mState(state)
{
}

Lookup<SyncCollection> SyncCollectionBuilder::setupSyncCollection(const EasFolderItem &folder)
{
    const bool initial = folder.syncKey().isEmpty() || folder.syncKey() == ProtocolUtils::InitialSyncKey;
    qCDebug(eas()) << "Server ID: " << folder.serverId() << ", syncKey: " << folder.syncKey();

    SyncCollection collection;
    collection.setId(folder.serverId());
    collection.setLocalId(folder.localId());
    collection.setSyncKey(initial ? QString(ProtocolUtils::InitialSyncKey) : folder.syncKey());
    collection.setGetChanges(!initial);
    collection.setDeletesAsMoves(initial);
    // Servers of the oldest version do not know what a collection holds before they are told.
    if (mAccount.protocolVersion() == ExchangeActiveSync::ProtocolVersion120)
        collection.setClass(className(folder));
    if (initial)
        return collection;

    collection.setDeletesAsMoves(false);
    setupOptions(collection, folder);
    return appendLocalChanges(collection, folder) ? Lookup<SyncCollection>(collection)
                                                  : Lookup<SyncCollection>::unread();
}

void SyncCollectionBuilder::setupOptions(SyncCollection &collection, const EasFolderItem &folder)
{
    auto *options = new AirSyncOptions;
    collection.setOptions(options);
    options->setConflicts(mAccount.serverConflictPolicy() == AirSyncOptions::ServerReplacesClient
            ? AirSyncOptions::ServerReplacesClient
            : AirSyncOptions::ClientReplacesServer);
    if (isSynchronizedMail(folder))
        setupMailOptions(*options, folder);
    else if (folder.isContacts())
        options->appendBodyPreference(bodyPreference(EasBodyContainer::PlainTextBodyType));
    else if (folder.isCalendar())
        setupCalendarOptions(collection, *options);
}

void SyncCollectionBuilder::setupMailOptions(AirSyncOptions &options, const EasFolderItem &folder)
{
    QList<QSharedPointer<AirSyncBasePreference>> preferences { bodyPreference(
        EasBodyContainer::PlainTextBodyType) };
    if (folder.type() != EasFolderItem::DefaultDraftsFolder)
        preferences.append(bodyPreference(EasBodyContainer::HTMLBodyType));
    options.setMimeTruncation(AirSyncOptions::MimeTruncationType(0));
    options.setMimeSupport(AirSyncOptions::MimeSupportType(1));

    const auto configuration = mAccount.emailConfiguration();
    if (configuration)
        setFilter(options, configuration->syncPastTime());
    else
        qCWarning(eas()) << "Email configuration is null";
    for (const QSharedPointer<AirSyncBasePreference> &preference : qAsConst(preferences)) {
        if (configuration && mAccount.protocolVersion() >= ExchangeActiveSync::ProtocolVersion140)
            preference->setPreview(configuration->previewSize());
        options.appendBodyPreference(preference);
    }
}

void SyncCollectionBuilder::setupCalendarOptions(SyncCollection &collection, AirSyncOptions &options)
{
    collection.setDeletesAsMoves(true);
    options.appendBodyPreference(bodyPreference(EasBodyContainer::PlainTextBodyType));
    const auto configuration = mAccount.calendarConfiguration();
    if (configuration)
        setFilter(options, configuration->syncPastTime());
    else
        qCWarning(eas()) << "calendar config is null";
}

void SyncCollectionBuilder::setFilter(AirSyncOptions &options, int syncPastTime) const
{
    if (syncPastTime < 0 || syncPastTime > 8)
        qCWarning(eas()) << "unhandled sync past time value, check account settings" << syncPastTime;
    else
        options.setFilter(AirSyncOptions::FilterType(syncPastTime));
}

bool SyncCollectionBuilder::appendLocalChanges(SyncCollection &collection, const EasFolderItem &folder)
{
    UploadProgress &progress = mState.uploads[collection.id()];
    mBudget.beginFolder(progress.sent);
    if (!collectLocalChanges(collection, folder))
        return false;
    progress.sending = mBudget.taken();
    progress.isWaiting = mBudget.hasLeftOut();
    // What the server has changed comes last: it would take the place of changes that have not gone up.
    if (progress.isWaiting)
        collection.setGetChanges(false);
    return true;
}

template <typename Item> void SyncCollectionBuilder::keepWhatFits(QList<Item> &items)
{
    QList<Item> kept;
    for (const Item &item : qAsConst(items)) {
        if (!mBudget.take(item.localId()))
            continue;
        mBudget.note(item);
        kept.append(item);
    }
    items = kept;
}

void SyncCollectionBuilder::keepWhatFits(QStringList &deletedServerIds)
{
    QStringList kept;
    for (const QString &serverId : qAsConst(deletedServerIds)) {
        if (mBudget.take(UploadBudget::deletion(serverId)))
            kept.append(serverId);
    }
    deletedServerIds = kept;
}

bool SyncCollectionBuilder::collectLocalChanges(SyncCollection &collection, const EasFolderItem &folder)
{
    if (isSynchronizedMail(folder))
        return appendMailChanges(collection, folder);
    if (folder.isCalendar())
        return appendCalendarChanges(collection, folder);
    return !folder.isContacts() || appendContactChanges(collection, folder);
}

bool SyncCollectionBuilder::appendMailChanges(SyncCollection &collection, const EasFolderItem &folder)
{
    const QSharedPointer<MailStorage> storage = mAccount.mailStorage();
    if (!storage) {
        qCWarning(eas()) << "MailStorage is null";
        return true;
    }
    const Lookup<QList<EasEmailItem>> updated = storage->updatedEmails(folder.localId());
    const Lookup<QList<KeptEmailId>> keptIds = storage->deletedEmails(folder.localId());
    if (!updated || !keptIds)
        return false;
    QList<EasEmailItem> changed = *updated;
    keepWhatFits(changed);
    for (EasEmailItem &item : changed)
        item.setServerId(KeptEmailId(item.serverId()).onWire().text());
    QStringList deleted;
    QStringList fitting = KeptEmailId::texts(*keptIds);
    keepWhatFits(fitting);
    for (const QString &keptId : qAsConst(fitting))
        deleted.append(KeptEmailId(keptId).onWire().text());

    appendCommand<SyncCommandChange>(collection, changed, &SyncCommandChange::setEmailItems);
    appendCommand<SyncCommandDelete>(collection, deleted, &SyncCommandDelete::setServerIds);
    return true;
}

bool SyncCollectionBuilder::appendContactChanges(SyncCollection &collection, const EasFolderItem &folder)
{
    const auto configuration = mAccount.contactsConfiguration();
    const QSharedPointer<ContactStorage> storage = mAccount.contactStorage();
    if (!configuration)
        qCWarning(eas()) << "contacts config is null";
    if (!configuration || !configuration->syncLocalContacts() || !storage)
        return true;
    QList<EasContactsItem> added;
    QList<EasContactsItem> changed;
    QStringList deleted;
    const LocalQuery answer = storage->queryChanges(folder, &added, &changed, &deleted, &mBudget);
    if (answer != LocalQuery::Answered) {
        qCWarning(eas()) << "Failed to retreive changes in local contacts";
        return answer != LocalQuery::MappingFailed;
    }
    keepWhatFits(added);
    keepWhatFits(changed);
    keepWhatFits(deleted);
    appendCommand<SyncCommandAdd>(collection, added, &SyncCommandAdd::setContactItems);
    appendCommand<SyncCommandChange>(collection, changed, &SyncCommandChange::setContactItems);
    appendCommand<SyncCommandDelete>(collection, deleted, &SyncCommandDelete::setServerIds);
    return true;
}

bool SyncCollectionBuilder::appendCalendarChanges(SyncCollection &collection, const EasFolderItem &folder)
{
    const QSharedPointer<CalendarStorage> storage = mAccount.calendarStorage();
    if (!storage) {
        qCWarning(eas()) << "calendarStorage is null";
        return true;
    }
    const auto localFolders = EasDatabase::instance()->serverToLocalFolderIds(mAccount.id());
    if (!localFolders)
        return false;
    const QString localFolder = localFolders->value(folder.serverId());
    if (!localFolder.isEmpty())
        return appendCalendarChanges(collection, *storage, localFolder);
    qCWarning(eas()) << "No local folder for serverId:" << folder.serverId();
    return true;
}

bool SyncCollectionBuilder::appendCalendarChanges(
    SyncCollection &collection, CalendarStorage &storage, const QString &localFolder)
{
    qint64 time = 0;
    qint64 newTime = 0;
    QList<EasCalendarItem> added;
    QList<EasCalendarItem> changed;
    QStringList deleted;
    const LocalQuery answer = storage.syncTime(localFolder, time)
        ? storage.queryLocalUpdates(localFolder, time + 1, newTime, added, changed, deleted, &mBudget)
        : LocalQuery::StoreSilent;
    if (answer != LocalQuery::Answered) {
        qCWarning(eas()) << "Failed querying local updates";
        return answer != LocalQuery::MappingFailed;
    }
    UploadProgress &progress = mState.uploads[collection.id()];
    // What is changed between two parts is not looked for in the later one.
    if (progress.sent.isEmpty())
        progress.queryTime = newTime;
    collection.setQueryTime(progress.queryTime);
    keepWhatFits(added);
    keepWhatFits(changed);
    keepWhatFits(deleted);
    for (const EasCalendarItem &item : qAsConst(changed)) {
        if (item.attachments().isEmpty())
            continue;
        qCInfo(eas()) << "Setting ClientReplacesServer policy..";
        collection.options()->setConflicts(AirSyncOptions::ClientReplacesServer);
        break;
    }

    QList<QPair<QString, QString>> deletedOccurrences;
    if (mAccount.protocolVersion() >= ExchangeActiveSync::ProtocolVersion160) {
        deferNewExceptions(collection, added);
        deletedOccurrences = takeDeletedOccurrences(changed);
    }
    appendCommand<SyncCommandAdd>(collection, added, &SyncCommandAdd::setCalendarItems);
    appendCommand<SyncCommandChange>(collection, changed, &SyncCommandChange::setCalendarItems);
    if (!deleted.isEmpty() || !deletedOccurrences.isEmpty()) {
        auto *command = new SyncCommandDelete;
        command->setServerIds(deleted);
        command->setInstanceIds(deletedOccurrences);
        collection.appendCommand(command);
    }
    return true;
}

void SyncCollectionBuilder::deferNewExceptions(
    const SyncCollection &collection, const QList<EasCalendarItem> &added)
{
    const QList<QPair<QString, QString>> touched = mState.calendarExceptionsTouched.value(collection.id());
    for (const EasCalendarItem &item : added) {
        const QList<EasCalendarItem> exceptions = item.exceptions();
        for (const EasCalendarItem &exception : exceptions) {
            const QPair<QString, QString> occurrence(item.localId(), exception.exceptionStartTime());
            if (touched.contains(occurrence))
                continue;
            QList<QPair<QString, QString>> &waiting = mState.calendarExceptionsForLater[collection.id()];
            if (!waiting.contains(occurrence))
                waiting.append(occurrence);
        }
    }
}

QList<QPair<QString, QString>> SyncCollectionBuilder::takeDeletedOccurrences(QList<EasCalendarItem> &changed)
{
    QList<QPair<QString, QString>> deleted;
    for (EasCalendarItem &item : changed) {
        QList<EasCalendarItem> kept;
        const QList<EasCalendarItem> exceptions = item.exceptions();
        for (const EasCalendarItem &exception : exceptions) {
            if (exception.exceptionDeleted())
                deleted.append({ exception.serverId().isEmpty() ? item.serverId() : exception.serverId(),
                    exception.exceptionStartTime() });
            else
                kept.append(exception);
        }
        item.setExceptions(kept);
    }
    return deleted;
}
