// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocolfiles.h"
#include "samplecontacts.h"
#include "samplemessages.h"
#include "simulatorclient.h"
#include "support/sampleevents.h"

#include "simulator/contactitem.h"
#include "simulator/eventitem.h"
#include "simulator/person.h"
#include "simulator/protocolversion.h"
#include "support/testmain.h"

#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

using namespace Simulator;

/** @short Each kind of reply, at each version, against the published schemas. */
class SimulatorSchemasTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!protocolSchemas().exists(QStringLiteral("all.xsd")))
            QSKIP("the published schemas are not here: set FENNEL_PROTOCOL_SCHEMAS to their folder");
        mLint = QStandardPaths::findExecutable(QStringLiteral("xmllint"));
        if (mLint.isEmpty())
            QSKIP("xmllint is missing: install libxml2-utils");
    }

    void repliesFollowTheSchemas_data()
    {
        QTest::addColumn<QString>("version");
        for (const int version : protocolVersions())
            QTest::newRow(qPrintable(versionText(version))) << versionText(version);
    }

    void repliesFollowTheSchemas()
    {
        QFETCH(QString, version);
        ExchangeServer server;
        QVERIFY(server.start());
        fill(server.mailbox());
        SimulatorClient client(server, version);
        playFolders(server, client);
        playMail(server, client);
        playContacts(server, client);
        playEvents(server, client);
        playItems(server, client);
        playSettings(client);
        playAvailability(client);
        playSearches(server, client);
        playPolicies(server, client);
        QCOMPARE(server.failures(), QStringList());
        const QVector<RecordedRequest> requests = server.requests();
        for (const RecordedRequest &request : requests) {
            if (!request.replyDocument.isNull())
                mDocuments.append(request.replyDocument);
        }
        QVERIFY(mDocuments.size() > 20);
        validate();
    }

    void theSchemasWouldFindAMistake()
    {
        mDocuments = { WbxmlNode::fromXml(
            QStringLiteral("<FolderSync xmlns='FolderHierarchy'><Wrong/></FolderSync>")) };
        QVERIFY(!lint().isEmpty());
        mDocuments.clear();
    }

