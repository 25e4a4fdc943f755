// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactstorageimpl.h"
#include "application/mapping/easdatabase.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "storages/contacts/contactavatars.h"
#include "storages/uniqueidgenerationusecase.h"
#include "support/contactaccount.h"
#include "support/hiddentable.h"
#include "support/logcollector.h"
#include "support/privatebus.h"
#include "support/storedatabase.h"
#include "support/testmain.h"
#include "support/testpictures.h"

#include <QtContacts/QContactAvatar>
#include <QtContacts/QContactPhoneNumber>

#include <QSignalSpy>
#include <QTemporaryFile>
#include <QtTest>

QTCONTACTS_USE_NAMESPACE

/** Folders and received contacts of one account in the store. */
class ContactStorageImplTest : public QObject
{
    Q_OBJECT

private:
    static QString base64(int red) { return QString::fromLatin1(TestPictures::png(red).toBase64()); }

private Q_SLOTS:
    void initTestCase() { QVERIFY(PrivateBus::ensure()); }

    // Folders

    void aFolderBecomesACollection()
    {
        ContactAccount account;
        QList<EasFolderItem> added { account.folder(),
            account.folder(QStringLiteral("F2"), EasFolderItem::UserCreatedContactsFolder),
            account.folder(QStringLiteral("M"), EasFolderItem::DefaultInboxFolder) };
        added[0].setDisplayName(QString());
        added[1].setServerParentId(QStringLiteral("F1"));
        QList<EasFolderItem> none;
        const LogCollector log;
        QVERIFY(account.storage().updateFolders(added, none, {}));
        QCOMPARE(account.store.manager().collections().size(), 4);
        QVERIFY(added.at(2).localId().isEmpty());
        QCOMPARE(added.at(1).localParentId(), added.at(0).localId());
        const QContactCollection collection =
            account.store.manager().collection(QContactCollectionId::fromString(added.at(0).localId()));
        QCOMPARE(
            collection.metaData(QContactCollection::KeyName).toString(), QStringLiteral("Exchange Contacts"));
        const QVariantMap extended = collection.extendedMetaData();
        QCOMPARE(extended.value(QStringLiteral("AccountId")).toInt(), int(account.id()));
        QCOMPARE(extended.value(QStringLiteral("ApplicationName")).toString(), QStringLiteral("fennel-eas"));
        QCOMPARE(extended.value(QStringLiteral("ServerId")).toString(), QStringLiteral("F1"));
        QCOMPARE(extended.value(QStringLiteral("ServerParentId")).toString(), QStringLiteral("0"));
        QCOMPARE(extended.value(QStringLiteral("SyncKey")).toString(), QStringLiteral("0"));
        QCOMPARE(extended.value(QStringLiteral("FolderType")).toInt(), 9);
        QVERIFY(log.contains(
            QtInfoMsg, { QStringLiteral("New folder "), QStringLiteral(" assigned local id ") }));
    }

    void aFolderThatComesAgainIsTheSame()
    {
        ContactAccount account;
        const QContactCollectionId id = account.addFolder();
        QList<EasFolderItem> again { account.folder() };
        QList<EasFolderItem> none;
        QVERIFY(account.storage().updateFolders(again, none, {}));
        QCOMPARE(again.first().localId(), id.toString());
        QCOMPARE(account.store.manager().collections().size(), 3);
    }

    void aRenamedFolderKeepsItsContacts()
    {
        ContactAccount account;
        const QContactCollectionId id = account.addFolder();
        QVERIFY(account.receive({ account.item(QStringLiteral("1"), QStringLiteral("Ada")) }));
        QList<EasFolderItem> none;
        QList<EasFolderItem> changed { account.folder(), account.folder(QStringLiteral("unknown")) };
        changed[0].setDisplayName(QStringLiteral("Renamed"));
        const LogCollector log;
        QVERIFY(account.storage().updateFolders(none, changed, {}));
        QCOMPARE(account.store.manager().collection(id).metaData(QContactCollection::KeyName).toString(),
            QStringLiteral("Renamed"));
        QCOMPARE(account.names(), QStringList(QStringLiteral("Ada")));
        QVERIFY(log.contains(QStringLiteral(" was updated")));
        QVERIFY(log.contains(QStringLiteral("Cannot find folder ")));
    }

