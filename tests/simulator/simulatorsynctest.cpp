// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulatorclient.h"

#include "simulator/email.h"
#include "support/testmain.h"

#include <QtTest>

using namespace Simulator;

namespace {

QString add(const QString &clientId, const QString &subject)
{
    return QStringLiteral(
        "<Add><ClientId>%1</ClientId><ApplicationData><e:Subject>%2</e:Subject></ApplicationData></Add>")
        .arg(clientId, subject);
}

QString commands(const QString &inner)
{
    return QStringLiteral("<Commands>%1</Commands>").arg(inner);
}

QString setRead(const QString &id, int read)
{
    return commands(QStringLiteral("<Change><ServerId>%1</ServerId><ApplicationData><e:Read>%2</e:Read>"
                                   "</ApplicationData></Change>")
                        .arg(id)
                        .arg(read));
}

QString itemDelete(const QString &id)
{
    return commands(QStringLiteral("<Delete><ServerId>%1</ServerId></Delete>").arg(id));
}

} // namespace

/** @short Sync: keys, windows, changes of both sides, repetition, filters. */
class SimulatorSyncTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        mServer = std::make_unique<ExchangeServer>();
        QVERIFY(mServer->start());
        mClient = std::make_unique<SimulatorClient>(*mServer);
        mInbox = mServer->mailbox().inboxId();
    }

    void cleanup()
    {
        QCOMPARE(mServer->failures(), QStringList());
        mClient.reset();
        mServer.reset();
    }

    void keyZeroStartsAndTheNextKeyBringsTheItems()
    {
        const QString id = deliver(QStringLiteral("Hello"));
        const WbxmlNode first = mClient->sync(mInbox, QStringLiteral("0"));
        QCOMPARE(first.text(QStringLiteral("Status")), QStringLiteral("1"));
        QVERIFY(!first.has(QStringLiteral("Commands")));
        const WbxmlNode second = mClient->sync(mInbox, first.text(QStringLiteral("SyncKey")));
        QCOMPARE(second.text(QStringLiteral("Commands/Add/ServerId")), id);
        QCOMPARE(second.text(QStringLiteral("Commands/Add/ApplicationData/Email:Subject")),
            QStringLiteral("Hello"));
        QVERIFY(second.text(QStringLiteral("SyncKey")) != first.text(QStringLiteral("SyncKey")));
    }

    void windowsBringTheRestWithMoreAvailable()
    {
        mServer->setWindowSize(2);
        for (int i = 0; i < 5; ++i)
            deliver(QString::number(i));
        QString key = mClient->firstKey(mInbox);
        QVector<int> sizes;
        QSet<QString> seen;
        bool more = true;
        while (more) {
            const WbxmlNode reply = mClient->sync(mInbox, key);
            const QVector<WbxmlNode> added = reply.all(QStringLiteral("Commands/Add"));
            sizes.append(added.size());
            for (const WbxmlNode &node : added)
                seen.insert(node.text(QStringLiteral("ServerId")));
            key = reply.text(QStringLiteral("SyncKey"));
            more = reply.has(QStringLiteral("MoreAvailable"));
        }
        QCOMPARE(sizes, (QVector<int> { 2, 2, 1 }));
        QCOMPARE(seen.size(), 5);
    }

    void theClientsWindowGoesBeforeTheServers()
    {
        for (int i = 0; i < 5; ++i)
            deliver(QString::number(i));
        const WbxmlNode reply =
            mClient->sync(mInbox, mClient->firstKey(mInbox), QStringLiteral("<WindowSize>3</WindowSize>"));
        QCOMPARE(reply.all(QStringLiteral("Commands/Add")).size(), 3);
        QVERIFY(reply.has(QStringLiteral("MoreAvailable")));
    }

    void anExactWindowHasNoMoreAvailable()
    {
        mServer->setWindowSize(2);
        deliver(QStringLiteral("1"));
        deliver(QStringLiteral("2"));
        const WbxmlNode reply = mClient->sync(mInbox, mClient->firstKey(mInbox));
        QCOMPARE(reply.all(QStringLiteral("Commands/Add")).size(), 2);
        QVERIFY(!reply.has(QStringLiteral("MoreAvailable")));
    }

    void aRepeatedRequestRepeatsItsAnswer()
    {
        deliver(QStringLiteral("1"));
        const QString key = mClient->firstKey(mInbox);
        const WbxmlNode reply = mClient->sync(mInbox, key);
        deliver(QStringLiteral("2"));
        QVERIFY(mClient->sync(mInbox, key) == reply);
        const WbxmlNode next = mClient->sync(mInbox, reply.text(QStringLiteral("SyncKey")));
        QCOMPARE(next.all(QStringLiteral("Commands/Add")).size(), 1);
        QCOMPARE(
            next.text(QStringLiteral("Commands/Add/ApplicationData/Email:Subject")), QStringLiteral("2"));
    }

    void anOldKeyWithAnotherRequestGoesBackToWhatTheClientKnew()
    {
        const QString id = deliver(QStringLiteral("1"));
        const QString key = mClient->firstKey(mInbox);
        mClient->sync(mInbox, key);
        deliver(QStringLiteral("2"));
        const WbxmlNode reply = mClient->sync(mInbox, key, QStringLiteral("<WindowSize>100</WindowSize>"));
        QCOMPARE(reply.all(QStringLiteral("Commands/Add")).size(), 2);
        QVERIFY(mServer->mailbox().item(id));
    }

    void theWayBackOutlastsAnAnswerWithoutNews()
    {
        deliver(QStringLiteral("1"));
        const QString key = mClient->firstKey(mInbox);
        const QString next = mClient->sync(mInbox, key).text(QStringLiteral("SyncKey"));
        mClient->sync(mInbox, next);
        const WbxmlNode reply = mClient->sync(mInbox, key, QStringLiteral("<WindowSize>100</WindowSize>"));
        QCOMPARE(reply.all(QStringLiteral("Commands/Add")).size(), 1);
        mClient->sync(mInbox, key, QStringLiteral("<WindowSize>50</WindowSize>"));
        QCOMPARE(mClient->sync(mInbox, next).text(QStringLiteral("Status")), QStringLiteral("3"));
    }

    void anUnknownKeyIsStatusThree()
    {
        const QString key = mClient->firstKey(mInbox);
        QCOMPARE(
            mClient->sync(mInbox, QStringLiteral("999")).text(QStringLiteral("Status")), QStringLiteral("3"));
        mServer->forgetDevices();
        QCOMPARE(mClient->sync(mInbox, key).text(QStringLiteral("Status")), QStringLiteral("3"));
    }

    void aMissingFolderIsStatusTwelve()
    {
        QCOMPARE(mClient->sync(QStringLiteral("77"), QStringLiteral("0")).text(QStringLiteral("Status")),
            QStringLiteral("12"));
    }

    void changesOfTheServerComeAsTheFieldsThatChanged()
    {
        const QString id = deliver(QStringLiteral("1"));
        QString key = synced();
        mServer->mailbox().setRead(id, true);
        WbxmlNode reply = mClient->sync(mInbox, key);
        QCOMPARE(reply.at(QStringLiteral("Commands/Change/ApplicationData")).children().size(), 1);
        QCOMPARE(
            reply.text(QStringLiteral("Commands/Change/ApplicationData/Email:Read")), QStringLiteral("1"));

        mServer->mailbox().setFlag(id, 2);
        mServer->mailbox().setCategories(id, { QStringLiteral("Blue") });
        reply = mClient->sync(mInbox, reply.text(QStringLiteral("SyncKey")));
        const WbxmlNode data = reply.at(QStringLiteral("Commands/Change/ApplicationData"));
        QCOMPARE(data.children().size(), 2);
        QCOMPARE(data.text(QStringLiteral("Email:Flag/Status")), QStringLiteral("2"));
        QCOMPARE(data.text(QStringLiteral("Email:Categories/Category")), QStringLiteral("Blue"));

        mServer->mailbox().remove(id);
        reply = mClient->sync(mInbox, reply.text(QStringLiteral("SyncKey")));
        QCOMPARE(reply.text(QStringLiteral("Commands/Delete/ServerId")), id);
    }

    void aChangeThatTheVersionCannotExpressIsNoChange()
    {
        const QString id = deliver(QStringLiteral("1"));
        const QString key = synced();
        mClient->setVersion(QStringLiteral("12.1"));
        mServer->mailbox().setCategories(id, { QStringLiteral("Blue") });
        deliver(QStringLiteral("2"));
        const WbxmlNode reply = mClient->sync(mInbox, key);
        QCOMPARE(reply.at(QStringLiteral("Commands")).children().size(), 1);
        QVERIFY(!reply.has(QStringLiteral("MoreAvailable")));
    }

    void changesOfTheClientReachTheMailboxAndDoNotComeBack()
    {
        const QString id = deliver(QStringLiteral("1"));
        const WbxmlNode reply = mClient->sync(mInbox, synced(), setRead(id, 1));
        QVERIFY(!reply.has(QStringLiteral("Responses")));
        QVERIFY(!reply.has(QStringLiteral("Commands")));
        QCOMPARE(mServer->mailbox().item(id)->state().value(QStringLiteral("Read")), QByteArray("1"));
        QCOMPARE(mClient
                     ->post(QStringLiteral("Sync"),
                         SimulatorClient::syncXml(mInbox, reply.text(QStringLiteral("SyncKey"))))
                     .body,
            QByteArray());
    }

    void inAConflictTheServerWinsUnlessTheClientSaysOtherwise()
    {
        const QString id = deliver(QStringLiteral("1"));
        const QString flag =
            QStringLiteral("<Change><ServerId>%1</ServerId><ApplicationData><e:Flag><e:Status>%2</e:Status></"
                           "e:Flag></ApplicationData>"
                           "</Change>");
        QString key = synced();
        mServer->mailbox().setFlag(id, 2);
        WbxmlNode reply = mClient->sync(mInbox, key, commands(flag.arg(id).arg(1)));
        QCOMPARE(reply.text(QStringLiteral("Responses/Change/Status")), QStringLiteral("7"));
        QCOMPARE(reply.text(QStringLiteral("Commands/Change/ApplicationData/Email:Flag/Status")),
            QStringLiteral("2"));

        mServer->mailbox().setFlag(id, 0);
        reply = mClient->sync(mInbox, reply.text(QStringLiteral("SyncKey")),
            QStringLiteral("<Options><Conflict>0</Conflict></Options>") + commands(flag.arg(id).arg(1)));
        QVERIFY(!reply.has(QStringLiteral("Responses")));
        const auto email = std::dynamic_pointer_cast<const Email>(mServer->mailbox().item(id));
        QCOMPARE(email->flagStatus(), 1);
    }

    void deletesMoveToDeletedItemsUnlessTheClientSaysOtherwise()
    {
        Mailbox &mailbox = mServer->mailbox();
        const QString bin = mailbox.folderOfType(DeletedItemsFolder).id;
        const QString one = deliver(QStringLiteral("1"));
        const QString two = deliver(QStringLiteral("2"));
        WbxmlNode reply = mClient->sync(mInbox, synced(), itemDelete(one));
        QVERIFY(!reply.has(QStringLiteral("Responses")));
        QCOMPARE(mailbox.itemCount(bin), 1);
        reply = mClient->sync(mInbox, reply.text(QStringLiteral("SyncKey")),
            QStringLiteral("<DeletesAsMoves>0</DeletesAsMoves>") + itemDelete(two));
        QCOMPARE(mailbox.itemCount(bin), 1);
        QCOMPARE(mailbox.itemCount(mInbox), 0);
        reply = mClient->sync(mInbox, reply.text(QStringLiteral("SyncKey")), itemDelete(two));
        QCOMPARE(reply.text(QStringLiteral("Responses/Delete/Status")), QStringLiteral("8"));
    }

    void aRepeatedDeleteIsDoneOnce()
    {
        const QString id = deliver(QStringLiteral("1"));
        const QString key = synced();
        mClient->sync(mInbox, key, itemDelete(id));
        const WbxmlNode reply =
            mClient->sync(mInbox, key, QStringLiteral("<WindowSize>9</WindowSize>") + itemDelete(id));
        QVERIFY(!reply.has(QStringLiteral("Responses")));
        QVERIFY(!reply.has(QStringLiteral("Commands")));
    }

    void anAddWithAKnownClientIdIsNotAddedTwice()
    {
        const QString contacts = mServer->mailbox().folderOfType(ContactsFolder).id;
        const QString inner =
            commands(QStringLiteral("<Add><ClientId>c1</ClientId><ApplicationData><FileAs "
                                    "xmlns='Contacts'>Ann</FileAs></ApplicationData></Add>"));
        const QString key = mClient->firstKey(contacts);
        const WbxmlNode first = mClient->sync(contacts, key, inner);
        QCOMPARE(first.text(QStringLiteral("Responses/Add/Status")), QStringLiteral("1"));
        const WbxmlNode again =
            mClient->sync(contacts, key, QStringLiteral("<WindowSize>9</WindowSize>") + inner);
        QCOMPARE(again.text(QStringLiteral("Responses/Add/ServerId")),
            first.text(QStringLiteral("Responses/Add/ServerId")));
        QCOMPARE(mServer->mailbox().itemCount(contacts), 1);
        QVERIFY(!again.has(QStringLiteral("Commands")));
    }

    void draftsCanBeAddedFromSixteenOn()
    {
        const QString drafts = mServer->mailbox().folderOfType(DraftsFolder).id;
        const QString inner = commands(add(QStringLiteral("c1"), QStringLiteral("Ä draft")));
        WbxmlNode reply = mClient->sync(drafts, mClient->firstKey(drafts), inner);
        QCOMPARE(reply.text(QStringLiteral("Responses/Add/Status")), QStringLiteral("6"));
        mClient->setVersion(QStringLiteral("16.0"));
        reply = mClient->sync(drafts, reply.text(QStringLiteral("SyncKey")), inner);
        QCOMPARE(reply.text(QStringLiteral("Responses/Add/Status")), QStringLiteral("1"));
        mClient->setDevice(QStringLiteral("device2"));
        reply = mClient->sync(drafts, mClient->firstKey(drafts));
        QCOMPARE(reply.text(QStringLiteral("Commands/Add/ApplicationData/Email:Subject")),
            QStringLiteral("Ä draft"));
        QCOMPARE(
            reply.text(QStringLiteral("Commands/Add/ApplicationData/Email2:IsDraft")), QStringLiteral("1"));
    }

    void getChangesZeroBringsNone()
    {
        deliver(QStringLiteral("1"));
        const QString key = mClient->firstKey(mInbox);
        const PlainReply reply = mClient->post(QStringLiteral("Sync"),
            SimulatorClient::syncXml(mInbox, key, QStringLiteral("<GetChanges>0</GetChanges>")));
        QCOMPARE(reply.body, QByteArray());
        QCOMPARE(mClient->sync(mInbox, key).all(QStringLiteral("Commands/Add")).size(), 1);
    }

    void nothingNewIsAnEmptyReplyFromTwelveOneOn()
    {
        const QString key = synced();
        const PlainReply reply = mClient->post(QStringLiteral("Sync"), SimulatorClient::syncXml(mInbox, key));
        QCOMPARE(reply.status, 200);
        QCOMPARE(reply.body, QByteArray());
        mClient->setVersion(QStringLiteral("12.0"));
        const WbxmlNode full = mClient->sync(mInbox, key);
        QCOMPARE(full.text(QStringLiteral("Status")), QStringLiteral("1"));
        QCOMPARE(full.text(QStringLiteral("SyncKey")), key);
        QCOMPARE(full.text(QStringLiteral("Class")), QStringLiteral("Email"));
    }

    void atTwelveZeroACollectionNeedsItsClass()
    {
        mClient->setVersion(QStringLiteral("12.0"));
        const PlainReply reply =
            mClient->post(QStringLiteral("Sync"), SimulatorClient::syncXml(mInbox, QStringLiteral("0")));
        QCOMPARE(reply.document.text(QStringLiteral("Collections/Collection/Status")), QStringLiteral("4"));
        QCOMPARE(mServer->failures().size(), 1);
        mServer->clearScript();
        QVERIFY(!mClient->firstKey(mInbox).isEmpty());
    }

    void aFilterHidesOldItemsAndTakesThemAwaySoftly()
    {
        const QDateTime now = QDateTime::currentDateTimeUtc();
        const QString fresh = deliver(QStringLiteral("fresh"), now.addSecs(-60));
        const QString old = deliver(QStringLiteral("old"), now.addDays(-10));
        const auto filter = [](int type) {
            return QStringLiteral("<Options><FilterType>%1</FilterType></Options>").arg(type);
        };
        WbxmlNode reply = mClient->sync(mInbox, mClient->firstKey(mInbox), filter(3));
        QCOMPARE(reply.all(QStringLiteral("Commands/Add")).size(), 1);
        QCOMPARE(reply.text(QStringLiteral("Commands/Add/ServerId")), fresh);
        reply = mClient->sync(mInbox, reply.text(QStringLiteral("SyncKey")), filter(0));
        QCOMPARE(reply.text(QStringLiteral("Commands/Add/ServerId")), old);
        reply = mClient->sync(mInbox, reply.text(QStringLiteral("SyncKey")), filter(3));
        QCOMPARE(reply.text(QStringLiteral("Commands/SoftDelete/ServerId")), old);
        QVERIFY(!reply.has(QStringLiteral("Commands/Delete")));
    }

    void aFetchBringsTheItem()
    {
        const QString id = deliver(QStringLiteral("1"));
        const WbxmlNode reply = mClient->sync(
            mInbox, synced(), commands(QStringLiteral("<Fetch><ServerId>%1</ServerId></Fetch>").arg(id)));
        QCOMPARE(reply.text(QStringLiteral("Responses/Fetch/Status")), QStringLiteral("1"));
        QCOMPARE(
            reply.text(QStringLiteral("Responses/Fetch/ApplicationData/Email:Subject")), QStringLiteral("1"));
    }

    void aStaleHierarchyIsStatusTwelveWhenAsked()
    {
        const QString key = synced();
        mServer->setReportStaleHierarchy(true);
        const PlainReply reply = mClient->post(QStringLiteral("Sync"), SimulatorClient::syncXml(mInbox, key));
        QCOMPARE(reply.document.text(QStringLiteral("Status")), QStringLiteral("12"));
    }

    void twoDevicesSeeTheSameMailApart()
    {
        const QString id = deliver(QStringLiteral("1"));
        const QString key = synced();
        mClient->setDevice(QStringLiteral("device2"));
        QCOMPARE(mClient->sync(mInbox, key).text(QStringLiteral("Status")), QStringLiteral("3"));
        const QString second = synced();
        mClient->sync(mInbox, second, setRead(id, 1));
        mClient->setDevice(QStringLiteral("device1"));
        QCOMPARE(mClient->sync(mInbox, key).text(QStringLiteral("Commands/Change/ServerId")), id);
    }

private:
    QString deliver(const QString &subject, const QDateTime &received = QDateTime())
    {
        return mServer->mailbox().deliver(mInbox, sampleMessage(subject), received);
    }

    /** Key after everything so far was fetched. */
    QString synced()
    {
        const QString key = mClient->firstKey(mInbox);
        const QString next = mClient->sync(mInbox, key).text(QStringLiteral("SyncKey"));
        return next.isEmpty() ? key : next;
    }

    std::unique_ptr<ExchangeServer> mServer;
    std::unique_ptr<SimulatorClient> mClient;
    QString mInbox;
};

FENNEL_REGISTER_TEST(SimulatorSyncTest)
#include "simulatorsynctest.moc"
