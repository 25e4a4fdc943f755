// SPDX-License-Identifier: LGPL-2.1-or-later
#include "protocol/wbxml/wbxmlvalidator.h"

#include "protocol/wbxml/utf8.h"

#include <algorithm>
#include <cstring>

namespace {

enum GlobalToken : quint8 {
    SwitchPage = 0x00,
    End = 0x01,
    Entity = 0x02,
    InlineString = 0x03,
    Literal = 0x04,
    ProcessingInstruction = 0x43,
    TableString = 0x83,
    Opaque = 0xC3,
};

constexpr quint8 attributesBit = 0x80;
constexpr quint8 contentBit = 0x40;
constexpr quint8 identityMask = 0x3F;
constexpr quint8 firstTag = 0x05;

constexpr quint8 oldestVersion = 0x01; // 1.0 has another header
constexpr quint8 newestVersion = 0x03;

bool isKnownCharset(quint32 charset)
{
    constexpr quint32 unspecified = 0;
    constexpr quint32 usAscii = 3;
    constexpr quint32 utf8 = 106;
    return charset == unspecified || charset == usAscii || charset == utf8;
}

} // namespace

WbxmlValidator::WbxmlValidator(const QByteArray &data)
    : mData(data)
{
}

const char *WbxmlValidator::reason() const
{
    return mReason;
}

int WbxmlValidator::offset() const
{
    return mOffset;
}

int WbxmlValidator::documentLength() const
{
    return mPosition;
}

bool WbxmlValidator::refuse(const char *reason, int offset)
{
    mReason = reason;
    mOffset = offset;
    return false;
}

bool WbxmlValidator::check()
{
    return checkHeader() && checkBody();
}

bool WbxmlValidator::checkHeader()
{
    quint8 version = 0;
    if (!readByte(version))
        return false;
    if (version < oldestVersion || version > newestVersion)
        return refuse("unsupported version", 0);

    quint32 publicId = 0;
    quint32 publicIdReference = 0;
    const int publicIdOffset = mPosition;
    if (!readNumber(publicId) || (publicId == 0 && !readNumber(publicIdReference)))
        return false;

    quint32 charset = 0;
    const int charsetOffset = mPosition;
    if (!readNumber(charset))
        return false;
    if (!isKnownCharset(charset))
        return refuse("unsupported charset", charsetOffset);

    quint32 tableLength = 0;
    if (!readNumber(tableLength) || !checkStringTable(tableLength))
        return false;
    if (publicId == 0 && publicIdReference >= tableLength)
        return refuse("public identifier outside the string table", publicIdOffset);
    return true;
}

bool WbxmlValidator::checkStringTable(quint32 length)
{
    if (length > static_cast<quint32>(mData.size() - mPosition))
        return refuse("string table longer than the document", mPosition);
    if (length > MaxTableLength)
        return refuse("string table too long", mPosition);
    mTableOffset = mPosition;
    mTableLength = static_cast<int>(length);
    mPosition += mTableLength;
    if (mTableLength == 0)
        return true;
    const char *table = mData.constData() + mTableOffset;
    if (table[mTableLength - 1] != '\0')
        return refuse("string table without an end", mPosition - 1);
    const int invalid = Utf8::firstInvalid(table, mTableLength);
    if (invalid >= 0)
        return refuse("string table is not UTF-8", mTableOffset + invalid);
    for (int i = 0; i < mTableLength; ++i) {
        if (table[i] == '\0')
            mTableEnds.push_back(i);
    }
    return true;
}

bool WbxmlValidator::checkBody()
{
    do {
        mTokenOffset = mPosition;
        quint8 token = 0;
        if (!readByte(token) || !checkContent(token))
            return false;
    } while (mDepth > 0 || mElements == 0);
    return true;
}

