// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailuserchanges.h"

#include "support/mailfixture.h"
#include "support/testmain.h"

#include <QtTest>

#include <qmaildisconnected.h>
#include <qmailmessagekey.h>

namespace {

QString text(const QMailFolderId &id)
{
    return QString::number(id.toULongLong());
}

/** The folders that were told of, once everything that is under way has been looked at. */
QStringList foldersOf(const QSignalSpy &found)
{
    QCoreApplication::processEvents();
    QStringList folders;
    for (const QList<QVariant> &signal : found)
        folders += signal.first().toStringList();
    return folders;
}

} // namespace

/** Which changes in the mail store are the user's. */
class MailUserChangesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void marksMovesAndDeletionsAreTold()
    {
        MailFixture mail;
        const QMailFolderId inbox = mail.addFolder(QStringLiteral("1"));
        const QMailFolderId other = mail.addFolder(QStringLiteral("2"));
        const auto add = [&](const char *serverId) {
            return mail.addMessage(mail.item(QString::fromLatin1(serverId), QStringLiteral("1")));
        };
        const QMailMessageId read = add("1:1");
        const QMailMessageId moved = add("1:2");
        const QMailMessageId deleted = add("1:3");
        QCoreApplication::processEvents();
        MailUserChanges changes(mail.context);
        changes.listen();

        QSignalSpy found(&changes, &MailUserChanges::found);
        mail.setStatus(read, QMailMessage::Read, false);
        QCOMPARE(foldersOf(found), QStringList { text(inbox) });
        found.clear();
        QMailDisconnected::moveToFolder(QMailMessageIdList { moved }, other);
        QCOMPARE(foldersOf(found), QStringList { text(other) });
        found.clear();
        QVERIFY(mail.context.store->removeMessage(deleted, QMailStore::CreateRemovalRecord));
        QCOMPARE(foldersOf(found), QStringList { text(inbox) });
    }

    void whatTheServerBringsIsNot()
    {
        MailFixture mail;
        mail.addFolder(QStringLiteral("1"));
        const QMailMessageId first = mail.addMessage(mail.item(QStringLiteral("1:1"), QStringLiteral("1")));
        MailUserChanges changes(mail.context);
        changes.listen();
        QSignalSpy found(&changes, &MailUserChanges::found);
        const QMailMessageId second = mail.addMessage(mail.item(QStringLiteral("1:2"), QStringLiteral("1")));
        // Both marks at once, as a reply sets them.
        mail.setStatus(first, QMailMessage::Read | QMailMessage::ReadElsewhere, false);
        QVERIFY(mail.context.store->removeMessage(second, QMailStore::NoRemovalRecord));
        QCOMPARE(foldersOf(found), QStringList());
    }

    void aMarkThatIsTakenBackAtOnceIsNot()
    {
        MailFixture mail;
        mail.addFolder(QStringLiteral("1"));
        const QMailMessageId id = mail.addMessage(mail.item(QStringLiteral("1:1"), QStringLiteral("1")));
        MailUserChanges changes(mail.context);
        changes.listen();
        QSignalSpy found(&changes, &MailUserChanges::found);
        mail.setStatus(id, QMailMessage::Read, false);
        mail.setStatus(id, QMailMessage::Read, true);
        QCOMPARE(foldersOf(found), QStringList());
    }

    void messagesOfOtherAccountsAreNot()
    {
        MailFixture mail;
        MailFixture other;
        other.addFolder(QStringLiteral("1"));
        const QMailMessageId id = other.addMessage(other.item(QStringLiteral("1:1"), QStringLiteral("1")));
        MailUserChanges changes(mail.context);
        changes.listen();
        QSignalSpy found(&changes, &MailUserChanges::found);
        other.setStatus(id, QMailMessage::Read, false);
        QVERIFY(other.context.store->removeMessage(id, QMailStore::CreateRemovalRecord));
        QCOMPARE(foldersOf(found), QStringList());
    }
};

FENNEL_REGISTER_TEST(MailUserChangesTest)
#include "mailuserchangestest.moc"
