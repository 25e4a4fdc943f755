// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/mailscene.h"

#include <qmailmessageremovalrecord.h>
#include <qmailstore.h>

namespace {

QMailMessagePart attachment(const QByteArray &name, const QByteArray &data)
{
    QMailMessageContentDisposition disposition(QMailMessageContentDisposition::Attachment);
    disposition.setFilename(name);
    disposition.setSize(data.isEmpty() ? 9 : data.size());
    QMailMessageContentType type("application/octet-stream");
    type.setName(name);
    return QMailMessagePart::fromData(data, disposition, type, QMailMessageBody::Base64);
}

} // namespace

QMailFolderId MailScene::addFolder(const QString &name, const QMailFolderId &parent) const
{
    QMailFolder folder(name, parent, QMailAccountId(mAccountId));
    folder.setDisplayName(name);
    if (!QMailStore::instance()->addFolder(&folder))
        qFatal("no folder %s", qPrintable(name));
    return folder.id();
}

bool MailScene::setStandardFolder(QMailFolder::StandardFolder kind, const QMailFolderId &folder) const
{
    QMailAccount account { QMailAccountId(mAccountId) };
    account.setStandardFolder(kind, folder);
    return QMailStore::instance()->updateAccount(&account);
}

QMailMessageId MailScene::addMessage(
    const QMailFolderId &folder, const QString &subject, const QString &from, const QDateTime &date) const
{
    QMailMessage message;
    message.setMessageType(QMailMessage::Email);
    message.setParentAccountId(QMailAccountId(mAccountId));
    message.setParentFolderId(folder);
    message.setFrom(QMailAddress(from));
    message.setTo(QMailAddress(QStringLiteral("alice@example.com")));
    message.setSubject(subject);
    message.setDate(QMailTimeStamp(date));
    message.setServerUid(QStringLiteral("uid-") + subject);
    message.setMultipartType(QMailMessage::MultipartMixed);
    message.appendPart(QMailMessagePart::fromData(QByteArray("Hello there"),
        QMailMessageContentDisposition(QMailMessageContentDisposition::Inline),
        QMailMessageContentType("text/plain; charset=UTF-8"), QMailMessageBody::EightBit));
    message.appendPart(attachment("here.txt", "on the device"));
    message.appendPart(attachment("there.txt", QByteArray()));
    message.setStatus(QMailMessage::HasAttachments, true);
    if (!QMailStore::instance()->addMessage(&message))
        qFatal("no message %s", qPrintable(subject));
    return message.id();
}

bool MailScene::fillSecondPart(const QMailMessageId &id, const QByteArray &data)
{
    QMailMessage message(id);
    QMailMessagePart &part = message.partAt(2);
    part.setBody(QMailMessageBody::fromData(data, part.contentType(), QMailMessageBody::Base64));
    return QMailStore::instance()->updateMessage(&message);
}

QStringList MailScene::removalRecords() const
{
    QStringList uids;
    const QMailMessageRemovalRecordList records =
        QMailStore::instance()->messageRemovalRecords(QMailAccountId(mAccountId));
    for (const QMailMessageRemovalRecord &record : records)
        uids.append(record.serverUid());
    return uids;
}
