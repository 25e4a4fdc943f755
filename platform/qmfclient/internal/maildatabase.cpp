// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/maildatabase.h"

#include <QDebug>
#include <QDir>
#include <QSqlError>
#include <QUuid>

namespace {

const int schemaVersion = 1;
const int maxStatements = 128;

const char *const schema[] = {
    "CREATE TABLE accounts (id INTEGER PRIMARY KEY, own INTEGER NOT NULL, name TEXT, sender TEXT, type "
    "INTEGER,"
    " policy INTEGER, status INTEGER)",
    "CREATE TABLE account_fields (owner INTEGER NOT NULL, name TEXT NOT NULL, value TEXT,"
    " PRIMARY KEY (owner, name)) WITHOUT ROWID",
    "CREATE TABLE standard_folders (account INTEGER NOT NULL, kind INTEGER NOT NULL, folder INTEGER NOT NULL,"
    " PRIMARY KEY (account, kind)) WITHOUT ROWID",

    // AUTOINCREMENT: the number of something removed never comes back.
    "CREATE TABLE folders (id INTEGER PRIMARY KEY AUTOINCREMENT, path TEXT NOT NULL, display_name TEXT,"
    " parent INTEGER NOT NULL, account INTEGER NOT NULL, status INTEGER NOT NULL)",
    "CREATE INDEX folders_by_parent ON folders (parent)",
    "CREATE INDEX folders_by_account ON folders (account)",
    "CREATE TABLE folder_fields (owner INTEGER NOT NULL, name TEXT NOT NULL, value TEXT,"
    " PRIMARY KEY (owner, name)) WITHOUT ROWID",
    "INSERT INTO folders (id, path, parent, account, status) VALUES (1, 'Local Storage', 0, 0, 0)",

    "CREATE TABLE messages (id INTEGER PRIMARY KEY AUTOINCREMENT, type INTEGER NOT NULL, account INTEGER NOT "
    "NULL,"
    " folder INTEGER NOT NULL, previous_folder INTEGER NOT NULL, restore_folder INTEGER NOT NULL, thread "
    "INTEGER,"
    " in_response_to INTEGER NOT NULL, response_type INTEGER NOT NULL, content_type INTEGER NOT NULL,"
    " server_uid TEXT NOT NULL, sender TEXT, recipients TEXT, subject TEXT, date INTEGER, received INTEGER,"
    " size INTEGER NOT NULL, content_size INTEGER NOT NULL, preview TEXT, status INTEGER NOT NULL,"
    " content INTEGER)",
    "CREATE UNIQUE INDEX messages_by_uid ON messages (account, server_uid) WHERE server_uid <> ''",
    "CREATE INDEX messages_by_uid_alone ON messages (server_uid)",
    "CREATE INDEX messages_by_account ON messages (account, status)",
    "CREATE INDEX messages_by_folder ON messages (folder, status)",
    "CREATE INDEX messages_moved ON messages (previous_folder) WHERE previous_folder <> 0",
    "CREATE INDEX messages_by_date ON messages (date)",
    "CREATE TABLE message_fields (owner INTEGER NOT NULL, name TEXT NOT NULL, value TEXT,"
    " PRIMARY KEY (owner, name)) WITHOUT ROWID",
    "CREATE INDEX message_fields_by_name ON message_fields (name, value)",
    "CREATE TABLE contents (id INTEGER PRIMARY KEY AUTOINCREMENT, format INTEGER NOT NULL, data BLOB NOT "
    "NULL)",

    "CREATE TABLE removal_records (account INTEGER NOT NULL, folder INTEGER NOT NULL, server_uid TEXT NOT "
    "NULL)",
    "CREATE INDEX removal_records_by_account ON removal_records (account, server_uid)",
    "CREATE TABLE status_flags (kind TEXT NOT NULL, name TEXT NOT NULL, bit INTEGER NOT NULL,"
    " PRIMARY KEY (kind, name), UNIQUE (kind, bit)) WITHOUT ROWID",
};

} // namespace

MailDatabase::MailDatabase()
    : mConnectionName(QLatin1String("mailstore-") + QUuid::createUuid().toString(QUuid::WithoutBraces))
{
}

MailDatabase::~MailDatabase()
{
    mStatements.clear();
    mDatabase.close();
    mDatabase = QSqlDatabase();
    QSqlDatabase::removeDatabase(mConnectionName);
}

