// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/contactscene.h"
#include "support/devicecalendar.h"
#include "support/synctestbed.h"
#include "support/testmain.h"

#include <qmailmessagekey.h>
#include <qmailstore.h>

#include <QtTest>

#include <memory>

using Simulator::Override;

namespace {

constexpr int Many = 230;
constexpr int MostInOneSync = 100;

} // namespace

/** @short Many local changes go up in several Syncs of one request, and none of them twice. */
class UploadPartsTest : public QObject
{
    Q_OBJECT

private:
    static void rows()
    {
        QTest::addColumn<bool>("interrupted");
        QTest::newRow("in one request") << false;
        QTest::newRow("with an end of the engine between two parts") << true;
    }

    /** How many changes each Sync carried that carried any. */
    static QList<int> parts(SyncTestBed &bed)
    {
        QList<int> sizes;
        const auto requests = bed.server().requests(QStringLiteral("Sync"));
        for (const auto &request : requests) {
            int changes = 0;
            for (const char *command : { "Add", "Change", "Delete" })
                changes +=
                    request.document
                        .all(QStringLiteral("Collections/Collection/Commands/") + QLatin1String(command))
                        .size();
            if (changes > 0)
                sizes.append(changes);
        }
        return sizes;
    }

    /** Uploads what waits; with an end of the engine once the first part was answered. */
    static void upload(SyncTestBed &bed)
    {
        QFETCH(bool, interrupted);
        bed.clock().advance(5000);
        bed.server().clearRequests();
        if (!interrupted) {
            QCOMPARE(bed.sync(), 0);
            QCOMPARE(parts(bed), QList<int>({ MostInOneSync, MostInOneSync, Many - 2 * MostInOneSync }));
            return;
        }
        bed.server().overrideNext(QStringLiteral("Sync"), Override());
        for (int attempt = 0; attempt < 10; ++attempt) // More often than a request is repeated.
            bed.server().overrideNext(QStringLiteral("Sync"), Override::httpStatus(500));
        QVERIFY(bed.sync() != 0);
        QVERIFY(parts(bed).size() > 1);
        bed.server().clearScript();
        bed.restartEngine();
        bed.clock().advance(5000);
        QCOMPARE(bed.sync(), 0);
        for (const int size : parts(bed))
            QVERIFY(size <= MostInOneSync);
    }

    static void nothingMoreGoesUp(SyncTestBed &bed)
    {
        bed.clock().advance(5000);
        bed.server().clearRequests();
        QCOMPARE(bed.sync(), 0);
        QCOMPARE(parts(bed), QList<int>());
    }

private Q_SLOTS:
    void readMarksGoUpInParts_data() { rows(); }
    void readMarksGoUpInParts()
    {
        SyncTestBed bed;
        for (int number = 0; number < Many; ++number)
            bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QString::number(number)));
        QCOMPARE(bed.sync(), 0);
        QVERIFY(QMailStore::instance()->updateMessagesMetaData(
            QMailMessageKey::parentFolderId(bed.deviceFolder(QStringLiteral("Inbox"))), QMailMessage::Read,
            true));

        upload(bed);

        QCOMPARE(bed.serverState().filter(QStringLiteral("|read")).size(), Many);
        QCOMPARE(bed.deviceState(), bed.serverState());
        nothingMoreGoesUp(bed);
    }

    void newEventsGoUpInParts_data() { rows(); }
    void newEventsGoUpInParts()
    {
        SyncTestBed bed({ QStringLiteral("14.1") }, SyncTestBed::everyService());
        QCOMPARE(bed.sync(), 0);
        bed.clock().advance(5000);
        QStringList wanted;
        {
            DeviceCalendar device;
            for (int number = 0; number < Many; ++number) {
                const KCalendarCore::Event::Ptr event(new KCalendarCore::Event);
                event->setSummary(QStringLiteral("Event %1").arg(number, 4, 10, QLatin1Char('0')));
                event->setDtStart(QDateTime(QDate(2036, 3, 17), QTime(18, 30), QTimeZone("Europe/Berlin")));
                event->setDtEnd(event->dtStart().addSecs(3600));
                QVERIFY(device.calendar->addEvent(event, device.notebookOf(bed.accountId())));
                event->setCreated(bed.clock().currentDateTimeUtc());
                event->setLastModified(bed.clock().currentDateTimeUtc());
                wanted.append(event->summary());
            }
            QVERIFY(device.storage->save());
        }

        upload(bed);

        QStringList summaries;
        for (const Simulator::Event &event : bed.serverEvents())
            summaries.append(event.subject);
        summaries.sort();
        QCOMPARE(summaries, wanted);
        nothingMoreGoesUp(bed);
    }

    void newContactsGoUpInParts_data() { rows(); }
    void newContactsGoUpInParts()
    {
        ContactScene scene(QStringLiteral("14.1"));
        QCOMPARE(scene.bed().sync(), 0);
        QStringList wanted;
        for (int number = 0; number < Many; ++number) {
            const QString name = QStringLiteral("Contact %1").arg(number, 4, 10, QLatin1Char('0'));
            scene.store().addContact(scene.collection(), name);
            wanted.append(name);
        }

        upload(scene.bed());

        QStringList names = scene.serverNames();
        names.sort();
        QCOMPARE(names, wanted);
        QCOMPARE(scene.deviceContacts().size(), Many);
        nothingMoreGoesUp(scene.bed());
    }

    void changesOfTheServerComeBehindThoseOfTheDevice()
    {
        SyncTestBed bed;
        for (int number = 0; number < Many; ++number)
            bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QString::number(number)));
        QCOMPARE(bed.sync(), 0);
        QVERIFY(QMailStore::instance()->updateMessagesMetaData(
            QMailMessageKey::parentFolderId(bed.deviceFolder(QStringLiteral("Inbox"))), QMailMessage::Read,
            true));
        bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("late")));
        bed.server().clearRequests();

        QCOMPARE(bed.sync(), 0);

        QStringList asked;
        for (const auto &request : bed.server().requests(QStringLiteral("Sync"))) {
            for (const auto &collection : request.document.all(QStringLiteral("Collections/Collection"))) {
                if (collection.text(QStringLiteral("CollectionId")) == bed.mailbox().inboxId())
                    asked.append(collection.text(QStringLiteral("GetChanges")));
            }
        }
        QCOMPARE(asked, QStringList({ QStringLiteral("0"), QStringLiteral("0"), QStringLiteral("1") }));
        QCOMPARE(bed.deviceState(), bed.serverState());
        QVERIFY(bed.deviceState().contains(QStringLiteral("Inbox|late|unread")));
    }
};

FENNEL_REGISTER_TEST(UploadPartsTest)
#include "uploadpartstest.moc"
