// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/maillocalchanges.h"
#include "application/mapping/easdatabase.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "storages/mail/mailpendingmarks.h"
#include "support/hiddentable.h"
#include "support/logcollector.h"
#include "support/mailfixture.h"
#include "support/testmain.h"

#include <qmaildisconnected.h>

#include <QtTest>

namespace {

QString text(const QMailFolderId &id)
{
    return QString::number(id.toULongLong());
}

QStringList serverIds(const QList<EasEmailItem> &items)
{
    QStringList ids;
    for (const EasEmailItem &item : items)
        ids.append(item.serverId());
    ids.sort();
    return ids;
}

/** What a run leaves that dies between mapping and store, after the server has moved 5:1 to folder 6. */
void moveInTheMapping(const MailFixture &mail)
{
    EasEmailItem moved;
    moved.setPreviousServerId("5:1");
    moved.setServerId("6:7");
    moved.setCollectionId("6");
    QVERIFY(EasDatabase::instance()->updateMovedEmailItems(mail.accountId(), { moved }));
}

/** What the user has changed, looked for without any knowledge of before. */
class Changes
{
public:
    explicit Changes(const MailFixture &mail)
        : mMarks(mail.context)
        , mChanges(mail.context, mMarks)
    {
    }

    const MailLocalChanges *operator->() const { return &mChanges; }

private:
    MailPendingMarks mMarks;
    MailLocalChanges mChanges;
};

} // namespace

class MailLocalChangesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void freshMailHasNoChanges()
    {
        MailFixture mail;
        const QMailFolderId inbox = mail.addFolder("5");
        mail.addMessage(mail.item("5:1", "5"));
        const Changes changes(mail);
        QVERIFY(changes->updatedEmails(text(inbox))->isEmpty());
        QVERIFY(changes->movedEmails()->isEmpty());
        QVERIFY(changes->deletedEmails(text(inbox))->isEmpty());
    }

    void changesAreUnreadWhileTheMappingCannotTellThem()
    {
        MailFixture mail;
        const QMailFolderId inbox = mail.addFolder("5");
        const QMailFolderId archive = mail.addFolder("6");
        const QMailMessageId read = mail.addMessage(mail.item("5:1", "5"));
        mail.setStatus(read, QMailMessage::Read, false);
        QMailDisconnected::moveToFolder(
            QMailMessageIdList { mail.addMessage(mail.item("5:2", "5")) }, archive);
        QVERIFY(mail.context.store->removeMessage(
            mail.addMessage(mail.item("5:3", "5")), QMailStore::CreateRemovalRecord));
        const Changes changes(mail);
        {
            const HiddenTable hidden("emails");
            QVERIFY(!changes->movedEmails());
            QVERIFY(!changes->deletedEmails(text(inbox)));
        }
        const HiddenTable hidden("collections");
        QVERIFY(!changes->updatedEmails(text(inbox)));
        QVERIFY(!changes->movedEmails());
        QVERIFY(!changes->deletedEmails(text(inbox)));
    }

    void readMarksThatTheServerDoesNotKnowAreChanges()
    {
        MailFixture mail;
        const QMailFolderId inbox = mail.addFolder("5");
        const QMailFolderId other = mail.addFolder("6");
        EasEmailItem unread = mail.item("5:1", "5");
        unread.setRead(false);
        const QMailMessageId nowRead = mail.addMessage(unread);
        const QMailMessageId nowUnread = mail.addMessage(mail.item("5:2", "5"));
        mail.addMessage(mail.item("5:3", "5"));
        const QMailMessageId elsewhere = mail.addMessage(mail.item("6:1", "6"));
        mail.setStatus(nowRead, QMailMessage::Read, true);
        mail.setStatus(nowUnread, QMailMessage::Read, false);
        mail.setStatus(elsewhere, QMailMessage::Read, false);

        const QList<EasEmailItem> items = *Changes(mail)->updatedEmails(text(inbox));
        QCOMPARE(serverIds(items), QStringList({ "5:1", "5:2" }));
        for (const EasEmailItem &item : items) {
            QCOMPARE(item.changedFields(), QList<uint> { Wbxml::Email::Read });
            QCOMPARE(item.read(), item.serverId() == "5:1");
            QCOMPARE(item.collectionId(), QStringLiteral("5"));
        }
        QCOMPARE(serverIds(*Changes(mail)->updatedEmails(text(other))), QStringList { "6:1" });
    }

    void aMarkWhoseMessageTheServerHasElsewhereWaitsForTheMove()
    {
        MailFixture mail;
        const QMailFolderId inbox = mail.addFolder("5");
        const QMailFolderId archive = mail.addFolder("6");
        const QMailMessageId id = mail.addMessage(mail.item("7", "5"));
        mail.setStatus(id, QMailMessage::Read, false);
        QMailDisconnected::moveToFolder(QMailMessageIdList { id }, archive);
        QVERIFY(Changes(mail)->updatedEmails(text(archive))->isEmpty());
        QVERIFY(Changes(mail)->updatedEmails(text(inbox))->isEmpty());
        QMailDisconnected::moveToFolder(QMailMessageIdList { id }, inbox);
        QCOMPARE(serverIds(*Changes(mail)->updatedEmails(text(inbox))), QStringList { "7" });
    }

    void whatTheServerDoesNotKnowIsNoChange()
    {
        MailFixture mail;
        const QMailFolderId drafts = mail.addFolder("3");
        QMailMessage draft;
        draft.setParentAccountId(mail.mailAccountId());
        draft.setParentFolderId(drafts);
        draft.setStatus(QMailMessage::Read, true);
        QVERIFY(mail.context.store->addMessage(&draft));
        QVERIFY(Changes(mail)->updatedEmails(text(drafts))->isEmpty());
    }

    void aRemovalOfAnotherMessageOfThatNameIsNoChange()
    {
        MailFixture mail;
        const QMailFolderId inbox = mail.addFolder("5");
        const QMailFolderId gone = mail.addFolder("6");
        QMailStore *store = mail.context.store;
        QVERIFY(store->removeMessage(mail.addMessage(mail.item("7", "6")), QMailStore::CreateRemovalRecord));
        QVERIFY(store->removeFolder(gone));
        QVERIFY(EasDatabase::instance()->clearEmailFolder(mail.accountId(), "6"));
        mail.addMessage(mail.item("7", "5"));
        QVERIFY(Changes(mail)->deletedEmails(text(inbox))->isEmpty());
    }

    void addedMailIsThatOfTheFolder()
    {
        MailFixture mail;
        const QMailFolderId inbox = mail.addFolder("5");
        mail.addFolder("6");
        mail.addMessage(mail.item("5:1", "5"));
        mail.addMessage(mail.item("6:1", "6"));
        QCOMPARE(serverIds(*Changes(mail)->addedEmails(text(inbox))), QStringList { "5:1" });
    }

    void aMoveIsFound()
    {
        MailFixture mail;
        mail.addFolder("5");
        const QMailFolderId archive = mail.addFolder("6");
        const QMailMessageId id = mail.addMessage(mail.item("5:1", "5"));
        QMailDisconnected::moveToFolder(QMailMessageIdList { id }, archive);
        const QList<EasEmailItem> items = *Changes(mail)->movedEmails();
        QCOMPARE(items.size(), 1);
        QCOMPARE(items.at(0).serverId(), QStringLiteral("5:1"));
        QCOMPARE(items.at(0).sourceFolderId(), QStringLiteral("5"));
        QCOMPARE(items.at(0).destinationFolderId(), QStringLiteral("6"));
        QVERIFY(items.at(0).changedFields().isEmpty());
    }

    void aMoveToAFolderThatTheServerDoesNotKnowWaits()
    {
        LogCollector log;
        MailFixture mail;
        mail.addFolder("5");
        const QMailFolderId unknown = mail.addStoreFolder("unknown");
        const QMailMessageId id = mail.addMessage(mail.item("5:1", "5"));
        QMailDisconnected::moveToFolder(QMailMessageIdList { id }, unknown);
        QVERIFY(Changes(mail)->movedEmails()->isEmpty());
        QVERIFY(log.contains(QtWarningMsg, { "failed to create a valid item from message with id" }));
    }

    void anInterruptedMoveIsFinished()
    {
        MailFixture mail;
        mail.addFolder("5");
        const QMailFolderId archive = mail.addFolder("6");
        const QMailMessageId id = mail.addMessage(mail.item("5:1", "5"));
        mail.setStatus(id, QMailMessage::Read, true);
        mail.setStatus(id, QMailMessage::ReadElsewhere, false);
        QMailDisconnected::moveToFolder(QMailMessageIdList { id }, archive);
        moveInTheMapping(mail);

        const Changes changes(mail);
        QVERIFY(changes->movedEmails()->isEmpty());
        QCOMPARE(mail.message(id).serverUid(), QStringLiteral("6:7"));
        QVERIFY(!mail.message(id).previousParentFolderId().isValid());
        QCOMPARE(mail.message(id).parentFolderId(), archive);
        // The read mark that has not gone up yet goes up under the new name.
        QCOMPARE(serverIds(*changes->updatedEmails(text(archive))), QStringList { "6:7" });
    }

    void aMessageThatWasMovedOnAfterAnInterruptedMoveGoesOnFromThere()
    {
        MailFixture mail;
        mail.addFolder("5");
        const QMailFolderId archive = mail.addFolder("6");
        const QMailFolderId drawer = mail.addFolder("7");
        const QMailMessageId id = mail.addMessage(mail.item("5:1", "5"));
        QMailDisconnected::moveToFolder(QMailMessageIdList { id }, archive);
        moveInTheMapping(mail);
        QMailDisconnected::moveToFolder(QMailMessageIdList { id }, drawer);

        const QList<EasEmailItem> items = *Changes(mail)->movedEmails();
        QCOMPARE(items.size(), 1);
        QCOMPARE(items.at(0).serverId(), QStringLiteral("6:7"));
        QCOMPARE(items.at(0).sourceFolderId(), QStringLiteral("6"));
        QCOMPARE(items.at(0).destinationFolderId(), QStringLiteral("7"));
        QCOMPARE(mail.message(id).serverUid(), QStringLiteral("6:7"));
        QCOMPARE(mail.message(id).previousParentFolderId(), archive);
    }

    void deletionsAreThoseOfTheFolderByTheMapping()
    {
        LogCollector log;
        MailFixture mail;
        const QMailFolderId inbox = mail.addFolder("5");
        mail.addFolder("6");
        QMailStore *store = mail.context.store;
        const auto remove = [store](const QMailMessageId &id) {
            return store->removeMessage(id, QMailStore::CreateRemovalRecord);
        };
        QVERIFY(remove(mail.addMessage(mail.item("5:1", "5"))));

        // The mapping says that this one lives in another folder.
        EasEmailItem elsewhere = mail.item("5:2", "5");
        elsewhere.setCollectionId("6");
        QVERIFY(remove(mail.addMessage(elsewhere)));

        EasEmailItem nameless = mail.item(QString(), "5");
        QVERIFY(remove(mail.addMessage(nameless)));

        QCOMPARE(KeptEmailId::texts(*Changes(mail)->deletedEmails(text(inbox))), QStringList { "5:1" });
        QVERIFY(log.contains("serverUid is empty in Removal Record"));
    }
};

FENNEL_REGISTER_TEST(MailLocalChangesTest)
#include "maillocalchangestest.moc"
