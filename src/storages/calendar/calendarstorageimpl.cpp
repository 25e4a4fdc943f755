// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarstorageimpl.h"

#include "application/account/easaccount.h"
#include "application/base/clock.h"
#include "application/base/logging.h"
#include "common/privilegedfolder.h"
#include "configurations/calendaraccountconfiguration.h"
#include "configurations/emailaccountconfiguration.h"
#include "easitems/eascalendaritem.h"
#include "easitems/easfolderitem.h"
#include "storages/calendar/calendarattachmentservice.h"
#include "storages/calendar/calendaritembatch.h"
#include "storages/calendar/calendarmeetings.h"
#include "storages/calendar/meetinginvitation.h"
#include "storages/calendar/meetingreply.h"

namespace {

/** Opens the device's calendar; false with what went wrong in the log. */
bool open(CalendarStoreContext &context)
{
    context.calendar = mKCal::ExtendedCalendar::Ptr::create(Clock::instance().timeZone());
    if (!context.calendar) {
        qCCritical(eas()) << "Cannot create calendar object";
        return false;
    }
    // Without it the calendar can do; programs that open it later would find another.
    PrivilegedFolder::make();
    context.storage = mKCal::ExtendedCalendar::defaultStorage(context.calendar);
    if (!context.storage) {
        qCCritical(eas()) << "Cannot create storage object";
        return false;
    }
    if (context.storage->open())
        return true;
    qCCritical(eas()) << "Cannot open calendar storage";
    context.storage.clear();
    context.calendar.clear();
    return false;
}

} // namespace

CalendarStorageImpl::CalendarStorageImpl(EasAccount &account, QObject *parent)
    : CalendarStorage(parent)
    , mContext { &account, {}, {} }
    , mFolders(mContext)
    , mLocalChanges(mContext)
{
    CalendarStorageImpl::init();
}

CalendarStorageImpl::~CalendarStorageImpl()
{
    closeStorage();
}

bool CalendarStorageImpl::cleanUpDeletedAccounts(const QList<EasAccountId> &accountIds)
{
    if (accountIds.isEmpty())
        return true;
    CalendarStoreContext context;
    if (!open(context))
        return false;
    const bool removed = CalendarFolders::removeNotebooks(context, accountIds);
    context.storage->close();
    return removed;
}

void CalendarStorageImpl::init()
{
    initStorage();
    const QSharedPointer<CalendarAccountConfiguration> configuration =
        mContext.account->calendarConfiguration();
    if (configuration) {
        connect(configuration.data(), &CalendarAccountConfiguration::calendarConfigurationChanged, this,
            &CalendarStorageImpl::onConfigurationChanged, Qt::UniqueConnection);
    }
}

bool CalendarStorageImpl::initStorage()
{
    closeStorage();
    if (!open(mContext))
        return false;
    mContext.storage->registerObserver(this);
    return true;
}

void CalendarStorageImpl::closeStorage()
{
    if (!mContext.storage)
        return;
    mContext.storage->unregisterObserver(this);
    mContext.calendar->close();
    mContext.storage->close();
    mContext.storage.clear();
    mContext.calendar.clear();
}

bool CalendarStorageImpl::storeAvailable() const
{
    if (mContext.isReady())
        return true;
    qCCritical(eas()) << "No storage";
    return false;
}

bool CalendarStorageImpl::isEnabled() const
{
    const QSharedPointer<CalendarAccountConfiguration> configuration =
        mContext.account->calendarConfiguration();
    if (configuration && configuration->enabled())
        return true;
    qCInfo(eas()) << "Calendar sync disabled";
    return false;
}

void CalendarStorageImpl::onConfigurationChanged()
{
    const QSharedPointer<CalendarAccountConfiguration> configuration =
        mContext.account->calendarConfiguration();
    if (configuration)
        handleEnabledUpdated(configuration->enabled());
}

void CalendarStorageImpl::handleEnabledUpdated(bool enabled)
{
    if (enabled)
        enable();
    else
        disable();
}

void CalendarStorageImpl::enable()
{
    updateVisibilities(true);
}

void CalendarStorageImpl::disable()
{
    updateVisibilities(false);
}

void CalendarStorageImpl::updateVisibilities(bool visible)
{
    if (storeAvailable())
        mFolders.updateVisibilities(visible);
}

bool CalendarStorageImpl::updateFolders(
    QList<EasFolderItem> &added, QList<EasFolderItem> &changed, const QStringList &deleted)
{
    return storeAvailable() && mFolders.repairFolders() && mFolders.updateFolders(added, changed, deleted);
}

