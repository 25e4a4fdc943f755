// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/account/easaccount.h"
#include "application/requestmanager.h"
#include "configurations/emailaccountconfiguration.h"
#include "integration/statusscene.h"
#include "support/testmain.h"

#include <QSignalSpy>

using Simulator::WbxmlNode;
using namespace StatusScene;

namespace {

const QLatin1String collectionPath("Collections/Collection");

QString localId(SyncTestBed &bed, const char *folder)
{
    return QString::number(bed.deviceFolder(QString::fromLatin1(folder)).toULongLong());
}

QString serverId(SyncTestBed &bed, int folderType)
{
    return bed.mailbox().folderOfType(folderType).id;
}

/** What the last Sync said of the collection; a null node if it said nothing. */
WbxmlNode lastCollection(SyncTestBed &bed, const QString &id)
{
    const auto requests = bed.server().requests(QStringLiteral("Sync"));
    if (requests.isEmpty())
        return WbxmlNode();
    const QVector<WbxmlNode> collections = requests.last().document.all(collectionPath);
    for (const WbxmlNode &collection : collections) {
        if (collection.text(QStringLiteral("CollectionId")) == id)
            return collection;
    }
    return WbxmlNode();
}

QStringList names(const WbxmlNode &node)
{
    QStringList list;
    for (const WbxmlNode &child : node.children())
        list.append(child.tag());
    return list;
}

QStringList bodyTypes(const WbxmlNode &collection)
{
    QStringList types;
    const QVector<WbxmlNode> preferences =
        collection.all(QStringLiteral("Options/AirSyncBase:BodyPreference"));
    for (const WbxmlNode &preference : preferences)
        types.append(preference.text(QStringLiteral("Type")));
    return types;
}

QList<int> percents(const QSignalSpy &progress)
{
    QList<int> list;
    for (const QVariantList &report : progress) {
        if (report.at(2).toInt() != 100)
            return {};
        list.append(report.at(3).toInt());
    }
    return list;
}

} // namespace

/** @short What a sync asks for in rarer cases: few services, named folders, folders of other kinds. */
class SyncEdgeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anAccountWithoutServicesSyncsNothing();
    void aServiceThatIsDisabledIsNotSynced_data();
    void aServiceThatIsDisabledIsNotSynced();
    void theMailServiceSyncsAllMail();
    void aFolderThatIsNotKnownIsSkipped();
    void foldersThatAreNotKnownSyncNothing();
    void aFirstSyncCarriesItsKeyAlone_data();
    void aFirstSyncCarriesItsKeyAlone();
    void draftsAreFetchedAsPlainText();
    void anOutboxHasNoBodies();
    void aSyncReportsItsSteps();
    void aSyncReportsItsMoves();
};

void SyncEdgeTest::anAccountWithoutServicesSyncsNothing()
{
    SyncTestBed bed;
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("one")));
    QVERIFY(bed.accounts().setServiceEnabled(bed.accountId(), AccountFactory::mailService(), false));
    const auto isEnabled = [&bed] {
        return RequestManager::instance()->account(bed.accountId())->emailConfiguration()->enabled();
    };
    QTRY_VERIFY(!isEnabled());

    {
        const LogCollector log;
        QCOMPARE(bed.sync(), 0);
        QVERIFY(log.contains(QStringLiteral("collections lists are empty, nothing to sync")));
    }
    QVERIFY(count(bed, "FolderSync") > 0);
    QCOMPARE(count(bed, "Sync"), 0);
    QCOMPARE(bed.deviceState(), QStringList());

    QVERIFY(bed.accounts().setServiceEnabled(bed.accountId(), AccountFactory::mailService(), true));
    QTRY_VERIFY(isEnabled());
    QVERIFY(nextSyncRepairs(bed));
}

void SyncEdgeTest::aServiceThatIsDisabledIsNotSynced_data()
{
    QTest::addColumn<int>("service");
    QTest::addColumn<QString>("text");
    QTest::newRow("calendars") << 2 << QStringLiteral("Calendar service is disabled");
    QTest::newRow("contacts") << 4 << QStringLiteral("Contacts service is disabled");
}

