// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailoutgoing.h"

#include "easitems/easemailitem.h"
#include "support/logcollector.h"
#include "support/mailfixture.h"
#include "support/outgoingmail.h"
#include "support/testmain.h"

#include <qmailaccount.h>

#include <QtTest>

/** Messages on their way out of the store, and their place afterwards. */
class MailOutgoingTest : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<MailFixture> mMail;
    QMailFolderId mOutbox;
    QMailFolderId mDrafts;
    QMailFolderId mSent;

    QMailFolderId standardFolder(const char *name, QMailFolder::StandardFolder kind)
    {
        const QMailFolderId id = mMail->addStoreFolder(QString::fromLatin1(name));
        QMailAccount account(mMail->mailAccountId());
        account.setStandardFolder(kind, id);
        QMailAccountConfiguration *const configuration = nullptr;
        return mMail->context.store->updateAccount(&account, configuration) ? id : QMailFolderId();
    }

    QString outgoing(const QMailMessage &message)
    {
        return QString::number(OutgoingMail::putIntoOutbox(message, mMail->mailAccountId()).toULongLong());
    }

    QMailMessageMetaData stored(const QString &localId)
    {
        return mMail->context.store->messageMetaData(QMailMessageId(localId.toULongLong()));
    }

    int removals() { return mMail->context.store->messageRemovalRecords(mMail->mailAccountId()).size(); }

