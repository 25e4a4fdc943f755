// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendaritembatch.h"

#include "application/mapping/easdatabase.h"
#include "storages/calendar/calendarorigin.h"
#include "storages/calendar/calendarstorageimpl.h"
#include "support/calendarbed.h"
#include "support/calendarscene.h"
#include "support/logcollector.h"
#include "support/testclock.h"
#include "support/testmain.h"

#include <KCalendarCore/CalFormat>

#include <QDir>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <attachmentinfo.h>

#include <QUrl>
#include <QtTest>

using KCalendarCore::Event;

namespace {

const QString Id = QStringLiteral("5:1");

} // namespace

/** Replies as a whole: repeated, interrupted, late, and met by changes of the user's. */
class CalendarItemBatchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { mBed = std::make_unique<CalendarBed>(); }
    void cleanup() { mBed.reset(); }

    void aRepeatedAddIsAChange()
    {
        QVERIFY(mBed->add(mBed->item()));
        const QString uid = mBed->localId();
        EasCalendarItem again = mBed->item();
        again.setSubject(QStringLiteral("Later"));
        QVERIFY(mBed->add(again));
        QCOMPARE(mBed->events().size(), 1);
        QCOMPARE(mBed->localId(), uid);
        QCOMPARE(mBed->event()->summary(), QStringLiteral("Later"));
        QCOMPARE(rows(), 1);
    }

    void aRepeatedAddLeavesWhatTheUserMadeOfIt()
    {
        QVERIFY(mBed->add(mBed->item()));
        QVERIFY(mBed->add(mBed->item(QStringLiteral("5:2"))));
        edit([](const Event::Ptr &event) { event->setSummary(QStringLiteral("Mine")); });
        QList<EasCalendarItem> repeated { mBed->item(), mBed->item(QStringLiteral("5:2")) };
        repeated[1].setSubject(QStringLiteral("Theirs"));
        QList<EasCalendarItem> none;
        QVERIFY(mBed->apply(repeated, none));
        QCOMPARE(mBed->events().size(), 2);
        QCOMPARE(mBed->event()->summary(), QStringLiteral("Mine"));
        QCOMPARE(mBed->event(QStringLiteral("5:2"))->summary(), QStringLiteral("Theirs"));
        QCOMPARE(localChanges(), QStringList({ QStringLiteral("~Mine") }));
    }

    void anAddThatComesTwiceInOneReplyIsOne()
    {
        QList<EasCalendarItem> added { mBed->item(), mBed->item() };
        QList<EasCalendarItem> none;
        QVERIFY(mBed->apply(added, none));
        QCOMPARE(mBed->events().size(), 1);
        QCOMPARE(rows(), 1);
    }

    void whatAnInterruptionLeftIsNoChangeOfTheUsers()
    {
        QVERIFY(mBed->applyWithoutMapping({ mBed->item(), mBed->item(QStringLiteral("5:2")) }));
        QCOMPARE(mBed->events().size(), 2);
        const LogCollector log;
        QCOMPARE(localChanges(), QStringList());
        QCOMPARE(log.count(QStringLiteral("Removing an event that was stored and not recorded:")), 2);
        QVERIFY(mBed->events().isEmpty());
        QVERIFY(mBed->add(mBed->item()));
        QCOMPARE(mBed->events().size(), 1);
        QCOMPARE(localChanges(), QStringList());
    }

    void whatTheUserMadeStays()
    {
        addByUser(QStringLiteral("Mine"));
        QCOMPARE(localChanges(), QStringList({ QStringLiteral("+Mine") }));
        QCOMPARE(mBed->events().size(), 1);
    }

    void aCopyOfAnEventIsTheUsers()
    {
        QVERIFY(mBed->add(mBed->item()));
        CalendarStoreContext &device = mBed->device();
        const Event::Ptr copy(device.calendar->event(mBed->localId())->clone());
        copy->setUid(KCalendarCore::CalFormat::createUniqueId());
        copy->setSummary(QStringLiteral("Copy"));
        QVERIFY(CalendarOrigin::serverId(*copy, mBed->account.id()).isEmpty());
        QVERIFY(device.calendar->addEvent(copy, mBed->notebookUid()));
        QVERIFY(device.storage->save());
        QCOMPARE(localChanges(), QStringList({ QStringLiteral("+Copy") }));
        QCOMPARE(mBed->events().size(), 2);
    }

    void anEventThatCameFromAnotherAccountIsTheUsers()
    {
        const EasAccountId other = mBed->account.id() + 1000;
        const Event::Ptr event = CalendarScene::makeEvent(QStringLiteral("event-of-another-account"));
        CalendarOrigin::setServerId(*event, other, QStringLiteral("5:1"));
        QCOMPARE(CalendarOrigin::serverId(*event, other), QStringLiteral("5:1"));
        CalendarStoreContext &device = mBed->device();
        QVERIFY(device.calendar->addEvent(event, mBed->notebookUid()));
        QVERIFY(device.storage->save());
        QCOMPARE(localChanges(), QStringList({ QStringLiteral("+event-of-another-account") }));
        QCOMPARE(mBed->events().size(), 1);
    }

    void aLostMappingRemovesNothing()
    {
        // The database is there but cannot be read: that is no reason to take events away.
        QVERIFY(mBed->add(mBed->item()));
        QVERIFY(execute(QStringLiteral("ALTER TABLE calendar RENAME TO away")));
        qint64 time = 0;
        QList<EasCalendarItem> added;
        QList<EasCalendarItem> changed;
        QStringList deleted;
        QCOMPARE(mBed->storage->queryLocalUpdates(mBed->notebookUid(), 0, time, added, changed, deleted),
            LocalQuery::MappingFailed);
        QVERIFY(!mBed->storage->updateItems(added = { mBed->item() }, changed, {}, deleted));
        QVERIFY(execute(QStringLiteral("ALTER TABLE away RENAME TO calendar")));
        QCOMPARE(mBed->events().size(), 1);
    }

    void serverChangesAreNoneOfTheUsers()
    {
        QVERIFY(mBed->add(mBed->item()));
        QCOMPARE(localChanges(), QStringList());
        EasCalendarItem change = mBed->blank();
        change.setSubject(QStringLiteral("Renamed"));
        QVERIFY(mBed->change(change));
        QCOMPARE(localChanges(), QStringList());
        QVERIFY(mBed->remove(Id));
        QCOMPARE(localChanges(), QStringList());
    }

    void theServerWinsOverALocalEdit()
    {
        QVERIFY(mBed->add(mBed->item()));
        edit([](const Event::Ptr &event) { event->setSummary(QStringLiteral("Mine")); });
        QCOMPARE(localChanges(), QStringList({ QStringLiteral("~Mine") }));
        EasCalendarItem change = mBed->blank();
        change.setSubject(QStringLiteral("Theirs"));
        QVERIFY(mBed->change(change));
        QCOMPARE(mBed->event()->summary(), QStringLiteral("Theirs"));
        QCOMPARE(localChanges(), QStringList());
    }

    void aChangeOfADeletedEventIsPassedOver()
    {
        QVERIFY(mBed->add(mBed->item()));
        const QString uid = mBed->localId();
        deleteByUser(uid);
        EasCalendarItem change = mBed->item();
        const LogCollector log;
        QList<EasCalendarItem> none;
        QList<EasCalendarItem> updated { change };
        QVERIFY(mBed->apply(none, updated));
        QVERIFY(log.contains(QtInfoMsg,
            { QStringLiteral("Skipping update of already-deleted event:"), QStringLiteral("with server id:"),
                Id, QStringLiteral("and local id:"), uid }));
        QVERIFY(updated.isEmpty());
        QVERIFY(mBed->events().isEmpty());
        QCOMPARE(localChanges(), QStringList({ QStringLiteral("-5:1") }));
    }

    void aChangeOfAPurgedEventAddsIt()
    {
        QVERIFY(mBed->add(mBed->item()));
        const QString uid = mBed->localId();
        purge(uid);
        const LogCollector log;
        QVERIFY(mBed->change(mBed->item()));
        QVERIFY(log.contains(QtInfoMsg,
            { QStringLiteral("Found previously purged item:"), QStringLiteral("-> "), uid,
                QStringLiteral(", making addedItem.") }));
        QCOMPARE(mBed->events().size(), 1);
        QVERIFY(mBed->localId() != uid);
        QCOMPARE(rows(), 1);
    }

    void aRepeatedAddOfAPurgedEventAddsIt()
    {
        QVERIFY(mBed->add(mBed->item()));
        const QString uid = mBed->localId();
        purge(uid);
        QVERIFY(mBed->add(mBed->item()));
        QCOMPARE(mBed->events().size(), 1);
        QVERIFY(mBed->localId() != uid);
        QCOMPARE(rows(), 1);
    }

    void whatTheUserMovedToAnotherCalendarIsLeftAlone()
    {
        QVERIFY(mBed->add(mBed->item()));
        const QString localId = mBed->localId();
        const QString other = QStringLiteral("another calendar");
        CalendarStoreContext &device = mBed->device();
        QVERIFY(device.storage->addNotebook(mKCal::Notebook::Ptr::create(
            other, other, QString(), QString(), false, false, false, false, true)));
        const Event::Ptr event = device.calendar->event(localId);
        QVERIFY(device.calendar->setNotebook(event, other));
        event->setSummary(QStringLiteral("Moved"));
        QVERIFY(mBed->savedOnDevice());

        EasCalendarItem change = mBed->item();
        change.setSubject(QStringLiteral("Changed"));
        const LogCollector log;
        QVERIFY(mBed->change(change));
        QVERIFY(mBed->add(change));
        QCOMPARE(mBed->events().size(), 1);
        QCOMPARE(mBed->events().constFirst()->summary(), QStringLiteral("Moved"));
        QVERIFY(!log.contains(QStringLiteral("Found previously purged item:")));
        QVERIFY(mBed->remove(change.serverId()));
        QCOMPARE(mBed->events().size(), 1);
    }

    void anEditInTheSecondOfADownloadIsFound()
    {
        const TestClock clock(QDateTime::currentDateTimeUtc());
        EasCalendarItem item = mBed->item();
        EasRecurrenceContainer daily;
        daily.setType(EasRecurrenceContainer::DailyRecurrence);
        daily.setInterval(1);
        item.setRecurrence(daily);
        EasCalendarItem renamed;
        renamed.setExceptionStartTime(QStringLiteral("20260306T080000Z"));
        renamed.setSubject(QStringLiteral("Once"));
        item.setExceptions({ renamed });
        QVERIFY(mBed->add(item));
        const Event::Ptr event = mBed->event();
        event->setSummary(QStringLiteral("Edited at once"));
        event->setLastModified(clock.currentDateTimeUtc());
        QVERIFY(mBed->savedOnDevice());
        QList<EasCalendarItem> added;
        QList<EasCalendarItem> updated;
        QStringList deleted;
        qint64 time = 0;
        QCOMPARE(mBed->storage->queryLocalUpdates(mBed->notebookUid(), 0, time, added, updated, deleted),
            LocalQuery::Answered);
        QCOMPARE(updated.size(), 1);
        QCOMPARE(updated.constFirst().subject(), QStringLiteral("Edited at once"));
    }

    void attachmentsOfADeletedEventGoWithIt()
    {
        mBed->account.setProtocolVersion(ExchangeActiveSync::ProtocolVersion161);
        EasAttachmentContainer attachment;
        attachment.setFileReference(QStringLiteral("reference-of-deleted"));
        attachment.setContentId(QStringLiteral("content-of-deleted"));
        attachment.setDisplayName(QStringLiteral("a.txt"));
        EasCalendarItem item = mBed->item();
        item.setAttachments({ attachment });
        QVERIFY(mBed->add(item));
        const QString localId = mBed->localId();
        const QString uri = mBed->event()->attachments().constFirst().uri();
        QVERIFY(mBed->storage->updateAttachmentForEvent("bytes", uri));
        const QString path = QUrl(mKCal::AttachmentInfo(uri).contentLocation()).toLocalFile();
        QVERIFY(QFile::exists(path));
        QCOMPARE(EasDatabase::instance()->getCalendarAttachments(localId)->size(), 1);
        QVERIFY(mBed->remove(item.serverId()));
        QVERIFY(EasDatabase::instance()->getCalendarAttachments(localId)->isEmpty());
        QVERIFY(!QFile::exists(path));
    }

    void deletionsAreToleratedWhateverIsThere()
    {
        const LogCollector log;
        QVERIFY(mBed->remove(QStringLiteral("5:9")));
        QVERIFY(log.contains(QtInfoMsg,
            { QStringLiteral("No mapping:"), QStringLiteral("5:9"),
                QStringLiteral(". Ignoring this event.") }));

        QVERIFY(mBed->add(mBed->item()));
        deleteByUser(mBed->localId());
        QVERIFY(mBed->remove(Id));
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("Event was already locally deleted:") }));
        QCOMPARE(localChanges(), QStringList());

        QVERIFY(mBed->add(mBed->item()));
        purge(mBed->localId());
        QVERIFY(mBed->remove(Id));
        QVERIFY(log.contains(
            QtInfoMsg, { QStringLiteral("Event not found:"), Id, QStringLiteral("with local id:") }));
        QCOMPARE(rows(), 0);
    }

    void anEventThatMovedIsDeletedAndAdded()
    {
        QVERIFY(mBed->add(mBed->item()));
        QList<EasCalendarItem> added { mBed->item(QStringLiteral("5:2")) };
        QList<EasCalendarItem> none;
        QVERIFY(mBed->apply(added, none, { Id }));
        QCOMPARE(mBed->events().size(), 1);
        QVERIFY(mBed->event(QStringLiteral("5:2")));
        QVERIFY(mBed->localId().isEmpty());
    }

    void aWholeItemClearsWhatItLeavesOut()
    {
        EasCalendarItem item = mBed->item();
        item.setLocation(QStringLiteral("Room 1"));
        item.setCategories({ QStringLiteral("Work") });
        item.setReminder(15);
        item.setBodyContainerType(EasBodyContainer::PlainTextBodyType);
        item.setBodyContainerData(QStringLiteral("Text"));
        EasAttendeeContainer attendee;
        attendee.setEmail(QStringLiteral("bob@example.com"));
        item.setAttendees({ attendee });
        QVERIFY(mBed->add(item));
        // Without a stamp it is a piece; with one it is all that there is.
        EasCalendarItem change = mBed->item();
        QVERIFY(mBed->change(change));
        QCOMPARE(mBed->event()->location(), QStringLiteral("Room 1"));
        change.setDtStamp(QStringLiteral("20260301T000000Z"));
        QVERIFY(mBed->change(change));
        const Event::Ptr event = mBed->event();
        QCOMPARE(event->summary(), change.subject());
        QCOMPARE(event->location(), QString());
        QCOMPARE(event->description(), QString());
        QVERIFY(event->categories().isEmpty());
        QVERIFY(event->attendees().isEmpty());
        QVERIFY(event->alarms().isEmpty());
        QCOMPARE(localChanges(), QStringList());
    }

    void aSeriesCanEnd()
    {
        EasCalendarItem item = mBed->item();
        EasRecurrenceContainer recurrence;
        recurrence.setType(EasRecurrenceContainer::DailyRecurrence);
        item.setRecurrence(recurrence);
        EasCalendarItem moved;
        moved.setExceptionStartTime(QStringLiteral("20260305T080000Z"));
        EasCalendarItem gone;
        gone.setExceptionStartTime(QStringLiteral("20260306T080000Z"));
        gone.setExceptionDeleted(1);
        item.setExceptions({ moved, gone });
        QVERIFY(mBed->add(item));
        QCOMPARE(mBed->events().size(), 2);
        // First its exceptions are no more, then it is no series.
        EasCalendarItem change = mBed->item();
        change.setDtStamp(QStringLiteral("20260301T000000Z"));
        EasCalendarItem plainSeries = change;
        plainSeries.setRecurrence(recurrence);
        QVERIFY(mBed->change(plainSeries));
        QCOMPARE(mBed->events().size(), 1);
        QVERIFY(mBed->event()->recursAt(QDateTime(QDate(2026, 3, 6), QTime(8, 0), Qt::UTC)));
        QVERIFY(mBed->change(item));
        QCOMPARE(mBed->events().size(), 2);
        QVERIFY(mBed->change(change));
        QCOMPARE(mBed->events().size(), 1);
        QVERIFY(!mBed->event()->recurs());
        QCOMPARE(localChanges(), QStringList());
    }

    void nothingIsDoneWithNothing()
    {
        const LogCollector log;
        QList<EasCalendarItem> none;
        QVERIFY(mBed->apply(none, none));
        QVERIFY(log.contains(QtDebugMsg, { QStringLiteral("nothing to update") }));
    }

    void aDisabledCalendarTakesNothing()
    {
        mBed->configuration->isEnabled = false;
        const LogCollector log;
        QVERIFY(!mBed->add(mBed->item()));
        QVERIFY(log.contains(QtInfoMsg, { QStringLiteral("Calendar sync disabled") }));
        QVERIFY(mBed->events().isEmpty());
    }

    void itemsWithoutAFolderAreTold()
    {
        EasCalendarItem stray = mBed->item();
        stray.setCollectionId(QString());
        const LogCollector log;
        QList<EasCalendarItem> added { stray };
        QList<EasCalendarItem> none;
        QVERIFY(mBed->apply(added, none));
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Empty collection Id for item") }));
        QVERIFY(log.contains(QtWarningMsg, { QStringLiteral("Empty collection list") }));
        QVERIFY(added.isEmpty());
    }

    void withoutItsNotebookAFolderTakesNothing()
    {
        // The store would leave the event out and say that all is well.
        CalendarStoreContext &device = mBed->device();
        QVERIFY(device.storage->deleteNotebook(device.storage->notebook(mBed->notebookUid())));
        QVERIFY(mBed->storage->initStorage());
        const LogCollector log;
        QVERIFY(!mBed->add(mBed->item()));
        QVERIFY(log.contains(
            QtCriticalMsg, { QStringLiteral("No notebook for collection"), QStringLiteral("5") }));
    }

    void whatItLoadedBeforeDoesNotHold()
    {
        QVERIFY(mBed->add(mBed->item()));
        // Another program changes the event, and its notice has not come yet.
        edit([](const Event::Ptr &event) { event->setLocation(QStringLiteral("Room 9")); });
        EasCalendarItem change = mBed->blank();
        change.setSubject(QStringLiteral("Renamed"));
        QVERIFY(mBed->change(change));
        QCOMPARE(mBed->event()->location(), QStringLiteral("Room 9"));
        QCOMPARE(mBed->event()->summary(), QStringLiteral("Renamed"));
    }

    void theUsersChangesAreAnnounced()
    {
        QVERIFY(mBed->add(mBed->item()));
        QSignalSpy changes(mBed->storage.get(), &CalendarStorage::changesAvailable);
        QCoreApplication::processEvents();
        QVERIFY2(changes.isEmpty(), "own saves come back, and are no changes of the user's");
        edit([](const Event::Ptr &event) { event->setSummary(QStringLiteral("Mine")); });
        QTRY_VERIFY_WITH_TIMEOUT(!changes.isEmpty(), 60000);
        QCOMPARE(changes.first().first().toStringList(), QStringList({ mBed->notebookUid() }));
    }

    void anEventIsGivenAsICalendar()
    {
        QVERIFY(mBed->add(mBed->item()));
        const QString text = mBed->storage->getEventIcal(mBed->localId());
        QVERIFY(text.startsWith(QStringLiteral("BEGIN:VCALENDAR")));
        QVERIFY(text.contains(QStringLiteral("SUMMARY:Event 5:1")));
        QCOMPARE(mBed->storage->getEventIcal(QStringLiteral("nothing")), QString());
        QCOMPARE(mBed->storage->formatTime(QDateTime(QDate(2026, 3, 4), QTime(5, 6, 7), Qt::UTC)),
            QStringLiteral("20260304T050607Z"));
    }

