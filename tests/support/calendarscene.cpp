// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/calendarscene.h"

#include "application/mapping/easdatabase.h"

#include <sqlitestorage.h>

#include <QTimeZone>

using KCalendarCore::Event;

namespace {

EasAccountId nextAccountId()
{
    static EasAccountId last = 70000;
    return ++last;
}

QDateTime utc(qint64 seconds)
{
    return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
}

} // namespace

CalendarScene::CalendarScene()
    : account(nextAccountId())
    , configuration(new FakeCalendarConfiguration(account.id()))
{
    account.calendar = configuration;
    account.setProtocolVersion(ExchangeActiveSync::ProtocolVersion141);
    context.account = &account;
    context.calendar = mKCal::ExtendedCalendar::Ptr::create(QTimeZone::utc());
    context.storage = mKCal::SqliteStorage::Ptr::create(context.calendar, databaseName());
    context.storage->open();
    notebook = mKCal::Notebook::Ptr::create(
        notebookUid, QStringLiteral("Calendar"), QString(), QString(), false, false, false, false, true);
    context.storage->addNotebook(notebook);

    EasFolderItem item;
    item.setServerId(folder);
    item.setLocalId(notebookUid);
    item.setType(EasFolderItem::DefaultCalendarFolder);
    item.setSavedInStorage(true);
    EasDatabase::instance()->onAccountAdded(accountId());
    EasDatabase::instance()->addFolderItems(accountId(), { item });
}

CalendarScene::~CalendarScene()
{
    EasDatabase::instance()->removeAccount(accountId());
    context.storage->close();
}

Event::Ptr CalendarScene::makeEvent(const QString &uid, qint64 modified)
{
    const Event::Ptr event(new Event);
    event->setUid(uid);
    event->setSummary(uid);
    event->setDtStart(QDateTime(QDate(2024, 5, 1), QTime(10, 0), QTimeZone("Europe/Berlin")));
    event->setDtEnd(event->dtStart().addSecs(3600));
    event->setCreated(utc(modified));
    event->setLastModified(utc(modified));
    return event;
}

Event::Ptr CalendarScene::makeSeries(const QString &uid, qint64 modified)
{
    const Event::Ptr event = makeEvent(uid, modified);
    event->recurrence()->setDaily(1);
    event->recurrence()->setDuration(10);
    event->setLastModified(utc(modified));
    return event;
}

bool CalendarScene::save(const Event::Ptr &event)
{
    return context.calendar->addEvent(event, notebookUid) && context.storage->save();
}

bool CalendarScene::saveSynced(const Event::Ptr &event, const QString &serverId)
{
    if (!save(event))
        return false;
    map(serverId, event->uid(), quint32(event->lastModified().toSecsSinceEpoch()));
    return true;
}

void CalendarScene::map(const QString &serverId, const QString &uid, quint32 stamp)
{
    EasCalendarItem item;
    item.setServerId(serverId);
    item.setLocalId(uid);
    item.setCollectionId(folder);
    item.setLocalTimestamp(stamp);
    EasDatabase::instance()->addCalendarItems(accountId(), { item });
}

QString CalendarScene::addSecondCalendar()
{
    const QString uid = QStringLiteral("notebook-of-f2");
    context.storage->addNotebook(mKCal::Notebook::Ptr::create(
        uid, QStringLiteral("Second"), QString(), QString(), false, false, false, false, true));
    EasFolderItem item;
    item.setServerId(QStringLiteral("f2"));
    item.setLocalId(uid);
    item.setType(EasFolderItem::UserCreatedCalendarFolder);
    item.setSavedInStorage(true);
    EasDatabase::instance()->addFolderItems(accountId(), { item });
    return uid;
}

bool CalendarScene::move(const QString &uid, const QString &notebookUid, qint64 modified)
{
    const Event::Ptr event = load(uid);
    if (!event || !context.calendar->setNotebook(event, notebookUid))
        return false;
    event->setLastModified(utc(modified));
    return context.storage->save();
}

bool CalendarScene::remove(const QString &uid, const QDateTime &recurrenceId)
{
    const Event::Ptr event = load(uid, recurrenceId);
    return event && context.calendar->deleteEvent(event) && context.storage->save();
}

bool CalendarScene::addException(const QString &uid, int day, const QString &summary, qint64 modified)
{
    const Event::Ptr series = load(uid);
    if (!series)
        return false;
    const QDateTime seriesModified = series->lastModified();
    const Event::Ptr exception =
        context.calendar->dissociateSingleOccurrence(series, series->dtStart().addDays(day))
            .staticCast<Event>();
    if (!exception)
        return false;
    series->setLastModified(seriesModified);
    exception->setSummary(summary);
    exception->setCreated(utc(modified));
    exception->setLastModified(utc(modified));
    return save(exception);
}

Event::Ptr CalendarScene::load(const QString &uid, const QDateTime &recurrenceId)
{
    context.calendar->close();
    context.storage->loadSeries(uid);
    return context.calendar->event(uid, recurrenceId);
}
