// SPDX-License-Identifier: LGPL-2.1-or-later
#include "platform/mailfixture.h"
#include "support/storedatabase.h"
#include "support/testmain.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <ctime>

using namespace MailFixture;

/** Adding to, reading from and removing from the mail store. */
class MailStoreTest : public QObject
{
    Q_OBJECT

private:
    QMailStore *mStore = nullptr;
    QMailAccountId mAccount;
    QMailFolderId mInbox;

private Q_SLOTS:
    void initTestCase() { mStore = QMailStore::instance(); }

    void aFreshStoreHoldsTheLocalFolder()
    {
        const QByteArray before = qgetenv("QMF_DATA");
        const QTemporaryDir folder;
        qputenv("QMF_DATA", QFile::encodeName(folder.path()));
        withOtherStore([] {
            QCOMPARE(QMailStore::initializationState(), QMailStore::Uninitialized);
            const QMailStore *store = QMailStore::instance();
            QCOMPARE(QMailStore::initializationState(), QMailStore::Initialized);
            QCOMPARE(store->queryFolders(),
                QMailFolderIdList { QMailFolderId(QMailFolder::LocalStorageFolderId) });
            QVERIFY(store->queryMessages().isEmpty());
        });
        qputenv("QMF_DATA", before);
    }

    void fileAndFolderAreTheUsersAlone()
    {
        const QByteArray before = qgetenv("QMF_DATA");
        const QTemporaryDir parent;
        const QString folder = parent.filePath(QStringLiteral("mail"));
        const QString file = folder + QStringLiteral("/mailstore.db");
        const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther
            | QFile::WriteOther | QFile::ExeOther;
        qputenv("QMF_DATA", QFile::encodeName(folder));
        for (int start = 0; start < 2; ++start) {
            withOtherStore([] { QVERIFY(QMailStore::instance()); });
            for (const QString &path : { folder, file })
                QVERIFY2(!(QFile::permissions(path) & others), qPrintable(path));
            // As an older version has left them.
            QVERIFY(QFile::setPermissions(
                folder, QFile::permissions(folder) | QFile::ReadOther | QFile::ExeOther));
            QVERIFY(QFile::setPermissions(file, QFile::permissions(file) | QFile::ReadOther));
        }
        qputenv("QMF_DATA", before);
    }

    void init()
    {
        mAccount = addAccount();
        mInbox = addFolder(mAccount);
        QVERIFY(mAccount.isValid());
        QVERIFY(mInbox.isValid());
    }

    void cleanup() { QVERIFY(mStore->removeAccount(mAccount)); }

    void whatCannotBeReadIsNotTakenForGone()
    {
        QMailMessage message = newMessage(mAccount, mInbox);
        QVERIFY(mStore->addMessage(&message));
        message.setSubject(QStringLiteral("Changed"));
        StoreDatabase::execute(StoreDatabase::Mail, QStringLiteral("ALTER TABLE messages RENAME TO hidden"));
        QVERIFY(!mStore->updateMessage(&message));
        QCOMPARE(mStore->lastError(), QMailStore::StorageInaccessible);
        StoreDatabase::execute(StoreDatabase::Mail, QStringLiteral("ALTER TABLE hidden RENAME TO messages"));
        StoreDatabase::execute(StoreDatabase::Mail, QStringLiteral("ALTER TABLE folders RENAME TO hidden"));
        QVERIFY(!mStore->removeFolder(mInbox, QMailStore::NoRemovalRecord));
        QCOMPARE(mStore->lastError(), QMailStore::StorageInaccessible);
        StoreDatabase::execute(StoreDatabase::Mail, QStringLiteral("ALTER TABLE hidden RENAME TO folders"));
        QVERIFY(mStore->updateMessage(&message));
        QCOMPARE(mStore->message(message.id()).subject(), QStringLiteral("Changed"));
    }

    void anAccountKeepsTheIdThatWasChosen()
    {
        QMailAccount account;
        account.setId(QMailAccountId(4711));
        QMailAccountConfiguration configuration;
        QVERIFY(mStore->addAccount(&account, &configuration));
        QCOMPARE(account.id(), QMailAccountId(4711));
        QVERIFY(mStore->queryAccounts().contains(QMailAccountId(4711)));
        QVERIFY(!mStore->addAccount(&account, &configuration));
        QCOMPARE(mStore->lastError(), QMailStore::ConstraintFailure);
        QVERIFY(mStore->removeAccount(account.id()));
        QVERIFY(!QMailAccount(QMailAccountId(4711)).id().isValid());
        QCOMPARE(mStore->lastError(), QMailStore::InvalidId);
    }

