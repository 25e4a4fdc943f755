// SPDX-License-Identifier: LGPL-2.1-or-later
#include "samplecontacts.h"
#include "simulatorclient.h"

#include "simulator/contactitem.h"
#include "simulator/itemshape.h"
#include "simulator/protocolversion.h"
#include "support/testmain.h"

#include <QtTest>

using namespace Simulator;

namespace {

const QString firstName = QStringLiteral("FirstName");
const QString mobile = QStringLiteral("MobilePhoneNumber");
const QString plainBody =
    QStringLiteral("<Options><b:BodyPreference><b:Type>1</b:Type></b:BodyPreference></Options>");

QString commands(const QString &inner)
{
    return QStringLiteral("<Commands>%1</Commands>").arg(inner);
}

QString add(const QString &clientId, const QString &data)
{
    return QStringLiteral("<Add><ClientId>%1</ClientId><ApplicationData>%2</ApplicationData></Add>")
        .arg(clientId, data);
}

QString change(const QString &serverId, const QString &data)
{
    return QStringLiteral("<Change><ServerId>%1</ServerId><ApplicationData>%2</ApplicationData></Change>")
        .arg(serverId, data);
}

Contact named(const QString &name)
{
    return Contact().setText(firstName, name);
}

} // namespace

/** @short Contacts: all fields at each version, changes of both sides, conflicts, what a server refuses. */
class SimulatorContactsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        mServer = std::make_unique<ExchangeServer>();
        QVERIFY(mServer->start());
        mClient = std::make_unique<SimulatorClient>(*mServer);
        mClient->setClass(QStringLiteral("Contacts"));
        mFolder = mServer->mailbox().folderOfType(ContactsFolder).id;
    }

    void cleanup()
    {
        QCOMPARE(mServer->failures(), QStringList());
        mClient.reset();
        mServer.reset();
    }

    void everyFieldGoesUpAndComesDown_data()
    {
        QTest::addColumn<QString>("version");
        for (const int version : protocolVersions())
            QTest::newRow(qPrintable(versionText(version))) << versionText(version);
    }

    void everyFieldGoesUpAndComesDown()
    {
        QFETCH(QString, version);
        mClient->setVersion(version);
        const Contact full = SampleContacts::full();
        const WbxmlNode reply = mClient->sync(mFolder, mClient->firstKey(mFolder),
            commands(add(QStringLiteral("one"), SampleContacts::asXml(full))));
        const QString id = reply.text(QStringLiteral("Responses/Add/ServerId"));
        QCOMPARE(reply.text(QStringLiteral("Responses/Add/Status")), QStringLiteral("1"));
        QVERIFY(!reply.has(QStringLiteral("Commands")));
        QVERIFY(mServer->mailbox().value<ContactItem>(id) == full);

        mClient->setDevice(QStringLiteral("another"));
        const WbxmlNode data = mClient->sync(mFolder, mClient->firstKey(mFolder), plainBody)
                                   .at(QStringLiteral("Commands/Add/ApplicationData"));
        const auto again =
            ContactItem::fromUpload(withoutServersOwn(data), { versionFromText(version), std::nullopt });
        QVERIFY(again);
        QVERIFY(std::static_pointer_cast<const ContactItem>(again)->value() == full);
        QCOMPARE(data.text(QStringLiteral("Contacts:Birthday")), QStringLiteral("1971-02-28T00:00:00.000Z"));
        QCOMPARE(data.all(QStringLiteral("Contacts:Children/Child")).size(), 2);
        QCOMPARE(data.text(QStringLiteral("AirSyncBase:Body/Data")), full.note());
    }

    void theRankOfARecipientIsThereFrom140On()
    {
        mServer->mailbox().addItem(mFolder,
            ContactItem::make(named(QStringLiteral("Ann"))
                                  .setText(QStringLiteral("Alias"), QStringLiteral("ann"))
                                  .setText(QStringLiteral("WeightedRank"), QStringLiteral("7"))));
        const auto rank = [this](const QString &version) {
            mClient->setVersion(version);
            return mClient->sync(mFolder, mClient->firstKey(mFolder))
                .text(QStringLiteral("Commands/Add/ApplicationData/Contacts:WeightedRank"));
        };
        QCOMPARE(rank(QStringLiteral("12.1")), QString());
        QCOMPARE(rank(QStringLiteral("14.0")), QStringLiteral("7"));
    }

    void anAddThatIsRepeatedAddsOnce()
    {
        const QString key = mClient->firstKey(mFolder);
        const QString one = add(QStringLiteral("one"), QStringLiteral("<c:FirstName>Ann</c:FirstName>"));
        const WbxmlNode first = mClient->sync(mFolder, key, commands(one));
        const QString two = add(QStringLiteral("two"), QStringLiteral("<c:FirstName>Bea</c:FirstName>"));
        const WbxmlNode second = mClient->sync(mFolder, key, commands(one + two));
        QCOMPARE(second.all(QStringLiteral("Responses/Add")).size(), 2);
        QCOMPARE(second.text(QStringLiteral("Responses/Add/ServerId")),
            first.text(QStringLiteral("Responses/Add/ServerId")));
        QCOMPARE(mServer->mailbox().itemCount(mFolder), 2);
    }

    void aChangeRemovesWhatItLeavesOutButForNoteAndPicture()
    {
        const QString id = mServer->mailbox().addItem(mFolder, ContactItem::make(SampleContacts::full()));
        mClient->sync(
            mFolder, synced(), commands(change(id, QStringLiteral("<c:FirstName>Ann</c:FirstName>"))));
        const Contact full = SampleContacts::full();
        const Contact expected = named(QStringLiteral("Ann")).setPicture(full.picture()).setNote(full.note());
        QVERIFY(mServer->mailbox().value<ContactItem>(id) == expected);

        mClient->sync(mFolder, synced(),
            commands(change(id, QStringLiteral("<c:Picture/><b:Body><b:Type>1</b:Type><b:Data/></b:Body>"))));
        QVERIFY(mServer->mailbox().value<ContactItem>(id) == Contact());
    }

    void aChangeKeepsWhatTheDeviceDidNotNameAsSupported()
    {
        const Contact before = SampleContacts::full();
        const QString id = mServer->mailbox().addItem(mFolder, ContactItem::make(before));
        const QString key = synced(QStringLiteral("<Supported><c:FirstName/><c:MobilePhoneNumber/>"
                                                  "<c:Categories/><c:Children/></Supported>"));
        mClient->sync(mFolder, key, commands(change(id, QStringLiteral("<c:FirstName>Ann</c:FirstName>"))));
        Contact expected = before;
        expected.setText(firstName, QStringLiteral("Ann")).setText(mobile, QString());
        expected.setCategories({}).setChildren({});
        QVERIFY(mServer->mailbox().value<ContactItem>(id) == expected);
    }

    void nothingGoesWithAnEmptySupported()
    {
        const Contact before = SampleContacts::full();
        const QString id = mServer->mailbox().addItem(mFolder, ContactItem::make(before));
        mClient->sync(mFolder, synced(QStringLiteral("<Supported/>")),
            commands(change(id, QStringLiteral("<c:FirstName>Ann</c:FirstName>"))));
        Contact expected = before;
        QVERIFY(
            mServer->mailbox().value<ContactItem>(id) == expected.setText(firstName, QStringLiteral("Ann")));
    }

    void changesOnTheServerComeDownWhole()
    {
        const QString id = mServer->mailbox().addItem(
            mFolder, ContactItem::make(named(QStringLiteral("Ann")).setText(mobile, QStringLiteral("1"))));
        const QString key = synced();
        QVERIFY(mServer->mailbox().edit<ContactItem>(
            id, [](Contact &contact) { contact.setText(firstName, QStringLiteral("Bea")); }));
        const WbxmlNode reply = mClient->sync(mFolder, key);
        const WbxmlNode data = reply.at(QStringLiteral("Commands/Change/ApplicationData"));
        QCOMPARE(data.text(QStringLiteral("Contacts:FirstName")), QStringLiteral("Bea"));
        QCOMPARE(data.text(QStringLiteral("Contacts:MobilePhoneNumber")), QStringLiteral("1"));
        QVERIFY(mServer->mailbox().remove(id));
        QCOMPARE(mClient->sync(mFolder, reply.text(QStringLiteral("SyncKey")))
                     .text(QStringLiteral("Commands/Delete/ServerId")),
            id);
    }

    void conflictsGoAsTheOptionSays_data()
    {
        QTest::addColumn<QString>("option");
        QTest::addColumn<bool>("clientWins");
        QTest::newRow("0") << QStringLiteral("<Options><Conflict>0</Conflict></Options>") << true;
        QTest::newRow("1") << QStringLiteral("<Options><Conflict>1</Conflict></Options>") << false;
        QTest::newRow("none") << QString() << false;
    }

    void conflictsGoAsTheOptionSays()
    {
        QFETCH(QString, option);
        QFETCH(bool, clientWins);
        const QString id = mServer->mailbox().addItem(mFolder, ContactItem::make(named(QStringLiteral("A"))));
        const QString key = synced();
        // Another field than the device's: contacts are in conflict as a whole.
        mServer->mailbox().edit<ContactItem>(
            id, [](Contact &contact) { contact.setText(mobile, QStringLiteral("112")); });
        const WbxmlNode reply = mClient->sync(
            mFolder, key, option + commands(change(id, QStringLiteral("<c:FirstName>Device</c:FirstName>"))));
        QCOMPARE(reply.text(QStringLiteral("Responses/Change/Status")),
            clientWins ? QString() : QStringLiteral("7"));
        QCOMPARE(reply.text(QStringLiteral("Commands/Change/ApplicationData/Contacts:MobilePhoneNumber")),
            clientWins ? QString() : QStringLiteral("112"));
        QCOMPARE(mServer->mailbox().value<ContactItem>(id)->text(firstName),
            clientWins ? QStringLiteral("Device") : QStringLiteral("A"));
    }

    void aChangeOfWhatIsGoneIsStatusEight()
    {
        const QString id = mServer->mailbox().addItem(mFolder, ContactItem::make(named(QStringLiteral("A"))));
        const QString key = synced();
        mServer->mailbox().remove(id);
        const WbxmlNode reply =
            mClient->sync(mFolder, key, commands(change(id, QStringLiteral("<c:FirstName>B</c:FirstName>"))));
        QCOMPARE(reply.text(QStringLiteral("Responses/Change/Status")), QStringLiteral("8"));
        QCOMPARE(reply.text(QStringLiteral("Commands/Delete/ServerId")), id);
    }

    void whatDoesNotFitIsRefused_data()
    {
        QTest::addColumn<QString>("data");
        QTest::newRow("another class") << QStringLiteral("<e:Subject>Hello</e:Subject>");
        QTest::newRow("rank") << QStringLiteral("<c:WeightedRank>1</c:WeightedRank>");
        QTest::newRow("date") << QStringLiteral("<c:Birthday>yesterday</c:Birthday>");
        QTest::newRow("text that is no picture") << QStringLiteral("<c:Picture>%%%</c:Picture>");
        QTest::newRow("large picture")
            << QStringLiteral("<c:Picture>%1</c:Picture>")
                   .arg(QString::fromLatin1(QByteArray(48 * 1024 + 1, 'x').toBase64()));
        QTest::newRow("too many categories")
            << QStringLiteral("<c:Categories>%1</c:Categories>")
                   .arg(QStringLiteral("<c:Category>x</c:Category>").repeated(301));
    }

    void whatDoesNotFitIsRefused()
    {
        QFETCH(QString, data);
        const QString id = mServer->mailbox().addItem(mFolder, ContactItem::make(named(QStringLiteral("A"))));
        const WbxmlNode reply =
            mClient->sync(mFolder, synced(), commands(add(QStringLiteral("one"), data) + change(id, data)));
        QCOMPARE(reply.text(QStringLiteral("Responses/Add/Status")), QStringLiteral("6"));
        QCOMPARE(reply.text(QStringLiteral("Responses/Change/Status")), QStringLiteral("6"));
        QCOMPARE(mServer->mailbox().itemCount(mFolder), 1);
        QVERIFY(mServer->mailbox().value<ContactItem>(id) == named(QStringLiteral("A")));
    }

    void aFolderCanBeReadOnly()
    {
        const QString id = mServer->mailbox().addItem(mFolder, ContactItem::make(named(QStringLiteral("A"))));
        mServer->mailbox().setReadOnly(mFolder, true);
        const QString data = QStringLiteral("<c:FirstName>B</c:FirstName>");
        const WbxmlNode reply = mClient->sync(mFolder, synced(),
            commands(add(QStringLiteral("one"), data) + change(id, data)
                + QStringLiteral("<Delete><ServerId>%1</ServerId></Delete>").arg(id)));
        for (const QString &command :
            { QStringLiteral("Add"), QStringLiteral("Change"), QStringLiteral("Delete") })
            QCOMPARE(reply.text(QStringLiteral("Responses/%1/Status").arg(command)), QStringLiteral("6"));
        QVERIFY(mServer->mailbox().value<ContactItem>(id) == named(QStringLiteral("A")));
    }

    void longNotesAreCutAsAskedAndFetchedWhole()
    {
        const QString id = mServer->mailbox().addItem(mFolder, ContactItem::make(SampleContacts::full()));
        const QString options = QStringLiteral("<Options><b:BodyPreference><b:Type>1</b:Type>"
                                               "<b:TruncationSize>5</b:TruncationSize></b:BodyPreference>"
                                               "</Options>");
        const WbxmlNode body = mClient->sync(mFolder, mClient->firstKey(mFolder), options)
                                   .at(QStringLiteral("Commands/Add/ApplicationData/AirSyncBase:Body"));
        QCOMPARE(body.text(QStringLiteral("Data")), QStringLiteral("First"));
        QCOMPARE(body.text(QStringLiteral("Truncated")), QStringLiteral("1"));
        const WbxmlNode fetched =
            mClient
                ->post(QStringLiteral("ItemOperations"),
                    QStringLiteral("<ItemOperations xmlns='ItemOperations' xmlns:a='AirSync' "
                                   "xmlns:b='AirSyncBase'><Fetch><Store>Mailbox</Store><a:CollectionId>%1"
                                   "</a:CollectionId><a:ServerId>%2</a:ServerId><Options><b:BodyPreference>"
                                   "<b:Type>1</b:Type></b:BodyPreference></Options></Fetch></ItemOperations>")
                        .arg(mFolder, id))
                .document.at(QStringLiteral("Response/Fetch"));
        QCOMPARE(fetched.text(QStringLiteral("AirSync:Class")), QStringLiteral("Contacts"));
        QCOMPARE(
            fetched.text(QStringLiteral("Properties/AirSyncBase:Body/Data")), SampleContacts::full().note());
    }

    void aDeletedContactIsNoMessageAmongDeletedOnes()
    {
        const QString id = mServer->mailbox().addItem(mFolder, ContactItem::make(named(QStringLiteral("A"))));
        mClient->sync(
            mFolder, synced(), commands(QStringLiteral("<Delete><ServerId>%1</ServerId></Delete>").arg(id)));
        const QString bin = mServer->mailbox().folderOfType(DeletedItemsFolder).id;
        QCOMPARE(mServer->mailbox().itemCount(mFolder), 0);
        QCOMPARE(mServer->mailbox().itemCount(bin), 1);
        QVERIFY(!mClient->sync(bin, mClient->firstKey(bin)).has(QStringLiteral("Commands")));
    }

private:
    /** What a server says and a client does not. */
    static WbxmlNode withoutServersOwn(WbxmlNode data)
    {
        data.removeAll(QStringLiteral("AirSyncBase:NativeBodyType"));
        return data;
    }

    /** Key after everything so far was fetched. */
    QString synced(const QString &first = QString())
    {
        return mClient->sync(mFolder, mClient->firstKey(mFolder, first)).text(QStringLiteral("SyncKey"));
    }

    std::unique_ptr<ExchangeServer> mServer;
    std::unique_ptr<SimulatorClient> mClient;
    QString mFolder;
};

FENNEL_REGISTER_TEST(SimulatorContactsTest)
#include "simulatorcontactstest.moc"
