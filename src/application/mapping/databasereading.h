// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/lookup.h"
#include "application/mapping/databasestatement.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <functional>
#include <type_traits>

/**
 * Runs a bound statement and makes an answer of its rows.
 *
 * What cannot be read to the end is unread as a whole and has been logged with `failure`, and with the
 * subject if one is given.
 */
namespace DatabaseReading {

using TakeRow = std::function<void(const DatabaseStatement &row)>;

/** Hands each row to `takeRow`. False if not all could be read. */
[[nodiscard]] bool eachRow(DatabaseStatement &statement, const StatementFailure &failure,
    const TakeRow &takeRow, const QString &subject = QString());

/** The same with no more than the first row; the rest is not stepped through. */
[[nodiscard]] bool firstRow(DatabaseStatement &statement, const StatementFailure &failure,
    const TakeRow &takeRow, const QString &subject = QString());

/** What `valueOf` makes of the first row, or `missing` where there is none. */
template <typename T, typename ValueOf>
Lookup<T> value(DatabaseStatement &statement, const StatementFailure &failure, T missing, ValueOf valueOf,
    const QString &subject = QString())
{
    const auto take = [&missing, &valueOf](const DatabaseStatement &row) {
        missing = valueOf(row);
    };
    return firstRow(statement, failure, take, subject) ? Lookup<T>(missing) : Lookup<T>::unread();
}

/** What `itemOf` makes of each row. */
template <typename ItemOf>
auto items(DatabaseStatement &statement, const StatementFailure &failure, ItemOf itemOf,
    const QString &subject = QString())
{
    using Items = QList<std::invoke_result_t<ItemOf, const DatabaseStatement &>>;
    Items read;
    const auto take = [&read, &itemOf](const DatabaseStatement &row) {
        read.append(itemOf(row));
    };
    return eachRow(statement, failure, take, subject) ? Lookup<Items>(read) : Lookup<Items>::unread();
}

/** The first column of the first row; empty where there is none. */
Lookup<QString> text(DatabaseStatement &statement, const StatementFailure &failure);

/** The first column of each row. */
Lookup<QStringList> texts(DatabaseStatement &statement, const StatementFailure &failure);

/** Adds one of two columns by the other, which is `keyColumn`. False if not all rows could be read. */
[[nodiscard]] bool addToMap(DatabaseStatement &statement, int keyColumn, const StatementFailure &failure,
    QMap<QString, QString> *map);

/** The same with a map of its own. */
Lookup<QMap<QString, QString>> map(
    DatabaseStatement &statement, int keyColumn, const StatementFailure &failure);

} // namespace DatabaseReading
