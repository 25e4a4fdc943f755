// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulatorclient.h"
#include "support/testmain.h"

#include "simulator/eventitem.h"
#include "simulator/protocolversion.h"

#include <QtTest>

using namespace Simulator;

/** People and their half hours, as a client sees them. */
class SimulatorAvailabilityTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        mServer = std::make_unique<ExchangeServer>();
        QVERIFY(mServer->start());
        mServer->addUser(QStringLiteral("alice"), QStringLiteral("secret"));
        mServer->addUser(QStringLiteral("bob"), QStringLiteral("secret"));
        mClient = std::make_unique<SimulatorClient>(*mServer);
        mClient->setCredentials(QStringLiteral("alice"), QStringLiteral("secret"));
    }

    void cleanup()
    {
        mClient.reset();
        mServer.reset();
    }

    void eachPersonHasItsHalfHours_data()
    {
        QTest::addColumn<QString>("version");
        for (const int version : protocolVersions()) {
            if (version >= Version140)
                QTest::newRow(qPrintable(versionText(version))) << versionText(version);
        }
    }

    void eachPersonHasItsHalfHours()
    {
        QFETCH(QString, version);
        mClient->setVersion(version);
        Mailbox &bob = mServer->mailbox(QStringLiteral("bob"));
        bob.addItem(bob.folderOfType(CalendarFolder).id,
            EventItem::make(
                Event::timed(QStringLiteral("Talk"), "UTC", QDateTime(QDate(2026, 5, 4), QTime(9, 0)), 60)));
        QCOMPARE(ask({ "bob@example.com", "nobody@example.com", "ALICE@example.com" }),
            QStringList({ "1", "bob@example.com 1 bob 1 002200", "nobody@example.com 4",
                "ALICE@example.com 1 alice 1 000000" }));
        QCOMPARE(mServer->failures(), QStringList());
    }

    void peopleWithoutAMailboxHaveNone()
    {
        mServer->changeDirectory(
            [](Directory &directory) { directory.add(Person::user(QStringLiteral("carol"))); });
        QCOMPARE(ask({ "carol@example.com" }), QStringList({ "1", "carol@example.com 1 carol 163" }));
    }

    void aNameThatSeveralHaveIsAmbiguous()
    {
        for (const char *name : { "Carol One", "Carol Two" })
            mServer->changeDirectory([name](Directory &directory) {
                directory.add(Person()
                                  .setText(QStringLiteral("DisplayName"), QLatin1String(name))
                                  .setText(QStringLiteral("EmailAddress"),
                                      QString::fromLatin1(name).replace(' ', '.') + "@example.com"));
            });
        QCOMPARE(ask({ "carol" }), QStringList({ "1", "carol 2 Carol One" }));
        QCOMPARE(ask({ "carol two" }).at(1), QStringLiteral("carol two 1 Carol Two 163"));
    }

    void moreThanAHundredAreTooMany()
    {
        QStringList people;
        for (int i = 0; i < 101; ++i)
            people.append(QStringLiteral("bob@example.com"));
        const QStringList answer = ask(people);
        QCOMPARE(answer.size(), 102);
        QCOMPARE(answer.last(), QStringLiteral("bob@example.com 1 bob 160"));
    }

    void whatCannotBeAnsweredIsAProtocolError_data()
    {
        QTest::addColumn<QStringList>("people");
        QTest::addColumn<QString>("end");
        const QStringList bob { "bob@example.com" };
        QTest::newRow("no people") << QStringList() << "2026-05-04T11:00:00.000Z";
        QTest::newRow("reversed times") << bob << "2026-05-03T11:00:00.000Z";
        QTest::newRow("times that are none") << bob << "later";
        QTest::newRow("years") << bob << "2036-05-03T11:00:00.000Z";
    }

    void whatCannotBeAnsweredIsAProtocolError()
    {
        QFETCH(QStringList, people);
        QFETCH(QString, end);
        QCOMPARE(ask(people, end), QStringList("5"));
    }

private:
    /** The status, then a line for each answer: whom it is for, its status, name, status and half hours. */
    QStringList ask(
        const QStringList &people, const QString &end = QStringLiteral("2026-05-04T11:00:00.000Z"))
    {
        QString to;
        for (const QString &person : people)
            to += QStringLiteral("<To>%1</To>").arg(person);
        const WbxmlNode reply =
            mClient
                ->post(QStringLiteral("ResolveRecipients"),
                    QStringLiteral("<ResolveRecipients xmlns='ResolveRecipients'>%1<Options><Availability>"
                                   "<StartTime>2026-05-04T08:00:00.000Z</StartTime><EndTime>%2</EndTime>"
                                   "</Availability></Options></ResolveRecipients>")
                        .arg(to, end))
                .document;
        QStringList lines { reply.text(QStringLiteral("Status")) };
        for (const WbxmlNode &response : reply.all(QStringLiteral("Response"))) {
            QStringList words;
            for (const char *path : { "To", "Status", "Recipient/DisplayName",
                     "Recipient/Availability/Status", "Recipient/Availability/MergedFreeBusy" })
                words.append(response.text(QLatin1String(path)));
            lines.append(words.join(' ').trimmed());
        }
        return lines;
    }

    std::unique_ptr<ExchangeServer> mServer;
    std::unique_ptr<SimulatorClient> mClient;
};

FENNEL_REGISTER_TEST(SimulatorAvailabilityTest)
#include "simulatoravailabilitytest.moc"
