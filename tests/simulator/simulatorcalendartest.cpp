// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulatorclient.h"
#include "support/sampleevents.h"

#include "simulator/eventitem.h"
#include "simulator/eventupload.h"
#include "simulator/protocolversion.h"
#include "support/testmain.h"

#include <QtTest>

using namespace Simulator;

namespace {

QString commands(const QString &inner)
{
    return QStringLiteral("<Commands>%1</Commands>").arg(inner);
}

QString add(const QString &clientId, const QString &data)
{
    return QStringLiteral("<Add><ClientId>%1</ClientId><ApplicationData>%2</ApplicationData></Add>")
        .arg(clientId, data);
}

QString change(const QString &serverId, const QString &data, const QString &instance = QString())
{
    const QString instanceXml =
        instance.isEmpty() ? QString() : QStringLiteral("<b:InstanceId>%1</b:InstanceId>").arg(instance);
    return QStringLiteral("<Change><ServerId>%1</ServerId>%2<ApplicationData>%3</ApplicationData></Change>")
        .arg(serverId, instanceXml, data);
}

QString instanceDelete(const QString &serverId, const QString &instance)
{
    return QStringLiteral("<Delete><ServerId>%1</ServerId><b:InstanceId>%2</b:InstanceId></Delete>")
        .arg(serverId, instance);
}

QString subject(const QString &text)
{
    return QStringLiteral("<k:Subject>%1</k:Subject>").arg(text);
}

QDateTime utc(int year, int month, int day, int hour = 0, int minute = 0)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute), Qt::UTC);
}

} // namespace

