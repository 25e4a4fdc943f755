// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/commandscene.h"
#include "client/contactview.h"
#include "client/exitstatus.h"
#include "storages/contacts/contactstoremanager.h"
#include "support/testmain.h"

#include <QtContacts/QContactEmailAddress>
#include <QtContacts/QContactName>
#include <QtContacts/QContactOrganization>
#include <QtContacts/QContactPhoneNumber>

#include <QJsonArray>

QTCONTACTS_USE_NAMESPACE

/** Contacts as the command line shows and changes them. */
class ContactCommandsTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<CommandScene> mScene;

    static int run(const QString &line) { return CommandScene::run(line.split(QLatin1Char('|'))); }

    QList<QContact> contacts() const
    {
        ContactBook book(mScene->accountId());
        QList<QContact> all;
        return book.open() && book.contacts({}, &all) ? all : QList<QContact>();
    }
    QJsonObject only() const
    {
        const QList<QContact> all = contacts();
        return all.size() == 1 ? ContactView::describeWhole(all.first()) : QJsonObject();
    }
    /** Puts a contact into the account's folder as the engine would, with details that no option makes. */
    bool store(QContact contact) const
    {
        ContactBook book(mScene->accountId());
        if (!book.open())
            return false;
        const auto folder = book.collection(QString());
        if (!folder)
            return false;
        contact.setCollectionId(folder->id());
        return book.save(&contact);
    }
    QContact onlyContact() const { return contacts().value(0); }
    QString onlyId() const { return ContactBook::number(onlyContact()); }
    int edit(const QString &options) const
    {
        return run(QStringLiteral("contact|edit|%1|%2").arg(onlyId(), options));
    }
    /** An address of a contact by the field that the server has for it. */
    static QString address(const QContact &contact, const QString &uri)
    {
        const QList<QContactEmailAddress> details = contact.details<QContactEmailAddress>();
        for (const QContactEmailAddress &detail : details) {
            if (detail.detailUri() == uri)
                return detail.emailAddress();
        }
        return {};
    }
    static QContact person(
        const QString &first, const QString &middle, const QString &last, const QString &suffix = QString())
    {
        QContactName name;
        name.setFirstName(first);
        name.setMiddleName(middle);
        name.setLastName(last);
        name.setSuffix(suffix);
        QContact contact;
        contact.saveDetail(&name);
        return contact;
    }
    static QString parts(const QContact &contact)
    {
        const auto name = contact.detail<QContactName>();
        return QStringList { name.firstName(), name.middleName(), name.lastName(), name.suffix() }.join(
            QLatin1Char('|'));
    }
    QStringList names() const
    {
        QStringList names;
        const QList<QContact> all = contacts();
        for (const QContact &contact : all)
            names.append(ContactView::name(contact));
        return names;
    }