private:
    static void fill(Mailbox &mailbox)
    {
        const QString inbox = mailbox.inboxId();
        for (const QByteArray &message : { SampleMessages::nested(), SampleMessages::meetingRequest(),
                 SampleMessages::signedMessage(), sampleMessage(QStringLiteral("plain")) })
            mailbox.deliver(inbox, message);
        mailbox.deliver(mailbox.folderOfType(DraftsFolder).id, SampleMessages::nested());
    }

    static void playFolders(ExchangeServer &server, SimulatorClient &client)
    {
        const QString xml =
            QStringLiteral("<FolderSync xmlns='FolderHierarchy'><SyncKey>%1</SyncKey></FolderSync>");
        const auto run = [&](const QString &key) {
            return client.post(QStringLiteral("FolderSync"), xml.arg(key))
                .document.text(QStringLiteral("SyncKey"));
        };
        QString key = run(QStringLiteral("0"));
        const QString one = server.mailbox().addFolder(QStringLiteral("One"));
        const QString two = server.mailbox().addFolder(QStringLiteral("Two"));
        key = run(key);
        server.mailbox().renameFolder(one, QStringLiteral("Uno & <ä>"));
        server.mailbox().removeFolder(two);
        server.mailbox().addFolder(QStringLiteral("Three"), UserMailFolder, one);
        key = run(key);
        key = playFolderCommands(client, key);
        run(key);
        run(QStringLiteral("unknown"));
        server.overrideNext(QStringLiteral("FolderSync"), Override::topStatus(6));
        run(key);
    }

    static void playSettings(SimulatorClient &client)
    {
        const auto run = [&client](const QString &inner) {
            client.post(QStringLiteral("Settings"),
                QStringLiteral("<Settings xmlns='Settings'>%1</Settings>").arg(inner));
        };
        run(QStringLiteral("<Oof><Set><OofState>2</OofState><StartTime>2026-05-01T08:00:00.000Z</StartTime>"
                           "<EndTime>2026-05-08T16:30:00.000Z</EndTime><OofMessage><AppliesToInternal/>"
                           "<Enabled>1</Enabled><ReplyMessage>Away</ReplyMessage><BodyType>Text</BodyType>"
                           "</OofMessage></Set></Oof>"));
        run(QStringLiteral("<Oof><Get><BodyType>Text</BodyType></Get></Oof>"));
        run(QStringLiteral("<Oof/>"));
    }

    static void playAvailability(SimulatorClient &client)
    {
        const QString span = client.version() < QLatin1String("14")
            ? QString()
            : QStringLiteral("<Availability><StartTime>2026-05-04T08:00:00.000Z</StartTime>"
                             "<EndTime>2026-05-04T12:00:00.000Z</EndTime></Availability>");
        for (const char *people : { "<To>user@example.com</To><To>nobody@example.com</To>", "" })
            client.post(QStringLiteral("ResolveRecipients"),
                QStringLiteral("<ResolveRecipients xmlns='ResolveRecipients'>%1<Options>%2</Options>"
                               "</ResolveRecipients>")
                    .arg(QLatin1String(people), span));
    }

    static void playPolicies(ExchangeServer &server, SimulatorClient &client)
    {
        const QString described = client.version() < QLatin1String("14.1")
            ? QString()
            : QStringLiteral(
                "<DeviceInformation xmlns='Settings'><Set><Model>m</Model></Set></DeviceInformation>");
        const QString policy = QStringLiteral("<Policies><Policy><PolicyType>MS-EAS-Provisioning-WBXML"
                                              "</PolicyType>%1</Policy></Policies>");
        const auto run = [&client](const QByteArray &key, const QString &inner) {
            client.setHeader("X-MS-PolicyKey", key);
            return client.post(QStringLiteral("Provision"),
                QStringLiteral("<Provision xmlns='Provision'>%1</Provision>").arg(inner));
        };
        run("0", described + policy.arg(QString()));
        server.changePolicies([](ServerPolicies &all) { all.setPolicies({ Policy::allowing() }); });
        const QString key = run("0", described + policy.arg(QString()))
                                .document.text(QStringLiteral("Policies/Policy/PolicyKey"));
        run(key.toUtf8(), policy.arg(QStringLiteral("<PolicyKey>%1</PolicyKey><Status>1</Status>").arg(key)));
        for (const Wipe order : { Wipe::Device, Wipe::Account }) {
            server.changePolicies([order](ServerPolicies &all) { all.orderWipe(order); });
            run("0", QString());
        }
    }

    /** Each command twice, of which the second cannot be. Returns the key after them. */
    static QString playFolderCommands(SimulatorClient &client, QString key)
    {
        const auto run = [&client, &key](const QString &command, const QString &inner) {
            const WbxmlNode reply =
                client
                    .post(command,
                        QStringLiteral("<%1 xmlns='FolderHierarchy'><SyncKey>%2</SyncKey>%3</%1>")
                            .arg(command, key, inner))
                    .document;
            if (reply.has(QStringLiteral("SyncKey")))
                key = reply.text(QStringLiteral("SyncKey"));
            return reply.text(QStringLiteral("ServerId"));
        };
        const QString create =
            QStringLiteral("<ParentId>0</ParentId><DisplayName>Team</DisplayName><Type>13</Type>");
        const QString id = run(QStringLiteral("FolderCreate"), create);
        run(QStringLiteral("FolderCreate"), create);
        const QString update =
            QStringLiteral("<ServerId>%1</ServerId><ParentId>0</ParentId><DisplayName>Crew</DisplayName>");
        run(QStringLiteral("FolderUpdate"), update.arg(id));
        run(QStringLiteral("FolderUpdate"), update.arg(QStringLiteral("99")));
        const QString remove = QStringLiteral("<ServerId>%1</ServerId>").arg(id);
        run(QStringLiteral("FolderDelete"), remove);
        run(QStringLiteral("FolderDelete"), remove);
        return key;
    }

    static void playMail(ExchangeServer &server, SimulatorClient &client)
    {
        const QString inbox = server.mailbox().inboxId();
        const QString drafts = server.mailbox().folderOfType(DraftsFolder).id;
        const QString preview =
            client.version() >= QLatin1String("14") ? QStringLiteral("<b:Preview>80</b:Preview>") : QString();
        const QString part = client.version() >= QLatin1String("14.1")
            ? QStringLiteral("<b:BodyPartPreference><b:Type>2</b:Type></b:BodyPartPreference>")
            : QString();
        const QString options =
            QStringLiteral("<Options><MIMESupport>1</MIMESupport>"
                           "<b:BodyPreference><b:Type>1</b:Type>%1</b:BodyPreference>"
                           "<b:BodyPreference><b:Type>2</b:Type><b:TruncationSize>50"
                           "</b:TruncationSize>%1</b:BodyPreference>"
                           "<b:BodyPreference><b:Type>4</b:Type>%1</b:BodyPreference>%2</Options>")
                .arg(preview, part);
        QString key = client.firstKey(inbox, options);
        key = client.sync(inbox, key, QStringLiteral("<WindowSize>2</WindowSize>"))
                  .text(QStringLiteral("SyncKey"));
        key = client.sync(inbox, key).text(QStringLiteral("SyncKey"));
        const QVector<ItemEntry> items = server.mailbox().items(inbox);
        server.mailbox().setRead(items.at(0).serverId, true);
        server.mailbox().setFlag(items.at(0).serverId, 2);
        server.mailbox().setCategories(items.at(0).serverId, { QStringLiteral("Blue") });
        server.mailbox().remove(items.at(3).serverId);
        const QString commands = QStringLiteral(
            "<Commands><Change><ServerId>9:9</ServerId><ApplicationData><e:Read>1</e:Read></"
            "ApplicationData></Change>"
            "<Delete><ServerId>9:9</ServerId></Delete><Fetch><ServerId>%1</ServerId></Fetch></Commands>");
        key = client.sync(inbox, key, commands.arg(items.at(1).serverId)).text(QStringLiteral("SyncKey"));
        client.sync(inbox, key, QStringLiteral("<Options><FilterType>1</FilterType></Options>"));
        client.sync(drafts, client.firstKey(drafts));
        client.sync(inbox, QStringLiteral("unknown"));
        client.sync(QStringLiteral("99"), QStringLiteral("0"));
    }

    static void playContacts(ExchangeServer &server, SimulatorClient &client)
    {
        const QString contacts = server.mailbox().folderOfType(ContactsFolder).id;
        server.mailbox().addItem(contacts, ContactItem::make(SampleContacts::full()));
        server.mailbox().addItem(contacts, ContactItem::make(Contact()));
        const QString commands = QStringLiteral(
            "<Commands><Add><ClientId>c1</ClientId><ApplicationData><c:FileAs>Ann</c:FileAs>"
            "</ApplicationData></Add><Add><ClientId>c2</ClientId><ApplicationData><e:Subject>no contact"
            "</e:Subject></ApplicationData></Add></Commands>");
        client.setClass(QStringLiteral("Contacts"));
        QString key =
            client.sync(contacts, client.firstKey(contacts), commands).text(QStringLiteral("SyncKey"));
        const QString id = server.mailbox().items(contacts).first().serverId;
        server.mailbox().edit<ContactItem>(
            id, [](Contact &contact) { contact.setText(QStringLiteral("Title"), QStringLiteral("Dr")); });
        const QString change =
            QStringLiteral("<Commands><Change><ServerId>%1</ServerId><ApplicationData><c:Title>Prof</c:Title>"
                           "</ApplicationData></Change><Fetch><ServerId>%1</ServerId></Fetch></Commands>");
        client.sync(contacts, key, change.arg(id));
        client.setClass(QStringLiteral("Email"));
    }

    static void playEvents(ExchangeServer &server, SimulatorClient &client)
    {
        Mailbox &mailbox = server.mailbox();
        const QString calendar = mailbox.folderOfType(CalendarFolder).id;
        for (const Event &event :
            { SampleEvents::weekly(), SampleEvents::wholeDay(), SampleEvents::meeting() })
            mailbox.addItem(calendar, EventItem::make(event));
        client.setClass(QStringLiteral("Calendar"));
        const WbxmlNode first = client.sync(calendar, client.firstKey(calendar));
        const QString id = mailbox.items(calendar).first().serverId;
        mailbox.edit<EventItem>(id, [](Event &event) { event.subject = QStringLiteral("Changed"); });
        const QString commands = QStringLiteral(
            "<Commands><Add><ClientId>e1</ClientId><ApplicationData>%2</ApplicationData></Add><Add>"
            "<ClientId>e2</ClientId><ApplicationData><k:Subject>no times</k:Subject></ApplicationData></Add>"
            "<Change><ServerId>%1</ServerId><ApplicationData><k:UID>x</k:UID></ApplicationData></Change>"
            "<Fetch><ServerId>%1</ServerId></Fetch></Commands>");
        const bool is160 = client.version() >= QLatin1String("16");
        const QString file = is160 ? SampleEvents::fileXml(QStringLiteral("one")) : QString();
        QString key = client
                          .sync(calendar, first.text(QStringLiteral("SyncKey")),
                              commands.arg(id, SampleEvents::timesXml() + file))
                          .text(QStringLiteral("SyncKey"));
        const QString instances = QStringLiteral(
            "<Commands><Change><ServerId>%1</ServerId><b:InstanceId>20200101T000000Z</b:InstanceId>"
            "<ApplicationData><k:Subject>none</k:Subject></ApplicationData></Change><Delete><ServerId>%1"
            "</ServerId><b:InstanceId>20200101T000000Z</b:InstanceId></Delete></Commands>");
        if (is160)
            client.sync(calendar, key, instances.arg(id));
        const QString contact = mailbox.items(mailbox.folderOfType(ContactsFolder).id).first().serverId;
        for (const QString &item : { id, contact }) {
            client.post(QStringLiteral("ItemOperations"),
                QStringLiteral(
                    "<ItemOperations xmlns='ItemOperations' xmlns:a='AirSync'><Fetch><Store>Mailbox"
                    "</Store><a:ServerId>%1</a:ServerId></Fetch></ItemOperations>")
                    .arg(item));
        }
        client.setClass(QStringLiteral("Email"));
    }

    static void playItems(ExchangeServer &server, SimulatorClient &client)
    {
        Mailbox &mailbox = server.mailbox();
        const QString inbox = mailbox.inboxId();
        const QString id = mailbox.items(inbox).first().serverId;
        const QString reference = QString::fromLatin1(QUrl::toPercentEncoding(id + QStringLiteral(":1")));
        const QString xml = QStringLiteral(
            "<ItemOperations xmlns='ItemOperations' xmlns:a='AirSync' xmlns:b='AirSyncBase'>"
            "<Fetch><Store>Mailbox</Store><a:CollectionId>%1</a:CollectionId><a:ServerId>%2</a:ServerId>"
            "</Fetch><Fetch><Store>Mailbox</Store><b:FileReference>%3</b:FileReference><Options>"
            "<Range>0-10</Range></Options></Fetch><Fetch><Store>Mailbox</Store><b:FileReference>no"
            "</b:FileReference></Fetch></ItemOperations>")
                                .arg(inbox, id, reference);
        client.post(QStringLiteral("ItemOperations"), xml);
        const QString move =
            QStringLiteral("<MoveItems xmlns='Move'><Move><SrcMsgId>%1</SrcMsgId><SrcFldId>%2</SrcFldId>"
                           "<DstFldId>%3</DstFldId></Move><Move><SrcMsgId>9:9</SrcMsgId>"
                           "<SrcFldId>9</SrcFldId><DstFldId>1</DstFldId></Move></MoveItems>");
        const QString bin = mailbox.folderOfType(DeletedItemsFolder).id;
        client.post(QStringLiteral("MoveItems"), move.arg(id, inbox, bin));
        const QString empty =
            QStringLiteral("<ItemOperations xmlns='ItemOperations' xmlns:a='AirSync'><EmptyFolderContents>"
                           "<a:CollectionId>%1</a:CollectionId></EmptyFolderContents></ItemOperations>");
        client.post(QStringLiteral("ItemOperations"), empty.arg(bin));
        client.setHeader("MS-ASAcceptMultiPart", "T");
        client.post(QStringLiteral("ItemOperations"), xml);
        for (const QString &command :
            { QStringLiteral("Sync"), QStringLiteral("MoveItems"), QStringLiteral("ItemOperations") }) {
            server.overrideNext(command, Override::topStatus(5));
            client.post(command, SimulatorClient::syncXml(inbox, QStringLiteral("0")));
        }
    }

    static void playSearches(ExchangeServer &server, SimulatorClient &client)
    {
        server.changeDirectory([](Directory &directory) {
            directory.add(Person::fromContact(SampleContacts::full()));
            directory.add(Person::user(QStringLiteral("eva")).setPicture("picture"));
        });
        client.post(QStringLiteral("FolderSync"),
            QStringLiteral("<FolderSync xmlns='FolderHierarchy'><SyncKey>0</SyncKey></FolderSync>"));
        const int version = versionFromText(client.version());
        const QString mail =
            QStringLiteral("<Search xmlns='Search' xmlns:a='AirSync' xmlns:b='AirSyncBase'><Store>"
                           "<Name>Mailbox</Name><Query><And>%1<a:Class>Email</a:Class></And></Query><Options>"
                           "<DeepTraversal/><b:BodyPreference><b:Type>1</b:Type></b:BodyPreference>"
                           "</Options></Store></Search>");
        client.post(QStringLiteral("Search"), mail.arg(QString()));
        client.post(QStringLiteral("Search"), mail.arg(QStringLiteral("<FreeText>xyzzy</FreeText>")));
        const QString picture = QStringLiteral("<Picture><MaxPictures>1</MaxPictures></Picture>");
        client.post(QStringLiteral("Search"),
            QStringLiteral("<Search xmlns='Search'><Store><Name>GAL</Name><Query>e</Query>"
                           "<Options>%1</Options></Store></Search>")
                .arg(version >= Version141 ? picture : QString()));
        const QStringList commands = version >= Version161
            ? QStringList { QStringLiteral("Search"), QStringLiteral("Find") }
            : QStringList { QStringLiteral("Search") };
        if (version >= Version161) {
            const QString find = QStringLiteral("<Find xmlns='Find' xmlns:a='AirSync'><SearchId>1</SearchId>"
                                                "<ExecuteSearch>%1</ExecuteSearch></Find>");
            client.post(QStringLiteral("Find"),
                find.arg(QStringLiteral("<MailBoxSearchCriterion><Query><a:Class>Email</a:Class></Query>"
                                        "<Options/></MailBoxSearchCriterion>")));
            client.post(QStringLiteral("Find"),
                find.arg(QStringLiteral("<GalSearchCriterion><Query>e</Query><Options>%1</Options>"
                                        "</GalSearchCriterion>")
                             .arg(picture)));
        }
        for (const QString &command : commands) {
            for (const Override &refusal : { Override::topStatus(110), Override::collectionStatus(2) }) {
                server.overrideNext(command, refusal);
                client.post(command, mail.arg(QString()));
            }
        }
    }

    /** The schemas describe the newest version: an element that they no longer have is left out for them. */
    static void dropClass(WbxmlNode &root)
    {
        WbxmlNode *collections = root.find(QStringLiteral("Collections"));
        if (root.name() != QLatin1String("AirSync:Sync") || !collections)
            return;
        for (WbxmlNode &collection : collections->children())
            collection.removeAll(QStringLiteral("Class"));
    }

    /** What the validator says against the documents; empty if they are right. */
    QString lint()
    {
        QTemporaryDir folder;
        QStringList arguments { QStringLiteral("--noout"), QStringLiteral("--nonet"),
            QStringLiteral("--schema"), protocolSchemas().filePath(QStringLiteral("all.xsd")) };
        int number = 0;
        for (WbxmlNode &document : mDocuments) {
            dropClass(document);
            QString xml = document.toXml();
            xml.remove(QRegularExpression(QStringLiteral(" encoding=\"\\w+\"")));
            QFile file(folder.filePath(QStringLiteral("%1.xml").arg(++number)));
            if (!file.open(QIODevice::WriteOnly) || file.write(xml.toUtf8()) < 0)
                return QStringLiteral("cannot write ") + file.fileName();
            arguments.append(file.fileName());
        }
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(mLint, arguments);
        if (!process.waitForFinished() || process.exitCode() != 0)
            return QString::fromUtf8(process.readAll());
        return QString();
    }

    void validate()
    {
        const QString complaints = lint();
        mDocuments.clear();
        // The validator also talks about the schemas themselves.
        const QStringList errors = complaints.split(QLatin1Char('\n')).filter(QStringLiteral("error"));
        QVERIFY2(complaints.isEmpty(), qPrintable(errors.join(QLatin1Char('\n'))));
    }

    QString mLint;
    QVector<WbxmlNode> mDocuments;
};

FENNEL_REGISTER_TEST(SimulatorSchemasTest)
#include "simulatorschemastest.moc"
