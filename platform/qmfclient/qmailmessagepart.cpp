// SPDX-License-Identifier: LGPL-2.1-or-later
#include <qmailmessagepart.h>

#include "internal/mailvaluedata.h"
#include "internal/transferencoding.h"

namespace {

QMailMessagePart partOf(const QMailMessageBody &body, const QMailMessageContentDisposition &disposition)
{
    QMailMessagePart part;
    part.setBody(body);
    part.setContentDisposition(disposition);
    MailValueAccess::own(part).previewStale = false;
    return part;
}

QString ownIndex(const MimeNode &node)
{
    return QString::number(node.indices.isEmpty() ? 0 : node.indices.last() - 1);
}

} // namespace

QMailMessagePart::QMailMessagePart() = default;
QMailMessagePart::QMailMessagePart(const QMailMessagePart &other) = default;
QMailMessagePart &QMailMessagePart::operator=(const QMailMessagePart &other) = default;
QMailMessagePart::~QMailMessagePart() = default;

QMailMessagePart QMailMessagePart::fromData(const QByteArray &data,
    const QMailMessageContentDisposition &disposition, const QMailMessageContentType &type,
    QMailMessageBody::TransferEncoding encoding, QMailMessageBody::EncodingStatus status)
{
    return partOf(QMailMessageBody::fromData(data, type, encoding, status), disposition);
}

QMailMessagePart QMailMessagePart::fromData(const QString &text,
    const QMailMessageContentDisposition &disposition, const QMailMessageContentType &type,
    QMailMessageBody::TransferEncoding encoding)
{
    return partOf(QMailMessageBody::fromData(text, type, encoding), disposition);
}

QMailMessagePart QMailMessagePart::fromFile(const QString &filename,
    const QMailMessageContentDisposition &disposition, const QMailMessageContentType &type,
    QMailMessageBody::TransferEncoding encoding, QMailMessageBody::EncodingStatus status)
{
    return partOf(QMailMessageBody::fromFile(filename, type, encoding, status), disposition);
}

QMailMessagePart QMailMessagePart::fromMessageReference(const QMailMessageId &id,
    const QMailMessageContentDisposition &disposition, const QMailMessageContentType &type,
    QMailMessageBody::TransferEncoding encoding)
{
    QMailMessagePart part = fromData(QByteArray(), disposition, type, encoding);
    MimeNode &node = MailValueAccess::edit(part);
    node.reference = MessageReference;
    node.referencedMessage = id;
    return part;
}

QString QMailMessagePart::contentID() const
{
    QString id = headerFieldText(QStringLiteral("Content-ID")).trimmed();
    if (id.startsWith(QLatin1Char('<')) && id.endsWith(QLatin1Char('>')))
        id = id.mid(1, id.size() - 2);
    return id;
}

void QMailMessagePart::setContentID(const QString &id)
{
    const bool delimited = id.startsWith(QLatin1Char('<')) && id.endsWith(QLatin1Char('>'));
    setHeaderField(QStringLiteral("Content-ID"), delimited ? id : QLatin1Char('<') + id + QLatin1Char('>'));
}

QString QMailMessagePart::contentLocation() const
{
    return headerFieldText(QStringLiteral("Content-Location"));
}

void QMailMessagePart::setContentLocation(const QString &location)
{
    setHeaderField(QStringLiteral("Content-Location"), location);
}

QMailMessagePart::Location QMailMessagePart::location() const
{
    const MimeNode &node = MailValueAccess::node(*this);
    return MailValueAccess::location(node.message, node.indices);
}

QString QMailMessagePart::displayName() const
{
    const QMailMessageContentType type = contentType();
    QString name = QMailMessageHeaderField::decodeWord(type.name());
    if (name.isEmpty())
        name = QMailMessageHeaderField::decodeWord(contentDisposition().filename());
    if (name.isEmpty())
        name = contentID();
    if (name.isEmpty() && type.matches("message", "rfc822")) {
        name = referenceType() == MessageReference
            ? QMailMessageMetaData(messageReference()).subject()
            : QMailMessage::fromRfc2822(body().data(QMailMessageBody::Decoded)).subject();
    }
    if (name.isEmpty())
        name = ownIndex(MailValueAccess::node(*this)) + QLatin1Char(' ') + QString::fromUtf8(type.content());
    return name;
}

QString QMailMessagePart::identifier() const
{
    QString text = contentID();
    if (text.isEmpty())
        text = QMailMessageHeaderField::decodeWord(contentDisposition().filename());
    return text.isEmpty() ? ownIndex(MailValueAccess::node(*this)) : text;
}

QMailMessagePart::ReferenceType QMailMessagePart::referenceType() const
{
    return MailValueAccess::node(*this).reference;
}

QMailMessageId QMailMessagePart::messageReference() const
{
    return MailValueAccess::node(*this).referencedMessage;
}

bool QMailMessagePart::contentAvailable() const
{
    return multipartType() != MultipartNone || hasBody();
}

bool QMailMessagePart::partialContentAvailable() const
{
    return contentAvailable();
}