bool MailDatabase::open(const QString &folder)
{
    if (!QDir().mkpath(folder)) {
        qWarning() << "cannot create the folder of the mail store" << folder;
        return false;
    }
    mDatabase = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), mConnectionName);
    mDatabase.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=30000"));
    mDatabase.setDatabaseName(folder + QLatin1String("/mailstore.db"));
    if (!mDatabase.open()) {
        qWarning() << "cannot open the mail store in" << folder << mDatabase.lastError().text();
        return false;
    }
    // One sync to disk a transaction: what a caller was told is stored also outlives a power cut.
    mOpen = run(QStringLiteral("PRAGMA journal_mode = WAL"))
        && run(QStringLiteral("PRAGMA synchronous = FULL")) && createSchema();
    if (!mOpen)
        mDatabase.close();
    return mOpen;
}

bool MailDatabase::createSchema()
{
    mOpen = true; // As far as transactions need it.
    const QString versionQuery = QStringLiteral("PRAGMA user_version");
    if (value(versionQuery).toInt() == schemaVersion)
        return true;
    Transaction transaction(*this);
    if (!transaction.isActive())
        return false;
    // Another process may have been quicker.
    const int version = value(versionQuery).toInt();
    if (version == schemaVersion)
        return true;
    if (version != 0) {
        qWarning() << "the mail store has version" << version << "but this library knows" << schemaVersion;
        return false;
    }
    for (const char *statement : schema) {
        if (!run(QLatin1String(statement)))
            return false;
    }
    return run(QStringLiteral("PRAGMA user_version = %1").arg(schemaVersion)) && transaction.commit();
}

bool MailDatabase::execute(const QString &sql, const QVariantList &values, QSqlQuery *&query)
{
    mLastError = QMailStore::StorageInaccessible;
    if (!mDatabase.isOpen())
        return false;
    mLastError = QMailStore::NoError;
    auto found = mStatements.find(sql);
    if (found == mStatements.end()) {
        if (mStatements.size() >= maxStatements)
            mStatements.clear();
        QSqlQuery prepared(mDatabase);
        prepared.setForwardOnly(true);
        if (!prepared.prepare(sql)) {
            noteError(prepared);
            return false;
        }
        found = mStatements.insert(sql, prepared);
    }
    query = &found.value();
    for (int i = 0; i < values.size(); ++i) {
        // The driver knows no unsigned 64-bit numbers and would bind a text.
        const bool isUnsigned = values.at(i).type() == QVariant::ULongLong;
        query->bindValue(i, isUnsigned ? QVariant(values.at(i).toLongLong()) : values.at(i));
    }
    if (query->exec())
        return true;
    noteError(*query);
    query->finish();
    return false;
}

bool MailDatabase::run(const QString &sql, const QVariantList &values)
{
    QSqlQuery *query = nullptr;
    if (!execute(sql, values, query))
        return false;
    mLastInsertId = query->lastInsertId().toULongLong();
    mChangedRows = query->numRowsAffected();
    query->finish();
    return true;
}

bool MailDatabase::select(const QString &sql, const QVariantList &values, const RowHandler &row)
{
    QSqlQuery *query = nullptr;
    if (!execute(sql, values, query))
        return false;
    // The handler may ask the database too, so the statement leaves the cache while it is in use.
    QSqlQuery own = *query;
    mStatements.remove(sql);
    while (own.next())
        row(own);
    own.finish();
    mStatements.insert(sql, own);
    return true;
}

QList<quint64> MailDatabase::numbers(const QString &sql, const QVariantList &values)
{
    QList<quint64> list;
    select(sql, values, [&list](const QSqlQuery &row) { list.append(row.value(0).toULongLong()); });
    return list;
}

QVariant MailDatabase::value(const QString &sql, const QVariantList &values)
{
    QVariant result;
    select(sql, values, [&result](const QSqlQuery &row) {
        if (!result.isValid())
            result = row.value(0);
    });
    return result;
}

void MailDatabase::noteError(const QSqlQuery &query)
{
    const int constraint = 19;
    const int code = query.lastError().nativeErrorCode().toInt() & 0xff;
    mLastError = code == constraint ? QMailStore::ConstraintFailure : QMailStore::StorageInaccessible;
    if (code != constraint)
        qWarning() << "mail store:" << query.lastError().text() << "in" << query.lastQuery();
}

MailDatabase::Transaction::Transaction(MailDatabase &database)
    : mDatabase(database)
    , mActive(database.isOpen() && database.run(QStringLiteral("BEGIN IMMEDIATE")))
{
    if (!mActive)
        mDatabase.setLastError(QMailStore::StorageInaccessible);
}

MailDatabase::Transaction::~Transaction()
{
    if (!mActive)
        return;
    const QMailStore::ErrorCode cause = mDatabase.lastError();
    mDatabase.run(QStringLiteral("ROLLBACK"));
    mDatabase.setLastError(cause);
}

bool MailDatabase::Transaction::commit()
{
    if (mActive && mDatabase.run(QStringLiteral("COMMIT")))
        mActive = false;
    return !mActive;
}
