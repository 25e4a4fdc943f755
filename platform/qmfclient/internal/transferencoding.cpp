// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/transferencoding.h"

#include "internal/base64lines.h"

#include <KCodecs>

namespace {

struct EncodingName
{
    QMailMessageBody::TransferEncoding encoding;
    const char *name;
};

const EncodingName encodingNames[] = {
    { QMailMessageBody::SevenBit, "7bit" },
    { QMailMessageBody::EightBit, "8bit" },
    { QMailMessageBody::Base64, "base64" },
    { QMailMessageBody::QuotedPrintable, "quoted-printable" },
    { QMailMessageBody::Binary, "binary" },
};

/** For content whose line ends are no line ends: each control character is encoded. */
QByteArray quotedPrintableOctets(const QByteArray &octets)
{
    const int maxLineLength = 72;
    QByteArray out;
    int lineLength = 0;
    for (const char c : octets) {
        const QByteArray piece =
            c > ' ' && c < 127 && c != '=' ? QByteArray(1, c) : '=' + QByteArray(1, c).toHex().toUpper();
        if (lineLength + piece.size() > maxLineLength) {
            out += "=\r\n";
            lineLength = 0;
        }
        out += piece;
        lineLength += piece.size();
    }
    return out;
}

} // namespace

QMailMessageBody::TransferEncoding transferEncodingFromName(const QByteArray &name)
{
    const QByteArray wanted = name.trimmed();
    for (const EncodingName &entry : encodingNames) {
        if (qstricmp(wanted.constData(), entry.name) == 0)
            return entry.encoding;
    }
    return QMailMessageBody::NoEncoding;
}

QByteArray transferEncodingName(QMailMessageBody::TransferEncoding encoding)
{
    for (const EncodingName &entry : encodingNames) {
        if (entry.encoding == encoding)
            return entry.name;
    }
    return QByteArray();
}

QByteArray withCrLf(const QByteArray &text)
{
    QByteArray out;
    out.reserve(text.size() + text.size() / 32);
    int begin = 0;
    for (int feed = text.indexOf('\n'); feed >= 0; feed = text.indexOf('\n', begin)) {
        out.append(text.constData() + begin, feed - begin);
        out.append(feed > 0 && text.at(feed - 1) == '\r' ? "\n" : "\r\n");
        begin = feed + 1;
    }
    return out.append(text.constData() + begin, text.size() - begin);
}

QByteArray withLf(const QByteArray &text)
{
    return text.contains('\r') ? QByteArray(text).replace("\r\n", "\n") : text;
}

QByteArray encodeForTransfer(const QByteArray &octets, QMailMessageBody::TransferEncoding encoding, bool text)
{
    switch (encoding) {
    case QMailMessageBody::Base64:
        return Base64Lines::encode(octets);
    case QMailMessageBody::QuotedPrintable:
        // For text the line ends stay line ends; of other octets they are content and are encoded.
        return text ? KCodecs::quotedPrintableEncode(withLf(octets), true) : quotedPrintableOctets(octets);
    case QMailMessageBody::SevenBit:
    case QMailMessageBody::EightBit:
        return text ? withCrLf(octets) : octets;
    case QMailMessageBody::NoEncoding:
    case QMailMessageBody::Binary:
        break;
    }
    return octets;
}

QByteArray decodeFromTransfer(
    const QByteArray &encoded, QMailMessageBody::TransferEncoding encoding, bool text)
{
    switch (encoding) {
    case QMailMessageBody::Base64:
        return QByteArray::fromBase64(encoded);
    case QMailMessageBody::QuotedPrintable: {
        const QByteArray octets = KCodecs::quotedPrintableDecode(encoded);
        return text ? withLf(octets) : octets;
    }
    case QMailMessageBody::SevenBit:
    case QMailMessageBody::EightBit:
        return text ? withLf(encoded) : encoded;
    case QMailMessageBody::NoEncoding:
    case QMailMessageBody::Binary:
        break;
    }
    return encoded;
}
