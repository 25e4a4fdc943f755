// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactstoremanager.h"
#include "support/contactfixture.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <qtcontacts-extensions.h>

#include <QtContacts/QContactAnniversary>
#include <QtContacts/QContactAvatar>
#include <QtContacts/QContactBirthday>
#include <QtContacts/QContactDisplayLabel>
#include <QtContacts/QContactEmailAddress>
#include <QtContacts/QContactExtendedDetail>
#include <QtContacts/QContactGuid>
#include <QtContacts/QContactIdFilter>
#include <QtContacts/QContactName>
#include <QtContacts/QContactNickname>
#include <QtContacts/QContactOrganization>
#include <QtContacts/QContactPhoneNumber>
#include <QtContacts/QContactTag>
#include <QtContacts/QContactTimestamp>

#include <QTemporaryFile>
#include <QUrl>
#include <QtTest>

QTCONTACTS_USE_NAMESPACE

/** The contact store through QContactManager alone. */
class ContactStoreTest : public QObject
{
    Q_OBJECT

private:
    template <typename Detail> static void add(QContact &contact, Detail detail)
    {
        QVERIFY(contact.saveDetail(&detail));
    }

    static QContact withEverything()
    {
        QContact contact = ContactFixture::named(QStringLiteral("Ada"));
        QContactName yomi;
        yomi.setFirstName(QStringLiteral("エイダ"));
        yomi.setDetailUri(QStringLiteral("urn:as:contact:YomiName"));
        add(contact, yomi);
        QContactPhoneNumber phone;
        phone.setNumber(QStringLiteral("+49 30 1"));
        phone.setContexts(QContactDetail::ContextWork);
        phone.setSubTypes({ 1000 });
        add(contact, phone);
        for (const char *tag : { "Friends", "Chess" }) {
            QContactTag detail;
            detail.setTag(QString::fromLatin1(tag));
            add(contact, detail);
        }
        QContactOrganization organization;
        organization.setName(QStringLiteral("Engines Ltd"));
        organization.setDepartment({ QStringLiteral("Design") });
        organization.setAssistantName(QStringLiteral("Mary"));
        organization.setLocation(QStringLiteral("Room 5"));
        add(contact, organization);
        QContactAvatar avatar;
        avatar.setImageUrl(QUrl::fromLocalFile(QStringLiteral("/nowhere/ada.png")));
        add(contact, avatar);
        QContactExtendedDetail extended;
        extended.setName(QStringLiteral("Title"));
        extended.setData(QStringLiteral("Countess"));
        add(contact, extended);
        return contact;
    }

private Q_SLOTS:
    void detailsComeBackAsTheyWere()
    {
        ContactFixture store;
        QContact contact = withEverything();
        contact.setCollectionId(store.addCollection(QStringLiteral("All")).id());
        QVERIFY(store.manager().saveContact(&contact));

        ContactFixture::Engine *engine = store.engine();
        QVERIFY(engine);
        const QContact read = store.manager().contact(QContactId::fromString(contact.id().toString()));
        QCOMPARE(read.id(), contact.id());
        QCOMPARE(read.collectionId(), contact.collectionId());
        QList<QContactDetail::DetailType> madeUp { QContactDetail::TypeDisplayLabel, QContactDetail::TypeType,
            QContactDetail::TypeTimestamp, QContactStatusFlags::Type };
        const QContact expected = withEverything();
        int compared = 0;
        for (const QContactDetail &detail : expected.details()) {
            if (madeUp.contains(detail.type()))
                continue;
            QVERIFY2(
                read.details(detail.type()).contains(detail), qPrintable(QString::number(detail.type())));
            ++compared;
        }
        QCOMPARE(compared, 8);
        QCOMPARE(read.details<QContactName>().last().value(5001).toString(),
            QStringLiteral("urn:as:contact:YomiName"));
    }

    void theStoreAddsLabelTimesAndFlags()
    {
        ContactFixture store;
        QContact contact = withEverything();
        QVERIFY(store.manager().saveContact(&contact));
        const QContact read = store.manager().contact(contact.id());
        QCOMPARE(read.detail<QContactDisplayLabel>().label(), QStringLiteral("Ada"));
        QVERIFY(read.detail<QContactTimestamp>().created().isValid());
        QVERIFY(read.detail<QContactStatusFlags>().testFlag(QContactStatusFlags::HasPhoneNumber));
        QVERIFY(!read.detail<QContactStatusFlags>().testFlag(QContactStatusFlags::HasEmailAddress));
        QVERIFY(read.detail<QContactStatusFlags>().testFlag(QContactStatusFlags::IsAdded));
        QCOMPARE(read.details<QContactStatusFlags>().size(), 1);
    }

