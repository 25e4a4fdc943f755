// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/contactfixture.h"
#include "support/privatebus.h"
#include "support/testmain.h"

#include <QtContacts/QContactGuid>
#include <QtContacts/QContactName>

#include <QSignalSpy>
#include <QtTest>

QTCONTACTS_USE_NAMESPACE

/** Change flags, and what the extension stores and fetches. */
class ContactStoreSyncTest : public QObject
{
    Q_OBJECT

private:
    using Engine = ContactFixture::Engine;

    /** A contact with a status flag, as storeChanges() wants it. */
    static QContact flagged(QContact contact, QContactStatusFlags::Flag flag)
    {
        auto flags = contact.detail<QContactStatusFlags>();
        flags.setFlag(flag, true);
        contact.saveDetail(&flags, QContact::IgnoreAccessConstraints);
        return contact;
    }

    static bool store(const ContactFixture &fixture, QContactCollection collection, QList<QContact> &contacts,
        QContactManager::Error *error, bool clearFlags = false)
    {
        QHash<QContactCollection *, QList<QContact> *> modified { { &collection, &contacts } };
        return fixture.engine()->storeChanges(
            nullptr, &modified, {}, Engine::PreserveRemoteChanges, clearFlags, error);
    }

    static QContact edited(const ContactFixture &fixture, const QContactId &id, const QString &name)
    {
        QContact contact = fixture.manager().contact(id);
        QContactName detail = contact.detail<QContactName>();
        detail.setFirstName(name);
        contact.saveDetail(&detail);
        fixture.manager().saveContact(&contact);
        return contact;
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY(PrivateBus::ensure()); }

    void lifeOfAContact()
    {
        ContactFixture fixture;
        const QContactCollection collection = fixture.addCollection(QStringLiteral("c"));
        QContactManager::Error error = QContactManager::NoError;

        QList<QContact> contacts { flagged(
            ContactFixture::named(QStringLiteral("a")), QContactStatusFlags::IsAdded) };
        QVERIFY(store(fixture, collection, contacts, &error));
        const QContactId id = contacts.value(0).id();
        QVERIFY(!id.isNull());
        QCOMPARE(fixture.changes(collection.id()).counts(), QStringLiteral("0 0 0 1"));

        edited(fixture, id, QStringLiteral("b"));
        ContactFixture::Changes changes = fixture.changes(collection.id());
        QCOMPARE(changes.counts(), QStringLiteral("0 1 0 0"));
        QCOMPARE(changes.modified.first().detail<QContactStatusFlags>().flagsValue(), quint64(64));

        QVERIFY(fixture.engine()->clearChangeFlags(QList<QContactId> { id }, &error));
        QCOMPARE(fixture.changes(collection.id()).counts(), QStringLiteral("0 0 0 1"));

        QVERIFY(fixture.manager().removeContact(id));
        changes = fixture.changes(collection.id());
        QCOMPARE(changes.counts(), QStringLiteral("0 0 1 0"));
        QCOMPARE(ContactFixture::name(changes.deleted.first()), QStringLiteral("b"));
        QVERIFY(fixture.engine()->clearChangeFlags(QList<QContactId> { id }, &error));
        QCOMPARE(fixture.changes(collection.id()).counts(), QStringLiteral("0 0 0 0"));
    }

    void lifeOfALocalContact()
    {
        ContactFixture fixture;
        const QContactCollectionId collection = fixture.addCollection(QStringLiteral("c")).id();
        const QContact contact = fixture.addContact(collection, QStringLiteral("a"));
        QCOMPARE(fixture.changes(collection).counts(), QStringLiteral("1 0 0 0"));
        edited(fixture, contact.id(), QStringLiteral("b"));
        ContactFixture::Changes changes = fixture.changes(collection);
        QCOMPARE(changes.counts(), QStringLiteral("1 0 0 0"));
        QCOMPARE(changes.added.first().detail<QContactStatusFlags>().flagsValue(), quint64(32));
        QVERIFY(fixture.manager().removeContact(contact.id()));
        changes = fixture.changes(collection);
        QCOMPARE(changes.counts(), QStringLiteral("0 0 1 0"));
        QCOMPARE(changes.deleted.first().detail<QContactStatusFlags>().flagsValue(), quint64(32 | 128));
    }

