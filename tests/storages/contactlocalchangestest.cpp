// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/easdatabase.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "storages/uploadbudget.h"
#include "support/contactaccount.h"
#include "support/hiddentable.h"
#include "support/logcollector.h"
#include "support/testmain.h"
#include "support/testpictures.h"

#include <QtContacts/QContactAvatar>
#include <QtContacts/QContactName>

#include <QDir>
#include <QtTest>

QTCONTACTS_USE_NAMESPACE

/** What the user changes, what the server has been told of it, and what an interrupted run leaves. */
class ContactLocalChangesTest : public QObject
{
    Q_OBJECT

private:
    static void rename(const ContactAccount &account, const QContactId &id, const QString &name)
    {
        QContact contact = account.store.manager().contact(id);
        QContactName detail = contact.detail<QContactName>();
        detail.setFirstName(name);
        contact.saveDetail(&detail);
        QVERIFY(account.store.manager().saveContact(&contact));
    }

    static QString none() { return QStringLiteral("added: ; changed: ; deleted: "); }

    static EasContactsItem withPicture(const ContactAccount &account, const QString &serverId)
    {
        EasContactsItem item = account.item(serverId, QStringLiteral("Stray"));
        item.setPicture(QString::fromLatin1(TestPictures::png().toBase64()));
        return item;
    }

    /** Stored, but the mapping was not reached. */
    static QContactId interrupted(ContactAccount &account, const QString &serverId)
    {
        QList<EasContactsItem> added { withPicture(account, serverId) };
        QList<EasContactsItem> nothing;
        account.storage().updateItems(account.folderId(), added, nothing, {});
        return QContactId::fromString(added.first().localId());
    }

private Q_SLOTS:
    void changesAreFoundAndForgottenOnceUploaded()
    {
        ContactAccount account;
        const QContactCollectionId collection = account.addFolder();
        QVERIFY(account.receive({ account.item(QStringLiteral("1"), QStringLiteral("Ada")),
            account.item(QStringLiteral("2"), QStringLiteral("Bob")) }));
        const QContactId ada = account.contact(QStringLiteral("1")).id();
        const QContactId bob = account.contact(QStringLiteral("2")).id();
        const QContactId cy = account.store.addContact(collection, QStringLiteral("Cy")).id();
        rename(account, ada, QStringLiteral("Eve"));
        QVERIFY(account.store.manager().removeContact(bob));
        const QString changes = QStringLiteral("added: Cy; changed: 1=Eve; deleted: 2");
        QCOMPARE(account.localChanges(), changes);
        QCOMPARE(account.localChanges(), changes);

        EasContactsItem uploaded = account.item(QStringLiteral("3"), QStringLiteral("Cy"));
        uploaded.setLocalId(cy.toString());
        QVERIFY(account.storage().uploadedLocalChanges(
            { cy.toString() }, { ada.toString() }, { bob.toString() }));
        QVERIFY(EasDatabase::instance()->contactsItemsChanges(
            account.id(), { uploaded }, {}, { QStringLiteral("2") }));
        QCOMPARE(account.localChanges(), none());
        QCOMPARE(account.names(), QStringList({ QStringLiteral("Cy"), QStringLiteral("Eve") }));
    }

    void itemsCarryFolderAndPicture()
    {
        ContactAccount account;
        account.addFolder();
        QVERIFY(account.receive({ withPicture(account, QStringLiteral("1")) }));
        rename(account, account.contact(QStringLiteral("1")).id(), QStringLiteral("Eve"));
        QList<EasContactsItem> added;
        QList<EasContactsItem> changed;
        QStringList deleted;
        QCOMPARE(account.storage().queryChanges(account.folder(), &added, &changed, &deleted),
            LocalQuery::Answered);
        const EasContactsItem item = changed.value(0);
        QCOMPARE(item.collectionId(), account.folderId());
        QCOMPARE(item.localId(), account.contact(QStringLiteral("1")).id().toString());
        QCOMPARE(item.picture(), withPicture(account, QString()).picture());
        QCOMPARE(item.avatarUrl(), account.contact(QStringLiteral("1")).detail<QContactAvatar>().imageUrl());
    }

