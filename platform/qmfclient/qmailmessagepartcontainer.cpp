// SPDX-License-Identifier: LGPL-2.1-or-later
#include <qmailmessagepart.h>

#include "internal/headerparameters.h"
#include "internal/mailvaluedata.h"
#include "internal/parttree.h"
#include "internal/transferencoding.h"

QMailMessagePartContainer::QMailMessagePartContainer()
    : mNode(new MimeNode)
{
}

QMailMessagePartContainer::QMailMessagePartContainer(const QMailMessagePartContainer &other) = default;
QMailMessagePartContainer &QMailMessagePartContainer::operator=(
    const QMailMessagePartContainer &other) = default;
QMailMessagePartContainer::~QMailMessagePartContainer() = default;

QMailMessagePartContainer::MultipartType QMailMessagePartContainer::multipartType() const
{
    return MailValueAccess::node(*this).multipart;
}

void QMailMessagePartContainer::setMultipartType(
    MultipartType type, const QList<QMailMessageHeaderField::ParameterType> &parameters)
{
    MimeNode &node = MailValueAccess::edit(*this);
    QMailMessageContentType contentType = node.contentType();
    if (type == MultipartNone) {
        if (node.multipart != MultipartNone)
            node.removeHeader("Content-Type");
    } else {
        node.hasBody = false;
        node.body.clear();
        node.removeHeader("Content-Transfer-Encoding");
        contentType.setContent("multipart/" + MimeNode::multipartSubType(type));
        for (const auto &parameter : parameters)
            contentType.setParameter(parameter.first, parameter.second);
        node.setHeader("Content-Type", contentType.toString(false));
    }
    node.multipart = type;
}

uint QMailMessagePartContainer::partCount() const
{
    return uint(MailValueAccess::node(*this).parts.size());
}

void QMailMessagePartContainer::appendPart(const QMailMessagePart &part)
{
    MimeNode &node = MailValueAccess::edit(*this);
    node.parts.append(part);
    node.placeParts();
}

void QMailMessagePartContainer::prependPart(const QMailMessagePart &part)
{
    MimeNode &node = MailValueAccess::edit(*this);
    node.parts.prepend(part);
    node.placeParts();
}

void QMailMessagePartContainer::removePartAt(uint pos)
{
    MimeNode &node = MailValueAccess::edit(*this);
    node.parts.removeAt(int(pos));
    node.placeParts();
}

const QMailMessagePart &QMailMessagePartContainer::partAt(uint pos) const
{
    return MailValueAccess::node(*this).parts.at(int(pos));
}

QMailMessagePart &QMailMessagePartContainer::partAt(uint pos)
{
    return MailValueAccess::own(*this).parts[int(pos)];
}

void QMailMessagePartContainer::clearParts()
{
    MailValueAccess::edit(*this).parts.clear();
}

QMailMessageContentDisposition QMailMessagePartContainer::contentDisposition() const
{
    return QMailMessageContentDisposition(MailValueAccess::node(*this).header("Content-Disposition"));
}

void QMailMessagePartContainer::setContentDisposition(const QMailMessageContentDisposition &disposition)
{
    MailValueAccess::edit(*this).setHeader("Content-Disposition", HeaderParameters::keptInPart(disposition));
}

void QMailMessagePartContainer::setBody(const QMailMessageBody &body, QMailMessageBody::EncodingFormat)
{
    MimeNode &node = MailValueAccess::edit(*this);
    QMailMessageContentType type = body.contentType();
    if (!type.charset().isEmpty())
        type.setCharset(type.charset().toLower());
    node.multipart = MultipartNone;
    node.parts.clear();
    node.body = MailValueAccess::octets(body);
    node.hasBody = !node.body.isEmpty();
    node.setHeader("Content-Type", type.toString(false));
    const QByteArray encoding = transferEncodingName(body.transferEncoding());
    if (encoding.isEmpty())
        node.removeHeader("Content-Transfer-Encoding");
    else
        node.setHeader("Content-Transfer-Encoding", encoding);
    node.previewStale = true;
}

