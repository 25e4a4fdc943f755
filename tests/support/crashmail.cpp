// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/crashmail.h"

#include "simulator/email.h"
#include "simulator/mailbox.h"
#include "support/maillisting.h"
#include "support/storecheck.h"
#include "support/synctestbed.h"

#include <qmaildisconnected.h>
#include <qmailfolderkey.h>
#include <qmailmessagekey.h>
#include <qmailstore.h>

namespace {

QString textOf(const QString &subject)
{
    return QStringLiteral("The text of ") + subject;
}

} // namespace

QStringList CrashMail::durableFiles()
{
    return { QStringLiteral("fennel_eas.db*"), QStringLiteral("mailstore.db*") };
}

void CrashMail::clearDevice() const
{
    const QMailAccountId account(accountId());
    if (!account.isValid())
        return;
    QMailStore *store = QMailStore::instance();
    store->removeMessages(QMailMessageKey::parentAccountId(account));
    store->removeFolders(QMailFolderKey::parentAccountId(account));
    store->purgeMessageRemovalRecords(account);
}

void CrashMail::begin(EasAccountId accountId, Simulator::Mailbox &mailbox, const QString &version)
{
    CrashScene::begin(accountId, mailbox, version);
    mWanted.clear();
}

void CrashMail::fillMailbox()
{
    const QString inbox = mailbox().inboxId();
    const QString projects = mailbox().addFolder(QStringLiteral("Projects"), 12, inbox);
    const QString archive = mailbox().addFolder(QStringLiteral("Archive"));
    deliver(mailbox().addFolder(QStringLiteral("Old")), QStringLiteral("zero"));
    for (const char *subject : { "one", "two", "three", "four" })
        deliver(inbox, QLatin1String(subject));
    deliver(projects, QStringLiteral("five"));
    deliver(archive, QStringLiteral("six"));
    mailbox().setRead(deliver(archive, QStringLiteral("seven")), true);
    want({ "Inbox|one|unread", "Inbox|two|unread", "Inbox|three|unread", "Inbox|four|unread",
        "Inbox/Projects|five|unread", "Archive|six|unread", "Archive|seven|read", "Old|zero|unread" });
}

void CrashMail::changeServer()
{
    Simulator::Mailbox &server = mailbox();
    deliver(server.inboxId(), QStringLiteral("eight"));
    server.setRead(serverItem(QStringLiteral("one")), true);
    server.remove(serverItem(QStringLiteral("two")));
    server.remove(serverItem(QStringLiteral("six")));
    server.renameFolder(server.folderByPath(QStringLiteral("Archive")).id, QStringLiteral("Kept"));
    server.removeFolder(server.folderByPath(QStringLiteral("Old")).id);
    want({ "Inbox|one|read", "Inbox|three|unread", "Inbox|four|unread", "Inbox|eight|unread",
        "Inbox/Projects|five|unread", "Kept|seven|read" });
}

void CrashMail::changeForLaterSync()
{
    changeServer();
    deliver(mailbox().addFolder(QStringLiteral("New")), QStringLiteral("nine"));
    QMailStore *store = QMailStore::instance();
    const auto here = [this](const char *subject) {
        return MailListing::deviceMessage(accountId(), QLatin1String(subject));
    };
    store->updateMessagesMetaData(QMailMessageKey::id(here("three")), QMailMessage::Read, true);
    store->updateMessagesMetaData(QMailMessageKey::id(here("seven")), QMailMessage::Read, false);
    store->removeMessage(here("four"), QMailStore::CreateRemovalRecord);

    want({ "Inbox|one|read", "Inbox|three|read", "Inbox|eight|unread", "Inbox/Projects|five|unread",
        "Kept|seven|unread", "New|nine|unread" });
}

