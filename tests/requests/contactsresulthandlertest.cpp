// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/contactsresulthandler.h"
#include "requests/uploadresultscene.h"
#include "support/logcollector.h"
#include "support/stubcontactstorage.h"
#include "support/testmain.h"

using namespace UploadResultScene;

/** What becomes of the contacts that went up and came down with a Sync. */
class ContactsResultHandlerTest : public QObject
{
    Q_OBJECT

private:
    using Contact = EasContactsItem;

    std::unique_ptr<Scene<ContactsResultHandler, StubContactStorage>> mScene;

    static EasDatabase &database() { return *EasDatabase::instance(); }
    static SyncCollection collection(
        const QList<Contact> &added, const QList<Contact> &changed = {}, const QStringList &deleted = {})
    {
        return sent("3", &SyncCommandAdd::setContactItems, added, changed, deleted);
    }
    bool handle(SyncCollection &collection) { return mScene->handle(collection); }

private Q_SLOTS:
    void init()
    {
        mScene = std::make_unique<Scene<ContactsResultHandler, StubContactStorage>>(&FakeAccount::people);
        QVERIFY(
            database().addContactsItems(Account, { item<Contact>("c1", "3:1"), item<Contact>("c2", "3:2") }));
    }

    void cleanup() { mScene.reset(); }

