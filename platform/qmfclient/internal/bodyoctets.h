// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>

/**
 * The octets of one body, in its transfer encoding. They are in memory, in a file, or in the store, which
 * keeps long ones in pieces; what is not in memory is read when it is asked for. A plain value.
 */
class BodyOctets
{
public:
    /** Of what is read or stored at once; a body that is longer is stored apart from the tree of its parts.
     */
    static constexpr int pieceSize = 256 * 1024;

    /** Where octets are that are not in memory. */
    class Source
    {
    public:
        virtual ~Source() = default;
        virtual int size() const = 0;
        /** Shorter than length only at the end or, logged, where it cannot be read. */
        virtual QByteArray read(int offset, int length) const = 0;
        /** The number under which the store keeps them; 0 if it does not. */
        virtual quint64 storedAs() const { return 0; }
    };

    BodyOctets() = default;
    BodyOctets(const QByteArray &octets)
        : mOctets(octets)
    {
    }
    explicit BodyOctets(const std::shared_ptr<const Source> &source)
        : mSource(source)
    {
    }

    /** The file may be removed meanwhile, not changed. Empty, logged, if it cannot be opened. */
    static BodyOctets ofFile(const QString &fileName);
    /** The same in base64, which is made of the file as it is read. */
    static BodyOctets ofFileInBase64(const QString &fileName);
    static BodyOctets ofStore(quint64 number, int size);

    int size() const { return mSource ? mSource->size() : mOctets.size(); }
    bool isEmpty() const { return size() == 0; }
    void clear() { *this = BodyOctets(); }
    bool isLong() const { return size() > pieceSize; }
    quint64 storedAs() const { return mSource ? mSource->storedAs() : 0; }

    /** All of them, in memory. */
    QByteArray all() const { return mSource ? mSource->read(0, mSource->size()) : mOctets; }
    int pieceCount() const { return (size() + pieceSize - 1) / pieceSize; }
    int pieceLength(int number) const { return qMin(pieceSize, size() - number * pieceSize); }
    /** Shorter than its length, logged, if it cannot be read. */
    QByteArray piece(int number) const;

private:
    QByteArray mOctets;
    std::shared_ptr<const Source> mSource;
};
