// SPDX-License-Identifier: LGPL-2.1-or-later
#include "integration/statusscene.h"
#include "support/pimlisting.h"
#include "support/testmain.h"

using Simulator::Override;
using Simulator::WbxmlNode;
using namespace StatusScene;

namespace {

/** The reply of a server that takes a window for received: what was to be added is a change, the rest is left
 * out, and the key lies behind all of it. */
Override windowTakenForReceived(const QString &collectionId)
{
    return Override::edited([collectionId](WbxmlNode &reply) {
        WbxmlNode *collections = reply.find(QStringLiteral("Collections"));
        if (!collections)
            return;
        for (WbxmlNode &collection : collections->children()) {
            WbxmlNode *commands = collection.find(QStringLiteral("Commands"));
            if (!commands || collection.text(QStringLiteral("CollectionId")) != collectionId)
                continue;
            WbxmlNode change(QStringLiteral("AirSync:Change"));
            change.children() = commands->at(QStringLiteral("Add")).children();
            commands->children() = { change };
        }
    });
}

} // namespace

/** @short A server that takes a window for received changes items that the device never got. */
class LostWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void mailComesAgain();
    void eventsComeAgain();
    void contactsComeAgain();

private:
    static bool beginsAnew(SyncTestBed &bed, const QString &collectionId, const QString &name);
};

bool LostWindowTest::beginsAnew(SyncTestBed &bed, const QString &collectionId, const QString &name)
{
    bed.server().overrideNext(QStringLiteral("Sync"), windowTakenForReceived(collectionId));
    const LogCollector log;
    return bed.sync() == 0
        && log.contains(
            QtWarningMsg, { QStringLiteral("changes of unknown items, the collection begins anew:"), name });
}

void LostWindowTest::mailComesAgain()
{
    SyncTestBed bed;
    const QString inbox = bed.mailbox().inboxId();
    QVERIFY(missesOneMessage(bed));
    bed.mailbox().deliver(inbox, SyncTestBed::message(QStringLiteral("newest")));
    QVERIFY(beginsAnew(bed, inbox, QStringLiteral("Inbox")));
    QCOMPARE(bed.deviceState(), bed.serverState());
    QCOMPARE(bed.deviceState().size(), 3);
}

void LostWindowTest::eventsComeAgain()
{
    SyncTestBed bed({ QStringLiteral("14.1") }, SyncTestBed::everyService());
    QCOMPARE(bed.sync(), 0);
    const QDateTime start(QDate(2036, 3, 10), QTime(9, 0));
    for (const char *subject : { "First", "Second", "Third" })
        bed.place(Simulator::Event::timed(QString::fromLatin1(subject), "Europe/Berlin", start, 45));
    QVERIFY(beginsAnew(bed, bed.calendarId(), QStringLiteral("Calendar")));
    QCOMPARE(PimListing::deviceEvents(bed.accountId()), PimListing::serverEvents(bed.mailbox()));
    QCOMPARE(PimListing::deviceEvents(bed.accountId()).size(), 3);
}

void LostWindowTest::contactsComeAgain()
{
    SyncTestBed bed({ QStringLiteral("14.1") }, SyncTestBed::everyService());
    QCOMPARE(bed.sync(), 0);
    for (const char *name : { "Ada", "Bob", "Cy" })
        bed.place(Simulator::Contact().setText(QStringLiteral("FirstName"), QString::fromLatin1(name)));
    QVERIFY(beginsAnew(bed, bed.contactsId(), QStringLiteral("Contacts")));
    QCOMPARE(PimListing::deviceContacts(bed.accountId()), PimListing::serverContacts(bed.mailbox()));
    QCOMPARE(PimListing::deviceContacts(bed.accountId()).size(), 3);
}

FENNEL_REGISTER_TEST(LostWindowTest)
#include "lostwindowtest.moc"
