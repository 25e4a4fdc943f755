// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/containers/easmeetingrequestcontainer.h"
#include "easitems/eascalendaritem.h"
#include "storages/calendarstorage.h"
#include "support/stubfolders.h"

/** A calendar store that keeps nothing and answers as a test says. */
class StubCalendarStorage : public CalendarStorage
{
public:
    StubCalendarStorage()
        : CalendarStorage(nullptr)
    {
    }

    StubFolders folders;

    bool updateFolders(
        QList<EasFolderItem> &added, QList<EasFolderItem> &changed, const QStringList &deleted) override
    {
        return folders.update(added, changed, deleted);
    }
    bool updateItems(
        QList<EasCalendarItem> &, QList<EasCalendarItem> &, const QStringList &, QStringList &) override
    {
        return false;
    }
    bool touchItems(const QString &, const QList<QPair<QString, QString>> &) override { return false; }
    bool queryLocalUpdates(const QString &, qint64, qint64 &, QList<EasCalendarItem> &,
        QList<EasCalendarItem> &, QStringList &) override
    {
        return false;
    }
    bool syncTime(const QString &, qint64 &) override { return false; }
    bool setSyncTime(const QString &, qint64) override { return false; }
    bool cleanUpFolder(const EasFolderItem &) override { return false; }
    bool uploadedLocalChanges(
        QList<EasCalendarItem> &, QList<EasCalendarItem> &, const QStringList &) override
    {
        return false;
    }
    QByteArray iTIPRequestData(const EasMeetingRequestContainer &, const QString &, const QString &) override
    {
        return {};
    }
};
