// SPDX-License-Identifier: LGPL-2.1-or-later
#include "platform/mailfixture.h"
#include "support/accountfactory.h"
#include "support/privatebus.h"
#include "support/testmain.h"

#include <QSignalSpy>
#include <QtTest>

#include <algorithm>
#include <memory>

using namespace MailFixture;

/** The mail accounts that come from the account store. */
class MailAccountStoreTest : public QObject
{
    Q_OBJECT

private:
    QMailStore *mStore = nullptr;
    std::unique_ptr<AccountFactory> mFactory;

    QMailAccountId createAccount(const QString &policy = QStringLiteral("inbox-only"))
    {
        AccountOptions options;
        options.withIdentity = false;
        options.folderSyncPolicy = policy;
        return QMailAccountId(quint64(mFactory->create(options)));
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(PrivateBus::ensure());
        mFactory = std::make_unique<AccountFactory>();
        mStore = QMailStore::instance();
        QVERIFY(mStore->queryAccounts().isEmpty());
    }

    void cleanupTestCase() { mFactory.reset(); }

    void anAccountIsThereAsSoonAsTheAccountStoreHasIt()
    {
        QSignalSpy added(mStore, &QMailStore::accountsAdded);
        const QMailAccountId id = createAccount();
        QVERIFY(id.isValid());
        QVERIFY(mStore->queryAccounts().contains(id)); // At once, before any event.
        QCOMPARE(QMailAccount(id).id(), id);
        QVERIFY(addFolder(id).isValid());
        QTRY_COMPARE(added.count(), 1); // The first account of all.
        QCOMPARE(added.first().first().value<QMailAccountIdList>(), QMailAccountIdList { id });
        QVERIFY(mFactory->remove(EasAccountId(id.toULongLong())));
    }

    void thePolicyIsThatOfTheAccountRecord_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("policy");
        QTest::newRow("follow the flags") << "follow-flags" << int(QMailAccount::SyncSelectedFolders);
        QTest::newRow("the inbox") << "inbox-only" << int(QMailAccount::SyncInboxOnly);
        QTest::newRow("the inbox and below")
            << "inbox-and-subfolders" << int(QMailAccount::SyncInboxAndSubfolders);
        QTest::newRow("everything") << "ignore-flags" << int(QMailAccount::SyncEverything);
        QTest::newRow("something unknown") << "whatever" << int(QMailAccount::SyncInboxOnly);
    }

    void thePolicyIsThatOfTheAccountRecord()
    {
        QFETCH(QString, text);
        QFETCH(int, policy);
        const QMailAccountId id = createAccount();
        QVERIFY(mFactory->setValue(
            EasAccountId(id.toULongLong()), QString(), QStringLiteral("folderSyncPolicy"), text));
        QCOMPARE(int(QMailAccount(id).folderSyncPolicy()), policy);
        QVERIFY(mFactory->remove(EasAccountId(id.toULongLong())));
    }

    void whatTheMailStoreKeepsOfAnAccountPersists()
    {
        const QMailAccountId id = createAccount();
        const QMailFolderId inbox = addFolder(id);
        QMailAccount account(id);
        account.setStatus(QMailAccount::CanCreateFolders | QMailAccount::Synchronized, true);
        account.setStandardFolder(QMailFolder::InboxFolder, inbox);
        account.setCustomField(QStringLiteral("k"), QStringLiteral("v"));
        QSignalSpy updated(mStore, &QMailStore::accountsUpdated);
        QVERIFY(mStore->updateAccount(&account));
        QCOMPARE(updated.count(), 1);
        withOtherStore([&] {
            const QMailAccount loaded(id);
            QVERIFY(loaded.status() & QMailAccount::CanCreateFolders);
            QCOMPARE(loaded.standardFolder(QMailFolder::InboxFolder), inbox);
            QCOMPARE(loaded.customField(QStringLiteral("k")), QStringLiteral("v"));
        });
        QVERIFY(mFactory->remove(EasAccountId(id.toULongLong())));
    }

    void itsMailGoesWithTheAccount()
    {
        const QMailAccountId id = createAccount();
        const QMailFolderId folder = addFolder(id);
        const QMailMessageId message = addMessage(id, folder, QStringLiteral("1"));
        mStore->removeMessage(addMessage(id, folder, QStringLiteral("2")), QMailStore::CreateRemovalRecord);
        QSignalSpy removed(mStore, &QMailStore::accountsRemoved);
        QVERIFY(mFactory->remove(EasAccountId(id.toULongLong())));
        QVERIFY(!mStore->queryAccounts().contains(id));
        const auto told = [&] {
            return std::count_if(removed.cbegin(), removed.cend(), [&](const QVariantList &arguments) {
                return arguments.first().value<QMailAccountIdList>().contains(id);
            });
        };
        QTRY_COMPARE(int(told()), 1);
        QVERIFY(!QMailFolder(folder).id().isValid());
        QVERIFY(!QMailMessage(message).id().isValid());
        QVERIFY(mStore->messageRemovalRecords(id).isEmpty());
    }

    void whatWentMeanwhileIsCleanedAtTheNextStart()
    {
        const QMailAccountId id = createAccount();
        const QMailFolderId folder = addFolder(id);
        QVERIFY(mFactory->remove(EasAccountId(id.toULongLong())));
        // This thread's store has not turned its event loop, so the folder goes by the other one's start.
        QVERIFY(QMailFolder(folder).id().isValid());
        withOtherStore([] { QMailStore::instance(); });
        QVERIFY(!QMailFolder(folder).id().isValid());
    }

    void anAccountOfTheAccountStoreEndsThere()
    {
        const QMailAccountId id = createAccount();
        QVERIFY(!mStore->removeAccount(id));
        QMailAccount twin;
        twin.setId(id);
        QMailAccountConfiguration configuration;
        QVERIFY(!mStore->addAccount(&twin, &configuration));
        QCOMPARE(mStore->lastError(), QMailStore::ConstraintFailure);
        QMailAccount next;
        QVERIFY(mStore->addAccount(&next, &configuration));
        QVERIFY(id < next.id()); // No number stands for two accounts.
        QVERIFY(mStore->removeAccount(next.id()));
    }
};

FENNEL_REGISTER_TEST(MailAccountStoreTest)
#include "mailaccountstoretest.moc"
