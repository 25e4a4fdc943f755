// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/synctestbed.h"
#include "support/testmain.h"

#include <QtTest>
#include <qmaildisconnected.h>
#include <qmailmessagekey.h>
#include <qmailstore.h>

/** @short A mailbox and a device come into step and stay there, at every protocol version. */
class FirstLightTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aMailboxStandsOnTheDevice_data() { versions(); }
    void aMailboxStandsOnTheDevice();
    void changesOfTheServerArrive_data() { versions(); }
    void changesOfTheServerArrive();
    void changesOfTheDeviceArrive_data() { versions(); }
    void changesOfTheDeviceArrive();
    void moreThanOneWindowArrives_data() { versions(); }
    void moreThanOneWindowArrives();
    void aSecondSyncSendsNoChange_data() { versions(); }
    void aSecondSyncSendsNoChange();
    void messagesAreFetchedFolderByFolder();

private:
    static void versions();
};

void FirstLightTest::versions()
{
    QTest::addColumn<QString>("version");
    for (const char *version : { "12.0", "12.1", "14.0", "14.1", "16.0", "16.1" })
        QTest::newRow(version) << QString::fromLatin1(version);
}

void FirstLightTest::aMailboxStandsOnTheDevice()
{
    QFETCH(QString, version);
    SyncTestBed bed({ version });
    QVERIFY(bed.isReady());
    const QString projects =
        bed.mailbox().addFolder(QStringLiteral("Projekte äöü"), 12, bed.mailbox().inboxId());
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("one")));
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("two")));
    bed.mailbox().deliver(projects, SyncTestBed::message(QStringLiteral("three")));

    QCOMPARE(bed.sync(), 0);

    QCOMPARE(bed.deviceFolders(), bed.serverFolders());
    QCOMPARE(bed.deviceState(), bed.serverState());
    QCOMPARE(bed.deviceState().size(), 3);
    QCOMPARE(bed.server().failures(), QStringList());
}

void FirstLightTest::changesOfTheServerArrive()
{
    QFETCH(QString, version);
    SyncTestBed bed({ version });
    const QString inbox = bed.mailbox().inboxId();
    const QString stays = bed.mailbox().deliver(inbox, SyncTestBed::message(QStringLiteral("stays")));
    const QString goes = bed.mailbox().deliver(inbox, SyncTestBed::message(QStringLiteral("goes")));
    QCOMPARE(bed.sync(), 0);

    bed.mailbox().setRead(stays, true);
    bed.mailbox().remove(goes);
    const QString folder = bed.mailbox().addFolder(QStringLiteral("New"));
    bed.mailbox().deliver(folder, SyncTestBed::message(QStringLiteral("comes")));
    QCOMPARE(bed.sync(), 0);

    QCOMPARE(bed.deviceFolders(), bed.serverFolders());
    QCOMPARE(bed.deviceState(), bed.serverState());

    bed.mailbox().renameFolder(folder, QStringLiteral("Renamed"));
    QCOMPARE(bed.sync(), 0);
    QCOMPARE(bed.deviceState(), bed.serverState());

    bed.mailbox().removeFolder(folder);
    QCOMPARE(bed.sync(), 0);
    QCOMPARE(bed.deviceFolders(), bed.serverFolders());
    QCOMPARE(bed.deviceState(), bed.serverState());
}

void FirstLightTest::changesOfTheDeviceArrive()
{
    QFETCH(QString, version);
    SyncTestBed bed({ version });
    const QString inbox = bed.mailbox().inboxId();
    bed.mailbox().addFolder(QStringLiteral("Archive"));
    for (const char *subject : { "read", "moved", "deleted", "untouched" })
        bed.mailbox().deliver(inbox, SyncTestBed::message(QString::fromLatin1(subject)));
    QCOMPARE(bed.sync(), 0);

    QMailStore *store = QMailStore::instance();
    const QMailMessageId read = bed.deviceMessage(QStringLiteral("read"));
    QVERIFY(store->updateMessagesMetaData(QMailMessageKey::id(read), QMailMessage::Read, true));
    QMailDisconnected::moveToFolder(QMailMessageIdList { bed.deviceMessage(QStringLiteral("moved")) },
        bed.deviceFolder(QStringLiteral("Archive")));
    QVERIFY(
        store->removeMessage(bed.deviceMessage(QStringLiteral("deleted")), QMailStore::CreateRemovalRecord));
    const QStringList wanted = bed.deviceState();
    QCOMPARE(bed.sync(), 0);

    QCOMPARE(bed.deviceState(), wanted);
    // A message deleted on the device is gone for good, it does not go to Deleted Items.
    QCOMPARE(bed.serverState(), wanted);
    QCOMPARE(bed.server().failures(), QStringList());
}

void FirstLightTest::moreThanOneWindowArrives()
{
    QFETCH(QString, version);
    SyncTestBed bed({ version });
    bed.server().setWindowSize(3);
    for (int i = 0; i < 10; ++i)
        bed.mailbox().deliver(
            bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("message %1").arg(i)));
    QCOMPARE(bed.sync(), 0);
    QCOMPARE(bed.deviceState().size(), 10);
    QCOMPARE(bed.deviceState(), bed.serverState());
}

void FirstLightTest::aSecondSyncSendsNoChange()
{
    QFETCH(QString, version);
    SyncTestBed bed({ version });
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("one")));
    QCOMPARE(bed.sync(), 0);
    bed.server().clearRequests();

    QCOMPARE(bed.sync(), 0);

    const auto requests = bed.server().requests(QStringLiteral("Sync"));
    QCOMPARE(requests.size(), 1);
    QVERIFY(!requests.first().document.toXml().contains(QStringLiteral("Commands")));
    QCOMPARE(bed.server().requests(QStringLiteral("MoveItems")).size(), 0);
}

void FirstLightTest::messagesAreFetchedFolderByFolder()
{
    SyncTestBed bed;
    const QString folder = bed.mailbox().addFolder(QStringLiteral("Archive"));
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("one")));
    bed.mailbox().deliver(folder, SyncTestBed::message(QStringLiteral("two")));
    bed.mailbox().deliver(folder, SyncTestBed::message(QStringLiteral("three")));
    QCOMPARE(bed.sync(), 0);

    QList<qulonglong> ids;
    for (const char *subject : { "two", "one", "three" })
        ids.append(bed.deviceMessage(QString::fromLatin1(subject)).toULongLong());
    QCOMPARE(bed.downloadMessages(ids, false), 0);

    const auto requests = bed.server().requests(QStringLiteral("ItemOperations"));
    QCOMPARE(requests.size(), 2);
    QCOMPARE(requests.at(0).document.toXml().count(QStringLiteral("<Fetch")), 2);
    QCOMPARE(requests.at(1).document.toXml().count(QStringLiteral("<Fetch")), 1);
}

FENNEL_REGISTER_TEST(FirstLightTest)
#include "firstlighttest.moc"
