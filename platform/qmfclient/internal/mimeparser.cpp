// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/mimeparser.h"

#include "internal/mailvaluedata.h"

#include <algorithm>

namespace {

const int maxDepth = 40;
const int maxParts = 2000;

/** A run of bytes inside the message; nothing is copied before a leaf is reached. */
struct Slice
{
    int begin;
    int end;
};

class Parser
{
public:
    explicit Parser(const QByteArray &bytes)
        : mBytes(bytes)
    {
    }

    void parseEntity(Slice slice, MimeNode &node, int depth)
    {
        const int bodyBegin = parseHeaders(slice, node);
        const QMailMessageContentType type = node.contentType();
        const MimeNode::MultipartType multipart = MimeNode::multipartTypeOf(type);
        const QByteArray boundary = type.boundary();
        if (multipart != QMailMessagePartContainer::MultipartNone && !boundary.isEmpty()
            && depth < maxDepth) {
            node.multipart = multipart;
            parseParts({ bodyBegin, slice.end }, "--" + boundary, node, depth);
            if (!node.parts.isEmpty())
                return;
            node.multipart = QMailMessagePartContainer::MultipartNone;
        }
        node.body = mBytes.mid(bodyBegin, slice.end - bodyBegin);
        node.hasBody = !node.body.isEmpty();
    }

private:
    int endOfLine(int begin, int end) const
    {
        const int feed = mBytes.indexOf('\n', begin);
        return feed < 0 || feed >= end ? end : feed + 1;
    }

    QByteArray line(int begin, int end) const
    {
        while (end > begin && (mBytes.at(end - 1) == '\n' || mBytes.at(end - 1) == '\r'))
            --end;
        return mBytes.mid(begin, end - begin);
    }

    /** Returns where the body begins. */
    int parseHeaders(Slice slice, MimeNode &node)
    {
        int pos = slice.begin;
        while (pos < slice.end) {
            const int next = endOfLine(pos, slice.end);
            const QByteArray text = line(pos, next);
            if (text.isEmpty())
                return next;
            const bool continued = text.at(0) == ' ' || text.at(0) == '\t';
            const int colon = text.indexOf(':');
            if (continued && !node.headers.isEmpty()) {
                node.headers.last().value += ' ' + text.trimmed();
            } else if (colon > 0 && !text.left(colon).trimmed().contains(' ')) {
                node.headers.append({ text.left(colon).trimmed(), text.mid(colon + 1).trimmed() });
            } else if (node.headers.isEmpty() && !text.startsWith("From ")) {
                return slice.begin; // No header at all: the whole of it is body.
            }
            pos = next;
        }
        return slice.end;
    }

    void parseParts(Slice slice, const QByteArray &delimiter, MimeNode &node, int depth)
    {
        int partBegin = -1;
        for (int pos = slice.begin; pos < slice.end;) {
            const int next = endOfLine(pos, slice.end);
            if (!isDelimiter(pos, next, delimiter)) {
                pos = next;
                continue;
            }
            if (partBegin >= 0)
                appendPart({ partBegin, withoutLineEnd(partBegin, pos) }, node, depth);
            const bool last = mBytes.mid(pos + delimiter.size(), 2) == "--";
            if (last || mParts >= maxParts)
                return;
            partBegin = next;
            pos = next;
        }
        // The closing delimiter is missing: what was cut off still counts.
        if (partBegin >= 0)
            appendPart({ partBegin, slice.end }, node, depth);
    }

    bool isDelimiter(int begin, int end, const QByteArray &delimiter) const
    {
        if (end - begin < delimiter.size()
            || memcmp(mBytes.constData() + begin, delimiter.constData(), size_t(delimiter.size())) != 0)
            return false;
        QByteArray rest = line(begin + delimiter.size(), end);
        if (rest.startsWith("--"))
            rest.remove(0, 2);
        return rest.trimmed().isEmpty();
    }

    /** The line end before a delimiter belongs to the delimiter. */
    int withoutLineEnd(int begin, int end) const
    {
        if (end > begin && mBytes.at(end - 1) == '\n')
            --end;
        if (end > begin && mBytes.at(end - 1) == '\r')
            --end;
        return end;
    }

    void appendPart(Slice slice, MimeNode &node, int depth)
    {
        ++mParts;
        QMailMessagePart part;
        parseEntity(slice, MailValueAccess::own(part), depth + 1);
        node.parts.append(part);
    }

    const QByteArray &mBytes;
    int mParts = 0;
};

bool isSevenBit(const QByteArray &bytes)
{
    return std::all_of(bytes.cbegin(), bytes.cend(), [](char c) { return uchar(c) < 0x80; });
}

/** RFC 2045, 5.2 and 6.1: what says nothing of its type is plain text, of its encoding 7bit. */
void nameTextLeaves(MimeNode &node, bool part)
{
    if (node.parts.isEmpty() && (part || node.hasBody)) {
        if (!node.hasHeader("Content-Type"))
            node.setHeader("Content-Type", "text/plain");
        if (node.hasBody && !node.hasHeader("Content-Transfer-Encoding")
            && node.contentType().matches("text"))
            node.setHeader("Content-Transfer-Encoding", isSevenBit(node.body.all()) ? "7bit" : "8bit");
    }
    for (QMailMessagePart &child : node.parts)
        nameTextLeaves(MailValueAccess::own(child), true);
}

} // namespace

void parseMime(const QByteArray &received, MimeNode &node)
{
    Parser(received).parseEntity({ 0, int(received.size()) }, node, 0);
    nameTextLeaves(node, false);
    node.received = received;
    node.placeParts();
}
