// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/contactsresulthandler.h"
#include "requests/uploadresultscene.h"
#include "support/hiddentable.h"
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
        SyncCollection collection = sent("3", &SyncCommandAdd::setContactItems, added, changed, deleted);
        collection.setGetChanges(true);
        return collection;
    }
    bool handle(SyncCollection &collection) { return mScene->handle(collection); }

    static Contact row(const char *localId, const char *serverId, const char *folder = "3")
    {
        Contact contact = item<Contact>(localId, serverId);
        contact.setCollectionId(QString::fromLatin1(folder));
        return contact;
    }

private Q_SLOTS:
    void init()
    {
        mScene = std::make_unique<Scene<ContactsResultHandler, StubContactStorage>>(&FakeAccount::people);
        QVERIFY(database().addContactsItems(Account, { row("c1", "3:1"), row("c2", "3:2") }));
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

    void aChangeOfAnUnknownContactBeginsTheCollectionAnew()
    {
        SyncCollection reply = collection({});
        reply.appendChangedContacts(Contact(), QStringLiteral("3:77"));
        QVERIFY(handle(reply));
        QCOMPARE(mScene->state.collectionsToResync, QStringList(QStringLiteral("3")));
    }

    void aChangeOfAKnownContactDoesNotBeginAnew()
    {
        SyncCollection reply = collection({ item<Contact>("new") }, {}, { QStringLiteral("3:2") });
        answerAdd(reply, "new", "3:7");
        reply.appendAddedContacts(Contact(), QStringLiteral("3:8"));
        for (const char *known : { "3:1", "3:2", "3:7", "3:8" }) // there, just deleted, just uploaded, new
            reply.appendChangedContacts(Contact(), QString::fromLatin1(known));
        QVERIFY(handle(reply));
        QCOMPARE(mScene->state.collectionsToResync, QStringList());
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
                QStringLiteral("uploaded +new *c1 -c2"), QStringLiteral("has all of 3") }));
        QCOMPARE(rows,
            QStringList(
                { QStringLiteral("3:1,3:2"), QStringLiteral("3:1,3:2,3:8"), QStringLiteral("3:1,3:7,3:8") }));
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
            QStringList({ QStringLiteral("received 3"), QStringLiteral("uploaded + *c1 -"),
                QStringLiteral("has all of 3") }));
        QVERIFY(log.contains(QStringLiteral("client-server conflict. Server wins")));
    }

    void theRowSaysWhatTheServersAnswerToAConflictHasMade()
    {
        Contact edited = item<Contact>("c1", "3:1");
        edited.setAvatarUrl(QUrl());
        SyncCollection reply = collection({}, { edited });
        answerChange(reply, "3:1", 7);
        reply.appendChangedContacts(Contact(), QStringLiteral("3:1"));
        const QUrl picture(QStringLiteral("file:///avatar-of-the-server.png"));
        mScene->store->onReceived = [&](QList<Contact> &, QList<Contact> &changed) {
            changed[0].setLocalId(QStringLiteral("c1-made-again"));
            changed[0].setAvatarUrl(picture);
        };
        QVERIFY(handle(reply));
        const QMap<QString, QUrl> pictures = *database().localContactIdsToAvatarsUrls(Account);
        QCOMPARE(pictures.value(QStringLiteral("c1-made-again")), picture);
        QVERIFY(!pictures.contains(QStringLiteral("c1")));
    }

    void anAdditionThatTheSameReplyAcknowledgesIsTheUploadedContact()
    {
        SyncCollection reply = collection({ item<Contact>("new") });
        answerAdd(reply, "new", "3:7");
        reply.appendAddedContacts(Contact(), QStringLiteral("3:7"));
        reply.appendAddedContacts(Contact(), QStringLiteral("3:8"));
        QStringList received;
        mScene->store->onReceived = [&](QList<Contact> &added, QList<Contact> &) {
            for (const Contact &contact : qAsConst(added))
                received.append(contact.serverId() + QLatin1Char('=') + contact.localId());
        };
        QVERIFY(handle(reply));
        QCOMPARE(received, QStringList({ QStringLiteral("3:7=new"), QStringLiteral("3:8=") }));
        const QMap<QString, QString> rows = *database().localToServerContactIds(Account, QStringLiteral("3"));
        QCOMPARE(rows.keys(QStringLiteral("3:7")), QStringList(QStringLiteral("new")));
    }

    void anotherFoldersIdentifiersAreNotTouched()
    {
        QVERIFY(
            database().addContactsItems(Account, { row("other", "3:1", "4"), row("other2", "3:2", "4") }));
        SyncCollection reply = collection({}, { item<Contact>("c1", "3:1") }, { QStringLiteral("3:2") });
        answerChange(reply, "3:1", 1);
        reply.appendDeletedIds(QStringLiteral("3:1"));
        QVERIFY(handle(reply));
        QVERIFY(mScene->store->calls.contains(QStringLiteral("uploaded + *c1 -c2")));
        const QMap<QString, QString> others =
            *database().localToServerContactIds(Account, QStringLiteral("4"));
        QCOMPARE(others.keys(), QStringList({ QStringLiteral("other"), QStringLiteral("other2") }));
    }

    void whileThereIsMoreNotAllIsReceived()
    {
        SyncCollection reply = collection({});
        reply.setMoreAvailable(true);
        QVERIFY(handle(reply));
        QVERIFY(!mScene->store->calls.contains(QStringLiteral("has all of 3")));
        reply.setMoreAvailable(false);
        // Of a folder whose changes were not asked for, silence says nothing.
        reply.setGetChanges(false);
        QVERIFY(handle(reply));
        QVERIFY(!mScene->store->calls.contains(QStringLiteral("has all of 3")));
        reply.setGetChanges(true);
        mScene->store->settlesFolders = false;
        QVERIFY(!handle(reply));
        QCOMPARE(mScene->status, -2);
    }

    void aConflictOfAnAdditionIsNotHandled()
    {
        SyncCollection reply = collection({ item<Contact>("new") });
        answerAdd(reply, "new", "", 7);
        const LogCollector log;
        QVERIFY(handle(reply));
        QCOMPARE(mScene->store->calls,
            QStringList({ QStringLiteral("received 3"), QStringLiteral("uploaded + * -"),
                QStringLiteral("has all of 3") }));
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
                QStringLiteral("uploaded + * -"), QStringLiteral("has all of 3") }));
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
        const HiddenTable hidden("contacts");
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
        mScene->database.refuse("INSERT", "contacts");
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
