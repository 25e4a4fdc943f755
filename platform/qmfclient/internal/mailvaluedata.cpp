// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/mailvaluedata.h"

#include "internal/contentloader.h"

const MimeNode &MailValueAccess::node(const QMailMessagePartContainer &container)
{
    const MimeNode &node = *container.mNode;
    // All objects that share the unloaded content are served by one load; none of them sees a change by it.
    if (node.unloaded)
        loadContent(const_cast<MimeNode &>(node));
    return node;
}

MimeNode &MailValueAccess::edit(QMailMessagePartContainer &container)
{
    MimeNode &node = own(container);
    node.modified = true;
    return node;
}

MimeNode &MailValueAccess::own(QMailMessagePartContainer &container)
{
    node(container);
    return *container.mNode;
}

const BodyOctets &MailValueAccess::octets(const QMailMessageBody &body)
{
    return *body.mEncoded;
}

QMailMessageBody MailValueAccess::body(const BodyOctets &encoded, QMailMessageBody::TransferEncoding encoding,
    const QMailMessageContentType &type)
{
    QMailMessageBody body;
    body.mEncoded = std::make_shared<const BodyOctets>(encoded);
    body.mEncoding = encoding;
    body.mContentType = type;
    return body;
}

QMailMessagePartContainer::Location MailValueAccess::location(
    const QMailMessageId &id, const QList<uint> &indices)
{
    QMailMessagePartContainer::Location location;
    location.mMessageId = id;
    location.mIndices = indices;
    return location;
}
