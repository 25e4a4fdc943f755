// SPDX-License-Identifier: LGPL-2.1-or-later
#include "easitems/fields/contactsfields.h"
#include "storages/contacts/contactreader.h"
#include "storages/contacts/contactstorecontext.h"
#include "storages/contacts/contactwriter.h"
#include "support/contactaccount.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QtContacts/QContactAddress>
#include <QtContacts/QContactAnniversary>
#include <QtContacts/QContactBirthday>
#include <QtContacts/QContactEmailAddress>
#include <QtContacts/QContactExtendedDetail>
#include <QtContacts/QContactFamily>
#include <QtContacts/QContactGender>
#include <QtContacts/QContactGuid>
#include <QtContacts/QContactName>
#include <QtContacts/QContactNickname>
#include <QtContacts/QContactNote>
#include <QtContacts/QContactOnlineAccount>
#include <QtContacts/QContactOrganization>
#include <QtContacts/QContactSyncTarget>
#include <QtContacts/QContactTag>
#include <QtContacts/QContactUrl>

#include <QtTest>

QTCONTACTS_USE_NAMESPACE

/** Items into contacts and back, field by field. */
class ContactDetailsTest : public QObject
{
    Q_OBJECT

private:
    /** Fields that stand for nothing a contact of the device could hold. */
    static bool isKeptByTheServerAlone(const Field<EasContactsItem> &field)
    {
        const Wbxml::Token tags[] = { Wbxml::Contacts::WeightedRank, Wbxml::AirSyncBase::NativeBodyType,
            Wbxml::Contacts::Picture };
        return std::any_of(std::begin(tags), std::end(tags),
            [&field](const Wbxml::Token &tag) { return tag.key() == field.tag.key(); });
    }

    /** An item with a value of its own in each field that has a text. */
    static EasContactsItem full()
    {
        EasContactsItem item;
        item.setServerId(QStringLiteral("S"));
        for (const Field<EasContactsItem> &field : ContactsFields::itemFields().fields()) {
            if (field.take && !isKeptByTheServerAlone(field))
                field.take(item, QStringLiteral("value-%1").arg(field.tag.key()), {});
        }
        item.setAnniversary(QStringLiteral("2001-02-03T00:00:00.000Z"));
        item.setBirthday(QStringLiteral("1980-05-06T00:00:00.000Z"));
        item.setCategories({ QStringLiteral("Friends"), QStringLiteral("Chess") });
        item.setChildren({ QStringLiteral("Byron"), QStringLiteral("Anne") });
        EasBodyContainer body;
        body.setType(EasBodyContainer::PlainTextBodyType);
        body.setData(QStringLiteral("First line\nSecond: ünïcödé 😀"));
        item.setBody(body);
        return item;
    }

    /** Each field of the item as it would be sent, by its tag. */
    static QMap<uint, QByteArray> sent(const EasContactsItem &item)
    {
        QMap<uint, QByteArray> fields;
        for (const Field<EasContactsItem> &field : ContactsFields::itemFields().fields()) {
            WbxmlEncoder encoder;
            encoder.appendElement(Wbxml::AirSync::ApplicationData, true);
            field.send(item, encoder, ExchangeActiveSync::ProtocolVersion161);
            encoder.setCurrentNodeToParent();
            fields.insert(field.tag.key(), encoder.encoded());
        }
        return fields;
    }

    QContact prepared(EasContactsItem item) { return ContactWriter(mContext).prepareContact(item); }

    /** As the store gives it back. */
    QContact stored(QContact contact)
    {
        if (!mAccount.store.manager().saveContact(&contact))
            return QContact();
        return mAccount.store.manager().contact(contact.id());
    }

    EasContactsItem converted(const QContact &contact)
    {
        return ContactReader(mContext).convertContact(contact);
    }

    ContactAccount mAccount;
    ContactStoreContext mContext;

private Q_SLOTS:
    void initTestCase()
    {
        mContext.manager = &mAccount.store.manager();
        mContext.accountId = mAccount.id();
    }

    void everyFieldSurvivesTheStore()
    {
        QContact contact = prepared(full());
        contact.setCollectionId(mAccount.store.addCollection(QStringLiteral("c")).id());
        QVERIFY(mAccount.store.manager().saveContact(&contact));
        const EasContactsItem back = converted(mAccount.store.manager().contact(contact.id()));
        QCOMPARE(back.localId(), contact.id().toString());
        QCOMPARE(back.alias(), full().alias());
        const QMap<uint, QByteArray> before = sent(full());
        const QMap<uint, QByteArray> after = sent(back);
        for (auto it = before.cbegin(); it != before.cend(); ++it)
            QVERIFY2(after.value(it.key()) == it.value(), qPrintable(QStringLiteral("tag %1").arg(it.key())));
    }