private:
    /** A statement in the mapping database, over a connection of its own. */
    static bool execute(const QString &statement)
    {
        const QString name = QStringLiteral("by-hand");
        bool done = false;
        {
            QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
            database.setDatabaseName(QDir::homePath()
                + QStringLiteral("/.local/share/system/privileged/eas-fennel/fennel_eas.db"));
            done = database.open() && QSqlQuery(database).exec(statement);
        }
        QSqlDatabase::removeDatabase(name);
        return done;
    }

    int rows() const { return EasDatabase::instance()->localToServerCalendarIds(mBed->account.id())->size(); }

    /** What would go up: "+" and "~" with the subject, "-" with the server id. */
    QStringList localChanges()
    {
        qint64 from = 0;
        qint64 time = 0;
        QList<EasCalendarItem> added;
        QList<EasCalendarItem> changed;
        QStringList deleted;
        if (!mBed->storage->syncTime(mBed->notebookUid(), from)
            || mBed->storage->queryLocalUpdates(mBed->notebookUid(), from, time, added, changed, deleted)
                != LocalQuery::Answered)
            return { QStringLiteral("failed") };
        QStringList lines;
        for (const EasCalendarItem &item : qAsConst(added))
            lines.append(QLatin1Char('+') + item.subject());
        for (const EasCalendarItem &item : qAsConst(changed))
            lines.append(QLatin1Char('~') + item.subject());
        for (const QString &serverId : qAsConst(deleted))
            lines.append(QLatin1Char('-') + serverId);
        return lines;
    }

    void addByUser(const QString &subject)
    {
        CalendarStoreContext &device = mBed->device();
        const Event::Ptr event(new Event);
        event->setUid(KCalendarCore::CalFormat::createUniqueId());
        event->setSummary(subject);
        event->setDtStart(QDateTime(QDate(2026, 3, 4), QTime(8, 0), Qt::UTC));
        QVERIFY(device.calendar->addEvent(event, mBed->notebookUid()));
        QVERIFY(device.storage->save());
    }

    /** A change of the user's, in another second than the sync's. */
    template <typename Edit> void edit(const Edit &edit)
    {
        CalendarStoreContext &device = mBed->device();
        const Event::Ptr event = device.calendar->event(mBed->localId());
        edit(event);
        event->setLastModified(event->lastModified().addSecs(60));
        QVERIFY(device.storage->save());
    }

    void deleteByUser(const QString &uid)
    {
        CalendarStoreContext &device = mBed->device();
        QVERIFY(device.calendar->deleteEvent(device.calendar->event(uid)));
        QVERIFY(device.storage->save());
    }

    void purge(const QString &uid)
    {
        CalendarStoreContext &device = mBed->device();
        QVERIFY(device.calendar->deleteEvent(device.calendar->event(uid)));
        QVERIFY(device.storage->save(mKCal::ExtendedStorage::PurgeDeleted));
    }

    std::unique_ptr<CalendarBed> mBed;
};

FENNEL_REGISTER_TEST(CalendarItemBatchTest)
#include "calendaritembatchtest.moc"
