// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/easdatabase.h"
#include "easitems/eascontactsitem.h"
#include "support/databasefixture.h"
#include "support/logcollector.h"
#include "support/testmain.h"

#include <QtTest>

namespace {

constexpr EasAccountId Account = 5;
constexpr EasAccountId OtherAccount = 6;

EasContactsItem contact(
    const QString &serverId, const QString &collectionId, const QString &localId, const QUrl &avatar = QUrl())
{
    EasContactsItem item;
    item.setServerId(serverId);
    item.setCollectionId(collectionId);
    item.setLocalId(localId);
    item.setAvatarUrl(avatar);
    return item;
}

EasDatabase *database()
{
    return EasDatabase::instance();
}

using Map = QMap<QString, QString>;

} // namespace

class EasDatabaseContactsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        mFixture = std::make_unique<DatabaseFixture>();
        mFixture->open();
        QVERIFY(database()->addContactsItems(Account,
            { contact("2:1", "2", "c1", QUrl("file:///home/user/.avatars/account-5/a.png")),
                contact("2:2", "2", "c2"), contact("3:1", "3", "c3") }));
        QVERIFY(database()->addContactsItems(OtherAccount, { contact("2:1", "2", "c9") }));
    }

    void cleanup() { mFixture.reset(); }

    void addedContactsAreKept()
    {
        QCOMPARE(rows(),
            (QStringList { "5|2:1|2|c1|file:///home/user/.avatars/account-5/a.png", "5|2:2|2|c2|",
                "5|3:1|3|c3|", "6|2:1|2|c9|" }));
    }

    void aContactThatIsThereStaysAsItWas()
    {
        const QStringList before = rows();
        QVERIFY(database()->addContactsItems(Account,
            { contact("2:1", "2", "c1", QUrl("file:///elsewhere.png")), contact("2:1", "2", "c1b") }));
        QCOMPARE(rows(), before + QStringList { "5|2:1|2|c1b|" });
    }

    void aContactWithoutFolderIsNotDroppedSilently()
    {
        EasContactsItem item;
        item.setServerId("1:1");
        QVERIFY(database()->addContactsItems(Account, { item }));
        QVERIFY(rows().contains("5|1:1|||"));
    }

    void identifiersAreReadPerAccountAndFolder()
    {
        QCOMPARE(*database()->localContactIds(Account, "2"), (QStringList { "c1", "c2" }));
        QCOMPARE(*database()->localContactIds(Account, QString()), (QStringList { "c1", "c2", "c3" }));
        QCOMPARE(*database()->localToServerContactIds(Account, "3"), (Map { { "c3", "3:1" } }));
        QCOMPARE(*database()->localToServerContactIds(Account, QString()),
            (Map { { "c1", "2:1" }, { "c2", "2:2" }, { "c3", "3:1" } }));
        QCOMPARE(*database()->serverToLocalContactIds(OtherAccount), (Map { { "2:1", "c9" } }));
        QCOMPARE(*database()->folderServerIdByContactLocalId(Account, "3:1"), QString("3"));
        QCOMPARE(*database()->folderServerIdByContactLocalId(Account, "c3"), QString());
    }

    void picturesAreReadByLocalIdentifier()
    {
        const QUrl odd = QUrl::fromLocalFile("/home/user/50% of \"Zoë\" #1?.png");
        QVERIFY(database()->addContactsItems(Account, { contact("2:7", "2", "c7", odd) }));
        const QMap<QString, QUrl> urls = *database()->localContactIdsToAvatarsUrls(Account);
        QCOMPARE(urls.size(), 4);
        QCOMPARE(urls.value("c1"), QUrl("file:///home/user/.avatars/account-5/a.png"));
        QCOMPARE(urls.value("c7"), odd);
        QVERIFY(urls.value("c2").isEmpty());
    }

    void anUpdateWritesEveryColumnOfThatAccountsRow()
    {
        QVERIFY(database()->updateContactsItems(
            Account, { contact("2:1", "3", "c1-new", QUrl("file:///b.png")) }));
        QCOMPARE(rows(),
            (QStringList { "5|2:1|3|c1-new|file:///b.png", "5|2:2|2|c2|", "5|3:1|3|c3|", "6|2:1|2|c9|" }));
    }

    void anUpdateThatWouldRepeatAKeyFails()
    {
        mFixture->execute({ "INSERT INTO contacts VALUES (5, '2:1', '2', 'other', '')" });
        const LogCollector log;
        QVERIFY(!database()->updateContactsItems(Account, { contact("2:1", "2", "c1") }));
        QVERIFY(log.contains(
            QtCriticalMsg, { "can't update contacts items for account", "5", ". Error:", "UNIQUE" }));
    }

    void changesAreAddedThenUpdatedThenDeleted()
    {
        QVERIFY(database()->contactsItemsChanges(
            Account, { contact("2:5", "2", "c5") }, { contact("2:5", "3", "c6") }, { "2:1", "2:2", "3:1" }));
        QCOMPARE(rows(), (QStringList { "6|2:1|2|c9|", "5|2:5|3|c6|" }));
    }

    void withAFolderOnlyItsRowsChange()
    {
        QVERIFY(database()->addContactsItems(Account, { contact("2:1", "3", "c4") }));
        QVERIFY(database()->contactsItemsChanges(
            Account, {}, { contact("2:1", "3", "c5") }, { "2:2", "3:1" }, "3"));
        QCOMPARE(rows(),
            (QStringList { "5|2:1|2|c1|file:///home/user/.avatars/account-5/a.png", "5|2:2|2|c2|",
                "6|2:1|2|c9|", "5|2:1|3|c5|" }));
    }

    void aFolderIsCleared()
    {
        QVERIFY(database()->clearContactsFolder(Account, "2"));
        QCOMPARE(rows(), (QStringList { "5|3:1|3|c3|", "6|2:1|2|c9|" }));
    }

private:
    QStringList rows() const { return mFixture->rows("SELECT * FROM contacts ORDER BY rowid"); }

    std::unique_ptr<DatabaseFixture> mFixture;
};

FENNEL_REGISTER_TEST(EasDatabaseContactsTest)
#include "easdatabasecontactstest.moc"