    void originIsWrittenDown()
    {
        const QContact contact = prepared(full());
        QCOMPARE(contact.detail<QContactSyncTarget>().syncTarget(), QStringLiteral("fennel-eas"));
        QCOMPARE(contact.detail<QContactGuid>().guid(), QStringLiteral("%1-S").arg(mAccount.id()));
        QCOMPARE(contact.detail<QContactStatusFlags>().flagsValue(), quint64(32));
    }

    void slotsAreToldApartByUri()
    {
        const QContact contact = prepared(full());
        const auto uris = [&contact](QContactDetail::DetailType type) {
            QStringList list;
            for (const QContactDetail &detail : contact.details(type))
                list.append(detail.value(5001).toString());
            return list;
        };
        QCOMPARE(uris(QContactEmailAddress::Type),
            QStringList({ QString(), QStringLiteral("urn:as:contact:EmailAddress2"),
                QStringLiteral("urn:as:contact:EmailAddress3") }));
        QCOMPARE(uris(QContactOnlineAccount::Type),
            QStringList({ QString(), QStringLiteral("urn:as:contact:ImAddress2"),
                QStringLiteral("urn:as:contact:ImAddress3") }));
        QCOMPARE(
            uris(QContactName::Type), QStringList({ QString(), QStringLiteral("urn:as:contact:YomiName") }));
        QCOMPARE(uris(QContactOrganization::Type),
            QStringList({ QString(), QStringLiteral("urn:as:contact:YomiCompanyName") }));
        QCOMPARE(
            uris(QContactNickname::Type), QStringList({ QString(), QStringLiteral("urn:as:contact:Alias") }));
        QCOMPARE(contact.detail<QContactOnlineAccount>().subTypes(),
            QList<int> { QContactOnlineAccount::SubTypeImpp });
        QCOMPARE(contact.detail<QContactOrganization>().department(), QStringList(full().department()));
    }

    void addressesGoByContext()
    {
        const QContact contact = prepared(full());
        QMap<int, QString> cities;
        for (const QContactAddress &address : contact.details<QContactAddress>())
            cities.insert(address.contexts().value(0, -1), address.locality());
        QCOMPARE(cities.value(QContactDetail::ContextHome), full().homeAddressCity());
        QCOMPARE(cities.value(QContactDetail::ContextWork), full().businessAddressCity());
        QCOMPARE(cities.value(QContactDetail::ContextOther), full().otherAddressCity());

        EasContactsItem none = mAccount.item(QStringLiteral("x"), QStringLiteral("Ada"));
        QVERIFY(prepared(none).details<QContactAddress>().isEmpty());
        none.setOtherAddressState(QStringLiteral("Kent"));
        QCOMPARE(prepared(none).details<QContactAddress>().size(), 1);
    }

    void emptyFieldsGiveNoDetails()
    {
        const QContact contact = prepared(mAccount.item(QStringLiteral("x"), QStringLiteral("Ada")));
        QSet<int> types;
        for (const QContactDetail &detail : contact.details()) {
            if (!detail.isEmpty())
                types.insert(detail.type());
        }
        types -= { QContactDetail::TypeDisplayLabel, QContactDetail::TypeType };
        QCOMPARE(types,
            QSet<int>({ QContactDetail::TypeName, QContactDetail::TypeGuid, QContactDetail::TypeSyncTarget,
                QContactStatusFlags::Type }));
    }

