// SPDX-License-Identifier: LGPL-2.1-or-later
#include "platform/mailfixture.h"
#include "support/testmain.h"

#include <qmaildisconnected.h>

#include <QSignalSpy>
#include <QtTest>

using namespace MailFixture;

/** What changes in the mail store, and who is told. */
class MailStoreSignalTest : public QObject
{
    Q_OBJECT

private:
    QMailStore *mStore = nullptr;
    QMailAccountId mAccount;
    QMailFolderId mInbox;

private Q_SLOTS:
    void initTestCase() { mStore = QMailStore::instance(); }

    void init()
    {
        mAccount = addAccount();
        mInbox = addFolder(mAccount);
        QVERIFY(mAccount.isValid());
        QVERIFY(mInbox.isValid());
    }

    void cleanup() { QVERIFY(mStore->removeAccount(mAccount)); }

    void updatingWritesOnlyWhatChanged()
    {
        const QMailMessageId id = addMessage(mAccount, mInbox, QStringLiteral("u"));
        QSignalSpy updated(mStore, &QMailStore::messagesUpdated);
        QMailMessage message(id);
        QVERIFY(mStore->updateMessage(&message));
        QCOMPARE(updated.count(), 0);
        QMailMessage other(id);
        other.setPreview(QStringLiteral("other"));
        QVERIFY(mStore->updateMessage(&other));
        QCOMPARE(updated.count(), 1);
        message.setCustomField(QStringLiteral("x"), QStringLiteral("y"));
        QVERIFY(mStore->updateMessage(&message));
        QCOMPARE(QMailMessage(id).preview(), QStringLiteral("other"));
        QCOMPARE(QMailMessage(id).customField(QStringLiteral("x")), QStringLiteral("y"));
    }

    void updatingTheUnknownFailsAndTheGoneSucceeds()
    {
        QMailMessage fresh = newMessage(mAccount, mInbox);
        QVERIFY(!mStore->updateMessage(&fresh));
        QCOMPARE(mStore->lastError(), QMailStore::ConstraintFailure);
        QMailMessage gone(addMessage(mAccount, mInbox));
        QVERIFY(mStore->removeMessage(gone.id()));
        QSignalSpy updated(mStore, &QMailStore::messagesUpdated);
        gone.setSubject(QStringLiteral("new"));
        QVERIFY(mStore->updateMessage(&gone));
        QCOMPARE(updated.count(), 0);
        QVERIFY(!QMailMessage(gone.id()).id().isValid());
    }

    void storedCustomFieldsOutliveAReparse()
    {
        QMailMessage message = newMessage(mAccount, mInbox);
        message.setCustomField(QStringLiteral("key"), QStringLiteral("kept"));
        QVERIFY(mStore->addMessage(&message));
        QMailMessage loaded(message.id());
        const QMailMessageMetaData meta(loaded);
        loaded = QMailMessage::fromRfc2822("Subject: parsed\r\n\r\ntext\r\n");
        QVERIFY(loaded.customFields().isEmpty());
        loaded.setId(meta.id());
        loaded.setParentAccountId(meta.parentAccountId());
        loaded.setParentFolderId(meta.parentFolderId());
        loaded.setContentScheme(meta.contentScheme());
        loaded.setContentIdentifier(meta.contentIdentifier());
        QVERIFY(mStore->updateMessage(&loaded));
        const QMailMessage again(meta.id());
        QCOMPARE(again.customField(QStringLiteral("key")), QStringLiteral("kept"));
        QCOMPARE(again.subject(), QStringLiteral("parsed"));
        QCOMPARE(again.body().data(), QStringLiteral("text\n"));
        QVERIFY(again.contentIdentifier() != meta.contentIdentifier());
    }

    void statusFlagsAreSetAndClearedByKey()
    {
        const QMailMessageId a = addMessage(mAccount, mInbox);
        const QMailMessageId b = addMessage(mAccount, mInbox);
        QSignalSpy updated(mStore, &QMailStore::messagesUpdated);
        QVERIFY(mStore->updateMessagesMetaData(
            QMailMessageKey::id({ a, b }), QMailMessage::CalendarCancellation, true));
        QCOMPARE(updated.count(), 1);
        QVERIFY(QMailMessage(b).status() & QMailMessage::CalendarCancellation);
        QVERIFY(mStore->updateMessagesMetaData(
            QMailMessageKey::id(a), QMailMessage::CalendarCancellation, false));
        QVERIFY(!(QMailMessage(a).status() & QMailMessage::CalendarCancellation));
        QVERIFY(QMailMessage(b).status() & QMailMessage::CalendarCancellation);
    }

