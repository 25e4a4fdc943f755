// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailid.h>
#include <qmailmessagebody.h>

#include <QList>
#include <QMetaType>
#include <QSharedDataPointer>

class MimeNode;
class QMailMessagePart;

/**
 * A message or a part of one: header fields, and either a body or parts.
 * A value: a copy is independent. Pointers and references into the tree die with any change of the parts.
 */
class QMF_EXPORT QMailMessagePartContainer : public QMailMessagePartContainerFwd
{
public:
    /** Where a part stands: one-based indices joined by dots, and the message that holds it. */
    class QMF_EXPORT Location
    {
    public:
        Location() = default;
        Location(const QString &description); // NOLINT: converts on purpose

        /** extended: the message has to be known too. */
        bool isValid(bool extended = true) const;
        QMailMessageId containingMessageId() const;
        void setContainingMessageId(const QMailMessageId &id);
        /** "1.2", or extended "7-1.2". */
        QString toString(bool extended) const;

        bool operator==(const Location &other) const;
        bool operator!=(const Location &other) const;

    private:
        friend struct MailValueAccess;
        QMailMessageId mMessageId;
        QList<uint> mIndices;
    };

    virtual ~QMailMessagePartContainer();

    MultipartType multipartType() const;
    void setMultipartType(
        MultipartType type, const QList<QMailMessageHeaderField::ParameterType> &parameters = {});

    uint partCount() const;
    void appendPart(const QMailMessagePart &part);
    void prependPart(const QMailMessagePart &part);
    void removePartAt(uint pos);
    const QMailMessagePart &partAt(uint pos) const;
    QMailMessagePart &partAt(uint pos);
    void clearParts();

    QMailMessageContentDisposition contentDisposition() const;
    void setContentDisposition(const QMailMessageContentDisposition &disposition);
    void setBody(
        const QMailMessageBody &body, QMailMessageBody::EncodingFormat format = QMailMessageBody::None);
    QMailMessageBody body() const;
    bool hasBody() const;
    QMailMessageBody::TransferEncoding transferEncoding() const;
    QMailMessageContentType contentType() const;

    QString headerFieldText(const QString &id) const;
    virtual void setHeaderField(const QString &id, const QString &content);
    virtual void removeHeaderField(const QString &id);

    virtual bool contentAvailable() const = 0;
    virtual bool partialContentAvailable() const = 0;

    /** Calls func for each part, depth first, until one call returns false. */
    template <typename F> bool foreachPart(F func);
    template <typename F> bool foreachPart(F func) const;

    QMailMessagePartContainer *findPlainTextContainer() const;
    QMailMessagePartContainer *findHtmlContainer() const;
    QList<Location> findAttachmentLocations() const;
    QList<Location> findInlineImageLocations() const;
    QList<Location> findInlinePartLocations() const;
    bool hasPlainTextBody() const;
    bool hasHtmlBody() const;
    bool hasAttachments() const;
    void setPlainTextBody(const QMailMessageBody &body);
    void setInlineImages(const QList<const QMailMessagePart *> images);
    void setAttachments(const QList<const QMailMessagePart *> attachments);

protected:
    QMailMessagePartContainer();
    QMailMessagePartContainer(const QMailMessagePartContainer &other);
    QMailMessagePartContainer &operator=(const QMailMessagePartContainer &other);

private:
    friend struct MailValueAccess;
    QSharedDataPointer<MimeNode> mNode;
};

/** A part of a message. One made from empty data has no body: it stands for content that is not on the
 * device. */
class QMF_EXPORT QMailMessagePart : public QMailMessagePartContainer, public QMailMessagePartFwd
{
public:
    QMailMessagePart();
    QMailMessagePart(const QMailMessagePart &other);
    QMailMessagePart &operator=(const QMailMessagePart &other);
    ~QMailMessagePart() override;

    static QMailMessagePart fromData(const QByteArray &data,
        const QMailMessageContentDisposition &disposition, const QMailMessageContentType &type,
        QMailMessageBody::TransferEncoding encoding,
        QMailMessageBody::EncodingStatus status = QMailMessageBody::RequiresEncoding);
    static QMailMessagePart fromData(const QString &text, const QMailMessageContentDisposition &disposition,
        const QMailMessageContentType &type, QMailMessageBody::TransferEncoding encoding);
    static QMailMessagePart fromFile(const QString &filename,
        const QMailMessageContentDisposition &disposition, const QMailMessageContentType &type,
        QMailMessageBody::TransferEncoding encoding,
        QMailMessageBody::EncodingStatus status = QMailMessageBody::RequiresEncoding);
    static QMailMessagePart fromMessageReference(const QMailMessageId &id,
        const QMailMessageContentDisposition &disposition, const QMailMessageContentType &type,
        QMailMessageBody::TransferEncoding encoding);

    QString contentID() const;
    void setContentID(const QString &id);
    QString contentLocation() const;
    void setContentLocation(const QString &location);
    Location location() const;
    QString displayName() const;
    QString identifier() const;
    ReferenceType referenceType() const;
    QMailMessageId messageReference() const;
    bool contentAvailable() const override;
    bool partialContentAvailable() const override;
};

template <typename F> bool QMailMessagePartContainer::foreachPart(F func)
{
    for (uint i = 0; i < partCount(); ++i) {
        QMailMessagePart &part = partAt(i);
        if (!func(part) || !part.foreachPart(func))
            return false;
    }
    return true;
}

template <typename F> bool QMailMessagePartContainer::foreachPart(F func) const
{
    for (uint i = 0; i < partCount(); ++i) {
        const QMailMessagePart &part = partAt(i);
        if (!func(part) || !part.foreachPart(func))
            return false;
    }
    return true;
}

Q_DECLARE_METATYPE(QMailMessagePartContainer::Location)
