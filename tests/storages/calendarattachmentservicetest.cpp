// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarattachmentservice.h"

#include "application/mapping/easdatabase.h"
#include "storages/calendar/calendarlocalchanges.h"
#include "support/calendarscene.h"
#include "support/hiddentable.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <attachmentinfo.h>

#include <QCryptographicHash>
#include <QUrl>
#include <QtTest>

using namespace ExchangeActiveSync;
using KCalendarCore::Attachment;
using KCalendarCore::Event;
using mKCal::AttachmentInfo;
using Service = CalendarAttachmentService;

/** The attachments of events, in the event, in the mapping, and on their way. */
class CalendarAttachmentServiceTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<CalendarScene> mScene;
    QTemporaryDir mFiles;
    int mNumber = 0;
    /** Rows belong to no account, so each test has an event of its own. */
    QString mUid;

    static AttachmentEntity entity(
        const QString &reference, const QString &name, const QString &contentId = QString())
    {
        AttachmentEntity result;
        result.setFileReference(reference);
        result.setDisplayName(name);
        result.setContentId(contentId);
        result.setEstimatedDataSize(10);
        result.setMethod(EasAttachmentContainer::NormalAttachmentMethod);
        return result;
    }

    QString file(const QString &name, const QByteArray &data) const
    {
        QFile file(mFiles.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size())
            return QString();
        return QUrl::fromLocalFile(file.fileName()).toString(QUrl::FullyEncoded);
    }

    static QString md5(const QByteArray &data)
    {
        return QString::fromLatin1(QCryptographicHash::hash(data, QCryptographicHash::Md5).toHex());
    }

    Event::Ptr event() const { return CalendarScene::makeEvent(mUid); }

    QStringList rows(const QString &key) const
    {
        QStringList result;
        const auto found = EasDatabase::instance()->getCalendarAttachments(key);
        for (const EasAttachmentContainer &row : *found)
            result.append(row.contentId() + QLatin1Char('=') + row.fileReference());
        result.sort();
        return result;
    }

    static QStringList names(const Event::Ptr &event)
    {
        QStringList result;
        const Attachment::List attachments = event->attachments();
        for (const Attachment &attachment : attachments)
            result.append(AttachmentInfo(attachment).fileName());
        return result;
    }

    struct Found
    {
        LocalQuery answer = LocalQuery::StoreSilent;
        QList<EasCalendarItem> added;
        QList<EasCalendarItem> updated;
        QStringList deleted;
    };

    Found query(CalendarLocalChanges &changes)
    {
        Found found;
        qint64 time = 0;
        found.answer = changes.queryLocalUpdates(
            mScene->folder, 1650000000, time, found.added, found.updated, found.deleted);
        return found;
    }

