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
    const MailServerIds ids(Account);
    QCOMPARE(ids.kept(Inbox, QStringLiteral("1")), QStringLiteral("1"));
    QCOMPARE(ids.kept(Archive, QStringLiteral("2")), QStringLiteral("2"));
    QVERIFY(ids.contains(QStringLiteral("1")));
    QVERIFY(!ids.contains(QStringLiteral("2")));
}

void MailServerIdsTest::aTakenIdentifierIsQualifiedWithItsFolder()
{
    addRow(QStringLiteral("1"), Inbox);
    const MailServerIds ids(Account);
    const QString kept = ids.kept(Archive, QStringLiteral("1"));
    QVERIFY(kept != QStringLiteral("1"));
    QVERIFY(!ids.contains(kept));
    QCOMPARE(EmailServerId::onWire(kept), QStringLiteral("1"));
}

void MailServerIdsTest::aMessageKeepsItsIdentifierWhenTheOtherOneGoes()
{
    const QString qualified = EmailServerId::qualified(Archive, QStringLiteral("1"));
    addRow(qualified, Archive);
    const MailServerIds ids(Account);
    QCOMPARE(ids.kept(Archive, QStringLiteral("1")), qualified);
    QCOMPARE(ids.kept(Inbox, QStringLiteral("1")), QStringLiteral("1"));
}

void MailServerIdsTest::twoNewMessagesOfOneReplyStayApart()
{
    MailServerIds ids(Account);
    const QString first = ids.kept(Inbox, QStringLiteral("1"));
    ids.add(first, Inbox);
    const QString second = ids.kept(Archive, QStringLiteral("1"));
    QVERIFY(first != second);
    ids.add(second, Archive);
    QCOMPARE(ids.kept(Inbox, QStringLiteral("1")), first);
    QCOMPARE(ids.kept(Archive, QStringLiteral("1")), second);
}

void MailServerIdsTest::whatWasLookedUpTogetherIsNotAskedForAgain()
{
    addRow(QStringLiteral("1"), Inbox);
    MailServerIds ids(Account);
    ids.lookUp({ { Inbox, QStringLiteral("1") }, { Archive, QStringLiteral("2") } });
    // As a reply's own deletes do before its adds are named.
    EasDatabase::instance()->removeAccount(Account);
    addRow(QStringLiteral("2"), Inbox);
    QVERIFY(ids.contains(QStringLiteral("1")));
    QCOMPARE(ids.kept(Archive, QStringLiteral("2")), QStringLiteral("2"));
    QVERIFY(!ids.contains(QStringLiteral("2")));
}

void MailServerIdsTest::aReplyMayHoldMoreThanOneStatementTakes()
{
    addRow(QStringLiteral("1"), Inbox);
    addRow(QStringLiteral("5000"), Inbox);
    QList<MailServerIds::Item> items;
    for (int number = 1; number <= 5000; ++number)
        items.append({ Archive, QString::number(number) });
    MailServerIds ids(Account);
    ids.lookUp(items);
    QVERIFY(!ids.lookupFailed());
    QVERIFY(ids.contains(QStringLiteral("1")));
    QVERIFY(ids.contains(QStringLiteral("5000")));
    QVERIFY(!ids.contains(QStringLiteral("2500")));
}

FENNEL_REGISTER_TEST(MailServerIdsTest)
#include "mailserveridstest.moc"