bool WbxmlValidator::checkContent(quint8 token)
{
    quint8 page = 0;
    switch (token) {
    case SwitchPage:
        return readByte(page);
    case End:
        if (mDepth == 0)
            return refuse("end without an element", mTokenOffset);
        --mDepth;
        return true;
    case Entity:
        return refuse("entity", mTokenOffset);
    case ProcessingInstruction:
        return refuse("processing instruction", mTokenOffset);
    case InlineString:
        return checkInlineString();
    case TableString:
        return checkReference();
    case Opaque:
        return checkOpaque();
    default:
        return checkElement(token);
    }
}

bool WbxmlValidator::checkElement(quint8 tag)
{
    const quint8 identity = tag & identityMask;
    if (identity < firstTag && identity != Literal)
        return refuse("extension token", mTokenOffset);
    if ((tag & attributesBit) != 0)
        return refuse("attributes", mTokenOffset);
    if (identity == Literal && !checkReference())
        return false;
    return openElement((tag & contentBit) != 0);
}

bool WbxmlValidator::openElement(bool hasContent)
{
    if (++mElements > MaxElements)
        return refuse("too many elements", mTokenOffset);
    if (hasContent && ++mDepth > MaxDepth)
        return refuse("nested too deeply", mTokenOffset);
    return true;
}

bool WbxmlValidator::checkInlineString()
{
    if (mDepth == 0)
        return refuse("text outside the root element", mTokenOffset);
    const char *start = mData.constData() + mPosition;
    const void *end = std::memchr(start, 0, static_cast<size_t>(mData.size() - mPosition));
    if (end == nullptr)
        return refuse("string without an end", mTokenOffset);
    const int length = static_cast<int>(static_cast<const char *>(end) - start);
    const int invalid = Utf8::firstInvalid(start, length);
    if (invalid >= 0)
        return refuse("string is not UTF-8", mPosition + invalid);
    mPosition += length + 1;
    return true;
}

bool WbxmlValidator::checkOpaque()
{
    if (mDepth == 0)
        return refuse("data outside the root element", mTokenOffset);
    quint32 length = 0;
    if (!readNumber(length))
        return false;
    if (length > static_cast<quint32>(mData.size() - mPosition))
        return refuse("data longer than the document", mTokenOffset);
    mPosition += static_cast<int>(length);
    return true;
}

bool WbxmlValidator::checkReference()
{
    const bool isText = static_cast<quint8>(mData.at(mTokenOffset)) == TableString;
    if (isText && mDepth == 0)
        return refuse("text outside the root element", mTokenOffset);
    quint32 index = 0;
    if (!readNumber(index))
        return false;
    if (index >= static_cast<quint32>(mTableLength))
        return refuse("reference outside the string table", mTokenOffset);
    const int start = static_cast<int>(index);
    if (Utf8::isContinuation(mData.at(mTableOffset + start)))
        return refuse("reference into the middle of a character", mTokenOffset);
    mExpanded += *std::lower_bound(mTableEnds.cbegin(), mTableEnds.cend(), start) - start;
    if (mExpanded > static_cast<qint64>(mData.size()) * MaxExpansion)
        return refuse("string table repeated too often", mTokenOffset);
    return true;
}

bool WbxmlValidator::readByte(quint8 &value)
{
    if (mPosition >= mData.size())
        return refuse("document cut short", mPosition);
    value = static_cast<quint8>(mData.at(mPosition++));
    return true;
}

bool WbxmlValidator::readNumber(quint32 &value)
{
    constexpr int maxBytes = 5;
    constexpr quint64 highest = 0x7FFFFFFF; // the library counts some of them in signed numbers
    constexpr quint8 moreBit = 0x80;
    const int start = mPosition;
    quint64 number = 0;
    for (int i = 0; i < maxBytes; ++i) {
        quint8 byte = 0;
        if (!readByte(byte))
            return false;
        number = (number << 7U) | (byte & ~moreBit & 0xFFU);
        if ((byte & moreBit) != 0)
            continue;
        if (number > highest)
            break;
        value = static_cast<quint32>(number);
        return true;
    }
    return refuse("number too large", start);
}
