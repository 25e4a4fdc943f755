// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "simulator/person.h"

namespace Simulator {

/** The global address list, which all users of a server share. A value type. */
class Directory
{
public:
    const QVector<Person> &people() const { return mPeople; }
    /** One with the same address is replaced. */
    void add(const Person &person);
    /** All cards of a vCard file; false if there are none. */
    bool addCards(const QByteArray &cards);
    void clear() { mPeople.clear(); }
    /** By display name. */
    QVector<Person> matching(const QString &text) const;

private:
    QVector<Person> mPeople;
};

} // namespace Simulator
