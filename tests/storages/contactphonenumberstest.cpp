// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/contacts/contactphonenumbers.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QtTest>

QTCONTACTS_USE_NAMESPACE

/** The thirteen numbers and a contact's phone details, both ways. */
class ContactPhoneNumbersTest : public QObject
{
    Q_OBJECT

private:
    using Phone = QContactPhoneNumber;

    static void add(
        QContact &contact, const QString &number, const QList<int> &contexts, const QList<int> &subTypes)
    {
        Phone phone;
        phone.setNumber(number);
        if (!contexts.isEmpty())
            phone.setContexts(contexts);
        if (!subTypes.isEmpty())
            phone.setSubTypes(subTypes);
        contact.saveDetail(&phone);
    }

    /** "number contexts subtypes" of each detail, in order. */
    static QStringList listing(const QContact &contact)
    {
        const auto text = [](const QList<int> &numbers) {
            QStringList list;
            for (const int number : numbers)
                list.append(QString::number(number));
            return list.join(QLatin1Char('/'));
        };
        QStringList list;
        for (const Phone &phone : contact.details<Phone>())
            list.append(phone.number() + QLatin1Char(' ') + text(phone.contexts()) + QLatin1Char(' ')
                + text(phone.subTypes()));
        list.sort();
        return list;
    }

    static EasContactsItem read(const QContact &contact)
    {
        EasContactsItem item;
        ContactPhoneNumbers::processPhoneNumbers(contact, item);
        return item;
    }

private Q_SLOTS:
    void eachFieldHasItsPlace()
    {
        EasContactsItem item;
        item.setHomePhoneNumber(QStringLiteral("a"));
        item.setHome2PhoneNumber(QStringLiteral("b"));
        item.setBusinessPhoneNumber(QStringLiteral("c"));
        item.setBusiness2PhoneNumber(QStringLiteral("d"));
        item.setMobilePhoneNumber(QStringLiteral("e"));
        item.setHomeFaxNumber(QStringLiteral("f"));
        item.setBusinessFaxNumber(QStringLiteral("g"));
        item.setPagerNumber(QStringLiteral("h"));
        item.setMms(QStringLiteral("i"));
        item.setCarPhoneNumber(QStringLiteral("j"));
        item.setAssistantPhoneNumber(QStringLiteral("k"));
        item.setCompanyMainPhone(QStringLiteral("l"));
        item.setRadioPhoneNumber(QStringLiteral("m"));
        QContact contact;
        ContactPhoneNumbers::easPhoneNumbersToContacts(contact, item);
        const QStringList places { QStringLiteral("a 0 0"), QStringLiteral("b 2 0"), QStringLiteral("c 1 0"),
            QStringLiteral("d 1 1"), QStringLiteral("e 0 1"), QStringLiteral("f 0 2"),
            QStringLiteral("g 1 2"), QStringLiteral("h 0 3"), QStringLiteral("i 0 6"),
            QStringLiteral("j 0 7"), QStringLiteral("k 1 10"), QStringLiteral("l 1 1000"),
            QStringLiteral("m 0 1001") };
        QCOMPARE(listing(contact), places);

        QContact again;
        ContactPhoneNumbers::easPhoneNumbersToContacts(again, read(contact));
        QCOMPARE(listing(again), places);
        // A second time changes nothing.
        ContactPhoneNumbers::easPhoneNumbersToContacts(contact, item);
        QCOMPARE(listing(contact), places);
    }

    void aNewNumberKeepsTheDetail()
    {
        QContact contact;
        add(contact, QStringLiteral("old"), { 0 }, { 1 });
        Phone phone = contact.detail<Phone>();
        phone.setDetailUri(QStringLiteral("urn:the:users:own"));
        contact.saveDetail(&phone);
        EasContactsItem item;
        item.setMobilePhoneNumber(QStringLiteral("new"));
        ContactPhoneNumbers::easPhoneNumbersToContacts(contact, item);
        QCOMPARE(contact.details<Phone>().size(), 1);
        QCOMPARE(contact.detail<Phone>().number(), QStringLiteral("new"));
        QCOMPARE(contact.detail<Phone>().detailUri(), QStringLiteral("urn:the:users:own"));
        QCOMPARE(contact.detail<Phone>().key(), phone.key());
    }