void SyncEdgeTest::aServiceThatIsDisabledIsNotSynced()
{
    QFETCH(int, service);
    QFETCH(QString, text);
    SyncTestBed bed;
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("one")));
    const LogCollector log;
    QCOMPARE(bed.syncService(service), 0);
    QCOMPARE(log.count(QStringLiteral("service is disabled")), 1);
    QVERIFY(log.contains(text));
    QVERIFY(log.contains(QStringLiteral("collections lists are empty, nothing to sync")));
    QCOMPARE(count(bed, "Sync"), 0);
    QCOMPARE(bed.deviceState(), QStringList());
}

void SyncEdgeTest::theMailServiceSyncsAllMail()
{
    SyncTestBed bed;
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("one")));
    const LogCollector log;
    QCOMPARE(bed.syncService(1), 0);
    QVERIFY(!log.contains(QStringLiteral("service is disabled")));
    QCOMPARE(bed.deviceState(), bed.serverState());
    QCOMPARE(bed.deviceState().size(), 1);
}

void SyncEdgeTest::aFolderThatIsNotKnownIsSkipped()
{
    SyncTestBed bed;
    const QString archive = bed.mailbox().addFolder(QStringLiteral("Archive"));
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("one")));
    bed.mailbox().deliver(archive, SyncTestBed::message(QStringLiteral("two")));
    QCOMPARE(bed.foldersSync(), 0);

    const QString unknown = QStringLiteral("987654");
    const LogCollector log;
    QCOMPARE(bed.syncFolders({ unknown, localId(bed, "Inbox") }), 0);

    QVERIFY(log.contains(QtWarningMsg,
        { QStringLiteral("failed to find local folder id"), unknown, QStringLiteral("in Eas DB for account"),
            QString::number(bed.accountId()) }));
    QCOMPARE(bed.deviceState(), QStringList { QStringLiteral("Inbox|one|unread") });
    const auto requests = bed.server().requests(QStringLiteral("Sync"));
    for (const auto &request : requests) {
        QCOMPARE(request.document.all(collectionPath).size(), 1);
        QCOMPARE(request.document.at(collectionPath).text(QStringLiteral("CollectionId")),
            bed.mailbox().inboxId());
    }
    QVERIFY(nextSyncRepairs(bed));
}

void SyncEdgeTest::foldersThatAreNotKnownSyncNothing()
{
    SyncTestBed bed;
    QCOMPARE(bed.foldersSync(), 0);
    const LogCollector log;
    QCOMPARE(bed.syncFolders({ QStringLiteral("987654"), QStringLiteral("no number"), QString() }), 0);
    QCOMPARE(log.count(QStringLiteral("failed to find local folder id")), 3);
    QCOMPARE(count(bed, "Sync"), 0);
}

void SyncEdgeTest::aFirstSyncCarriesItsKeyAlone_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QStringList>("elements");
    const QStringList usual { QStringLiteral("SyncKey"), QStringLiteral("CollectionId"),
        QStringLiteral("GetChanges") };
    const QStringList withClass { QStringLiteral("SyncKey"), QStringLiteral("CollectionId"),
        QStringLiteral("Class"), QStringLiteral("GetChanges") };
    QTest::newRow("12.0") << "12.0" << withClass;
    for (const char *version : { "12.1", "14.0", "14.1", "16.0", "16.1" })
        QTest::newRow(version) << QString::fromLatin1(version) << usual;
}

void SyncEdgeTest::aFirstSyncCarriesItsKeyAlone()
{
    QFETCH(QString, version);
    QFETCH(QStringList, elements);
    SyncTestBed bed({ version });
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("one")));
    QCOMPARE(bed.sync(), 0);

    const auto requests = bed.server().requests(QStringLiteral("Sync"));
    QCOMPARE(names(requests.first().document), QStringList { QStringLiteral("Collections") });
    const QVector<WbxmlNode> collections = requests.first().document.all(collectionPath);
    QVERIFY(!collections.isEmpty());
    for (const WbxmlNode &collection : collections) {
        QCOMPARE(names(collection), elements);
        QCOMPARE(collection.text(QStringLiteral("SyncKey")), QStringLiteral("0"));
        QCOMPARE(collection.text(QStringLiteral("GetChanges")), QStringLiteral("0"));
        if (version == QLatin1String("12.0"))
            QCOMPARE(collection.text(QStringLiteral("Class")), QStringLiteral("Email"));
    }
    // The next one asks for the mail, with the keys that it was given.
    const WbxmlNode inbox = lastCollection(bed, bed.mailbox().inboxId());
    QVERIFY(inbox.text(QStringLiteral("SyncKey")) != QLatin1String("0"));
    QCOMPARE(inbox.text(QStringLiteral("GetChanges")), QStringLiteral("1"));
    QCOMPARE(bed.server().failures(), QStringList());
}

