// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactrecovery.h"
#include "application/mapping/easdatabase.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "support/contactaccount.h"
#include "support/hiddentable.h"
#include "support/logcollector.h"
#include "support/storedatabase.h"
#include "support/testmain.h"
#include "support/testpictures.h"

#include <QtContacts/QContactGuid>
#include <QtContacts/QContactName>

#include <QtTest>

QTCONTACTS_USE_NAMESPACE

/** Store and mapping come back into step after interruptions, and when a folder is sent anew. */
class ContactRecoveryTest : public QObject
{
    Q_OBJECT

private:
    static QString none() { return QStringLiteral("added: ; changed: ; deleted: "); }
    static QString otherFolder() { return QStringLiteral("F2"); }

    static void rename(const ContactAccount &account, const QContactId &id, const QString &name)
    {
        QContact contact = account.store.manager().contact(id);
        QContactName detail = contact.detail<QContactName>();
        detail.setFirstName(name);
        contact.saveDetail(&detail);
        QVERIFY(account.store.manager().saveContact(&contact));
    }

    static EasContactsItem named(const ContactAccount &account, int number)
    {
        EasContactsItem item =
            account.item(QString::number(number), QStringLiteral("Contact %1").arg(number));
        item.setPicture(QString::fromLatin1(TestPictures::png(number).toBase64()));
        return item;
    }

    /** A folder with the contacts 1 to 3, which the server sends anew from now on. */
    static void sendAnew(ContactAccount &account)
    {
        account.addFolder();
        QVERIFY(account.receive({ named(account, 1), named(account, 2), named(account, 3) }));
        setKey(account, QStringLiteral("key"));
        QVERIFY(account.storage().expectAll(ContactAccount::folder()));
    }

    static QString key(const ContactAccount &account)
    {
        return EasDatabase::instance()->folderItemByServerId(account.id(), account.folderId())->syncKey();
    }

    static void setKey(const ContactAccount &account, const QString &key)
    {
        EasFolderItem row = *EasDatabase::instance()->folderItemByServerId(account.id(), account.folderId());
        row.setSyncKey(key);
        row.appendChangedField(Wbxml::AirSync::SyncKey.key());
        QVERIFY(EasDatabase::instance()->updateFolderItems(account.id(), { row }));
    }

    static void updateFolders(ContactAccount &account)
    {
        QList<EasFolderItem> none;
        QVERIFY(account.storage().updateFolders(none, none, {}));
    }

    /** A contact that the user has made, and that has arrived on the server under an identifier. */
    static QContactId uploaded(ContactAccount &account, const QString &name, const QString &serverId)
    {
        const QContactId id = account.store.addContact(account.collection(), name).id();
        account.localChanges();
        EasContactsItem item = account.item(serverId, name);
        item.setLocalId(id.toString());
        const bool taken = account.storage().uploadedLocalChanges({ id.toString() }, {}, {})
            && EasDatabase::instance()->addContactsItems(account.id(), { item });
        return taken ? id : QContactId();
    }

    static void loseMapping(const ContactAccount &account)
    {
        QVERIFY(EasDatabase::instance()->clearContactsFolder(account.id(), account.folderId()));
    }

private Q_SLOTS:
    // Everything anew

    void whatTheServerHasDeletedMeanwhileGoes()
    {
        ContactAccount account;
        sendAnew(account);
        const QContactId kept = account.contact(QStringLiteral("1")).id();
        QVERIFY(account.receive({ named(account, 1) }));
        QVERIFY(account.receive({ named(account, 2) }));
        QCOMPARE(account.names().size(), 3);
        QVERIFY(account.storage().allReceived(account.folderId()));
        QCOMPARE(account.names(), QStringList({ QStringLiteral("Contact 1"), QStringLiteral("Contact 2") }));
        QCOMPARE(account.contact(QStringLiteral("1")).id(), kept);
        QCOMPARE(account.rows(), QStringList({ QStringLiteral("1"), QStringLiteral("2") }));
        QCOMPARE(account.pictures().size(), 2);
        QCOMPARE(account.localChanges(), none());
    }

