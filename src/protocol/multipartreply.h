// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>
#include <QDataStream>

/**
 * Walks through a reply in the multipart form: a number of parts, the place of each of them, and the parts,
 * which come in pairs of a WBXML document and the data that belongs to it.
 *
 * Each failure is logged and ends the walk. A value on the stack; the bytes must outlive it.
 */
class MultipartReply
{
public:
    explicit MultipartReply(const QByteArray &reply);

    /** Reads the number of parts, once and first. False if it is not there or odd. */
    bool open();
    bool hasNext() const;
    /** Goes to the next pair, if there is one. False if its places are not within the reply. */
    bool next();

    // Of the pair
    QByteArray document() const { return mReply.mid(mDocument.offset, mDocument.length); }
    QByteArray data() const { return mReply.mid(mData.offset, mData.length); }

    /** Whether a part of at least one byte lies within the reply. */
    static bool checkBound(int dataSize, int offset, int length);

private:
    struct Place
    {
        qint32 offset = 0;
        qint32 length = 0;
    };

    bool readPlace(Place *place, const char *noOffset, const char *noLength);
    bool readDocumentPlace();
    bool readDataPlace();
    bool isLast() const { return mIndex + 2 == mPartsCount; }

    const QByteArray &mReply;
    QDataStream mStream;
    qint32 mPartsCount = 0;
    /** Of the pair's document among the parts. */
    qint32 mIndex = -2;
    Place mDocument;
    Place mData;
    /** Of the documents so far; honest ones lie side by side, so that together they are no longer than all.
     */
    qint64 mDocumentBytes = 0;
};
