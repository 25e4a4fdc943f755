// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/databasestatement.h"

#include "application/base/logging.h"
#include "application/mapping/preparedstatements.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlRecord>
#include <QVariant>

#include <algorithm>

namespace {

// Older libraries take no more values in a statement.
constexpr int MaxValuesOfStatement = 999;

} // namespace

DatabaseStatement::DatabaseStatement(const QSqlDatabase &database, const QString &sql)
    : mQuery(database)
{
    mQuery.setForwardOnly(true);
    mPrepared = mQuery.prepare(sql);
}

DatabaseStatement::DatabaseStatement(PreparedStatements &statements, const QString &sql)
    : mStatements(&statements)
    , mSql(sql)
    , mQuery(statements.take(sql))
{
    // A query that is null has no driver; one that was kept knows its text.
    mPrepared = !mQuery.lastQuery().isEmpty();
    if (mPrepared)
        return;
    mQuery = QSqlQuery(statements.database());
    mQuery.setForwardOnly(true);
    mPrepared = mQuery.prepare(sql);
}

DatabaseStatement::~DatabaseStatement()
{
    // One that has failed, or has values bound and never ran, is not worth the doubt.
    if (!mStatements || !mHasRun || mFailed)
        return;
    mQuery.finish();
    mStatements->keep(mSql, mQuery);
}

DatabaseStatement &DatabaseStatement::bind(const QVariant &value)
{
    mQuery.addBindValue(value);
    return *this;
}

DatabaseStatement &DatabaseStatement::bind(const QString &placeholder, const QVariant &value)
{
    mQuery.bindValue(placeholder, value);
    return *this;
}

DatabaseStatement &DatabaseStatement::bindColumn(const QVariantList &values)
{
    mColumns.append(values);
    return *this;
}

bool DatabaseStatement::run()
{
    mHasRun = true;
    mFailed = !mPrepared || !mQuery.exec();
    return !mFailed;
}

bool DatabaseStatement::runBatch()
{
    mHasRun = true;
    mFailed = true;
    if (!mPrepared)
        return false;
    // The driver reads past the end of a shorter column.
    const auto differs = [this](const QVariantList &column) {
        return column.size() != mColumns.constFirst().size();
    };
    if (std::any_of(mColumns.cbegin(), mColumns.cend(), differs)) {
        mRefusal = QStringLiteral("the columns of the batch differ in length");
        return false;
    }
    for (const QVariantList &column : qAsConst(mColumns))
        mQuery.addBindValue(column);
    mFailed = !mQuery.execBatch();
    return !mFailed;
}

bool DatabaseStatement::insertRows(PreparedStatements &statements, const QString &into, const QString &row,
    const QList<QVariantList> &columns, const StatementFailure &failure, EasAccountId accountId)
{
    const int count = columns.constFirst().size();
    const int rowsOfStatement = MaxValuesOfStatement / columns.size();
    for (int first = 0; first < count; first += rowsOfStatement) {
        const int end = qMin(count, first + rowsOfStatement);
        QStringList rows;
        for (int i = first; i < end; ++i)
            rows.append(row);
        DatabaseStatement insert(
            statements, into + QStringLiteral(" VALUES ") + rows.join(QStringLiteral(", ")));
        for (int i = first; i < end; ++i) {
            for (const QVariantList &column : columns)
                insert.bind(column.at(i));
        }
        if (!insert.run())
            return insert.fail(failure, accountId);
    }
    return true;
}

bool DatabaseStatement::next()
{
    const bool found = mQuery.next();
    mFailed = !found && mQuery.lastError().isValid();
    return found;
}

bool DatabaseStatement::failed() const
{
    return mFailed;
}

QVariant DatabaseStatement::value(int column) const
{
    return mQuery.value(column);
}

QString DatabaseStatement::text(int column) const
{
    return mQuery.value(column).toString();
}

std::optional<QVariant> DatabaseStatement::value(const char *column) const
{
    const int index = mQuery.record().indexOf(QLatin1String(column));
    return index < 0 ? std::nullopt : std::make_optional(mQuery.value(index));
}

QString DatabaseStatement::errorText() const
{
    if (!mRefusal.isEmpty())
        return mRefusal;
    const QString error = mQuery.lastError().text();
    return error.trimmed().isEmpty() ? QStringLiteral("the database is not open") : error;
}

bool DatabaseStatement::fail(const StatementFailure &failure) const
{
    qCCritical(eas()) << failureText(failure) << errorText();
    return false;
}

bool DatabaseStatement::fail(const StatementFailure &failure, EasAccountId accountId) const
{
    qCCritical(eas()) << failureText(failure) << accountId << ". Error:" << errorText();
    return false;
}

bool DatabaseStatement::fail(const StatementFailure &failure, const QString &eventId) const
{
    qCCritical(eas()) << failureText(failure) << eventId << ". Error:" << errorText();
    return false;
}

const char *DatabaseStatement::failureText(const StatementFailure &failure) const
{
    return mPrepared ? failure.execute : failure.prepare;
}
