// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/sqlitedatabase.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QUuid>

#include <algorithm>

namespace {

const int maxStatements = 128;

constexpr QFile::Permissions ownFile = QFile::ReadOwner | QFile::WriteOwner;
constexpr QFile::Permissions ownFolder = ownFile | QFile::ExeOwner;

/** What is another user's stays as that user has it. */
void restrictFolder(const QString &folder)
{
    // One that all may write to is shared on purpose.
    if (!(QFile::permissions(folder) & QFile::WriteOther))
        QFile::setPermissions(folder, ownFolder);
}

/** With what SQLite keeps beside the file, which takes over its permissions when it is made. */
void restrictFile(const QString &file)
{
    for (const char *suffix : { "", "-wal", "-shm" })
        QFile::setPermissions(file + QLatin1String(suffix), ownFile);
}

} // namespace

SqliteDatabase::SqliteDatabase(const QString &name)
    : mName(name)
    , mConnectionName(name + QLatin1Char('-') + QUuid::createUuid().toString(QUuid::WithoutBraces))
{
}

SqliteDatabase::~SqliteDatabase()
{
    mStatements.clear();
    mDatabase.close();
    mDatabase = QSqlDatabase();
    QSqlDatabase::removeDatabase(mConnectionName);
}

bool SqliteDatabase::open(const QString &fileName, const Schema &schema)
{
    const QString folder = QFileInfo(fileName).path();
    if (!QDir().mkpath(folder)) {
        qWarning().noquote() << mName << "cannot create the folder" << folder;
        return false;
    }
    mDatabase = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), mConnectionName);
    mDatabase.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=30000"));
    mDatabase.setDatabaseName(fileName);
    restrictFolder(folder);
    if (!mDatabase.open()) {
        qWarning().noquote() << mName << "cannot open" << fileName << mDatabase.lastError().text();
        return false;
    }
    restrictFile(fileName);
    // One sync to disk a transaction: what a caller was told is stored also outlives a power cut.
    mOpen = run(QStringLiteral("PRAGMA journal_mode = WAL"))
        && run(QStringLiteral("PRAGMA synchronous = FULL"))
        // A long body has the log grow once; it need not stay that long.
        && run(QStringLiteral("PRAGMA journal_size_limit = 4194304")) && createSchema(schema)
        && createAdditions(schema);
    if (!mOpen)
        mDatabase.close();
    return mOpen;
}

bool SqliteDatabase::createSchema(const Schema &schema)
{
    mOpen = true; // As far as transactions need it.
    const QString versionQuery = QStringLiteral("PRAGMA user_version");
    if (value(versionQuery).value_or(QVariant()).toInt() == schema.version)
        return true;
    Transaction transaction(*this);
    if (!transaction.isActive())
        return false;
    // Another process may have been quicker.
    const std::optional<QVariant> stored = value(versionQuery);
    if (!stored)
        return false;
    const int version = stored->toInt();
    if (version == schema.version)
        return true;
    if (version != 0) {
        qWarning().noquote() << mName << "has version" << version << "but this library knows"
                             << schema.version;
        return false;
    }
    for (const char *statement : schema.statements) {
        if (!run(QLatin1String(statement)))
            return false;
    }
    return run(QStringLiteral("PRAGMA user_version = %1").arg(schema.version)) && transaction.commit();
}

bool SqliteDatabase::createAdditions(const Schema &schema)
{
    return std::all_of(schema.additions.cbegin(), schema.additions.cend(),
        [this](const char *statement) { return run(QLatin1String(statement)); });
}

bool SqliteDatabase::execute(const QString &sql, const QVariantList &values, QSqlQuery *&query)
{
    if (!mDatabase.isOpen()) {
        noteFailure();
        return false;
    }
    auto found = mStatements.find(sql);
    if (found == mStatements.end()) {
        if (mStatements.size() >= maxStatements)
            mStatements.clear();
        QSqlQuery prepared(mDatabase);
        prepared.setForwardOnly(true);
        if (!prepared.prepare(sql))
            return fail(prepared);
        found = mStatements.insert(sql, prepared);
    }
    query = &found.value();
    for (int i = 0; i < values.size(); ++i) {
        // The driver knows no unsigned 64-bit numbers and would bind a text.
        const bool isUnsigned = values.at(i).type() == QVariant::ULongLong;
        query->bindValue(i, isUnsigned ? QVariant(values.at(i).toLongLong()) : values.at(i));
    }
    if (!query->exec()) {
        fail(*query);
        query->finish();
        return false;
    }
    noteResult(Succeeded);
    return true;
}

bool SqliteDatabase::run(const QString &sql, const QVariantList &values)
{
    QSqlQuery *query = nullptr;
    if (!execute(sql, values, query))
        return false;
    mLastInsertId = query->lastInsertId().toULongLong();
    mChangedRows = query->numRowsAffected();
    query->finish();
    return true;
}

bool SqliteDatabase::select(const QString &sql, const QVariantList &values, const RowHandler &row)
{
    QSqlQuery *query = nullptr;
    if (!execute(sql, values, query))
        return false;
    // The handler may ask the database too, so the statement leaves the cache while it is in use.
    QSqlQuery own = *query;
    mStatements.remove(sql);
    while (own.next())
        row(own);
    // Rows that could not be read are not rows that are not there.
    const bool complete = !own.lastError().isValid() || fail(own);
    own.finish();
    mStatements.insert(sql, own);
    return complete;
}

QList<quint64> SqliteDatabase::numbers(const QString &sql, const QVariantList &values)
{
    QList<quint64> list;
    select(sql, values, [&list](const QSqlQuery &row) { list.append(row.value(0).toULongLong()); });
    return list;
}

std::optional<QVariant> SqliteDatabase::value(const QString &sql, const QVariantList &values)
{
    QVariant result;
    const bool isRead = select(sql, values, [&result](const QSqlQuery &row) {
        if (!result.isValid())
            result = row.value(0);
    });
    return isRead ? std::make_optional(result) : std::nullopt;
}

void SqliteDatabase::noteResult(Result) {}

bool SqliteDatabase::fail(const QSqlQuery &query)
{
    const int constraint = 19;
    const int code = query.lastError().nativeErrorCode().toInt() & 0xff;
    if (code == constraint) {
        noteResult(ConstraintFailed);
        return false;
    }
    qWarning().noquote() << mName << query.lastError().text() << "in" << query.lastQuery();
    noteFailure();
    return false;
}

void SqliteDatabase::noteFailure()
{
    mHasFailed = true;
    noteResult(Failed);
}

void SqliteDatabase::rollBack()
{
    QSqlQuery statement(mDatabase);
    if (!statement.exec(QStringLiteral("ROLLBACK")))
        qWarning().noquote() << mName << statement.lastError().text() << "in ROLLBACK";
}

SqliteDatabase::Transaction::Transaction(SqliteDatabase &database)
    : mDatabase(database)
    , mActive(database.isOpen() && database.run(QStringLiteral("BEGIN IMMEDIATE")))
{
    mDatabase.mHasFailed = false;
    if (!mActive)
        mDatabase.noteFailure();
}

SqliteDatabase::Transaction::~Transaction()
{
    if (mActive)
        mDatabase.rollBack();
}

bool SqliteDatabase::Transaction::commit()
{
    if (mDatabase.mHasFailed)
        mDatabase.noteResult(Failed);
    else if (mActive && mDatabase.run(QStringLiteral("COMMIT")))
        mActive = false;
    return !mActive;
}
