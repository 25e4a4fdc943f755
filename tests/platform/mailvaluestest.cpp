// SPDX-License-Identifier: LGPL-2.1-or-later
#include "platform/mailfixture.h"
#include "support/testmain.h"

#include <QtTest>

using namespace MailFixture;

/** The small value classes of the mail store, folders, accounts, and the device's identity. */
class MailValuesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void idsOfZeroAreInvalid()
    {
        QVERIFY(!QMailMessageId().isValid());
        QVERIFY(!QMailMessageId(0).isValid());
        QVERIFY(!QMailMessageId(QStringLiteral("no number").toULongLong()).isValid());
        QCOMPARE(QMailMessageId(7).toULongLong(), quint64(7));
        QVERIFY(QMailMessageId(7) < QMailMessageId(8));
        QCOMPARE(QMailFolderId(QMailFolder::LocalStorageFolderId), QMailFolderId(1));
        const QVariant variant = QMailFolderId(5);
        QCOMPARE(variant.value<QMailFolderId>(), QMailFolderId(5));
        QCOMPARE((QSet<QMailAccountId> { QMailAccountId(1), QMailAccountId(1) }).size(), 1);
        QString text;
        QTextStream stream(&text);
        stream << QMailThreadId(9);
        stream.flush();
        QCOMPARE(text, QStringLiteral("9"));
    }

    void addressesAreParsed_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("address");
        QTest::addColumn<QString>("shown");
        QTest::newRow("an address alone") << "a@b.c"
                                          << "a@b.c"
                                          << "a@b.c"
                                          << "a@b.c";
        QTest::newRow("a name") << "Bob <bob@b.c>"
                                << "Bob"
                                << "bob@b.c"
                                << "Bob <bob@b.c>";
        QTest::newRow("a quoted name") << "\"Doe, John\" <j@x.org>"
                                       << "Doe, John"
                                       << "j@x.org"
                                       << "\"Doe, John\" <j@x.org>";
        QTest::newRow("brackets alone") << "<x@y.z>"
                                        << "x@y.z"
                                        << "x@y.z"
                                        << "x@y.z";
        QTest::newRow("nothing") << ""
                                 << ""
                                 << ""
                                 << "";
        QTest::newRow("more than one") << "\"A\" <a@a>; \"B\" <b@b>"
                                       << "A"
                                       << "a@a"
                                       << "\"A\" <a@a>";
        QTest::newRow("no brackets") << "Bob bob@b.c"
                                     << "Bob bob@b.c"
                                     << "Bob bob@b.c"
                                     << "Bob bob@b.c";
        QTest::newRow("a group") << "group: a@b.c, d@e.f;"
                                 << "group"
                                 << "a@b.c, d@e.f"
                                 << "group: a@b.c, d@e.f;";
        QTest::newRow("an encoded word") << "=?UTF-8?B?R3LDvMOfZQ==?= <g@g.g>"
                                         << "=?UTF-8?B?R3LDvMOfZQ==?="
                                         << "g@g.g"
                                         << "=?UTF-8?B?R3LDvMOfZQ==?= <g@g.g>";
        QTest::newRow("an open bracket") << "Bob <bob"
                                         << "Bob <bob"
                                         << "Bob <bob"
                                         << "Bob <bob";
        QTest::newRow("an open quote") << "\"Bob <b@b>"
                                       << "\"Bob <b@b>"
                                       << "\"Bob <b@b>"
                                       << "\"Bob <b@b>";
    }

    void addressesAreParsed()
    {
        QFETCH(QString, text);
        const QMailAddress address(text);
        QTEST(address.name(), "name");
        QTEST(address.address(), "address");
        QTEST(address.toString(), "shown");
        QCOMPARE(address.isNull(), text.isEmpty());
        QVERIFY(QMailAddress(address.toString()) == address);
    }

    void addressesAreBuilt()
    {
        QCOMPARE(QMailAddress(QStringLiteral("Two Words"), QStringLiteral("a@b")).toString(),
            QStringLiteral("Two Words <a@b>"));
        QCOMPARE(QMailAddress(QStringLiteral("Doe, \"J\""), QStringLiteral("a@b")).toString(),
            QStringLiteral("\"Doe, \\\"J\\\"\" <a@b>"));
        QCOMPARE(QMailAddress(QStringLiteral("a@b")).toString(true), QStringLiteral("<a@b>"));
        QVERIFY(QMailAddress(QStringLiteral("a@b.c")).isEmailAddress());
        QVERIFY(!QMailAddress(QStringLiteral("+49 30 123")).isEmailAddress());
        QVERIFY(QMailAddress(QStringLiteral("+49 30 123")).isPhoneNumber());
        const QMailAddress group(QStringLiteral("g: a@b, C <c@d>;"));
        QVERIFY(group.isGroup());
        QCOMPARE(group.groupMembers().size(), 2);
        QCOMPARE(group.groupMembers().at(1).name(), QStringLiteral("C"));
    }

    void listsAreSplitOutsideQuotes()
    {
        const auto list = QMailAddress::fromStringList(
            QStringLiteral("\"Doe, John\" <j@x>, b@b; \"x;y\" <c@c>, g: m@n, o@p;, last@l"));
        QCOMPARE(QMailAddress::toStringList(list),
            (QStringList { QStringLiteral("\"Doe, John\" <j@x>"), QStringLiteral("b@b"),
                QStringLiteral("\"x;y\" <c@c>"), QStringLiteral("g: m@n, o@p;"), QStringLiteral("last@l") }));
        QVERIFY(QMailAddress::fromStringList(QString()).isEmpty());
    }

    void timeStampsKeepTheirOffset()
    {
        const QDateTime utc(QDate(2024, 1, 2), QTime(3, 4, 5), Qt::UTC);
        QCOMPARE(QMailTimeStamp(utc).toString(), QStringLiteral("Tue, 2 Jan 2024 03:04:05 +0000"));
        QCOMPARE(QMailTimeStamp(utc.toOffsetFromUtc(-12600)).toString(),
            QStringLiteral("Mon, 1 Jan 2024 23:34:05 -0330"));
        QCOMPARE(QMailTimeStamp(utc).toString(QMailTimeStamp::Rfc3339),
            QStringLiteral("2024-01-02T03:04:05+00:00"));
        const QMailTimeStamp parsed(QStringLiteral("Tue, 2 Jan 2024 05:04:05 +0200"));
        QCOMPARE(parsed.toUTC(), utc);
        QCOMPARE(parsed.toString(), QStringLiteral("Tue, 2 Jan 2024 05:04:05 +0200"));
        QVERIFY(parsed == QMailTimeStamp(utc));
        QVERIFY(!QMailTimeStamp(QDateTime()).isValid());
        QVERIFY(QMailTimeStamp(QDateTime()).toString().isEmpty());
        QVERIFY(!QMailTimeStamp(QStringLiteral("soon")).isValid());
    }

    void foldersShowTheirPathUntilTheyHaveAName()
    {
        QMailFolder folder(QStringLiteral("path"));
        QCOMPARE(folder.displayName(), QStringLiteral("path"));
        folder.setDisplayName(QStringLiteral("shown"));
        QCOMPARE(folder.displayName(), QStringLiteral("shown"));
        QCOMPARE(folder.path(), QStringLiteral("path"));
    }

    void foldersComeBackAndMove()
    {
        const QMailAccountId account = addAccount();
        const QMailFolderId parent = addFolder(account, QStringLiteral("parent"));
        QMailFolder folder(QStringLiteral("f"), QMailFolderId(), account);
        folder.setStatus(QMailFolder::SynchronizationEnabled | QMailFolder::Favourite);
        folder.setCustomField(QStringLiteral("k"), QStringLiteral("v"));
        QMailStore *store = QMailStore::instance();
        QVERIFY(store->addFolder(&folder));
        folder.setParentFolderId(parent);
        folder.setStatus(QMailFolder::Favourite, false);
        QVERIFY(store->updateFolder(&folder));
        const QMailFolder loaded(folder.id());
        QCOMPARE(loaded.parentFolderId(), parent);
        QCOMPARE(loaded.status(), QMailFolder::SynchronizationEnabled);
        QCOMPARE(loaded.customField(QStringLiteral("k")), QStringLiteral("v"));

        QMailFolder self(parent);
        self.setParentFolderId(parent);
        QVERIFY(!store->updateFolder(&self));
        self.setParentFolderId(folder.id()); // Below its own child.
        QVERIFY(!store->updateFolder(&self));
        QVERIFY(store->removeAccount(account));
    }

    void standardFoldersPersistAndAreCleared()
    {
        const QMailAccountId id = addAccount();
        const QMailFolderId folder = addFolder(id);
        QMailAccount account(id);
        for (int kind = QMailFolder::InboxFolder; kind <= QMailFolder::JunkFolder; ++kind)
            account.setStandardFolder(QMailFolder::StandardFolder(kind), folder);
        QVERIFY(
            !QMailAccount(id).standardFolder(QMailFolder::InboxFolder).isValid()); // Not before the update.
        QVERIFY(QMailStore::instance()->updateAccount(&account));
        QCOMPARE(QMailAccount(id).standardFolders().size(), 6);
        QVERIFY(QMailStore::instance()->removeFolder(folder));
        QCOMPARE(
            QMailAccount(id).standardFolder(QMailFolder::OutboxFolder), folder); // Entries outlive folders.
        account.setStandardFolder(QMailFolder::OutboxFolder, QMailFolderId());
        QVERIFY(QMailStore::instance()->updateAccount(&account));
        QCOMPARE(QMailAccount(id).standardFolders().size(), 5);
        QVERIFY(QMailStore::instance()->removeAccount(id));
    }

    void thePolicyChoosesTheFolders()
    {
        const QMailAccountId id = addAccount();
        const QMailFolderId inbox = addFolder(id);
        const QMailFolderId below = addFolder(id, QStringLiteral("below"), inbox);
        const QMailFolderId marked = addFolder(id, QStringLiteral("marked"));
        QMailFolder folder(marked);
        folder.setStatus(QMailFolder::SynchronizationEnabled, true);
        QVERIFY(QMailStore::instance()->updateFolder(&folder));
        QMailAccount account(id);
        QCOMPARE(account.folderSyncPolicy(), QMailAccount::SyncInboxOnly);
        QVERIFY(account.foldersToSync().isEmpty());
        account.setStandardFolder(QMailFolder::InboxFolder, inbox);
        QCOMPARE(account.foldersToSync(), QMailFolderIdList { inbox });
        account.setFolderSyncPolicy(QMailAccount::SyncInboxAndSubfolders);
        QCOMPARE(account.foldersToSync(), (QMailFolderIdList { inbox, below }));
        account.setFolderSyncPolicy(QMailAccount::SyncSelectedFolders);
        QCOMPARE(account.foldersToSync(), QMailFolderIdList { marked });
        account.setFolderSyncPolicy(QMailAccount::SyncEverything);
        QCOMPARE(account.foldersToSync(), (QMailFolderIdList { inbox, below, marked }));
        QVERIFY(QMailStore::instance()->removeAccount(id));
    }
};

FENNEL_REGISTER_TEST(MailValuesTest)
#include "mailvaluestest.moc"