void CrashMail::changeForMove()
{
    QMailStore *store = QMailStore::instance();
    const auto here = [this](const char *subject) {
        return MailListing::deviceMessage(accountId(), QLatin1String(subject));
    };
    const auto move = [&](const char *subject, const char *path) {
        QMailDisconnected::moveToFolder(QMailMessageIdList { here(subject) },
            MailListing::deviceFolder(accountId(), QLatin1String(path)));
    };
    move("one", "Archive");
    move("two", "Inbox/Projects");
    // Not on a moved message: when the answer to the move is lost, the server reports it as a new one.
    store->updateMessagesMetaData(QMailMessageKey::id(here("five")), QMailMessage::Read, true);
    move("six", "Inbox");
    mailbox().setRead(serverItem(QStringLiteral("three")), true);
    mailbox().move(serverItem(QStringLiteral("four")), mailbox().folderByPath(QStringLiteral("Old")).id);

    want({ "Archive|one|unread", "Inbox/Projects|two|unread", "Inbox|six|unread", "Inbox|three|read",
        "Old|four|unread", "Inbox/Projects|five|read", "Archive|seven|read", "Old|zero|unread" });
}

void CrashMail::want(const QStringList &messages)
{
    mWanted = messages;
    mWanted.sort();
}

QString CrashMail::deliver(const QString &folderId, const QString &subject) const
{
    return mailbox().deliver(folderId, SyncTestBed::message(subject, textOf(subject)));
}

QString CrashMail::serverItem(const QString &subject) const
{
    const auto folders = mailbox().folders();
    for (const Simulator::MailFolder &folder : folders) {
        const auto items = mailbox().items(folder.id);
        for (const Simulator::ItemEntry &entry : items) {
            const auto email = std::dynamic_pointer_cast<const Simulator::Email>(entry.item);
            if (email && email->content().headers().subject == subject)
                return entry.serverId;
        }
    }
    return QString();
}

QString CrashMail::wrongState() const
{
    return StoreCheck::difference("messages of the device", MailListing::deviceMessages(accountId()), mWanted)
        + StoreCheck::difference("messages of the server", MailListing::serverMessages(mailbox()), mWanted)
        + StoreCheck::difference("folders of the device", MailListing::deviceFolders(accountId()),
            MailListing::serverFolders(mailbox()))
        + wrongContent();
}

QString CrashMail::wrongStores() const
{
    return wrongMapping()
        + StoreCheck::damage(qEnvironmentVariable("QMF_DATA") + QStringLiteral("/mailstore.db"));
}

QString CrashMail::wrongContent() const
{
    QString wrong;
    QMailStore *store = QMailStore::instance();
    const QMailAccountId account(accountId());
    const QMailMessageIdList ids = store->queryMessages(QMailMessageKey::parentAccountId(account));
    for (const QMailMessageId &id : ids) {
        const QMailMessage message(id);
        if (message.body().data().trimmed() != textOf(message.subject()))
            wrong +=
                QStringLiteral("the text of %1 is \"%2\"\n").arg(message.subject(), message.body().data());
        if (message.previousParentFolderId().isValid())
            wrong += QStringLiteral("%1 still waits to be moved\n").arg(message.subject());
    }
    if (!store->messageRemovalRecords(account).isEmpty())
        wrong += QStringLiteral("a deletion still waits to be told\n");
    return wrong;
}

QString CrashMail::wrongMapping() const
{
    const auto numbers = [](const auto &ids) {
        QStringList list;
        for (const auto &id : ids)
            list.append(QString::number(id.toULongLong()));
        list.sort();
        return list;
    };
    const auto rows = [](const char *sql) {
        return StoreCheck::ask(StoreCheck::mappingFile(), QLatin1String(sql));
    };
    const QMailAccountId account(accountId());
    return StoreCheck::difference("rows of messages", rows("SELECT local_id FROM emails"),
               numbers(QMailStore::instance()->queryMessages(QMailMessageKey::parentAccountId(account))))
        + StoreCheck::difference("rows of folders",
            rows("SELECT local_id FROM collections WHERE type IN (1, 2, 3, 4, 5, 6, 12)"),
            numbers(QMailStore::instance()->queryFolders(QMailFolderKey::parentAccountId(account))));
}