/** @short Events: what each version sends and takes, occurrences, files, what a server refuses. */
class SimulatorCalendarTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        mServer = std::make_unique<ExchangeServer>();
        QVERIFY(mServer->start());
        mClient = std::make_unique<SimulatorClient>(*mServer);
        mClient->setClass(QStringLiteral("Calendar"));
        mFolder = mServer->mailbox().folderOfType(CalendarFolder).id;
    }

    void cleanup()
    {
        QCOMPARE(mServer->failures(), QStringList());
        mClient.reset();
        mServer.reset();
    }

    void placesExceptionsAndFilesLookAsTheVersionHasThem_data() { versions(); }
    void placesExceptionsAndFilesLookAsTheVersionHasThem()
    {
        QFETCH(QString, version);
        const bool is160 = version >= QLatin1String("16");
        const WbxmlNode meeting = download(SampleEvents::meeting(), version);
        QCOMPARE(
            meeting.text(QStringLiteral("Calendar:Location")), is160 ? QString() : QStringLiteral("Office"));
        QCOMPARE(meeting.text(QStringLiteral("AirSyncBase:Location/City")),
            is160 ? QStringLiteral("New York") : QString());
        QCOMPARE(meeting.has(QStringLiteral("AirSyncBase:Attachments")), is160);
        QCOMPARE(meeting.text(QStringLiteral("Calendar:ResponseType")),
            version < QLatin1String("14") ? QString() : QStringLiteral("3"));
        QCOMPARE(
            meeting.has(QStringLiteral("Calendar:OnlineMeetingConfLink")), version >= QLatin1String("14.1"));
        QCOMPARE(meeting.all(QStringLiteral("Calendar:Attendees/Attendee")).size(), 2);
        QCOMPARE(meeting.has(QStringLiteral("Calendar:Attendees/Attendee/MeetingResponse:ProposedStartTime")),
            version == QLatin1String("16.1"));
        QCOMPARE(meeting.text(QStringLiteral("Calendar:Reminder")), QStringLiteral("0"));
        QCOMPARE(meeting.text(QStringLiteral("Calendar:StartTime")), QStringLiteral("20360701T180000Z"));

        const WbxmlNode weekly = download(SampleEvents::weekly(), version);
        const QVector<WbxmlNode> exceptions = weekly.all(QStringLiteral("Calendar:Exceptions/Exception"));
        QCOMPARE(exceptions.size(), 2);
        const QString key =
            is160 ? QStringLiteral("AirSyncBase:InstanceId") : QStringLiteral("ExceptionStartTime");
        const WbxmlNode moved = exceptions.first();
        // Half past nine in Berlin, in summer and in winter.
        QCOMPARE(moved.text(key), QStringLiteral("20260402T073000Z"));
        QCOMPARE(moved.text(QStringLiteral("StartTime")), QStringLiteral("20260402T083000Z"));
        QVERIFY(moved.has(QStringLiteral("Subject")) && moved.text(QStringLiteral("Subject")).isEmpty());
        QVERIFY(!moved.has(QStringLiteral("Location")) && !moved.has(QStringLiteral("AirSyncBase:Location")));
        QCOMPARE(exceptions.last().text(key), QStringLiteral("20261102T083000Z"));
        QCOMPARE(exceptions.last().text(QStringLiteral("Deleted")), QStringLiteral("1"));
        QCOMPARE(weekly.has(QStringLiteral("Calendar:Recurrence/FirstDayOfWeek")),
            version >= QLatin1String("14.1"));
    }

    void allDayEventsHaveDatesAloneFrom160On_data() { versions(); }
    void allDayEventsHaveDatesAloneFrom160On()
    {
        QFETCH(QString, version);
        const bool is160 = version >= QLatin1String("16");
        const WbxmlNode data = download(SampleEvents::wholeDay(), version);
        QCOMPARE(data.has(QStringLiteral("Calendar:Timezone")), !is160);
        QCOMPARE(data.text(QStringLiteral("Calendar:StartTime")),
            is160 ? QStringLiteral("20260630T000000Z") : QStringLiteral("20260629T220000Z"));
        QCOMPARE(data.text(QStringLiteral("Calendar:EndTime")),
            is160 ? QStringLiteral("20260703T000000Z") : QStringLiteral("20260702T220000Z"));
        QCOMPARE(data.text(QStringLiteral("Calendar:Recurrence/Until")),
            is160 ? QStringLiteral("20310630T000000Z") : QStringLiteral("20310629T220000Z"));
    }

    void whatCameDownGoesUpUnchanged_data() { versions(); }
    void whatCameDownGoesUpUnchanged()
    {
        QFETCH(QString, version);
        for (const Event &event :
            { SampleEvents::meeting(), SampleEvents::weekly(), SampleEvents::wholeDay() }) {
            const Event onServer = std::static_pointer_cast<const EventItem>(EventItem::make(event))->value();
            const WbxmlNode data = uploadOf(download(onServer, version), version);
            const auto again =
                EventUpload({ versionFromText(version), std::nullopt }).changed(onServer, data);
            QVERIFY(again);
            QCOMPARE(again->differences(onServer), QStringList());
        }
    }

    void anAddBecomesAnEvent_data() { versions(); }
    void anAddBecomesAnEvent()
    {
        QFETCH(QString, version);
        const Event event = SampleEvents::weekly();
        QString id = upload(uploadOf(download(event, version), version), version);
        const auto added = mServer->mailbox().value<EventItem>(id);
        QVERIFY(added);
        Event expected = event;
        expected.uid = added->uid;
        if (version >= QLatin1String("16"))
            expected.exceptions.clear(); // they have to come one by one
        if (version < QLatin1String("14.1"))
            expected.rule->firstDayOfWeek = -1;
        QCOMPARE(added->differences(expected), QStringList());
        QVERIFY(!added->uid.isEmpty());
    }

    void leftOutDetailsAreRemovedBefore160AndStayAfterwards_data() { versions(); }
    void leftOutDetailsAreRemovedBefore160AndStayAfterwards()
    {
        QFETCH(QString, version);
        mClient->setVersion(version);
        const bool stays = version >= QLatin1String("16");
        const QString id = place(SampleEvents::meeting());
        mClient->sync(mFolder, synced(), commands(change(id, subject(QStringLiteral("New")))));
        const Event event = *mServer->mailbox().value<EventItem>(id);
        QCOMPARE(event.subject, QStringLiteral("New"));
        QCOMPARE(event.location.name.isEmpty(), !stays);
        QCOMPARE(event.attendees.isEmpty(), !stays);
        QCOMPARE(event.categories.isEmpty(), !stays);
        QCOMPARE(event.reminder, stays ? 0 : -1);
        // These stay at any version.
        QCOMPARE(event.start, SampleEvents::meeting().start);
        QCOMPARE(event.zone.offsetAt(event.start), -4 * 3600);
        QCOMPARE(event.body.html, SampleEvents::meeting().body.html);
        QCOMPARE(event.attachments.size(), 1);
        QCOMPARE(event.uid, SampleEvents::meeting().uid);
        QCOMPARE(event.organizerEmail, SampleEvents::meeting().organizerEmail);
    }

    void exceptionsStayWhenAChangeDoesNotNameThem()
    {
        const QString id = place(SampleEvents::weekly());
        const WbxmlNode data = download(SampleEvents::weekly(), mClient->version());
        WbxmlNode without = uploadOf(data, mClient->version());
        without.removeAll(QStringLiteral("Calendar:Exceptions"));
        mClient->sync(mFolder, synced(), commands(change(id, inner(without))));
        QCOMPARE(mServer->mailbox()
                     .value<EventItem>(id)
                     ->differences(SampleEvents::weekly())
                     .join(QLatin1Char(' ')),
            QStringLiteral("UID"));
    }

    void anEmptyRecurrenceMakesASingleEventFrom160On()
    {
        mClient->setVersion(QStringLiteral("16.1"));
        const QString id = place(SampleEvents::weekly());
        mClient->sync(mFolder, synced(), commands(change(id, QStringLiteral("<k:Recurrence/>"))));
        QVERIFY(!mServer->mailbox().value<EventItem>(id)->rule);
        QVERIFY(mServer->mailbox().value<EventItem>(id)->exceptions.isEmpty());
    }

    void occurrencesChangeByInstanceFrom160On()
    {
        mClient->setVersion(QStringLiteral("16.0"));
        const QString id = place(SampleEvents::weekly());
        const WbxmlNode reply = mClient->sync(mFolder, synced(),
            commands(change(id, subject(QStringLiteral("Once")), QStringLiteral("20260910T073000Z"))
                + instanceDelete(id, QStringLiteral("20260914T073000Z"))));
        QVERIFY(!reply.has(QStringLiteral("Responses")));
        Event expected = SampleEvents::weekly();
        expected.editOccurrence(
            QDate(2026, 9, 10), [](EventDetails &details) { details.subject = QStringLiteral("Once"); });
        expected.deleteOccurrence(QDate(2026, 9, 14));
        QCOMPARE(mServer->mailbox().value<EventItem>(id)->differences(expected).join(QLatin1Char(' ')),
            QStringLiteral("UID"));
        QVERIFY(mServer->mailbox().value<EventItem>(id)->exceptionAt(utc(2026, 9, 10, 7, 30))->own
            == QSet<QString> { QStringLiteral("Subject") });

        // The next version of the series, as others see it.
        mServer->mailbox().edit<EventItem>(
            id, [](Event &event) { event.location.name = QStringLiteral("X"); });
        const Event event = *mServer->mailbox().value<EventItem>(id);
        QCOMPARE(
            event.detailsOf(*event.exceptionAt(utc(2026, 9, 10, 7, 30))).location.name, QStringLiteral("X"));
    }

    void occurrencesThatThereAreNotAreRefused_data()
    {
        QTest::addColumn<QString>("instance");
        QTest::newRow("another day") << QStringLiteral("20260908T073000Z");
        QTest::newRow("an hour off, as by winter time") << QStringLiteral("20260910T083000Z");
        QTest::newRow("before the series") << QStringLiteral("20260101T083000Z");
        QTest::newRow("no time") << QStringLiteral("tomorrow");
    }

    void occurrencesThatThereAreNotAreRefused()
    {
        QFETCH(QString, instance);
        mClient->setVersion(QStringLiteral("16.1"));
        const QString id = place(SampleEvents::weekly());
        const WbxmlNode reply = mClient->sync(mFolder, synced(),
            commands(change(id, subject(QStringLiteral("Once")), instance) + instanceDelete(id, instance)));
        for (const QString &command : { QStringLiteral("Change"), QStringLiteral("Delete") }) {
            const WbxmlNode answer = reply.at(QStringLiteral("Responses/") + command);
            QCOMPARE(answer.text(QStringLiteral("Status")), QStringLiteral("6"));
            QCOMPARE(answer.text(QStringLiteral("AirSyncBase:InstanceId")), instance);
        }
    }

    void filesComeAndGoWithUploads()
    {
        mClient->setVersion(QStringLiteral("16.1"));
        const WbxmlNode reply = mClient->sync(mFolder, mClient->firstKey(mFolder),
            commands(add(QStringLiteral("e"),
                SampleEvents::timesXml() + SampleEvents::fileXml(QStringLiteral("one.txt")))));
        const QString id = reply.text(QStringLiteral("Responses/Add/ServerId"));
        const WbxmlNode answered =
            reply.at(QStringLiteral("Responses/Add/ApplicationData/AirSyncBase:Attachments/Attachment"));
        QCOMPARE(answered.text(QStringLiteral("ClientId")), QStringLiteral("one.txt"));
        // Besides, the event comes down with the reference.
        QCOMPARE(reply.text(QStringLiteral(
                     "Commands/Change/ApplicationData/AirSyncBase:Attachments/Attachment/FileReference")),
            answered.text(QStringLiteral("FileReference")));
        QCOMPARE(fetched(answered.text(QStringLiteral("FileReference"))), QByteArray("content of one.txt"));

        const QString remove = QStringLiteral("<b:Attachments><b:Delete><b:FileReference>%1</b:FileReference>"
                                              "</b:Delete></b:Attachments>")
                                   .arg(answered.text(QStringLiteral("FileReference")));
        const WbxmlNode second = mClient->sync(mFolder, reply.text(QStringLiteral("SyncKey")),
            commands(change(id, SampleEvents::fileXml(QStringLiteral("two.txt"))) + change(id, remove)));
        QVERIFY(!second.has(QStringLiteral("Responses")));
        const Event event = *mServer->mailbox().value<EventItem>(id);
        QCOMPARE(event.attachments.size(), 1);
        QCOMPARE(event.attachments.first().name, QStringLiteral("two.txt"));
        QCOMPARE(event.attachments.first().contentId, QStringLiteral("id-two.txt"));
        QCOMPARE(event.attachments.first().number, 2);
        QVERIFY(fetched(answered.text(QStringLiteral("FileReference"))).isNull());
        const WbxmlNode third =
            mClient->sync(mFolder, second.text(QStringLiteral("SyncKey")), commands(change(id, remove)));
        QCOMPARE(third.text(QStringLiteral("Responses/Change/Status")), QStringLiteral("6"));
    }

    void aChangeWhoseAnswerWasLostIsNoConflictForItsDevice()
    {
        mClient->setVersion(QStringLiteral("16.1"));
        const QString id = place(SampleEvents::meeting());
        const QString key = synced();
        const QString file = SampleEvents::fileXml(QStringLiteral("one.txt"));
        mClient->sync(mFolder, key, commands(change(id, subject(QStringLiteral("One")) + file)));
        const WbxmlNode reply =
            mClient->sync(mFolder, key, commands(change(id, subject(QStringLiteral("Two")) + file)));
        QVERIFY(!reply.has(QStringLiteral("Responses")));
        const Event event = *mServer->mailbox().value<EventItem>(id);
        QCOMPARE(event.subject, QStringLiteral("Two"));
        QCOMPARE(event.attachments.size(), 2);

        mServer->mailbox().edit<EventItem>(
            id, [](Event &edited) { edited.subject = QStringLiteral("Server"); });
        QCOMPARE(mClient->sync(mFolder, key, commands(change(id, subject(QStringLiteral("Three")))))
                     .text(QStringLiteral("Responses/Change/Status")),
            QStringLiteral("7"));
    }

    void aRefusalIsTheStatusOfItsItem()
    {
        mClient->setVersion(QStringLiteral("16.0"));
        const QString id = place(SampleEvents::weekly());
        const QString identified = SampleEvents::timesXml() + QStringLiteral("<k:UID>x</k:UID>");
        const WbxmlNode reply = mClient->sync(mFolder, synced(),
            commands(add(QStringLiteral("one"), identified) + change(id, identified)
                + add(QStringLiteral("two"), SampleEvents::timesXml())));
        const QVector<WbxmlNode> added = reply.all(QStringLiteral("Responses/Add"));
        QCOMPARE(added.first().text(QStringLiteral("Status")), QStringLiteral("6"));
        QCOMPARE(added.last().text(QStringLiteral("Status")), QStringLiteral("1"));
        QCOMPARE(reply.text(QStringLiteral("Responses/Change/Status")), QStringLiteral("6"));
        QCOMPARE(mServer->mailbox().itemCount(mFolder), 2);
    }

    void exceptionsInTheSeriesAreRefusedFrom160On()
    {
        mClient->setVersion(QStringLiteral("16.0"));
        const QString id = place(SampleEvents::weekly());
        const QString exceptions = QStringLiteral(
            "<k:Exceptions><k:Exception><k:Deleted>1</k:Deleted></k:Exception></k:Exceptions>");
        QCOMPARE(mClient->sync(mFolder, synced(), commands(change(id, exceptions)))
                     .text(QStringLiteral("Responses/Change/Status")),
            QStringLiteral("6"));
    }

    void eventsMoveToCalendarsAlone()
    {
        Mailbox &mailbox = mServer->mailbox();
        const QString id = place(SampleEvents::meeting());
        const QString team = mailbox.addFolder(QStringLiteral("Team"), UserCalendarFolder);
        const auto move = [&](const QString &destination) {
            return mClient
                ->post(QStringLiteral("MoveItems"),
                    QStringLiteral("<MoveItems xmlns='Move'><Move><SrcMsgId>%1</SrcMsgId><SrcFldId>%2"
                                   "</SrcFldId><DstFldId>%3</DstFldId></Move></MoveItems>")
                        .arg(id, mFolder, destination))
                .document.at(QStringLiteral("Response"));
        };
        QCOMPARE(move(mailbox.inboxId()).text(QStringLiteral("Status")), QStringLiteral("2"));
        const WbxmlNode moved = move(team);
        QCOMPARE(moved.text(QStringLiteral("Status")), QStringLiteral("3"));
        const auto event = mailbox.value<EventItem>(moved.text(QStringLiteral("DstMsgId")));
        QVERIFY(event);
        QCOMPARE(event->differences(SampleEvents::meeting()), QStringList());
    }

    void oldEventsAreLeftOutAndSeriesAreNot()
    {
        const QString series = place(SampleEvents::weekly());
        const QDateTime now = QDateTime::currentDateTimeUtc();
        const QString recent = place(Event::timed(QStringLiteral("recent"), "UTC", now.addDays(-2), 60));
        place(Event::timed(QStringLiteral("old"), "UTC", now.addDays(-60), 60));
        const WbxmlNode reply = mClient->sync(mFolder, mClient->firstKey(mFolder),
            QStringLiteral("<Options><FilterType>4</FilterType></Options>"));
        QSet<QString> ids;
        for (const WbxmlNode &node : reply.all(QStringLiteral("Commands/Add/ServerId")))
            ids.insert(node.text());
        QVERIFY(ids == (QSet<QString> { series, recent }));
    }

