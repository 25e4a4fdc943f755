// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/emailresulthandler.h"
#include "requests/uploadresultscene.h"
#include "support/hiddentable.h"
#include "support/itemlines.h"
#include "support/logcollector.h"
#include "support/stubmailstorage.h"
#include "support/testclock.h"
#include "support/testmain.h"

using namespace UploadResultScene;

namespace {

/** A mail store that keeps a line for each call, and refuses the one that a test names. */
class RecordingMailStorage : public StubMailStorage
{
public:
    QStringList calls;
    QString refuses;
    QList<uint> lastChangedFields;

    bool updateEmails(
        QList<EasEmailItem> &added, QList<EasEmailItem> &changed, const QStringList &deleted) override
    {
        if (!changed.isEmpty())
            lastChangedFields = changed.last().changedFields();
        const bool taken = note(QStringLiteral("received"), ItemLines::of(added, changed, deleted));
        for (EasEmailItem &item : added)
            item.setLocalId(QStringLiteral("local-") + item.serverId());
        return taken;
    }
    bool successfullyUpdatedEmails(QList<EasEmailItem> &items) override
    {
        return note(QStringLiteral("updated"), ItemLines::of({}, items, {}));
    }
    bool purgeDeletedEmails(const QList<KeptEmailId> &ids) override
    {
        return note(
            QStringLiteral("purged"), ItemLines::of(QList<EasEmailItem>(), {}, KeptEmailId::texts(ids)));
    }

private:
    bool note(const QString &call, const QString &items)
    {
        calls.append(call + items);
        return call != refuses;
    }
};

} // namespace

/** What becomes of the mail that went up and came down with a Sync. */
class EmailResultHandlerTest : public QObject
{
    Q_OBJECT

private:
    using Mail = EasEmailItem;
    using MailScene = Scene<EmailResultHandler, RecordingMailStorage>;

    std::unique_ptr<MailScene> mScene;

    static QStringList mapped() { return EasDatabase::instance()->serverToLocalEmailIds(Account)->keys(); }
    static SyncCollection collection(const QList<Mail> &changed = {}, const QStringList &deleted = {})
    {
        return sent("5", &SyncCommandAdd::setEmailItems, {}, changed, deleted);
    }
    bool handle(SyncCollection &collection) { return mScene->handle(collection); }
    QStringList calls() const { return mScene->store->calls; }

private Q_SLOTS:
    void init()
    {
        mScene = std::make_unique<MailScene>(&FakeAccount::mails);
        QList<Mail> known { item<Mail>("1", "5:1"), item<Mail>("2", "5:2"), item<Mail>("3", "5:3") };
        for (Mail &mail : known)
            mail.setCollectionId(QStringLiteral("5"));
        QVERIFY(EasDatabase::instance()->addEmailItems(Account, known));
    }

    void cleanup() { mScene.reset(); }

    void aMissingStoreIsAFailure()
    {
        mScene->account.mails.reset();
        SyncCollection reply = collection();
        const LogCollector log;
        QVERIFY(!handle(reply));
        QCOMPARE(mScene->status, -2);
        QVERIFY(log.contains(QtCriticalMsg, { QStringLiteral("MailStorage is null") }));
    }

    void anIdentifierThatWouldBeCutIsRefused()
    {
        SyncCollection reply = collection();
        reply.appendAddedEmails(Mail(), QStringLiteral("5:8\u001f6"));
        const LogCollector log;
        QVERIFY(!handle(reply));
        QCOMPARE(mScene->status, -2);
        QVERIFY(calls().isEmpty());
        QVERIFY(log.contains(
            QtCriticalMsg, { QStringLiteral("refused a server identifier with a control character") }));
    }

    void rowsThatCannotBeReadAreAFailure()
    {
        SyncCollection reply = collection();
        reply.appendAddedEmails(Mail(), QStringLiteral("5:1"));
        const HiddenTable hidden("emails");
        QVERIFY(!handle(reply));
        QCOMPARE(mScene->status, -2);
        QVERIFY(calls().isEmpty());
    }

    void uploadsComeBeforeWhatTheServerSends()
    {
        SyncCollection reply = collection({ item<Mail>("1", "5:1") }, { QStringLiteral("5:2") });
        reply.appendAddedEmails(Mail(), QStringLiteral("5:8"));
        reply.appendChangedEmails(Mail(), QStringLiteral("5:1"));
        reply.appendDeletedIds(QStringLiteral("5:3"));
        QVERIFY(handle(reply));
        QCOMPARE(mScene->status, 0);
        QCOMPARE(calls(),
            QStringList({ QStringLiteral("updated */5:1"), QStringLiteral("purged -5:2"),
                QStringLiteral("received +=5/5:8 *5/5:1 -5:3") }));
        QCOMPARE(mapped(), QStringList({ QStringLiteral("5:1"), QStringLiteral("5:8") }));
    }

