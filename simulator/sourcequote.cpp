// SPDX-License-Identifier: LGPL-2.1-or-later
#include "simulator/sourcequote.h"

#include <KMime/Message>

namespace Simulator {
namespace {

QString plainQuote(const EmailContent &source)
{
    const EmailHeaders &headers = source.headers();
    return QStringLiteral("\n\n-----Original Message-----\nFrom: %1\nSent: %2\nTo: %3\nSubject: %4\n\n")
               .arg(headers.from, source.received().toString(Qt::RFC2822Date), headers.displayTo,
                   headers.subject)
        + source.bodies().plain;
}

QString htmlQuote(const EmailContent &source)
{
    const EmailHeaders &headers = source.headers();
    const EmailBodies bodies = source.bodies();
    const QString body = bodies.html.isEmpty()
        ? QStringLiteral("<pre>") + bodies.plain.toHtmlEscaped() + QStringLiteral("</pre>")
        : bodies.html;
    return QStringLiteral("<hr><b>From:</b> %1<br><b>Sent:</b> %2<br><b>To:</b> %3<br><b>Subject:</b> %4<br>")
               .arg(headers.from.toHtmlEscaped(), source.received().toString(Qt::RFC2822Date),
                   headers.displayTo.toHtmlEscaped(), headers.subject.toHtmlEscaped())
        + body;
}

void appendText(KMime::Content *content, const QString &text)
{
    content->fromUnicodeString(content->decodedText() + text);
    content->contentTransferEncoding()->setEncoding(KMime::Headers::CEbase64);
}

/** Appends to the bodies, the first plain and the first HTML text that is no attachment. */
void appendToBodies(KMime::Content *content, const EmailContent &source, bool *hasPlain, bool *hasHtml)
{
    const KMime::Headers::ContentType *const type = content->contentType(false);
    if (type && type->isMultipart()) {
        const QVector<KMime::Content *> parts = content->contents();
        for (KMime::Content *part : parts)
            appendToBodies(part, source, hasPlain, hasHtml);
        return;
    }
    const KMime::Headers::ContentDisposition *const disposition = content->contentDisposition(false);
    if (disposition && disposition->disposition() == KMime::Headers::CDattachment)
        return;
    const bool isHtml = type && type->mimeType().toLower() == "text/html";
    const bool isPlain = !type || type->mimeType().isEmpty() || type->mimeType().toLower() == "text/plain";
    if (isHtml && !*hasHtml) {
        *hasHtml = true;
        content->contentType()->setCharset("utf-8");
        appendText(content, htmlQuote(source));
    } else if (isPlain && !*hasPlain) {
        *hasPlain = true;
        content->contentType()->setMimeType("text/plain");
        content->contentType()->setCharset("utf-8");
        appendText(content, plainQuote(source));
    }
}

KMime::Content *attachmentPart(const ItemAttachment &attachment)
{
    auto *const part = new KMime::Content;
    part->contentType()->setMimeType(attachment.contentType);
    part->contentType()->setName(attachment.name, "utf-8");
    part->contentDisposition()->setDisposition(
        attachment.isInline ? KMime::Headers::CDinline : KMime::Headers::CDattachment);
    part->contentDisposition()->setFilename(attachment.name);
    if (!attachment.contentId.isEmpty())
        part->contentID()->setIdentifier(attachment.contentId.toLatin1());
    if (attachment.isMessage) {
        part->contentTransferEncoding()->setEncoding(KMime::Headers::CE8Bit);
        part->setBody(KMime::CRLFtoLF(attachment.bytes));
    } else {
        part->contentTransferEncoding()->setEncoding(KMime::Headers::CEbase64);
        part->contentTransferEncoding()->setDecoded(true);
        part->setBody(attachment.bytes);
    }
    return part;
}

QByteArray withSource(const QByteArray &message, const EmailContent &source, bool withAttachments)
{
    KMime::Message composed;
    composed.setContent(KMime::CRLFtoLF(message));
    composed.parse();
    bool hasPlain = false;
    bool hasHtml = false;
    appendToBodies(&composed, source, &hasPlain, &hasHtml);
    if (withAttachments) {
        const QVector<ItemAttachment> attachments = source.attachments();
        for (const ItemAttachment &attachment : attachments)
            composed.addContent(attachmentPart(attachment));
    }
    composed.assemble();
    return composed.encodedContent(true);
}

} // namespace

namespace SourceQuote {

QByteArray replied(const QByteArray &message, const EmailContent &source)
{
    return withSource(message, source, false);
}

QByteArray forwarded(const QByteArray &message, const EmailContent &source)
{
    return withSource(message, source, true);
}

} // namespace SourceQuote
} // namespace Simulator
