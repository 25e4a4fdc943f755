// SPDX-License-Identifier: LGPL-2.1-or-later
// The part of FetchItemCommand that reads replies in the multipart form: a number of parts, the place of each
// of them, and the parts, which come in pairs of a WBXML document and the data that belongs to it.
#include "application/base/logging.h"
#include "easitems/algorithms/itemoperationsresponseparser.h"
#include "protocol/base/eas.h"
#include "protocol/base/protocolutils.h"
#include "protocol/fetchitemcommand.h"

#include <QDataStream>
#include <QDebug>
#include <QNetworkReply>

#include <algorithm>

namespace {

// What the first byte of each document says; a reply in parts begins with their number, which is even.
constexpr char WbxmlVersion13 = 3;

/** Of a Content-Type without its parameters. */
QString mediaType(const QNetworkReply *reply)
{
    const QString contentType = reply->header(QNetworkRequest::ContentTypeHeader).toString();
    return contentType.section(QLatin1Char(';'), 0, 0).trimmed().toLower();
}

bool readNumber(QDataStream &stream, qint32 *number, const char *failure)
{
    stream >> *number;
    if (stream.status() == QDataStream::Ok) {
        return true;
    }
    qCWarning(eas()) << failure;
    return false;
}

} // namespace

struct FetchItemCommand::Multipart
{
    explicit Multipart(const QByteArray &reply)
        : data(reply)
        , stream(reply)
    {
        stream.setByteOrder(QDataStream::LittleEndian);
    }

    const QByteArray &data;
    QDataStream stream;
    /** Of the documents so far. Honest ones lie side by side, so that together they are no longer than all.
     */
    qint64 documentBytes = 0;
};

void FetchItemCommand::logBody(const QByteArray &body) const
{
    // The documents of a reply in parts are logged one by one, when they are read.
    if (body.isEmpty() || body.at(0) == WbxmlVersion13) {
        BaseProtocolCommand::logBody(body);
    }
}

bool FetchItemCommand::checkBound(int dataSize, int offset, int length)
{
    return offset >= 0 && length >= 1 && qint64(offset) + length <= dataSize;
}

bool FetchItemCommand::processMultiPartResponse(const QNetworkReply *reply, const QByteArray &data)
{
    const QString type = mediaType(reply);
    if (type == ProtocolUtils::ContentTypeWbxml) {
        if (processSingleResponse(data)) {
            return true;
        }
        qCWarning(eas())
            << "We failed to handle the response as a webxml response, so trying to handle it as "
               "a multipart response";
    } else if (type != ProtocolUtils::ContentTypeMultiPart) {
        qCCritical(eas()) << "Invalid content type for multipart response";
        return false;
    }
    return processParts(data);
}

bool FetchItemCommand::processParts(const QByteArray &data)
{
    Multipart reply(data);
    qint32 partsCount = 0;
    reply.stream >> partsCount;
    if (reply.stream.status() != QDataStream::Ok) {
        qCCritical(eas()) << "The data size is less than required response header";
        return false;
    }
    if (partsCount % 2 != 0) {
        qCCritical(eas()) << "The parts should be in pairs:" << partsCount;
        return false;
    }
    qCInfo(eas()) << "partsCount:" << partsCount;
    for (qint32 i = 0; i < partsCount; i += 2) {
        bool found = false;
        if (!processPair(reply, i, i == partsCount - 2, &found)) {
            return false;
        }
        if (found) {
            return true;
        }
    }
    qCCritical(eas()) << "The part was not found in multipart response";
    return false;
}

bool FetchItemCommand::processPair(Multipart &reply, int index, bool isLast, bool *found)
{
    const int dataSize = reply.data.size();
    qint32 offset1 = 0;
    qint32 length1 = 0;
    if (!readNumber(reply.stream, &offset1, "Failed to read offset of first item in pair")
        || !readNumber(reply.stream, &length1, "Failed to read length of first item in pair")) {
        return false;
    }
    reply.documentBytes += length1;
    if (!checkBound(dataSize, offset1, length1) || reply.documentBytes > dataSize) {
        qCWarning(eas()) << "The meta data at" << index << "is out of data:"
                         << "dataSize" << dataSize << "offset1" << offset1 << "length1" << length1;
        return false;
    }
    qint32 offset2 = 0;
    qint32 length2 = 0;
    if (!readNumber(reply.stream, &offset2, "Failed to read offset of second item in pair")
        || !readNumber(reply.stream, &length2, "Failed to read length of second item in pair")) {
        return false;
    }
    if (length2 == 0 && isLast) {
        length2 = dataSize - std::clamp(offset2, 0, dataSize);
        qCWarning(eas()) << "length2 is 0 in a last part. New length2 value calculated:" << length2;
    }
    if (!checkBound(dataSize, offset2, length2)) {
        qCWarning(eas()) << "The meta data at" << index + 1 << "is out of data."
                         << "dataSize" << dataSize << "offset2" << offset2 << "length2" << length2;
        return false;
    }
    *found = processPartWbxml(reply.data.mid(offset1, length1));
    if (*found && status() <= Eas::ItemOperationsStatusSuccess) {
        mPartData = reply.data.mid(offset2, length2);
        qCDebug(eas()) << "The part with content type" << mPartContentType << "and size" << mPartData.size()
                       << "was found";
    }
    return true;
}

bool FetchItemCommand::processPartWbxml(const QByteArray &part)
{
    BaseProtocolCommand::logBody(part);
    ItemOperationsResponseParser parser;
    parser.parse(part);
    if (!parser.ready()) {
        qCWarning(eas()) << "Failed to parse";
        return false;
    }
    const QList<ItemOperationsFetchItem> items = parser.fetchItems();
    const auto item =
        std::find_if(items.cbegin(), items.cend(), [this](const ItemOperationsFetchItem &candidate) {
            return candidate.fileReference() == mFileReference;
        });
    if (item == items.cend()) {
        return false;
    }
    // Of a file that was refused the data is none, whatever lies in its place.
    const bool isRefused = item->status() > Eas::ItemOperationsStatusSuccess;
    setStatus(isRefused ? item->status() : parser.status());
    mPartContentType = item->contentType();
    mTotalSize = item->total();
    return true;
}
