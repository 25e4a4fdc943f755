// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "internal/maildatabase.h"

class BodyOctets;

/**
 * Long bodies, each in pieces under a number of its own. They go with their message, which the database sees
 * to. Writing needs a transaction of the caller's.
 */
class BodyTable
{
public:
    explicit BodyTable(MailDatabase &database);

    /**
     * Keeps a body for a message, 0 for one that has no number yet: as it stands if it is kept for it
     * already, otherwise as a copy. Returns its number, 0 if that failed or not all octets could be read.
     */
    quint64 keep(const BodyOctets &octets, quint64 message);
    /** Gives a message the bodies that it holds, and removes those that it holds no more. */
    bool assign(quint64 message, const QList<quint64> &numbers);
    QByteArray piece(quint64 number, int piece);

private:
    bool belongsTo(quint64 number, quint64 message);
    bool write(quint64 number, const BodyOctets &octets);

    MailDatabase &mDatabase;
};
