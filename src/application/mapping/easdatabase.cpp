// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/easdatabase.h"

#include "application/base/clock.h"
#include "application/base/logging.h"
#include "application/mapping/databasereading.h"
#include "application/mapping/databasestatement.h"

#include <QCoreApplication>
#include <QDir>
#include <QSqlError>

namespace {

const char ConnectionName[] = "fennel-eas-db";
const char DefaultPath[] = ".local/share/system/privileged/eas-fennel/";
const char DefaultName[] = "fennel_eas.db";
constexpr uint ReleaseTimeout = 60000;

EasDatabase *easDatabaseInstance = nullptr;

} // namespace

bool EasDatabase::TestMode = false;

void EasDatabase::initTestMode()
{
    TestMode = true;
}

void EasDatabase::initializeInstance(QObject *parent, const char *path, const char *name)
{
    if (easDatabaseInstance) {
        qCCritical(eas()) << "easDatabaseInstance is already initialized";
        return;
    }
    easDatabaseInstance = new EasDatabase(parent);
    easDatabaseInstance->init(path, name);
}

EasDatabase *EasDatabase::instance()
{
    if (!easDatabaseInstance)
        initializeInstance(QCoreApplication::instance(), nullptr, nullptr);
    easDatabaseInstance->startDataBaseTimer(ReleaseTimeout);
    return easDatabaseInstance;
}

void EasDatabase::releaseInstance()
{
    if (!easDatabaseInstance)
        return;
    qCInfo(eas()) << "Release EAS data base";
    delete easDatabaseInstance;
}

EasDatabase::EasDatabase(QObject *parent)
    : QObject(parent)
{
    mReleaseTimer.setSingleShot(true);
    connect(&mReleaseTimer, &QTimer::timeout, this, &EasDatabase::onReleaseDatabaseTimer);
}

EasDatabase::~EasDatabase()
{
    // The application object may destroy the instance as its child; nobody may find it afterwards.
    if (easDatabaseInstance == this)
        easDatabaseInstance = nullptr;
    // No handle may be alive when the connection is removed.
    mDatabase.close();
    mDatabase = QSqlDatabase();
    QSqlDatabase::removeDatabase(QLatin1String(ConnectionName));
}

void EasDatabase::init(const char *path, const char *name)
{
    initializeDB(path ? path : DefaultPath, name ? name : DefaultName);
}

void EasDatabase::initializeDB(const char *path, const char *name)
{
    qCInfo(eas()) << "Initialize EAS data base";
    initializeDbConnection(path, name);
    if (!mDatabase.isValid()) {
        qCCritical(eas()) << "invalid Eas Database connection";
        return;
    }
    prepareTables();
}

void EasDatabase::prepareTables()
{
    // First of all: what a step asks may ask for the instance in its turn.
    mTablesMissing = false;
    if (upgradeDb())
        mTablesMissing = !createTables();
    else
        qCCritical(eas()) << "failed to migrate existing DB to the latest DB version";
}

void EasDatabase::initializeDbConnection(const char *path, const char *name)
{
    mDatabase = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QLatin1String(ConnectionName));
    mFolder = QDir::homePath() + QDir::separator() + QString::fromUtf8(path);
    mFile = QDir::toNativeSeparators(QDir(mFolder).filePath(QString::fromUtf8(name)));
    if (nameFile() && !mDatabase.open())
        qCCritical(eas()) << "can't open EAS Database. Error:" << mDatabase.lastError().text();
}

bool EasDatabase::nameFile()
{
    if (!QDir().mkpath(mFolder)) {
        qCCritical(eas()) << "can't create path:" << mFolder;
        return false;
    }
    qCInfo(eas()) << "EAS DB:" << mFile;
    mDatabase.setDatabaseName(mFile);
    return true;
}

bool EasDatabase::openDbConnection()
{
    if (mDatabase.isOpen())
        return true;
    // Without a name the driver would open a temporary file of its own and lose what it is given.
    const bool isNamed = !mDatabase.databaseName().isEmpty() || nameFile();
    return isNamed && mDatabase.open();
}

void EasDatabase::startDataBaseTimer(uint milliseconds)
{
    // What hindered the start, a full disk for one, may be over.
    if (!openDbConnection())
        qCCritical(eas()) << "failed to open DB connection";
    else if (mTablesMissing)
        prepareTables();
    mReleaseTimer.start(Clock::instance().timerInterval(int(milliseconds), Clock::Timer::DatabaseRelease));
}

void EasDatabase::onReleaseDatabaseTimer()
{
    mDatabase.close();
    qCInfo(eas()) << "database is released";
}

bool EasDatabase::lookupFailed() const
{
    return DatabaseReading::latestFailed();
}

bool EasDatabase::deleteItems(
    const char *table, EasAccountId accountId, const QStringList &serverIds, const StatementFailure &failure)
{
    if (serverIds.isEmpty())
        return true;
    DatabaseStatement statement(mDatabase,
        QStringLiteral("DELETE FROM %1 WHERE server_id=? AND account_id=%2")
            .arg(QLatin1String(table))
            .arg(accountId));
    statement.bindColumn(QVariant(serverIds).toList());
    return statement.runBatch() || statement.fail(failure, accountId);
}

bool EasDatabase::clearFolder(EasAccountId accountId, const QString &collectionId, const char *table,
    const char *collectionColumn, const char *accountColumn)
{
    DatabaseStatement statement(mDatabase,
        QStringLiteral("DELETE FROM %1 WHERE %2=? AND %3=%4")
            .arg(QLatin1String(table), QLatin1String(collectionColumn), QLatin1String(accountColumn))
            .arg(accountId));
    if (statement.bind(collectionId).run())
        return true;
    qCCritical(eas()) << "can't delete items for account" << accountId << "in folder" << collectionId
                      << ", table" << table << ". Error:" << statement.errorText();
    return false;
}
