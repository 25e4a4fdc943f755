// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailsearchresults.h"
#include "storages/mail/maillocalchanges.h"
#include "storages/mail/mailpendingmarks.h"
#include "storages/mail/mailrecognition.h"
#include "storages/mail/mailstorageimpl.h"
#include "storages/mail/mailuserchanges.h"
#include "support/mailfixture.h"
#include "support/testmain.h"

#include <qmaildisconnected.h>
#include <qmailmessagekey.h>

#include <QSignalSpy>
#include <QtTest>

namespace {

const QMailFolderId localStorage = MailStoreContext::localStorage();

bool has(const QMailMessage &message, quint64 mask)
{
    return (message.status() & mask) != 0;
}

EasEmailItem hit(const MailFixture &mail, const QString &longId, const QString &collectionId)
{
    EasEmailItem item = mail.item(QString(), collectionId);
    item.setLongId(longId);
    return item;
}

QMailMessageId found(MailFixture &mail, const QString &longId = QStringLiteral("long"))
{
    QList<EasEmailItem> items { hit(mail, longId, QStringLiteral("5")) };
    QList<quint64> ids;
    return MailSearchResults(mail.context).add(items, ids) ? QMailMessageId(ids.value(0)) : QMailMessageId();
}

} // namespace

/** What a search has found is in the store, and no part of what is synchronised. */
class MailSearchResultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void searchResultsReplaceEarlierOnes()
    {
        MailFixture mail;
        mail.addFolder("5");
        const QMailMessageId synchronised = mail.addMessage(mail.item("5:1", "5"));
        const EasEmailItem found = hit(mail, QStringLiteral("long"), QStringLiteral("5"));
        MailSearchResults results(mail.context);
        QList<quint64> ids;
        for (int round = 0; round < 2; ++round) {
            QList<EasEmailItem> items { found, mail.item("5:1", "5"), found };
            QVERIFY(results.add(items, ids));
            QCOMPARE(ids.size(), 3);
            QCOMPARE(ids.at(0), mail.message("long").id().toULongLong());
            QCOMPARE(ids.at(1), synchronised.toULongLong());
            QCOMPARE(ids.at(2), ids.at(0));
            QCOMPARE(items.at(0).localId(), QString::number(ids.at(0)));
            QCOMPARE(mail.messageCount(), 2);
        }
        QVERIFY(has(mail.message("long"), QMailMessage::Temporary));
        QVERIFY(!has(mail.message("5:1"), QMailMessage::Temporary));
    }

    void aResultLiesInNoFolderOfTheAccount()
    {
        MailFixture mail;
        const QMailFolderId inbox = mail.addFolder("5", EasFolderItem::DefaultInboxFolder);
        const QMailMessage message = mail.message(found(mail));
        QCOMPARE(message.parentFolderId(), localStorage);
        QCOMPARE(message.restoreFolderId(), inbox);
        QCOMPARE(message.parentAccountId(), mail.mailAccountId());
        QCOMPARE(mail.context.store->countMessages(QMailMessageKey::parentFolderId(inbox)), 0);
    }

    void aResultOfAFolderThatTheDeviceDoesNotHaveIsKept()
    {
        MailFixture mail;
        QList<EasEmailItem> items { hit(mail, QStringLiteral("long"), QStringLiteral("elsewhere")) };
        QList<quint64> ids;
        QVERIFY(MailSearchResults(mail.context).add(items, ids));
        const QMailMessage message = mail.message("long");
        QCOMPARE(message.parentFolderId(), localStorage);
        QVERIFY(!message.restoreFolderId().isValid());
    }

    void aResultWithoutALongIdentifierIsKnownByItsFolder()
    {
        MailFixture mail;
        const QMailFolderId inbox = mail.addFolder("5", EasFolderItem::DefaultInboxFolder);
        const QMailMessageId synchronised = mail.addMessage(mail.item("5:1", "5"));
        QList<EasEmailItem> items { mail.item("5:2", "5"), hit(mail, QStringLiteral("long"), "5"),
            mail.item("5:1", "5") };
        QList<quint64> ids;
        QVERIFY(MailSearchResults(mail.context).add(items, ids));
        QCOMPARE(MailSearchResults::folderOf(mail.context, ids.at(0)), inbox);
        QVERIFY(!MailSearchResults::folderOf(mail.context, ids.at(1)).isValid());
        QCOMPARE(ids.at(2), synchronised.toULongLong());
        QVERIFY(!MailSearchResults::folderOf(mail.context, ids.at(2)).isValid());
    }

    void whatTheUserDoesToAResultStaysOnTheDevice()
    {
        MailFixture mail;
        const QMailFolderId inbox = mail.addFolder("5", EasFolderItem::DefaultInboxFolder);
        MailUserChanges changes(mail.context, nullptr);
        changes.listen();
        QSignalSpy told(&changes, &MailUserChanges::found);
        MailPendingMarks marks(mail.context);
        const MailLocalChanges local(mail.context, marks);
        const QMailMessageId read = found(mail, QStringLiteral("read"));
        mail.setStatus(read, QMailMessage::Read, !has(mail.message(read), QMailMessage::ReadElsewhere));
        const QMailMessageId removed = found(mail, QStringLiteral("removed"));
        QVERIFY(mail.context.store->removeMessages(
            QMailMessageKey::id(removed), QMailStore::CreateRemovalRecord));
        for (const QMailFolderId &folder : { inbox, localStorage }) {
            const QString folderId = QString::number(folder.toULongLong());
            QVERIFY(local.updatedEmails(folderId)->isEmpty());
            QVERIFY(local.deletedEmails(folderId)->isEmpty());
        }
        QCOMPARE(*MailRecognition::staleRemovals(mail.context), QStringList { QStringLiteral("removed") });
        const QMailMessageId moved = found(mail, QStringLiteral("moved"));
        QMailDisconnected::moveToFolder({ moved }, inbox);
        QVERIFY(local.movedEmails()->isEmpty());
        // The removal of a message of the account is told, and nothing before it.
        const QMailMessageId mine = mail.addMessage(mail.item("5:1", "5"));
        QVERIFY(
            mail.context.store->removeMessages(QMailMessageKey::id(mine), QMailStore::CreateRemovalRecord));
        QTRY_VERIFY(!told.isEmpty());
        for (const QList<QVariant> &signal : qAsConst(told))
            QCOMPARE(signal.at(0).toStringList(), QStringList { QString::number(inbox.toULongLong()) });
    }

    void resultsGoWithTheMailOfTheirAccount()
    {
        MailFixture mail;
        mail.addFolder("5");
        QVERIFY(found(mail).isValid());
        QVERIFY(MailStorageImpl::cleanUpAccounts({ mail.accountId() }));
        QCOMPARE(mail.messageCount(), 0);
    }
};

FENNEL_REGISTER_TEST(MailSearchResultsTest)
#include "mailsearchresultstest.moc"