void SyncEdgeTest::draftsAreFetchedAsPlainText()
{
    SyncTestBed bed;
    QCOMPARE(bed.sync(), 0);

    const WbxmlNode drafts = lastCollection(bed, serverId(bed, Simulator::DraftsFolder));
    const WbxmlNode inbox = lastCollection(bed, bed.mailbox().inboxId());
    QCOMPARE(bodyTypes(drafts), QStringList { QStringLiteral("1") });
    QCOMPARE(bodyTypes(inbox), (QStringList { QStringLiteral("1"), QStringLiteral("2") }));
    for (const WbxmlNode &collection : { drafts, inbox }) {
        // A message that is deleted here is gone there too, and not in the trash.
        QCOMPARE(collection.text(QStringLiteral("DeletesAsMoves")), QStringLiteral("0"));
        QCOMPARE(collection.text(QStringLiteral("Options/MIMETruncation")), QStringLiteral("0"));
        QCOMPARE(collection.text(QStringLiteral("Options/MIMESupport")), QStringLiteral("1"));
        QVERIFY(!collection.has(QStringLiteral("Commands")));
    }
}

void SyncEdgeTest::anOutboxHasNoBodies()
{
    SyncTestBed bed;
    QCOMPARE(bed.foldersSync(), 0);
    QCOMPARE(bed.syncFolders({ localId(bed, "Outbox") }), 0);

    const WbxmlNode outbox = lastCollection(bed, serverId(bed, Simulator::OutboxFolder));
    QVERIFY(!outbox.isNull());
    QVERIFY(outbox.text(QStringLiteral("SyncKey")) != QLatin1String("0"));
    QVERIFY(outbox.at(QStringLiteral("Options")).children().isEmpty());
    QVERIFY(!outbox.has(QStringLiteral("Commands")));
    QCOMPARE(bed.server().failures(), QStringList());
}

void SyncEdgeTest::aSyncReportsItsSteps()
{
    SyncTestBed bed;
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("one")));
    QSignalSpy progress(RequestManager::instance(), &RequestManager::requestProgress);
    const qulonglong id = bed.startSync();
    QCOMPARE(bed.waitFor(id), 0);
    // The folders take two rounds, the keys and the mail one each.
    QCOMPARE(percents(progress), (QList<int> { 20, 20, 50, 60 }));
    QCOMPARE(progress.first().at(0).toInt(), int(bed.accountId()));
    QCOMPARE(progress.first().at(1).toULongLong(), id);

    progress.clear();
    QCOMPARE(bed.sync(), 0);
    QCOMPARE(percents(progress), (QList<int> { 20, 60 }));
}

void SyncEdgeTest::aSyncReportsItsMoves()
{
    SyncTestBed bed;
    bed.mailbox().addFolder(QStringLiteral("Archive"));
    bed.mailbox().deliver(bed.mailbox().inboxId(), SyncTestBed::message(QStringLiteral("one")));
    QCOMPARE(bed.sync(), 0);
    moveOnDevice(bed, "one", QStringLiteral("Archive"));
    QSignalSpy progress(RequestManager::instance(), &RequestManager::requestProgress);
    QCOMPARE(bed.sync(), 0);
    QCOMPARE(percents(progress), (QList<int> { 20, 40, 60 }));
    QCOMPARE(bed.deviceState(), bed.serverState());
}

FENNEL_REGISTER_TEST(SyncEdgeTest)
#include "syncedgetest.moc"