    void aNumberThatFitsLooselyIsTakenOver_data()
    {
        QTest::addColumn<QList<int>>("contexts");
        QTest::addColumn<QList<int>>("subTypes");
        QTest::newRow("no context") << QList<int>() << QList<int> { Phone::SubTypeMobile };
        QTest::newRow("another context")
            << QList<int> { QContactDetail::ContextOther } << QList<int> { Phone::SubTypeMobile };
        QTest::newRow("two contexts")
            << QList<int> { QContactDetail::ContextOther, QContactDetail::ContextHome }
            << QList<int> { Phone::SubTypeMobile };
        QTest::newRow("two subtypes") << QList<int> { QContactDetail::ContextHome }
                                      << QList<int> { Phone::SubTypeVoice, Phone::SubTypeMobile };
    }

    void aNumberThatFitsLooselyIsTakenOver()
    {
        QFETCH(QList<int>, contexts);
        QFETCH(QList<int>, subTypes);
        QContact contact;
        add(contact, QStringLiteral("old"), contexts, subTypes);
        QCOMPARE(read(contact).mobilePhoneNumber(), QStringLiteral("old"));
        const int key = contact.detail<Phone>().key();
        EasContactsItem item;
        item.setMobilePhoneNumber(QStringLiteral("new"));
        ContactPhoneNumbers::easPhoneNumbersToContacts(contact, item);
        QCOMPARE(listing(contact), QStringList(QStringLiteral("new 0 1")));
        QCOMPARE(contact.detail<Phone>().key(), key);
    }

    void anExactFitComesFirst()
    {
        QContact contact;
        add(contact, QStringLiteral("loose"), {}, { Phone::SubTypeMobile });
        add(contact, QStringLiteral("exact"), { QContactDetail::ContextHome }, { Phone::SubTypeMobile });
        const EasContactsItem item = read(contact);
        QCOMPARE(item.mobilePhoneNumber(), QStringLiteral("exact"));
        QCOMPARE(item.business2PhoneNumber(), QStringLiteral("loose"));
    }

    void aNumberWithoutASubtypeIsALandline()
    {
        QContact contact;
        add(contact, QStringLiteral("plain"), {}, {});
        add(contact, QStringLiteral("voice"), { QContactDetail::ContextWork }, { Phone::SubTypeVoice });
        const EasContactsItem item = read(contact);
        QCOMPARE(item.homePhoneNumber(), QStringLiteral("plain"));
        QCOMPARE(item.businessPhoneNumber(), QStringLiteral("voice"));
    }

    void whatTheServerNoLongerHasIsRemoved()
    {
        QContact contact;
        add(contact, QStringLiteral("exact"), { QContactDetail::ContextHome }, { Phone::SubTypeMobile });
        add(contact, QStringLiteral("loose"), {}, { Phone::SubTypeFax });
        EasContactsItem item;
        item.setHomePhoneNumber(QStringLiteral("home"));
        ContactPhoneNumbers::easPhoneNumbersToContacts(contact, item);
        QCOMPARE(listing(contact), QStringList(QStringLiteral("home 0 0")));
    }

    void ofFourMobileNumbersTwoAreSpare()
    {
        QContact contact;
        for (const char *number : { "1", "2", "3", "4" })
            add(contact, QString::fromLatin1(number), { QContactDetail::ContextHome },
                { Phone::SubTypeMobile });
        const LogCollector log;
        const EasContactsItem item = read(contact);
        QCOMPARE(item.mobilePhoneNumber(), QStringLiteral("1"));
        QCOMPARE(item.business2PhoneNumber(), QStringLiteral("2"));
        QVERIFY(log.contains(QtWarningMsg,
            { QStringLiteral("we have 2 more phone numbers that can't be synced:"), QStringLiteral("3"),
                QStringLiteral("4") }));
    }
};

FENNEL_REGISTER_TEST(ContactPhoneNumbersTest)
#include "contactphonenumberstest.moc"
