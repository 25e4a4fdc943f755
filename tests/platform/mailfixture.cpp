// SPDX-License-Identifier: LGPL-2.1-or-later
#include "platform/mailfixture.h"

namespace MailFixture {

QMailAccountId addAccount()
{
    QMailAccount account;
    account.setName(QStringLiteral("test"));
    QMailAccountConfiguration configuration;
    QMailStore::instance()->addAccount(&account, &configuration);
    return account.id();
}

QMailFolderId addFolder(const QMailAccountId &account, const QString &name, const QMailFolderId &parent)
{
    QMailFolder folder(name, parent, account);
    QMailStore::instance()->addFolder(&folder);
    return folder.id();
}

QMailMessage newMessage(const QMailAccountId &account, const QMailFolderId &folder, const QString &uid)
{
    QMailMessage message;
    message.setParentAccountId(account);
    message.setParentFolderId(folder);
    message.setServerUid(uid);
    message.setMessageType(QMailMessage::Email);
    message.setSubject(QStringLiteral("subject"));
    return message;
}

QMailMessageId addMessage(const QMailAccountId &account, const QMailFolderId &folder, const QString &uid)
{
    QMailMessage message = newMessage(account, folder, uid);
    QMailStore::instance()->addMessage(&message);
    return message.id();
}

QMailMessageBody textBody(const QString &text, const QByteArray &type)
{
    return QMailMessageBody::fromData(text, QMailMessageContentType(type), QMailMessageBody::EightBit);
}

} // namespace MailFixture
