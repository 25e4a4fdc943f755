// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/bodyoctets.h"

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
    auto source = std::make_shared<FileSource>(fileName);
    return source->open() ? BodyOctets(std::shared_ptr<const Source>(source)) : BodyOctets();
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
