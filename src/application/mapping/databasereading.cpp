// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/databasereading.h"

namespace {

/** False after an error, which is logged. */
bool complete(const DatabaseStatement &statement, const StatementFailure &failure, const QString &subject)
{
    if (!statement.failed())
        return true;
    return subject.isNull() ? statement.fail(failure) : statement.fail(failure, subject);
}

} // namespace

bool DatabaseReading::eachRow(DatabaseStatement &statement, const StatementFailure &failure,
    const TakeRow &takeRow, const QString &subject)
{
    bool found = statement.run() && statement.next();
    while (found) {
        takeRow(statement);
        found = statement.next();
    }
    return complete(statement, failure, subject);
}

bool DatabaseReading::firstRow(DatabaseStatement &statement, const StatementFailure &failure,
    const TakeRow &takeRow, const QString &subject)
{
    if (statement.run() && statement.next())
        takeRow(statement);
    return complete(statement, failure, subject);
}

Lookup<QString> DatabaseReading::text(DatabaseStatement &statement, const StatementFailure &failure)
{
    return value(statement, failure, QString(), [](const DatabaseStatement &row) { return row.text(0); });
}

Lookup<QStringList> DatabaseReading::texts(DatabaseStatement &statement, const StatementFailure &failure)
{
    QStringList read;
    const auto take = [&read](const DatabaseStatement &row) {
        read.append(row.text(0));
    };
    return eachRow(statement, failure, take) ? Lookup<QStringList>(read) : Lookup<QStringList>::unread();
}

bool DatabaseReading::addToMap(
    DatabaseStatement &statement, int keyColumn, const StatementFailure &failure, QMap<QString, QString> *map)
{
    return eachRow(statement, failure, [map, keyColumn](const DatabaseStatement &row) {
        map->insert(row.text(keyColumn), row.text(1 - keyColumn));
    });
}

Lookup<QMap<QString, QString>> DatabaseReading::map(
    DatabaseStatement &statement, int keyColumn, const StatementFailure &failure)
{
    using Map = QMap<QString, QString>;
    Map read;
    return addToMap(statement, keyColumn, failure, &read) ? Lookup<Map>(read) : Lookup<Map>::unread();
}
