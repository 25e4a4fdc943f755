// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

#include <cstddef>

/**
 * What the statuses of a reply mean, one row a status: what the log says, and what is to be done, as a verb.
 *
 * There is one such table for each thing that has statuses of its own (a request, a phase of a sync, a
 * collection, an item), and each has an enumeration of its verbs. The rows are constants beside the class
 * that acts on them:
 *
 *     using ItemTable = StatusTable<ItemVerb>;
 *     constexpr ItemTable::Row rows[] = {
 *         { Eas::SyncStatusObjectNotFound, QtWarningMsg, "object not found: %1", ItemVerb::Fail },
 *     };
 *     constexpr ItemTable table(rows);
 *     static_assert(table.namesEachStatusOnce());
 *
 * A table is a view of its rows, which must outlive it.
 */
template <typename Verb> class StatusTable
{
public:
    struct Row
    {
        int status;
        QtMsgType level;
        /** Null where there is nothing to say; %1 stands for what the row is about. */
        const char *text;
        Verb verb;
    };

    constexpr StatusTable() = default;
    template <std::size_t Count>
    constexpr explicit StatusTable(const Row (&rows)[Count])
        : mRows(rows)
        , mCount(Count)
    {
    }

    constexpr const Row *begin() const { return mRows; }
    constexpr const Row *end() const { return mRows + mCount; }

    /** Null if no row names the status. */
    constexpr const Row *find(int status) const
    {
        for (const Row &row : *this) {
            if (row.status == status)
                return &row;
        }
        return nullptr;
    }

    constexpr bool namesEachStatusOnce() const
    {
        for (const Row &row : *this) {
            if (find(row.status) != &row)
                return false;
        }
        return true;
    }

private:
    const Row *mRows = nullptr;
    std::size_t mCount = 0;
};

/** Writes the text of a row, about what `subject` names; nothing for a null text. */
void logStatusText(QtMsgType level, const char *text, const QString &subject = {});
