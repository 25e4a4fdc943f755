// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/calendarbed.h"

#include "application/mapping/easdatabase.h"
#include "storages/calendar/calendarstorageimpl.h"

#include <QDir>

using KCalendarCore::Event;

namespace {

EasAccountId nextAccountId()
{
    static EasAccountId last = 700;
    return ++last;
}

} // namespace

CalendarBed::CalendarBed()
    : account(nextAccountId())
    , configuration(new FakeCalendarConfiguration(account.id()))
    , mFolderOfStore(QDir::homePath() + QStringLiteral("/calendar-XXXXXX"))
    , mFolder(folder(QStringLiteral("5"), QStringLiteral("Calendar"), EasFolderItem::DefaultCalendarFolder))
{
    qputenv("SQLITESTORAGEDB", mFolderOfStore.filePath(QStringLiteral("db")).toLocal8Bit());
    account.calendar = configuration;
    storage = std::make_unique<CalendarStorageImpl>(account, nullptr);
    QList<EasFolderItem> added { mFolder };
    QList<EasFolderItem> changed;
    if (!storage->updateFolders(added, changed, {}) || added.first().localId().isEmpty()
        || !EasDatabase::instance()->addFolderItems(account.id(), added))
        qFatal("no calendar folder");
    mFolder = added.first();
}

CalendarBed::~CalendarBed()
{
    storage.reset();
    if (mDevice.storage)
        mDevice.storage->close();
    EasDatabase::instance()->removeAccount(account.id());
    qunsetenv("SQLITESTORAGEDB");
}

bool CalendarBed::apply(
    QList<EasCalendarItem> &added, QList<EasCalendarItem> &updated, const QStringList &deleted)
{
    QStringList replaced;
    return storage->updateItems(added, updated, deleted, replaced)
        && EasDatabase::instance()->calendarItemsChanges(account.id(), added, updated, deleted, replaced);
}

bool CalendarBed::add(const EasCalendarItem &item)
{
    QList<EasCalendarItem> added { item };
    QList<EasCalendarItem> updated;
    return apply(added, updated);
}

bool CalendarBed::change(const EasCalendarItem &item)
{
    QList<EasCalendarItem> added;
    QList<EasCalendarItem> updated { item };
    return apply(added, updated);
}

bool CalendarBed::remove(const QString &serverId)
{
    QList<EasCalendarItem> none;
    QList<EasCalendarItem> noneEither;
    return apply(none, noneEither, { serverId });
}

bool CalendarBed::applyWithoutMapping(QList<EasCalendarItem> added)
{
    QList<EasCalendarItem> updated;
    QStringList replaced;
    return storage->updateItems(added, updated, {}, replaced);
}

EasCalendarItem CalendarBed::blank(const QString &serverId) const
{
    EasCalendarItem item;
    item.setServerId(serverId);
    item.setCollectionId(mFolder.serverId());
    return item;
}

EasCalendarItem CalendarBed::item(const QString &serverId) const
{
    EasCalendarItem item = blank(serverId);
    item.setSubject(QStringLiteral("Event ") + serverId);
    item.setStartTime(QStringLiteral("20260304T080000Z"));
    item.setEndTime(QStringLiteral("20260304T090000Z"));
    item.setUid(QStringLiteral("uid-") + serverId);
    return item;
}

EasFolderItem CalendarBed::folder(
    const QString &serverId, const QString &name, EasFolderItem::FolderType type)
{
    EasFolderItem folder;
    folder.setServerId(serverId);
    folder.setServerParentId(QStringLiteral("0"));
    folder.setDisplayName(name);
    folder.setType(type);
    return folder;
}

QString CalendarBed::localId(const QString &serverId) const
{
    return EasDatabase::instance()->serverToLocalCalendarIds(account.id())->value(serverId);
}

CalendarStoreContext &CalendarBed::device()
{
    if (!mDevice.calendar) {
        mDevice.account = &account;
        mDevice.calendar = mKCal::ExtendedCalendar::Ptr::create(QTimeZone::utc());
        mDevice.storage = mKCal::ExtendedCalendar::defaultStorage(mDevice.calendar);
        if (!mDevice.storage->open())
            qFatal("no store");
    }
    mDevice.calendar->close();
    if (!mDevice.storage->load())
        qFatal("the store cannot be read");
    return mDevice;
}

Event::Ptr CalendarBed::event(const QString &serverId)
{
    return device().calendar->event(localId(serverId));
}

Event::Ptr CalendarBed::exception(const QDateTime &recurrenceId, const QString &serverId)
{
    return device().calendar->event(localId(serverId), recurrenceId);
}

Event::List CalendarBed::exceptions(const QString &serverId)
{
    const Event::Ptr series = event(serverId);
    return series ? mDevice.calendar->eventInstances(series) : Event::List();
}

Event::List CalendarBed::events()
{
    return device().calendar->rawEvents();
}