private:
    static void versions()
    {
        QTest::addColumn<QString>("version");
        for (const int version : protocolVersions())
            QTest::newRow(qPrintable(versionText(version))) << versionText(version);
    }

    QString place(const Event &event) { return mServer->mailbox().addItem(mFolder, EventItem::make(event)); }

    /** The event as a device of that version gets it. */
    WbxmlNode download(const Event &event, const QString &version)
    {
        const QString id = place(event);
        const QString before = mClient->version();
        mClient->setVersion(version);
        const WbxmlNode reply = mClient->sync(mFolder, mClient->firstKey(mFolder),
            QStringLiteral("<Options><b:BodyPreference><b:Type>1</b:Type></b:BodyPreference></Options>"));
        mClient->setVersion(before);
        mServer->mailbox().remove(id);
        return reply.at(QStringLiteral("Commands/Add/ApplicationData"));
    }

    /** What a careful device sends when it sends all that it has. */
    static WbxmlNode uploadOf(WbxmlNode data, const QString &version)
    {
        QStringList notSent { QStringLiteral("AirSyncBase:NativeBodyType"),
            QStringLiteral("Calendar:ResponseType"), QStringLiteral("Calendar:AppointmentReplyTime"),
            QStringLiteral("Calendar:OnlineMeetingConfLink"),
            QStringLiteral("Calendar:OnlineMeetingExternalLink") };
        if (version >= QLatin1String("16")) {
            notSent += { QStringLiteral("Calendar:UID"), QStringLiteral("Calendar:DtStamp"),
                QStringLiteral("Calendar:OrganizerName"), QStringLiteral("Calendar:OrganizerEmail"),
                QStringLiteral("Calendar:Exceptions"), QStringLiteral("AirSyncBase:Attachments") };
            WbxmlNode *attendees = data.find(QStringLiteral("Calendar:Attendees"));
            for (int i = 0; attendees && i < attendees->children().size(); ++i)
                attendees->children()[i].removeAll(QStringLiteral("AttendeeStatus"));
        }
        for (const QString &element : qAsConst(notSent))
            data.removeAll(element);
        WbxmlNode *attendees = data.find(QStringLiteral("Calendar:Attendees"));
        for (int i = 0; attendees && i < attendees->children().size(); ++i) {
            attendees->children()[i].removeAll(QStringLiteral("MeetingResponse:ProposedStartTime"));
            attendees->children()[i].removeAll(QStringLiteral("MeetingResponse:ProposedEndTime"));
        }
        return data;
    }

    /** The children as a text for a request. */
    static QString inner(const WbxmlNode &data)
    {
        QString xml;
        for (const WbxmlNode &child : data.children())
            xml += child.toXml(false);
        return xml;
    }

    QString upload(const WbxmlNode &data, const QString &version)
    {
        mClient->setVersion(version);
        return mClient
            ->sync(mFolder, mClient->firstKey(mFolder), commands(add(QStringLiteral("one"), inner(data))))
            .text(QStringLiteral("Responses/Add/ServerId"));
    }

    QByteArray fetched(const QString &reference)
    {
        const WbxmlNode data =
            mClient
                ->post(QStringLiteral("ItemOperations"),
                    QStringLiteral("<ItemOperations xmlns='ItemOperations' xmlns:b='AirSyncBase'><Fetch>"
                                   "<Store>Mailbox</Store><b:FileReference>%1</b:FileReference></Fetch>"
                                   "</ItemOperations>")
                        .arg(reference))
                .document.at(QStringLiteral("Response/Fetch/Properties/Data"));
        return data.isNull() ? QByteArray() : QByteArray::fromBase64(data.bytes());
    }

    /** Key after everything so far was fetched. */
    QString synced()
    {
        return mClient->sync(mFolder, mClient->firstKey(mFolder)).text(QStringLiteral("SyncKey"));
    }

    std::unique_ptr<ExchangeServer> mServer;
    std::unique_ptr<SimulatorClient> mClient;
    QString mFolder;
};

FENNEL_REGISTER_TEST(SimulatorCalendarTest)
#include "simulatorcalendartest.moc"
