// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailmessagerepair.h"
#include "application/mapping/easdatabase.h"
#include "storages/mail/mailitembatch.h"
#include "storages/mail/mailsearchresults.h"
#include "storages/mail/mailstorageimpl.h"
#include "support/mailfixture.h"
#include "support/testmain.h"

#include <qmailmessageremovalrecord.h>

#include <QtTest>

class MailMessageRepairTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void messagesWithoutARowGoAtTheNextStart()
    {
        MailFixture mail;
        mail.addFolder("5");
        mail.addMessage(mail.item("5:1", "5"));
        QList<EasEmailItem> stored { mail.item("5:2", "5") };
        QVERIFY(MailItemBatch(mail.context).addEmailItems(stored));
        const MailStorageImpl storage(&mail.account);
        QCOMPARE(mail.messageCount(), 1);
        QVERIFY(mail.message("5:1").id().isValid());
        QVERIFY(mail.context.store->messageRemovalRecords(mail.mailAccountId()).isEmpty());
    }

    void mailWrittenHereAndSearchHitsStay()
    {
        MailFixture mail;
        const QMailFolderId drafts = mail.addFolder("3");
        QMailMessage draft;
        draft.setParentAccountId(mail.mailAccountId());
        draft.setParentFolderId(drafts);
        draft.setSubject("written here");
        QVERIFY(mail.context.store->addMessage(&draft));
        QList<EasEmailItem> hits { mail.item("3:1", "3") };
        QList<quint64> ids;
        QVERIFY(MailSearchResults(mail.context).add(hits, ids));
        QCOMPARE(MailMessageRepair::removeStrays(mail.context), 0);
        QCOMPARE(mail.messageCount(), 2);
    }

    void removalRecordsOfNoMessageGoAtTheNextStart()
    {
        MailFixture mail;
        mail.addFolder("5");
        const QMailFolderId gone = mail.addFolder("6");
        QMailStore *store = mail.context.store;
        // A message of a folder that goes before its removal was uploaded.
        QVERIFY(
            store->removeMessage(mail.addMessage(mail.item("6:1", "6")), QMailStore::CreateRemovalRecord));
        QVERIFY(store->removeFolder(gone));
        QVERIFY(EasDatabase::instance()->deleteFolderItems(mail.accountId(), { "6" }));
        QVERIFY(EasDatabase::instance()->clearEmailFolder(mail.accountId(), "6"));
        // Two whose removal is still to be told: one without, one with a row.
        QList<EasEmailItem> unmapped { mail.item("5:1", "5") };
        QVERIFY(MailItemBatch(mail.context).addEmailItems(unmapped));
        QVERIFY(store->removeMessage(mail.message("5:1").id(), QMailStore::CreateRemovalRecord));
        QVERIFY(
            store->removeMessage(mail.addMessage(mail.item("5:2", "5")), QMailStore::CreateRemovalRecord));

        const MailStorageImpl storage(&mail.account);
        QStringList left;
        for (const QMailMessageRemovalRecord &record : store->messageRemovalRecords(mail.mailAccountId()))
            left.append(record.serverUid());
        left.sort();
        QCOMPARE(left, QStringList({ "5:1", "5:2" }));
    }

    void mailOfOtherAccountsIsNotLookedAt()
    {
        MailFixture mail;
        MailFixture other;
        other.addFolder("5");
        QList<EasEmailItem> stored { other.item("5:2", "5") };
        QVERIFY(MailItemBatch(other.context).addEmailItems(stored));
        QCOMPARE(MailMessageRepair::removeStrays(mail.context), 0);
        QCOMPARE(other.messageCount(), 1);
    }
};

FENNEL_REGISTER_TEST(MailMessageRepairTest)
#include "mailmessagerepairtest.moc"