bool CalendarStorageImpl::updateItems(QList<EasCalendarItem> &added, QList<EasCalendarItem> &changed,
    const QStringList &deleted, QStringList &replaced)
{
    if (added.isEmpty() && changed.isEmpty() && deleted.isEmpty()) {
        qCDebug(eas()) << "nothing to update";
        return true;
    }
    return isEnabled() && storeAvailable()
        && CalendarItemBatch(mContext, mLocalChanges).updateItems(added, changed, deleted, replaced);
}

bool CalendarStorageImpl::touchItems(
    const QString &folderServerId, const QList<QPair<QString, QString>> &instances)
{
    return mLocalChanges.touchItems(folderServerId, instances);
}

LocalQuery CalendarStorageImpl::queryLocalUpdates(const QString &localFolderId, qint64 from, qint64 &newTime,
    QList<EasCalendarItem> &added, QList<EasCalendarItem> &changed, QStringList &deletedServerIds,
    UploadBudget *budget)
{
    if (!isEnabled() || !storeAvailable())
        return LocalQuery::StoreSilent;
    return mLocalChanges.queryLocalUpdates(
        localFolderId, from, newTime, added, changed, deletedServerIds, budget);
}

bool CalendarStorageImpl::syncTime(const QString &localFolderId, qint64 &time)
{
    return mLocalChanges.syncTime(localFolderId, time);
}

bool CalendarStorageImpl::setSyncTime(const QString &localFolderId, qint64 time)
{
    return mLocalChanges.setSyncTime(localFolderId, time);
}

bool CalendarStorageImpl::cleanUpFolder(const EasFolderItem &folder)
{
    return isEnabled() && storeAvailable() && mFolders.cleanUpFolder(folder);
}

bool CalendarStorageImpl::uploadedLocalChanges(
    QList<EasCalendarItem> &added, QList<EasCalendarItem> &changed, const QStringList &deletedServerIds)
{
    return mLocalChanges.uploadedLocalChanges(added, changed, deletedServerIds);
}

QString CalendarStorageImpl::formatTime(const QDateTime &time) const
{
    return ExchangeActiveSync::dateTimeToString(time);
}

QString CalendarStorageImpl::encodeMeetingResponse(const QString &requestData,
    EasItemsCommon::UserResponseType response, bool allowMissingMethod, const QDateTime &occurrence) const
{
    qCDebug(eas()) << "User response code: " << response;
    qCDebug(easNetwork()) << "Request data:" << requestData;
    const QSharedPointer<EmailAccountConfiguration> configuration = mContext.account->emailConfiguration();
    if (!configuration) {
        qCWarning(eas()) << "No email configuration";
        return {};
    }
    MeetingReply reply(configuration->emailAddress(), response);
    reply.allowMissingMethod(allowMissingMethod);
    reply.setOccurrence(occurrence);
    return reply.encode(requestData);
}

QByteArray CalendarStorageImpl::iTIPRequestData(
    const EasMeetingRequestContainer &request, const QString &summary, const QString &description)
{
    return MeetingInvitation(request, mContext.protocolVersion()).encode(summary, description);
}

QString CalendarStorageImpl::getEventIcal(const QString &localId, const QDateTime &occurrence) const
{
    return storeAvailable() ? CalendarMeetings(mContext).iCal(localId, occurrence) : QString();
}

QString CalendarStorageImpl::instanceId(const QString &localId, const QDateTime &start) const
{
    return storeAvailable() ? CalendarMeetings(mContext).instanceId(localId, start) : QString();
}

QString CalendarStorageImpl::fileReferenceForAttachment(const QString &uri) const
{
    return CalendarAttachmentService::fileReference(uri);
}

int CalendarStorageImpl::estimatedDataSizeForAttachment(const QString &uri) const
{
    return CalendarAttachmentService::estimatedDataSize(uri);
}

bool CalendarStorageImpl::updateAttachmentForEvent(const QByteArray &data, const QString &uri)
{
    return CalendarAttachmentService().saveRemoteAttachment(data, uri, mContext.storage, mContext.calendar);
}

void CalendarStorageImpl::handleLocalUpdates()
{
    const QStringList changed = mLocalChanges.handleLocalUpdates();
    if (!changed.isEmpty())
        Q_EMIT changesAvailable(changed);
}

void CalendarStorageImpl::storageModified(mKCal::ExtendedStorage *storage, const QString &info)
{
    Q_UNUSED(storage)
    Q_UNUSED(info)
    handleLocalUpdates();
}

void CalendarStorageImpl::storageFinished(mKCal::ExtendedStorage *storage, bool error, const QString &info)
{
    Q_UNUSED(storage)
    if (error)
        qCWarning(eas()) << "The calendar storage failed:" << info;
}
