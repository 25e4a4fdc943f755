// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarfolders.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "common/exchangeactivesync.h"
#include "easitems/easfolderitem.h"
#include "protocol/base/protocolutils.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "storages/calendar/calendarattachmentservice.h"
#include "storages/calendar/calendarorigin.h"
#include "storages/calendar/calendarstorecontext.h"

#include <QSet>

using KCalendarCore::Event;
using mKCal::Notebook;

namespace {

/** The folder's server identifier, on its notebook. */
const QByteArray serverIdKey = QByteArrayLiteral("eas-server-id");

bool belongsTo(const Notebook::Ptr &notebook, EasAccountId accountId)
{
    return notebook && notebook->pluginName() == ExchangeActiveSync::ExchangeCalendarPluginName
        && notebook->account() == QString::number(accountId);
}

/** With the files of its events and what the mapping has of them; first, because the notebook leads there. */
bool deleteWithFiles(const CalendarStoreContext &context, const Notebook::Ptr &notebook)
{
    context.calendar->close();
    if (!context.storage->loadNotebookIncidences(notebook->uid()))
        return false;
    // Where that fails the notebook stays, for another attempt.
    return CalendarAttachmentService::forget(context.calendar->incidences(notebook->uid()))
        && context.storage->deleteNotebook(notebook);
}

} // namespace

CalendarFolders::CalendarFolders(const CalendarStoreContext &context)
    : mContext(context)
{
}

bool CalendarFolders::isOwn(const Notebook::Ptr &notebook) const
{
    return belongsTo(notebook, mContext.accountId());
}

bool CalendarFolders::updateFolders(
    QList<EasFolderItem> &added, QList<EasFolderItem> &updated, const QStringList &deleted)
{
    mCreated.clear();
    if (handleAddedFolders(added) && handleUpdatedFolders(updated) && handleDeletedFolders(deleted))
        return true;
    rollBackAddedFolderItems(added);
    return false;
}

bool CalendarFolders::handleAddedFolders(QList<EasFolderItem> &items)
{
    for (EasFolderItem &item : items) {
        if (item.isCalendar() && !createNotebook(item))
            return false;
    }
    return true;
}

bool CalendarFolders::handleUpdatedFolders(QList<EasFolderItem> &items)
{
    for (EasFolderItem &item : items) {
        if (!item.isCalendar())
            continue;
        if (!createNotebook(item) || !renameNotebook(item))
            return false;
    }
    return true;
}

bool CalendarFolders::handleDeletedFolders(const QStringList &serverIds)
{
    if (serverIds.isEmpty())
        return true;
    const Lookup<QMap<QString, QString>> localIds =
        EasDatabase::instance()->serverToLocalFolderIds(mContext.accountId());
    if (!localIds)
        return false;
    for (const QString &serverId : serverIds) {
        const QString uid = localIds->value(serverId);
        if (!uid.isEmpty() && isOwn(mContext.storage->notebook(uid)) && !removeNotebook(uid))
            return false;
    }
    return true;
}

Notebook::Ptr CalendarFolders::presentNotebook(const EasFolderItem &item) const
{
    const Notebook::Ptr known =
        item.localId().isEmpty() ? Notebook::Ptr() : mContext.storage->notebook(item.localId());
    if (isOwn(known))
        return known;
    const Notebook::List notebooks = mContext.storage->notebooks();
    for (const Notebook::Ptr &notebook : notebooks) {
        if (isOwn(notebook) && notebook->customProperty(serverIdKey) == item.serverId())
            return notebook;
    }
    return Notebook::Ptr();
}

bool CalendarFolders::createNotebook(EasFolderItem &item)
{
    if (!item.isCalendar()) {
        qCWarning(eas()) << "Wrong folder type:" << item.type();
        return false;
    }
    Notebook::Ptr notebook = presentNotebook(item);
    if (!notebook) {
        notebook = Notebook::Ptr::create(item.displayName(), QString());
        notebook->setIsReadOnly(false);
        notebook->setIsVisible(true);
        notebook->setRunTimeOnly(false);
        notebook->setIsMaster(false);
        notebook->setPluginName(ExchangeActiveSync::ExchangeCalendarPluginName);
        notebook->setEventsAllowed(true);
        notebook->setJournalsAllowed(false);
        notebook->setTodosAllowed(false);
        notebook->setAccount(QString::number(mContext.accountId()));
        notebook->setCustomProperty(serverIdKey, item.serverId());
        if (!mContext.storage->addNotebook(notebook)) {
            qCCritical(eas()) << "Cannot add new notebook" << item.serverId();
            return false;
        }
        mCreated.append(notebook->uid());
    }
    if (notebook->uid().isEmpty()) {
        qCCritical(eas()) << "Failed saving notebook" << item.serverId();
        return false;
    }
    item.setSavedInStorage(true);
    item.setLocalId(notebook->uid());
    return true;
}

bool CalendarFolders::renameNotebook(const EasFolderItem &item)
{
    const Notebook::Ptr notebook = presentNotebook(item);
    if (item.displayName().isEmpty() || notebook->name() == item.displayName())
        return true;
    notebook->setName(item.displayName());
    if (mContext.storage->updateNotebook(notebook))
        return true;
    qCCritical(eas()) << "failed to update notebook" << item.serverId();
    return false;
}

