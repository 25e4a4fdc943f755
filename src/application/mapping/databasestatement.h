// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "common/easaccountid.h"

#include <QSqlQuery>
#include <QString>
#include <QVariantList>

#include <optional>

class PreparedStatements;

/** What is logged when a statement fails; some statements tell a refused text from a failed run. */
struct StatementFailure
{
    StatementFailure(const char *both)
        : execute(both)
        , prepare(both)
    {
    }
    StatementFailure(const char *executeText, const char *prepareText)
        : execute(executeText)
        , prepare(prepareText)
    {
    }

    const char *execute;
    const char *prepare;
};

/**
 * One prepared SQL statement: bind values, or columns of values for a batch, run it, read its rows.
 *
 *     return statement.run() || statement.fail("can't delete items for account", accountId);
 *
 * Lives no longer than the operation that runs it, since an open statement keeps the file locked. The thread
 * of the connection only.
 */
class DatabaseStatement
{
public:
    /** Prepared anew, for statements that run once. */
    DatabaseStatement(const QSqlDatabase &database, const QString &sql);
    /** Prepared once a connection; kept for the next one of the same text. */
    DatabaseStatement(PreparedStatements &statements, const QString &sql);
    ~DatabaseStatement();
    Q_DISABLE_COPY(DatabaseStatement)

    DatabaseStatement &bind(const QVariant &value);
    DatabaseStatement &bind(const QString &placeholder, const QVariant &value);
    /** One column of a batch. A batch whose columns differ in length is refused. */
    DatabaseStatement &bindColumn(const QVariantList &values);

    bool run();
    /** Runs the statement once for each row of the bound columns; what ran before a failure stays. */
    bool runBatch();

    /**
     * Inserts rows, given by their columns, in as few statements as possible, each of which is all or
     * nothing: `into` is "INSERT INTO table", `row` is "(NULL, ?, ?)" with a place for each column.
     */
    static bool insertRows(PreparedStatements &statements, const QString &into, const QString &row,
        const QList<QVariantList> &columns, const StatementFailure &failure, EasAccountId accountId);

    /** Steps to the next row. False at the end of the rows, and on an error: failed() tells them apart. */
    bool next();
    bool failed() const;
    QVariant value(int column) const;
    QString text(int column) const;
    /** By the column's name; nothing where the statement does not ask for that column. */
    std::optional<QVariant> value(const char *column) const;
    QString errorText() const;

    /** Logs the failure, its subject if it has one, and the database's error. Returns false. */
    bool fail(const StatementFailure &failure) const;
    bool fail(const StatementFailure &failure, EasAccountId accountId) const;
    bool fail(const StatementFailure &failure, const QString &eventId) const;

    /** Which of the two texts tells what has failed. */
    const char *failureText(const StatementFailure &failure) const;

private:
    PreparedStatements *mStatements = nullptr;
    QString mSql;
    QSqlQuery mQuery;
    QList<QVariantList> mColumns;
    QString mRefusal;
    bool mPrepared;
    bool mHasRun = false;
    bool mFailed = false;
};
