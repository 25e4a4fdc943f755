// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/containers/easmeetingrequestcontainer.h"
#include "easitems/eascalendaritem.h"
#include "storages/calendarstorage.h"
#include "support/itemlines.h"
#include "support/stubfolders.h"

#include <functional>

/** A calendar store that keeps a line for each call, and answers as a test says. */
class StubCalendarStorage : public CalendarStorage
{
public:
    StubCalendarStorage()
        : CalendarStorage(nullptr)
    {
    }

    StubFolders folders;
    /** "uploaded ", "received ", "time ", "query " or "touch " and what came with it. */
    QStringList calls;
    bool takesUploads = true;
    bool takesItems = true;
    LocalQuery answersQueries = LocalQuery::Answered;
    qint64 time = 0;
    qint64 newTime = 0;
    QList<EasCalendarItem> localAdded;
    QList<EasCalendarItem> localChanged;
    QStringList localDeleted;
    /** Server identifiers of events that are made anew. */
    QStringList replaces;
    std::function<void(const QString &call)> onCall;

    void init() override {}
    bool updateFolders(
        QList<EasFolderItem> &added, QList<EasFolderItem> &changed, const QStringList &deleted) override
    {
        return folders.update(added, changed, deleted);
    }
    bool updateItems(QList<EasCalendarItem> &added, QList<EasCalendarItem> &changed,
        const QStringList &deleted, QStringList &replaced) override
    {
        note(QStringLiteral("received"), added, changed, deleted);
        for (EasCalendarItem &item : added)
            item.setLocalId(QStringLiteral("local-") + item.serverId());
        replaced += replaces;
        return takesItems;
    }
    bool touchItems(const QString &folder, const QList<QPair<QString, QString>> &instances) override
    {
        QString call = QStringLiteral("touch ") + folder;
        for (const auto &instance : instances)
            call += QLatin1Char(' ') + instance.first + QLatin1Char('@') + instance.second;
        note(call);
        return takesItems;
    }
    LocalQuery queryLocalUpdates(const QString &folder, qint64 from, qint64 &until,
        QList<EasCalendarItem> &added, QList<EasCalendarItem> &changed, QStringList &deleted,
        UploadBudget *) override
    {
        note(QStringLiteral("query %1 %2").arg(folder).arg(from));
        added = localAdded;
        changed = localChanged;
        deleted = localDeleted;
        until = newTime;
        return answersQueries;
    }
    bool syncTime(const QString &, qint64 &result) override
    {
        result = time;
        return true;
    }
    bool setSyncTime(const QString &folder, qint64 value) override
    {
        note(QStringLiteral("time %1 %2").arg(folder).arg(value));
        return takesItems;
    }
    bool cleanUpFolder(const EasFolderItem &) override { return takesItems; }
    bool uploadedLocalChanges(
        QList<EasCalendarItem> &added, QList<EasCalendarItem> &changed, const QStringList &deleted) override
    {
        note(QStringLiteral("uploaded"), added, changed, deleted);
        return takesUploads;
    }
    QString formatTime(const QDateTime &) const override { return {}; }
    QByteArray iTIPRequestData(const EasMeetingRequestContainer &, const QString &, const QString &) override
    {
        return {};
    }
    QString encodeMeetingResponse(
        const QString &, EasItemsCommon::UserResponseType, bool, const QDateTime &) const override
    {
        return {};
    }
    QString getEventIcal(const QString &, const QDateTime &) const override { return {}; }
    QString instanceId(const QString &localId, const QDateTime &start) const override
    {
        return localId + QLatin1Char('@') + start.toUTC().toString(Qt::ISODate);
    }
    QString fileReferenceForAttachment(const QString &) const override { return QString(); }
    int estimatedDataSizeForAttachment(const QString &) const override { return 0; }
    bool updateAttachmentForEvent(const QByteArray &, const QString &) override { return true; }
    bool initStorage() override { return true; }

private:
    void note(const QString &call)
    {
        calls.append(call);
        if (onCall)
            onCall(call);
    }
    void note(const QString &name, const QList<EasCalendarItem> &added, const QList<EasCalendarItem> &changed,
        const QStringList &deleted)
    {
        note(name + ItemLines::of(added, changed, deleted));
    }
};