    void addAccountNeedsBothPointers()
    {
        QMailAccount account;
        QVERIFY(!mStore->addAccount(&account, nullptr));
        QVERIFY(!account.id().isValid());
    }

    void aFolderNeedsItsParentAndItsAccount()
    {
        QMailFolder orphan(QStringLiteral("a"), QMailFolderId(999999), mAccount);
        QVERIFY(!mStore->addFolder(&orphan));
        QCOMPARE(mStore->lastError(), QMailStore::ConstraintFailure);
        QVERIFY(!orphan.id().isValid());

        QMailFolder stray(QStringLiteral("a"), QMailFolderId(), QMailAccountId(999999));
        QVERIFY(!mStore->addFolder(&stray));
        QCOMPARE(mStore->lastError(), QMailStore::ConstraintFailure);

        QMailFolder again(mInbox);
        QVERIFY(!mStore->addFolder(&again));
        QCOMPARE(mStore->lastError(), QMailStore::ConstraintFailure);
    }

    void twoFoldersMayHaveOneName()
    {
        QVERIFY(addFolder(mAccount, QStringLiteral("same")).isValid());
        QVERIFY(addFolder(mAccount, QStringLiteral("same")).isValid());
        QVERIFY(addFolder(QMailAccountId(), QStringLiteral("without account")).isValid());
    }

    void aMessageNeedsAnAccountAndAFolder()
    {
        QMailMessage message = newMessage(QMailAccountId(), mInbox);
        QVERIFY(!mStore->addMessage(&message));
        message = newMessage(mAccount, QMailFolderId());
        QVERIFY(!mStore->addMessage(&message));
        QCOMPARE(mStore->lastError(), QMailStore::ConstraintFailure);
        QVERIFY(!message.id().isValid());
    }

    void addingFillsInWhatOnlyTheStoreKnows()
    {
        QMailMessage message = newMessage(mAccount, mInbox, QStringLiteral("1:1"));
        QVERIFY(message.contentScheme().isEmpty());
        QVERIFY(message.dataModified());
        QVERIFY(mStore->addMessage(&message));
        QVERIFY(message.id().isValid());
        QVERIFY(!message.dataModified());
        QVERIFY(!message.contentModified());
        QVERIFY(!message.contentScheme().isEmpty());
        QVERIFY(!message.contentIdentifier().isEmpty());
        QVERIFY(message.parentThreadId().isValid());
        QVERIFY(!mStore->addMessage(&message)); // It is known now.
        QCOMPARE(mStore->lastError(), QMailStore::ConstraintFailure);
    }

    void aServerUidIsUniqueInAnAccount()
    {
        const QString uid = QStringLiteral("5:17");
        QMailMessage first = newMessage(mAccount, mInbox, uid);
        first.setStatus(QMailMessage::Temporary, true);
        QVERIFY(mStore->addMessage(&first));
        const QMailFolderId other = addFolder(mAccount, QStringLiteral("other"));
        QMailMessage second = newMessage(mAccount, other, uid);
        QVERIFY(!mStore->addMessage(&second));
        QCOMPARE(mStore->lastError(), QMailStore::ConstraintFailure);

        const QMailAccountId otherAccount = addAccount();
        QVERIFY(addMessage(otherAccount, addFolder(otherAccount), uid).isValid());
        QVERIFY(mStore->removeAccount(otherAccount));
        QVERIFY(addMessage(mAccount, mInbox).isValid());
        QVERIFY(addMessage(mAccount, mInbox).isValid()); // Empty uids repeat.
        QCOMPARE(mStore->message(uid, mAccount).id(), first.id());
        QCOMPARE(QMailMessageMetaData(uid, mAccount).id(), first.id());
        QVERIFY(!mStore->message(QString(), mAccount).id().isValid());
    }

    void aListIsAddedWholeOrNotAtAll()
    {
        const int before = mStore->countMessages();
        QMailMessage good = newMessage(mAccount, mInbox, QStringLiteral("a"));
        QMailMessage bad = newMessage(mAccount, mInbox, QStringLiteral("a"));
        QSignalSpy added(mStore, &QMailStore::messagesAdded);
        QVERIFY(!mStore->addMessages(QList<QMailMessage *> { &good, &bad }));
        QCOMPARE(mStore->countMessages(), before);
        QCOMPARE(added.count(), 0);
        bad.setServerUid(QStringLiteral("b"));
        QVERIFY(mStore->addMessages(QList<QMailMessage *> { &good, &bad }));
        QCOMPARE(added.count(), 1);
        const auto ids = added.first().first().value<QMailMessageIdList>();
        QCOMPARE(ids, (QMailMessageIdList { good.id(), bad.id() }));
    }