    void anEditBetweenFetchAndClearIsNotLost()
    {
        ContactFixture fixture;
        const QContactCollectionId collection = fixture.addCollection(QStringLiteral("c")).id();
        const QContact contact = fixture.addContact(collection, QStringLiteral("a"));
        QContactManager::Error error = QContactManager::NoError;
        QCOMPARE(fixture.changes(collection).counts(), QStringLiteral("1 0 0 0"));
        edited(fixture, contact.id(), QStringLiteral("b"));
        QVERIFY(fixture.engine()->clearChangeFlags(QList<QContactId> { contact.id() }, &error));
        QCOMPARE(fixture.changes(collection).counts(), QStringLiteral("0 1 0 0"));
        QVERIFY(fixture.engine()->clearChangeFlags(QList<QContactId> { contact.id() }, &error));
        QCOMPARE(fixture.changes(collection).counts(), QStringLiteral("0 0 0 1"));
    }

    void aRemovalBetweenFetchAndClearIsNotLost()
    {
        ContactFixture fixture;
        const QContactCollectionId collection = fixture.addCollection(QStringLiteral("c")).id();
        const QContact contact = fixture.addContact(collection, QStringLiteral("a"));
        QContactManager::Error error = QContactManager::NoError;
        fixture.changes(collection);
        QVERIFY(fixture.manager().removeContact(contact.id()));
        QVERIFY(fixture.engine()->clearChangeFlags(QList<QContactId> { contact.id() }, &error));
        QCOMPARE(fixture.changes(collection).counts(), QStringLiteral("0 0 1 0"));
    }

    void clearingWorksOnNothingAndOnTheUnknown()
    {
        ContactFixture fixture;
        QContactManager::Error error = QContactManager::UnspecifiedError;
        QVERIFY(fixture.engine()->clearChangeFlags(QList<QContactId>(), &error));
        QVERIFY(fixture.engine()->clearChangeFlags(QList<QContactId> { QContactId() }, &error));
        QCOMPARE(error, QContactManager::NoError);
        QCOMPARE(fixture.changes(QContactCollectionId()).counts(), QStringLiteral("0 0 0 0"));
    }

    void clearingACollectionClearsItsContacts()
    {
        ContactFixture fixture;
        const QContactCollectionId collection = fixture.addCollection(QStringLiteral("c")).id();
        fixture.addContact(collection, QStringLiteral("a"));
        const QContact gone = fixture.addContact(collection, QStringLiteral("b"));
        fixture.manager().removeContact(gone.id());
        QContactManager::Error error = QContactManager::NoError;
        QVERIFY(fixture.engine()->clearChangeFlags(collection, &error));
        QCOMPARE(fixture.changes(collection).counts(), QStringLiteral("0 0 0 1"));
    }

    void storingGoesByTheFlags()
    {
        ContactFixture fixture;
        const QContactCollection collection = fixture.addCollection(QStringLiteral("c"));
        QContactManager::Error error = QContactManager::NoError;
        QList<QContact> first;
        for (const char *name : { "keep", "change", "remove" })
            first.append(
                flagged(ContactFixture::named(QString::fromLatin1(name)), QContactStatusFlags::IsAdded));
        QVERIFY(store(fixture, collection, first, &error));

        QContact changed = fixture.manager().contact(first.at(1).id());
        QContactName name = changed.detail<QContactName>();
        name.setFirstName(QStringLiteral("changed"));
        changed.saveDetail(&name);
        QList<QContact> second { flagged(fixture.manager().contact(first.at(2).id()),
                                     QContactStatusFlags::IsDeleted),
            flagged(changed, QContactStatusFlags::IsModified), fixture.manager().contact(first.at(0).id()),
            flagged(ContactFixture::named(QStringLiteral("new")), QContactStatusFlags::IsAdded) };
        QVERIFY(store(fixture, collection, second, &error));

        // Added, modified, deleted; what was passed over is gone from the list.
        QCOMPARE(second.size(), 3);
        QCOMPARE(ContactFixture::name(second.at(0)), QStringLiteral("new"));
        QCOMPARE(second.at(1).id(), changed.id());
        QCOMPARE(second.at(2).id(), first.at(2).id());
        QCOMPARE(ContactFixture::names(fixture.contacts(collection.id())),
            QStringList({ QStringLiteral("changed"), QStringLiteral("keep"), QStringLiteral("new") }));
        QCOMPARE(fixture.changes(collection.id()).counts(), QStringLiteral("0 0 1 3"));
    }