private Q_SLOTS:
    void init()
    {
        mMail = std::make_unique<MailFixture>();
        mOutbox = standardFolder("Outbox", QMailFolder::OutboxFolder);
        mDrafts = standardFolder("Drafts", QMailFolder::DraftsFolder);
        mSent = standardFolder("Sent", QMailFolder::SentFolder);
    }
    void cleanup() { mMail.reset(); }

    void aMessageCarriesItsText()
    {
        const QString id = outgoing(OutgoingMail::plain("hello", "bob@example.com"));
        const EasEmailItem item = MailOutgoing(mMail->context).message(id);
        QCOMPARE(item.subject(), QStringLiteral("hello"));
        QVERIFY(item.body().mime().contains("Subject: hello\r\n"));
        QVERIFY(!item.body().smartMimeData());
        QVERIFY(MailOutgoing(mMail->context).message("999999").body().mime().isEmpty());
    }

    void anAnswerNamesWhatTheServerAdds()
    {
        // The source lies elsewhere than the answer, and its identifier is known to the server in part only.
        mMail->addFolder("5");
        EasEmailItem source = mMail->item("7", "5");
        source.setServerId(KeptEmailId::qualified("5", WireEmailId("7")).text());
        QMailMessage message = OutgoingMail::plain("Re: Message", "bob@example.com");
        OutgoingMail::answer(&message, mMail->addMessage(source), QMailMessage::Reply);
        const EasEmailItem item = MailOutgoing(mMail->context).smartMessage(outgoing(message));
        QVERIFY(item.body().smartMimeData());
        QCOMPARE(item.collectionId(), QStringLiteral("5"));
        QCOMPARE(item.replyToId(), QStringLiteral("7"));
    }

    void anAnswerToWhatTheServerDoesNotKnowGoesAsAWhole()
    {
        LogCollector log;
        const QMailMessageId source =
            OutgoingMail::store(OutgoingMail::plain("local", "x@example.com", "Text of the source"),
                mMail->mailAccountId(), mDrafts);
        QMailMessage message = OutgoingMail::plain("Re: local", "bob@example.com");
        OutgoingMail::answer(&message, source, QMailMessage::Reply);
        const EasEmailItem item = MailOutgoing(mMail->context).smartMessage(outgoing(message));
        QVERIFY(!item.body().smartMimeData());
        QVERIFY(item.body().mime().contains("Text of the source"));
        QVERIFY(log.contains("the server does not know the message that"));
    }

    void theKindOfAnAnswerIsRead_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("isReply");
        QTest::addColumn<bool>("isForward");
        QTest::newRow("none") << int(QMailMessage::NoResponse) << false << false;
        QTest::newRow("reply") << int(QMailMessage::Reply) << true << false;
        QTest::newRow("reply to all") << int(QMailMessage::ReplyToAll) << true << false;
        QTest::newRow("forward") << int(QMailMessage::Forward) << false << true;
        QTest::newRow("forward of a part") << int(QMailMessage::ForwardPart) << false << true;
        QTest::newRow("redirect") << int(QMailMessage::Redirect) << false << false;
    }

    void theKindOfAnAnswerIsRead()
    {
        QFETCH(int, type);
        QFETCH(bool, isReply);
        QFETCH(bool, isForward);
        QMailMessage message = OutgoingMail::plain("answer", "bob@example.com");
        message.setResponseType(QMailMessage::ResponseType(type));
        const QString id = outgoing(message);
        const MailOutgoing outgoing(mMail->context);
        QCOMPARE(outgoing.isReply(id), isReply);
        QCOMPARE(outgoing.isForward(id), isForward);
        QVERIFY(!outgoing.isReply(QString()));
        QVERIFY(!outgoing.isForward(QStringLiteral("x")));
    }

    void aSentMessageOfWhichTheServerKeepsACopyGoes()
    {
        const QString id = outgoing(OutgoingMail::plain("sent", "bob@example.com"));
        QVERIFY(MailOutgoing(mMail->context).settleSent(id, MailStorage::SentCopy::OnServer));
        QVERIFY(!stored(id).id().isValid());
        QCOMPARE(removals(), 0);
        // Nothing is left to be done for one that has gone.
        QVERIFY(MailOutgoing(mMail->context).settleSent(id, MailStorage::SentCopy::OnServer));
    }

    void aDraftOfTheServerThatWasSentGoesThereAsWell()
    {
        QMailMessage draft = OutgoingMail::plain("sent", "bob@example.com");
        draft.setServerUid("3:1");
        const QString id = outgoing(draft);
        QVERIFY(MailOutgoing(mMail->context).settleSent(id, MailStorage::SentCopy::OnServer));
        QVERIFY(!stored(id).id().isValid());
        QCOMPARE(removals(), 1);
    }

    void aSentMessageThatIsKeptHereIsAmongTheSentOnes()
    {
        const QString id = outgoing(OutgoingMail::plain("sent", "bob@example.com"));
        QVERIFY(MailOutgoing(mMail->context).settleSent(id, MailStorage::SentCopy::KeptHere));
        const QMailMessageMetaData message = stored(id);
        QCOMPARE(message.parentFolderId(), mSent);
        QVERIFY(message.status() & QMailMessage::Sent);
        QVERIFY(message.status() & QMailMessage::Read);
        QVERIFY(!(message.status() & (QMailMessage::Outbox | QMailMessage::Draft)));
        QVERIFY(!message.previousParentFolderId().isValid());
    }

    void aMessageThatIsTooLargeIsADraft()
    {
        const QString id = outgoing(OutgoingMail::plain("too large", "bob@example.com"));
        QVERIFY(MailOutgoing(mMail->context).moveToDrafts(id));
        const QMailMessageMetaData message = stored(id);
        QCOMPARE(message.parentFolderId(), mDrafts);
        QVERIFY(message.status() & QMailMessage::Draft);
        QVERIFY(!(message.status() & (QMailMessage::Outbox | QMailMessage::Sent)));
        QVERIFY(MailOutgoing(mMail->context).message(id).body().mime().contains("too large"));
    }

    void whatCannotBeTakenOutIsMarkedAsSent()
    {
        LogCollector log;
        QMailAccount account(mMail->mailAccountId());
        account.setStandardFolder(QMailFolder::SentFolder, QMailFolderId());
        QVERIFY(
            mMail->context.store->updateAccount(&account, static_cast<QMailAccountConfiguration *>(nullptr)));
        const QString id = outgoing(OutgoingMail::plain("sent", "bob@example.com"));
        const MailOutgoing outgoing(mMail->context);
        QVERIFY(!outgoing.wasSent(id));
        QVERIFY(!outgoing.settleSent(id, MailStorage::SentCopy::KeptHere));
        QVERIFY(outgoing.wasSent(id));
        QVERIFY(log.contains("was sent and stays, marked so"));
        QVERIFY(outgoing.settleSent(id, MailStorage::SentCopy::OnServer));
        QVERIFY(!outgoing.wasSent(id));
    }

    void withoutDraftsItStays()
    {
        LogCollector log;
        QMailAccount account(mMail->mailAccountId());
        account.setStandardFolder(QMailFolder::DraftsFolder, QMailFolderId());
        QVERIFY(
            mMail->context.store->updateAccount(&account, static_cast<QMailAccountConfiguration *>(nullptr)));
        const QString id = outgoing(OutgoingMail::plain("too large", "bob@example.com"));
        QVERIFY(!MailOutgoing(mMail->context).moveToDrafts(id));
        QCOMPARE(stored(id).parentFolderId(), mOutbox);
        QVERIFY(log.contains("could not be moved to standard folder"));
    }
};

FENNEL_REGISTER_TEST(MailOutgoingTest)
#include "mailoutgoingtest.moc"
