// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/mimenode.h"

#include "internal/mailvaluedata.h"
#include "internal/transferencoding.h"

#include <array>

namespace {

struct MultipartName
{
    MimeNode::MultipartType type;
    const char *name;
};

const std::array<MultipartName, 9> multipartNames { {
    { QMailMessagePartContainer::MultipartSigned, "signed" },
    { QMailMessagePartContainer::MultipartEncrypted, "encrypted" },
    { QMailMessagePartContainer::MultipartMixed, "mixed" },
    { QMailMessagePartContainer::MultipartAlternative, "alternative" },
    { QMailMessagePartContainer::MultipartDigest, "digest" },
    { QMailMessagePartContainer::MultipartParallel, "parallel" },
    { QMailMessagePartContainer::MultipartRelated, "related" },
    { QMailMessagePartContainer::MultipartFormData, "form-data" },
    { QMailMessagePartContainer::MultipartReport, "report" },
} };

bool describesContent(const QByteArray &headerName)
{
    return qstrnicmp(headerName.constData(), "Content-", 8) == 0;
}

} // namespace

int MimeNode::headerIndex(const QByteArray &name) const
{
    for (int i = 0; i < headers.size(); ++i) {
        if (qstricmp(headers.at(i).name.constData(), name.constData()) == 0)
            return i;
    }
    return -1;
}

QByteArray MimeNode::header(const QByteArray &name) const
{
    const int index = headerIndex(name);
    return index < 0 ? QByteArray() : headers.at(index).value;
}

void MimeNode::setHeader(const QByteArray &name, const QByteArray &value)
{
    const int index = headerIndex(name);
    if (index < 0)
        headers.append({ name, value });
    else
        headers[index].value = value;
}

void MimeNode::removeHeader(const QByteArray &name)
{
    for (int index = headerIndex(name); index >= 0; index = headerIndex(name))
        headers.removeAt(index);
}

QMailMessageContentType MimeNode::contentType() const
{
    return QMailMessageContentType(header("Content-Type"));
}

QMailMessageBody::TransferEncoding MimeNode::transferEncoding() const
{
    return transferEncodingFromName(header("Content-Transfer-Encoding"));
}

void MimeNode::placeParts()
{
    for (int i = 0; i < parts.size(); ++i) {
        MimeNode &node = MailValueAccess::own(parts[i]);
        node.message = message;
        node.indices = indices;
        node.indices.append(uint(i) + 1);
        node.placeParts();
    }
}

QMailMessagePart MimeNode::takeContent()
{
    QMailMessagePart part;
    MimeNode &node = MailValueAccess::edit(part);
    for (int i = 0; i < headers.size();) {
        if (describesContent(headers.at(i).name))
            node.headers.append(headers.takeAt(i));
        else
            ++i;
    }
    node.multipart = multipart;
    node.hasBody = hasBody;
    node.body = body;
    node.parts = parts;
    multipart = QMailMessagePartContainer::MultipartNone;
    hasBody = false;
    body.clear();
    parts.clear();
    return part;
}

bool MimeNode::anyModified() const
{
    if (modified)
        return true;
    for (const QMailMessagePart &part : parts) {
        if (MailValueAccess::node(part).anyModified())
            return true;
    }
    return false;
}

void MimeNode::clearModified()
{
    modified = false;
    unstored = false;
    for (QMailMessagePart &part : parts) {
        if (MailValueAccess::node(part).anyModified())
            MailValueAccess::own(part).clearModified();
    }
}

QByteArray MimeNode::multipartSubType(MultipartType type)
{
    for (const MultipartName &entry : multipartNames) {
        if (entry.type == type)
            return entry.name;
    }
    return QByteArray();
}

MimeNode::MultipartType MimeNode::multipartTypeOf(const QMailMessageContentType &type)
{
    if (!type.matches("multipart"))
        return QMailMessagePartContainer::MultipartNone;
    for (const MultipartName &entry : multipartNames) {
        if (type.matches("multipart", entry.name))
            return entry.type;
    }
    // An unknown multipart is to be treated as mixed (RFC 2046, 5.1.3).
    return QMailMessagePartContainer::MultipartMixed;
}