    void aStoredRemovalIsListedUntilItsFlagsAreCleared()
    {
        ContactFixture fixture;
        const QContactCollection collection = fixture.addCollection(QStringLiteral("c"));
        QContactManager::Error error = QContactManager::NoError;
        QList<QContact> contacts { flagged(
            ContactFixture::named(QStringLiteral("a")), QContactStatusFlags::IsAdded) };
        QVERIFY(store(fixture, collection, contacts, &error));
        const QContactId id = contacts.first().id();
        contacts = { flagged(fixture.manager().contact(id), QContactStatusFlags::IsDeleted) };
        QVERIFY(store(fixture, collection, contacts, &error));
        QVERIFY(fixture.contacts(collection.id()).isEmpty());
        const ContactFixture::Changes changes = fixture.changes(collection.id());
        QCOMPARE(changes.counts(), QStringLiteral("0 0 1 0"));
        QCOMPARE(changes.deleted.first().detail<QContactStatusFlags>().flagsValue(), quint64(128));
        QVERIFY(fixture.engine()->clearChangeFlags(QList<QContactId> { id }, &error));
        QCOMPARE(fixture.changes(collection.id()).counts(), QStringLiteral("0 0 0 0"));
    }

    void aSecondNameIsRefusedWhereTheStoreIsToldSo()
    {
        ContactFixture fixture;
        const QContactCollection collection = fixture.addCollection(QStringLiteral("c"));
        QContact contact = flagged(ContactFixture::named(QStringLiteral("a")), QContactStatusFlags::IsAdded);
        QContactName second;
        second.setFirstName(QStringLiteral("b"));
        QVERIFY(contact.saveDetail(&second));
        QList<QContact> contacts { contact };
        QContactManager::Error error = QContactManager::NoError;
        qputenv("CONTACTS_ONE_NAME", "1");
        const bool stored = store(fixture, collection, contacts, &error);
        qunsetenv("CONTACTS_ONE_NAME");
        QVERIFY(!stored);
        QCOMPARE(error, QContactManager::LimitReachedError);
        contacts = { contact };
        QVERIFY(store(fixture, collection, contacts, &error));
    }

    void aPendingLocalChangeStaysPendingWhenItIsOverwritten()
    {
        ContactFixture fixture;
        const QContactCollection collection = fixture.addCollection(QStringLiteral("c"));
        QContactManager::Error error = QContactManager::NoError;
        QList<QContact> contacts { flagged(
            ContactFixture::named(QStringLiteral("a")), QContactStatusFlags::IsAdded) };
        QVERIFY(store(fixture, collection, contacts, &error));
        edited(fixture, contacts.first().id(), QStringLiteral("local"));

        QContact remote = fixture.manager().contact(contacts.first().id());
        QContactName name = remote.detail<QContactName>();
        name.setFirstName(QStringLiteral("remote"));
        remote.saveDetail(&name);
        QList<QContact> again { flagged(remote, QContactStatusFlags::IsModified) };
        QVERIFY(store(fixture, collection, again, &error));
        const ContactFixture::Changes changes = fixture.changes(collection.id());
        QCOMPARE(changes.counts(), QStringLiteral("0 1 0 0"));
        QCOMPARE(ContactFixture::name(changes.modified.first()), QStringLiteral("remote"));

        edited(fixture, contacts.first().id(), QStringLiteral("local again"));
        QList<QContact> none;
        QVERIFY(store(fixture, collection, none, &error, true));
        QCOMPARE(fixture.changes(collection.id()).counts(), QStringLiteral("0 1 0 0"));
        QVERIFY(store(fixture, collection, none, &error, true));
        QCOMPARE(fixture.changes(collection.id()).counts(), QStringLiteral("0 0 0 1"));
    }

    void aRefusedContactUndoesTheWholeStore()
    {
        ContactFixture fixture;
        const QContactCollection collection = fixture.addCollection(QStringLiteral("c"));
        QContact refused =
            flagged(ContactFixture::named(QStringLiteral("bad")), QContactStatusFlags::IsAdded);
        for (const char *text : { "one", "two" }) {
            QContactGuid guid;
            guid.setGuid(QString::fromLatin1(text));
            refused.saveDetail(&guid);
        }
        QList<QContact> contacts {
            flagged(ContactFixture::named(QStringLiteral("a")), QContactStatusFlags::IsAdded), refused
        };
        QContactManager::Error error = QContactManager::NoError;
        QVERIFY(!store(fixture, collection, contacts, &error));
        QCOMPARE(error, QContactManager::LimitReachedError);
        QVERIFY(fixture.contacts(collection.id()).isEmpty());
    }