    void allFieldsOfAMessageComeBack()
    {
        QMailMessage message = newMessage(mAccount, mInbox, QStringLiteral("uid"));
        message.setFrom(QMailAddress(QStringLiteral("\"Doe, John\" <j@x.org>")));
        message.setTo({ QMailAddress(QStringLiteral("a@a")), QMailAddress(QStringLiteral("Bob <b@b>")) });
        message.setCc({ QMailAddress(QStringLiteral("c@c")) });
        message.setBcc({ QMailAddress(QStringLiteral("d@d")) });
        message.setReplyTo(QMailAddress(QStringLiteral("r@r")));
        message.setSubject(QStringLiteral("Gr\u00fc\u00dfe"));
        const QDateTime date(QDate(2024, 1, 2), QTime(3, 4, 5), Qt::UTC);
        message.setDate(QMailTimeStamp(date));
        message.setReceivedDate(QMailTimeStamp(date.addSecs(60)));
        message.setSize(1234);
        message.setContentSize(99);
        message.setContent(QMailMessage::HtmlContent);
        message.setResponseType(QMailMessage::ReplyToAll);
        message.setInResponseTo(QMailMessageId(3));
        message.setPreviousParentFolderId(QMailFolderId(8));
        message.setRestoreFolderId(QMailFolderId(9));
        message.setPreview(QStringLiteral("a look"));
        message.setStatus(QMailMessage::Read | QMailMessage::CalendarCancellation);
        message.setCustomField(QStringLiteral("k"), QStringLiteral("v"));
        QVERIFY(mStore->addMessage(&message));

        const QMailMessageId id = message.id();
        withOtherStore([&] {
            const QMailMessage loaded(id);
            QCOMPARE(loaded.from().name(), QStringLiteral("Doe, John"));
            QCOMPARE(loaded.from().address(), QStringLiteral("j@x.org"));
            QCOMPARE(loaded.to().size(), 2);
            QCOMPARE(loaded.to().at(1).toString(), QStringLiteral("Bob <b@b>"));
            QCOMPARE(loaded.cc().first().address(), QStringLiteral("c@c"));
            QCOMPARE(loaded.bcc().first().address(), QStringLiteral("d@d"));
            QCOMPARE(loaded.replyTo().address(), QStringLiteral("r@r"));
            QCOMPARE(QMailMessageMetaData(id).recipients().size(), 4);
            QCOMPARE(loaded.subject(), QStringLiteral("Gr\u00fc\u00dfe"));
            QCOMPARE(loaded.date().toUTC(), date);
            QCOMPARE(loaded.receivedDate().toUTC(), date.addSecs(60));
            QCOMPARE(loaded.size(), 1234u);
            QCOMPARE(loaded.contentSize(), 99u);
            QCOMPARE(loaded.content(), QMailMessage::HtmlContent);
            QCOMPARE(loaded.messageType(), QMailMessage::Email);
            QCOMPARE(loaded.responseType(), QMailMessage::ReplyToAll);
            QCOMPARE(loaded.inResponseTo(), QMailMessageId(3));
            QCOMPARE(loaded.previousParentFolderId(), QMailFolderId(8));
            QCOMPARE(loaded.restoreFolderId(), QMailFolderId(9));
            QCOMPARE(loaded.preview(), QStringLiteral("a look"));
            QVERIFY(loaded.status() & QMailMessage::CalendarCancellation);
            QVERIFY(loaded.status() & QMailMessage::UnloadedData);
            QVERIFY(loaded.hasCalendarCancellation());
            QCOMPARE(loaded.customField(QStringLiteral("k")), QStringLiteral("v"));
            QVERIFY(loaded.customField(QStringLiteral("other")).isNull());
            QCOMPARE(loaded.multipartType(), QMailMessage::MultipartNone);
            QVERIFY(!loaded.hasBody());
        });
    }