QMailMessageBody QMailMessagePartContainer::body() const
{
    const MimeNode &node = MailValueAccess::node(*this);
    return MailValueAccess::body(node.body, node.transferEncoding(), node.contentType());
}

bool QMailMessagePartContainer::hasBody() const
{
    return MailValueAccess::node(*this).hasBody;
}

QMailMessageBody::TransferEncoding QMailMessagePartContainer::transferEncoding() const
{
    return MailValueAccess::node(*this).transferEncoding();
}

QMailMessageContentType QMailMessagePartContainer::contentType() const
{
    return MailValueAccess::node(*this).contentType();
}

QString QMailMessagePartContainer::headerFieldText(const QString &id) const
{
    return QMailMessageHeaderField::decodeWord(MailValueAccess::node(*this).header(id.toLatin1()));
}

void QMailMessagePartContainer::setHeaderField(const QString &id, const QString &content)
{
    const QByteArray name = id.toLatin1();
    const QByteArray value = QMailMessageHeaderField::encodeWord(content);
    // Writing what is there already is no modification: received bytes stay valid.
    if (MailValueAccess::node(*this).header(name) != value || !MailValueAccess::node(*this).hasHeader(name))
        MailValueAccess::edit(*this).setHeader(name, value);
}

void QMailMessagePartContainer::removeHeaderField(const QString &id)
{
    if (MailValueAccess::node(*this).hasHeader(id.toLatin1()))
        MailValueAccess::edit(*this).removeHeader(id.toLatin1());
}

// The pointers lead into this object, which callers may change through them; the search itself changes
// nothing.
QMailMessagePartContainer *QMailMessagePartContainer::findPlainTextContainer() const
{
    return PartTree::findText(const_cast<QMailMessagePartContainer &>(*this), "plain");
}

QMailMessagePartContainer *QMailMessagePartContainer::findHtmlContainer() const
{
    return PartTree::findText(const_cast<QMailMessagePartContainer &>(*this), "html");
}

QList<QMailMessagePartContainer::Location> QMailMessagePartContainer::findAttachmentLocations() const
{
    return PartTree::locations(PartTree::attachments(*this));
}

QList<QMailMessagePartContainer::Location> QMailMessagePartContainer::findInlineImageLocations() const
{
    return PartTree::locations(PartTree::inlineImages(*this));
}

QList<QMailMessagePartContainer::Location> QMailMessagePartContainer::findInlinePartLocations() const
{
    return PartTree::locations(PartTree::inlineParts(*this));
}

bool QMailMessagePartContainer::hasPlainTextBody() const
{
    return findPlainTextContainer() != nullptr;
}

bool QMailMessagePartContainer::hasHtmlBody() const
{
    return findHtmlContainer() != nullptr;
}

bool QMailMessagePartContainer::hasAttachments() const
{
    return !findAttachmentLocations().isEmpty();
}

void QMailMessagePartContainer::setPlainTextBody(const QMailMessageBody &body)
{
    if (QMailMessagePartContainer *text = PartTree::findBodyContainer(*this)) {
        text->setBody(body);
    } else if (partCount() == 0) {
        setBody(body);
    } else {
        PartTree::wrap(*this, MultipartMixed);
        QMailMessagePart part;
        part.setBody(body);
        prependPart(part);
    }
    MimeNode &node = MailValueAccess::edit(*this);
    node.placeParts();
    node.previewStale = true;
}

void QMailMessagePartContainer::setInlineImages(const QList<const QMailMessagePart *> images)
{
    PartTree::remove(*this, PartTree::inlineImages(*this));
    if (images.isEmpty())
        return;
    PartTree::wrap(*this, MultipartRelated);
    for (const QMailMessagePart *image : images)
        appendPart(*image);
}

void QMailMessagePartContainer::setAttachments(const QList<const QMailMessagePart *> attachments)
{
    PartTree::remove(*this, PartTree::attachments(*this));
    if (attachments.isEmpty())
        return;
    PartTree::wrap(*this, MultipartMixed);
    for (const QMailMessagePart *attachment : attachments)
        appendPart(*attachment);
}