bool CalendarFolders::removeNotebook(const QString &uid)
{
    const Notebook::Ptr notebook = mContext.storage->notebook(uid);
    if (!notebook || deleteWithFiles(mContext, notebook))
        return true;
    qCCritical(eas()) << "failed to remove notebook" << uid;
    return false;
}

void CalendarFolders::rollBackAddedFolderItems(QList<EasFolderItem> &items)
{
    for (EasFolderItem &item : items) {
        if (!mCreated.contains(item.localId()))
            continue;
        item.setSavedInStorage(false);
        item.setLocalId(QString());
    }
    for (const QString &uid : qAsConst(mCreated))
        removeNotebook(uid);
    mCreated.clear();
}

bool CalendarFolders::repairFolders()
{
    EasDatabase *database = EasDatabase::instance();
    const Lookup<QList<EasFolderItem>> rows = database->calendarFolderItems(mContext.accountId());
    if (!rows)
        return false;
    for (EasFolderItem row : *rows) {
        if (row.savedInStorage() && presentNotebook(row))
            continue;
        qCInfo(eas()) << "Making the notebook of folder" << row.serverId();
        if (!createNotebook(row))
            return false;
        // Events that had gone with a notebook are nothing that the server would send again by itself.
        row.setSyncKey(ProtocolUtils::InitialSyncKey);
        row.appendChangedField(Wbxml::AirSync::SyncKey.key());
        if (!database->updateFolderItems(mContext.accountId(), { row })
            || !database->clearCalendarFolder(mContext.accountId(), row.serverId()))
            return false;
    }
    return true;
}

bool CalendarFolders::deleteEvent(const QString &localId) const
{
    const Event::Ptr event = mContext.calendar->event(localId);
    if (!event) {
        qCInfo(eas()) << "Event not found, with localId:" << localId;
        return true;
    }
    if (!mContext.calendar->eventInstances(event).isEmpty()
        && !mContext.calendar->deleteEventInstances(event)) {
        qCCritical(eas()) << "Failed deleting event instances, with localId:" << localId;
        return false;
    }
    if (!mContext.calendar->deleteEvent(event)) {
        qCCritical(eas()) << "Failed deleting event, with localId:" << localId;
        return false;
    }
    return true;
}

bool CalendarFolders::cleanUpFolder(const EasFolderItem &folder) const
{
    const Lookup<QStringList> mapped =
        EasDatabase::instance()->localCalendarIds(mContext.accountId(), folder.serverId());
    if (!mapped)
        return false;
    const Notebook::Ptr notebook = presentNotebook(folder);
    if (!notebook)
        return true;
    QStringList localIds = *mapped;
    mContext.calendar->close();
    if (!mContext.storage->loadNotebookIncidences(notebook->uid()))
        return false;
    // Those that an interruption left without a row came from the server as well.
    const KCalendarCore::Incidence::List incidences = mContext.calendar->incidences(notebook->uid());
    for (const KCalendarCore::Incidence::Ptr &incidence : incidences) {
        const Event::Ptr event = incidence.dynamicCast<Event>();
        if (event && !event->hasRecurrenceId()
            && !CalendarOrigin::serverId(*event, mContext.accountId()).isEmpty())
            localIds.append(event->uid());
    }
    const QSet<QString> distinct(localIds.cbegin(), localIds.cend());
    for (const QString &localId : distinct) {
        if (!deleteEvent(localId))
            return false;
    }
    if (mContext.storage->save(mKCal::ExtendedStorage::PurgeDeleted)) {
        KCalendarCore::Incidence::List gone;
        std::copy_if(incidences.cbegin(), incidences.cend(), std::back_inserter(gone),
            [&distinct](const KCalendarCore::Incidence::Ptr &incidence) {
                return distinct.contains(incidence->uid());
            });
        return CalendarAttachmentService::forget(gone);
    }
    qCCritical(eas()) << "Faled to save changes into the storage";
    return false;
}

void CalendarFolders::updateVisibilities(bool visible)
{
    const Notebook::List notebooks = mContext.storage->notebooks();
    for (const Notebook::Ptr &notebook : notebooks) {
        if (!isOwn(notebook) || notebook->isVisible() == visible)
            continue;
        notebook->setIsVisible(visible);
        if (!mContext.storage->updateNotebook(notebook))
            qCWarning(eas()) << "failed to update notebook" << notebook->uid();
    }
}

bool CalendarFolders::removeNotebooks(
    const CalendarStoreContext &context, const QList<EasAccountId> &accountIds)
{
    bool removed = true;
    const Notebook::List notebooks = context.storage->notebooks();
    for (const Notebook::Ptr &notebook : notebooks) {
        const bool gone = std::any_of(accountIds.cbegin(), accountIds.cend(),
            [&](EasAccountId accountId) { return belongsTo(notebook, accountId); });
        if (gone && !deleteWithFiles(context, notebook)) {
            qCCritical(eas()) << "failed to remove notebook" << notebook->uid();
            removed = false;
        }
    }
    return removed;
}