    void whatTheUserHasEditedOfItGoesUpAsNew()
    {
        ContactAccount account;
        sendAnew(account);
        rename(account, account.contact(QStringLiteral("3")).id(), QStringLiteral("Mine"));
        QVERIFY(account.receive({ named(account, 1), named(account, 2) }));
        QVERIFY(account.storage().allReceived(account.folderId()));
        QCOMPARE(account.localChanges(), QStringLiteral("added: Mine; changed: ; deleted: "));
        account.restart();
        QCOMPARE(account.localChanges(), QStringLiteral("added: Mine; changed: ; deleted: "));
    }

    void whatBothSidesHaveRemovedIsNotAskedForAgain()
    {
        ContactAccount account;
        sendAnew(account);
        QVERIFY(account.store.manager().removeContact(account.contact(QStringLiteral("3")).id()));
        QCOMPARE(account.localChanges(), QStringLiteral("added: ; changed: ; deleted: 3"));
        QVERIFY(account.receive({ named(account, 1), named(account, 2) }));
        QVERIFY(account.storage().allReceived(account.folderId()));
        QCOMPARE(account.localChanges(), none());
        QCOMPARE(account.store.changes(account.collection()).counts(), QStringLiteral("0 0 0 2"));
    }

    void whatTheServerTakesMeanwhileStays()
    {
        ContactAccount account;
        sendAnew(account);
        const QContactId changed = account.contact(QStringLiteral("1")).id();
        rename(account, changed, QStringLiteral("Changed"));
        account.localChanges();
        QVERIFY(account.storage().uploadedLocalChanges({}, { changed.toString() }, {}));
        QVERIFY(!uploaded(account, QStringLiteral("Added"), QStringLiteral("4")).isNull());
        QVERIFY(account.storage().allReceived(account.folderId()));
        QCOMPARE(account.names(), QStringList({ QStringLiteral("Added"), QStringLiteral("Changed") }));
    }

    void whatWasMadeHereLongAgoIsOneContact()
    {
        ContactAccount account;
        account.addFolder();
        const QContactId id = uploaded(account, QStringLiteral("Cy"), QStringLiteral("7"));
        QVERIFY(!id.isNull());
        QVERIFY(account.storage().expectAll(ContactAccount::folder()));
        QVERIFY(account.receive({ account.item(QStringLiteral("7"), QStringLiteral("Cy")) }));
        QVERIFY(account.storage().allReceived(account.folderId()));
        QCOMPARE(account.names(), QStringList(QStringLiteral("Cy")));
        QCOMPARE(account.contact(QStringLiteral("7")).id(), id);
    }

    void aRestartInTheMiddleBeginsOnceMore()
    {
        ContactAccount account;
        sendAnew(account);
        QVERIFY(account.receive({ named(account, 1) }));
        account.restart();
        updateFolders(account);
        QCOMPARE(key(account), QStringLiteral("0"));
        QVERIFY(account.storage().expectAll(ContactAccount::folder()));
        QVERIFY(account.receive({ named(account, 2) }));
        QVERIFY(account.storage().allReceived(account.folderId()));
        QCOMPARE(account.names(), QStringList(QStringLiteral("Contact 2")));
        setKey(account, QStringLiteral("key"));
        account.restart();
        updateFolders(account);
        QCOMPARE(key(account), QStringLiteral("key"));
    }

    void withoutRowsThereIsNothingToBeginOnceMore()
    {
        ContactAccount account;
        sendAnew(account);
        loseMapping(account);
        account.restart();
        QVERIFY(account.storage().expectAll(ContactAccount::folder()));
        setKey(account, QStringLiteral("key"));
        updateFolders(account);
        QCOMPARE(key(account), QStringLiteral("key"));
    }

    void anotherSyncInTheMiddleGoesOn()
    {
        ContactAccount account;
        sendAnew(account);
        QVERIFY(account.receive({ named(account, 1) }));
        updateFolders(account);
        QCOMPARE(key(account), QStringLiteral("key"));
        QVERIFY(account.receive({ named(account, 2) }));
        QVERIFY(account.storage().allReceived(account.folderId()));
        QCOMPARE(account.names().size(), 2);
    }

    void withoutAMappingNothingIsTakenForDeleted()
    {
        ContactAccount account;
        sendAnew(account);
        {
            const HiddenTable hidden("contacts");
            QVERIFY(!account.storage().allReceived(account.folderId()));
            QVERIFY(!account.storage().expectAll(ContactAccount::folder()));
        }
        QCOMPARE(account.names().size(), 3);
    }

