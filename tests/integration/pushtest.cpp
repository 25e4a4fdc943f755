// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/account/easaccount.h"
#include "application/base/clockwatch.h"
#include "application/requestmanager.h"
#include "support/bearer.h"
#include "support/contactfixture.h"
#include "support/devicecalendar.h"
#include "support/logcollector.h"
#include "support/pimlisting.h"
#include "support/syncscheduler.h"
#include "support/synctestbed.h"
#include "support/testmain.h"
#include "support/waiting.h"

#include <QtTest>
#include <qmaildisconnected.h>
#include <qmailmessagekey.h>
#include <qmailstore.h>

#include <memory>

QTCONTACTS_USE_NAMESPACE
using Simulator::Override;

namespace {

constexpr int Patience = 180000;

/** A device that is kept always on, as a scheduler on the bus wants it, and how its push stands. */
class PushBed : public SyncTestBed
{
public:
    explicit PushBed(const QStringList &versions = { QStringLiteral("14.1") })
        : SyncTestBed(versions, everyService())
    {
        QObject::connect(RequestManager::instance(), &RequestManager::pushStateChanged, this,
            [this](EasAccountId, const QVariantMap &state) { mState = state; });
    }

    /** The account has been synchronised once, and a Ping waits. */
    bool begin()
    {
        if (!isReady() || sync() != 0)
            return false;
        switchPush(true);
        return waitsForNews();
    }
    void switchPush(bool on)
    {
        Q_EMIT mScheduler.syncedExternallyStatus(uint(accountId()), QStringLiteral("fenneleas-email"), on);
    }

    QString step() const { return mState.value(QStringLiteral("nextStep")).toString(); }
    bool comesTo(const char *wanted)
    {
        return Waiting::until([&] { return step() == QLatin1String(wanted); }, Patience);
    }
    int pings() const
    {
        return const_cast<PushBed *>(this)->server().requests(QStringLiteral("Ping")).size();
    }
    /** Each sync begins with one. */
    int syncs() const
    {
        return const_cast<PushBed *>(this)->server().requests(QStringLiteral("FolderSync")).size();
    }
    /** A Ping is out, and everything before it is over. */
    bool waitsForNews(int pingsBefore = -1)
    {
        return Waiting::until(
            [&] { return step() == QLatin1String("ping") && pings() > pingsBefore && pings() > 0; },
            Patience);
    }
    bool isInStep()
    {
        return Waiting::until([&] { return deviceState() == serverState(); }, Patience);
    }
    /** What arrives is there, and the next Ping waits. */
    bool receives(const QString &subject)
    {
        const int before = pings();
        mailbox().deliver(mailbox().inboxId(), message(subject));
        return isInStep() && waitsForNews(before);
    }

private:
    SyncScheduler mScheduler;
    QVariantMap mState;
};

} // namespace

/** @short The server's changes come and the user's go by themselves, whatever the server and the network do.
 */
class PushTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatArrivesComesByItself_data()
    {
        QTest::addColumn<QString>("version");
        for (const char *version : { "12.0", "12.1", "14.0", "14.1", "16.0", "16.1" })
            QTest::newRow(version) << QString::fromLatin1(version);
    }

    void whatArrivesComesByItself()
    {
        QFETCH(QString, version);
        PushBed bed({ version });
        QVERIFY(bed.begin());
        QVERIFY(bed.receives(QStringLiteral("fresh")));
        QCOMPARE(bed.deviceState().size(), 1);
        QCOMPARE(bed.server().failures(), QStringList());

        bed.switchPush(false);
        QVERIFY(bed.comesTo("off"));
    }

    void aChangeBetweenPingsIsNotMissed()
    {
        PushBed bed;
        QVERIFY(bed.begin());
        for (int i = 0; i < 10; ++i)
            bed.mailbox().deliver(
                bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("burst %1").arg(i)));
        QVERIFY(bed.isInStep());
        QVERIFY(bed.waitsForNews());
        QCOMPARE(bed.deviceState().size(), 10);
    }

    void aNewFolderComesByItself()
    {
        PushBed bed;
        QVERIFY(bed.begin());
        const QString folder = bed.mailbox().addFolder(QStringLiteral("New"));
        QVERIFY(Waiting::until([&] { return bed.deviceFolders() == bed.serverFolders(); }, Patience));
        bed.mailbox().deliver(folder, SyncTestBed::message(QStringLiteral("in it")));
        QVERIFY(bed.isInStep());
    }

    void whatTheUserDoesToMailGoesByItself()
    {
        PushBed bed;
        const QString inbox = bed.mailbox().inboxId();
        const QString read = bed.mailbox().deliver(inbox, SyncTestBed::message(QStringLiteral("read")));
        bed.mailbox().deliver(inbox, SyncTestBed::message(QStringLiteral("moved")));
        bed.mailbox().deliver(inbox, SyncTestBed::message(QStringLiteral("deleted")));
        QVERIFY(bed.begin());

        QMailStore *const store = QMailStore::instance();
        QVERIFY(store->updateMessagesMetaData(
            QMailMessageKey::id(bed.deviceMessage(QStringLiteral("read"))), QMailMessage::Read, true));
        QVERIFY(Waiting::until(
            [&] { return bed.serverState().contains(bed.stateLine("Inbox", "read", true)); }, Patience));
        QVERIFY(bed.waitsForNews(bed.pings() - 1));

        QMailDisconnected::moveToFolder(QMailMessageIdList { bed.deviceMessage(QStringLiteral("moved")) },
            bed.deviceFolder(QStringLiteral("Drafts")));
        QVERIFY(Waiting::until(
            [&] { return bed.serverState().contains(bed.stateLine("Drafts", "moved", false)); }, Patience));

        QVERIFY(store->removeMessage(
            bed.deviceMessage(QStringLiteral("deleted")), QMailStore::CreateRemovalRecord));
        QVERIFY(Waiting::until([&] { return bed.serverState().size() == 2; }, Patience));
        QVERIFY(bed.isInStep());
    }

    void whatTheUserDoesToContactsGoesByItself()
    {
        const ContactFixture store;
        PushBed bed;
        QVERIFY(bed.begin());
        const auto collections = PimListing::collectionsOf(store.manager(), bed.accountId());
        QCOMPARE(collections.size(), 1);
        QContact ada = ContactFixture::named(QStringLiteral("Ada"));
        ada.setCollectionId(collections.first());
        QVERIFY(store.manager().saveContact(&ada));
        QVERIFY(Waiting::until([&] { return bed.serverContacts().size() == 1; }, Patience));
        QVERIFY(store.manager().removeContact(ada.id()));
        QVERIFY(Waiting::until([&] { return bed.serverContacts().isEmpty(); }, Patience));
    }

    void whatTheUserDoesToEventsGoesByItself()
    {
        PushBed bed;
        QVERIFY(bed.begin());
        {
            DeviceCalendar device;
            const KCalendarCore::Event::Ptr event(new KCalendarCore::Event);
            event->setSummary(QStringLiteral("Dentist"));
            event->setDtStart(QDateTime(QDate(2030, 3, 4), QTime(9, 0), Qt::UTC));
            event->setDtEnd(event->dtStart().addSecs(3600));
            QVERIFY(device.calendar->addEvent(event, device.notebookOf(bed.accountId())));
            QVERIFY(device.storage->save());
        }
        QVERIFY(Waiting::until([&] { return bed.serverEvents().size() == 1; }, Patience));
        {
            DeviceCalendar device;
            const auto event = device.withSummary(QStringLiteral("Dentist"));
            QVERIFY(event);
            // The store lists deletions by whole seconds, and leaves out what was made in the same one.
            QVERIFY(device.remove(event, QDateTime::currentDateTimeUtc().addSecs(5)));
        }
        QVERIFY(Waiting::until([&] { return bed.serverEvents().isEmpty(); }, Patience));
    }

    // A sync that is no change of the user's

    void whatASyncBringsIsFollowedByNoOther()
    {
        PushBed bed;
        const QString inbox = bed.mailbox().inboxId();
        QStringList ids;
        for (int i = 0; i < 100; ++i)
            ids.append(
                bed.mailbox().deliver(inbox, SyncTestBed::message(QStringLiteral("message %1").arg(i))));
        QVERIFY(bed.begin());
        QVERIFY(bed.isInStep());

        // Marks and deletions, too: all in one sync.
        Simulator::Mailbox &mailbox = bed.mailbox();
        mailbox.atomically([&] {
            for (int i = 0; i < 40; ++i)
                mailbox.setRead(ids.at(i), true);
            for (int i = 40; i < 60; ++i)
                mailbox.remove(ids.at(i));
        });
        QVERIFY(bed.isInStep());
        QVERIFY(bed.waitsForNews());
        const int before = bed.syncs();
        // Longer than a change of the user's would have waited.
        for (int round = 1; round <= 3; ++round) {
            QVERIFY(bed.receives(QStringLiteral("sentinel %1").arg(round)));
            QCOMPARE(bed.syncs(), before + round);
        }
    }

    void contactsAndEventsThatASyncBringsAreFollowedByNoOther()
    {
        const ContactFixture store;
        PushBed bed;
        QVERIFY(bed.begin());
        const int before = bed.pings();
        Simulator::Mailbox &mailbox = bed.mailbox();
        const QString contactsId = bed.contactsId();
        const QString calendarId = bed.calendarId();
        mailbox.atomically([&] {
            for (int i = 0; i < 50; ++i) {
                Simulator::Contact contact;
                contact.setText(QStringLiteral("FirstName"), QStringLiteral("Person %1").arg(i));
                mailbox.addItem(contactsId, Simulator::ContactItem::make(contact));
                mailbox.addItem(calendarId,
                    Simulator::EventItem::make(Simulator::Event::timed(QStringLiteral("Meeting %1").arg(i),
                        QByteArrayLiteral("Europe/Berlin"),
                        QDateTime(QDate(2030, 3, 4).addDays(i), QTime(9, 0)), 45)));
            }
        });
        QVERIFY(bed.waitsForNews(before));
        const auto contacts = PimListing::collectionsOf(store.manager(), bed.accountId());
        QCOMPARE(store.contacts(contacts.first()).size(), 50);
        const QVector<Simulator::ItemEntry> people = mailbox.items(contactsId);
        const QVector<Simulator::ItemEntry> events = mailbox.items(calendarId);
        const int first = bed.pings();
        mailbox.atomically([&] {
            for (int i = 0; i < 10; ++i) {
                mailbox.remove(people.at(i).serverId);
                mailbox.remove(events.at(i).serverId);
                mailbox.edit<Simulator::EventItem>(events.at(i + 20).serverId,
                    [](Simulator::Event &event) { event.subject = QStringLiteral("Renamed"); });
                mailbox.edit<Simulator::ContactItem>(
                    people.at(i + 20).serverId, [](Simulator::Contact &contact) {
                        contact.setText(QStringLiteral("JobTitle"), QStringLiteral("Clerk"));
                    });
            }
        });
        QVERIFY(bed.waitsForNews(first));
        QCOMPARE(store.contacts(contacts.first()).size(), 40);
        const int syncs = bed.syncs();
        for (int round = 1; round <= 3; ++round) {
            QVERIFY(bed.receives(QStringLiteral("sentinel %1").arg(round)));
            QCOMPARE(bed.syncs(), syncs + round);
        }
    }

    // Weather

    void aLostNetworkIsMadeUpFor()
    {
        PushBed bed;
        QVERIFY(bed.begin());
        QVERIFY(Bearer::loseNetwork());
        QVERIFY(bed.comesTo("network"));
        bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("meanwhile")));
        QVERIFY(Bearer::connectNetwork());
        QVERIFY(bed.isInStep());
        QVERIFY(bed.waitsForNews());
    }

    void aServerThatIsAwayIsTriedLessAndLess()
    {
        PushBed bed;
        QVERIFY(bed.begin());
        LogCollector log;
        const quint16 port = bed.server().port();
        bed.server().stop();
        QVERIFY(
            Waiting::until([&] { return log.contains(QStringLiteral("full sync in 15 min")); }, Patience));
        QCOMPARE(log.count(QStringLiteral("Internal full sync request: ")), 2);
        QVERIFY(bed.server().start(Simulator::ExchangeServer::Http, port));
        QVERIFY(bed.receives(QStringLiteral("after it")));
    }

    void aServerThatAnswersAtOnceIsPausedFor()
    {
        PushBed bed;
        bed.server().overrideAll(QStringLiteral("Ping"), Override::topStatus(1));
        LogCollector log;
        QVERIFY(bed.begin());
        QVERIFY(Waiting::until([&] { return log.contains(QStringLiteral("pausing for 81 s")); }, Patience));
        QVERIFY(bed.pings() <= 6);
        QCOMPARE(bed.syncs(), 3); // two for the account's first sync, and the one that push begins with
    }

    void aServerThatAlwaysReportsChangesIsPausedFor()
    {
        PushBed bed;
        bed.server().overrideAll(QStringLiteral("Ping"),
            Override::xml(QStringLiteral("<Ping xmlns=\"Ping\"><Status>2</Status><Folders><Folder>%1</Folder>"
                                         "</Folders></Ping>")
                              .arg(bed.mailbox().inboxId())));
        LogCollector log;
        QVERIFY(bed.isReady());
        QCOMPARE(bed.sync(), 0);
        bed.switchPush(true);
        QVERIFY(Waiting::until(
            [&] { return log.contains(QStringLiteral("Restart ping timer interval: 81000")); }, Patience));
        QVERIFY(bed.pings() <= 6);
        QVERIFY(bed.syncs() <= 9);
    }

    void aServerThatSaysNothingIsPingedAnew()
    {
        PushBed bed;
        bed.server().overrideNext(QStringLiteral("Ping"), Override::hang(), 1);
        QVERIFY(bed.begin());
        bed.clock().advance(24 * 3600 * 1000);
        Q_EMIT ClockWatch::instance().jumped();
        QVERIFY(bed.waitsForNews(1));
        QVERIFY(bed.receives(QStringLiteral("after it")));
    }

    void anUnavailableServerIsTriedLessAndLess()
    {
        PushBed bed;
        bed.server().overrideAll(
            QStringLiteral("Ping"), Override::httpStatus(503, { { "Retry-After", "60" } }));
        LogCollector log;
        QVERIFY(bed.isReady());
        QCOMPARE(bed.sync(), 0);
        bed.switchPush(true);
        QVERIFY(
            Waiting::until([&] { return log.contains(QStringLiteral("full sync in 15 min")); }, Patience));
        QCOMPARE(bed.pings(), 3);
    }

    void aRefusedHeartbeatIsReplaced()
    {
        PushBed bed;
        bed.server().setHeartbeatLimits(60, 120);
        QVERIFY(bed.begin());
        QVERIFY(bed.waitsForNews(1));
        QVERIFY(bed.receives(QStringLiteral("fresh")));
        const auto pings = bed.server().requests(QStringLiteral("Ping"));
        QCOMPARE(pings.first().document.text(QStringLiteral("HeartbeatInterval")), QStringLiteral("300"));
        QCOMPARE(pings.last().document.text(QStringLiteral("HeartbeatInterval")), QStringLiteral("120"));
    }

    void aServerThatWatchesFewFoldersGetsFew()
    {
        PushBed bed;
        bed.server().setMaxPingFolders(4);
        QVERIFY(bed.begin());
        QVERIFY(bed.waitsForNews(1));
        QVERIFY(bed.receives(QStringLiteral("fresh")));
    }
};

FENNEL_REGISTER_TEST(PushTest)
#include "pushtest.moc"