    void anAnswerJoinsTheThread()
    {
        const QMailMessageId first = addMessage(mAccount, mInbox);
        QMailMessage answer = newMessage(mAccount, mInbox);
        answer.setInResponseTo(first);
        QVERIFY(mStore->addMessage(&answer));
        QCOMPARE(answer.parentThreadId(), QMailMessageMetaData(first).parentThreadId());
    }

    void unknownIdsGiveInvalidObjects()
    {
        QVERIFY(!QMailMessage(QMailMessageId(1u << 30)).id().isValid());
        QCOMPARE(mStore->lastError(), QMailStore::InvalidId);
        QVERIFY(!QMailFolder(QMailFolderId(1u << 30)).id().isValid());
        QCOMPARE(mStore->lastError(), QMailStore::InvalidId);
        QVERIFY(!mStore->messageMetaData(QMailMessageId()).id().isValid());
    }

    void removingAFolderTakesTheTreeAlong()
    {
        const QMailFolderId parent = addFolder(mAccount, QStringLiteral("p"));
        const QMailFolderId child = addFolder(mAccount, QStringLiteral("c"), parent);
        const QMailMessageId message = addMessage(mAccount, child, QStringLiteral("in child"));
        QVERIFY(mStore->removeFolder(parent, QMailStore::CreateRemovalRecord));
        QVERIFY(!QMailFolder(child).id().isValid());
        QVERIFY(!QMailMessage(message).id().isValid());
        const auto records = mStore->messageRemovalRecords(mAccount);
        QCOMPARE(records.size(), 1);
        QCOMPARE(records.first().serverUid(), QStringLiteral("in child"));
        QCOMPARE(records.first().parentFolderId(), child);
    }

    void removingByKeyLeavesTheChildrenBehind()
    {
        const QMailFolderId parent = addFolder(mAccount, QStringLiteral("p"));
        const QMailFolderId child = addFolder(mAccount, QStringLiteral("c"), parent);
        addMessage(mAccount, parent, QStringLiteral("in parent"));
        QVERIFY(mStore->removeFolders(QMailFolderKey::id(QMailFolderIdList { parent })));
        QVERIFY(!QMailFolder(parent).id().isValid());
        QCOMPARE(QMailFolder(child).parentFolderId(), parent);
        QCOMPARE(mStore->countMessages(QMailMessageKey::parentFolderId(parent)), 0);
        QVERIFY(mStore->removeFolders(QMailFolderKey::id(QMailFolderIdList())));
        QVERIFY(QMailFolder(child).id().isValid());
    }

    void removalRecordsAreKeptAndPurged()
    {
        const QMailFolderId other = addFolder(mAccount, QStringLiteral("other"));
        addMessage(mAccount, mInbox, QStringLiteral("1"));
        addMessage(mAccount, other, QStringLiteral("2"));
        addMessage(mAccount, other);
        QVERIFY(mStore->removeMessages(
            QMailMessageKey::parentAccountId(mAccount), QMailStore::CreateRemovalRecord));
        QCOMPARE(mStore->messageRemovalRecords(mAccount).size(), 3); // The one without a uid has one too.
        QCOMPARE(mStore->messageRemovalRecords(mAccount, mInbox).size(), 1);
        QVERIFY(mStore->purgeMessageRemovalRecords(mAccount, { QStringLiteral("1"), QStringLiteral("9") }));
        QCOMPARE(mStore->messageRemovalRecords(mAccount).size(), 2);
        QVERIFY(mStore->purgeMessageRemovalRecords(mAccount));
        QVERIFY(mStore->messageRemovalRecords(mAccount).isEmpty());
    }

    void removingAnAccountTakesEverythingAlong()
    {
        const QMailAccountId account = addAccount();
        const QMailFolderId folder = addFolder(account);
        const QMailMessageId message = addMessage(account, folder);
        mStore->removeMessage(
            addMessage(account, folder, QStringLiteral("x")), QMailStore::CreateRemovalRecord);
        QVERIFY(mStore->removeAccount(account));
        QVERIFY(!QMailFolder(folder).id().isValid());
        QVERIFY(!QMailMessage(message).id().isValid());
        QVERIFY(mStore->messageRemovalRecords(account).isEmpty());
        QVERIFY(!mStore->removeAccount(account));
    }

    void idsAreNeverGivenTwice()
    {
        const QMailMessageId last = addMessage(mAccount, mInbox);
        QVERIFY(mStore->removeMessage(last));
        QVERIFY(last < addMessage(mAccount, mInbox));
        const QMailFolderId folder = addFolder(mAccount, QStringLiteral("f"));
        QVERIFY(mStore->removeFolder(folder));
        QVERIFY(folder < addFolder(mAccount, QStringLiteral("g")));
    }