    void aDeletedFolderTakesContactsAndPicturesAlong()
    {
        ContactAccount account;
        account.addFolder();
        EasContactsItem item = account.item(QStringLiteral("1"), QStringLiteral("Ada"));
        item.setPicture(base64(1));
        QVERIFY(account.receive({ item }));
        QCOMPARE(account.pictures().size(), 1);
        QList<EasFolderItem> none;
        QVERIFY(
            account.storage().updateFolders(none, none, { account.folderId(), QStringLiteral("unknown") }));
        QVERIFY(account.pictures().isEmpty());
        QCOMPARE(account.store.manager().collections().size(), 2);
        QVERIFY(account.store.manager().contactIds().isEmpty());
        const LogCollector log;
        QVERIFY(account.storage().cleanUpFolder(account.folder()));
        QVERIFY(log.contains(QStringLiteral("unable to find contact collection for removed folder: ")));
    }

    void aDeletedFolderStaysWhileItsRowCannotBeRead()
    {
        ContactAccount account;
        account.addFolder();
        QVERIFY(account.receive({ account.item(QStringLiteral("1"), QStringLiteral("Ada")) }));
        QList<EasFolderItem> none;
        {
            const HiddenTable hidden("collections");
            // The row and the key of the hierarchy would go with what is called removed.
            QVERIFY(!account.storage().updateFolders(none, none, { account.folderId() }));
        }
        QCOMPARE(account.names(), QStringList(QStringLiteral("Ada")));
        QVERIFY(account.storage().updateFolders(none, none, { account.folderId() }));
        QVERIFY(account.store.manager().contactIds().isEmpty());
    }