    // Origins

    void whatTheServerHasTakenBearsItsOrigin()
    {
        ContactAccount account;
        account.addFolder();
        const QContactId id = uploaded(account, QStringLiteral("Cy"), QStringLiteral("7"));
        QVERIFY(account.storage().allReceived(account.folderId()));
        QCOMPARE(account.store.manager().contact(id).detail<QContactGuid>().guid(),
            QStringLiteral("%1-7").arg(account.id()));
        QCOMPARE(account.localChanges(), none());
        // So it does not go up again beside the copy that the server sends.
        loseMapping(account);
        QCOMPARE(account.localChanges(), none());
        QVERIFY(account.receive({ account.item(QStringLiteral("7"), QStringLiteral("Cy")) }));
        QCOMPARE(account.names(), QStringList(QStringLiteral("Cy")));
    }

    void aStartWritesTheOriginsThatAreMissing()
    {
        ContactAccount account;
        account.addFolder();
        const QContactId id = uploaded(account, QStringLiteral("Cy"), QStringLiteral("7"));
        rename(account, id, QStringLiteral("Edited"));
        account.restart();
        loseMapping(account);
        QCOMPARE(account.localChanges(), none());
        QVERIFY(account.receive({ account.item(QStringLiteral("7"), QStringLiteral("Cy")) }));
        QCOMPARE(account.localChanges(), QStringLiteral("added: ; changed: 7=Edited; deleted: "));
    }

    // Two folders

    void aRepetitionIsNoAnswerAndAnotherFolderNone()
    {
        ContactAccount account;
        account.addFolder();
        account.addFolder(otherFolder());
        for (const QString &folder : { account.folderId(), otherFolder() }) {
            QList<EasContactsItem> added { account.item(QStringLiteral("1"), folder) };
            QList<EasContactsItem> nothing;
            QVERIFY(account.storage().updateItems(folder, added, nothing, {}));
            rename(account, QContactId::fromString(added.first().localId()), QStringLiteral("Edited"));
        }
        for (int repetition = 0; repetition < 3; ++repetition) {
            QCOMPARE(account.localChanges(), none());
            QCOMPARE(account.localChanges(otherFolder()), none());
        }
        QVERIFY(account.storage().allReceived(otherFolder()));
        QCOMPARE(account.localChanges(), none());
        QCOMPARE(account.localChanges(otherFolder()), QStringLiteral("added: Edited; changed: ; deleted: "));
    }

    void aFolderWithoutNewsHasNothingMoreToSend()
    {
        ContactAccount account;
        account.addFolder();
        QList<EasContactsItem> added { named(account, 1) };
        QList<EasContactsItem> nothing;
        QVERIFY(account.storage().updateItems(account.folderId(), added, nothing, {}));
        rename(account, QContactId::fromString(added.first().localId()), QStringLiteral("Edited"));
        QCOMPARE(account.localChanges(), none());
        QVERIFY(account.storage().unchanged(account.folderId()));
        QCOMPARE(account.localChanges(), QStringLiteral("added: Edited; changed: ; deleted: "));
    }

    void aFolderThatIsSentAnewIsNotTakenForEmpty()
    {
        ContactAccount account;
        sendAnew(account);
        account.localChanges();
        QVERIFY(account.storage().unchanged(account.folderId()));
        QCOMPARE(account.names().size(), 3);
        QVERIFY(account.receive({ named(account, 1) }));
        QVERIFY(account.storage().allReceived(account.folderId()));
        QCOMPARE(account.names().size(), 1);
    }

    void anIdentifierIsThatOfItsFolder()
    {
        ContactAccount account;
        account.addFolder();
        account.addFolder(otherFolder());
        QVERIFY(account.receive({ named(account, 1) }));
        QVERIFY(
            account.receiveIn(otherFolder(), { account.item(QStringLiteral("1"), QStringLiteral("Other")) }));
        QCOMPARE(account.names(), QStringList(QStringLiteral("Contact 1")));
        QCOMPARE(account.names(otherFolder()), QStringList(QStringLiteral("Other")));

        QVERIFY(account.receiveIn(
            otherFolder(), {}, { account.item(QStringLiteral("1"), QStringLiteral("Changed")) }));
        QCOMPARE(account.names(), QStringList(QStringLiteral("Contact 1")));
        QCOMPARE(account.names(otherFolder()), QStringList(QStringLiteral("Changed")));
        QCOMPARE(account.localChanges(), none());

        QVERIFY(account.receiveIn(otherFolder(), {}, {}, { QStringLiteral("1") }));
        QCOMPARE(account.names(), QStringList(QStringLiteral("Contact 1")));
        QCOMPARE(account.rows(), QStringList(QStringLiteral("1")));
        QVERIFY(account.names(otherFolder()).isEmpty());
    }

