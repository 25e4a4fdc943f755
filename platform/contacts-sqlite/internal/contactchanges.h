// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QList>
#include <QSet>

#include <array>

/** What a call changed, to be told once it is committed. Each number once a kind. */
class ContactChanges
{
public:
    /** In the order in which the signals go out. */
    enum Kind {
        CollectionsAdded,
        CollectionsChanged,
        ContactsAdded,
        ContactsChanged,
        ContactsRemoved,
        CollectionsRemoved,
        /** Collections by what happened to their contacts. */
        CollectionContactsChanged,
        KindCount
    };

    void add(Kind kind, quint64 number)
    {
        QSet<quint64> &known = mKnown[kind];
        if (known.contains(number))
            return;
        known.insert(number);
        mNumbers[kind].append(number);
    }

    QList<quint64> of(Kind kind) const { return mNumbers[kind]; }
    void set(Kind kind, const QList<quint64> &numbers) { mNumbers[kind] = numbers; }

    bool isEmpty() const
    {
        for (const QList<quint64> &numbers : mNumbers) {
            if (!numbers.isEmpty())
                return false;
        }
        return true;
    }

private:
    std::array<QList<quint64>, KindCount> mNumbers;
    std::array<QSet<quint64>, KindCount> mKnown;
};
