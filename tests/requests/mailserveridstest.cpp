// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/mailserverids.h"

#include "application/mapping/easdatabase.h"
#include "easitems/easemailitem.h"
#include "easitems/emailserverid.h"
#include "support/testmain.h"

#include <QtTest>

/** @short Messages stay apart on servers that number them in each folder anew. */
class MailServerIdsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void anOrdinaryIdentifierIsKeptAsItIs();
    void aTakenIdentifierIsQualifiedWithItsFolder();
    void aMessageKeepsItsIdentifierWhenTheOtherOneGoes();
    void twoNewMessagesOfOneReplyStayApart();
    void whatWasLookedUpTogetherIsNotAskedForAgain();
    void aReplyMayHoldMoreThanOneStatementTakes();

private:
    static void addRow(const QString &serverId, const QString &collectionId);
};

namespace {
constexpr EasAccountId Account = 7;
const auto Inbox = QStringLiteral("mail/inbox");
const auto Archive = QStringLiteral("mail/archive");
const WireEmailId First(QStringLiteral("1"));
const WireEmailId Second(QStringLiteral("2"));
} // namespace

void MailServerIdsTest::initTestCase()
{
    EasDatabase::initTestMode();
}

void MailServerIdsTest::cleanup()
{
    EasDatabase::instance()->removeAccount(Account);
}

void MailServerIdsTest::addRow(const QString &serverId, const QString &collectionId)
{
    EasEmailItem item;
    item.setServerId(serverId);
    item.setCollectionId(collectionId);
    item.setLocalId(QStringLiteral("1"));
    QVERIFY(EasDatabase::instance()->addEmailItems(Account, { item }));
}

void MailServerIdsTest::anOrdinaryIdentifierIsKeptAsItIs()
{
    addRow(QStringLiteral("1"), Inbox);
    const MailServerIds ids = *MailServerIds::lookUp(Account, { { Inbox, First }, { Archive, Second } });
    QCOMPARE(ids.kept(Inbox, First).text(), QStringLiteral("1"));
    QCOMPARE(ids.kept(Archive, Second).text(), QStringLiteral("2"));
    QVERIFY(ids.contains(KeptEmailId::plain(First)));
    QVERIFY(!ids.contains(KeptEmailId::plain(Second)));
}

void MailServerIdsTest::aTakenIdentifierIsQualifiedWithItsFolder()
{
    addRow(QStringLiteral("1"), Inbox);
    const MailServerIds ids = *MailServerIds::lookUp(Account, { { Archive, First } });
    const KeptEmailId kept = ids.kept(Archive, First);
    QVERIFY(kept.text() != QStringLiteral("1"));
    QVERIFY(!ids.contains(kept));
    QCOMPARE(kept.onWire().text(), QStringLiteral("1"));
}

void MailServerIdsTest::aMessageKeepsItsIdentifierWhenTheOtherOneGoes()
{
    const KeptEmailId qualified = KeptEmailId::qualified(Archive, First);
    addRow(qualified.text(), Archive);
    const MailServerIds ids = *MailServerIds::lookUp(Account, { { Archive, First }, { Inbox, First } });
    QCOMPARE(ids.kept(Archive, First).text(), qualified.text());
    QCOMPARE(ids.kept(Inbox, First).text(), QStringLiteral("1"));
}

void MailServerIdsTest::twoNewMessagesOfOneReplyStayApart()
{
    MailServerIds ids = *MailServerIds::lookUp(Account, { { Inbox, First }, { Archive, First } });
    const KeptEmailId first = ids.kept(Inbox, First);
    ids.add(first, Inbox);
    const KeptEmailId second = ids.kept(Archive, First);
    QVERIFY(first.text() != second.text());
    ids.add(second, Archive);
    QCOMPARE(ids.kept(Inbox, First).text(), first.text());
    QCOMPARE(ids.kept(Archive, First).text(), second.text());
}

void MailServerIdsTest::whatWasLookedUpTogetherIsNotAskedForAgain()
{
    addRow(QStringLiteral("1"), Inbox);
    const MailServerIds ids = *MailServerIds::lookUp(Account, { { Inbox, First }, { Archive, Second } });
    // As a reply's own deletes do before its adds are named.
    EasDatabase::instance()->removeAccount(Account);
    addRow(QStringLiteral("2"), Inbox);
    QVERIFY(ids.contains(KeptEmailId::plain(First)));
    QCOMPARE(ids.kept(Archive, Second).text(), QStringLiteral("2"));
    QVERIFY(!ids.contains(KeptEmailId::plain(Second)));
}

void MailServerIdsTest::aReplyMayHoldMoreThanOneStatementTakes()
{
    addRow(QStringLiteral("1"), Inbox);
    addRow(QStringLiteral("5000"), Inbox);
    QList<MailServerIds::Item> items;
    for (int number = 1; number <= 5000; ++number)
        items.append({ Archive, WireEmailId(QString::number(number)) });
    const MailServerIds ids = *MailServerIds::lookUp(Account, items);
    QVERIFY(ids.contains(KeptEmailId(QStringLiteral("1"))));
    QVERIFY(ids.contains(KeptEmailId(QStringLiteral("5000"))));
    QVERIFY(!ids.contains(KeptEmailId(QStringLiteral("2500"))));
}

FENNEL_REGISTER_TEST(MailServerIdsTest)
#include "mailserveridstest.moc"
