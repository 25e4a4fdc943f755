// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"
#include "storages/calendarstorage.h"

class EasAccount;

/**
 * The calendar store of one account. It keeps folders alone so far: their rows stand in the mapping database,
 * without a counterpart on the device, and no event is taken or given. Events that reach it are refused, so
 * that a sync fails instead of losing them. Owned by the account.
 */
class CalendarStorageImpl : public CalendarStorage
{
    Q_OBJECT

public:
    CalendarStorageImpl(EasAccount &account, QObject *parent);
    ~CalendarStorageImpl() override;

    /** Removes what the store holds of accounts that are gone. */
    static bool cleanUpDeletedAccounts(const QList<EasAccountId> &accountIds);

    bool updateFolders(
        QList<EasFolderItem> &added, QList<EasFolderItem> &changed, const QStringList &deleted) override;
    bool updateItems(QList<EasCalendarItem> &added, QList<EasCalendarItem> &changed,
        const QStringList &deleted, QStringList &replaced) override;
    bool touchItems(const QString &folderServerId, const QList<QPair<QString, QString>> &instances) override;
    bool queryLocalUpdates(const QString &localFolderId, qint64 from, qint64 &newTime,
        QList<EasCalendarItem> &added, QList<EasCalendarItem> &changed,
        QStringList &deletedServerIds) override;
    bool syncTime(const QString &localFolderId, qint64 &time) override;
    bool setSyncTime(const QString &localFolderId, qint64 time) override;
    bool cleanUpFolder(const EasFolderItem &folder) override;
    bool uploadedLocalChanges(QList<EasCalendarItem> &added, QList<EasCalendarItem> &changed,
        const QStringList &deletedServerIds) override;
    QByteArray iTIPRequestData(const EasMeetingRequestContainer &request, const QString &organizer,
        const QString &description) override;

private:
    EasAccountId mAccountId;
};
