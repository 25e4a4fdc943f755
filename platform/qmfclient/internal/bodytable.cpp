// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/bodytable.h"

#include "internal/bodyoctets.h"

BodyTable::BodyTable(MailDatabase &database)
    : mDatabase(database)
{
}

quint64 BodyTable::keep(const BodyOctets &octets, quint64 message)
{
    if (octets.storedAs() != 0 && belongsTo(octets.storedAs(), message))
        return octets.storedAs();
    if (!mDatabase.run(QStringLiteral("INSERT INTO bodies (message) VALUES (?)"), { message }))
        return 0;
    const quint64 number = mDatabase.lastInsertId();
    return write(number, octets) ? number : 0;
}

bool BodyTable::belongsTo(quint64 number, quint64 message)
{
    const QString sql = QStringLiteral("SELECT 1 FROM bodies WHERE id = ? AND message = ?");
    return message != 0 && mDatabase.has(sql, { number, message });
}

bool BodyTable::write(quint64 number, const BodyOctets &octets)
{
    const QString sql = QStringLiteral("INSERT INTO body_pieces (body, number, data) VALUES (?, ?, ?)");
    for (int i = 0; i < octets.pieceCount(); ++i) {
        const QByteArray piece = octets.piece(i);
        if (piece.size() < octets.pieceLength(i)) {
            mDatabase.setLastError(QMailStore::ContentInaccessible);
            return false;
        }
        if (!mDatabase.run(sql, { number, i, piece }))
            return false;
    }
    return true;
}

bool BodyTable::assign(quint64 message, const QList<quint64> &numbers)
{
    const QList<quint64> present =
        mDatabase.numbers(QStringLiteral("SELECT id FROM bodies WHERE message = ?"), { message });
    if (mDatabase.lastError() != QMailStore::NoError)
        return false;
    for (const quint64 number : present) {
        if (!numbers.contains(number)
            && !mDatabase.run(QStringLiteral("DELETE FROM bodies WHERE id = ?"), { number }))
            return false;
    }
    for (const quint64 number : numbers) {
        if (!mDatabase.run(QStringLiteral("UPDATE bodies SET message = ? WHERE id = ?"), { message, number }))
            return false;
    }
    return true;
}

QByteArray BodyTable::piece(quint64 number, int piece)
{
    return mDatabase
        .value(
            QStringLiteral("SELECT data FROM body_pieces WHERE body = ? AND number = ?"), { number, piece })
        .value_or(QVariant())
        .toByteArray();
}
