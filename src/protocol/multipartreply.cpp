// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/multipartreply.h"

#include "application/base/logging.h"

#include <QDebug>

MultipartReply::MultipartReply(const QByteArray &reply)
    : mReply(reply)
    , mStream(reply)
{
    mStream.setByteOrder(QDataStream::LittleEndian);
}

bool MultipartReply::checkBound(int dataSize, int offset, int length)
{
    return offset >= 0 && length >= 1 && qint64(offset) + length <= dataSize;
}

bool MultipartReply::open()
{
    mStream >> mPartsCount;
    if (mStream.status() != QDataStream::Ok) {
        qCCritical(eas()) << "The data size is less than required response header";
        return false;
    }
    if (mPartsCount % 2 != 0) {
        qCCritical(eas()) << "The parts should be in pairs:" << mPartsCount;
        return false;
    }
    qCInfo(eas()) << "partsCount:" << mPartsCount;
    return true;
}

bool MultipartReply::hasNext() const
{
    return mIndex + 2 < mPartsCount;
}

bool MultipartReply::next()
{
    mIndex += 2;
    return readDocumentPlace() && readDataPlace();
}

bool MultipartReply::readPlace(Place *place, const char *noOffset, const char *noLength)
{
    mStream >> place->offset;
    if (mStream.status() != QDataStream::Ok) {
        qCWarning(eas()) << noOffset;
        return false;
    }
    mStream >> place->length;
    if (mStream.status() != QDataStream::Ok) {
        qCWarning(eas()) << noLength;
        return false;
    }
    return true;
}

bool MultipartReply::readDocumentPlace()
{
    if (!readPlace(&mDocument, "Failed to read offset of first item in pair",
            "Failed to read length of first item in pair"))
        return false;
    mDocumentBytes += mDocument.length;
    if (checkBound(mReply.size(), mDocument.offset, mDocument.length) && mDocumentBytes <= mReply.size())
        return true;
    qCWarning(eas()) << "The meta data at" << mIndex << "is out of data:"
                     << "dataSize" << mReply.size() << "offset1" << mDocument.offset << "length1"
                     << mDocument.length;
    return false;
}

bool MultipartReply::readDataPlace()
{
    if (!readPlace(&mData, "Failed to read offset of second item in pair",
            "Failed to read length of second item in pair"))
        return false;
    // The last part may be that of a file without bytes, which ends where the reply ends.
    const bool isEmptyFile = isLast() && mData.length == 0 && mData.offset == mReply.size();
    if (mData.length == 0 && isLast() && !isEmptyFile) {
        mData.length = mReply.size() - qBound(0, mData.offset, mReply.size());
        qCWarning(eas()) << "length2 is 0 in a last part. New length2 value calculated:" << mData.length;
    }
    if (isEmptyFile || checkBound(mReply.size(), mData.offset, mData.length))
        return true;
    qCWarning(eas()) << "The meta data at" << mIndex + 1 << "is out of data."
                     << "dataSize" << mReply.size() << "offset2" << mData.offset << "length2" << mData.length;
    return false;
}