    void aRepeatedAdditionIsAChangeWithItsMark()
    {
        SyncCollection reply = collection();
        reply.appendAddedEmails(Mail(), QStringLiteral("5:1"));
        reply.appendAddedEmails(Mail(), QStringLiteral("5:8"));
        QVERIFY(handle(reply));
        QCOMPARE(calls(), QStringList(QStringLiteral("received +=5/5:8 *5/5:1")));
        QVERIFY(mScene->store->lastChangedFields.contains(0x1111));
        QCOMPARE(mapped().size(), 4);
    }

    void oneReplyDoesNotAddTheSameMailTwice()
    {
        SyncCollection reply = collection();
        reply.appendAddedEmails(Mail(), QStringLiteral("5:8"));
        reply.appendAddedEmails(Mail(), QStringLiteral("5:8"));
        QVERIFY(handle(reply));
        QCOMPARE(calls(), QStringList(QStringLiteral("received +=5/5:8 *5/5:8")));
    }

    void aChangeOfUnknownMailBeginsTheCollectionAnewOnceADay()
    {
        TestClock clock;
        const QString warning = QStringLiteral("changes of unknown items, the collection begins anew:");
        EasFolderItem folder;
        folder.setServerId(QStringLiteral("5"));
        folder.setDisplayName(QStringLiteral("Projects"));
        QVERIFY(EasDatabase::instance()->addFolderItems(Account, { folder }));
        const auto tells = [&] {
            mScene->state = SyncState();
            SyncCollection reply = collection();
            reply.appendChangedEmails(Mail(), QStringLiteral("5:77"));
            return handle(reply) ? mScene->state.collectionsToResync : QStringList(QStringLiteral("failed"));
        };
        {
            const LogCollector log;
            QCOMPARE(tells(), QStringList(QStringLiteral("5")));
            QVERIFY(log.contains(QtWarningMsg, { warning, QStringLiteral("Projects") }));
        }
        QCOMPARE(tells(), QStringList());
        clock.setAhead(24 * 60 * 60 * 1000 - 5000);
        QCOMPARE(tells(), QStringList());
        clock.advance(10000);
        QCOMPARE(tells(), QStringList(QStringLiteral("5")));
    }

    void aChangeOfKnownMailDoesNotBeginAnew()
    {
        mScene->state.movedServerIds = QStringList(QStringLiteral("5:9"));
        SyncCollection reply = collection({}, { QStringLiteral("5:2") });
        reply.appendAddedEmails(Mail(), QStringLiteral("5:8"));
        for (const char *known : { "5:1", "5:8", "5:9", "5:2" }) // there, new, moved, just deleted
            reply.appendChangedEmails(Mail(), QString::fromLatin1(known));
        QVERIFY(handle(reply));
        QCOMPARE(mScene->state.collectionsToResync, QStringList());
    }

    void movedMailIsSparedByTheNextReplyAlone_data()
    {
        QTest::addColumn<bool>("otherFolderFirst");
        QTest::newRow("of its old folder") << false;
        QTest::newRow("of any folder") << true;
    }

    void movedMailIsSparedByTheNextReplyAlone()
    {
        QFETCH(bool, otherFolderFirst);
        mScene->state.movedServerIds = QStringList({ QStringLiteral("5:1"), QStringLiteral("5:9") });
        if (otherFolderFirst) {
            SyncCollection other = collection();
            other.setId(QStringLiteral("6"));
            QVERIFY(handle(other));
            QVERIFY(mScene->state.movedServerIds.isEmpty());
        }
        SyncCollection own = collection();
        own.appendDeletedIds(QStringLiteral("5:1"));
        own.appendDeletedIds(QStringLiteral("5:2"));
        QVERIFY(handle(own));
        QCOMPARE(calls().last(),
            otherFolderFirst ? QStringLiteral("received -5:1 -5:2") : QStringLiteral("received -5:2"));
        QVERIFY(mScene->state.movedServerIds.isEmpty());
        QCOMPARE(mapped().contains(QStringLiteral("5:1")), !otherFolderFirst);
    }

    void withoutAnAcknowledgedDeletionNothingIsPurged()
    {
        SyncCollection reply = collection({}, { QStringLiteral("5:2") });
        answerDelete(reply, "5:2", 4);
        QVERIFY(handle(reply));
        // An empty list would purge every removal record.
        QCOMPARE(calls(), QStringList(QStringLiteral("received")));
    }

