// SPDX-License-Identifier: LGPL-2.1-or-later
#include <qmailmessagebody.h>

#include "internal/mailvaluedata.h"
#include "internal/transferencoding.h"

#include <QTextCodec>

namespace {

bool isText(const QMailMessageContentType &type)
{
    return type.matches("text");
}

/** What a text says when its charset is missing or wrong: UTF-8 where that is possible, otherwise Latin-1. */
QString guessedText(const QByteArray &octets)
{
    QTextCodec::ConverterState state;
    const QString text =
        QTextCodec::codecForName("UTF-8")->toUnicode(octets.constData(), octets.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0 ? text : QString::fromLatin1(octets);
}

QTextCodec *codecOf(const QMailMessageContentType &type)
{
    const QByteArray charset = type.charset();
    if (charset.isEmpty() || qstricmp(charset.constData(), "us-ascii") == 0)
        return nullptr;
    return QTextCodec::codecForName(charset);
}

} // namespace

QMailMessageBody::QMailMessageBody()
    : mEncoded(std::make_shared<const BodyOctets>())
{
}

QMailMessageBody QMailMessageBody::fromData(const QByteArray &data, const QMailMessageContentType &type,
    TransferEncoding encoding, EncodingStatus status)
{
    const bool isEncoded = status == AlreadyEncoded;
    return MailValueAccess::body(
        isEncoded ? data : encodeForTransfer(data, encoding, isText(type)), encoding, type);
}

QMailMessageBody QMailMessageBody::fromData(
    const QString &text, const QMailMessageContentType &type, TransferEncoding encoding)
{
    const QTextCodec *codec = codecOf(type);
    return fromData(codec ? codec->fromUnicode(text) : text.toUtf8(), type, encoding, RequiresEncoding);
}

QMailMessageBody QMailMessageBody::fromFile(const QString &filename, const QMailMessageContentType &type,
    TransferEncoding encoding, EncodingStatus status)
{
    if (status == RequiresEncoding && encoding == Base64)
        return MailValueAccess::body(BodyOctets::ofFileInBase64(filename), encoding, type);
    const BodyOctets octets = BodyOctets::ofFile(filename);
    const bool isEncoded = status == AlreadyEncoded || encoding == NoEncoding || encoding == Binary;
    return isEncoded ? MailValueAccess::body(octets, encoding, type)
                     : fromData(octets.all(), type, encoding, status);
}

QByteArray QMailMessageBody::data(EncodingFormat format) const
{
    const QByteArray encoded = mEncoded->all();
    return format == Decoded ? decodeFromTransfer(encoded, mEncoding, isText(mContentType)) : encoded;
}

QString QMailMessageBody::data() const
{
    const QByteArray octets = data(Decoded);
    const QTextCodec *codec = codecOf(mContentType);
    return codec ? codec->toUnicode(octets) : guessedText(octets);
}

QMailMessageBody::TransferEncoding QMailMessageBody::transferEncoding() const
{
    return mEncoding;
}

QMailMessageContentType QMailMessageBody::contentType() const
{
    return mContentType;
}

bool QMailMessageBody::isEmpty() const
{
    return mEncoded->isEmpty();
}

int QMailMessageBody::length() const
{
    return mEncoded->size();
}