private Q_SLOTS:
    void init()
    {
        mUid = QStringLiteral("event-with-files-%1").arg(++mNumber);
        mScene = std::make_unique<CalendarScene>();
        mScene->account.setProtocolVersion(ProtocolVersion161);
    }

    void cleanup() { mScene.reset(); }

    void theServersListReachesTheEvent()
    {
        const Event::Ptr event = this->event();
        LogCollector log;
        Service().handleRemoteAttachments(event,
            { entity(QStringLiteral("f1:1:1"), QStringLiteral("a b.txt")),
                entity(QStringLiteral("f1:1:2"), QStringLiteral("c.txt")),
                entity(QStringLiteral("f1:1:3"), QStringLiteral("d.png"), QStringLiteral("id-3")) });
        QCOMPARE(names(event),
            (QStringList { QStringLiteral("a b.txt"), QStringLiteral("c.txt"), QStringLiteral("d.png") }));
        // None takes the place of another, though two have no content identifier.
        QCOMPARE(rows(mUid),
            (QStringList { QStringLiteral("f1:1:1=f1:1:1"), QStringLiteral("f1:1:2=f1:1:2"),
                QStringLiteral("id-3=f1:1:3") }));
        QVERIFY(log.contains(QtDebugMsg,
            { QStringLiteral("Handling new attachments for event with ID:"), mUid,
                QStringLiteral("and attachments count:"), QStringLiteral("3") }));
        QVERIFY(log.contains(QStringLiteral("Cleared all attachments for event with ID: %1.").arg(mUid)));
        const QString uri = event->attachments().constFirst().uri();
        QCOMPARE(Service::fileReference(uri), QStringLiteral("f1:1:1"));
        QCOMPARE(Service::estimatedDataSize(uri), 10);
        const auto property = [&uri](const char *key) {
            return AttachmentInfo(uri).extractServiceProperty(QLatin1String(key));
        };
        QCOMPARE(property("eas_attachment_event_id"), mUid);
        QCOMPARE(property("eas_attachment_method"), QStringLiteral("1"));
        QVERIFY(property("eas_attachment_occurrence_id").isNull());
        // Known by the event alone, also after the store.
        QVERIFY(mScene->save(event));
        QCOMPARE(mScene->load(mUid)->attachments().constFirst().uri(), uri);
    }

    void aListThatChanges()
    {
        const Event::Ptr event = this->event();
        Service().handleRemoteAttachments(event,
            { entity(QStringLiteral("r1"), QStringLiteral("one")),
                entity(QStringLiteral("r2"), QStringLiteral("two"), QStringLiteral("id-2")) });
        QVERIFY(mScene->save(event));
        const QString gone = event->attachments().constFirst().uri();
        QVERIFY(
            Service().saveRemoteAttachment("bytes", gone, mScene->context.storage, mScene->context.calendar));
        const QUrl bytes(AttachmentInfo(gone).contentLocation());
        QVERIFY(QFile::exists(bytes.toLocalFile()));

        const Event::Ptr read = mScene->load(mUid);
        Service().handleRemoteAttachments(read,
            { entity(QStringLiteral("new r2"), QStringLiteral("two"), QStringLiteral("id-2")),
                entity(QStringLiteral("r3"), QStringLiteral("three")) });
        QCOMPARE(names(read), (QStringList { QStringLiteral("two"), QStringLiteral("three") }));
        QCOMPARE(rows(mUid), (QStringList { QStringLiteral("id-2=new r2"), QStringLiteral("r3=r3") }));
        QVERIFY(!QFile::exists(bytes.toLocalFile()));
        Service().handleRemoteAttachments(read, {});
        QVERIFY(read->attachments().isEmpty() && rows(mUid).isEmpty());
    }

    void anExceptionHasAKeyOfItsOwn()
    {
        const Event::Ptr exception = event();
        exception->setRecurrenceId(QDateTime(QDate(2024, 5, 3), QTime(10, 0), QTimeZone("Europe/Berlin")));
        const QString key = Service::eventKey(*exception);
        QVERIFY(key.startsWith(mUid) && key.endsWith(QLatin1String("2024-05-03 08:00:00")));
        Service().handleRemoteAttachments(exception, { entity(QStringLiteral("r1"), QStringLiteral("one")) });
        QVERIFY(rows(mUid).isEmpty());
        QCOMPARE(rows(key).size(), 1);
        QCOMPARE(AttachmentInfo(exception->attachments().constFirst())
                     .extractServiceProperty(QStringLiteral("eas_attachment_occurrence_id")),
            QStringLiteral("2024-05-03 08:00:00"));
        QVERIFY(Service::forget({ exception }));
        QVERIFY(rows(key).isEmpty());
    }

    void theListOfAnEvent()
    {
        const Event::Ptr event = this->event();
        Service().handleRemoteAttachments(
            event, { entity(QStringLiteral("r1"), QStringLiteral("one"), QStringLiteral("id-1")) });
        event->addAttachment(Attachment(file(QStringLiteral("own file.txt"), "own bytes")));
        event->addAttachment(Attachment(QStringLiteral("https://example.com/link")));
        const auto list = Service().handleLocalAttachments(event);
        QVERIFY(list);
        QCOMPARE(list->size(), 2); // A link is no file.
        QCOMPARE(list->at(0).fileReference(), QStringLiteral("r1"));
        QCOMPARE(list->at(0).contentId(), QStringLiteral("id-1"));
        QCOMPARE(list->at(0).displayName(), QStringLiteral("one"));
        QCOMPARE(list->at(0).estimatedDataSize(), 10);
        QCOMPARE(list->at(0).method(), EasAttachmentContainer::NormalAttachmentMethod);
        QVERIFY(list->at(0).contentLocation().isEmpty());
        QVERIFY(list->at(1).fileReference().isEmpty());
        QCOMPARE(list->at(1).contentId(), md5("own bytes"));
        QCOMPARE(list->at(1).clientId(), md5("own bytes"));
        QCOMPARE(list->at(1).displayName(), QStringLiteral("own file.txt"));
        QCOMPARE(list->at(1).contentLocation(), mFiles.filePath(QStringLiteral("own file.txt")));
    }

    void aFileThatHasVanished()
    {
        const Event::Ptr event = this->event();
        event->addAttachment(Attachment(QStringLiteral("file:///nowhere/at/all.txt")));
        LogCollector log;
        QVERIFY(!Service().handleLocalAttachments(event));
        QVERIFY(log.contains(QtCriticalMsg,
            { QStringLiteral("Failed to handle local attachments for event with ID: %1. Error: Failed to get "
                             "attachment hash for event: %1. Error: ")
                    .arg(mUid) }));
    }

    void whatIsNew()
    {
        EasAttachmentContainer known = entity(QStringLiteral("r1"), QStringLiteral("known"));
        EasAttachmentContainer nameless;
        EasAttachmentContainer fresh;
        fresh.setContentId(QStringLiteral("id-fresh"));
        LogCollector log;
        QList<EasAttachmentContainer> list { known, nameless, fresh };
        QVERIFY(Service::processLocallyAddedAttachments(mUid, list));
        QCOMPARE(list.size(), 1);
        QCOMPARE(list.constFirst().contentId(), QStringLiteral("id-fresh"));
        QCOMPARE(rows(mUid), QStringList { QStringLiteral("id-fresh=") });
        QVERIFY(log.contains(QStringLiteral("Skipping attachment with file reference: r1 for event with ID: "
                                            "%1 cause it's already added.")
                                 .arg(mUid)));
        QVERIFY(log.contains(QStringLiteral("Failed to process one calendar attachment, for event with ID: "
                                            "%1 cause it's contentID is empty!")
                                 .arg(mUid)));
        QVERIFY(log.contains(QtDebugMsg,
            { QStringLiteral("Preparing new attachment for the 'new attachment' request."),
                QStringLiteral("For event:"), QStringLiteral("and attachemnt, content ID") }));
        list = { fresh };
        QVERIFY(Service::processLocallyAddedAttachments(mUid, list));
        QVERIFY(list.isEmpty());
        QVERIFY(log.contains(QtDebugMsg,
            { QStringLiteral("Attachment for event:"), QStringLiteral("already exists. Skipping it.") }));
    }

    void whatWasRemoved()
    {
        const Event::Ptr event = this->event();
        Service().handleRemoteAttachments(event,
            { entity(QStringLiteral("r1"), QStringLiteral("one")),
                entity(QStringLiteral("r2"), QStringLiteral("two")) });
        EasAttachmentContainer pending;
        pending.setContentId(QStringLiteral("pending"));
        EasDatabase::instance()->addCalendarAttachment(mUid, pending);
        LogCollector log;
        const auto removed = Service::processLocallyDeletedAttachments(
            mUid, { entity(QStringLiteral("r2"), QStringLiteral("two")) });
        QCOMPARE(removed->size(), 1);
        QCOMPARE(removed->constFirst().fileReference(), QStringLiteral("r1"));
        QCOMPARE(rows(mUid), (QStringList { QStringLiteral("pending="), QStringLiteral("r2=r2") }));
        QVERIFY(log.contains(QtDebugMsg,
            { QStringLiteral("Failed find if attachment should be deleted, cause fileReference is "
                             "empty for contentId:"),
                QStringLiteral("pending"), QStringLiteral("and event with ID:") }));
        QVERIFY(log.contains(QtDebugMsg,
            { QStringLiteral("Preparing deleted attachment by user for the 'delete attachment' request."),
                QStringLiteral("and attachemnt with file refernce:"), QStringLiteral("r1") }));
    }

    void rowsThatCannotBeReadStopTheWork()
    {
        const Event::Ptr event = this->event();
        event->addAttachment(Attachment(file(QStringLiteral("own.txt"), "bytes")));
        QVERIFY(mScene->save(event));
        CalendarLocalChanges changes(mScene->context);
        Found found = query(changes);
        QCOMPARE(found.answer, LocalQuery::Answered);
        QCOMPARE(found.added.value(0).attachments().size(), 1);
        QList<EasAttachmentContainer> list = found.added.value(0).attachments();

        const HiddenTable hidden("attachments");
        QVERIFY(!Service::processLocallyAddedAttachments(mUid, list));
        QVERIFY(!Service::processLocallyDeletedAttachments(mUid, {}));
        QVERIFY(!Service::forget({ event }));
        // An upload without its rows goes up a second time, so its answer has to come again.
        QVERIFY(!changes.uploadedLocalChanges(found.added, found.updated, {}));
        QCOMPARE(query(changes).answer, LocalQuery::MappingFailed);
    }

    void fetchedBytes_data()
    {
        QTest::addColumn<bool>("ofException");
        QTest::newRow("of an event") << false;
        QTest::newRow("of an exception") << true;
    }

    void fetchedBytes()
    {
        QFETCH(bool, ofException);
        QVERIFY(mScene->saveSynced(CalendarScene::makeSeries(mUid), QStringLiteral("f1:1")));
        QVERIFY(mScene->addException(mUid, 2, QStringLiteral("moved"), 1600000000));
        const QDateTime id = ofException ? CalendarScene::makeEvent(mUid)->dtStart().addDays(2) : QDateTime();
        const Event::Ptr event = mScene->load(mUid, id);
        Service().handleRemoteAttachments(event, { entity(QStringLiteral("r1"), QStringLiteral("one")) });
        event->setLastModified(QDateTime::fromSecsSinceEpoch(1600000000, Qt::UTC));
        QVERIFY(mScene->context.storage->save());
        const QString uri = event->attachments().constFirst().uri();
        LogCollector log;
        QVERIFY(Service().saveRemoteAttachment(
            "some\0bytes", uri, mScene->context.storage, mScene->context.calendar));
        QVERIFY(log.contains(QtDebugMsg,
            { QStringLiteral("Saving remote attachment for event with ID:"), mUid,
                QStringLiteral("and URI:") }));
        QFile stored(QUrl(AttachmentInfo(uri).contentLocation()).toLocalFile());
        QVERIFY(stored.open(QIODevice::ReadOnly));
        QCOMPARE(stored.readAll(), QByteArray("some"));
        // The event stays as the server knows it.
        CalendarLocalChanges changes(mScene->context);
        const Found found = query(changes);
        QVERIFY(found.added.isEmpty() && found.updated.isEmpty());
        QCOMPARE(mScene->load(mUid, id)->attachments().constFirst().uri(), uri);
    }

    void bytesThatBelongNowhere()
    {
        LogCollector log;
        Service service;
        QVERIFY(!service.saveRemoteAttachment("x", QString(), {}, mScene->context.calendar));
        QVERIFY(!service.saveRemoteAttachment("x", QString(), mScene->context.storage, {}));
        QVERIFY(log.contains(QStringLiteral("MkCal Storage is null!")));
        QVERIFY(log.contains(QStringLiteral("MkCal Calendar is null!")));
        const auto save = [&](const QString &uri) {
            return service.saveRemoteAttachment("x", uri, mScene->context.storage, mScene->context.calendar);
        };
        QVERIFY(!save(QStringLiteral("file:///a.txt")));
        QVERIFY(log.contains(QStringLiteral("Failed to load event with ID:  and reccurence ID: .")));
        const Event::Ptr event = this->event();
        Service().handleRemoteAttachments(event, { entity(QStringLiteral("r1"), QStringLiteral("one")) });
        const QString uri = event->attachments().constFirst().uri();
        QVERIFY(!save(uri));
        QVERIFY(log.contains(QStringLiteral("Failed to find event with ID: %1.").arg(mUid)));
        event->clearAttachments();
        QVERIFY(mScene->save(event));
        QVERIFY(!save(uri));
        QVERIFY(
            log.contains(QStringLiteral("Failed to save remote attachment with uri: %1. Error:").arg(uri)));
    }

    void aFileOfTheUserGoesUpAndComesBackAsTheServers()
    {
        QVERIFY(mScene->saveSynced(event(), QStringLiteral("f1:1")));
        const QString uri = file(QStringLiteral("up.txt"), "going up");
        QVERIFY(
            mScene->edit(mUid, [&uri](const Event::Ptr &event) { event->addAttachment(Attachment(uri)); }));
        CalendarLocalChanges changes(mScene->context);
        // Without an answer it goes up again, also after a restart.
        for (int attempt = 0; attempt < 2; ++attempt) {
            const Found found = query(changes);
            QCOMPARE(found.updated.size(), 1);
            QCOMPARE(found.updated.constFirst().attachments().size(), 1);
            QCOMPARE(found.updated.constFirst().attachments().constFirst().contentId(), md5("going up"));
        }
        CalendarLocalChanges restarted(mScene->context);
        Found found = query(restarted);
        QCOMPARE(found.updated.constFirst().attachments().size(), 1);
        QVERIFY(restarted.uploadedLocalChanges(found.added, found.updated, found.deleted));
        QVERIFY(EasDatabase::instance()->calendarItemsChanges(
            mScene->accountId(), found.added, found.updated, found.deleted, {}));
        // The server has it; the next change of the event leaves it alone.
        QVERIFY(mScene->edit(
            mUid, [](const Event::Ptr &event) { event->setSummary(QStringLiteral("edited")); }, 1700000100));
        found = query(restarted);
        QCOMPARE(found.updated.size(), 1);
        QVERIFY(found.updated.constFirst().attachments().isEmpty());
        CalendarLocalChanges restartedAgain(mScene->context);
        found = query(restartedAgain);
        QCOMPARE(found.updated.size(), 1);
        QVERIFY(found.updated.constFirst().attachments().isEmpty());

        // It comes back with a reference, and its bytes are here already.
        const Event::Ptr event = mScene->load(mUid);
        LogCollector log;
        Service().handleRemoteAttachments(
            event, { entity(QStringLiteral("r1"), QStringLiteral("up.txt"), md5("going up")) });
        QVERIFY(log.contains(QStringLiteral("Updating old attachment with file reference")));
        QCOMPARE(event->attachments().size(), 1);
        const QString remote = event->attachments().constFirst().uri();
        QCOMPARE(Service::fileReference(remote), QStringLiteral("r1"));
        QCOMPARE(AttachmentInfo(remote).fileSize(), qint64(8));
        QVERIFY(!AttachmentInfo(remote).contentLocation().isEmpty());
        QCOMPARE(rows(mUid), QStringList { md5("going up") + QStringLiteral("=r1") });
    }

    void theKeyOfAnExceptionOutlivesAnEditOfItsLength()
    {
        const Event::Ptr exception = event();
        exception->setRecurrenceId(exception->dtStart());
        const QString key = Service::eventKey(*exception);
        exception->setAllDay(true);
        QCOMPARE(Service::eventKey(*exception), key);
        exception->setRecurrenceId(QDateTime(QDate(2024, 5, 1), QTime(0, 0), Qt::LocalTime));
        const QString keyOfDay = Service::eventKey(*exception);
        QVERIFY(keyOfDay.endsWith(QStringLiteral("|2024-05-01 00:00:00")));
        exception->setAllDay(false);
        QCOMPARE(Service::eventKey(*exception), keyOfDay);
    }

    void aFileThatTheServerDoesNotKnowYetStays()
    {
        const Event::Ptr event = this->event();
        event->addAttachment(Attachment(file(QStringLiteral("mine.txt"), "mine")));
        event->addAttachment(Attachment(QByteArray("aGVsbG8="), QStringLiteral("text/plain")));
        Service().handleRemoteAttachments(event, { entity(QStringLiteral("r1"), QStringLiteral("one")) });
        QCOMPARE(event->attachments().size(), 3);
        QCOMPARE(names(event).mid(0, 2), (QStringList { QStringLiteral("one"), QStringLiteral("mine.txt") }));
        QVERIFY(event->attachments().at(2).isBinary());
    }

    void aRemovedFileGoesUpAsADeletion()
    {
        const Event::Ptr event = this->event();
        Service().handleRemoteAttachments(event,
            { entity(QStringLiteral("r1"), QStringLiteral("one"), QStringLiteral("id-1")),
                entity(QStringLiteral("r2"), QStringLiteral("two")) });
        event->setLastModified(QDateTime::fromSecsSinceEpoch(1600000000, Qt::UTC));
        QVERIFY(mScene->saveSynced(event, QStringLiteral("f1:1")));
        QVERIFY(mScene->edit(mUid, [](const Event::Ptr &event) {
            const Attachment kept = event->attachments().at(1);
            event->clearAttachments();
            event->addAttachment(kept);
        }));
        CalendarLocalChanges changes(mScene->context);
        Found found;
        for (int attempt = 0; attempt < 2; ++attempt) { // The first answer was lost.
            found = query(changes);
            QCOMPARE(found.updated.size(), 1);
            const QList<EasAttachmentContainer> attachments = found.updated.constFirst().attachments();
            QCOMPARE(attachments.size(), 1);
            QCOMPARE(attachments.constFirst().fileReference(), QStringLiteral("r1"));
            QVERIFY(attachments.constFirst().contentId().isEmpty());
        }
        // Nor does it matter if the process ended before the answer.
        CalendarLocalChanges restarted(mScene->context);
        found = query(restarted);
        QCOMPARE(found.updated.constFirst().attachments().size(), 1);
        QCOMPARE(rows(mUid).size(), 2);
        QVERIFY(restarted.uploadedLocalChanges(found.added, found.updated, found.deleted));
        QCOMPARE(rows(mUid), QStringList { QStringLiteral("r2=r2") });
    }

    void upTo141NothingGoesUp()
    {
        mScene->account.setProtocolVersion(ProtocolVersion141);
        QVERIFY(mScene->saveSynced(event(), QStringLiteral("f1:1")));
        const QString uri = file(QStringLiteral("old.txt"), "old");
        QVERIFY(
            mScene->edit(mUid, [&uri](const Event::Ptr &event) { event->addAttachment(Attachment(uri)); }));
        CalendarLocalChanges changes(mScene->context);
        const Found found = query(changes);
        QCOMPARE(found.updated.size(), 1);
        QVERIFY(found.updated.constFirst().attachments().isEmpty());
        QVERIFY(rows(mUid).isEmpty());
    }

    void aDeletedEventLeavesNoRows()
    {
        const Event::Ptr event = this->event();
        Service().handleRemoteAttachments(event, { entity(QStringLiteral("r1"), QStringLiteral("one")) });
        QVERIFY(mScene->saveSynced(event, QStringLiteral("f1:1")));
        const QString uri = event->attachments().constFirst().uri();
        QVERIFY(
            Service().saveRemoteAttachment("bytes", uri, mScene->context.storage, mScene->context.calendar));
        QVERIFY(mScene->remove(mUid));
        CalendarLocalChanges changes(mScene->context);
        Found found = query(changes);
        QCOMPARE(found.deleted, QStringList(QStringLiteral("f1:1")));
        QCOMPARE(rows(mUid).size(), 1); // The server may still refuse.
        QVERIFY(changes.uploadedLocalChanges(found.added, found.updated, found.deleted));
        QVERIFY(rows(mUid).isEmpty());
        QVERIFY(AttachmentInfo(uri).contentLocation().isEmpty());
    }
};

FENNEL_REGISTER_TEST(CalendarAttachmentServiceTest)
#include "calendarattachmentservicetest.moc"