    void aFolderWithoutACollectionHasNoAnswer()
    {
        ContactAccount account;
        const LogCollector log;
        QCOMPARE(account.localChanges(), QStringLiteral("failed"));
        QVERIFY(log.contains(QStringLiteral("Unable to find local collection matching server id: ")));
    }

    void whatNeverReachedTheServerIsNotDeletedThere()
    {
        ContactAccount account;
        const QContactCollectionId collection = account.addFolder();
        const QContactId id = account.store.addContact(collection, QStringLiteral("Cy")).id();
        QVERIFY(account.store.manager().removeContact(id));
        QCOMPARE(account.localChanges(), none());
    }

    void anEditDuringTheUploadStaysAChange()
    {
        ContactAccount account;
        account.addFolder();
        QVERIFY(account.receive({ account.item(QStringLiteral("1"), QStringLiteral("Ada")) }));
        const QContactId ada = account.contact(QStringLiteral("1")).id();
        rename(account, ada, QStringLiteral("Bea"));
        QCOMPARE(account.localChanges(), QStringLiteral("added: ; changed: 1=Bea; deleted: "));
        rename(account, ada, QStringLiteral("Cleo"));
        QVERIFY(account.storage().uploadedLocalChanges({}, { ada.toString() }, {}));
        QCOMPARE(account.localChanges(), QStringLiteral("added: ; changed: 1=Cleo; deleted: "));
    }

    void aRemovalDuringTheUploadStaysARemoval()
    {
        ContactAccount account;
        account.addFolder();
        QVERIFY(account.receive({ account.item(QStringLiteral("1"), QStringLiteral("Ada")) }));
        const QContactId ada = account.contact(QStringLiteral("1")).id();
        rename(account, ada, QStringLiteral("Bea"));
        account.localChanges();
        QVERIFY(account.store.manager().removeContact(ada));
        QVERIFY(account.storage().uploadedLocalChanges({}, { ada.toString() }, {}));
        QCOMPARE(account.localChanges(), QStringLiteral("added: ; changed: ; deleted: 1"));
    }

    void picturesOfWhatTheUserRemovedOrReplacedGo()
    {
        ContactAccount account;
        account.addFolder();
        QVERIFY(account.receive(
            { withPicture(account, QStringLiteral("1")), withPicture(account, QStringLiteral("2")) }));
        QCOMPARE(account.pictures().size(), 2);
        const QContactId removed = account.contact(QStringLiteral("1")).id();
        QVERIFY(account.store.manager().removeContact(removed));
        QContact replaced = account.contact(QStringLiteral("2"));
        QContactAvatar avatar = replaced.detail<QContactAvatar>();
        avatar.setImageUrl(QUrl::fromLocalFile(QStringLiteral("/home/of/the/user/own.png")));
        QVERIFY(replaced.saveDetail(&avatar));
        QVERIFY(account.store.manager().saveContact(&replaced));
        account.localChanges();
        QVERIFY(
            account.storage().uploadedLocalChanges({}, { replaced.id().toString() }, { removed.toString() }));
        QVERIFY(account.pictures().isEmpty());
    }

    void aRemovedPictureIsTold()
    {
        ContactAccount account;
        account.addFolder();
        QVERIFY(account.receive({ withPicture(account, QStringLiteral("1")),
            account.item(QStringLiteral("2"), QStringLiteral("Bob")) }));
        QContact contact = account.contact(QStringLiteral("1"));
        QContactAvatar avatar = contact.detail<QContactAvatar>();
        QVERIFY(contact.removeDetail(&avatar));
        QVERIFY(account.store.manager().saveContact(&contact));
        // It never had one.
        rename(account, account.contact(QStringLiteral("2")).id(), QStringLiteral("Eve"));

        QList<EasContactsItem> added;
        QList<EasContactsItem> changed;
        QStringList deleted;
        QCOMPARE(account.storage().queryChanges(account.folder(), &added, &changed, &deleted),
            LocalQuery::Answered);
        QCOMPARE(changed.size(), 2);
        const QList<uint> picture { Wbxml::Contacts::Picture.key() };
        for (const EasContactsItem &item : qAsConst(changed)) {
            QVERIFY(item.picture().isEmpty());
            QCOMPARE(item.changedFields(), item.serverId() == QLatin1String("1") ? picture : QList<uint>());
        }
        QVERIFY(account.storage().uploadedLocalChanges({}, { contact.id().toString() }, {}));
        QVERIFY(EasDatabase::instance()->contactsItemsChanges(account.id(), {}, changed, {}));
        QVERIFY(account.pictures().isEmpty());

        // Once is enough.
        rename(account, contact.id(), QStringLiteral("Again"));
        changed.clear();
        QCOMPARE(account.storage().queryChanges(account.folder(), &added, &changed, &deleted),
            LocalQuery::Answered);
        for (const EasContactsItem &item : qAsConst(changed))
            QCOMPARE(item.changedFields(), QList<uint>());
    }

