// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascalendaritem.h"
#include "easitems/easfolderitem.h"
#include "support/calendarscene.h"

#include <KCalendarCore/Event>

#include <QTemporaryDir>

#include <memory>

class CalendarStorageImpl;

/**
 * An account with one calendar folder, a store of its own and rows in the mapping database: items of a server
 * go in, events of the device's calendar come out.
 */
class CalendarBed
{
public:
    CalendarBed();
    ~CalendarBed();
    Q_DISABLE_COPY(CalendarBed)

    /** What a reply's handler does: store, then mapping. The lists are left as the storage left them. */
    bool apply(
        QList<EasCalendarItem> &added, QList<EasCalendarItem> &updated, const QStringList &deleted = {});
    bool add(const EasCalendarItem &item);
    bool change(const EasCalendarItem &item);
    bool remove(const QString &serverId);
    /** The store alone, as if the process ended before the mapping was written. */
    bool applyWithoutMapping(QList<EasCalendarItem> added);

    /** A plain item of an hour, in the bed's folder. */
    EasCalendarItem item(const QString &serverId = QStringLiteral("5:1")) const;
    /** An item without any value. */
    EasCalendarItem blank(const QString &serverId = QStringLiteral("5:1")) const;
    static EasFolderItem folder(const QString &serverId, const QString &name,
        EasFolderItem::FolderType type = EasFolderItem::UserCreatedCalendarFolder);

    QString localId(const QString &serverId = QStringLiteral("5:1")) const;

    /** The device's calendar as another program sees it: the whole store, read anew. */
    CalendarStoreContext &device();
    KCalendarCore::Event::Ptr event(const QString &serverId = QStringLiteral("5:1"));
    KCalendarCore::Event::Ptr exception(
        const QDateTime &recurrenceId, const QString &serverId = QStringLiteral("5:1"));
    KCalendarCore::Event::List exceptions(const QString &serverId = QStringLiteral("5:1"));
    KCalendarCore::Event::List events();
    /** Saves what was changed in the device's calendar since it was read. */
    bool savedOnDevice() { return mDevice.storage->save(); }
    QString notebookUid() const { return mFolder.localId(); }
    const EasFolderItem &folderItem() const { return mFolder; }

    FakeAccount account;
    QSharedPointer<FakeCalendarConfiguration> configuration;
    std::unique_ptr<CalendarStorageImpl> storage;

private:
    QTemporaryDir mFolderOfStore;
    EasFolderItem mFolder;
    CalendarStoreContext mDevice;
};