    void aMissingStoreIsAFailure()
    {
        const LogCollector log;
        mScene->account.people.reset();
        SyncCollection reply = collection({});
        QVERIFY(!handle(reply));
        QCOMPARE(mScene->status, -2);
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("ContactStorage is null") }));
    }

    void whatTheServerSendsComesBeforeUploads()
    {
        SyncCollection reply =
            collection({ item<Contact>("new") }, { item<Contact>("c1", "3:1") }, { QStringLiteral("3:2") });
        answerAdd(reply, "new", "3:7");
        reply.appendAddedContacts(Contact(), QStringLiteral("3:8"));
        reply.appendChangedContacts(Contact(), QStringLiteral("3:1"));
        reply.appendDeletedIds(QStringLiteral("3:3"));
        QStringList rows;
        mScene->store->onCall = [&](const QString &) {
            rows.append(database().serverToLocalContactIds(Account)->keys().join(QLatin1Char(',')));
        };
        const LogCollector log;
        QVERIFY(handle(reply));
        QCOMPARE(mScene->status, 0);
        QCOMPARE(mScene->store->calls,
            QStringList({ QStringLiteral("received 3 +=3/3:8 *3/3:1 -3:3"),
                QStringLiteral("uploaded +new *c1 -c2") }));
        QCOMPARE(rows, QStringList({ QStringLiteral("3:1,3:2"), QStringLiteral("3:1,3:2,3:8") }));
        QCOMPARE(database().serverToLocalContactIds(Account)->keys(),
            QStringList({ QStringLiteral("3:1"), QStringLiteral("3:7"), QStringLiteral("3:8") }));
        QCOMPARE(
            *database().folderServerIdByContactLocalId(Account, QStringLiteral("3:7")), QStringLiteral("3"));
        QVERIFY(log.contains(QtInfoMsg,
            { QStringLiteral("Contact with client id"), QStringLiteral("new"), QStringLiteral("saved"),
                QStringLiteral("on the server with server id"), QStringLiteral("3:7") }));
        QVERIFY(log.contains(QtInfoMsg,
            { QStringLiteral("Contact with server id"), QStringLiteral("3:1"),
                QStringLiteral("updated successfully") }));
        QVERIFY(log.contains(
            QtInfoMsg, { QStringLiteral("Contact"), QStringLiteral("3:2"), QStringLiteral("was deleted") }));
    }

    void aConflictOfAChangeIsAcknowledgedAndTheServerWins()
    {
        SyncCollection reply = collection({}, { item<Contact>("c1", "3:1") });
        answerChange(reply, "3:1", 7);
        const LogCollector log;
        QVERIFY(handle(reply));
        QCOMPARE(mScene->store->calls,
            QStringList({ QStringLiteral("received 3"), QStringLiteral("uploaded + *c1 -") }));
        QVERIFY(log.contains(QStringLiteral("client-server conflict. Server wins")));
    }

    void aConflictOfAnAdditionIsNotHandled()
    {
        SyncCollection reply = collection({ item<Contact>("new") });
        answerAdd(reply, "new", "", 7);
        const LogCollector log;
        QVERIFY(handle(reply));
        QCOMPARE(mScene->store->calls,
            QStringList({ QStringLiteral("received 3"), QStringLiteral("uploaded + * -") }));
        QVERIFY(log.contains(QStringLiteral("Unhandled item status")));
    }

    void whatIsRefusedIsToldToTheStore()
    {
        SyncCollection reply =
            collection({ item<Contact>("new") }, { item<Contact>("c1", "3:1") }, { QStringLiteral("3:2") });
        answerAdd(reply, "new", "", 6);
        answerChange(reply, "3:1", 8);
        answerDelete(reply, "3:2", 4);
        QVERIFY(handle(reply));
        QCOMPARE(mScene->store->calls,
            QStringList({ QStringLiteral("failed c1,new,c2"), QStringLiteral("received 3"),
                QStringLiteral("uploaded + * -") }));
        QCOMPARE(database().serverToLocalContactIds(Account)->size(), 2);
    }

    void whatTheServerDoesNotHaveIsDeleted()
    {
        SyncCollection reply = collection({}, {}, { QStringLiteral("3:1"), QStringLiteral("3:2") });
        answerDelete(reply, "3:2", 8);
        QVERIFY(handle(reply));
        QVERIFY(mScene->store->calls.contains(QStringLiteral("uploaded + * -c2")));
        QCOMPARE(database().serverToLocalContactIds(Account)->keys(), QStringList(QStringLiteral("3:1")));
    }

    void aDatabaseThatCannotBeReadIsAFailure()
    {
        QVERIFY(OwnDatabase::hide("contacts"));
        const LogCollector log;
        SyncCollection reply = collection({}, {}, { QStringLiteral("3:1") });
        QVERIFY(!handle(reply));
        QCOMPARE(mScene->status, -2);
        QCOMPARE(mScene->store->calls, QStringList());
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("Failed to read contacts from EAS DB") }));
    }

    void aFullMailboxStopsTheCollection()
    {
        SyncCollection reply = collection({ item<Contact>("new") });
        answerAdd(reply, "new", "", 9);
        QVERIFY(!handle(reply));
        QCOMPARE(mScene->status, -6);
        QCOMPARE(mScene->store->calls, QStringList());
    }

    void aStoreThatRefusesIsAFailure()
    {
        const LogCollector log;
        mScene->store->takesItems = false;
        SyncCollection reply = collection({});
        QVERIFY(!handle(reply));
        QCOMPARE(mScene->status, -2);
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("Failed to update contacts items") }));
        mScene->store->takesItems = true;
        mScene->store->takesUploads = false;
        QVERIFY(!handle(reply));
        QCOMPARE(mScene->status, -2);
    }

    void aDatabaseThatRefusesIsAFailure()
    {
        QVERIFY(OwnDatabase::refuse("INSERT", "contacts"));
        const LogCollector log;
        SyncCollection up = collection({ item<Contact>("new") });
        answerAdd(up, "new", "3:7");
        QVERIFY(!handle(up));
        QCOMPARE(mScene->status, -2);
        QVERIFY(log.contains(
            QtCriticalMsg, { QStringLiteral("Failed to update contacts items in EAS DB for response") }));
        SyncCollection down = collection({});
        down.appendAddedContacts(Contact(), QStringLiteral("3:8"));
        QVERIFY(!handle(down));
        QVERIFY(
            log.texts(QtCriticalMsg).contains(QStringLiteral("Failed to update contacts items in EAS DB")));
    }
};

FENNEL_REGISTER_TEST(ContactsResultHandlerTest)
#include "contactsresulthandlertest.moc"