    void whatDoesNotFitIsLeftForTheNextQuery()
    {
        ContactAccount account;
        account.addFolder();
        QList<EasContactsItem> items;
        for (int number = 1; number <= 3; ++number)
            items.append(account.item(QString::number(number), QStringLiteral("Bob")));
        QVERIFY(account.receive(items));
        for (const EasContactsItem &item : qAsConst(items))
            rename(account, account.contact(item.serverId()).id(), QStringLiteral("Eve"));

        UploadBudget budget;
        for (int number = 1; number < UploadBudget::MostChanges; ++number)
            QVERIFY(budget.take(QStringLiteral("of another folder ") + QString::number(number)));
        budget.beginFolder({});
        QList<EasContactsItem> added;
        QList<EasContactsItem> changed;
        QStringList deleted;
        QCOMPARE(account.storage().queryChanges(account.folder(), &added, &changed, &deleted, &budget),
            LocalQuery::Answered);
        QCOMPARE(changed.size(), 1);
        QVERIFY(budget.hasLeftOut());

        UploadBudget next;
        next.beginFolder(budget.taken());
        const QString gone = changed.first().localId();
        changed.clear();
        QCOMPARE(account.storage().queryChanges(account.folder(), &added, &changed, &deleted, &next),
            LocalQuery::Answered);
        QCOMPARE(changed.size(), 2);
        for (const EasContactsItem &item : qAsConst(changed))
            QVERIFY(item.localId() != gone);
        QVERIFY(!next.hasLeftOut());
    }

    void rowsThatCannotBeReadStopTheSearch()
    {
        ContactAccount account;
        account.addFolder();
        const HiddenTable hidden("contacts");
        QList<EasContactsItem> added;
        QList<EasContactsItem> changed;
        QStringList deleted;
        QCOMPARE(account.storage().queryChanges(account.folder(), &added, &changed, &deleted),
            LocalQuery::MappingFailed);
    }

    void rubbishIsNoIdentifier()
    {
        ContactAccount account;
        const LogCollector log;
        QVERIFY(account.storage().uploadedLocalChanges({ QStringLiteral("rubbish") }, {}, {}));
        QVERIFY(log.contains(QStringLiteral("QContactId is null for specified id")));
    }

    void anUploadThatWasNotMappedGoesUpAgain()
    {
        ContactAccount account;
        const QContactCollectionId collection = account.addFolder();
        const QContactId id = account.store.addContact(collection, QStringLiteral("Cy")).id();
        account.localChanges();
        QVERIFY(account.storage().uploadedLocalChanges({ id.toString() }, {}, {}));
        // The key of that sync was not advanced, so this is a repetition to the server.
        QCOMPARE(account.localChanges(), QStringLiteral("added: Cy; changed: ; deleted: "));
    }

    void anUploadThatWasMappedIsNotAddedTwice()
    {
        ContactAccount account;
        const QContactCollectionId collection = account.addFolder();
        EasContactsItem item = account.item(QStringLiteral("7"), QStringLiteral("Cy"));
        item.setLocalId(account.store.addContact(collection, QStringLiteral("Cy")).id().toString());
        QVERIFY(EasDatabase::instance()->addContactsItems(account.id(), { item }));
        QCOMPARE(account.localChanges(), QStringLiteral("added: ; changed: 7=Cy; deleted: "));
    }

