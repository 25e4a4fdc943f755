// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailitembatch.h"
#include "application/mapping/easdatabase.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "storages/mail/mailattachments.h"
#include "storages/mail/mailsearchresults.h"
#include "support/logcollector.h"
#include "support/mailfixture.h"
#include "support/testmain.h"

#include <qmaildisconnected.h>
#include <qmailmessagekey.h>

#include <QtTest>

namespace {

bool has(const QMailMessage &message, quint64 mask)
{
    return (message.status() & mask) != 0;
}

QString text(const QMailMessageId &id)
{
    return QString::number(id.toULongLong());
}

} // namespace

class MailItemBatchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void addedItemsGetTheirLocalIds()
    {
        MailFixture mail;
        mail.addFolder("5");
        MailItemBatch batch(mail.context);
        QList<EasEmailItem> items { mail.item("5:1", "5"), mail.item("5:2", "5") };
        QVERIFY(batch.addEmailItems(items));
        for (const EasEmailItem &item : items) {
            const QMailMessage message = mail.message(item.serverId());
            QCOMPARE(item.localId(), text(message.id()));
            QVERIFY(has(message, QMailMessage::New));
            QCOMPARE(message.subject(), item.subject());
        }
    }

    void anUnknownFolderFailsAloud()
    {
        LogCollector log;
        MailFixture mail;
        mail.addFolder("5");
        MailItemBatch batch(mail.context);
        QList<EasEmailItem> items { mail.item("5:1", "5"), mail.item("9:1", "9") };
        QVERIFY(!batch.addEmailItems(items));
        QVERIFY(log.contains(QtCriticalMsg, { "no local folder for message with server id", "9:1" }));
        QCOMPARE(mail.messageCount(), 0);
    }

    void anItemThatCannotBeBuiltFailsAll()
    {
        LogCollector log;
        MailFixture mail;
        mail.addFolder("5");
        mail.account.events.clear();
        MailItemBatch batch(mail.context);
        EasEmailItem meeting = mail.item("5:2", "5");
        meeting.setMessageClass("IPM.Schedule.Meeting.Canceled");
        QList<EasEmailItem> items { mail.item("5:1", "5"), meeting };
        QVERIFY(!batch.addEmailItems(items));
        QVERIFY(log.contains(QtCriticalMsg, { "Can't create QMailMessage from EasEmailItem" }));
        QCOMPARE(mail.messageCount(), 0);
    }

    void aRepeatedBatchAdoptsWhatIsThere()
    {
        MailFixture mail;
        mail.addFolder("5");
        MailItemBatch batch(mail.context);
        QList<EasEmailItem> first { mail.item("5:1", "5"), mail.item("5:2", "5") };
        QVERIFY(batch.addEmailItems(first));

        // No row was written. The same reply comes again, with one message more and newer content.
        QList<EasEmailItem> again { mail.item("5:1", "5"), mail.item("5:2", "5"), mail.item("5:3", "5") };
        again[0].setSubject("newer");
        QVERIFY(batch.addEmailItems(again));
        QCOMPARE(mail.messageCount(), 3);
        QCOMPARE(again.at(0).localId(), first.at(0).localId());
        QCOMPARE(again.at(1).localId(), first.at(1).localId());
        QCOMPARE(mail.message("5:1").subject(), QStringLiteral("newer"));
        QCOMPARE(mail.message("5:1").body().data(), QStringLiteral("Text of 5:1"));
    }

    void anAdoptedMessageKeepsWhatTheUserDid()
    {
        MailFixture mail;
        const QMailFolderId inbox = mail.addFolder("5");
        const QMailFolderId archive = mail.addFolder("6");
        MailItemBatch batch(mail.context);
        EasEmailItem item = mail.item("5:1", "5");
        item.setRead(false);
        QList<EasEmailItem> items { item };
        QVERIFY(batch.addEmailItems(items));
        const QMailMessageId id = mail.message("5:1").id();
        mail.setStatus(id, QMailMessage::Read, true);
        QMailDisconnected::moveToFolder(QMailMessageIdList { id }, archive);

        QList<EasEmailItem> again { item };
        QVERIFY(batch.addEmailItems(again));
        const QMailMessage message = mail.message(id);
        QCOMPARE(mail.messageCount(), 1);
        QVERIFY(has(message, QMailMessage::Read));
        QVERIFY(!has(message, QMailMessage::ReadElsewhere));
        QCOMPARE(message.parentFolderId(), archive);
        QCOMPARE(message.previousParentFolderId(), inbox);
    }

    void aMessageDeletedBeforeItsRowWasWrittenStaysDeleted()
    {
        MailFixture mail;
        mail.addFolder("5");
        MailItemBatch batch(mail.context);
        QList<EasEmailItem> items { mail.item("5:1", "5") };
        QVERIFY(batch.addEmailItems(items));
        QVERIFY(mail.context.store->removeMessage(mail.message("5:1").id(), QMailStore::CreateRemovalRecord));

        QList<EasEmailItem> again { mail.item("5:1", "5"), mail.item("5:2", "5") };
        QVERIFY(batch.addEmailItems(again));
        QCOMPARE(mail.messageCount(), 1);
        QCOMPARE(again.size(), 2);
        QVERIFY(again.at(0).localId().isEmpty());
        QVERIFY(!again.at(1).localId().isEmpty());
    }

    void anItemThatOccursTwiceIsTakenOnce()
    {
        MailFixture mail;
        mail.addFolder("5");
        MailItemBatch batch(mail.context);
        QList<EasEmailItem> items { mail.item("5:1", "5"), mail.item("5:1", "5"), mail.item("5:2", "5") };
        QVERIFY(batch.addEmailItems(items));
        QCOMPARE(items.size(), 2);
        QCOMPARE(items.at(1).localId(), text(mail.message("5:2").id()));
        QCOMPARE(mail.messageCount(), 2);
    }

    void aSearchHitBecomesTheMessage()
    {
        MailFixture mail;
        const QMailFolderId folder = mail.addFolder("5");
        MailItemBatch batch(mail.context);
        QList<EasEmailItem> hits { mail.item("5:1", "5") };
        QList<quint64> ids;
        QVERIFY(MailSearchResults(mail.context).add(hits, ids));
        QVERIFY(has(mail.message("5:1"), QMailMessage::Temporary));

        QList<EasEmailItem> items { mail.item("5:1", "5") };
        QVERIFY(batch.addEmailItems(items));
        const QMailMessage message = mail.message("5:1");
        QVERIFY(!has(message, QMailMessage::Temporary));
        QCOMPARE(message.parentFolderId(), folder);
        QCOMPARE(message.id().toULongLong(), ids.at(0));
    }

    void anIdThatNamesAnotherMessageFailsAloud()
    {
        LogCollector log;
        MailFixture mail;
        mail.addFolder("5");
        mail.addFolder("6");
        mail.addMessage(mail.item("1", "5"));
        MailItemBatch batch(mail.context);
        QList<EasEmailItem> items { mail.item("1", "6") };
        QVERIFY(!batch.addEmailItems(items));
        QVERIFY(log.contains(QtCriticalMsg, { "is that of another message already" }));
        QCOMPARE(mail.messageCount(), 1);
    }

    void aRemovalInAnotherFolderIsThatOfAnotherMessage()
    {
        MailFixture mail;
        mail.addFolder("5");
        mail.addFolder("6");
        MailItemBatch batch(mail.context);
        QList<EasEmailItem> removed { mail.item("7", "6") };
        QVERIFY(batch.addEmailItems(removed));
        QVERIFY(mail.context.store->removeMessage(mail.message("7").id(), QMailStore::CreateRemovalRecord));

        QList<EasEmailItem> items { mail.item("7", "5") };
        QVERIFY(batch.addEmailItems(items));
        QVERIFY(!items.at(0).localId().isEmpty());
        QCOMPARE(mail.messageCount(), 1);
    }

    void aRepeatedItemThatTheStoreHasLostIsNew()
    {
        MailFixture mail;
        mail.addFolder("5");
        EasEmailItem lost = mail.item("5:1", "5");
        mail.map(lost, QMailMessageId(424242));
        EasEmailItem known = mail.item("5:2", "5");
        mail.addMessage(known);
        EasEmailItem removed = mail.item("5:3", "5");
        QVERIFY(mail.context.store->removeMessage(mail.addMessage(removed), QMailStore::CreateRemovalRecord));
        EasEmailItem change = mail.item("5:4", "5");
        mail.map(change, QMailMessageId(424243));
        for (EasEmailItem *item : { &lost, &known, &removed })
            item->appendChangedField(Wbxml::AirSync::Add);
        QList<EasEmailItem> changed { lost, known, removed, change };
        QList<EasEmailItem> added;
        QVERIFY(MailItemBatch(mail.context).takeLostItems(changed, added));
        QCOMPARE(added.size(), 1);
        QCOMPARE(added.at(0).serverId(), QStringLiteral("5:1"));
        QCOMPARE(changed.size(), 3);
        const auto rows = EasDatabase::instance()->serverToLocalEmailIds(mail.accountId());
        QVERIFY(!rows->contains("5:1"));
        QVERIFY(rows->contains("5:3"));
    }

    void aRollbackTakesOutOnlyWhatWasAdded()
    {
        MailFixture mail;
        mail.addFolder("5");
        MailItemBatch batch(mail.context);
        QList<EasEmailItem> first { mail.item("5:1", "5") };
        QVERIFY(batch.addEmailItems(first));
        QList<EasEmailItem> items { mail.item("5:1", "5"), mail.item("5:2", "5") };
        QVERIFY(batch.addEmailItems(items));
        LogCollector log;
        items.append(EasEmailItem());
        batch.rollBackAddedEmailItems(items);
        QVERIFY(log.contains("local id is not found for a server id"));
        QCOMPARE(mail.messageCount(), 1);
        QVERIFY(mail.message("5:1").id().isValid());
    }

    void changesFindTheirMessageByEitherId()
    {
        MailFixture mail;
        mail.addFolder("5");
        const QMailMessageId one = mail.addMessage(mail.item("5:1", "5"));
        const QMailMessageId two = mail.addMessage(mail.item("5:2", "5"));
        EasEmailItem byLocalId;
        byLocalId.setLocalId(text(one));
        byLocalId.setSubject("by local id");
        byLocalId.appendChangedField(Wbxml::Email::Subject);
        EasEmailItem byServerId;
        byServerId.setServerId("5:2");
        byServerId.setSubject("by server id");
        byServerId.appendChangedField(Wbxml::Email::Subject);
        MailItemBatch batch(mail.context);
        QVERIFY(batch.updateEmailItems({ byLocalId, byServerId }, { { "5:2", text(two) } }));
        QCOMPARE(mail.message(one).subject(), QStringLiteral("by local id"));
        QCOMPARE(mail.message(two).subject(), QStringLiteral("by server id"));
    }

    void twoChangesOfOneMessageAddUp()
    {
        MailFixture mail;
        mail.addFolder("5");
        const QMailMessageId id = mail.addMessage(mail.item("5:1", "5"));
        EasEmailItem subject;
        subject.setServerId("5:1");
        subject.setSubject("changed");
        subject.appendChangedField(Wbxml::Email::Subject);
        EasEmailItem read;
        read.setServerId("5:1");
        read.setRead(false);
        read.appendChangedField(Wbxml::Email::Read);
        QVERIFY(MailItemBatch(mail.context).updateEmailItems({ subject, read }, { { "5:1", text(id) } }));
        QCOMPARE(mail.message(id).subject(), QStringLiteral("changed"));
        QVERIFY(!has(mail.message(id), QMailMessage::Read));
    }

    void aChangeOfAMissingMessageIsPassedOver()
    {
        LogCollector log;
        MailFixture mail;
        mail.addFolder("5");
        EasEmailItem gone = mail.item("5:9", "5");
        gone.setLongId("long");
        gone.setLocalStorageAccountId(mail.accountId());
        gone.setId(3);
        mail.map(gone, QMailMessageId(424242));
        QVERIFY(MailItemBatch(mail.context).updateEmailItems({ gone }, { { "5:9", "424242" } }));
        QVERIFY(log.contains(QtWarningMsg, { "messageId", "and longID", "long", "are invalid" }));
        QVERIFY(!EasDatabase::instance()->serverToLocalEmailIds(mail.accountId())->contains("5:9"));
    }

    void deletionsTakeWhatIsKnown()
    {
        LogCollector log;
        MailFixture mail;
        mail.addFolder("5");
        const QMailMessageId id = mail.addMessage(mail.item("5:1", "5"));
        mail.addMessage(mail.item("5:2", "5"));
        MailItemBatch batch(mail.context);
        QVERIFY(batch.deleteEmailItems({ "5:1", "unknown" }, { { "5:1", text(id) } }));
        QVERIFY(log.contains(QtWarningMsg, { "local id is not found for a server id", "unknown" }));
        QCOMPARE(mail.messageCount(), 1);
        QVERIFY(mail.context.store->messageRemovalRecords(mail.mailAccountId()).isEmpty());
        QVERIFY(batch.deleteEmailItems(QMailMessageIdList()));
        QCOMPARE(mail.messageCount(), 1);
    }

    void aMessageWithTwoNamesGoesWithTheLast()
    {
        MailFixture mail;
        mail.addFolder("5");
        const QMailMessageId id = mail.addMessage(mail.item("6:1", "5"));
        const QMap<QString, QString> names { { "5:1", text(id) }, { "6:1", text(id) } };
        MailItemBatch batch(mail.context);
        QVERIFY(batch.deleteEmailItems(QStringList { "5:1" }, names));
        QCOMPARE(mail.messageCount(), 1);
        QVERIFY(batch.deleteEmailItems(QStringList { "5:1", "6:1" }, names));
        QCOMPARE(mail.messageCount(), 0);
    }

    void anUploadedReadMarkIsKnownElsewhere()
    {
        MailFixture mail;
        mail.addFolder("5");
        EasEmailItem item = mail.item("5:1", "5");
        item.setRead(false);
        const QMailMessageId id = mail.addMessage(item);
        mail.setStatus(id, QMailMessage::Read, true);
        item.setLocalId(text(id));
        item.setRead(true);
        EasEmailItem gone = mail.item("5:2", "5");
        gone.setLocalId("424242");
        QVERIFY(MailItemBatch(mail.context).successfullyUpdatedEmails({ EasEmailItem(), gone, item }));
        QVERIFY(has(mail.message(id), QMailMessage::ReadElsewhere));
    }
};

FENNEL_REGISTER_TEST(MailItemBatchTest)
#include "mailitembatchtest.moc"