    void answersThatNameNoItemAcknowledge_data()
    {
        QTest::addColumn<QList<uint>>("unnamed");
        QTest::addColumn<bool>("named");
        QTest::addColumn<QString>("updated");
        QTest::newRow("everything where all are successes")
            << QList<uint> { 1, 1 } << false << "updated */5:1 */5:2";
        QTest::newRow("everything though there are fewer of them")
            << QList<uint> { 1 } << false << "updated */5:1 */5:2";
        QTest::newRow("nothing where one is a failure") << QList<uint> { 1, 6 } << false << "";
        QTest::newRow("nothing beside one that names its item")
            << QList<uint> { 1 } << true << "updated */5:1";
    }

    void answersThatNameNoItemAcknowledge()
    {
        QFETCH(QList<uint>, unnamed);
        QFETCH(bool, named);
        QFETCH(QString, updated);
        SyncCollection reply = collection({ item<Mail>("1", "5:1"), item<Mail>("2", "5:2") });
        for (const uint status : unnamed)
            answerChange(reply, "", status);
        if (named)
            answerChange(reply, "5:1");
        QVERIFY(handle(reply));
        QCOMPARE(calls().filter(QStringLiteral("updated")).join(QLatin1Char(' ')), updated);
    }

    void deletionsAnsweredWithoutAnItemAreDone()
    {
        SyncCollection reply = collection({}, { QStringLiteral("5:2"), QStringLiteral("5:3") });
        answerDelete(reply, "");
        QVERIFY(handle(reply));
        QCOMPARE(calls().first(), QStringLiteral("purged -5:2 -5:3"));
        // One that was not found is no success, and it is not known which one it is.
        SyncCollection other = collection({}, { QStringLiteral("5:1") });
        answerDelete(other, "", 8);
        QVERIFY(handle(other));
        QVERIFY(!calls().contains(QStringLiteral("purged -5:1")));
    }

    void answersToAdditionsAreOddButNoFailure()
    {
        SyncCollection reply = collection();
        answerAdd(reply, "1", "5:9");
        const LogCollector log;
        QVERIFY(handle(reply));
        QVERIFY(log.contains(QtWarningMsg,
            { QStringLiteral("unexpected add responses in a sync response for collection"),
                QStringLiteral("5") }));
    }

    void aStoreThatRefusesStopsTheHandling_data()
    {
        QTest::addColumn<QString>("call");
        QTest::addColumn<int>("calls");
        QTest::addColumn<QString>("text");
        QTest::newRow("changes") << "updated" << 1 << "Can't update state of successfully updated items";
        QTest::newRow("deletions") << "purged" << 2 << "MailStorage is null";
        QTest::newRow("items") << "received" << 3 << "Failed to update emails";
    }

    void aStoreThatRefusesStopsTheHandling()
    {
        QFETCH(QString, call);
        QFETCH(QString, text);
        mScene->store->refuses = call;
        SyncCollection reply = collection({ item<Mail>("1", "5:1") }, { QStringLiteral("5:2") });
        reply.appendAddedEmails(Mail(), QStringLiteral("5:8"));
        const LogCollector log;
        QVERIFY(!handle(reply));
        QCOMPARE(mScene->status, -2);
        QTEST(calls().size(), "calls");
        QVERIFY(log.texts(QtCriticalMsg).contains(text));
        QVERIFY(!mapped().contains(QStringLiteral("5:8")));
    }

    void aDatabaseThatRefusesIsAFailure()
    {
        mScene->database.refuse("INSERT", "emails");
        SyncCollection reply = collection();
        reply.appendAddedEmails(Mail(), QStringLiteral("5:8"));
        const LogCollector log;
        QVERIFY(!handle(reply));
        QCOMPARE(mScene->status, -2);
        QVERIFY(log.texts(QtCriticalMsg).contains(QStringLiteral("Failed to update emails in EAS DB")));
    }

    void aDatabaseThatCannotBeReadIsAFailure()
    {
        const HiddenTable hidden("emails");
        SyncCollection reply = collection();
        reply.appendAddedEmails(Mail(), QStringLiteral("5:1"));
        const LogCollector log;
        QVERIFY(!handle(reply));
        QCOMPARE(mScene->status, -2);
        QCOMPARE(calls(), QStringList());
    }
};

FENNEL_REGISTER_TEST(EmailResultHandlerTest)
#include "emailresulthandlertest.moc"
