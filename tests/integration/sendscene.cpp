// SPDX-License-Identifier: LGPL-2.1-or-later
#include "integration/sendscene.h"

#include "application/account/easaccount.h"
#include "application/requestmanager.h"
#include "configurations/emailaccountconfiguration.h"
#include "easitems/easemailitem.h"
#include "storages/mailstorage.h"
#include "support/waiting.h"

#include <qmailaccount.h>
#include <qmailmessagekey.h>
#include <qmailstore.h>

using Simulator::Email;
using Simulator::ItemEntry;

namespace SendScene {
namespace {

QMailAccountId mailAccount(const EngineTestBed &bed)
{
    return QMailAccountId(bed.accountId());
}

QByteArray filePart(const QByteArray &bytes)
{
    return "--border\r\nContent-Type: application/octet-stream; name=file.bin\r\n"
           "Content-Disposition: attachment; filename=file.bin\r\nContent-Transfer-Encoding: base64\r\n\r\n"
        + bytes.toBase64() + "\r\n";
}

} // namespace

SendBed::SendBed(const QString &version, const QStringList &commands)
    : SyncTestBed({ version })
{
    if (!SyncTestBed::isReady())
        return;
    for (const char *name : { "bob", "carol" })
        server().addUser(QString::fromLatin1(name), QStringLiteral("secret"));
    if (!commands.isEmpty())
        server().setCommands(commands);
    mIsReady = setSavesSent(true) && sync() == 0;
    server().clearRequests();
}

bool SendBed::setSavesSent(bool saves)
{
    const QString key = QStringLiteral("save_in_sent_items");
    if (!accounts().setValue(accountId(), AccountFactory::mailService(), key, saves))
        return false;
    const EasAccount *const account = RequestManager::instance()->account(accountId());
    return Waiting::until([=] { return account->emailConfiguration()->saveInSentItems() == saves; }, 60000);
}

quint64 SendBed::write(const QMailMessage &message)
{
    return OutgoingMail::putIntoOutbox(message, mailAccount(*this)).toULongLong();
}

bool SendBed::discard(quint64 messageId)
{
    return QMailStore::instance()->removeMessage(QMailMessageId(messageId), QMailStore::NoRemovalRecord);
}

QByteArray SendBed::mimeOf(quint64 messageId)
{
    return RequestManager::instance()
        ->account(accountId())
        ->mailStorage()
        ->queryMessage(QString::number(messageId))
        .body()
        .mime();
}

QMailMessageId SendBed::receive(const QString &subject, const QByteArrayList &files)
{
    QByteArray message =
        "From: Dave <dave@example.com>\r\nTo: alice@example.com\r\nSubject: " + subject.toUtf8()
        + "\r\nDate: Wed, 04 Mar 2026 05:06:07 +0000\r\nMIME-Version: 1.0\r\n"
          "Content-Type: multipart/mixed; boundary=border\r\n\r\n"
          "--border\r\nContent-Type: text/plain; charset=utf-8\r\n\r\nText of the "
        + subject.toUtf8() + "\r\n";
    for (const QByteArray &file : files)
        message += filePart(file);
    mailbox().deliver(mailbox().inboxId(), message + "--border--\r\n");
    if (sync() != 0)
        return QMailMessageId();
    server().clearRequests();
    return deviceMessage(subject);
}

QStringList SendBed::inFolder(QMailFolder::StandardFolder folder) const
{
    const QMailFolderId id = QMailAccount(mailAccount(*this)).standardFolder(folder);
    QStringList subjects;
    const QMailMessageIdList ids = QMailStore::instance()->queryMessages(QMailMessageKey::parentFolderId(id));
    for (const QMailMessageId &message : ids)
        subjects.append(QMailMessageMetaData(message).subject());
    return subjects;
}

QByteArrayList SendBed::received(const QString &user)
{
    Simulator::Mailbox &inbox = server().mailbox(user);
    QByteArrayList messages;
    const QVector<ItemEntry> entries = inbox.items(inbox.inboxId());
    for (const ItemEntry &entry : entries)
        messages.append(std::static_pointer_cast<const Email>(entry.item)->content().message());
    return messages;
}

} // namespace SendScene
