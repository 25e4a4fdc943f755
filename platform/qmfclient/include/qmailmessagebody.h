// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailmessageheaderfield.h>

#include <QByteArray>
#include <QString>

#include <memory>

class BodyOctets;

/** The body of a message or part, kept in its transfer encoding. Comes from fromData() or a container's
 * body(). */
class QMF_EXPORT QMailMessageBody : public QMailMessageBodyFwd
{
public:
    static QMailMessageBody fromData(const QByteArray &data, const QMailMessageContentType &type,
        TransferEncoding encoding, EncodingStatus status);
    static QMailMessageBody fromData(
        const QString &text, const QMailMessageContentType &type, TransferEncoding encoding);
    /** Octets that need no encoding, or base64, stay in the file until the store copies them. */
    static QMailMessageBody fromFile(const QString &filename, const QMailMessageContentType &type,
        TransferEncoding encoding, EncodingStatus status);

    /** Encoded: as it travels; Decoded: the octets. */
    QByteArray data(EncodingFormat format) const;
    /** The text: decoded, then read in the charset of the content type. */
    QString data() const;
    TransferEncoding transferEncoding() const;
    QMailMessageContentType contentType() const;
    bool isEmpty() const;
    /** The length of the encoded form. */
    int length() const;

private:
    friend struct MailValueAccess;
    QMailMessageBody();

    std::shared_ptr<const BodyOctets> mEncoded;
    TransferEncoding mEncoding = NoEncoding;
    QMailMessageContentType mContentType;
};
