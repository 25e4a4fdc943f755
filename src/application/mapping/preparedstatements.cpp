// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/preparedstatements.h"

namespace {

/** The engine has fewer for one account; the texts bear the account's number. */
constexpr int MostKept = 256;

} // namespace

PreparedStatements::PreparedStatements(const QSqlDatabase &database)
    : mDatabase(database)
{
}

void PreparedStatements::keep(const QString &sql, const QSqlQuery &query)
{
    if (mKept.size() >= MostKept)
        mKept.clear();
    mKept.insert(sql, query);
}
