// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/mimerenderer.h"

#include "internal/headertext.h"
#include "internal/mailvaluedata.h"
#include "internal/parttree.h"
#include "internal/transferencoding.h"

#include <QCryptographicHash>

#include <algorithm>

namespace {

const int roomForHeaders = 64 * 1024;
const char preamble[] = "This is a multi-part message in MIME format.\r\n";

bool isPlainAscii(const QByteArray &bytes)
{
    return std::all_of(bytes.cbegin(), bytes.cend(), [](char c) { return c != '\0' && uchar(c) < 0x80; });
}

template <class Take> void addPieces(const BodyOctets &octets, Take take)
{
    for (int i = 0; i < octets.pieceCount(); ++i)
        take(octets.piece(i));
}

/** What the bodies of a message take. */
int bodySize(const MimeNode &node)
{
    int size = node.body.size();
    for (const QMailMessagePart &part : node.parts)
        size += bodySize(MailValueAccess::node(part));
    return size;
}

class Renderer
{
public:
    Renderer(const QMailMessage &message, QMailMessage::EncodingFormat format)
        : mMessage(message)
        , mFormat(format)
    {
        if (format == QMailMessage::StorageFormat)
            mLeftOut = PartTree::attachments(message);
    }

    QByteArray render()
    {
        const MimeNode &node = MailValueAccess::node(mMessage);
        if (mFormat == QMailMessage::IdentityFormat && !node.received.isEmpty() && !node.anyModified())
            return node.received;
        if (mFormat != QMailMessage::HeaderOnlyFormat)
            mOut.reserve(bodySize(node) + roomForHeaders);
        renderHeaders(node);
        if (mFormat != QMailMessage::IdentityFormat && !node.hasHeader("Date")) {
            const QMailTimeStamp date =
                mMessage.date().isValid() ? mMessage.date() : QMailTimeStamp::currentDateTime();
            mOut += foldedHeader("Date", date.toString().toLatin1());
        }
        if (wantsMimeVersion(node))
            mOut += foldedHeader("MIME-Version", "1.0");
        mOut += "\r\n";
        if (mFormat != QMailMessage::HeaderOnlyFormat)
            renderContent(node);
        return mOut;
    }

private:
    bool wantsMimeVersion(const MimeNode &node) const
    {
        return mFormat == QMailMessage::HeaderOnlyFormat || mFormat == QMailMessage::TransmissionFormat
            || (mFormat == QMailMessage::StorageFormat && node.multipart != QMailMessage::MultipartNone);
    }

    /** Octets without a transfer encoding travel as base64. */
    static bool needsBase64(const MimeNode &node)
    {
        return node.hasBody && node.transferEncoding() == QMailMessageBody::NoEncoding
            && !isPlainAscii(node.body.all());
    }

    QByteArray boundaryOf(const MimeNode &node)
    {
        const QByteArray own = node.contentType().boundary();
        if (!own.isEmpty())
            return own;
        // From the content, so that the same message gives the same text; no line of quoted-printable or
        // base64 holds "=_".
        QCryptographicHash hash(QCryptographicHash::Sha1);
        for (const QMailMessagePart &part : node.parts)
            addPieces(
                MailValueAccess::node(part).body, [&hash](const QByteArray &piece) { hash.addData(piece); });
        for (const uint index : node.indices)
            hash.addData(QByteArray::number(index));
        return "=_" + hash.result().toHex().left(24) + '_' + QByteArray::number(mBoundaries);
    }

    void renderHeaders(const MimeNode &node)
    {
        for (const MimeNode::Header &header : node.headers) {
            const QByteArray name = header.name.toLower();
            if (name == "mime-version" || (name == "bcc" && mFormat == QMailMessage::TransmissionFormat))
                continue;
            if (name == "content-type" || name == "content-disposition")
                renderStructured(node, header);
            else
                mOut += foldedHeader(header.name, header.value);
        }
        if (needsBase64(node))
            mOut += foldedHeader("Content-Transfer-Encoding", "base64");
    }

    void renderStructured(const MimeNode &node, const MimeNode::Header &header)
    {
        QMailMessageHeaderField field(header.name, header.value);
        if (field.content().isEmpty())
            return; // Parameters alone are no valid field.
        if (header.name.toLower() == "content-type" && node.multipart != QMailMessage::MultipartNone)
            field.setParameter("boundary", boundaryOf(node));
        mOut += foldedHeader(header.name, field.toString(false, false));
    }

    void renderContent(const MimeNode &node)
    {
        if (node.multipart != QMailMessage::MultipartNone)
            renderParts(node);
        else if (needsBase64(node))
            mOut += encodeForTransfer(node.body.all(), QMailMessageBody::Base64, false);
        else
            addPieces(node.body, [this](const QByteArray &piece) { mOut += piece; });
    }

    void renderPart(const MimeNode &node)
    {
        renderHeaders(node);
        if (node.reference != QMailMessagePart::MessageReference) {
            mOut += "\r\n";
            return renderContent(node);
        }
        const QMailMessage target(node.referencedMessage);
        const QByteArray text = target.id().isValid() ? target.toRfc2822(mFormat) : QByteArray();
        if (!isPlainAscii(text) && !node.hasHeader("Content-Transfer-Encoding"))
            mOut += foldedHeader("Content-Transfer-Encoding", "8bit");
        mOut += "\r\n" + text;
    }

    void renderParts(const MimeNode &node)
    {
        const QByteArray boundary = boundaryOf(node);
        ++mBoundaries;
        if (mFormat == QMailMessage::TransmissionFormat && node.indices.isEmpty())
            mOut += preamble;
        for (const QMailMessagePart &part : node.parts) {
            if (mLeftOut.contains(&part))
                continue;
            mOut += "\r\n--" + boundary + "\r\n";
            renderPart(MailValueAccess::node(part));
        }
        mOut += "\r\n--" + boundary + "--\r\n";
    }

    const QMailMessage &mMessage;
    const QMailMessage::EncodingFormat mFormat;
    QList<const QMailMessagePart *> mLeftOut;
    QByteArray mOut;
    int mBoundaries = 0;
};

} // namespace

QByteArray renderMime(const QMailMessage &message, QMailMessage::EncodingFormat format)
{
    return Renderer(message, format).render();
}
