// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/easdatabase.h"
#include "application/requestmanager.h"
#include "integration/statusscene.h"
#include "support/testmain.h"

using Simulator::MailFolder;
using Simulator::Override;
using namespace StatusScene;

namespace {

const auto Root = QStringLiteral("0");

/** What a folder of a kind is called by clients, by the protocol, and by the simulator. */
struct Kind
{
    uint kind;
    EasFolderItem::FolderType type;
    EasFolderItem::FolderType standard;
};

constexpr Kind Kinds[] = {
    { 0, EasFolderItem::UserCreatedMailFolder, EasFolderItem::DefaultInboxFolder },
    { 1, EasFolderItem::UserCreatedCalendarFolder, EasFolderItem::DefaultCalendarFolder },
    { 2, EasFolderItem::UserCreatedContactsFolder, EasFolderItem::DefaultContactsFolder },
};

} // namespace

Q_DECLARE_METATYPE(Kind)

/** @short Folders that are created, renamed and deleted on the device, with a server. */
class FolderManagementTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // There is one engine at a time.
    void cleanup() { mBed.reset(); }
    void aFolderLives_data() { kinds(); }
    void aFolderLives();
    void aNameThatIsTakenMakesNoFolder();
    void aFolderOfTheServersOwnStays_data() { kinds(); }
    void aFolderOfTheServersOwnStays();
    void aDeletedFolderTakesWhatIsInIt();
    void aMovedFolderKeepsItsMessages();
    void aReplyThatIsLostMakesNoSecondFolder_data() { kinds(); }
    void aReplyThatIsLostMakesNoSecondFolder();
    void aKeyThatTheServerDoesNotKnowIsRepairedByTheNextSync();

private:
    std::unique_ptr<SyncTestBed> mBed;
    qulonglong mNextId = 1000;

    static void kinds()
    {
        QTest::addColumn<Kind>("kind");
        QTest::newRow("mail") << Kinds[0];
        QTest::newRow("events") << Kinds[1];
        QTest::newRow("contacts") << Kinds[2];
    }
    bool start()
    {
        mBed = std::make_unique<SyncTestBed>(
            QStringList { QStringLiteral("14.1") }, SyncTestBed::everyService());
        return mBed->isReady() && mBed->sync() == 0;
    }
    EasAccountId account() const { return mBed->accountId(); }

    int create(const QString &name, uint kind, const QString &parent = Root)
    {
        RequestManager::instance()->onCreateFolderRequest(account(), name, parent, kind, ++mNextId);
        return end();
    }
    int update(const QString &folder, const QString &parent, const QString &name)
    {
        RequestManager::instance()->onUpdateFolderRequest(account(), folder, parent, name, ++mNextId);
        return end();
    }
    int remove(const QString &folder)
    {
        RequestManager::instance()->onDeleteFolderRequest(account(), folder, ++mNextId);
        return end();
    }
    int end() const { return mBed->waitFor(mNextId); }

    /** The folders of a type that the device knows: "name=server identifier", and each has a local one. */
    QStringList device(EasFolderItem::FolderType type) const
    {
        QStringList lines;
        const QList<EasFolderItem> items = *EasDatabase::instance()->folderItemsByFolderType(account(), type);
        for (const EasFolderItem &item : items)
            lines.append(item.displayName() + QLatin1Char('=')
                + (item.localId().isEmpty() ? QStringLiteral("not stored") : item.serverId()));
        lines.sort();
        return lines;
    }
    QStringList server(EasFolderItem::FolderType type) const
    {
        QStringList lines;
        for (const MailFolder &folder : mBed->mailbox().folders()) {
            if (folder.type == type)
                lines.append(folder.name + QLatin1Char('=') + folder.id);
        }
        lines.sort();
        return lines;
    }
    QString localId(EasFolderItem::FolderType type, const QString &name) const
    {
        const QList<EasFolderItem> items = *EasDatabase::instance()->folderItemsByFolderType(account(), type);
        for (const EasFolderItem &item : items) {
            if (item.displayName() == name)
                return item.localId();
        }
        return {};
    }
    /** Whether the next FolderSync has nothing to tell. */
    bool hierarchyIsCurrent() const
    {
        mBed->server().clearRequests();
        const auto folders = *EasDatabase::instance()->serverToLocalFolderIds(account());
        return mBed->sync() == 0 && folders == *EasDatabase::instance()->serverToLocalFolderIds(account())
            && count(*mBed, "FolderSync") == 1;
    }
};

void FolderManagementTest::aFolderLives()
{
    QFETCH(Kind, kind);
    QVERIFY(start());
    QCOMPARE(create(QStringLiteral("Pläne"), kind.kind), 0);
    QCOMPARE(server(kind.type).size(), 1);
    QCOMPARE(device(kind.type), server(kind.type));
    QVERIFY(hierarchyIsCurrent());

    QCOMPARE(update(localId(kind.type, QStringLiteral("Pläne")), Root, QStringLiteral("Done")), 0);
    QVERIFY(server(kind.type).first().startsWith(QLatin1String("Done=")));
    QCOMPARE(device(kind.type), server(kind.type));
    QVERIFY(hierarchyIsCurrent());

    QCOMPARE(remove(localId(kind.type, QStringLiteral("Done"))), 0);
    QVERIFY(server(kind.type).isEmpty());
    QVERIFY(device(kind.type).isEmpty());
    QVERIFY(hierarchyIsCurrent());
    QCOMPARE(mBed->deviceFolders(), mBed->serverFolders());
}