    // Interrupted runs

    void anUnmappedContactOfTheServerWaitsForItsRepetition()
    {
        ContactAccount account;
        account.addFolder();
        interrupted(account, QStringLiteral("1"));
        // A request that is repeated asks twice.
        QCOMPARE(account.localChanges(), none());
        QCOMPARE(account.localChanges(), none());
        QCOMPARE(account.names(), QStringList(QStringLiteral("Stray")));
        // It did not come: the server has deleted it.
        QVERIFY(account.storage().allReceived(account.folderId()));
        QVERIFY(account.names().isEmpty());
        QVERIFY(account.pictures().isEmpty());
    }

    void whatTheUserMadeOfAnUnmappedContactIsKept()
    {
        ContactAccount account;
        account.addFolder();
        const QContactId id = interrupted(account, QStringLiteral("1"));
        rename(account, id, QStringLiteral("Mine"));
        QCOMPARE(account.localChanges(), none());
        QVERIFY(account.receive({ withPicture(account, QStringLiteral("1")) }));
        QCOMPARE(account.names(), QStringList(QStringLiteral("Mine")));
        QCOMPARE(account.localChanges(), QStringLiteral("added: ; changed: 1=Mine; deleted: "));
        QCOMPARE(account.pictures().size(), 1);
    }

    void whatTheServerDoesNotRepeatBecomesTheUsersOwn()
    {
        ContactAccount account;
        account.addFolder();
        rename(account, interrupted(account, QStringLiteral("1")), QStringLiteral("Mine"));
        QCOMPARE(account.localChanges(), none());
        QVERIFY(account.storage().allReceived(account.folderId()));
        QCOMPARE(account.localChanges(), QStringLiteral("added: Mine; changed: ; deleted: "));
    }

    void aStartRemovesWhatTheMappingDoesNotKnow()
    {
        ContactAccount account;
        const QContactCollectionId collection = account.addFolder();
        QVERIFY(account.receive({ account.item(QStringLiteral("1"), QStringLiteral("Ada")) }));
        account.store.addContact(collection, QStringLiteral("Local"));
        interrupted(account, QStringLiteral("2"));
        rename(account, interrupted(account, QStringLiteral("3")), QStringLiteral("Edited"));
        account.restart();
        QCOMPARE(account.names(),
            QStringList({ QStringLiteral("Ada"), QStringLiteral("Edited"), QStringLiteral("Local") }));
        QCOMPARE(account.pictures().size(), 1);
    }

    void aStartRemovesPicturesThatNoContactHas()
    {
        ContactAccount account;
        account.addFolder();
        QVERIFY(account.receive({ withPicture(account, QStringLiteral("1")) }));
        const QStringList before = account.pictures();
        QFile orphan(account.pictureFolder() + QStringLiteral("/avatar-orphan.png"));
        QVERIFY(orphan.open(QIODevice::WriteOnly));
        account.restart();
        QCOMPARE(account.pictures(), before);
    }

    void aStartRemovesFoldersThatTheMappingDoesNotKnow()
    {
        ContactAccount account;
        account.addFolder();
        account.addFolder(QStringLiteral("F2"));
        account.store.addContact(account.collection(), QStringLiteral("Local"));
        QVERIFY(EasDatabase::instance()->deleteFolderItems(
            account.id(), { account.folderId(), QStringLiteral("F2") }));
        account.restart();
        QStringList left;
        for (const QContactCollection &collection : account.store.manager().collections())
            left.append(collection.extendedMetaData(QStringLiteral("ServerId")).toString());
        left.removeAll(QString());
        // In the first one is something that nobody else has.
        QCOMPARE(left, QStringList(account.folderId()));
    }

    void aStartWithoutTheMappingRemovesNothing()
    {
        ContactAccount account;
        account.addFolder();
        QVERIFY(account.receive({ withPicture(account, QStringLiteral("1")) }));
        account.restart();
        QCOMPARE(account.names(), QStringList(QStringLiteral("Stray")));
        QCOMPARE(account.pictures().size(), 1);
    }
};

FENNEL_REGISTER_TEST(ContactLocalChangesTest)
#include "contactlocalchangestest.moc"