    void datesLoseTheTimeOfTheDay()
    {
        ContactFixture store;
        QContact contact;
        QContactAnniversary anniversary;
        anniversary.setOriginalDateTime(QDateTime(QDate(1999, 2, 3), QTime(3, 4), Qt::UTC));
        add(contact, anniversary);
        QContactBirthday birthday;
        birthday.setDateTime(QDateTime(QDate(1980, 5, 6), QTime(23, 59), Qt::UTC));
        add(contact, birthday);
        QVERIFY(store.manager().saveContact(&contact));
        const QContact read = store.manager().contact(contact.id());
        QCOMPARE(read.detail<QContactAnniversary>().originalDateTime().time(), QTime(0, 0));
        QCOMPARE(read.detail<QContactAnniversary>().originalDate(), QDate(1999, 2, 3));
        QCOMPARE(read.detail<QContactBirthday>().date(), QDate(1980, 5, 6));
    }

    void aSecondDetailOfASingleKindIsRefused()
    {
        ContactFixture store;
        QContact contact;
        for (const char *text : { "one", "two" }) {
            QContactGuid guid;
            guid.setGuid(QString::fromLatin1(text));
            add(contact, guid);
        }
        QVERIFY(!store.manager().saveContact(&contact));
        QCOMPARE(store.manager().error(), QContactManager::LimitReachedError);
        QVERIFY(store.manager().contactIds().isEmpty());
    }

    void aRefusedContactDoesNotKeepTheOthersOut()
    {
        ContactFixture store;
        QContact refused;
        QContactExtendedDetail unknown;
        unknown.setData(QVariant::fromValue(store.manager().defaultCollectionId()));
        add(refused, unknown);
        QList<QContact> contacts { ContactFixture::named(QStringLiteral("a")), refused,
            ContactFixture::named(QStringLiteral("b")) };
        QMap<int, QContactManager::Error> errors;
        QVERIFY(!store.manager().saveContacts(&contacts, &errors));
        QCOMPARE(errors, (QMap<int, QContactManager::Error> { { 1, QContactManager::InvalidDetailError } }));
        QCOMPARE(ContactFixture::names(store.manager().contacts()),
            QStringList({ QStringLiteral("a"), QStringLiteral("b") }));
    }

    void contactsWithoutACollectionAreTheDevicesOwn()
    {
        ContactFixture store;
        QContact contact = ContactFixture::named(QStringLiteral("Own"));
        QVERIFY(store.manager().saveContact(&contact));
        QCOMPARE(contact.collectionId(), store.manager().defaultCollectionId());
        QCOMPARE(contact.collectionId().localId(), QByteArray("col-2"));
        QVERIFY(contact.id().localId().startsWith("sql-"));
    }

    void collectionsKeepTheirMetadata()
    {
        ContactFixture store;
        QContactCollection collection = store.addCollection(QStringLiteral("Work"),
            { { QStringLiteral("AccountId"), quint64(7) }, { QStringLiteral("FolderType"), 9 },
                { QStringLiteral("ServerId"), QStringLiteral("5:1") } });
        const QContactCollection read = store.manager().collection(collection.id());
        QCOMPARE(read.metaData(QContactCollection::KeyName).toString(), QStringLiteral("Work"));
        QCOMPARE(int(read.extendedMetaData(QStringLiteral("AccountId")).userType()), int(QMetaType::Int));
        QCOMPARE(read.extendedMetaData(QStringLiteral("AccountId")).toInt(), 7);
        QCOMPARE(
            int(read.extendedMetaData(QStringLiteral("FolderType")).userType()), int(QMetaType::LongLong));
        QCOMPARE(read.extendedMetaData(QStringLiteral("ServerId")), QVariant(QStringLiteral("5:1")));
        QCOMPARE(read.extendedMetaData(QStringLiteral("Aggregable")), QVariant(true));
        QCOMPARE(read.extendedMetaData(QStringLiteral("RemotePath")), QVariant(QString()));
        QCOMPARE(store.manager().collections().size(), 3);
        QVERIFY(store.manager().collections().first().extendedMetaData().isEmpty());

        collection.setMetaData(QContactCollection::KeyName, QStringLiteral("Play"));
        QVERIFY(store.manager().saveCollection(&collection));
        QCOMPARE(store.manager().collection(collection.id()).metaData(QContactCollection::KeyName).toString(),
            QStringLiteral("Play"));
    }

    void aRemovedCollectionTakesItsContactsAlong()
    {
        ContactFixture store;
        const QContactCollectionId id = store.addCollection(QStringLiteral("Gone")).id();
        const QContact contact = store.addContact(id, QStringLiteral("a"));
        QVERIFY(store.manager().removeCollection(id));
        QVERIFY(store.manager().contact(contact.id()).id().isNull());
        QCOMPARE(store.manager().collections().size(), 2);
        QVERIFY(!store.manager().removeCollection(id));
        QCOMPARE(store.manager().error(), QContactManager::DoesNotExistError);

        QCOMPARE(store.changes(id).counts(), QStringLiteral("0 0 1 0"));
        QContactManager::Error error = QContactManager::NoError;
        QVERIFY(store.engine()->clearChangeFlags(id, &error));
        QCOMPARE(store.changes(id).counts(), QStringLiteral("0 0 0 0"));
    }

