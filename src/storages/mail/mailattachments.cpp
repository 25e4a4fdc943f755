// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailattachments.h"

#include "application/base/fetchedoctets.h"
#include "application/base/logging.h"
#include "easitems/easemailitem.h"
#include "storages/mail/mailbodywriter.h"
#include "storages/mail/mailheadertext.h"

#include <qmailmessage.h>

#include <QRegularExpression>

#include <algorithm>
#include <limits>

namespace {

constexpr char proxySubType[] = "x-as-proxy-attachment";
constexpr char encodedPrefix[] = "=?UTF-8?B?";
constexpr char encodedSuffix[] = "?=";

QByteArray encodedName(const QString &name)
{
    return encodedPrefix + name.toUtf8().toBase64() + encodedSuffix;
}

QString decodedName(const QByteArray &name)
{
    const int prefix = int(sizeof(encodedPrefix)) - 1;
    const int suffix = int(sizeof(encodedSuffix)) - 1;
    if (!name.startsWith(encodedPrefix) || !name.endsWith(encodedSuffix) || name.size() < prefix + suffix)
        return QString::fromUtf8(name);
    const QByteArray text = QByteArray::fromBase64(name.mid(prefix, name.size() - prefix - suffix));
    return QString::fromUtf8(text.constData(), text.size());
}

/**
 * The text as a file name that a part gives back as it was set. The store escapes neither double quotes nor
 * bytes above ASCII there, so a text with either goes in as an encoded word.
 */
QByteArray storableFileName(const QString &text)
{
    const auto isPlain = [](QChar c) {
        return c >= QLatin1Char(' ') && c <= QLatin1Char('~') && c != QLatin1Char('"');
    };
    const bool survives =
        std::all_of(text.cbegin(), text.cend(), isPlain) && !text.startsWith(QLatin1String("=?"));
    return survives ? text.toLatin1() : encodedName(text);
}

/** A reference with control characters would break the header that holds it, and cannot be sent back either.
 */
QByteArray usableReference(const QString &reference)
{
    if (MailHeaderText::singleLine(reference) == reference)
        return storableFileName(reference);
    qCWarning(eas()) << "file reference holds control characters, the attachment can't be fetched";
    return QByteArray();
}

int sizeOf(const EasAttachmentContainer &attachment)
{
    return qMax(0, attachment.estimatedDataSize());
}

bool isProxy(const QMailMessagePart &part)
{
    return part.contentType().subType().toLower() == proxySubType;
}

QMailMessagePart proxyPart(const EasAttachmentContainer &attachment)
{
    QMailMessageContentDisposition disposition(attachment.isInline()
            ? QMailMessageContentDisposition::Inline
            : QMailMessageContentDisposition::Attachment);
    disposition.setFilename(usableReference(attachment.fileReference()));
    disposition.setSize(sizeOf(attachment));

    if (!attachment.isInline() && attachment.method() != EasAttachmentContainer::NormalAttachmentMethod
        && attachment.method() != EasAttachmentContainer::EmbeddedMessageMethod) {
        qCCritical(eas()) << "Not handled attachment type.";
        qCCritical(eas()) << "Considering it as a normal attachment";
    }
    QMailMessageContentType type;
    type.setType(attachment.isInline() ? "image" : "text");
    type.setSubType(proxySubType);
    type.setName(encodedName(attachment.displayName()));

    QMailMessagePart part =
        QMailMessagePart::fromData(QByteArray(), disposition, type, QMailMessageBody::NoEncoding);
    if (!attachment.contentId().isEmpty())
        part.setContentID(MailHeaderText::singleLine(attachment.contentId()));
    if (!attachment.contentLocation().isEmpty())
        part.setContentLocation(MailHeaderText::singleLine(attachment.contentLocation()));
    return part;
}

/** Servers may tell any numbers. */
int sumOfSizes(const QList<EasAttachmentContainer> &attachments)
{
    qint64 total = 0;
    for (const EasAttachmentContainer &attachment : attachments)
        total += sizeOf(attachment);
    return int(qMin<qint64>(total, std::numeric_limits<int>::max()));
}

/** Parts with a disposition, in their order; they lead into the message. */
template <typename Message, typename Part> void collectParts(Message &container, QList<Part *> *parts)
{
    for (uint i = 0; i < container.partCount(); ++i) {
        Part &part = container.partAt(i);
        if (part.contentDisposition().type() != QMailMessageContentDisposition::None)
            parts->append(&part);
        collectParts(static_cast<typename std::conditional<std::is_const<Part>::value,
                         const QMailMessagePartContainer, QMailMessagePartContainer>::type &>(part),
            parts);
    }
}

QList<const QMailMessagePart *> attachmentParts(const QMailMessage &message)
{
    QList<const QMailMessagePart *> parts;
    collectParts(static_cast<const QMailMessagePartContainer &>(message), &parts);
    return parts;
}

QList<QMailMessagePart *> attachmentParts(QMailMessage &message)
{
    QList<QMailMessagePart *> parts;
    collectParts(static_cast<QMailMessagePartContainer &>(message), &parts);
    return parts;
}

/** The order in which setAttachmentsToMailMessage() leaves them in the structure. */
QList<EasAttachmentContainer> inlineFirst(const QList<EasAttachmentContainer> &attachments)
{
    QList<EasAttachmentContainer> ordered;
    for (const bool isInline : { true, false }) {
        for (const EasAttachmentContainer &attachment : attachments) {
            if (attachment.isInline() == isInline)
                ordered.append(attachment);
        }
    }
    return ordered;
}

bool sameAttachments(const QList<QMailMessagePart *> &parts, const QList<EasAttachmentContainer> &attachments)
{
    if (parts.size() != attachments.size())
        return false;
    for (int i = 0; i < parts.size(); ++i) {
        const bool isInline =
            parts.at(i)->contentDisposition().type() == QMailMessageContentDisposition::Inline;
        if (isInline != attachments.at(i).isInline()
            || decodedName(parts.at(i)->contentType().name()) != attachments.at(i).displayName())
            return false;
    }
    return true;
}

void refreshProxy(QMailMessagePart *part, const EasAttachmentContainer &attachment)
{
    QMailMessageContentDisposition disposition = part->contentDisposition();
    disposition.setFilename(usableReference(attachment.fileReference()));
    disposition.setSize(sizeOf(attachment));
    part->setContentDisposition(disposition);
}

/** The two halves of a media type, or those of plain octets when they are not clean tokens. */
QPair<QByteArray, QByteArray> mediaType(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("^([A-Za-z0-9!#$&^_.+-]+)/([A-Za-z0-9!#$&^_.+-]+)$"));
    const QRegularExpressionMatch match = form.match(text.section(QLatin1Char(';'), 0, 0).trimmed());
    if (!match.hasMatch())
        return { "application", "octet-stream" };
    return { match.captured(1).toLatin1(), match.captured(2).toLatin1() };
}

