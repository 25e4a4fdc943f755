// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/easdatabase.h"
#include "easitems/containers/easattachmentcontainer.h"
#include "support/devicecalendar.h"
#include "support/sampleevents.h"
#include "support/synctestbed.h"
#include "support/testmain.h"

#include <attachmentinfo.h>

#include <QTemporaryDir>
#include <QUrl>
#include <QtTest>

using KCalendarCore::Attachment;
using mKCal::AttachmentInfo;
using Simulator::Event;
using Simulator::Override;

/** @short The files of events go both ways, and their bytes come when they are asked for. */
class EventFilesTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir mFiles;

    static QByteArray bytesOf(int size)
    {
        QByteArray bytes(size, '\0');
        for (int i = 0; i < size; ++i)
            bytes[i] = char((i * 31 + i / 251) & 0xff);
        return bytes;
    }

    static Event withFiles()
    {
        Event event = SampleEvents::meeting();
        event.attachments.clear();
        event.attach(QStringLiteral("plan one.bin"), bytesOf(3000));
        event.attach(QStringLiteral("plan two.bin"), bytesOf(10));
        return event;
    }

    static Attachment::List files()
    {
        const auto event = DeviceCalendar().withSummary(SampleEvents::meeting().subject);
        return event ? event->attachments() : Attachment::List();
    }

    static QStringList names()
    {
        QStringList result;
        const Attachment::List attachments = files();
        for (const Attachment &attachment : attachments)
            result.append(AttachmentInfo(attachment).fileName());
        result.sort();
        return result;
    }

    static int rows()
    {
        const auto event = DeviceCalendar().withSummary(SampleEvents::meeting().subject);
        if (!event)
            return -1;
        const auto found = EasDatabase::instance()->getCalendarAttachments(event->uid());
        return found ? found->size() : -1;
    }

    static QByteArray bytesHere(const QString &uri)
    {
        QFile file(QUrl(AttachmentInfo(uri).contentLocation()).toLocalFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /** What a program does that shows the event. */
    template <typename Change> static bool edit(SyncTestBed &bed, const Change &change)
    {
        bed.clock().advance(5000);
        DeviceCalendar device;
        const auto event = device.withSummary(SampleEvents::meeting().subject);
        if (!event)
            return false;
        change(event);
        event->setLastModified(bed.clock().currentDateTimeUtc());
        const bool saved = device.storage->save();
        bed.clock().advance(5000);
        return saved;
    }

    static int uploads(SyncTestBed &bed)
    {
        int count = 0;
        const auto requests = bed.server().requests(QStringLiteral("Sync"));
        for (const auto &request : requests)
            count += request.document.has(QStringLiteral("Collections/Collection/Commands")) ? 1 : 0;
        return count;
    }

    static bool nothingMoreGoesUp(SyncTestBed &bed)
    {
        bed.clock().advance(5000);
        const int before = uploads(bed);
        return bed.sync() == 0 && uploads(bed) == before;
    }

    static void versions()
    {
        QTest::addColumn<QString>("version");
        QTest::newRow("16.0") << QStringLiteral("16.0");
        QTest::newRow("16.1") << QStringLiteral("16.1");
    }

private Q_SLOTS:
    void bytesComeWhenTheyAreAskedFor_data() { versions(); }
    void bytesComeWhenTheyAreAskedFor()
    {
        QFETCH(QString, version);
        SyncTestBed bed({ version }, SyncTestBed::everyService());
        QVERIFY(bed.isReady());
        bed.place(withFiles());
        QCOMPARE(bed.sync(), 0);
        QCOMPARE(names(), (QStringList { QStringLiteral("plan one.bin"), QStringLiteral("plan two.bin") }));
        QCOMPARE(rows(), 2);
        const Attachment::List attachments = files();
        for (const Attachment &attachment : attachments) {
            QVERIFY(AttachmentInfo(attachment).contentLocation().isEmpty());
            QCOMPARE(bed.downloadAttachment(attachment.uri()), 0);
        }
        QCOMPARE(bytesHere(attachments.at(0).uri()), bytesOf(3000));
        QCOMPARE(bytesHere(attachments.at(1).uri()), bytesOf(10));
        const auto fetches = bed.server().requests(QStringLiteral("ItemOperations"));
        QCOMPARE(fetches.size(), 2);
        for (const auto &fetch : fetches) {
            QVERIFY(!fetch.document.has(QStringLiteral("Fetch/Options")));
            QVERIFY(fetch.header("MS-ASAcceptMultiPart").isEmpty());
        }
        QCOMPARE(files().at(0).uri(), attachments.at(0).uri());
        QVERIFY(nothingMoreGoesUp(bed));
        QCOMPARE(bed.server().failures(), QStringList());
    }

    void whatIsNoFileOfTheServerIsNotFetched()
    {
        SyncTestBed bed({ QStringLiteral("16.1") }, SyncTestBed::everyService());
        QVERIFY(bed.isReady());
        bed.place(withFiles());
        QCOMPARE(bed.sync(), 0);
        const QString uri = files().constFirst().uri();
        bed.server().clearRequests();
        QVERIFY(bed.downloadAttachment(QStringLiteral("file:///tmp/own.txt")) != 0);
        QCOMPARE(bed.server().requests(QStringLiteral("ItemOperations")).size(), 0);
        bed.server().overrideNext(QStringLiteral("ItemOperations"), Override::topStatus(3));
        QVERIFY(bed.downloadAttachment(uri) != 0);
        QVERIFY(AttachmentInfo(uri).contentLocation().isEmpty());
        QCOMPARE(bed.downloadAttachment(uri), 0);
        QCOMPARE(bytesHere(uri), bytesOf(3000));
    }

    void aFileOfTheDeviceReachesTheServerOnce_data() { versions(); }
    void aFileOfTheDeviceReachesTheServerOnce()
    {
        QFETCH(QString, version);
        SyncTestBed bed({ version }, SyncTestBed::everyService());
        QVERIFY(bed.isReady());
        const QString id = bed.place(withFiles());
        QCOMPARE(bed.sync(), 0);
        QFile own(mFiles.filePath(QStringLiteral("own file.txt")));
        QVERIFY(own.open(QIODevice::WriteOnly) && own.write("bytes of the device") > 0);
        own.close();
        const QString uri = QUrl::fromLocalFile(own.fileName()).toString(QUrl::FullyEncoded);
        QVERIFY(edit(
            bed, [&uri](const KCalendarCore::Event::Ptr &event) { event->addAttachment(Attachment(uri)); }));
        QCOMPARE(bed.sync(), 0);
        QVERIFY(nothingMoreGoesUp(bed));
        QCOMPARE(bed.serverEvent(id)->attachments.size(), 3);
        QCOMPARE(bed.serverEvent(id)->attachments.last().name, QStringLiteral("own file.txt"));
        QCOMPARE(bed.serverEvent(id)->attachments.last().bytes, QByteArray("bytes of the device"));
        QCOMPARE(names().size(), 3);
        QCOMPARE(rows(), 3);
        // It has become one of the server's, whose bytes are here.
        const Attachment::List attachments = files();
        const auto theirs = std::find_if(attachments.begin(), attachments.end(), [](const Attachment &a) {
            return AttachmentInfo(a).fileName() == QLatin1String("own file.txt");
        });
        QVERIFY(theirs != attachments.end());
        QVERIFY(theirs->uri() != uri);
        QCOMPARE(bytesHere(theirs->uri()), QByteArray("bytes of the device"));
        // And another edit of the event leaves it alone.
        QVERIFY(edit(bed,
            [](const KCalendarCore::Event::Ptr &event) { event->setLocation(QStringLiteral("elsewhere")); }));
        QCOMPARE(bed.sync(), 0);
        QCOMPARE(bed.serverEvent(id)->location.name, QStringLiteral("elsewhere"));
        QCOMPARE(bed.serverEvent(id)->attachments.size(), 3);
        QCOMPARE(bed.server().failures(), QStringList());
    }

    void aFileRemovedOnTheDeviceGoes_data() { versions(); }
    void aFileRemovedOnTheDeviceGoes()
    {
        QFETCH(QString, version);
        SyncTestBed bed({ version }, SyncTestBed::everyService());
        QVERIFY(bed.isReady());
        const QString id = bed.place(withFiles());
        QCOMPARE(bed.sync(), 0);
        QVERIFY(edit(bed, [](const KCalendarCore::Event::Ptr &event) {
            const Attachment kept = event->attachments().at(1);
            event->clearAttachments();
            event->addAttachment(kept);
        }));
        QCOMPARE(bed.sync(), 0);
        QCOMPARE(bed.serverEvent(id)->attachments.size(), 1);
        QCOMPARE(bed.serverEvent(id)->attachments.first().name, QStringLiteral("plan two.bin"));
        QVERIFY(nothingMoreGoesUp(bed));
        QCOMPARE(names(), QStringList { QStringLiteral("plan two.bin") });
        QCOMPARE(rows(), 1);
        QCOMPARE(bed.server().failures(), QStringList());
    }

    void aFileRemovedOnTheServerGoes()
    {
        SyncTestBed bed({ QStringLiteral("16.1") }, SyncTestBed::everyService());
        QVERIFY(bed.isReady());
        const QString id = bed.place(withFiles());
        QCOMPARE(bed.sync(), 0);
        bed.clock().advance(5000);
        QVERIFY(bed.editEvent(id, [](Event &event) { event.attachments.removeFirst(); }));
        QCOMPARE(bed.sync(), 0);
        QCOMPARE(names(), QStringList { QStringLiteral("plan two.bin") });
        QCOMPARE(rows(), 1);
        QVERIFY(nothingMoreGoesUp(bed));
    }

    void afterAResyncThereAreNoMoreAndNoLess()
    {
        SyncTestBed bed({ QStringLiteral("16.1") }, SyncTestBed::everyService());
        QVERIFY(bed.isReady());
        bed.place(withFiles());
        QCOMPARE(bed.sync(), 0);
        const QString uid = DeviceCalendar().withSummary(SampleEvents::meeting().subject)->uid();
        QCOMPARE(bed.downloadAttachment(files().constFirst().uri()), 0);
        bed.clock().advance(5000);
        bed.server().overrideNext(QStringLiteral("Sync"), Override::collectionStatus(3, bed.calendarId()), 1);
        QCOMPARE(bed.sync(), 0);
        QCOMPARE(DeviceCalendar().calendar->rawEvents().size(), 1);
        QCOMPARE(names().size(), 2);
        QCOMPARE(rows(), 2);
        const QString newUid = DeviceCalendar().withSummary(SampleEvents::meeting().subject)->uid();
        if (newUid != uid)
            QCOMPARE(EasDatabase::instance()->getCalendarAttachments(uid)->size(), 0);
        QVERIFY(nothingMoreGoesUp(bed));
    }
};

FENNEL_REGISTER_TEST(EventFilesTest)
#include "eventfilestest.moc"