    void flagsHaveTheirNumbers()
    {
        QCOMPARE(QMailMessage::Incoming, quint64(0x1));
        QCOMPARE(QMailMessage::Read, quint64(0x80));
        QCOMPARE(QMailMessage::HasAttachments, quint64(0x8000));
        QCOMPARE(QMailMessage::CalendarCancellation, quint64(0x200000000));
        QCOMPARE(QMailFolder::Favourite, quint64(0x10000));
        QCOMPARE(QMailAccount::CanCreateFolders, quint64(0x2000));
        QCOMPARE(QMailMessage::statusMask(QStringLiteral("NoNotification")), quint64(0x100000000));
        QCOMPARE(QMailFolder::statusMask(QStringLiteral("Drafts")), quint64(0x100));
        QCOMPARE(QMailAccount::statusMask(QStringLiteral("Unknown")), quint64(0));
        QVERIFY(mStore->registerMessageStatusFlag(QStringLiteral("OurFlag")));
        const quint64 mask = QMailMessage::statusMask(QStringLiteral("OurFlag"));
        QCOMPARE(mask, quint64(0x400000000));
        QCOMPARE(QMailFolder::statusMask(QStringLiteral("OurFlag")), quint64(0));
        withOtherStore([mask] { QCOMPARE(QMailMessage::statusMask(QStringLiteral("OurFlag")), mask); });
    }

    void aStoreThatCannotOpenFailsEverything()
    {
        const QByteArray before = qgetenv("QMF_DATA");
        qputenv("QMF_DATA", "/dev/null/mail");
        withOtherStore([] {
            QMailStore *store = QMailStore::instance();
            QVERIFY(store);
            QCOMPARE(QMailStore::initializationState(), QMailStore::InitializationFailed);
            QMailFolder folder(QStringLiteral("f"));
            QVERIFY(!store->addFolder(&folder));
            QCOMPARE(store->lastError(), QMailStore::StorageInaccessible);
            QMailMessage message = newMessage(QMailAccountId(1), QMailFolderId(1));
            QVERIFY(!store->addMessage(&message));
            QVERIFY(!store->updateMessage(&message));
            QVERIFY(!store->removeMessages(QMailMessageKey()));
            QVERIFY(!store->removeFolder(QMailFolderId(1)));
            QVERIFY(!store->removeAccount(QMailAccountId(1)));
            QVERIFY(!store->purgeMessageRemovalRecords(QMailAccountId(1)));
            QVERIFY(!store->updateMessagesMetaData(QMailMessageKey(), QMailMessage::Read, true));
            QVERIFY(store->queryAccounts().isEmpty());
            QVERIFY(store->queryFolders().isEmpty());
            QVERIFY(store->queryMessages().isEmpty());
            QCOMPARE(store->countMessages(), 0);
            QVERIFY(!store->account(QMailAccountId(1)).id().isValid());
            QVERIFY(!store->registerMessageStatusFlag(QStringLiteral("F")));
            store->flushIpcNotifications();
            QCOMPARE(store->lastError(), QMailStore::StorageInaccessible);
        });
        qputenv("QMF_DATA", before);
    }

    void thousandsOfMessagesAreQuick()
    {
        const int lists = 50;
        const int length = 100;
        const QMailMessageBody body = textBody(QString(4096, QLatin1Char('x')));
        const std::clock_t start = std::clock();
        for (int i = 0; i < lists; ++i) {
            QVector<QMailMessage> messages(length);
            QList<QMailMessage *> pointers;
            for (int k = 0; k < length; ++k) {
                messages[k] = newMessage(mAccount, mInbox, QString::number(i * length + k));
                messages[k].setBody(body);
                messages[k].setCustomField(QStringLiteral("collection"), QStringLiteral("5"));
                pointers.append(&messages[k]);
            }
            QVERIFY(mStore->addMessages(pointers));
        }
        const double seconds = double(std::clock() - start) / CLOCKS_PER_SEC;
        qInfo("%d messages in %.2f CPU seconds", lists * length, seconds);
        QCOMPARE(mStore->countMessages(QMailMessageKey::parentFolderId(mInbox)), lists * length);
    }
};

FENNEL_REGISTER_TEST(MailStoreTest)
#include "mailstoretest.moc"
