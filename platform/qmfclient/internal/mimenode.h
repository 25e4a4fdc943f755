// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "internal/bodyoctets.h"

#include <qmailmessagepart.h>

#include <QByteArray>
#include <QList>
#include <QSharedData>

/** The content of a message or of one part of it. */
class MimeNode : public QSharedData
{
public:
    struct Header
    {
        QByteArray name;
        QByteArray value; ///< unfolded, in the encoded form
    };
    typedef QMailMessagePartContainer::MultipartType MultipartType;

    int headerIndex(const QByteArray &name) const;
    bool hasHeader(const QByteArray &name) const { return headerIndex(name) >= 0; }
    QByteArray header(const QByteArray &name) const;
    /** Replaces the first field of that name in its place, or appends one. */
    void setHeader(const QByteArray &name, const QByteArray &value);
    void removeHeader(const QByteArray &name);

    QMailMessageContentType contentType() const;
    QMailMessageBody::TransferEncoding transferEncoding() const;

    /** Tells the parts below where they stand, after parts or the message's id changed. */
    void placeParts();
    /** Moves type, body and parts into a new part; what is left has other header fields alone. */
    QMailMessagePart takeContent();
    bool anyModified() const;
    void clearModified();

    static QByteArray multipartSubType(MultipartType type);
    static MultipartType multipartTypeOf(const QMailMessageContentType &type);

    QList<Header> headers;
    MultipartType multipart = QMailMessagePartContainer::MultipartNone;
    bool hasBody = false;
    BodyOctets body;
    QList<QMailMessagePart> parts;
    QMailMessagePart::ReferenceType reference = QMailMessagePart::None;
    QMailMessageId referencedMessage;

    QMailMessageId message;
    QList<uint> indices;
    bool modified = false;
    /** Not modified, but not in the store in this form either. */
    bool unstored = false;
    bool previewStale = false;
    /** The bytes that a message was parsed from; they stand for it as long as nothing is modified. */
    QByteArray received;
    /** The content is in the store and has not been asked for. */
    bool unloaded = false;
};
