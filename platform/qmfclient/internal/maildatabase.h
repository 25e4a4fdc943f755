// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailstore.h>

#include <QHash>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariantList>

#include <functional>

/**
 * The SQLite database below the mail store. Several processes share it: readers never wait for a writer, and
 * writers wait for each other.
 */
class MailDatabase
{
public:
    typedef std::function<void(const QSqlQuery &)> RowHandler;

    MailDatabase();
    ~MailDatabase();
    MailDatabase(const MailDatabase &) = delete;
    MailDatabase &operator=(const MailDatabase &) = delete;

    bool open(const QString &folder);
    bool isOpen() const { return mOpen; }

    bool run(const QString &sql, const QVariantList &values = {});
    bool select(const QString &sql, const QVariantList &values, const RowHandler &row);
    /** The first column of all rows. */
    QList<quint64> numbers(const QString &sql, const QVariantList &values = {});
    /** The first column of the first row, invalid without one. */
    QVariant value(const QString &sql, const QVariantList &values = {});
    quint64 lastInsertId() const { return mLastInsertId; }
    int changedRows() const { return mChangedRows; }

    QMailStore::ErrorCode lastError() const { return mLastError; }
    void setLastError(QMailStore::ErrorCode error) { mLastError = error; }

    /** Takes the write lock at once; rolls back unless commit() was called and succeeded. */
    class Transaction
    {
    public:
        explicit Transaction(MailDatabase &database);
        ~Transaction();
        Transaction(const Transaction &) = delete;
        Transaction &operator=(const Transaction &) = delete;
        bool isActive() const { return mActive; }
        bool commit();

    private:
        MailDatabase &mDatabase;
        bool mActive;
    };

private:
    bool createSchema();
    bool execute(const QString &sql, const QVariantList &values, QSqlQuery *&query);
    void noteError(const QSqlQuery &query);

    const QString mConnectionName;
    QSqlDatabase mDatabase;
    QHash<QString, QSqlQuery> mStatements;
    quint64 mLastInsertId = 0;
    int mChangedRows = 0;
    QMailStore::ErrorCode mLastError = QMailStore::NoError;
    bool mOpen = false;
};