void FolderManagementTest::aNameThatIsTakenMakesNoFolder()
{
    QVERIFY(start());
    QCOMPARE(create(QStringLiteral("Twice"), 0), 0);
    const QStringList before = device(EasFolderItem::UserCreatedMailFolder);
    QCOMPARE(create(QStringLiteral("Twice"), 0), -3);
    QCOMPARE(device(EasFolderItem::UserCreatedMailFolder), before);
    QCOMPARE(mBed->deviceFolders(), mBed->serverFolders());
}

void FolderManagementTest::aFolderOfTheServersOwnStays()
{
    QFETCH(Kind, kind);
    QVERIFY(start());
    const QStringList before = device(kind.standard);
    QCOMPARE(before.size(), 1);
    const QString folder = localId(kind.standard, before.first().section(QLatin1Char('='), 0, 0));
    QCOMPARE(remove(folder), -3);
    QCOMPARE(update(folder, Root, QStringLiteral("Mine")), -3);
    QCOMPARE(device(kind.standard), before);
    QCOMPARE(server(kind.standard), before);
}

void FolderManagementTest::aDeletedFolderTakesWhatIsInIt()
{
    QVERIFY(start());
    QCOMPARE(create(QStringLiteral("Outer"), 0), 0);
    const QString outer = localId(EasFolderItem::UserCreatedMailFolder, QStringLiteral("Outer"));
    QCOMPARE(create(QStringLiteral("Inner"), 0, outer), 0);
    QCOMPARE(create(QStringLiteral("Dates"), 1, outer), 0);
    mBed->mailbox().deliver(mBed->mailbox().folderByPath(QStringLiteral("Outer/Inner")).id,
        SyncTestBed::message(QStringLiteral("deep")));
    QCOMPARE(mBed->sync(), 0);
    QCOMPARE(mBed->deviceState(), mBed->serverState());
    QCOMPARE(mBed->deviceState().size(), 1);

    QCOMPARE(remove(outer), 0);
    QVERIFY(mBed->deviceState().isEmpty());
    QVERIFY(device(EasFolderItem::UserCreatedMailFolder).isEmpty());
    QVERIFY(device(EasFolderItem::UserCreatedCalendarFolder).isEmpty());
    QVERIFY(EasDatabase::instance()->serverToLocalEmailIds(account())->isEmpty());
    QVERIFY(hierarchyIsCurrent());
    QCOMPARE(mBed->deviceFolders(), mBed->serverFolders());
}

void FolderManagementTest::aMovedFolderKeepsItsMessages()
{
    QVERIFY(start());
    QCOMPARE(create(QStringLiteral("Box"), 0), 0);
    mBed->mailbox().deliver(
        mBed->mailbox().folderByPath(QStringLiteral("Box")).id, SyncTestBed::message(QStringLiteral("kept")));
    QCOMPARE(mBed->sync(), 0);
    const QString box = localId(EasFolderItem::UserCreatedMailFolder, QStringLiteral("Box"));
    const QString inbox = localId(EasFolderItem::DefaultInboxFolder, QStringLiteral("Inbox"));
    QCOMPARE(update(box, inbox, QStringLiteral("Crate")), 0);
    QCOMPARE(mBed->deviceState(), QStringList(QStringLiteral("Inbox/Crate|kept|unread")));
    QCOMPARE(mBed->serverState(), mBed->deviceState());
    // Without a parent only the name changes.
    QCOMPARE(update(box, QString(), QStringLiteral("Case")), 0);
    QCOMPARE(mBed->deviceState(), QStringList(QStringLiteral("Inbox/Case|kept|unread")));
    QCOMPARE(mBed->serverState(), mBed->deviceState());
    QVERIFY(hierarchyIsCurrent());
}

void FolderManagementTest::aReplyThatIsLostMakesNoSecondFolder()
{
    QFETCH(Kind, kind);
    QVERIFY(start());
    mBed->server().overrideNext(QStringLiteral("FolderCreate"), Override::drop());
    QVERIFY(create(QStringLiteral("Once"), kind.kind) != 0);
    QVERIFY(device(kind.type).isEmpty());
    // The server has it, and the hierarchy brings it.
    QCOMPARE(server(kind.type).size(), 1);
    QCOMPARE(mBed->sync(), 0);
    QCOMPARE(device(kind.type), server(kind.type));
    QVERIFY(hierarchyIsCurrent());
}

void FolderManagementTest::aKeyThatTheServerDoesNotKnowIsRepairedByTheNextSync()
{
    QVERIFY(start());
    EasDatabase::instance()->setFolderSyncKey(account(), QStringLiteral("lost"));
    QCOMPARE(create(QStringLiteral("New"), 0), -3);
    QVERIFY(server(EasFolderItem::UserCreatedMailFolder).isEmpty());
    QCOMPARE(mBed->sync(), 0);
    QCOMPARE(create(QStringLiteral("New"), 0), 0);
    QCOMPARE(device(EasFolderItem::UserCreatedMailFolder), server(EasFolderItem::UserCreatedMailFolder));
}

FENNEL_REGISTER_TEST(FolderManagementTest)
#include "foldermanagementtest.moc"