private Q_SLOTS:
    void init()
    {
        mScene = std::make_unique<CommandScene>();
        QVERIFY(mScene->isReady());
        QVERIFY(mScene->addContactFolder(QStringLiteral("Contacts")));
        // Of another account, and so not to be seen.
        QVERIFY(mScene->addContactFolder(QStringLiteral("Foreign"), 4711));
    }

    void cleanup()
    {
        const std::unique_ptr<QContactManager> manager(ContactStoreManager::create(nullptr));
        for (const QContactCollection &collection : manager->collections()) {
            if (!collection.extendedMetaData(QStringLiteral("ApplicationName")).toString().isEmpty())
                manager->removeCollection(collection.id());
        }
        mScene.reset();
    }

    void aContactIsAddedWhole()
    {
        QCOMPARE(CommandScene::run(
                     "contact|add|--name|Anna Maria Öl|--company|Mill|--title|Boss|--email|a@example.com|"
                     "--email|b@example.com|--mobile|+49 1|--work-phone|22|--fax|33|"
                     "--birthday|1980-05-01|--note|likes tea"),
            int(ExitSuccess));
        const QJsonObject contact = only();
        QCOMPARE(contact.value(QStringLiteral("name")).toString(), QStringLiteral("Anna Maria Öl"));
        QCOMPARE(contact.value(QStringLiteral("company")).toString(), QStringLiteral("Mill"));
        QCOMPARE(contact.value(QStringLiteral("title")).toString(), QStringLiteral("Boss"));
        QCOMPARE(contact.value(QStringLiteral("emails")).toArray(),
            QJsonArray({ QStringLiteral("a@example.com"), QStringLiteral("b@example.com") }));
        QStringList phones;
        for (const QJsonValue &phone : contact.value(QStringLiteral("phones")).toArray())
            phones.append(phone.toString());
        phones.sort();
        QCOMPARE(phones,
            QStringList({ QStringLiteral("+49 1 (home mobile)"), QStringLiteral("22 (work)"),
                QStringLiteral("33 (work fax)") }));
        QCOMPARE(contact.value(QStringLiteral("birthday")).toString(), QStringLiteral("1980-05-01"));
        QCOMPARE(
            contact.value(QStringLiteral("notes")).toArray(), QJsonArray { QStringLiteral("likes tea") });
    }

    void theSecondAddressHasTheServersSecondField()
    {
        QCOMPARE(CommandScene::run("contact|add|--name|A|--email|a@example.com|--email|b@example.com"),
            int(ExitSuccess));
        QCOMPARE(address(onlyContact(), QString()), QStringLiteral("a@example.com"));
        QCOMPARE(address(onlyContact(), QStringLiteral("urn:as:contact:EmailAddress2")),
            QStringLiteral("b@example.com"));
    }

    void anEditLeavesAloneWhatItDoesNotName()
    {
        QCOMPARE(
            CommandScene::run("contact|add|--name|Anna Öl|--email|a@example.com|--mobile|1|--work-phone|2"),
            int(ExitSuccess));
        const QString id = only().value(QStringLiteral("id")).toString();
        QCOMPARE(run(QStringLiteral("contact|edit|%1|--mobile|9|--note|new").arg(id)), int(ExitSuccess));
        QJsonObject contact = only();
        QCOMPARE(contact.value(QStringLiteral("name")).toString(), QStringLiteral("Anna Öl"));
        QCOMPARE(contact.value(QStringLiteral("emails")).toArray().size(), 1);
        QCOMPARE(contact.value(QStringLiteral("phones")).toArray().size(), 2);
        QVERIFY(
            contact.value(QStringLiteral("phones")).toArray().contains(QStringLiteral("9 (home mobile)")));
        // An empty text takes away.
        QCOMPARE(run(QStringLiteral("contact|edit|%1|--mobile||--note||--email|").arg(id)), int(ExitSuccess));
        contact = only();
        QCOMPARE(contact.value(QStringLiteral("phones")).toArray().toVariantList(),
            QVariantList { QStringLiteral("2 (work)") });
        QVERIFY(contact.value(QStringLiteral("emails")).toArray().isEmpty());
        QVERIFY(contact.value(QStringLiteral("notes")).toArray().isEmpty());
    }

    void aNewNameTakesThePlaceOfTheWholeOldOne_data()
    {
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<QString>("options");
        QTest::addColumn<QString>("expected");
        QTest::newRow("the name as it is shown changes nothing") << QString() << "--name|Anna Maria Öl"
                                                                 << "Anna|Maria|Öl|";
        QTest::newRow("a suffix is no last name") << "Jr."
                                                  << "--name|Anna Maria Öl Jr."
                                                  << "Anna|Maria|Öl|Jr.";
        QTest::newRow("another name keeps no middle name") << QString() << "--name|Bea Ohm"
                                                           << "Bea||Ohm|";
        QTest::newRow("a middle name alone") << "Jr."
                                             << "--middle-name|Eva"
                                             << "Anna|Eva|Öl|Jr.";
        QTest::newRow("an empty part goes") << "Jr."
                                            << "--suffix|"
                                            << "Anna|Maria|Öl|";
    }

    void aNewNameTakesThePlaceOfTheWholeOldOne()
    {
        QFETCH(QString, suffix);
        QFETCH(QString, options);
        QFETCH(QString, expected);
        QVERIFY(store(person(QStringLiteral("Anna"), QStringLiteral("Maria"), QStringLiteral("Öl"), suffix)));
        QCOMPARE(edit(options), int(ExitSuccess));
        QCOMPARE(parts(onlyContact()), expected);
    }

    void aCompanyThatGoesTakesNothingElseAlong_data()
    {
        QTest::addColumn<QString>("options");
        QTest::newRow("the title") << "--title|";
        QTest::newRow("the company") << "--company|";
        QTest::newRow("both") << "--title||--company|";
    }

    void aCompanyThatGoesTakesNothingElseAlong()
    {
        QFETCH(QString, options);
        QContact contact = person(QStringLiteral("Anna"), QString(), QStringLiteral("Öl"));
        QContactOrganization organization;
        organization.setTitle(QStringLiteral("Boss"));
        organization.setDepartment({ QStringLiteral("Sales") });
        organization.setAssistantName(QStringLiteral("Bob"));
        organization.setLocation(QStringLiteral("Room 7"));
        contact.saveDetail(&organization);
        QVERIFY(store(contact));
        QCOMPARE(edit(options), int(ExitSuccess));
        const auto left = onlyContact().detail<QContactOrganization>();
        QCOMPARE(left.department(), QStringList(QStringLiteral("Sales")));
        QCOMPARE(left.assistantName(), QStringLiteral("Bob"));
        QCOMPARE(left.location(), QStringLiteral("Room 7"));
    }

    void anAddressIsChangedInItsOwnField_data()
    {
        QTest::addColumn<QString>("options");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("the first alone") << "--email|n@example.com" << QStringList { "n@", "b@", "c@" };
        QTest::newRow("the first two")
            << "--email|m@example.com|--email|n@example.com" << QStringList { "m@", "n@", "c@" };
        QTest::newRow("the third alone") << "--email3|n@example.com" << QStringList { "a@", "b@", "n@" };
        QTest::newRow("the second goes") << "--email2|" << QStringList { "a@", "", "c@" };
    }

    void anAddressIsChangedInItsOwnField()
    {
        QFETCH(QString, options);
        QFETCH(QStringList, expected);
        QCOMPARE(CommandScene::run("contact|add|--name|A|--email|a@example.com|--email|b@example.com|"
                                   "--email|c@example.com"),
            int(ExitSuccess));
        QCOMPARE(edit(options), int(ExitSuccess));
        const QContact contact = onlyContact();
        const QStringList fields { QString(), QStringLiteral("urn:as:contact:EmailAddress2"),
            QStringLiteral("urn:as:contact:EmailAddress3") };
        for (int i = 0; i < fields.size(); ++i) {
            const QString wanted =
                expected.at(i).isEmpty() ? QString() : expected.at(i) + QStringLiteral("example.com");
            QCOMPARE(address(contact, fields.at(i)), wanted);
        }
    }

    void aFourthAddressIsRefused()
    {
        QCOMPARE(CommandScene::run("contact|add|--name|A|--email|a|--email|b|--email|c|--email|d"),
            int(ExitUsage));
        QVERIFY(names().isEmpty());
    }

    void aNumberWithoutAKindIsALandline()
    {
        QContact contact = person(QStringLiteral("Anna"), QString(), QStringLiteral("Öl"));
        QContactPhoneNumber number;
        number.setContexts(QContactDetail::ContextHome);
        number.setNumber(QStringLiteral("1"));
        contact.saveDetail(&number);
        QVERIFY(store(contact));
        QCOMPARE(edit(QStringLiteral("--home-phone|2")), int(ExitSuccess));
        const QList<QContactPhoneNumber> numbers = onlyContact().details<QContactPhoneNumber>();
        QCOMPARE(numbers.size(), 1);
        QCOMPARE(numbers.first().number(), QStringLiteral("2"));
    }

    void aContactIsDeleted()
    {
        QCOMPARE(CommandScene::run("contact|add|--name|Anna"), int(ExitSuccess));
        QCOMPARE(run(QStringLiteral("contact|delete|") + only().value(QStringLiteral("id")).toString()),
            int(ExitSuccess));
        QVERIFY(names().isEmpty());
    }

    void contactsStandByTheirNames()
    {
        for (const char *name : { "Zoe", "Ähre", "Bob" })
            QCOMPARE(
                run(QStringLiteral("contact|add|--name|%1").arg(QString::fromUtf8(name))), int(ExitSuccess));
        QCOMPARE(names().size(), 3);
        QVERIFY(names().indexOf(QStringLiteral("Bob")) < names().indexOf(QStringLiteral("Zoe")));
        QCOMPARE(CommandScene::run("contact|list|bo"), int(ExitSuccess));
        QCOMPARE(CommandScene::run("folders|--kind|contacts"), int(ExitSuccess));
    }

    void aTextMatchesNamesAddressesAndNumbers()
    {
        QCOMPARE(CommandScene::run(
                     "contact|add|--name|Anna Öl|--company|Mill|--email|a@example.com|--mobile|+49 123"),
            int(ExitSuccess));
        const QContact contact = onlyContact();
        for (const char *text : { "", "öl", "MILL", "example.com", "49 12" })
            QVERIFY2(ContactView::matches(contact, QString::fromUtf8(text)), text);
        QVERIFY(!ContactView::matches(contact, QStringLiteral("bob")));
    }

    void contactsAreExportedAsVCard()
    {
        QCOMPARE(CommandScene::run("contact|add|--name|Anna Öl|--email|a@example.com"), int(ExitSuccess));
        QCOMPARE(CommandScene::run("contact|add|--name|Bob"), int(ExitSuccess));
        const QString path = mScene->path(QStringLiteral("out.vcf"));
        QCOMPARE(CommandScene::run({ "contact", "export", path, "--folder", "Contacts" }), int(ExitSuccess));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray cards = file.readAll();
        QCOMPARE(cards.count("BEGIN:VCARD"), 2);
        QVERIFY(cards.contains("a@example.com"));
        QVERIFY(cards.contains(QStringLiteral("Öl").toUtf8()));
        QCOMPARE(CommandScene::run({ "contact", "export", path }), int(ExitFailure));
    }

    void whatWasExportedComesBackWhole()
    {
        QCOMPARE(CommandScene::run("contact|add|--name|Anna Öl|--email|a@example.com|--email|b@example.com|"
                                   "--mobile|1|--birthday|1980-05-01|--note|likes tea"),
            int(ExitSuccess));
        QJsonObject before = only();
        const QString path = mScene->path(QStringLiteral("back.vcf"));
        QCOMPARE(CommandScene::run({ "contact", "export", path }), int(ExitSuccess));
        QCOMPARE(CommandScene::run({ "contact", "delete", onlyId() }), int(ExitSuccess));
        QCOMPARE(CommandScene::run({ "contact", "import", path }), int(ExitSuccess));
        QJsonObject after = only();
        for (QJsonObject *contact : { &before, &after })
            contact->remove(QStringLiteral("id"));
        QCOMPARE(after, before);
        QCOMPARE(address(onlyContact(), QStringLiteral("urn:as:contact:EmailAddress2")),
            QStringLiteral("b@example.com"));
    }

    void aFileThatIsNoCardIsRefused()
    {
        const QString path = mScene->path(QStringLiteral("text.vcf"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("no card") > 0);
        file.close();
        QCOMPARE(CommandScene::run({ "contact", "import", path }), int(ExitFailure));
        QCOMPARE(CommandScene::run({ "contact", "import", "/nowhere" }), int(ExitFailure));
        QVERIFY(names().isEmpty());
    }

    void aContactWithoutANameHasACard()
    {
        QContact contact;
        QContactEmailAddress email;
        email.setEmailAddress(QStringLiteral("only@example.com"));
        contact.saveDetail(&email);
        QVERIFY(store(contact));
        const QString path = mScene->path(QStringLiteral("nameless.vcf"));
        QCOMPARE(CommandScene::run({ "contact", "export", path }), int(ExitSuccess));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().contains("only@example.com"));
    }

    void aReadingIsNoName()
    {
        QContact contact = person(QStringLiteral("花子"), QString(), QStringLiteral("山田"));
        QContactName reading;
        reading.setFirstName(QStringLiteral("はなこ"));
        reading.setDetailUri(QStringLiteral("urn:as:contact:YomiName"));
        contact.saveDetail(&reading);
        QVERIFY(store(contact));
        const QString path = mScene->path(QStringLiteral("reading.vcf"));
        QCOMPARE(CommandScene::run({ "contact", "export", path }), int(ExitSuccess));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray cards = file.readAll();
        QCOMPARE(cards.count("\nN"), 1);
        QVERIFY(cards.contains(QStringLiteral("山田").toUtf8()));
        QCOMPARE(only().value(QStringLiteral("reading")).toString(), QStringLiteral("はなこ"));
    }

    void wrongUsageIsRefusedAndChangesNothing_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("exit");
        QTest::newRow("nobody") << "contact|add" << int(ExitUsage);
        QTest::newRow("only a note") << "contact|add|--note|x" << int(ExitUsage);
        QTest::newRow("no birthday") << "contact|add|--name|A|--birthday|May" << int(ExitUsage);
        QTest::newRow("an unknown option") << "contact|add|--name|A|--shoe|42" << int(ExitUsage);
        QTest::newRow("the folder of another account")
            << "contact|add|--name|A|--folder|Foreign" << int(ExitNotFound);
        QTest::newRow("an unknown folder in a list") << "contact|list|--folder|None" << int(ExitNotFound);
        QTest::newRow("an unknown contact") << "contact|show|99999" << int(ExitNotFound);
        QTest::newRow("an unknown contact to edit") << "contact|edit|99999|--name|A" << int(ExitNotFound);
        QTest::newRow("an unknown contact to delete") << "contact|delete|99999" << int(ExitNotFound);
        QTest::newRow("an unknown kind of folder") << "folders|--kind|tasks" << int(ExitUsage);
        QTest::newRow("an unknown folder of that kind")
            << "folder|delete|None|--kind|contacts" << int(ExitNotFound);
        QTest::newRow("an unknown folder to rename")
            << "folder|rename|None|New|--kind|contacts" << int(ExitNotFound);
        QTest::newRow("an unknown parent")
            << "folder|create|New|--kind|contacts|--parent|None" << int(ExitNotFound);
        QTest::newRow("a folder without a name") << "folder|create" << int(ExitUsage);
    }

    void wrongUsageIsRefusedAndChangesNothing()
    {
        QFETCH(QString, line);
        QFETCH(int, exit);
        QCOMPARE(run(line), exit);
        QVERIFY(names().isEmpty());
    }

    void nothingToChangeIsSaidSo()
    {
        QCOMPARE(CommandScene::run("contact|add|--name|Anna"), int(ExitSuccess));
        QCOMPARE(run(QStringLiteral("contact|edit|") + only().value(QStringLiteral("id")).toString()),
            int(ExitUsage));
    }
};

FENNEL_REGISTER_TEST(ContactCommandsTest)
#include "contactcommandstest.moc"
