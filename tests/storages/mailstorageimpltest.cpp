// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailstorageimpl.h"
#include "application/mapping/easdatabase.h"
#include "easitems/easemailitem.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "support/logcollector.h"
#include "support/mailfixture.h"
#include "support/testmain.h"

#include <qmailaccountconfiguration.h>
#include <qmaildisconnected.h>
#include <qmailfolderkey.h>

#include <QSignalSpy>
#include <QtTest>

namespace {

QString text(const QMailFolderId &id)
{
    return QString::number(id.toULongLong());
}

EasFolderItem row(const QString &serverId, const QString &localId, bool saved)
{
    EasFolderItem item;
    item.setServerId(serverId);
    item.setLocalId(localId);
    item.setDisplayName("Name of " + serverId);
    item.setType(EasFolderItem::UserCreatedMailFolder);
    item.setSavedInStorage(saved);
    return item;
}

} // namespace

class MailStorageImplTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutAnAccountNothingStarts()
    {
        LogCollector log;
        MailStorageImpl storage(nullptr);
        QVERIFY(log.contains(QtCriticalMsg, { "can't initialize MailStorage. EasAccount is null" }));
        QVERIFY(!storage.initialized());
    }

    void theMailAccountHasTheSameNumber()
    {
        LogCollector log;
        MailFixture mail;
        MailStorageImpl storage(&mail.account);
        QVERIFY(storage.initialized());
        QCOMPARE(storage.account(), &mail.account);
        QCOMPARE(*EasDatabase::instance()->emailAccountId(mail.accountId()), mail.accountId());
        QVERIFY(QMailAccount(mail.mailAccountId()).status() & QMailAccount::CanCreateFolders);
        QVERIFY(log.contains("updated. Exchange account now able to create folders."));
        log.clear();
        MailStorageImpl again(&mail.account);
        QVERIFY(!log.contains("Legacy account"));
    }

    void aMailAccountThatComesLaterIsTaken()
    {
        constexpr EasAccountId later = 9000;
        FakeAccount account(later);
        MailStorageImpl storage(&account);
        QVERIFY(!storage.initialized());
        LogCollector log;
        QVERIFY(!storage.deleteEmailsByLocalIds({ 1 }));
        QVERIFY(log.contains("MailStore is not initialized yet"));
        // Nothing is written for an account that is not there, and it does not pass for one without folders.
        const int before = QMailStore::instance()->countFolders();
        QList<EasFolderItem> added { row("1", QString(), false) };
        QList<EasFolderItem> changed;
        QVERIFY(!storage.updateFolders(added, changed, {}));
        QCOMPARE(QMailStore::instance()->countFolders(), before);
        QVERIFY(!storage.foldersToSynchronize());
        QVERIFY(log.contains(QtCriticalMsg, { "there is no mail account for account", "9000" }));

        QMailAccount mailAccount;
        mailAccount.setId(QMailAccountId(later));
        QMailAccountConfiguration configuration;
        QVERIFY(QMailStore::instance()->addAccount(&mailAccount, &configuration));
        QTRY_VERIFY(storage.initialized());
        QMailStore::instance()->removeAccount(QMailAccountId(later));
    }

    void anAccountOfAnOlderKindIsFoundByItsNumber()
    {
        MailFixture mail;
        FakeAccount older(9100);
        EasDatabase::instance()->setEmailAccountId(older.id(), mail.accountId());
        MailStorageImpl storage(&older);
        QVERIFY(storage.initialized());
    }

    void anInterruptedRunIsRepaired()
    {
        LogCollector log;
        MailFixture mail;
        const QMailFolderId unsaved = mail.addStoreFolder("old name");
        const QMailFolderId stray = mail.addStoreFolder("stray");
        EasEmailItem inStray = mail.item("9:1", "9");
        inStray.setLocalCollectionId(stray.toULongLong());
        mail.addMessage(inStray);
        const QMailFolderId saved = mail.addFolder("3");
        EasDatabase *database = EasDatabase::instance();
        QVERIFY(database->addFolderItems(
            mail.accountId(), { row("1", text(unsaved), false), row("2", QString(), false) }));

        MailStorageImpl storage(&mail.account);
        QVERIFY(log.contains(
            QtInfoMsg, { "Need to add", "1", ", update", "1", "and remove", "1", "email folders" }));
        QCOMPARE(mail.context.store->folder(unsaved).displayName(), QStringLiteral("Name of 1"));
        QVERIFY(!mail.context.store->folder(stray).id().isValid());
        QVERIFY(mail.context.store->folder(saved).id().isValid());
        QVERIFY(database->folderItemByServerId(mail.accountId(), "1")->savedInStorage());
        const EasFolderItem added = *database->folderItemByServerId(mail.accountId(), "2");
        QVERIFY(added.savedInStorage());
        QVERIFY(mail.context.store->folder(QMailFolderId(added.localId().toULongLong())).id().isValid());
        QCOMPARE(database->emailFolderItems(mail.accountId())->size(), 3);
        QVERIFY(mail.context.store->messageRemovalRecords(mail.mailAccountId()).isEmpty());

        // None of this is the user's doing.
        QCoreApplication::processEvents();
        QVERIFY(storage.addedFolders().isEmpty());
        QVERIFY(storage.deletedFolders().isEmpty());
        log.clear();
        MailStorageImpl again(&mail.account);
        QVERIFY(log.contains(
            QtInfoMsg, { "Need to add", "0", ", update", "0", "and remove", "0", "email folders" }));
    }

    void aRepairedFolderStandsBelowItsParent()
    {
        MailFixture mail;
        const QMailFolderId parent = mail.addFolder("1");
        const QMailFolderId misplaced = mail.addStoreFolder("misplaced");
        EasFolderItem missing = row("2", QString(), false);
        EasFolderItem unsaved = row("3", text(misplaced), false);
        for (EasFolderItem *item : { &missing, &unsaved })
            item->setServerParentId("1");
        EasDatabase *database = EasDatabase::instance();
        QVERIFY(database->addFolderItems(mail.accountId(), { missing, unsaved }));
        MailStorageImpl storage(&mail.account);
        const QString added = database->folderItemByServerId(mail.accountId(), "2")->localId();
        QCOMPARE(mail.context.store->folder(QMailFolderId(added.toULongLong())).parentFolderId(), parent);
        QCOMPARE(mail.context.store->folder(misplaced).parentFolderId(), parent);
        QCOMPARE(database->serverFolderParentIds(mail.accountId())->value("3"), QStringLiteral("1"));
    }

    void aFolderThatTheStoreHasLostComesBackEmptyAndIsSynchronisedAnew()
    {
        MailFixture mail;
        const QMailFolderId parent = mail.addFolder("1");
        mail.addFolder("2", EasFolderItem::UserCreatedMailFolder, parent);
        EasDatabase *database = EasDatabase::instance();
        EasFolderItem keyed = *database->folderItemByServerId(mail.accountId(), "2");
        keyed.setServerParentId("1");
        keyed.setSyncKey("17");
        keyed.appendChangedField(Wbxml::FolderHierarchy::ParentId);
        keyed.appendChangedField(Wbxml::AirSync::SyncKey);
        QVERIFY(database->updateFolderItems(mail.accountId(), { keyed }));
        mail.addMessage(mail.item("2:1", "2"));
        QVERIFY(mail.context.store->removeFolder(parent));

        const MailStorageImpl storage(&mail.account);
        const EasFolderItem first = *database->folderItemByServerId(mail.accountId(), "1");
        const EasFolderItem second = *database->folderItemByServerId(mail.accountId(), "2");
        const QMailFolder folder = mail.context.store->folder(QMailFolderId(second.localId().toULongLong()));
        QVERIFY(folder.id().isValid());
        QCOMPARE(text(folder.parentFolderId()), first.localId());
        QVERIFY(second.savedInStorage());
        QVERIFY(second.syncKey().isEmpty());
        QVERIFY(database->localEmailIds(mail.accountId(), "2")->isEmpty());
    }

    void whatWasMovedIntoAFolderThatTheServerNeverKnewReturns()
    {
        MailFixture mail;
        const QMailFolderId inbox = mail.addFolder("1");
        const QMailFolderId made = mail.addStoreFolder("made here");
        const QMailMessageId moved = mail.addMessage(mail.item("1:1", "1"));
        QMailDisconnected::moveToFolder(QMailMessageIdList { moved }, made);
        const MailStorageImpl storage(&mail.account);
        QVERIFY(!mail.context.store->folder(made).id().isValid());
        QCOMPARE(mail.message(moved).parentFolderId(), inbox);
        QVERIFY(!mail.message(moved).previousParentFolderId().isValid());
    }

    void theEnginesOwnFoldersAreNoLocalChanges()
    {
        MailFixture mail;
        MailStorageImpl storage(&mail.account);
        QSignalSpy changes(&storage, &MailStorage::changesAvailable);
        QList<EasFolderItem> added { row("1", QString(), false) };
        QList<EasFolderItem> none;
        QVERIFY(storage.updateFolders(added, none, {}));
        QVERIFY(EasDatabase::instance()->folderItemsChanges(mail.accountId(), added, {}, {}));
        QCoreApplication::processEvents();
        QVERIFY(storage.updateFolders(none, none, { "1" }));
        QCoreApplication::processEvents();
        QCOMPARE(changes.count(), 0);
        QVERIFY(storage.addedFolders().isEmpty());
        QVERIFY(storage.deletedFolders().isEmpty());
    }

    void aFolderOfTheUserIsALocalChange()
    {
        MailFixture mail;
        MailFixture other;
        const QMailFolderId parent = mail.addFolder("5");
        MailStorageImpl storage(&mail.account);
        QSignalSpy changes(&storage, &MailStorage::changesAvailable);
        other.addStoreFolder("not ours");
        const QMailFolderId made = mail.addStoreFolder("Made here", parent);
        QTRY_COMPARE(changes.count(), 1);
        storage.onFoldersAdded({ made });
        QCOMPARE(changes.count(), 1);
        const QList<EasFolderItem> items = storage.addedFolders();
        QCOMPARE(items.size(), 1);
        QCOMPARE(items.at(0).localId(), text(made));
        QCOMPARE(items.at(0).localStorageAccountId(), mail.accountId());
        QCOMPARE(items.at(0).localParentId(), text(parent));
        QCOMPARE(items.at(0).displayName(), QStringLiteral("Made here"));
        QCOMPARE(items.at(0).type(), EasFolderItem::UserCreatedMailFolder);
        QVERIFY(storage.purgeAddedFolders());
        QVERIFY(storage.addedFolders().isEmpty());
    }

    void flagsTellTheTypeOfAFolder()
    {
        MailFixture mail;
        MailStorageImpl storage(&mail.account);
        const quint64 flags[] = { QMailFolder::Incoming, QMailFolder::Drafts, QMailFolder::Trash,
            QMailFolder::Sent, QMailFolder::Outgoing };
        for (int i = 0; i < 5; ++i) {
            storage.onFoldersAdded({ mail.addStoreFolder("folder", QMailFolderId(), flags[i]) });
            QCOMPARE(int(storage.addedFolders().last().type()), i + 2);
        }
    }

    void aFolderThatTheUserRemovesIsALocalChange()
    {
        LogCollector log;
        MailFixture mail;
        const QMailFolderId known = mail.addFolder("5");
        MailStorageImpl storage(&mail.account);
        QSignalSpy changes(&storage, &MailStorage::changesAvailable);
        QVERIFY(mail.context.store->removeFolder(known));
        QTRY_COMPARE(changes.count(), 1);
        QCOMPARE(storage.deletedFolders(), QStringList { "5" });
        storage.onFoldersRemoved({ QMailFolderId(424242) });
        QVERIFY(log.contains("server id is not found for local id"));
        QCOMPARE(changes.count(), 1);
        QVERIFY(storage.purgeDeletedFolders());
        QVERIFY(storage.deletedFolders().isEmpty());
    }

    void emptyListsAreLogged()
    {
        LogCollector log;
        MailFixture mail;
        MailStorageImpl storage(&mail.account);
        storage.onFoldersAdded({});
        storage.onFoldersRemoved({});
        QVERIFY(log.contains(QtWarningMsg, { "foldersAdded received with an empty ids list" }));
        QVERIFY(log.contains(QtWarningMsg, { "foldersRemoved received with an empty ids list" }));
        QVERIFY(log.contains("ids ="));
    }

    void aReplyIsAppliedAsAWhole()
    {
        MailFixture mail;
        const QMailFolderId inbox = mail.addFolder("5");
        const QMailMessageId changedId = mail.addMessage(mail.item("5:1", "5"));
        mail.addMessage(mail.item("5:2", "5"));
        MailStorageImpl storage(&mail.account);
        EasEmailItem newItem = mail.item("5:3", "5");
        newItem.setLocalCollectionId(0);
        EasEmailItem change = mail.item("5:1", "5");
        change.setRead(false);
        change.appendChangedField(Wbxml::Email::Read);
        QList<EasEmailItem> added { newItem };
        QList<EasEmailItem> changed { change };
        QVERIFY(storage.updateEmails(added, changed, { "5:2" }));
        QCOMPARE(mail.messageCount(), 2);
        QCOMPARE(mail.message("5:3").parentFolderId(), inbox);
        QCOMPARE(added.at(0).localId(), QString::number(mail.message("5:3").id().toULongLong()));
        QVERIFY(!(mail.message(changedId).status() & QMailMessage::Read));
    }

    void aReplyForAnUnknownFolderFails()
    {
        LogCollector log;
        MailFixture mail;
        MailStorageImpl storage(&mail.account);
        QList<EasEmailItem> added { mail.item("9:1", "9") };
        QList<EasEmailItem> none;
        QVERIFY(!storage.updateEmails(added, none, {}));
        QVERIFY(log.contains(QtCriticalMsg, { "failed to add email items" }));
    }

    void afterAFailedChangeTheNewMailIsTakenOutAgain()
    {
        LogCollector log;
        MailFixture mail;
        mail.addFolder("5");
        mail.addMessage(mail.item("5:1", "5"));
        const QMailMessageId other = mail.addMessage(mail.item("5:2", "5"));
        MailStorageImpl storage(&mail.account);
        // The store refuses the id of another message.
        EasEmailItem change = mail.item("5:1", "5");
        change.setLocalId(QString::number(other.toULongLong()));
        change.appendChangedField(Wbxml::AirSync::ServerId);
        QList<EasEmailItem> added { mail.item("5:3", "5") };
        QList<EasEmailItem> changed { change };
        QVERIFY(!storage.updateEmails(added, changed, { "5:1" }));
        QVERIFY(log.contains(QtCriticalMsg, { "failed to update email items" }));
        QCOMPARE(mail.messageCount(), 2);
        QVERIFY(!mail.message("5:3").id().isValid());
    }

    void deletionsByLocalIdLeaveNoRecord()
    {
        LogCollector log;
        MailFixture mail;
        mail.addFolder("5");
        const QMailMessageId id = mail.addMessage(mail.item("5:1", "5"));
        MailStorageImpl storage(&mail.account);
        QVERIFY(storage.deleteEmailsByLocalIds({}));
        QVERIFY(log.contains("Tried to delete local emails, but emails list is empty"));
        QVERIFY(storage.deleteEmailsByLocalIds({ id.toULongLong() }));
        QCOMPARE(mail.messageCount(), 0);
        QVERIFY(mail.context.store->messageRemovalRecords(mail.mailAccountId()).isEmpty());
    }

    void purgingNothingPurgesNothing()
    {
        MailFixture mail;
        const QMailFolderId inbox = mail.addFolder("5");
        QVERIFY(mail.context.store->removeMessage(
            mail.addMessage(mail.item("5:1", "5")), QMailStore::CreateRemovalRecord));
        MailStorageImpl storage(&mail.account);
        QVERIFY(storage.purgeDeletedEmails({}));
        QCOMPARE(KeptEmailId::texts(*storage.deletedEmails(text(inbox))), QStringList { "5:1" });
        QVERIFY(storage.purgeDeletedEmails({ KeptEmailId("5:1") }));
        QVERIFY(storage.deletedEmails(text(inbox))->isEmpty());
    }

    void repliesAndForwardsAreTold_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("reply");
        QTest::addColumn<bool>("forward");
        QTest::newRow("none") << 0 << false << false;
        QTest::newRow("reply") << 1 << true << false;
        QTest::newRow("reply to all") << 2 << true << false;
        QTest::newRow("forward") << 3 << false << true;
        QTest::newRow("forwarded part") << 4 << false << true;
        QTest::newRow("redirect") << 5 << false << false;
    }
    void repliesAndForwardsAreTold()
    {
        QFETCH(int, type);
        QFETCH(bool, reply);
        QFETCH(bool, forward);
        MailFixture mail;
        mail.addFolder("5");
        QMailMessage message = mail.message(mail.addMessage(mail.item("5:1", "5")));
        message.setResponseType(QMailMessage::ResponseType(type));
        QVERIFY(mail.context.store->updateMessage(&message));
        const MailStorageImpl storage(&mail.account);
        const QString id = QString::number(message.id().toULongLong());
        QCOMPARE(storage.isReply(id), reply);
        QCOMPARE(storage.isForward(id), forward);
        QVERIFY(!storage.isReply("rubbish"));
    }

    void aFetchedBodyIsStored()
    {
        MailFixture mail;
        mail.addFolder("5");
        EasEmailItem item = mail.item("5:1", "5");
        EasBodyContainer truncated = item.body();
        truncated.setTruncated(true);
        item.setBody(truncated);
        const quint64 id = mail.addMessage(item).toULongLong();
        MailStorageImpl storage(&mail.account);
        QVERIFY(storage.updateBodyPart(
            id, MailFixture::body(EasBodyContainer::HTMLBodyType, "<p>All of it</p>")));
        const QMailMessage message = mail.message(QMailMessageId(id));
        QCOMPARE(message.body().data(), QStringLiteral("<p>All of it</p>"));
        QVERIFY(message.status() & QMailMessage::ContentAvailable);
        LogCollector log;
        QVERIFY(!storage.updateBodyPart(424242, EasBodyContainer()));
        QVERIFY(log.contains("invalid local mesage id"));
    }

    void aReplyMayChangeAndRemoveWhatItAdds()
    {
        MailFixture mail;
        mail.addFolder("5");
        MailStorageImpl storage(&mail.account);
        QList<EasEmailItem> added { mail.item("5:1", "5"), mail.item("5:2", "5") };
        EasEmailItem change = mail.item("5:1", "5");
        change.setSubject("changed at once");
        change.appendChangedField(Wbxml::Email::Subject);
        QList<EasEmailItem> changed { change };
        QVERIFY(storage.updateEmails(added, changed, { "5:2" }));
        QCOMPARE(mail.message("5:1").subject(), QStringLiteral("changed at once"));
        QVERIFY(!mail.message("5:2").id().isValid());
        QCOMPARE(mail.messageCount(), 1);
    }

    void aMessageThatTheStoreHasLostComesBackWithItsNextAdd()
    {
        MailFixture mail;
        mail.addFolder("5");
        const EasEmailItem item = mail.item("5:1", "5");
        QVERIFY(mail.context.store->removeMessage(mail.addMessage(item)));
        MailStorageImpl storage(&mail.account);
        EasEmailItem repeated = item;
        repeated.appendChangedField(Wbxml::AirSync::Add);
        QList<EasEmailItem> added;
        QList<EasEmailItem> changed { repeated };
        QVERIFY(storage.updateEmails(added, changed, {}));
        QCOMPARE(mail.message("5:1").subject(), item.subject());
        QCOMPARE(added.size(), 1);
        QVERIFY(changed.isEmpty());
        // The caller writes its row; the old one is gone.
        QVERIFY(EasDatabase::instance()->emailItemsChanges(mail.accountId(), added, changed, {}));
        QCOMPARE(*EasDatabase::instance()->localEmailIds(mail.accountId(), "5"),
            QStringList { QString::number(mail.message("5:1").id().toULongLong()) });
    }

    void aClearedAccountHasNoRemovalsLeft()
    {
        MailFixture mail;
        mail.addFolder("5");
        QVERIFY(mail.context.store->removeMessage(
            mail.addMessage(mail.item("5:1", "5")), QMailStore::CreateRemovalRecord));
        QVERIFY(MailStorageImpl::cleanUpAccounts({ mail.accountId() }));
        QVERIFY(mail.context.store->messageRemovalRecords(mail.mailAccountId()).isEmpty());
    }

    void anAccountThatBeginsAnewKeepsWhatTheServerNeverHad()
    {
        MailFixture mail;
        const QMailMessageId unsent = mail.addUnsent(mail.addFolder("5"));
        mail.addMessage(mail.item("5:1", "5"));
        QVERIFY(MailStorageImpl::cleanUpAccounts({ mail.accountId() }));
        QCOMPARE(mail.messageCount(), 1);
        QVERIFY(mail.message(unsent).id().isValid());
    }

    void aSyncLooksForChangesAnew()
    {
        MailFixture mail;
        const QString inbox = text(mail.addFolder("5"));
        const QMailMessageId id = mail.addMessage(mail.item("5:1", "5"));
        MailStorageImpl storage(&mail.account);
        QVERIFY(storage.updatedEmails(inbox)->isEmpty());
        mail.setStatus(id, QMailMessage::Read, false);
        QCOMPARE(storage.updatedEmails(inbox)->size(), 1);
        storage.lookForChangesAnew();
        QCOMPARE(storage.updatedEmails(inbox)->size(), 1);
    }

    void aFetchedBodyNeverTakesThePlaceOfAFullerOne_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("data");
        QTest::addColumn<bool>("truncated");
        QTest::addColumn<bool>("isHere");
        QTest::addColumn<bool>("result");
        QTest::addColumn<QString>("body");
        const QString html = QStringLiteral("<p>fetched</p>");
        QTest::newRow("plain text for HTML") << 1 << "fetched" << false << true << true << "<p>here</p>";
        QTest::newRow("HTML for HTML") << 2 << html << false << true << true << html;
        QTest::newRow("a part of HTML") << 2 << html << true << true << true << "<p>here</p>";
        QTest::newRow("nothing") << 2 << "" << false << true << true << "<p>here</p>";
        QTest::newRow("an empty MIME text") << 4 << "" << false << true << true << "<p>here</p>";
        QTest::newRow("plain text where not all is here")
            << 1 << "fetched" << false << false << true << "fetched";
        QTest::newRow("a part where not all is here") << 2 << html << true << false << false << "<p>here</p>";
    }
    void aFetchedBodyNeverTakesThePlaceOfAFullerOne()
    {
        QFETCH(int, type);
        QFETCH(QString, data);
        QFETCH(bool, truncated);
        QFETCH(bool, isHere);
        QFETCH(bool, result);
        QFETCH(QString, body);
        MailFixture mail;
        mail.addFolder("5");
        EasEmailItem item = mail.item("5:1", "5");
        item.setBody(MailFixture::body(EasBodyContainer::HTMLBodyType, "<p>here</p>"));
        const QMailMessageId id = mail.addMessage(item);
        mail.setStatus(id, QMailMessage::ContentAvailable, isHere);
        EasBodyContainer fetched = MailFixture::body(EasBodyContainer::BodyType(type), data);
        fetched.setTruncated(truncated);
        MailStorageImpl storage(&mail.account);
        QCOMPARE(storage.updateBodyPart(id.toULongLong(), fetched), result);
        const QMailMessage message = mail.message(id);
        QCOMPARE(message.body().data(), body);
        QCOMPARE(message.subject(), item.subject());
        QCOMPARE((message.status() & QMailMessage::ContentAvailable) != 0, isHere || result);
    }

    void aMimeBodyKeepsItsPlaceInTheStore()
    {
        MailFixture mail;
        const QMailFolderId inbox = mail.addFolder("5");
        EasEmailItem item = mail.item("5:1", "5");
        item.setMessageClass("IPM.Note.SMIME");
        const quint64 id = mail.addMessage(item).toULongLong();
        MailStorageImpl storage(&mail.account);
        QVERIFY(storage.updateBodyPart(id,
            MailFixture::body(EasBodyContainer::MIMEBodyType,
                "From: b@x.org\r\nSubject: From MIME\r\nContent-Type: text/plain\r\n\r\nHello\r\n")));
        const QMailMessage message = mail.message(QMailMessageId(id));
        QCOMPARE(message.subject(), QStringLiteral("From MIME"));
        QCOMPARE(message.serverUid(), QStringLiteral("5:1"));
        QCOMPARE(message.parentFolderId(), inbox);
        QVERIFY(message.status() & QMailMessage::Read);
        QCOMPARE(
            message.customField(ExchangeActiveSync::MESSAGE_CLASS_FIELD), QStringLiteral("IPM.Note.SMIME"));
        QCOMPARE(message.body().data().trimmed(), QStringLiteral("Hello"));
    }

    void anAttachmentIsFetchedIntoItsPart()
    {
        MailFixture mail;
        mail.addFolder("5");
        EasEmailItem item = mail.item("5:1", "5");
        item.setAttachments({ MailFixture::attachment("a.pdf", "mail/INBOX/5/2", 100) });
        const quint64 id = mail.addMessage(item).toULongLong();
        MailStorageImpl storage(&mail.account);
        QCOMPARE(storage.serverUidFromMessageId(id), QStringLiteral("5:1"));
        const QStringList locations = storage.queryAttachmentsLocations(id, false);
        QCOMPARE(locations.size(), 1);
        const QString location = locations.at(0);
        QCOMPARE(storage.isAttachmentPart(id, location), EasItemsCommon::TTrue);
        QCOMPARE(storage.isAttachmentPart(id, QStringLiteral("1")), EasItemsCommon::TFalse);
        QCOMPARE(storage.isAttachmentPart(id, QStringLiteral("9")), EasItemsCommon::TUndefined);
        QCOMPARE(storage.isAttachmentPart(424242, location), EasItemsCommon::TUndefined);
        QVERIFY(!storage.isAttachmentDownloaded(id, location));
        QCOMPARE(storage.fileReferenceFromLocation(id, location), QStringLiteral("mail/INBOX/5/2"));
        QCOMPARE(storage.estimatedDataSizeFromLocation(id, location), 100);

        const QByteArray data("%PDF\x00\xFF\n", 7);
        QVERIFY(storage.updateMessagePart(id, location, "application/pdf", data, QString()));
        QVERIFY(storage.isAttachmentDownloaded(id, location));
        QCOMPARE(storage.queryAttachmentsLocations(id, false), QStringList());
        const QMailMessage message = mail.message(QMailMessageId(id));
        QCOMPARE(message.partAt(1U).body().data(QMailMessageBody::Decoded), data);
        QCOMPARE(message.partAt(0U).body().data(), QStringLiteral("Text of 5:1"));

        LogCollector log;
        QVERIFY(!storage.updateMessagePart(424242, location, "a/b", data, QString()));
        QVERIFY(log.contains("invalid local mesage id"));
        QVERIFY(!storage.updateMessagePart(id, "9", "a/b", data, QString()));
        QVERIFY(log.contains("can't find attachment part in the message"));
    }

    void aLongAttachmentComesFromItsFile()
    {
        MailFixture mail;
        mail.addFolder("5");
        EasEmailItem item = mail.item("5:1", "5");
        item.setAttachments({ MailFixture::attachment("a.bin", "mail/INBOX/5/2", 100) });
        const quint64 id = mail.addMessage(item).toULongLong();
        MailStorageImpl storage(&mail.account);
        const QString location = storage.queryAttachmentsLocations(id, false).value(0);
        const QByteArray megabyte(1024 * 1024, 'x');
        FetchedOctets octets;
        QVERIFY(octets.append(megabyte) && octets.append("end"));
        QVERIFY(octets.isInFile());

        LogCollector log;
        FetchedOctets lost;
        QVERIFY(lost.append(megabyte) && QFile::remove(lost.fileName()));
        QVERIFY(!storage.updateMessagePart(id, location, "application/pdf", lost, QString()));
        QVERIFY(log.contains("can't read the attachment that was fetched"));
        QVERIFY(!storage.isAttachmentDownloaded(id, location));

        QVERIFY(storage.updateMessagePart(id, location, "application/pdf", octets, QString()));
        const QMailMessage message = mail.message(QMailMessageId(id));
        QVERIFY(message.partAt(1U).body().data(QMailMessageBody::Decoded) == megabyte + "end");
        QCOMPARE(message.partAt(1U).contentDisposition().size(), megabyte.size() + 3);
    }

    void hostileTextLandsAsData()
    {
        MailFixture mail;
        mail.addFolder("5");
        MailStorageImpl storage(&mail.account);
        EasEmailItem item = mail.item(QStringLiteral("5'; DROP TABLE mailmessages;--"), "5");
        item.setSubject(QStringLiteral("a\r\nX-Evil: 1") + QChar(0) + QChar(0x202E) + QString(4096, 'x'));
        item.setAttachments({ MailFixture::attachment("../../../../tmp/evil\r\nX-Evil: 2", "ref", 1) });
        QList<EasEmailItem> added { item };
        QList<EasEmailItem> none;
        QVERIFY(storage.updateEmails(added, none, {}));
        const QMailMessage message = mail.message(item.serverId());
        QVERIFY(message.subject().startsWith("a X-Evil: 1"));
        QVERIFY(message.subject().endsWith(QChar(0x202E) + QString(4096, 'x')));
        QVERIFY(!message.toRfc2822().contains("\nX-Evil"));
        const EasEmailItem read = storage.queryMessage(QString::number(message.id().toULongLong()));
        QCOMPARE(read.attachments().at(0).displayName(), item.attachments().at(0).displayName());
    }

    void clearedAccountsKeepNoFolder()
    {
        MailFixture mail;
        MailFixture other;
        mail.addFolder("5", EasFolderItem::UserCreatedMailFolder, mail.addFolder("4"));
        mail.addMessage(mail.item("5:1", "5"));
        other.addFolder("5");
        QVERIFY(MailStorageImpl::cleanUpAccounts({ mail.accountId(), 424242 }));
        QCOMPARE(mail.context.store->countFolders(QMailFolderKey::parentAccountId(mail.mailAccountId())), 0);
        QCOMPARE(mail.messageCount(), 0);
        QCOMPARE(
            other.context.store->countFolders(QMailFolderKey::parentAccountId(other.mailAccountId())), 1);
        QVERIFY(MailStorageImpl::cleanUpDeletedAccounts({ mail.accountId() }));
    }
};

FENNEL_REGISTER_TEST(MailStorageImplTest)
#include "mailstorageimpltest.moc"