    void aContactThatMovesIsInItsNewFolder()
    {
        ContactAccount account;
        account.addFolder();
        account.addFolder(otherFolder());
        QVERIFY(account.receive({ named(account, 1) }));
        QVERIFY(account.receiveIn(otherFolder(), { named(account, 1) }));
        QVERIFY(account.receive({}, {}, { QStringLiteral("1") }));
        QVERIFY(account.names().isEmpty());
        QCOMPARE(account.names(otherFolder()), QStringList(QStringLiteral("Contact 1")));
        QCOMPARE(account.pictures().size(), 1);
    }

    // The store

    void aContactThatTheStoreHasLostComesAgain()
    {
        ContactAccount account;
        account.addFolder();
        QVERIFY(account.receive({ named(account, 1), named(account, 2) }));
        const QString lost = account.contact(QStringLiteral("1")).id().toString();
        StoreDatabase::execute(StoreDatabase::Contacts,
            QStringLiteral("DELETE FROM contacts WHERE id = %1").arg(account.storeNumber(lost)));
        QCOMPARE(account.localChanges(), none());
        QVERIFY(account.receive({}, { named(account, 1) }));
        QCOMPARE(account.names(), QStringList({ QStringLiteral("Contact 1"), QStringLiteral("Contact 2") }));
    }

    void aRemovalThatWasCutShortIsNotTheUsers()
    {
        ContactAccount account;
        account.addFolder();
        QVERIFY(account.receive({ named(account, 1) }));
        // The store has marked the contact, and the mark cannot be cleared.
        StoreDatabase::execute(StoreDatabase::Contacts,
            QStringLiteral("CREATE TRIGGER refuse BEFORE DELETE ON contacts "
                           "BEGIN SELECT RAISE(ABORT, 'refused'); END"));
        const bool removed = account.receive({}, {}, { QStringLiteral("1") });
        StoreDatabase::execute(StoreDatabase::Contacts, QStringLiteral("DROP TRIGGER refuse"));
        QVERIFY(!removed);
        QCOMPARE(account.localChanges(), none());
        account.restart();
        QCOMPARE(account.localChanges(), none());
        QVERIFY(account.names().isEmpty());
    }

    void aStoreThatTakesOneNameKeepsTheReading()
    {
        ContactAccount account;
        account.addFolder();
        EasContactsItem item = named(account, 1);
        item.setYomiFirstName(QStringLiteral("あだ"));
        item.setYomiLastName(QStringLiteral("らぶれす"));
        const LogCollector log;
        qputenv("CONTACTS_ONE_NAME", "1");
        const bool received = account.receive({ item, named(account, 2) });
        qunsetenv("CONTACTS_ONE_NAME");
        QVERIFY(received);
        QVERIFY(log.contains(QStringLiteral("the contact store takes one name of a contact")));
        QCOMPARE(account.names(), QStringList({ QStringLiteral("Contact 1"), QStringLiteral("Contact 2") }));
        QCOMPARE(account.contact(QStringLiteral("1")).details<QContactName>().size(), 1);

        rename(account, account.contact(QStringLiteral("1")).id(), QStringLiteral("Edited"));
        QList<EasContactsItem> added;
        QList<EasContactsItem> changed;
        QStringList deleted;
        QCOMPARE(account.storage().queryChanges(account.folder(), &added, &changed, &deleted),
            LocalQuery::Answered);
        QCOMPARE(changed.value(0).firstName(), QStringLiteral("Edited"));
        QCOMPARE(changed.value(0).yomiFirstName(), QStringLiteral("あだ"));
        QCOMPARE(changed.value(0).yomiLastName(), QStringLiteral("らぶれす"));
    }
};

FENNEL_REGISTER_TEST(ContactRecoveryTest)
#include "contactrecoverytest.moc"