    void aStoreThatCannotBeOpenedTakesNothing()
    {
        ContactAccount account;
        QList<EasFolderItem> none;
        QList<EasFolderItem> added { account.folder() };
        const QByteArray data = qgetenv("CONTACTS_DATA");
        qputenv("CONTACTS_DATA", "/dev/null/contacts");
        const LogCollector log;
        account.restart();
        const bool takesFolders = account.storage().updateFolders(added, none, {});
        const bool takesContacts =
            account.receive({ account.item(QStringLiteral("1"), QStringLiteral("Ada")) });
        const bool cleansUp = account.storage().cleanUpFolder(account.folder());
        const QString changes = account.localChanges();
        qputenv("CONTACTS_DATA", data);
        QVERIFY(!takesFolders);
        QVERIFY(!takesContacts);
        QVERIFY(!cleansUp);
        QCOMPARE(changes, QStringLiteral("failed"));
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("The contact store cannot be opened:") }));
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("The contact manager is not initialized") }));
    }

    void aFolderThatTheStoreRefusesFailsTheUpdate()
    {
        ContactAccount account;
        QList<EasFolderItem> none;
        QList<EasFolderItem> added { account.folder() };
        const LogCollector log;
        StoreDatabase::execute(StoreDatabase::Contacts,
            QStringLiteral("CREATE TRIGGER refuse BEFORE INSERT ON collections "
                           "BEGIN SELECT RAISE(ABORT, 'refused'); END"));
        const bool takesFolders = account.storage().updateFolders(added, none, {});
        StoreDatabase::execute(StoreDatabase::Contacts, QStringLiteral("DROP TRIGGER refuse"));
        QVERIFY(!takesFolders);
        QVERIFY(log.contains(QStringLiteral("Failed to save new folder as local collection: ")));
        QVERIFY(log.contains(QStringLiteral("Failed to add contacts folders")));
        QVERIFY(account.storage().updateFolders(added, none, {}));
    }

    void aStoreThatCouldNotBeOpenedAtTheStartIsOpenedByTheNextUse()
    {
        ContactAccount account;
        const QByteArray data = qgetenv("CONTACTS_DATA");
        qputenv("CONTACTS_DATA", "/dev/null/contacts");
        account.restart();
        qputenv("CONTACTS_DATA", data);
        account.addFolder();
        QVERIFY(account.receive({ account.item(QStringLiteral("1"), QStringLiteral("Ada")) }));
        QCOMPARE(account.names(), QStringList(QStringLiteral("Ada")));
        // It hears of the user's changes from then on.
        QSignalSpy changes(&account.storage(), &ContactStorage::changesAvailable);
        QContact contact = account.contact(QStringLiteral("1"));
        QContactPhoneNumber number;
        number.setNumber(QStringLiteral("1"));
        QVERIFY(contact.saveDetail(&number));
        QVERIFY(account.store.manager().saveContact(&contact));
        QTRY_VERIFY(!changes.isEmpty());
    }

    // Contacts

    void contactsComeChangeAndGo()
    {
        ContactAccount account;
        account.addFolder();
        QVERIFY(account.receive({ account.item(QStringLiteral("1"), QStringLiteral("Ada")),
            account.item(QStringLiteral("2"), QStringLiteral("Bob")) }));
        QCOMPARE(account.names(), QStringList({ QStringLiteral("Ada"), QStringLiteral("Bob") }));
        const QContactId ada = account.contact(QStringLiteral("1")).id();
        QVERIFY(account.receive({ account.item(QStringLiteral("3"), QStringLiteral("Cy")) },
            { account.item(QStringLiteral("1"), QStringLiteral("Eve")) }, { QStringLiteral("2") }));
        QCOMPARE(account.names(), QStringList({ QStringLiteral("Cy"), QStringLiteral("Eve") }));
        QCOMPARE(account.contact(QStringLiteral("1")).id(), ada);
        QCOMPARE(account.localChanges(), QStringLiteral("added: ; changed: ; deleted: "));
        QCOMPARE(EasDatabase::instance()->serverToLocalContactIds(account.id())->keys(),
            QStringList({ QStringLiteral("1"), QStringLiteral("3") }));
    }

    void whatComesAgainIsNotDoubled()
    {
        ContactAccount account;
        account.addFolder();
        const QList<EasContactsItem> batch { account.item(QStringLiteral("1"), QStringLiteral("Ada")),
            account.item(QStringLiteral("1"), QStringLiteral("Ada")) };
        QVERIFY(account.receive(batch));
        QCOMPARE(account.names(), QStringList(QStringLiteral("Ada")));
        QVERIFY(account.receive({ account.item(QStringLiteral("1"), QStringLiteral("Eve")) }));
        QCOMPARE(account.names(), QStringList(QStringLiteral("Eve")));
        QCOMPARE(EasDatabase::instance()->localContactIds(account.id(), account.folderId())->size(), 1);
        QVERIFY(account.receive({}, {}, { QStringLiteral("1") }));
        QVERIFY(account.receive({}, {}, { QStringLiteral("1") }));
        QVERIFY(account.names().isEmpty());
    }

    void whatAReplySaysLastHolds()
    {
        ContactAccount account;
        account.addFolder();
        const auto ada = [&account](const QString &name) {
            return account.item(QStringLiteral("1"), name);
        };
        QVERIFY(account.receive(
            { ada(QStringLiteral("Ada")), ada(QStringLiteral("Bea")) }, { ada(QStringLiteral("Cleo")) }));
        QCOMPARE(account.names(), QStringList(QStringLiteral("Cleo")));
        QVERIFY(account.receive({}, { ada(QStringLiteral("Dora")), ada(QStringLiteral("Eve")) }));
        QCOMPARE(account.names(), QStringList(QStringLiteral("Eve")));
        QCOMPARE(EasDatabase::instance()->localContactIds(account.id(), account.folderId())->size(), 1);
    }

    void whatWasStoredButNotMappedIsAdopted()
    {
        ContactAccount account;
        account.addFolder();
        EasContactsItem item = account.item(QStringLiteral("1"), QStringLiteral("Ada"));
        item.setPicture(base64(1));
        QList<EasContactsItem> added { item };
        QList<EasContactsItem> none;
        QVERIFY(account.storage().updateItems(account.folderId(), added, none, {}));
        const QStringList pictures = account.pictures();
        QCOMPARE(pictures.size(), 1);
        // The mapping failed; the server sends it again, with a change in between.
        item.setFirstName(QStringLiteral("Eve"));
        QVERIFY(account.receive({ item }));
        QCOMPARE(account.names(), QStringList(QStringLiteral("Eve")));
        QCOMPARE(account.pictures(), pictures);
        QCOMPARE(account.contact(QStringLiteral("1")).id().toString(), added.first().localId());
        // Or it has deleted it.
        QVERIFY(EasDatabase::instance()->deleteContactsItems(account.id(), { QStringLiteral("1") }));
        QVERIFY(account.receive({}, {}, { QStringLiteral("1") }));
        QVERIFY(account.names().isEmpty());
        QVERIFY(account.pictures().isEmpty());
    }

    void aChangeOfAnUnknownContactBringsIt()
    {
        ContactAccount account;
        account.addFolder();
        QList<EasContactsItem> added;
        QList<EasContactsItem> changed { account.item(QStringLiteral("9"), QStringLiteral("New")) };
        const LogCollector log;
        QVERIFY(account.storage().updateItems(account.folderId(), added, changed, { QStringLiteral("8") }));
        QCOMPARE(log.count(QStringLiteral("Cannot map contact with identifer ")), 2);
        QCOMPARE(added.size(), 1);
        QVERIFY(changed.isEmpty());
        QVERIFY(!added.first().localId().isEmpty());
        QCOMPARE(account.names(), QStringList(QStringLiteral("New")));
    }

    void aChangeOfAContactThatTheUserRemovedIsPassedOver()
    {
        ContactAccount account;
        account.addFolder();
        EasContactsItem item = account.item(QStringLiteral("1"), QStringLiteral("Ada"));
        QVERIFY(account.receive({ item }));
        QVERIFY(account.store.manager().removeContact(account.contact(QStringLiteral("1")).id()));
        const LogCollector log;
        QVERIFY(account.receive({}, { item }));
        QVERIFY(log.contains(QStringLiteral("contact does not exist, cannot prepare: ")));
        QVERIFY(log.contains(QStringLiteral("Empty contact prepared for ")));
        QVERIFY(account.names().isEmpty());
        QCOMPARE(account.localChanges(), QStringLiteral("added: ; changed: ; deleted: 1"));
    }

    void aMissingCollectionIsMadeAgain()
    {
        ContactAccount account;
        const QContactCollectionId old = account.addFolder();
        QVERIFY(account.receive({ account.item(QStringLiteral("1"), QStringLiteral("Ada")) }));
        QVERIFY(account.store.manager().removeCollection(old));
        const LogCollector log;
        QVERIFY(account.receive({ account.item(QStringLiteral("2"), QStringLiteral("Bob")) },
            { account.item(QStringLiteral("1"), QStringLiteral("Ada")) }));
        QVERIFY(log.contains(QStringLiteral("Creating missing QContactCollection for contacts folder: ")));
        QVERIFY(log.contains(
            QtInfoMsg, { QStringLiteral("Recreated folder "), QStringLiteral(" assigned local id ") }));
        QVERIFY(account.collection() != old);
        QCOMPARE(account.names(), QStringList({ QStringLiteral("Ada"), QStringLiteral("Bob") }));
        QCOMPARE(ContactFixture::name(account.contact(QStringLiteral("1"))), QStringLiteral("Ada"));
    }

    void aLostCollectionIsMadeAgainAndFilledAnew()
    {
        ContactAccount account;
        EasDatabase *database = EasDatabase::instance();
        const QContactCollectionId kept = account.addFolder(QStringLiteral("F2"));
        const QContactCollectionId lost = account.addFolder();
        QVERIFY(account.receive({ account.item(QStringLiteral("1"), QStringLiteral("Ada")) }));
        for (const QString &id : { account.folderId(), QStringLiteral("F2") }) {
            EasFolderItem row = *database->folderItemByServerId(account.id(), id);
            row.setSyncKey(QStringLiteral("key"));
            row.appendChangedField(Wbxml::AirSync::SyncKey.key());
            QVERIFY(database->updateFolderItems(account.id(), { row }));
        }
        QVERIFY(account.store.manager().removeCollection(lost));
        QList<EasFolderItem> none;
        QVERIFY(account.storage().updateFolders(none, none, {}));
        QVERIFY(account.collection() != lost);
        QVERIFY(account.store.manager().collection(account.collection()).id() == account.collection());
        QCOMPARE(
            database->folderItemByServerId(account.id(), account.folderId())->syncKey(), QStringLiteral("0"));
        QVERIFY(database->serverToLocalContactIds(account.id())->isEmpty());
        // Another folder goes on as it was.
        QCOMPARE(account.collection(QStringLiteral("F2")), kept);
        QCOMPARE(database->folderItemByServerId(account.id(), QStringLiteral("F2"))->syncKey(),
            QStringLiteral("key"));
        QVERIFY(account.receive({ account.item(QStringLiteral("1"), QStringLiteral("Ada")) }));
        QCOMPARE(account.names(), QStringList(QStringLiteral("Ada")));
    }

    void aFolderThatNobodyKnowsIsAFailure()
    {
        ContactAccount account;
        EasContactsItem item = account.item(QStringLiteral("1"), QStringLiteral("Ada"));
        item.setPicture(base64(1));
        const LogCollector log;
        QVERIFY(!account.receive({ item }));
        QVERIFY(log.contains(QStringLiteral("Failed to find local collection for remote folder: ")));
        QVERIFY2(account.pictures().isEmpty(), "the picture went with the failure");
    }

    void anUpdateKeepsTheIdentityOfPhoneNumbers()
    {
        ContactAccount account;
        account.addFolder();
        EasContactsItem item = account.item(QStringLiteral("1"), QStringLiteral("Ada"));
        item.setMobilePhoneNumber(QStringLiteral("1"));
        QVERIFY(account.receive({ item }));
        QContact contact = account.contact(QStringLiteral("1"));
        QContactPhoneNumber phone = contact.detail<QContactPhoneNumber>();
        phone.setDetailUri(QStringLiteral("urn:speed-dial:1"));
        QVERIFY(contact.saveDetail(&phone));
        QVERIFY(account.store.manager().saveContact(&contact));

        item.setMobilePhoneNumber(QStringLiteral("2"));
        QVERIFY(account.receive({}, { item }));
        contact = account.contact(QStringLiteral("1"));
        QCOMPARE(contact.details<QContactPhoneNumber>().size(), 1);
        QCOMPARE(contact.detail<QContactPhoneNumber>().number(), QStringLiteral("2"));
        QCOMPARE(contact.detail<QContactPhoneNumber>().detailUri(), QStringLiteral("urn:speed-dial:1"));
    }

    // Pictures

    void picturesFollowTheirContacts()
    {
        ContactAccount account;
        account.addFolder();
        EasContactsItem item = account.item(QStringLiteral("1"), QStringLiteral("Ada"));
        item.setPicture(base64(1));
        QVERIFY(account.receive({ item }));
        const QUrl first = account.contact(QStringLiteral("1")).detail<QContactAvatar>().imageUrl();
        QVERIFY(ContactAvatars::holds(first, TestPictures::png(1).toBase64()));
        QCOMPARE(EasDatabase::instance()->localContactIdsToAvatarsUrls(account.id())->values(),
            QList<QUrl> { first });

        QVERIFY2(account.receive({}, { item }), "the same picture keeps its file");
        QCOMPARE(account.contact(QStringLiteral("1")).detail<QContactAvatar>().imageUrl(), first);
        QCOMPARE(EasDatabase::instance()->localContactIdsToAvatarsUrls(account.id())->values(),
            QList<QUrl> { first });

        item.setPicture(base64(2));
        QVERIFY(account.receive({}, { item }));
        const QUrl second = account.contact(QStringLiteral("1")).detail<QContactAvatar>().imageUrl();
        QVERIFY(second != first);
        QCOMPARE(account.pictures().size(), 1);

        item.setPicture(QStringLiteral("bm8gcGljdHVyZQ=="));
        QVERIFY2(account.receive({}, { item }), "what is no picture costs the picture alone");
        QVERIFY(account.contact(QStringLiteral("1")).details<QContactAvatar>().isEmpty());
        QVERIFY(account.pictures().isEmpty());

        item.setPicture(base64(3));
        QVERIFY(account.receive({}, { item }));
        QVERIFY(account.receive({}, {}, { QStringLiteral("1") }));
        QVERIFY(account.pictures().isEmpty());
    }

    void theUsersOwnPhotoStaysWithTheContact()
    {
        ContactAccount account;
        account.addFolder();
        EasContactsItem item = account.item(QStringLiteral("1"), QStringLiteral("Ada"));
        QVERIFY(account.receive({ item }));
        QTemporaryFile photo;
        QVERIFY(photo.open());
        QVERIFY(photo.write(TestPictures::noise(300)) > 0 && photo.flush());
        const QUrl url = QUrl::fromLocalFile(photo.fileName());
        QContact contact = account.contact(QStringLiteral("1"));
        QContactAvatar avatar;
        avatar.setImageUrl(url);
        QVERIFY(contact.saveDetail(&avatar));
        QVERIFY(account.store.manager().saveContact(&contact));
        // It went up made smaller; the server changes something else.
        item.setPicture(ContactAvatars::upload(url));
        item.setLastName(QStringLiteral("Lovelace"));
        QVERIFY(account.receive({}, { item }));
        QCOMPARE(account.contact(QStringLiteral("1")).detail<QContactAvatar>().imageUrl(), url);
        QCOMPARE(account.pictures(), QStringList());
    }

    // Accounts

    void accountsThatAreGoneLeaveNothingBehind()
    {
        ContactAccount account;
        account.addFolder();
        EasContactsItem item = account.item(QStringLiteral("1"), QStringLiteral("Ada"));
        item.setPicture(base64(1));
        QVERIFY(account.receive({ item }));
        account.store.addCollection(QStringLiteral("somebody else's"));
        QVERIFY(ContactStorageImpl::cleanUpDeletedAccounts({ account.id(), 4711 }));
        QCOMPARE(account.store.manager().collections().size(), 3);
        QVERIFY(account.pictures().isEmpty());
        QVERIFY(account.store.manager().contactIds().isEmpty());
    }

    // Notices

    void changesOfAnybodyAreTold()
    {
        ContactAccount account;
        const QContactCollectionId collection = account.addFolder();
        QSignalSpy told(&account.storage(), &ContactStorage::changesAvailable);
        account.store.addContact(collection, QStringLiteral("Ada"));
        QTRY_VERIFY_WITH_TIMEOUT(told.count() > 0, 60000);
        QCOMPARE(told.first().first().toStringList(), QStringList(collection.toString()));
    }

    void noticesGoByTheConfiguration()
    {
        ContactAccount account;
        const QContactCollectionId collection = account.addFolder();
        LogCollector log;
        account.configuration->isEnabled = false;
        Q_EMIT account.account.contactsConfigurationChanged(account.id());
        QVERIFY(log.contains(QStringLiteral("contacts configuration changed for account ")));
        QSignalSpy told(&account.storage(), &ContactStorage::changesAvailable);
        QSignalSpy heard(account.store.engine(), &ContactFixture::Engine::collectionContactsChanged);
        account.store.addContact(collection, QStringLiteral("Ada"));
        QTRY_VERIFY_WITH_TIMEOUT(heard.count() > 0, 60000);
        QCOMPARE(told.count(), 0);

        account.configuration->isEnabled = true;
        Q_EMIT account.account.contactsConfigurationChanged(account.id() + 1);
        Q_EMIT account.account.contactsConfigurationChanged(account.id());
        account.store.addContact(collection, QStringLiteral("Bob"));
        QTRY_VERIFY_WITH_TIMEOUT(told.count() > 0, 60000);

        account.account.contacts.reset();
        account.restart();
        QVERIFY(log.contains(QStringLiteral("ContactsAccountConfiguration is null")));
    }

    void foldersOfOthersAreNotTold()
    {
        ContactAccount account;
        account.addFolder();
        const QContactCollectionId other =
            account.store
                .addCollection(QStringLiteral("other"),
                    { { QStringLiteral("AccountId"), int(account.id()) },
                        { QStringLiteral("ApplicationName"), QStringLiteral("somebody else") },
                        { QStringLiteral("ServerId"), account.folderId() } })
                .id();
        QSignalSpy told(&account.storage(), &ContactStorage::changesAvailable);
        QSignalSpy heard(account.store.engine(), &ContactFixture::Engine::collectionContactsChanged);
        account.store.addContact(other, QStringLiteral("Ada"));
        QTRY_VERIFY_WITH_TIMEOUT(heard.count() > 0, 60000);
        QCOMPARE(told.count(), 0);
    }

    void identifiersNeedNoObject()
    {
        QObject parent;
        const auto *useCase = new UniqueIdGenerationUseCase(&parent);
        QCOMPARE(useCase->parent(), &parent);
    }

    void theEndOfASyncIsLogged()
    {
        ContactAccount account;
        const LogCollector log;
        account.storage().onSyncCompleted(account.id(), 5, 3);
        account.storage().setFailedLocalChangesIds({ QStringLiteral("x") });
        QVERIFY(log.contains(QtDebugMsg,
            { QStringLiteral("syncCompleted"), QStringLiteral("status"), QStringLiteral("for account") }));
    }
};

FENNEL_REGISTER_TEST(ContactStorageImplTest)
#include "contactstorageimpltest.moc"
