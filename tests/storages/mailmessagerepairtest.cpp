// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailmessagerepair.h"
#include "storages/mail/mailitembatch.h"
#include "storages/mail/mailstorageimpl.h"
#include "support/mailfixture.h"
#include "support/testmain.h"

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
        QVERIFY(MailItemBatch(mail.context).addSearchResults(hits, ids));
        QCOMPARE(MailMessageRepair::removeStrays(mail.context), 0);
        QCOMPARE(mail.messageCount(), 2);
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