    void bothFoldersOfAMoveAreToldAsChanged()
    {
        const QMailFolderId other = addFolder(mAccount, QStringLiteral("other"));
        QMailMessageMetaData message(addMessage(mAccount, mInbox));
        QMailFolderIdList changed;
        QObject context;
        connect(mStore, &QMailStore::folderContentsModified, &context,
            [&changed](const QMailFolderIdList &ids) { changed += ids; });
        message.setParentFolderId(other);
        QVERIFY(mStore->updateMessage(&message));
        QVERIFY(changed.contains(mInbox));
        QVERIFY(changed.contains(other));
    }

    void signalsComeBeforeTheCallReturns()
    {
        const QMailFolderId child = addFolder(mAccount, QStringLiteral("child"), mInbox);
        QStringList heard;
        QObject context;
        connect(mStore, &QMailStore::messagesRemoved, &context, [&] { heard << QStringLiteral("messages"); });
        connect(mStore, &QMailStore::foldersRemoved, &context, [&] { heard << QStringLiteral("folders"); });
        QMailFolderIdList changed;
        connect(mStore, &QMailStore::folderContentsModified, &context, [&](const QMailFolderIdList &ids) {
            heard << QStringLiteral("contents");
            changed = ids;
        });
        addMessage(mAccount, child);
        QCOMPARE(changed, (QMailFolderIdList { child, mInbox }));
        heard.clear();
        QVERIFY(mStore->removeFolders(QMailFolderKey::id(child)));
        QCOMPARE(heard,
            (QStringList {
                QStringLiteral("messages"), QStringLiteral("folders"), QStringLiteral("contents") }));
        QCOMPARE(changed, QMailFolderIdList { mInbox });
    }

    void aListenerSeesTheNewIdAndMayAskTheStore()
    {
        QObject context;
        QMailFolder folder(QStringLiteral("new"), mInbox, mAccount);
        bool seen = false;
        connect(mStore, &QMailStore::foldersAdded, &context, [&](const QMailFolderIdList &ids) {
            seen = ids == QMailFolderIdList { folder.id() }
                && QMailFolder(ids.first()).displayName() == QStringLiteral("new");
        });
        QVERIFY(mStore->addFolder(&folder));
        QVERIFY(seen);
    }

    void contentChangesAreToldApart()
    {
        QMailMessage message(addMessage(mAccount, mInbox));
        QSignalSpy updated(mStore, &QMailStore::messagesUpdated);
        QSignalSpy contents(mStore, &QMailStore::messageContentsModified);
        message.setPreview(QStringLiteral("p"));
        QVERIFY(mStore->updateMessage(&message));
        QCOMPARE(contents.count(), 0);
        message.setBody(textBody(QStringLiteral("b")));
        QVERIFY(mStore->updateMessage(&message));
        QCOMPARE(contents.count(), 1);
        QCOMPARE(updated.count(), 2);
    }

    void movesWaitForTheServer()
    {
        const QMailFolderId drafts = addFolder(mAccount, QStringLiteral("Drafts"));
        QMailAccount account(mAccount);
        account.setStandardFolder(QMailFolder::InboxFolder, mInbox);
        account.setStandardFolder(QMailFolder::DraftsFolder, drafts);
        QVERIFY(mStore->updateAccount(&account));
        const QMailMessageId id = addMessage(mAccount, mInbox, QStringLiteral("m"));
        const QMailMessageId local = addMessage(mAccount, mInbox);

        QMailDisconnected::moveToStandardFolder({ id, local }, QMailFolder::DraftsFolder);
        QMailMessage moved(id);
        QCOMPARE(moved.parentFolderId(), drafts);
        QCOMPARE(moved.previousParentFolderId(), mInbox);
        QCOMPARE(moved.restoreFolderId(), mInbox);
        QVERIFY(moved.status() & QMailMessage::Draft);
        QVERIFY(!QMailMessage(local).previousParentFolderId().isValid());
        QVERIFY(QMailDisconnected::updatesOutstanding(mAccount));

        QMailDisconnected::moveToStandardFolder(
            { id }, QMailFolder::JunkFolder); // The account has no such folder.
        QCOMPARE(QMailMessage(id).parentFolderId(), drafts);

        QMailDisconnected::moveToFolder({ id }, mInbox);
        moved = QMailMessage(id);
        QVERIFY(!moved.previousParentFolderId().isValid());
        QVERIFY(!(moved.status() & QMailMessage::Draft));
        QVERIFY(!QMailDisconnected::updatesOutstanding(mAccount));

        QMailDisconnected::flagMessage(id, QMailMessage::Read, QMailMessage::New, QString());
        QVERIFY(QMailMessage(id).status() & QMailMessage::Read);
    }
};

FENNEL_REGISTER_TEST(MailStoreSignalTest)
#include "mailstoresignaltest.moc"
