// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailsearchresults.h"
#include "support/mailfixture.h"
#include "support/testmain.h"

#include <QtTest>

namespace {

bool has(const QMailMessage &message, quint64 mask)
{
    return (message.status() & mask) != 0;
}

} // namespace

class MailSearchResultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void searchResultsReplaceEarlierOnes()
    {
        MailFixture mail;
        mail.addFolder("5");
        const QMailMessageId synchronised = mail.addMessage(mail.item("5:1", "5"));
        EasEmailItem found = mail.item(QString(), "5");
        found.setLongId("long");
        MailSearchResults results(mail.context);
        QList<quint64> ids;
        for (int round = 0; round < 2; ++round) {
            QList<EasEmailItem> items { found, mail.item("5:1", "5"), found };
            QVERIFY(results.add(items, ids));
            QCOMPARE(ids.size(), 3);
            QCOMPARE(ids.at(0), mail.message("long").id().toULongLong());
            QCOMPARE(ids.at(1), synchronised.toULongLong());
            QCOMPARE(ids.at(2), ids.at(0));
            QCOMPARE(mail.messageCount(), 2);
        }
        QVERIFY(has(mail.message("long"), QMailMessage::Temporary));
        QVERIFY(!has(mail.message("5:1"), QMailMessage::Temporary));
    }
};

FENNEL_REGISTER_TEST(MailSearchResultsTest)
#include "mailsearchresultstest.moc"
