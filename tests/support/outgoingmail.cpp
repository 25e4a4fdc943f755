// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/outgoingmail.h"

#include <qmailaccount.h>
#include <qmailmessagebody.h>
#include <qmailmessageheaderfield.h>
#include <qmailmessagepart.h>
#include <qmailstore.h>

QMailMessage OutgoingMail::plain(const QString &subject, const QString &to, const QString &text)
{
    QMailMessage message;
    message.setMessageType(QMailMessage::Email);
    message.setFrom(QMailAddress(QStringLiteral("Alice <alice@example.com>")));
    message.setTo(QMailAddress::fromStringList(to));
    message.setSubject(subject);
    message.setDate(QMailTimeStamp(QDateTime(QDate(2026, 3, 4), QTime(5, 6, 7), Qt::UTC)));
    const QMailMessageContentType type("text/plain; charset=UTF-8");
    message.setBody(QMailMessageBody::fromData(text, type, QMailMessageBody::QuotedPrintable));
    return message;
}

void OutgoingMail::attach(
    QMailMessage *message, const QString &fileName, const QByteArray &bytes, const QByteArray &type)
{
    const QByteArray name = QMailMessageHeaderField::encodeWord(fileName, "UTF-8");
    QMailMessageContentType contentType(type);
    contentType.setName(name);
    QMailMessageContentDisposition disposition(QMailMessageContentDisposition::Attachment);
    disposition.setFilename(name);
    disposition.setSize(bytes.size());
    QList<QMailMessagePart> parts;
    if (message->multipartType() != QMailMessage::MultipartNone) {
        for (uint i = 1; i < message->partCount(); ++i)
            parts.append(message->partAt(i));
    }
    parts.append(QMailMessagePart::fromData(bytes, disposition, contentType, QMailMessageBody::Base64));
    QList<const QMailMessagePart *> attachments;
    for (const QMailMessagePart &part : qAsConst(parts))
        attachments.append(&part);
    message->setAttachments(attachments);
}

void OutgoingMail::answer(
    QMailMessage *message, const QMailMessageId &source, QMailMessage::ResponseType type, bool withSource)
{
    message->setInResponseTo(source);
    message->setResponseType(type);
    if (!withSource)
        return;
    const QMailMessagePart part = QMailMessagePart::fromMessageReference(source,
        QMailMessageContentDisposition(QMailMessageContentDisposition::Inline),
        QMailMessageContentType("message/rfc822"), QMailMessageBody::EightBit);
    if (message->multipartType() != QMailMessage::MultipartNone)
        return message->appendPart(part);
    QMailMessagePart text;
    text.setBody(message->body());
    message->setMultipartType(QMailMessage::MultipartMixed);
    message->appendPart(text);
    message->appendPart(part);
}

QMailMessageId OutgoingMail::store(
    QMailMessage message, const QMailAccountId &account, const QMailFolderId &folder)
{
    message.setParentAccountId(account);
    message.setParentFolderId(folder);
    message.setStatus(
        QMailMessage::Outgoing | QMailMessage::Outbox | QMailMessage::Read | QMailMessage::ContentAvailable,
        true);
    return QMailStore::instance()->addMessage(&message) ? message.id() : QMailMessageId();
}

QMailMessageId OutgoingMail::putIntoOutbox(const QMailMessage &message, const QMailAccountId &account)
{
    return store(message, account, QMailAccount(account).standardFolder(QMailFolder::OutboxFolder));
}
