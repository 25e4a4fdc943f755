// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailfolderadapter.h"
#include "application/mapping/easdatabase.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "storages/mail/mailfolderchanges.h"
#include "support/logcollector.h"
#include "support/mailfixture.h"
#include "support/testmain.h"

#include <qmaildisconnected.h>
#include <qmailfolderkey.h>

#include <QtTest>

namespace {

EasFolderItem folderItem(const QString &serverId, EasFolderItem::FolderType type, const QString &name,
    const QString &parent = QStringLiteral("0"))
{
    EasFolderItem item;
    item.setServerId(serverId);
    item.setServerParentId(parent);
    item.setDisplayName(name);
    item.setType(type);
    return item;
}

/** An account with the folder side of its storage. */
struct Folders : MailFixture
{
    Folders()
        : changes(context)
        , adapter(context, changes)
    {
    }

    bool add(QList<EasFolderItem> items)
    {
        const bool done = adapter.updateFolders(items, {}, {});
        return done && EasDatabase::instance()->folderItemsChanges(accountId(), items, {}, {});
    }

    QMailFolder folder(const QString &serverId) const
    {
        return context.store->folder(QMailFolderId(
            EasDatabase::instance()->folderItemByServerId(accountId(), serverId)->localId().toULongLong()));
    }

    int folderCount() const
    {
        return context.store->countFolders(QMailFolderKey::parentAccountId(mailAccountId()));
    }

    MailFolderChanges changes;
    MailFolderAdapter adapter;
};

constexpr auto Inbox = EasFolderItem::DefaultInboxFolder;
constexpr auto UserMail = EasFolderItem::UserCreatedMailFolder;

} // namespace

class MailFolderAdapterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachTypeHasItsFlagAndStandardFolder_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<quint64>("flag");
        QTest::addColumn<int>("standardFolder");

        QTest::newRow("user-created") << 1 << quint64(QMailFolder::DeletionPermitted) << 0;
        QTest::newRow("Inbox") << 2 << quint64(QMailFolder::Incoming) << 1;
        QTest::newRow("Drafts") << 3 << quint64(QMailFolder::Drafts) << 3;
        QTest::newRow("Deleted Items") << 4 << quint64(QMailFolder::Trash) << 5;
        QTest::newRow("Sent Items") << 5 << quint64(QMailFolder::Sent) << 4;
        QTest::newRow("Outbox") << 6 << quint64(QMailFolder::Outgoing) << 2;
        QTest::newRow("user-created mail") << 12 << quint64(QMailFolder::DeletionPermitted) << 0;
    }
    void eachTypeHasItsFlagAndStandardFolder()
    {
        QFETCH(int, type);
        QFETCH(quint64, flag);
        QFETCH(int, standardFolder);
        Folders mail;
        QList<EasFolderItem> items { folderItem("5", EasFolderItem::FolderType(type), "Grüße") };
        QVERIFY(mail.adapter.updateFolders(items, {}, {}));
        QVERIFY(items.at(0).savedInStorage());
        const QMailFolder folder(QMailFolderId(items.at(0).localId().toULongLong()));
        QCOMPARE(folder.displayName(), QStringLiteral("Grüße"));
        QCOMPARE(folder.parentAccountId(), mail.mailAccountId());
        const quint64 own = QMailFolder::DeletionPermitted | QMailFolder::Incoming | QMailFolder::Drafts
            | QMailFolder::Trash | QMailFolder::Sent | QMailFolder::Outgoing;
        QCOMPARE(folder.status() & own, flag);
        const quint64 common = QMailFolder::MessagesPermitted | QMailFolder::RenamePermitted
            | QMailFolder::ChildCreationPermitted | QMailFolder::SynchronizationEnabled;
        QCOMPARE(folder.status() & common, common);
        if (standardFolder > 0)
            QCOMPARE(QMailAccount(mail.mailAccountId())
                         .standardFolder(QMailFolder::StandardFolder(standardFolder)),
                folder.id());
        else
            QVERIFY(QMailAccount(mail.mailAccountId()).standardFolders().isEmpty());
    }

    void otherFoldersArePassedOver()
    {
        Folders mail;
        QList<EasFolderItem> items;
        for (int type = 7; type <= 19; ++type) {
            if (type != UserMail)
                items.append(folderItem(QString::number(type), EasFolderItem::FolderType(type), "other"));
        }
        QVERIFY(mail.adapter.updateFolders(items, items, {}));
        QCOMPARE(mail.folderCount(), 0);
        for (const EasFolderItem &item : items)
            QVERIFY(item.localId().isEmpty() && !item.savedInStorage());
    }

    void aTreeArrivesInOneReply()
    {
        Folders mail;
        QVERIFY(mail.add({ folderItem("1", Inbox, "Inbox"), folderItem("2", UserMail, "A", "1"),
            folderItem("3", UserMail, "B", "2") }));
        QCOMPARE(mail.folder("2").parentFolderId(), mail.folder("1").id());
        QCOMPARE(mail.folder("3").parentFolderId(), mail.folder("2").id());
        QVERIFY(!mail.folder("1").parentFolderId().isValid());
        QVERIFY(mail.add({ folderItem("4", UserMail, "C", "3") }));
        QCOMPARE(mail.folder("4").parentFolderId(), mail.folder("3").id());
    }

    void synchronisationIsInherited()
    {
        Folders mail;
        QVERIFY(mail.add({ folderItem("1", UserMail, "A") }));
        QMailFolder parent = mail.folder("1");
        QVERIFY(parent.status() & QMailFolder::SynchronizationEnabled);
        parent.setStatus(QMailFolder::SynchronizationEnabled, false);
        QVERIFY(mail.context.store->updateFolder(&parent));
        QVERIFY(mail.add({ folderItem("2", UserMail, "B", "1") }));
        QVERIFY(!(mail.folder("2").status() & QMailFolder::SynchronizationEnabled));
    }

    void aRepeatedReplyFindsItsFolders()
    {
        Folders mail;
        QList<EasFolderItem> first { folderItem("1", Inbox, "Inbox"), folderItem("2", UserMail, "A", "1") };
        QList<EasFolderItem> again = first;
        QVERIFY(mail.adapter.updateFolders(first, {}, {}));
        // The rows could not be written.
        QVERIFY(mail.adapter.updateFolders(again, {}, {}));
        QCOMPARE(mail.folderCount(), 2);
        QCOMPARE(again.at(1).localId(), first.at(1).localId());
    }

    void foldersOfOneNameAreTwo()
    {
        Folders mail;
        QVERIFY(mail.add({ folderItem("1", UserMail, "A"), folderItem("2", UserMail, "A") }));
        QCOMPARE(mail.folderCount(), 2);
        QVERIFY(mail.add({ folderItem("3", UserMail, "A") }));
        QCOMPARE(mail.folderCount(), 3);
    }

    void aFolderIsRenamedAndMoved()
    {
        LogCollector log;
        Folders mail;
        QVERIFY(mail.add({ folderItem("1", UserMail, "A"), folderItem("2", UserMail, "B", "1") }));
        EasFolderItem change = folderItem("2", UserMail, "Übrig");
        change.appendChangedField(Wbxml::FolderHierarchy::DisplayName);
        change.appendChangedField(Wbxml::FolderHierarchy::ParentId);
        change.appendChangedField(Wbxml::FolderHierarchy::ServerId);
        QList<EasFolderItem> none;
        QVERIFY(mail.adapter.updateFolders(none, { change }, {}));
        QCOMPARE(mail.folder("2").displayName(), QStringLiteral("Übrig"));
        QVERIFY(!mail.folder("2").parentFolderId().isValid());
        QVERIFY(log.contains("Server folder id is 0, so it means it is a root folder"));
        QVERIFY(log.contains(QtWarningMsg, { "unhandled field:", "1800" }));

        change.clearChangedFields();
        change.appendChangedField(Wbxml::FolderHierarchy::ParentId);
        change.setServerParentId("1");
        QVERIFY(mail.adapter.updateFolders(none, { change }, {}));
        QCOMPARE(mail.folder("2").parentFolderId(), mail.folder("1").id());

        change.setServerParentId("calendar");
        QVERIFY(mail.adapter.updateFolders(none, { change }, {}));
        QCOMPARE(mail.folder("2").parentFolderId(), mail.folder("1").id());
        QVERIFY(log.contains(QtWarningMsg,
            { "can't find local id for a parent server id", "calendar", ". Not an email folder?" }));
    }

    void aTypeSetsItsFlagAndOthersNone()
    {
        Folders mail;
        QVERIFY(mail.add({ folderItem("1", UserMail, "A") }));
        EasFolderItem change = folderItem("1", EasFolderItem::DefaultSentItemsFolder, "A");
        change.appendChangedField(Wbxml::FolderHierarchy::Type);
        QList<EasFolderItem> none;
        QVERIFY(mail.adapter.updateFolders(none, { change }, {}));
        const quint64 before = mail.folder("1").status();
        QVERIFY(before & QMailFolder::Sent);
        change.setType(EasFolderItem::UserCreatedGenericFolder);
        QVERIFY(mail.adapter.updateFolders(none, { change }, {}));
        QCOMPARE(mail.folder("1").status(), before);
    }

    void aFolderIsMovedBelowOneOfTheSameReplyAndSurvivesItsOldParent()
    {
        Folders mail;
        QVERIFY(mail.add({ folderItem("1", UserMail, "A"), folderItem("2", UserMail, "B", "1") }));
        mail.addMessage(mail.item("2:1", "2"));
        EasFolderItem move = folderItem("2", UserMail, "B", "3");
        move.appendChangedField(Wbxml::FolderHierarchy::ParentId);
        QList<EasFolderItem> added { folderItem("3", UserMail, "C") };
        QVERIFY(mail.adapter.updateFolders(added, { move }, { "1" }));
        QCOMPARE(mail.folder("2").parentFolderId(), QMailFolderId(added.at(0).localId().toULongLong()));
        QCOMPARE(mail.messageCount(), 1);
    }

    void aTreeArrivesWithTheChildrenFirst()
    {
        Folders mail;
        QVERIFY(mail.add({ folderItem("3", UserMail, "C", "2"), folderItem("2", UserMail, "B", "1"),
            folderItem("1", UserMail, "A"), folderItem("4", UserMail, "own parent", "4") }));
        QCOMPARE(mail.folder("3").parentFolderId(), mail.folder("2").id());
        QCOMPARE(mail.folder("2").parentFolderId(), mail.folder("1").id());
        QCOMPARE(mail.folderCount(), 4);
    }

    void aDeletedFolderTakesAlongWhatTheServerDoesNotKnow()
    {
        LogCollector log;
        Folders mail;
        QVERIFY(mail.add({ folderItem("1", UserMail, "A"), folderItem("2", UserMail, "B", "1"),
            folderItem("3", UserMail, "C", "2"), folderItem("4", UserMail, "D"),
            folderItem("9", EasFolderItem::DefaultCalendarFolder, "Calendar") }));
        const QMailFolderId made = mail.addStoreFolder("made here", mail.folder("1").id());
        const QMailFolderId below = mail.addStoreFolder("below it", made);
        mail.addMessage(mail.item("3:1", "3"));
        QList<EasFolderItem> none;
        QVERIFY(mail.adapter.updateFolders(none, {}, { "1", "9", "unknown" }));
        QVERIFY(!mail.context.store->folder(made).id().isValid());
        QVERIFY(!mail.context.store->folder(below).id().isValid());
        QVERIFY(mail.folder("4").id().isValid());
        QVERIFY(mail.context.store->messageRemovalRecords(mail.mailAccountId()).isEmpty());
    }

    void aFolderThatTheServerDoesNotNameOutlivesItsParent()
    {
        Folders mail;
        QVERIFY(mail.add({ folderItem("1", UserMail, "A"), folderItem("2", UserMail, "B", "1"),
            folderItem("3", UserMail, "C", "2") }));
        mail.addMessage(mail.item("3:1", "3"));
        QList<EasFolderItem> none;
        QVERIFY(mail.adapter.updateFolders(none, {}, { "1" }));
        QVERIFY(mail.folder("2").id().isValid());
        QVERIFY(!mail.folder("2").parentFolderId().isValid());
        QCOMPARE(mail.folder("3").parentFolderId(), mail.folder("2").id());
        QVERIFY(mail.adapter.updateFolders(none, {}, { "2", "3" }));
        QCOMPARE(mail.folderCount(), 0);
        QCOMPARE(mail.messageCount(), 0);
    }

    void whatWasMovedIntoADeletedFolderReturns()
    {
        Folders mail;
        QVERIFY(mail.add({ folderItem("1", UserMail, "A"), folderItem("2", UserMail, "B") }));
        const QMailMessageId own = mail.addMessage(mail.item("1:1", "1"));
        const QMailMessageId moved = mail.addMessage(mail.item("2:1", "2"));
        QMailDisconnected::moveToFolder(QMailMessageIdList { moved }, mail.folder("1").id());
        QList<EasFolderItem> none;
        QVERIFY(mail.adapter.updateFolders(none, {}, { "1" }));
        QVERIFY(!mail.message(own).id().isValid());
        QCOMPARE(mail.message(moved).parentFolderId(), mail.folder("2").id());
        QVERIFY(!mail.message(moved).previousParentFolderId().isValid());
        QCOMPARE(mail.message(moved).serverUid(), QStringLiteral("2:1"));
    }

    void whatWasMovedBetweenTwoDeletedFoldersGoes()
    {
        Folders mail;
        QVERIFY(mail.add({ folderItem("1", UserMail, "A"), folderItem("2", UserMail, "B") }));
        const QMailMessageId moved = mail.addMessage(mail.item("2:1", "2"));
        QMailDisconnected::moveToFolder(QMailMessageIdList { moved }, mail.folder("1").id());
        QList<EasFolderItem> none;
        QVERIFY(mail.adapter.updateFolders(none, {}, { "1", "2" }));
        QCOMPARE(mail.messageCount(), 0);
    }

    void afterAFailureWhatWasAddedIsTakenOut()
    {
        LogCollector log;
        Folders mail;
        QVERIFY(mail.add({ folderItem("1", UserMail, "A") }));
        QVERIFY(mail.context.store->removeFolder(mail.folder("1").id()));
        EasFolderItem change = folderItem("1", UserMail, "gone");
        change.appendChangedField(Wbxml::FolderHierarchy::DisplayName);
        QList<EasFolderItem> added { folderItem("2", UserMail, "B"), folderItem("3", UserMail, "C", "2") };
        QVERIFY(!mail.adapter.updateFolders(added, { change }, {}));
        QVERIFY(log.contains("invalid local folder id"));
        QVERIFY(log.contains(QtCriticalMsg, { "failed to update folder items" }));
        QCOMPARE(mail.folderCount(), 0);
    }

    void olderUserFoldersGetTheirRights()
    {
        LogCollector log;
        Folders mail;
        const quint64 rights = QMailFolder::DeletionPermitted | QMailFolder::RenamePermitted
            | QMailFolder::ChildCreationPermitted;
        mail.addFolder("1", UserMail);
        mail.addFolder("2", Inbox);
        EasFolderItem unsaved = folderItem("3", UserMail, "unsaved");
        EasFolderItem stray = folderItem("4", UserMail, "stray");
        stray.setLocalId("424242");
        QVERIFY(EasDatabase::instance()->addFolderItems(mail.accountId(), { unsaved, stray }));
        mail.adapter.updateUserCreatedFoldersStatus();
        QCOMPARE(mail.folder("1").status() & rights, rights);
        QCOMPARE(mail.folder("2").status() & rights, quint64(0));
        QVERIFY(log.contains("local folder id is empty in EAS database, skipping."));
        QVERIFY(log.contains("Invalid folder id, skipping user created mail folder."));
    }

    void thePolicySaysWhatToSynchronise()
    {
        Folders mail;
        QVERIFY(mail.add({ folderItem("1", Inbox, "Inbox"), folderItem("2", UserMail, "A") }));
        mail.addStoreFolder("local");
        QMailAccount account(mail.mailAccountId());
        account.setFolderSyncPolicy(QMailAccount::SyncEverything);
        QVERIFY(mail.context.store->updateAccount(&account));
        QStringList ids;
        const auto folders = mail.adapter.foldersToSynchronize();
        QVERIFY(folders);
        for (const EasFolderItem &item : *folders)
            ids.append(item.serverId());
        ids.sort();
        QCOMPARE(ids, QStringList({ "1", "2" }));
    }

    void aFolderIsEmptied()
    {
        LogCollector log;
        Folders mail;
        mail.addFolder("1");
        mail.addFolder("2");
        mail.addMessage(mail.item("1:1", "1"));
        mail.addMessage(mail.item("2:1", "2"));
        QVERIFY(mail.adapter.cleanUpFolder(
            *EasDatabase::instance()->folderItemByServerId(mail.accountId(), "1")));
        QCOMPARE(mail.messageCount(), 1);
        QVERIFY(mail.context.store->messageRemovalRecords(mail.mailAccountId()).isEmpty());
        QVERIFY(
            mail.adapter.cleanUpFolder(folderItem("9", EasFolderItem::DefaultCalendarFolder, "Calendar")));
        QVERIFY(log.contains(QtWarningMsg, { "tried to clean up non-email folder" }));
        QVERIFY(mail.adapter.cleanUpFolder(folderItem("1", UserMail, "no local id")));
        QVERIFY(log.contains("invalid folder id"));
    }

    void anEmptiedFolderKeepsWhatTheServerNeverHad()
    {
        Folders mail;
        const QMailFolderId drafts = mail.addFolder("1", EasFolderItem::DefaultDraftsFolder);
        mail.addMessage(mail.item("1:1", "1"));
        const QMailMessageId draft = mail.addUnsent(drafts);
        QVERIFY(mail.adapter.cleanUpFolder(
            *EasDatabase::instance()->folderItemByServerId(mail.accountId(), "1")));
        QCOMPARE(mail.messageCount(), 1);
        QCOMPARE(mail.message(draft).parentFolderId(), drafts);
    }

    void aRemovedFolderLeavesWhatTheServerNeverHad()
    {
        Folders mail;
        const QMailFolderId outbox = mail.addFolder("1", EasFolderItem::DefaultOutboxFolder);
        const QMailFolderId below = mail.addStoreFolder(QStringLiteral("below"), outbox);
        mail.addMessage(mail.item("1:1", "1"));
        const QMailMessageIdList unsent { mail.addUnsent(outbox), mail.addUnsent(below) };
        QList<EasFolderItem> none;
        QVERIFY(mail.adapter.updateFolders(none, {}, { QStringLiteral("1") }));
        QCOMPARE(mail.folderCount(), 0);
        QCOMPARE(mail.messageCount(), 2);
        for (const QMailMessageId &id : unsent) {
            QCOMPARE(mail.message(id).parentFolderId(), MailStoreContext::localStorage());
            QVERIFY(mail.message(id).status() & QMailMessage::Outbox);
        }
    }

    void anEmptiedFolderKeepsWhatWaitsForItsMove()
    {
        Folders mail;
        const QMailFolderId emptied = mail.addFolder("1");
        mail.addFolder("2");
        mail.addMessage(mail.item("1:1", "1"));
        const QMailMessageId moved = mail.addMessage(mail.item("2:1", "2"));
        QMailDisconnected::moveToFolder(QMailMessageIdList { moved }, emptied);
        QVERIFY(mail.adapter.cleanUpFolder(
            *EasDatabase::instance()->folderItemByServerId(mail.accountId(), "1")));
        QCOMPARE(mail.messageCount(), 1);
        QCOMPARE(mail.message(moved).parentFolderId(), emptied);
    }
};

FENNEL_REGISTER_TEST(MailFolderAdapterTest)
#include "mailfolderadaptertest.moc"
