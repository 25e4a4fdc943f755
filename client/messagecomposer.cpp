// SPDX-License-Identifier: LGPL-2.1-or-later
#include "client/messagecomposer.h"

#include "client/accountdirectory.h"
#include "client/attachedfile.h"
#include "client/commandcontext.h"
#include "client/mailbox.h"

#include <QUuid>
#include <qmailaccount.h>

#include <optional>

namespace {

/** Lines up to this length pass every server; the standard ends at 998. */
constexpr int LongestPlainLine = 900;

/** Nothing in it that a server on the way could change. */
bool isPlain(const QByteArray &text)
{
    int length = 0;
    for (const char c : text) {
        length = c == '\n' ? 0 : length + 1;
        const bool isPrintable = c == '\n' || c == '\t' || (c >= ' ' && c <= '~');
        if (!isPrintable || length > LongestPlainLine)
            return false;
    }
    return !text.startsWith("From ") && !text.contains("\nFrom ");
}

QMailMessageBody textBody(const QString &text)
{
    const QByteArray octets = text.toUtf8();
    return QMailMessageBody::fromData(octets, QMailMessageContentType("text/plain; charset=UTF-8"),
        isPlain(octets) ? QMailMessageBody::SevenBit : QMailMessageBody::QuotedPrintable,
        QMailMessageBody::RequiresEncoding);
}

QMailMessagePart textPart(const QString &text)
{
    QMailMessagePart part;
    part.setBody(textBody(text));
    return part;
}

/** What stands for the source until the message goes out; the engine leaves the rest to the server. */
QMailMessagePart sourcePart(const QMailMessageId &source)
{
    return QMailMessagePart::fromMessageReference(source,
        QMailMessageContentDisposition(QMailMessageContentDisposition::Attachment),
        QMailMessageContentType("message/rfc822"), QMailMessageBody::NoEncoding);
}

QString newMessageId(const QMailAddress &from)
{
    const QString domain = from.address().section(QLatin1Char('@'), -1);
    return QStringLiteral("<%1@%2>").arg(QUuid::createUuid().toString(QUuid::WithoutBraces),
        domain.isEmpty() ? QStringLiteral("localhost") : domain);
}

/** Ties the message to its source, as far as the device knows how that is called. */
void setThread(QMailMessage &message, const OutgoingMessage &outgoing)
{
    message.setResponseType(outgoing.response);
    message.setInResponseTo(outgoing.source);
    if (!outgoing.source.isValid())
        return;
    const QMailMessage source(outgoing.source);
    const QString sourceId = source.headerFieldText(QStringLiteral("Message-ID")).trimmed();
    if (sourceId.isEmpty())
        return;
    const QString earlier = source.headerFieldText(QStringLiteral("References")).trimmed();
    message.setHeaderField(QStringLiteral("In-Reply-To"), sourceId);
    message.setHeaderField(QStringLiteral("References"), (earlier + QLatin1Char(' ') + sourceId).trimmed());
}

/** False, after an error was printed, if a file cannot be read. */
bool appendParts(QMailMessage &message, const OutgoingMessage &outgoing)
{
    message.setMultipartType(QMailMessage::MultipartMixed);
    message.appendPart(textPart(outgoing.text));
    for (const QMailMessagePart &part : outgoing.parts)
        message.appendPart(part);
    for (const QString &file : outgoing.files) {
        const std::optional<QMailMessagePart> part = AttachedFile(file).part();
        if (!part)
            return false;
        message.appendPart(*part);
    }
    if (outgoing.isSourceAdded)
        message.appendPart(sourcePart(outgoing.source));
    return true;
}

/** What the engine goes by; the store does not find it out. */
void setContent(QMailMessage &message)
{
    if (message.multipartType() != QMailMessage::MultipartNone)
        message.setContent(QMailMessage::MultipartContent);
    else
        message.setContent(
            message.hasHtmlBody() ? QMailMessage::HtmlContent : QMailMessage::PlainTextContent);
}

/** False, after an error was printed, if a file cannot be read. */
bool fill(QMailMessage &message, const OutgoingMessage &outgoing)
{
    const bool hasFiles = !outgoing.files.isEmpty() || !outgoing.parts.isEmpty();
    if (!hasFiles && !outgoing.isSourceAdded)
        message.setBody(textBody(outgoing.text));
    else if (!appendParts(message, outgoing))
        return false;
    message.setStatus(QMailMessage::HasAttachments, hasFiles);
    setContent(message);
    return true;
}

uint sizeOf(const QMailMessagePartContainer &container)
{
    uint size = container.hasBody() ? uint(container.body().length()) : 0;
    for (uint i = 0; i < container.partCount(); ++i)
        size += sizeOf(container.partAt(i));
    return size;
}

} // namespace

MessageComposer::MessageComposer(CommandContext &context, EasAccountId accountId)
    : mAccountId(accountId)
    , mFrom(QMailAccount(QMailAccountId(accountId)).fromAddress())
{
    // Not every mail account has been told its address.
    if (!mFrom.isEmailAddress())
        mFrom = QMailAddress(context.accounts().emailAddress(accountId));
}

void MessageComposer::addOwnHeaders(QMailMessage &message) const
{
    const auto messageId = QStringLiteral("Message-ID");
    message.setMessageType(QMailMessage::Email);
    message.setParentAccountId(QMailAccountId(mAccountId));
    if (message.from().isNull() && !mFrom.isNull())
        message.setFrom(mFrom);
    if (message.headerFieldText(messageId).isEmpty())
        message.setHeaderField(messageId, newMessageId(mFrom));
    message.setDate(QMailTimeStamp::currentDateTime());
    message.setReceivedDate(message.date());
}

QMailMessage MessageComposer::headed(const OutgoingMessage &outgoing) const
{
    QMailMessage message;
    addOwnHeaders(message);
    message.setTo(outgoing.to);
    message.setCc(outgoing.cc);
    message.setBcc(outgoing.bcc);
    message.setSubject(outgoing.subject);
    setThread(message, outgoing);
    return message;
}

QMailMessageId MessageComposer::store(
    const OutgoingMessage &outgoing, QMailFolder::StandardFolder place) const
{
    QMailMessage message = headed(outgoing);
    return fill(message, outgoing) ? add(message, place) : QMailMessageId();
}

QMailMessageId MessageComposer::storeCopy(
    const QMailMessage &written, QMailFolder::StandardFolder place) const
{
    // The value itself, not its text: the store then copies long bodies and notices what it cannot read.
    QMailMessage message(written);
    message.setId(QMailMessageId());
    message.setServerUid(QString());
    message.setContentScheme(QString());
    message.setContentIdentifier(QString());
    message.setPreviousParentFolderId(QMailFolderId());
    addOwnHeaders(message);
    setContent(message);
    return add(message, place);
}

QMailMessageId MessageComposer::add(QMailMessage &message, QMailFolder::StandardFolder place) const
{
    message.setSize(sizeOf(message));
    message.setStatus(QMailMessage::ContentAvailable | QMailMessage::PartialContentAvailable, true);
    // Read here as on the server, which does not know it: no mark is to go up.
    message.setStatus(
        QMailMessage::Read | QMailMessage::ReadElsewhere | QMailMessage::Outgoing | QMailMessage::LocalOnly,
        true);
    MailBox box(mAccountId);
    box.place(message, place);
    return box.add(&message) ? message.id() : QMailMessageId();
}
