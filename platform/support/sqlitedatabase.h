// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QHash>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariantList>
#include <QVector>

#include <functional>
#include <optional>

/**
 * A SQLite database that several processes share: readers never wait for a writer, and writers wait for each
 * other. Statements are prepared once.
 */
class SqliteDatabase
{
public:
    typedef std::function<void(const QSqlQuery &)> RowHandler;

    enum Result { Succeeded, ConstraintFailed, Failed };

    /** How the database is made; the version stands in the file. */
    struct Schema
    {
        int version;
        QVector<const char *> statements;
        /** What came later, if it does not exist; it is made in files of before as well. */
        QVector<const char *> additions = {};
    };

    /** name: of the store, for its connections and log lines. */
    explicit SqliteDatabase(const QString &name);
    virtual ~SqliteDatabase();
    SqliteDatabase(const SqliteDatabase &) = delete;
    SqliteDatabase &operator=(const SqliteDatabase &) = delete;

    /**
     * Opens the file, in a folder that is made if it is missing, and creates the schema in a new one. File
     * and folder are the user's alone, those that exist already as well.
     */
    bool open(const QString &fileName, const Schema &schema);
    bool isOpen() const { return mOpen; }

    bool run(const QString &sql, const QVariantList &values = {});
    bool select(const QString &sql, const QVariantList &values, const RowHandler &row);
    /** The first column of all rows. */
    QList<quint64> numbers(const QString &sql, const QVariantList &values = {});
    /** The first column of the first row, invalid without one; nothing if it could not be read. */
    [[nodiscard]] std::optional<QVariant> value(const QString &sql, const QVariantList &values = {});
    /** Whether there is a row; false, too, if that could not be read. */
    bool has(const QString &sql, const QVariantList &values)
    {
        return value(sql, values).value_or(QVariant()).isValid();
    }
    quint64 lastInsertId() const { return mLastInsertId; }
    int changedRows() const { return mChangedRows; }

    /** Takes the write lock at once; rolls back unless commit() was called and succeeded. A statement that
     * could not be carried out, a question too, has it fail: what was written after it rests on rows that
     * were not read. */
    class Transaction
    {
    public:
        explicit Transaction(SqliteDatabase &database);
        ~Transaction();
        Transaction(const Transaction &) = delete;
        Transaction &operator=(const Transaction &) = delete;
        bool isActive() const { return mActive; }
        bool commit();

    private:
        SqliteDatabase &mDatabase;
        bool mActive;
    };

protected:
    /** Called with the result of each statement but a rollback, which leaves its cause to be seen. */
    virtual void noteResult(Result result);

private:
    bool createSchema(const Schema &schema);
    bool createAdditions(const Schema &schema);
    bool execute(const QString &sql, const QVariantList &values, QSqlQuery *&query);
    bool fail(const QSqlQuery &query);
    void noteFailure();
    void rollBack();

    const QString mName;
    const QString mConnectionName;
    QSqlDatabase mDatabase;
    QHash<QString, QSqlQuery> mStatements;
    quint64 mLastInsertId = 0;
    int mChangedRows = 0;
    bool mOpen = false;
    /** A statement has failed since the last transaction began. */
    bool mHasFailed = false;
};
