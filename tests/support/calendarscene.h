// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/eascalendaritem.h"
#include "storages/calendar/calendarstorecontext.h"
#include "support/fakeaccount.h"
#include "support/fakeconfigurations.h"

#include <KCalendarCore/Event>

#include <QTemporaryDir>

/**
 * A calendar store of its own with one notebook, which is the local side of the server's folder "f1", and an
 * account of its own in the mapping database.
 */
class CalendarScene
{
public:
    CalendarScene();
    ~CalendarScene();
    Q_DISABLE_COPY(CalendarScene)

    EasAccountId accountId() const { return account.id(); }
    QString databaseName() const { return mFolder.filePath(QStringLiteral("calendar")); }

    /** Berlin time, one hour; the last change was in the past. */
    static KCalendarCore::Event::Ptr makeEvent(const QString &uid, qint64 modified = 1600000000);
    /** The same on each day, ten times. */
    static KCalendarCore::Event::Ptr makeSeries(const QString &uid, qint64 modified = 1600000000);

    /** Into the store; created and modified stay as they are in the event. */
    bool save(const KCalendarCore::Event::Ptr &event);
    /** As a sync leaves it: the mapping knows the event under the server id, as old as it is now. */
    bool saveSynced(const KCalendarCore::Event::Ptr &event, const QString &serverId);
    /** What the user does to an event: load, change, save; it counts as changed at this time. */
    template <typename Edit> bool edit(const QString &uid, const Edit &edit, qint64 modified = 1700000000)
    {
        const KCalendarCore::Event::Ptr event = load(uid);
        if (!event)
            return false;
        edit(event);
        event->setLastModified(QDateTime::fromSecsSinceEpoch(modified, Qt::UTC));
        return context.storage->save();
    }
    /** A second calendar of the account, the local side of the server's folder "f2". */
    QString addSecondCalendar();
    /** What the user does: the event stands in another calendar, and counts as changed at this time. */
    bool move(const QString &uid, const QString &notebookUid, qint64 modified = 1700000000);
    bool remove(const QString &uid, const QDateTime &recurrenceId = QDateTime());
    /** An exception of a series on the day so many days after its first, changed at this time. */
    bool addException(const QString &uid, int day, const QString &summary, qint64 modified = 1700000000);
    /** Fresh from the store. */
    KCalendarCore::Event::Ptr load(const QString &uid, const QDateTime &recurrenceId = QDateTime());
    void map(const QString &serverId, const QString &uid, quint32 stamp);

    FakeAccount account;
    QSharedPointer<FakeCalendarConfiguration> configuration;
    CalendarStoreContext context;
    mKCal::Notebook::Ptr notebook;
    const QString notebookUid = QStringLiteral("notebook-of-f1");
    const QString folder = QStringLiteral("f1");

private:
    QTemporaryDir mFolder;
};
