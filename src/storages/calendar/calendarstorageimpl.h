// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"
#include "storages/calendar/calendarfolders.h"
#include "storages/calendar/calendarlocalchanges.h"
#include "storages/calendar/calendarstorecontext.h"
#include "storages/calendar/calendarstoreobserver.h"
#include "storages/calendarstorage.h"

class EasAccount;

/**
 * The calendar storage over the device's calendar.
 *
 * A front: notebooks, items of the server and local changes each have a collaborator of their own beside it.
 * The store tells of every change, also of those made here, one turn of the event loop later; from then on
 * nothing that was loaded before holds, so each operation loads what it needs and saves before it returns.
 * Owned by its account; main thread only.
 */
class CalendarStorageImpl : public CalendarStorage, private CalendarStoreObserver
{
    Q_OBJECT

public:
    CalendarStorageImpl(EasAccount &account, QObject *parent);
    ~CalendarStorageImpl() override;

    /** Removes what the store holds of accounts that are gone. */
    static bool cleanUpDeletedAccounts(const QList<EasAccountId> &accountIds);

    void init() override;
    bool updateFolders(
        QList<EasFolderItem> &added, QList<EasFolderItem> &changed, const QStringList &deleted) override;
    bool updateItems(QList<EasCalendarItem> &added, QList<EasCalendarItem> &changed,
        const QStringList &deleted, QStringList &replaced) override;
    bool touchItems(const QString &folderServerId, const QList<QPair<QString, QString>> &instances) override;
    LocalQuery queryLocalUpdates(const QString &localFolderId, qint64 from, qint64 &newTime,
        QList<EasCalendarItem> &added, QList<EasCalendarItem> &changed, QStringList &deletedServerIds,
        UploadBudget *budget = nullptr) override;
    bool syncTime(const QString &localFolderId, qint64 &time) override;
    bool setSyncTime(const QString &localFolderId, qint64 time) override;
    bool cleanUpFolder(const EasFolderItem &folder) override;
    bool uploadedLocalChanges(QList<EasCalendarItem> &added, QList<EasCalendarItem> &changed,
        const QStringList &deletedServerIds) override;
    QString formatTime(const QDateTime &time) const override;
    QString encodeMeetingResponse(const QString &requestData, EasItemsCommon::UserResponseType response,
        bool allowMissingMethod, const QDateTime &occurrence = {}) const override;
    QByteArray iTIPRequestData(const EasMeetingRequestContainer &request, const QString &summary,
        const QString &description) override;
    QString getEventIcal(const QString &localId, const QDateTime &occurrence = {}) const override;
    QString instanceId(const QString &localId, const QDateTime &start) const override;
    QString fileReferenceForAttachment(const QString &uri) const override;
    int estimatedDataSizeForAttachment(const QString &uri) const override;
    bool updateAttachmentForEvent(const QByteArray &data, const QString &uri) override;
    bool initStorage() override;

private:
    void onConfigurationChanged();
    void handleEnabledUpdated(bool enabled);
    void enable();
    void disable();
    void updateVisibilities(bool visible);
    bool isEnabled() const;
    bool storeAvailable() const;
    void closeStorage();
    void handleLocalUpdates();

    void storageModified(mKCal::ExtendedStorage *storage, const QString &info) override;
    void storageFinished(mKCal::ExtendedStorage *storage, bool error, const QString &info) override;

    CalendarStoreContext mContext;
    CalendarFolders mFolders;
    CalendarLocalChanges mLocalChanges;
};
