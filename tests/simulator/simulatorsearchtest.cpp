// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulatorclient.h"
#include "support/testmain.h"

#include <QtTest>

using namespace Simulator;

Q_DECLARE_METATYPE(WbxmlNode)

/** @short Search and Find: what is found, in which order, which part of it, and what is refused. */
class SimulatorSearchTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<ExchangeServer> mServer;
    std::unique_ptr<SimulatorClient> mClient;
    QString mInbox;
    QString mProjects;

    static QByteArray message(const QString &subject, const QByteArray &body, const char *from = "eva")
    {
        return "From: " + QByteArray(from) + "@example.org\r\nTo: user@example.com\r\nSubject: "
            + subject.toUtf8() + "\r\nContent-Type: text/plain; charset=utf-8\r\n\r\n" + body + "\r\n";
    }

    void deliver(const QString &folder, const QString &subject, const QByteArray &body, int day)
    {
        mServer->mailbox().deliver(
            folder, message(subject, body), QDateTime(QDate(2026, 11, day), QTime(10, 0), Qt::UTC));
    }

    static QString searchXml(const QString &conditions, const QString &options = QString())
    {
        return QStringLiteral("<Search xmlns=\"Search\" xmlns:A=\"AirSync\" xmlns:E=\"Email\"><Store>"
                              "<Name>Mailbox</Name><Query><And>%1<A:Class>Email</A:Class></And></Query>"
                              "<Options>%2</Options></Store></Search>")
            .arg(conditions, options);
    }
    static QString peopleXml(const QString &text, const QString &options = QString())
    {
        return QStringLiteral("<Search xmlns=\"Search\"><Store><Name>GAL</Name><Query>%1</Query>"
                              "<Options>%2</Options></Store></Search>")
            .arg(text, options);
    }
    static QString findXml(const QString &criterion, const QString &id = QStringLiteral("1"))
    {
        return QStringLiteral("<Find xmlns=\"Find\" xmlns:A=\"AirSync\"><SearchId>%1</SearchId>"
                              "<ExecuteSearch>%2</ExecuteSearch></Find>")
            .arg(id, criterion);
    }
    static QString mailCriterion(const QString &query, const QString &options = QString())
    {
        return QStringLiteral("<MailBoxSearchCriterion><Query>%1<A:Class>Email</A:Class></Query>"
                              "<Options>%2</Options></MailBoxSearchCriterion>")
            .arg(query, options);
    }

    WbxmlNode search(const QString &xml)
    {
        return mClient->post(QStringLiteral("Search"), xml).document.at(QStringLiteral("Response/Store"));
    }
    WbxmlNode find(const QString &xml) { return mClient->post(QStringLiteral("Find"), xml).document; }
    static QStringList texts(const WbxmlNode &store, const QString &property)
    {
        QStringList found;
        const QVector<WbxmlNode> results = store.all(QStringLiteral("Result"));
        for (const WbxmlNode &result : results) {
            if (result.has(QStringLiteral("Properties/") + property))
                found.append(result.text(QStringLiteral("Properties/") + property));
        }
        return found;
    }
    static QStringList subjects(const WbxmlNode &store)
    {
        return texts(store, QStringLiteral("Email:Subject"));
    }
    static QStringList names(const WbxmlNode &store)
    {
        return texts(store, QStringLiteral("GAL:DisplayName"));
    }
    static QString status(const WbxmlNode &node) { return node.text(QStringLiteral("Status")); }
    void syncFolders()
    {
        mClient->post(QStringLiteral("FolderSync"),
            QStringLiteral("<FolderSync xmlns=\"FolderHierarchy\"><SyncKey>0</SyncKey></FolderSync>"));
    }

    static Person person(const char *first, const char *last, const char *address)
    {
        Contact contact;
        contact.setText(QStringLiteral("FirstName"), QString::fromUtf8(first))
            .setText(QStringLiteral("LastName"), QString::fromUtf8(last))
            .setText(QStringLiteral("Email1Address"), QString::fromUtf8(address));
        return Person::fromContact(contact);
    }