/** Whether the store's parser takes the text; it does not check it itself. */
bool isLocation(const QString &text, const QMailMessageId &messageId)
{
    static const QRegularExpression form(
        QStringLiteral("^(?:([0-9]{1,19})-)?[1-9][0-9]{0,5}(?:\\.[1-9][0-9]{0,5}){0,63}$"));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        return false;
    const quint64 id = match.captured(1).toULongLong();
    return id == 0 || id == messageId.toULongLong();
}

/** Long octets stay in their file until the store takes them. */
QMailMessageBody bodyOf(const FetchedOctets &octets, const QMailMessageContentType &type)
{
    const auto encoding = QMailMessageBody::NoEncoding;
    const auto status = QMailMessageBody::AlreadyEncoded;
    return octets.isInFile() ? QMailMessageBody::fromFile(octets.fileName(), type, encoding, status)
                             : QMailMessageBody::fromData(octets.all(), type, encoding, status);
}

} // namespace

namespace MailAttachments {

int setAttachmentsToMailMessage(QMailMessage *message, const EasEmailItem &item)
{
    QList<QMailMessagePart> inlineParts;
    QList<QMailMessagePart> otherParts;
    const QList<EasAttachmentContainer> attachments = item.attachments();
    for (const EasAttachmentContainer &attachment : attachments)
        (attachment.isInline() ? inlineParts : otherParts).append(proxyPart(attachment));

    const auto pointers = [](const QList<QMailMessagePart> &parts) {
        QList<const QMailMessagePart *> list;
        for (const QMailMessagePart &part : parts)
            list.append(&part);
        return list;
    };
    // Inline parts first: on a message that is already mixed they would damage the structure.
    if (!inlineParts.isEmpty())
        message->setInlineImages(pointers(inlineParts));
    if (!otherParts.isEmpty())
        message->setAttachments(pointers(otherParts));
    if (!attachments.isEmpty())
        message->setStatus(QMailMessage::HasAttachments, true);
    return sumOfSizes(attachments);
}

int updateAttachments(QMailMessage *message, const EasEmailItem &item)
{
    const QList<EasAttachmentContainer> wanted = inlineFirst(item.attachments());
    const QList<QMailMessagePart *> present = attachmentParts(*message);
    if (sameAttachments(present, wanted)) {
        for (int i = 0; i < present.size(); ++i) {
            if (isProxy(*present.at(i)))
                refreshProxy(present.at(i), wanted.at(i));
        }
        return sumOfSizes(wanted);
    }
    MailBodyWriter::rebuildWithoutAttachments(*message);
    message->setStatus(QMailMessage::HasAttachments, false);
    return setAttachmentsToMailMessage(message, item);
}

QList<EasAttachmentContainer> attachments(const QMailMessage &message)
{
    QList<EasAttachmentContainer> list;
    const QList<const QMailMessagePart *> parts = attachmentParts(message);
    for (const QMailMessagePart *part : parts) {
        const QMailMessageContentDisposition disposition = part->contentDisposition();
        EasAttachmentContainer attachment;
        attachment.setIsInline(disposition.type() == QMailMessageContentDisposition::Inline);
        attachment.setDisplayName(decodedName(part->contentType().name()));
        attachment.setFileReference(decodedName(disposition.filename()));
        attachment.setEstimatedDataSize(qMax(0, disposition.size()));
        attachment.setMethod(part->contentType().matches("message", "rfc822")
                ? EasAttachmentContainer::EmbeddedMessageMethod
                : EasAttachmentContainer::NormalAttachmentMethod);
        list.append(attachment);
    }
    return list;
}

qint64 totalSize(const QMailMessage &message)
{
    qint64 total = 0;
    const QList<const QMailMessagePart *> parts = attachmentParts(message);
    for (const QMailMessagePart *part : parts)
        total += qMax(0, part->contentDisposition().size());
    return total;
}

QStringList locations(const QMailMessage &message, bool downloaded)
{
    QStringList list;
    const QList<const QMailMessagePart *> parts = attachmentParts(message);
    for (const QMailMessagePart *part : parts) {
        if (isAttachment(*part) && isDownloaded(*part) == downloaded)
            list.append(part->location().toString(true));
    }
    return list;
}

const QMailMessagePart *partAt(const QMailMessage &message, const QString &location)
{
    if (!isLocation(location, message.id()))
        return nullptr;
    const QMailMessagePart::Location place(location);
    return message.contains(place) ? &message.partAt(place) : nullptr;
}

bool isDownloaded(const QMailMessagePart &part)
{
    return !isProxy(part);
}

bool isAttachment(const QMailMessagePart &part)
{
    switch (part.contentDisposition().type()) {
    case QMailMessageContentDisposition::Attachment:
        return true;
    case QMailMessageContentDisposition::Inline:
        return !part.contentType().matches("text", "plain") && !part.contentType().matches("text", "html");
    default:
        return part.contentType().matches("message", "rfc822");
    }
}

QString fileReference(const QMailMessagePart &part)
{
    return isProxy(part) ? decodedName(part.contentDisposition().filename()) : QString();
}

bool fillPart(QMailMessage *message, const QString &location, const QString &contentType,
    const FetchedOctets &octets, const QString &fileName)
{
    if (!partAt(*message, location)) {
        qCWarning(eas()) << "can't find attachment part in the message";
        return false;
    }
    QMailMessagePart &part = message->partAt(QMailMessagePart::Location(location));

    QMailMessageContentDisposition disposition = part.contentDisposition();
    const QString name = fileName.isEmpty() ? part.displayName() : fileName;
    disposition.setFilename(storableFileName(MailHeaderText::singleLine(name)));
    disposition.setSize(octets.size());

    const QPair<QByteArray, QByteArray> media = mediaType(contentType);
    QMailMessageContentType type = part.contentType();
    type.setType(media.first);
    type.setSubType(media.second);

    const QMailMessageBody body = bodyOf(octets, type);
    if (body.length() != octets.size()) {
        qCCritical(eas()) << "can't read the attachment that was fetched";
        return false;
    }
    part.setBody(body);
    part.setContentDisposition(disposition);
    return true;
}

} // namespace MailAttachments