    void filtersAndOrders()
    {
        ContactFixture store;
        const QContactCollectionId id = store.addCollection(QStringLiteral("c")).id();
        const QContact b = store.addContact(id, QStringLiteral("b"));
        const QContact a = store.addContact(id, QStringLiteral("a"));
        store.addContact({}, QStringLiteral("other"));
        QCOMPARE(ContactFixture::names(store.contacts(id)),
            QStringList({ QStringLiteral("a"), QStringLiteral("b") }));

        QContactSortOrder order;
        order.setDetailType(QContactName::Type, QContactName::FieldFirstName);
        QContactIdFilter filter;
        filter.setIds({ a.id(), b.id() });
        QCOMPARE(store.manager().contactIds(filter, { order }), QList<QContactId>({ a.id(), b.id() }));
    }

    void onlySomeKindsOfDetailsCanBeSaved()
    {
        ContactFixture store;
        QContact contact = withEverything();
        QVERIFY(store.manager().saveContact(&contact));
        QContact partly;
        partly.setId(contact.id());
        QContactNickname nickname;
        nickname.setNickname(QStringLiteral("Enchantress"));
        add(partly, nickname);
        QList<QContact> list { partly };
        QVERIFY(store.manager().saveContacts(&list, { QContactNickname::Type, QContactTag::Type }));
        const QContact read = store.manager().contact(contact.id());
        QCOMPARE(ContactFixture::name(read), QStringLiteral("Ada"));
        QCOMPARE(read.detail<QContactNickname>().nickname(), QStringLiteral("Enchantress"));
        QVERIFY(read.details<QContactTag>().isEmpty());
    }

    void whatIsGoneCannotBeChanged()
    {
        ContactFixture store;
        QContact contact = store.addContact({}, QStringLiteral("a"));
        QVERIFY(store.manager().removeContact(contact.id()));
        QVERIFY(!store.manager().removeContact(contact.id()));
        QCOMPARE(store.manager().error(), QContactManager::DoesNotExistError);
        QVERIFY(!store.manager().saveContact(&contact));
        QCOMPARE(store.manager().error(), QContactManager::DoesNotExistError);
        QVERIFY(store.manager().contact(QContactId::fromString(QStringLiteral("rubbish"))).id().isNull());
    }

    void aContactStaysInItsCollection()
    {
        ContactFixture store;
        QContact contact = store.addContact({}, QStringLiteral("a"));
        contact.setCollectionId(store.addCollection(QStringLiteral("c")).id());
        QVERIFY(!store.manager().saveContact(&contact));
        QCOMPARE(store.manager().error(), QContactManager::BadArgumentError);
    }

    void everythingIsThereForTheNextManager()
    {
        QContactId id;
        {
            ContactFixture store;
            id = store.addContact(store.addCollection(QStringLiteral("c")).id(), QStringLiteral("a")).id();
        }
        QContactManager manager(QStringLiteral("org.plover.contacts.sqlite"));
        QCOMPARE(ContactFixture::name(manager.contact(id)), QStringLiteral("a"));
        QCOMPARE(manager.collections().size(), 3);
    }

    void managersOfOneProcessShareTheExtension()
    {
        ContactFixture store;
        QContactManager second(QStringLiteral("org.plover.contacts.sqlite"),
            { { QStringLiteral("autoTest"), QStringLiteral("true") } });
        QVERIFY(QtContactsSqliteExtensions::contactManagerEngine(second));
        const QContact contact = store.addContact({}, QStringLiteral("a"));
        QCOMPARE(second.contact(contact.id()).id(), contact.id());

        QContactManager other(QStringLiteral("memory"));
        QVERIFY(!QtContactsSqliteExtensions::contactManagerEngine(other));
    }

    void aStoreThatCannotOpenFailsAtEachCall()
    {
        QTemporaryFile file;
        QVERIFY(file.open());
        const QByteArray before = qgetenv("CONTACTS_DATA");
        qputenv("CONTACTS_DATA", QFile::encodeName(file.fileName()));
        const LogCollector log;
        const bool isGiven =
            std::unique_ptr<QContactManager>(ContactStoreManager::create(nullptr)) != nullptr;
        QContactManager manager(QStringLiteral("org.plover.contacts.sqlite"));
        qputenv("CONTACTS_DATA", before);
        QVERIFY(!isGiven);
        QCOMPARE(manager.managerName(), QStringLiteral("org.plover.contacts.sqlite"));
        QCOMPARE(manager.error(), QContactManager::UnspecifiedError);
        QVERIFY(log.contains(QStringLiteral("cannot create the folder")));
        QVERIFY(manager.collections().isEmpty());
        QCOMPARE(manager.error(), QContactManager::UnspecifiedError);
        QContact contact = ContactFixture::named(QStringLiteral("a"));
        QVERIFY(!manager.saveContact(&contact));
        QCOMPARE(manager.error(), QContactManager::UnspecifiedError);
        QVERIFY(manager.contactIds().isEmpty());
        QCOMPARE(manager.error(), QContactManager::UnspecifiedError);
    }
};

FENNEL_REGISTER_TEST(ContactStoreTest)
#include "contactstoretest.moc"