    void addedCollectionsTakeAllTheirContacts()
    {
        ContactFixture fixture;
        QContactCollection collection;
        collection.setMetaData(QContactCollection::KeyName, QStringLiteral("c"));
        QList<QContact> contacts { ContactFixture::named(QStringLiteral("a")) };
        QHash<QContactCollection *, QList<QContact> *> added { { &collection, &contacts } };
        QContactManager::Error error = QContactManager::NoError;
        QVERIFY(fixture.engine()->storeChanges(
            &added, nullptr, {}, Engine::PreserveRemoteChanges, false, &error));
        QVERIFY(!collection.id().isNull());
        QCOMPARE(ContactFixture::names(fixture.contacts(collection.id())), QStringList(QStringLiteral("a")));

        QVERIFY(!fixture.engine()->storeChanges(
            &added, nullptr, {}, Engine::PreserveRemoteChanges, false, &error));
        QCOMPARE(error, QContactManager::BadArgumentError);

        QVERIFY(fixture.engine()->storeChanges(
            nullptr, nullptr, { collection.id() }, Engine::PreserveRemoteChanges, false, &error));
        QVERIFY(fixture.contacts(collection.id()).isEmpty());
        QCOMPARE(fixture.changes(collection.id()).counts(), QStringLiteral("0 0 0 0"));
    }

    void collectionsHaveChangesToo()
    {
        ContactFixture fixture;
        const QVariantMap mine { { QStringLiteral("AccountId"), 5 },
            { QStringLiteral("ApplicationName"), QStringLiteral("me") } };
        const QContactCollectionId id = fixture.addCollection(QStringLiteral("c"), mine).id();
        fixture.addCollection(QStringLiteral("other"));
        QList<QContactCollection> added;
        QList<QContactCollection> deleted;
        QContactManager::Error error = QContactManager::NoError;
        const auto fetch = [&] {
            added.clear();
            deleted.clear();
            return fixture.engine()->fetchCollectionChanges(
                5, QStringLiteral("me"), &added, nullptr, &deleted, nullptr, &error);
        };
        QVERIFY(fetch());
        QCOMPARE(added.size(), 1);
        QVERIFY(fixture.engine()->clearChangeFlags(id, &error));
        QVERIFY(fetch());
        QVERIFY(added.isEmpty());
        QVERIFY(fixture.manager().removeCollection(id));
        QVERIFY(fetch());
        QCOMPARE(deleted.value(0).id(), id);
    }

    void signalsComeFromTheEventLoop()
    {
        ContactFixture fixture;
        Engine *engine = fixture.engine();
        QSignalSpy collections(engine, &Engine::collectionContactsChanged);
        QSignalSpy contactsAdded(&fixture.manager(), &QContactManager::contactsAdded);
        const QContactCollectionId collection = fixture.addCollection(QStringLiteral("c")).id();
        const QContact contact = fixture.addContact(collection, QStringLiteral("a"));
        QCOMPARE(collections.count(), 0);
        QTRY_COMPARE_WITH_TIMEOUT(collections.count(), 1, 60000);
        QCOMPARE(collections.last().first().value<QList<QContactCollectionId>>(),
            QList<QContactCollectionId> { collection });
        QCOMPARE(contactsAdded.count(), 1);

        // Flags alone are no change; the removal comes next.
        QContactManager::Error error = QContactManager::NoError;
        QVERIFY(engine->clearChangeFlags(QList<QContactId> { contact.id() }, &error));
        QSignalSpy removed(&fixture.manager(), &QContactManager::contactsRemoved);
        QVERIFY(fixture.manager().removeContact(contact.id()));
        QTRY_COMPARE_WITH_TIMEOUT(removed.count(), 1, 60000);
        QCOMPARE(collections.count(), 2);
    }

    void ownStoresAreToldLikeOthers()
    {
        ContactFixture fixture;
        const QContactCollection collection = fixture.addCollection(QStringLiteral("c"));
        QSignalSpy told(fixture.engine(), &Engine::collectionContactsChanged);
        QList<QContact> contacts { flagged(
            ContactFixture::named(QStringLiteral("a")), QContactStatusFlags::IsAdded) };
        QContactManager::Error error = QContactManager::NoError;
        QVERIFY(store(fixture, collection, contacts, &error));
        QTRY_COMPARE_WITH_TIMEOUT(told.count(), 1, 60000);
    }
};

FENNEL_REGISTER_TEST(ContactStoreSyncTest)
#include "contactstoresynctest.moc"