    void anAddressInAngleBracketsIsTheAddress_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("address");
        QTest::newRow("name and address") << "\"Ada L.\" <ada@example.org>"
                                          << "ada@example.org";
        QTest::newRow("address alone") << "ada@example.org"
                                       << "ada@example.org";
        QTest::newRow("no closing bracket") << "<ada@example.org"
                                            << "<ada@example.org";
        QTest::newRow("brackets the wrong way round") << ">ada<"
                                                      << ">ada<";
        QTest::newRow("closing one first") << "a>b <c>"
                                           << "c";
        QTest::newRow("nothing between") << "Ada <>"
                                         << "";
        QTest::newRow("empty") << ""
                               << "";
    }

    void anAddressInAngleBracketsIsTheAddress()
    {
        QFETCH(QString, text);
        QFETCH(QString, address);
        QCOMPARE(ContactWriter::getRawEmailAddress(text), address);
        EasContactsItem item = mAccount.item(QStringLiteral("x"), QStringLiteral("Ada"));
        item.setEmail1Address(text);
        item.setEmail3Address(text);
        const QContact contact = prepared(item);
        QCOMPARE(contact.detail<QContactEmailAddress>().emailAddress(), address);
        QStringList addresses;
        for (const QContactEmailAddress &detail : contact.details<QContactEmailAddress>())
            addresses.append(detail.emailAddress());
        QCOMPARE(addresses.value(1), address);
    }

    void datesAreDays_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("back");
        QTest::newRow("midnight") << "1980-05-06T00:00:00.000Z"
                                  << "1980-05-06T00:00:00.000Z";
        QTest::newRow("noon") << "1980-05-06T11:59:00.000Z"
                              << "1980-05-06T11:59:00.000Z";
        QTest::newRow("midnight of a zone in the east") << "1980-03-04T23:00:00.000Z"
                                                        << "1980-03-04T23:00:00.000Z";
        QTest::newRow("before any epoch") << "1604-02-29T00:00:00.000Z"
                                          << "1604-02-29T00:00:00.000Z";
        QTest::newRow("no such day") << "1981-02-29T00:00:00.000Z"
                                     << "";
        QTest::newRow("rubbish") << "on a rainy day"
                                 << "";
        QTest::newRow("empty") << ""
                               << "";
    }

    void datesAreDays()
    {
        QFETCH(QString, text);
        QFETCH(QString, back);
        EasContactsItem item = mAccount.item(QStringLiteral("x"), QStringLiteral("Ada"));
        item.setBirthday(text);
        item.setAnniversary(text);
        QContact contact = prepared(item);
        QCOMPARE(ContactFixture::name(contact), QStringLiteral("Ada"));
        QVERIFY(mAccount.store.manager().saveContact(&contact));
        const EasContactsItem read = converted(mAccount.store.manager().contact(contact.id()));
        QCOMPARE(read.birthday(), back);
        QCOMPARE(read.anniversary(), back);
    }

    void aDayIsThatOfTheNearestMidnight_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QDate>("day");
        QTest::newRow("midnight") << "1980-03-05T00:00:00.000Z" << QDate(1980, 3, 5);
        QTest::newRow("midnight of a zone in the east") << "1980-03-04T23:00:00.000Z" << QDate(1980, 3, 5);
        QTest::newRow("midnight of a zone in the west") << "1980-03-05T08:00:00.000Z" << QDate(1980, 3, 5);
        QTest::newRow("just before noon") << "1980-03-05T11:59:00.000Z" << QDate(1980, 3, 5);
        QTest::newRow("noon") << "1980-03-05T12:00:00.000Z" << QDate(1980, 3, 6);
        QTest::newRow("the last day of a leap February") << "1980-02-28T22:00:00.000Z" << QDate(1980, 2, 29);
        QTest::newRow("a date without a time") << "1980-03-05" << QDate(1980, 3, 5);
    }

    void aDayIsThatOfTheNearestMidnight()
    {
        QFETCH(QString, text);
        QFETCH(QDate, day);
        EasContactsItem item = mAccount.item(QStringLiteral("x"), QStringLiteral("Ada"));
        item.setBirthday(text);
        item.setAnniversary(text);
        const QContact contact = stored(prepared(item));
        QCOMPARE(contact.detail<QContactBirthday>().date(), day);
        QCOMPARE(contact.detail<QContactAnniversary>().originalDate(), day);
        QCOMPARE(converted(contact).birthday(), text);
        QCOMPARE(converted(contact).anniversary(), text);
    }

    void aDayThatAnOlderRunCutOffGoesUpAsItCame()
    {
        // The day was that of the text, whatever the time beside it.
        QContact contact = ContactFixture::named(QStringLiteral("Ada"));
        QContactBirthday birthday;
        birthday.setDate(QDate(1980, 3, 4));
        QVERIFY(contact.saveDetail(&birthday));
        const QString text = QStringLiteral("1980-03-04T23:00:00.000Z");
        for (const auto &[name, data] :
            { std::pair("Birthday", text), std::pair("BirthdayOf", text.left(10)) }) {
            QContactExtendedDetail kept;
            kept.setName(QString::fromLatin1(name));
            kept.setData(data);
            QVERIFY(contact.saveDetail(&kept));
        }
        QCOMPARE(converted(contact).birthday(), text);
    }

    void anAddressGoesUpWithTheNameThatCameWithIt()
    {
        const QString text = QStringLiteral("\"Ada L.\" <ada@example.org>");
        EasContactsItem item = mAccount.item(QStringLiteral("x"), QStringLiteral("Ada"));
        item.setEmail1Address(text);
        item.setEmail2Address(QStringLiteral("plain@example.org"));
        item.setEmail3Address(text);
        QContact contact = stored(prepared(item));
        QCOMPARE(converted(contact).email1Address(), text);
        QCOMPARE(converted(contact).email2Address(), QStringLiteral("plain@example.org"));
        QCOMPARE(converted(contact).email3Address(), text);

        QContactEmailAddress first = contact.detail<QContactEmailAddress>();
        first.setEmailAddress(QStringLiteral("new@example.org"));
        QVERIFY(contact.saveDetail(&first));
        QCOMPARE(converted(contact).email1Address(), QStringLiteral("new@example.org"));
        QCOMPARE(converted(contact).email3Address(), text);
    }

    void aNoteThatCameCutShortStaysWithTheServer_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("the beginning of it") << "The beginning of a lo";
        QTest::newRow("nothing of it") << "";
    }

    void aNoteThatCameCutShortStaysWithTheServer()
    {
        QFETCH(QString, text);
        EasContactsItem item = mAccount.item(QStringLiteral("x"), QStringLiteral("Ada"));
        EasBodyContainer body;
        body.setType(EasBodyContainer::PlainTextBodyType);
        body.setData(text);
        body.setTruncated(true);
        item.setBody(body);
        QContact contact = stored(prepared(item));
        QCOMPARE(contact.detail<QContactNote>().note(), text);
        QCOMPARE(converted(contact).body().type(), EasBodyContainer::UnspecifiedBodyType);

        // What the user writes is the note from then on.
        QContactNote note = contact.detail<QContactNote>();
        note.setNote(QStringLiteral("Another one"));
        QVERIFY(contact.saveDetail(&note));
        QCOMPARE(converted(contact).body().type(), EasBodyContainer::PlainTextBodyType);
        QCOMPARE(converted(contact).body().data(), QStringLiteral("Another one"));
    }

    void anotherDayHasNoTime()
    {
        EasContactsItem item = mAccount.item(QStringLiteral("x"), QStringLiteral("Ada"));
        item.setBirthday(QStringLiteral("1980-05-06T11:59:00.000Z"));
        QContact contact = prepared(item);
        QContactBirthday birthday = contact.detail<QContactBirthday>();
        birthday.setDate(QDate(1980, 5, 7));
        QVERIFY(contact.saveDetail(&birthday));
        QCOMPARE(converted(contact).birthday(), QStringLiteral("1980-05-07T00:00:00.000Z"));
    }

    void theNameToSortByGoesWithTheName()
    {
        EasContactsItem item = mAccount.item(QStringLiteral("x"), QStringLiteral("Ada"));
        item.setFileAs(QStringLiteral("Countess, the"));
        QContact contact = prepared(item);
        QCOMPARE(converted(contact).fileAs(), QStringLiteral("Countess, the"));
        QContactName name = contact.detail<QContactName>();
        name.setFirstName(QStringLiteral("Eve"));
        QVERIFY(contact.saveDetail(&name));
        QCOMPARE(converted(contact).fileAs(), QString());
    }

    void aRemovedNoteIsAnEmptyBody()
    {
        const EasContactsItem item =
            converted(prepared(mAccount.item(QStringLiteral("x"), QStringLiteral("Ada"))));
        QCOMPARE(item.body().type(), EasBodyContainer::PlainTextBodyType);
        QVERIFY(item.body().data().isEmpty());
    }

    void aBadDateIsLoggedAndCostsNothingElse()
    {
        const LogCollector log;
        EasContactsItem item = mAccount.item(QStringLiteral("x"), QStringLiteral("Ada"));
        item.setBirthday(QStringLiteral("never"));
        QCOMPARE(ContactFixture::name(prepared(item)), QStringLiteral("Ada"));
        QVERIFY(log.contains(
            QtWarningMsg, { QStringLiteral("Failed to save birthday "), QStringLiteral("never") }));
    }

    void whatTheUserAddsFindsAFreeSlot()
    {
        QContact contact;
        for (const char *text : { "one", "two", "three", "four" }) {
            QContactEmailAddress email;
            email.setEmailAddress(QString::fromLatin1(text));
            contact.saveDetail(&email);
            QContactOnlineAccount account;
            account.setAccountUri(QString::fromLatin1(text));
            contact.saveDetail(&account);
        }
        const LogCollector log;
        const EasContactsItem item = converted(contact);
        QCOMPARE(item.email1Address(), QStringLiteral("one"));
        QCOMPARE(item.email2Address(), QStringLiteral("two"));
        QCOMPARE(item.email3Address(), QStringLiteral("three"));
        QCOMPARE(item.imAddress3(), QStringLiteral("three"));
        QVERIFY(log.contains(QStringLiteral("unsyncable email addresses:")));
        QVERIFY(log.contains(QStringLiteral("unsyncable online accounts:")));
        QVERIFY(log.contains(QStringLiteral("local id of the contact is null")));
    }

    void aSlotThatIsTakenByUriStaysWithIt()
    {
        QContact contact;
        for (const char *uri : { "urn:as:contact:EmailAddress2", "" }) {
            QContactEmailAddress email;
            email.setEmailAddress(QString::fromLatin1(uri) + QStringLiteral("x"));
            if (*uri)
                email.setDetailUri(QString::fromLatin1(uri));
            contact.saveDetail(&email);
        }
        const EasContactsItem item = converted(contact);
        QCOMPARE(item.email2Address(), QStringLiteral("urn:as:contact:EmailAddress2x"));
        QCOMPARE(item.email1Address(), QStringLiteral("x"));
    }

    void ofThreeAddressesAtHomeOneIsSent()
    {
        QContact contact;
        for (const char *city : { "Rome", "Paris", "London" }) {
            QContactAddress address;
            address.setLocality(QString::fromLatin1(city));
            address.setContexts(QContactDetail::ContextHome);
            contact.saveDetail(&address);
        }
        const LogCollector log;
        const EasContactsItem item = converted(contact);
        QCOMPARE(item.homeAddressCity(), QStringLiteral("Rome"));
        QVERIFY(item.businessAddressCity().isEmpty());
        QVERIFY(item.otherAddressCity().isEmpty());
        QVERIFY(log.contains(QtWarningMsg,
            { QStringLiteral("we have few unsyncable addresses:"), QStringLiteral("Paris"),
                QStringLiteral("London") }));
        QVERIFY(!log.contains(QStringLiteral("Rome")));
    }

    void severalNotesBecomeOne()
    {
        QContact contact;
        for (const char *text : { "one", "two" }) {
            QContactNote note;
            note.setNote(QString::fromLatin1(text));
            contact.saveDetail(&note);
        }
        const EasContactsItem item = converted(contact);
        QCOMPARE(item.body().data(), QStringLiteral("one\ntwo"));
        QCOMPARE(item.body().type(), EasBodyContainer::PlainTextBodyType);
    }

    void aDetailWithAnotherUriIsThePlainOne()
    {
        QContact contact;
        QContactName name;
        name.setFirstName(QStringLiteral("Ada"));
        name.setDetailUri(QStringLiteral("urn:somebody:else"));
        contact.saveDetail(&name);
        QCOMPARE(converted(contact).firstName(), QStringLiteral("Ada"));
    }

    void whatTheProtocolDoesNotKnowIsLogged()
    {
        QContact contact;
        QContactGender gender;
        gender.setGender(QContactGender::GenderFemale);
        contact.saveDetail(&gender);
        QContactDetail unknown(QContactDetail::DetailType(QContactDetail::TypeVersion + 40));
        unknown.setValue(1, 1);
        contact.saveDetail(&unknown);
        const LogCollector log;
        converted(contact);
        QVERIFY(log.contains(QStringLiteral("The contact detail with type ")));
        QVERIFY(log.contains(QStringLiteral(" is not supported by EAS")));
        QVERIFY(log.contains(QStringLiteral("Unknown contact detail type ")));
    }

    void hugeTextsAreTaken()
    {
        EasContactsItem item =
            mAccount.item(QStringLiteral("huge"), QString(10 * 1024 * 1024, QLatin1Char('x')));
        EasBodyContainer body;
        body.setData(QString(10 * 1024 * 1024, QLatin1Char('y')));
        item.setBody(body);
        QContact contact = prepared(item);
        QVERIFY(mAccount.store.manager().saveContact(&contact));
        QCOMPARE(
            converted(mAccount.store.manager().contact(contact.id())).body().data().size(), 10 * 1024 * 1024);
    }

    void pathsInNamesAreTexts()
    {
        EasContactsItem item = mAccount.item(QStringLiteral("../../etc/passwd"), QStringLiteral("../../x"));
        item.setWebPage(QStringLiteral("file:///etc/passwd"));
        item.setCategories({ QStringLiteral("/tmp/../x"), QString() });
        QContact contact = prepared(item);
        QVERIFY(mAccount.store.manager().saveContact(&contact));
        const EasContactsItem back = converted(mAccount.store.manager().contact(contact.id()));
        QCOMPARE(back.firstName(), item.firstName());
        QCOMPARE(back.webPage(), item.webPage());
    }
};

FENNEL_REGISTER_TEST(ContactDetailsTest)
#include "contactdetailstest.moc"