private Q_SLOTS:
    void init()
    {
        mServer = std::make_unique<ExchangeServer>();
        QVERIFY(mServer->start());
        mClient = std::make_unique<SimulatorClient>(*mServer);
        mInbox = mServer->mailbox().inboxId();
        mProjects = mServer->mailbox().addFolder(QStringLiteral("Projects"), UserMailFolder, mInbox);
        deliver(mInbox, QStringLiteral("Übersicht"), "the plan", 1);
        deliver(mInbox, QStringLiteral("Lunch"), "soup plan", 2);
        deliver(mProjects, QStringLiteral("Budget"), "another PLAN", 3);
        syncFolders();
    }

    void cleanup()
    {
        QCOMPARE(mServer->failures(), QStringList());
        mClient.reset();
        mServer.reset();
    }

    void mailIsFoundByItsTextsNewestFirst_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("found");
        QTest::newRow("body") << "plan" << QStringList { "Budget", "Lunch", "Übersicht" };
        QTest::newRow("subject") << "übersicht" << QStringList { "Übersicht" };
        QTest::newRow("all words") << "soup plan" << QStringList { "Lunch" };
        QTest::newRow("sender") << "eva@" << QStringList { "Budget", "Lunch", "Übersicht" };
        QTest::newRow("nothing") << "xyzzy" << QStringList();
    }

    void mailIsFoundByItsTextsNewestFirst()
    {
        QFETCH(QString, text);
        const WbxmlNode store = search(searchXml(QStringLiteral("<FreeText>%1</FreeText>").arg(text)));
        QCOMPARE(status(store), QStringLiteral("1"));
        QTEST(subjects(store), "found");
        QCOMPARE(store.text(QStringLiteral("Total")).toInt(), subjects(store).size());
    }

    void mailIsFoundByDateAndFolder()
    {
        const QString between = QStringLiteral(
            "<GreaterThan><E:DateReceived/><Value>2026-11-01T12:00:00.000Z</Value></GreaterThan>"
            "<LessThan><E:DateReceived/><Value>2026-11-03T09:00:00.000Z</Value></LessThan>");
        QCOMPARE(subjects(search(searchXml(between))), QStringList { "Lunch" });
        const QString inbox = QStringLiteral("<A:CollectionId>%1</A:CollectionId>").arg(mInbox);
        QCOMPARE(subjects(search(searchXml(inbox))), QStringList({ "Lunch", "Übersicht" }));
        QCOMPARE(subjects(search(searchXml(inbox, QStringLiteral("<DeepTraversal/>")))),
            QStringList({ "Budget", "Lunch", "Übersicht" }));
    }

    void aResultCanBeFetchedByItsLongIdentifier()
    {
        const WbxmlNode result =
            search(searchXml(QStringLiteral("<FreeText>Lunch</FreeText>"))).at(QStringLiteral("Result"));
        QCOMPARE(result.text(QStringLiteral("AirSync:CollectionId")), mInbox);
        const WbxmlNode reply =
            mClient
                ->post(QStringLiteral("ItemOperations"),
                    QStringLiteral("<ItemOperations xmlns=\"ItemOperations\"><Fetch><Store>Mailbox</Store>"
                                   "<LongId xmlns=\"Search\">%1</LongId></Fetch></ItemOperations>")
                        .arg(result.text(QStringLiteral("LongId"))))
                .document;
        QCOMPARE(
            reply.text(QStringLiteral("Response/Fetch/Properties/Email:Subject")), QStringLiteral("Lunch"));
    }

    void aPartIsToldWithItsRange()
    {
        const auto part = [this](const char *range) {
            return search(searchXml(QStringLiteral("<FreeText>plan</FreeText>"),
                QStringLiteral("<Range>%1</Range>").arg(QLatin1String(range))));
        };
        WbxmlNode store = part("0-1");
        QCOMPARE(subjects(store), QStringList({ "Budget", "Lunch" }));
        QCOMPARE(store.text(QStringLiteral("Range")), QStringLiteral("0-1"));
        QCOMPARE(store.text(QStringLiteral("Total")), QStringLiteral("3"));
        store = part("2-9");
        QCOMPARE(subjects(store), QStringList { "Übersicht" });
        QCOMPARE(store.text(QStringLiteral("Range")), QStringLiteral("2-2"));
        QCOMPARE(status(part("3-9")), QStringLiteral("12"));
    }

    void aLaterPartIsOfWhatWasFoundUnlessItIsToBeFoundAnew()
    {
        const auto part = [this](const QString &options) {
            return subjects(search(searchXml(QStringLiteral("<FreeText>plan</FreeText>"), options)));
        };
        QCOMPARE(part(QStringLiteral("<Range>0-0</Range>")), QStringList { "Budget" });
        deliver(mInbox, QStringLiteral("New"), "plan", 4);
        QCOMPARE(part(QStringLiteral("<Range>1-1</Range>")), QStringList { "Lunch" });
        QCOMPARE(part(QStringLiteral("<Range>1-1</Range><RebuildResults/>")), QStringList { "Budget" });
    }

    void whatCannotBeSearchedHasItsStatus_data()
    {
        QTest::addColumn<QString>("xml");
        QTest::addColumn<QString>("expected");
        QTest::newRow("an unknown store")
            << QStringLiteral("<Search xmlns=\"Search\"><Store><Name>Moon</Name></Store></Search>") << "2";
        QTest::newRow("no conditions")
            << QStringLiteral("<Search xmlns=\"Search\"><Store><Name>Mailbox</Name></Store></Search>") << "2";
        QTest::newRow("nobody") << peopleXml(QString()) << "2";
        QTest::newRow("an unknown folder")
            << searchXml(QStringLiteral("<A:CollectionId>99</A:CollectionId>")) << "6";
        QTest::newRow("too many words")
            << searchXml(QStringLiteral("<FreeText>%1</FreeText>").arg(QStringLiteral("a ").repeated(60)))
            << "8";
    }

    void whatCannotBeSearchedHasItsStatus()
    {
        QFETCH(QString, xml);
        QTEST(status(search(xml)), "expected");
    }

    void aDeviceWithOldFoldersHasToRefreshThem()
    {
        mServer->mailbox().addFolder(QStringLiteral("New"));
        const QString all = searchXml(QStringLiteral("<FreeText>plan</FreeText>"));
        QCOMPARE(status(search(all)), QStringLiteral("11"));
        mClient->setVersion(QStringLiteral("16.1"));
        QCOMPARE(status(find(findXml(mailCriterion(QString())))), QStringLiteral("3"));
        syncFolders();
        QCOMPARE(status(search(all)), QStringLiteral("1"));
    }

    void peopleAreFoundByPartsOfNames()
    {
        mServer->changeDirectory([](Directory &directory) {
            directory.add(person("Eva", "Müller", "eva@example.org"));
            directory.add(person("Jürgen", "Müller-Lüdenscheidt", "jl@example.org"));
            directory.add(person("Muriel", "Eden", "me@example.org"));
        });
        const auto found = [this](const char *text) {
            return names(search(peopleXml(QString::fromUtf8(text))));
        };
        QCOMPARE(found("mü"), QStringList({ "Eva Müller", "Jürgen Müller-Lüdenscheidt" }));
        QCOMPARE(found("lüden jü"), QStringList { "Jürgen Müller-Lüdenscheidt" });
        QCOMPARE(found("me@exam"), QStringList { "Muriel Eden" });
        QCOMPARE(found("user"), QStringList { "user" });
        QCOMPARE(found("nobody"), QStringList());
        const WbxmlNode part = search(peopleXml(QStringLiteral("m"), QStringLiteral("<Range>1-1</Range>")));
        QCOMPARE(names(part), QStringList { "Jürgen Müller-Lüdenscheidt" });
        QCOMPARE(part.text(QStringLiteral("Range")), QStringLiteral("1-1"));
        QCOMPARE(part.text(QStringLiteral("Total")), QStringLiteral("3"));
    }

    void usersStandInTheList()
    {
        mServer->addUser(QStringLiteral("alice"), QStringLiteral("secret"));
        mServer->addUser(QStringLiteral("bob"), QStringLiteral("secret"));
        mClient->setCredentials(QStringLiteral("alice"), QStringLiteral("secret"));
        QCOMPARE(texts(search(peopleXml(QStringLiteral("bob"))), QStringLiteral("GAL:EmailAddress")),
            QStringList { "bob@example.com" });
        QCOMPARE(names(search(peopleXml(QStringLiteral("user")))), QStringList());
    }

    void picturesComeAsTheyAreWanted()
    {
        mServer->changeDirectory([](Directory &directory) {
            directory.add(person("A", "One", "a@example.org"));
            directory.add(person("B", "One", "b@example.org").setPicture("small"));
            directory.add(person("C", "One", "c@example.org").setPicture(QByteArray(500, 'x')));
            directory.add(person("D", "One", "d@example.org").setPicture("more"));
        });
        WbxmlNode store = search(peopleXml(QStringLiteral("one")));
        QVERIFY(!store.has(QStringLiteral("Result/Properties/GAL:Picture")));
        store = search(peopleXml(QStringLiteral("one"),
            QStringLiteral("<Picture><MaxSize>100</MaxSize><MaxPictures>1</MaxPictures></Picture>")));
        QCOMPARE(
            texts(store, QStringLiteral("GAL:Picture/Status")), QStringList({ "173", "1", "174", "175" }));
        QCOMPARE(texts(store, QStringLiteral("GAL:Picture/Data")),
            QStringList { QString::fromLatin1(QByteArray("small").toBase64()) });
    }

    void aFindTellsPlaceAndPreview()
    {
        mClient->setVersion(QStringLiteral("16.1"));
        const WbxmlNode reply = find(findXml(mailCriterion(QStringLiteral("<FreeText>lunch</FreeText>"))));
        QCOMPARE(status(reply), QStringLiteral("1"));
        const WbxmlNode response = reply.at(QStringLiteral("Response"));
        QCOMPARE(status(response), QStringLiteral("1"));
        QCOMPARE(subjects(response), QStringList { "Lunch" });
        QCOMPARE(texts(response, QStringLiteral("Preview")), QStringList { "soup plan" });
        const WbxmlNode result = response.at(QStringLiteral("Result"));
        QCOMPARE(result.text(QStringLiteral("AirSync:CollectionId")), mInbox);
        QVERIFY(mServer->mailbox().item(result.text(QStringLiteral("AirSync:ServerId"))));
        QCOMPARE(response.text(QStringLiteral("Total")), QStringLiteral("1"));
    }

    void aFindGoesOnUnderItsIdentifier()
    {
        mClient->setVersion(QStringLiteral("16.1"));
        const auto part = [this](const char *range, const char *id) {
            return find(findXml(mailCriterion(QStringLiteral("<FreeText>plan</FreeText>"),
                                    QStringLiteral("<Range>%1</Range>").arg(QLatin1String(range))),
                            QLatin1String(id)))
                .at(QStringLiteral("Response"));
        };
        QCOMPARE(status(part("1-1", "a")), QStringLiteral("4"));
        QCOMPARE(subjects(part("0-0", "a")), QStringList { "Budget" });
        QCOMPARE(subjects(part("1-1", "a")), QStringList { "Lunch" });
        QCOMPARE(status(part("1-1", "b")), QStringLiteral("4"));
    }

    void aFindOfPeopleHasPictures()
    {
        mServer->changeDirectory([](Directory &directory) {
            directory.add(person("Eva", "Müller", "eva@example.org").setPicture("small"));
        });
        mClient->setVersion(QStringLiteral("16.1"));
        const WbxmlNode response =
            find(findXml(QStringLiteral("<GalSearchCriterion><Query>eva</Query><Options>"
                                        "<Picture><MaxPictures>1</MaxPictures></Picture></Options>"
                                        "</GalSearchCriterion>")))
                .at(QStringLiteral("Response"));
        QCOMPARE(names(response), QStringList { "Eva Müller" });
        QCOMPARE(texts(response, QStringLiteral("GAL:Picture/Status")), QStringList { "1" });
    }

    void aFindIsRefusedWhereItSaysTooLittle()
    {
        mClient->setVersion(QStringLiteral("16.1"));
        QCOMPARE(status(find(findXml(QString()))), QStringLiteral("2"));
        QCOMPARE(status(find(findXml(mailCriterion(QString()), QString()))), QStringLiteral("2"));
        mClient->setVersion(QStringLiteral("16.0"));
        QCOMPARE(mClient->postBytes(QStringLiteral("Find"), QByteArray()).status, 501);
    }

    void aVCardFileIsTheDirectory()
    {
        bool read = false;
        mServer->changeDirectory([&read](Directory &directory) {
            QVERIFY(!directory.addCards("nobody"));
            read = directory.addCards("BEGIN:VCARD\r\nVERSION:3.0\r\nN:Müller;Eva;;;\r\nFN:Eva Müller\r\n"
                                      "EMAIL:eva@example.org\r\nEND:VCARD\r\n");
        });
        QVERIFY(read);
        QCOMPARE(names(search(peopleXml(QStringLiteral("eva")))), QStringList { "Eva Müller" });
    }
};

FENNEL_REGISTER_TEST(SimulatorSearchTest)
#include "simulatorsearchtest.moc"
