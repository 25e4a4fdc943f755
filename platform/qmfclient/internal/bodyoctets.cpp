// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/bodyoctets.h"

#include "internal/base64lines.h"
#include "internal/contentloader.h"

#include <QDebug>
#include <QFile>

#include <limits>

namespace {

class FileSource : public BodyOctets::Source
{
public:
    explicit FileSource(const QString &fileName)
        : mFile(fileName)
    {
    }

    bool open()
    {
        if (mFile.open(QIODevice::ReadOnly) && mFile.size() <= std::numeric_limits<int>::max() / 2) {
            mSize = int(mFile.size());
            return true;
        }
        qWarning() << "cannot read the body of a message from" << mFile.fileName() << mFile.errorString();
        return false;
    }

    int size() const override { return mSize; }

    QByteArray read(int offset, int length) const override
    {
        const QByteArray octets = mFile.seek(offset) ? mFile.read(length) : QByteArray();
        if (octets.size() < qMin(length, mSize - offset))
            qWarning() << "cannot read the body of a message from" << mFile.fileName() << mFile.errorString();
        return octets;
    }

private:
    mutable QFile mFile;
    int mSize = 0;
};

/** A file as lines of base64. */
class Base64FileSource : public FileSource
{
public:
    using FileSource::FileSource;

    int size() const override
    {
        const int octets = FileSource::size();
        const int letters = (octets + 2) / 3 * 4;
        return letters + (octets > 0 ? (octets - 1) / Base64Lines::octetsInLine * lineEnd : 0);
    }

    QByteArray read(int offset, int length) const override
    {
        const int line = offset / wholeLine;
        const int end = qMin(size(), offset + length);
        if (end <= offset)
            return QByteArray();
        const int octets = ((end - 1) / wholeLine + 1 - line) * Base64Lines::octetsInLine;
        const QByteArray lines =
            Base64Lines::encode(FileSource::read(line * Base64Lines::octetsInLine, octets));
        // Where the file goes on behind the last of these lines, so does the text.
        return (lines + "\r\n").mid(offset - line * wholeLine, end - offset);
    }

private:
    static constexpr int lineEnd = 2;
    static constexpr int wholeLine = Base64Lines::lettersInLine + lineEnd;
};

/** Null, after a warning, if the file cannot be read. */
template <class Source> std::shared_ptr<const BodyOctets::Source> opened(const QString &fileName)
{
    auto source = std::make_shared<Source>(fileName);
    return source->open() ? source : nullptr;
}

class StoreSource : public BodyOctets::Source
{
public:
    StoreSource(quint64 number, int size)
        : mNumber(number)
        , mSize(size)
    {
    }

    int size() const override { return mSize; }
    quint64 storedAs() const override { return mNumber; }

    QByteArray read(int offset, int length) const override
    {
        const int end = qMin(mSize, offset + length);
        QByteArray octets;
        octets.reserve(end - offset);
        while (offset < end) {
            const int begin = offset % BodyOctets::pieceSize;
            const QByteArray piece =
                storedPiece(mNumber, offset / BodyOctets::pieceSize).mid(begin, end - offset);
            if (piece.isEmpty()) {
                qWarning() << "the store has the body of a message no more, number" << mNumber;
                break;
            }
            octets += piece;
            offset += piece.size();
        }
        return octets;
    }

private:
    const quint64 mNumber;
    const int mSize;
};

} // namespace

BodyOctets BodyOctets::ofFile(const QString &fileName)
{
    const auto source = opened<FileSource>(fileName);
    return source ? BodyOctets(source) : BodyOctets();
}

BodyOctets BodyOctets::ofFileInBase64(const QString &fileName)
{
    const auto source = opened<Base64FileSource>(fileName);
    return source ? BodyOctets(source) : BodyOctets();
}

BodyOctets BodyOctets::ofStore(quint64 number, int size)
{
    return BodyOctets(std::make_shared<const StoreSource>(number, size));
}

QByteArray BodyOctets::piece(int number) const
{
    const int offset = number * pieceSize;
    return mSource ? mSource->read(offset, pieceLength(number)) : mOctets.mid(offset, pieceLength(number));
}
