// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/mapping/easdatabase.h"
#include "storages/calendar/calendarlocalchanges.h"
#include "support/calendarscene.h"

#include <QObject>

#include <memory>

/** What tests of local changes share: a scene, and searches between the synced state and the user's edits. */
class LocalChangesTestBase : public QObject
{
    Q_OBJECT

protected:
    /** What one search finds. */
    struct Found
    {
        LocalQuery answer = LocalQuery::StoreSilent;
        qint64 queryTime = 0;
        QList<EasCalendarItem> added;
        QList<EasCalendarItem> updated;
        QStringList deleted;

        bool isEmpty() const { return added.isEmpty() && updated.isEmpty() && deleted.isEmpty(); }
    };

    std::unique_ptr<CalendarScene> mScene;
    std::unique_ptr<CalendarLocalChanges> mChanges;
    /** Between the time of the synced events and that of the user's edits. */
    const qint64 mLastSync = 1650000000;

    Found query(qint64 after = 0, UploadBudget *budget = nullptr)
    {
        return queryFolder(mScene->folder, after, budget);
    }

    Found queryFolder(const QString &folder, qint64 after = 0, UploadBudget *budget = nullptr)
    {
        Found found;
        found.answer = mChanges->queryLocalUpdates(folder, after == 0 ? mLastSync : after, found.queryTime,
            found.added, found.updated, found.deleted, budget);
        return found;
    }

    /** What a request does once the server has taken everything. */
    bool acknowledge(Found &found)
    {
        for (EasCalendarItem &item : found.added)
            item.setServerId(item.collectionId() + QStringLiteral(":new-") + item.localId());
        return mChanges->uploadedLocalChanges(found.added, found.updated, found.deleted)
            && EasDatabase::instance()->calendarItemsChanges(
                mScene->accountId(), found.added, found.updated, found.deleted, {});
    }

    static KCalendarCore::Event::Ptr event(const QString &uid, qint64 modified = 1600000000)
    {
        return CalendarScene::makeEvent(uid, modified);
    }

    bool saveSeries()
    {
        return mScene->saveSynced(
            CalendarScene::makeSeries(QStringLiteral("series-1")), QStringLiteral("f1:s"));
    }

    QDateTime day(int number) const
    {
        return CalendarScene::makeEvent(QStringLiteral("any")).data()->dtStart().addDays(number);
    }

    void setVersion(ExchangeActiveSync::ProtocolVersion version)
    {
        mScene->account.setProtocolVersion(version);
    }

protected Q_SLOTS:
    void init()
    {
        mScene = std::make_unique<CalendarScene>();
        mChanges = std::make_unique<CalendarLocalChanges>(mScene->context);
    }

    void cleanup()
    {
        mChanges.reset();
        mScene.reset();
    }
};
