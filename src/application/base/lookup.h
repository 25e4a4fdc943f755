// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <optional>
#include <type_traits>
#include <utility>

/**
 * The answer of a reading operation of the mapping: a value, or "unread" where the database could not be
 * read.
 *
 *     const Lookup<QMap<QString, QString>> folders = database->serverToLocalFolderIds(accountId);
 *     if (!folders)
 *         return false;
 *     const QString localId = folders->value(serverId);
 *
 * A row that is not there is a value: the empty one that the operation tells. Unread says nothing about the
 * rows, so that no caller may go on as if there were none: it ends its work with an error. The database has
 * logged why.
 *
 * A plain value of any thread.
 */
template <typename T> class [[nodiscard]] Lookup
{
    static_assert(!std::is_same_v<T, bool>, "the test of a truth would be taken for the truth: Existence");

public:
    Lookup(T value)
        : mValue(std::move(value))
    {
    }

    static Lookup unread() { return Lookup(); }

    /** True if the database was read. */
    explicit operator bool() const { return mValue.has_value(); }

    /** The value; only where the database was read. */
    const T &operator*() const & { return *mValue; }
    T operator*() && { return *std::move(mValue); }
    const T *operator->() const { return &*mValue; }

    /** For a log line, or where the fallback harms nothing: work must not go on under it. */
    T valueOr(T fallback) const { return mValue.value_or(std::move(fallback)); }

private:
    Lookup() = default;

    std::optional<T> mValue;
};

/** Whether a row is there. */
enum class Existence { Missing, Present };
