// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/contentcodec.h"

#include "internal/mailvaluedata.h"
#include "internal/mimeparser.h"

#include <QDataStream>
#include <QDebug>

#include <algorithm>

namespace {

const quint8 treeVersion = 1;
/** Each node says after its body whether the octets are kept apart. */
const quint8 treeVersionWithLongBodies = 2;
const int maxDepth = 100;

bool hasLongBody(const MimeNode &node)
{
    return node.body.isLong()
        || std::any_of(node.parts.cbegin(), node.parts.cend(),
            [](const QMailMessagePart &part) { return hasLongBody(MailValueAccess::node(part)); });
}

/** Writes a tree and has its long bodies kept elsewhere. */
class TreeWriter
{
public:
    TreeWriter(const KeepBody &keep, StoredContent *content)
        : mKeep(keep)
        , mContent(content)
        , mStream(&content->data, QIODevice::WriteOnly)
    {
        mStream.setVersion(QDataStream::Qt_5_15);
    }

    bool write(const MimeNode &root)
    {
        mWithLongBodies = hasLongBody(root);
        mStream << (mWithLongBodies ? treeVersionWithLongBodies : treeVersion);
        return writeNode(root, false);
    }

private:
    bool writeNode(const MimeNode &node, bool part)
    {
        QList<QPair<QByteArray, QByteArray>> headers;
        for (const MimeNode::Header &header : node.headers)
            headers.append(qMakePair(header.name, header.value));
        // An empty part comes back as what it would be in a message: plain text.
        if (part && node.parts.isEmpty() && !node.hasHeader("Content-Type"))
            headers.append(qMakePair(QByteArray("Content-Type"), QByteArray("text/plain")));
        mStream << headers << quint8(node.multipart) << node.hasBody;
        if (!writeBody(node.body))
            return false;
        mStream << quint8(node.reference) << node.referencedMessage.toULongLong()
                << quint32(node.parts.size());
        return std::all_of(node.parts.cbegin(), node.parts.cend(),
            [this](const QMailMessagePart &child) { return writeNode(MailValueAccess::node(child), true); });
    }

    bool writeBody(const BodyOctets &body)
    {
        quint64 number = 0;
        if (body.isLong()) {
            number = mKeep(body);
            if (number == 0)
                return false;
            mContent->bodies.append(number);
        }
        mStream << (body.isLong() ? QByteArray() : body.all());
        if (mWithLongBodies)
            mStream << number << qint32(body.size());
        return true;
    }

    const KeepBody &mKeep;
    StoredContent *mContent;
    QDataStream mStream;
    bool mWithLongBodies = false;
};

BodyOctets readBody(QDataStream &stream, quint8 version)
{
    QByteArray octets;
    quint64 number = 0;
    qint32 size = 0;
    stream >> octets;
    if (version == treeVersionWithLongBodies)
        stream >> number >> size;
    return number == 0 ? BodyOctets(octets) : BodyOctets::ofStore(number, size);
}

bool readNode(QDataStream &stream, quint8 version, MimeNode &node, int depth)
{
    QList<QPair<QByteArray, QByteArray>> headers;
    quint8 multipart = 0;
    quint8 reference = 0;
    quint64 referencedMessage = 0;
    quint32 parts = 0;
    stream >> headers >> multipart >> node.hasBody;
    node.body = readBody(stream, version);
    stream >> reference >> referencedMessage >> parts;
    if (stream.status() != QDataStream::Ok || depth > maxDepth)
        return false;
    for (const auto &header : qAsConst(headers))
        node.headers.append({ header.first, header.second });
    node.multipart = MimeNode::MultipartType(multipart);
    node.reference = QMailMessagePart::ReferenceType(reference);
    node.referencedMessage = QMailMessageId(referencedMessage);
    for (quint32 i = 0; i < parts; ++i) {
        QMailMessagePart part;
        if (!readNode(stream, version, MailValueAccess::own(part), depth + 1))
            return false;
        node.parts.append(part);
    }
    return true;
}

} // namespace

bool encodeContent(const MimeNode &node, const KeepBody &keep, StoredContent *content)
{
    if (!node.received.isEmpty() && !node.anyModified()) {
        content->format = StoredContent::Received;
        content->data = node.received;
        return true;
    }
    return TreeWriter(keep, content).write(node);
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
    const bool isKnown = version == treeVersion || version == treeVersionWithLongBodies;
    if (!isKnown || !readNode(stream, version, node, 0))
        qWarning() << "the stored content of message" << node.message.toULongLong() << "cannot be read";
    node.placeParts();
}
