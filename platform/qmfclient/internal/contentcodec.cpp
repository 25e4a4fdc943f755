// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/contentcodec.h"

#include "internal/mailvaluedata.h"
#include "internal/mimeparser.h"

#include <QDataStream>
#include <QDebug>

namespace {

const quint8 treeVersion = 1;
const int maxDepth = 100;

void writeNode(QDataStream &stream, const MimeNode &node, bool part)
{
    QList<QPair<QByteArray, QByteArray>> headers;
    for (const MimeNode::Header &header : node.headers)
        headers.append(qMakePair(header.name, header.value));
    // An empty part comes back as what it would be in a message: plain text.
    if (part && node.parts.isEmpty() && !node.hasHeader("Content-Type"))
        headers.append(qMakePair(QByteArray("Content-Type"), QByteArray("text/plain")));
    stream << headers << quint8(node.multipart) << node.hasBody << node.body << quint8(node.reference)
           << node.referencedMessage.toULongLong() << quint32(node.parts.size());
    for (const QMailMessagePart &child : node.parts)
        writeNode(stream, MailValueAccess::node(child), true);
}

bool readNode(QDataStream &stream, MimeNode &node, int depth)
{
    QList<QPair<QByteArray, QByteArray>> headers;
    quint8 multipart = 0;
    quint8 reference = 0;
    quint64 referencedMessage = 0;
    quint32 parts = 0;
    stream >> headers >> multipart >> node.hasBody >> node.body >> reference >> referencedMessage >> parts;
    if (stream.status() != QDataStream::Ok || depth > maxDepth)
        return false;
    for (const auto &header : qAsConst(headers))
        node.headers.append({ header.first, header.second });
    node.multipart = MimeNode::MultipartType(multipart);
    node.reference = QMailMessagePart::ReferenceType(reference);
    node.referencedMessage = QMailMessageId(referencedMessage);
    for (quint32 i = 0; i < parts; ++i) {
        QMailMessagePart part;
        if (!readNode(stream, MailValueAccess::own(part), depth + 1))
            return false;
        node.parts.append(part);
    }
    return true;
}

} // namespace

StoredContent encodeContent(const MimeNode &node)
{
    StoredContent content;
    if (!node.received.isEmpty() && !node.anyModified()) {
        content.format = StoredContent::Received;
        content.data = node.received;
        return content;
    }
    QDataStream stream(&content.data, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_5_15);
    stream << treeVersion;
    writeNode(stream, node, false);
    return content;
}

void decodeContent(const StoredContent &content, MimeNode &node)
{
    if (content.format == StoredContent::Received) {
        parseMime(content.data, node);
        return;
    }
    QDataStream stream(content.data);
    stream.setVersion(QDataStream::Qt_5_15);
    quint8 version = 0;
    stream >> version;
    if (version != treeVersion || !readNode(stream, node, 0))
        qWarning() << "the stored content of message" << node.message.toULongLong() << "cannot be read";
    node.placeParts();
}
