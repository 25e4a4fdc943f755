// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/databaseconnection.h"

#include "application/base/logging.h"

#include <QDir>
#include <QFile>
#include <QSqlError>

namespace {

const char ConnectionName[] = "fennel-eas-db";

constexpr QFile::Permissions OwnFile = QFile::ReadOwner | QFile::WriteOwner;
constexpr QFile::Permissions OwnFolder = OwnFile | QFile::ExeOwner;

void restrict(const QString &path, QFile::Permissions permissions)
{
    if (!QFile::setPermissions(path, permissions))
        qCWarning(eas()) << "cannot keep others from reading" << path;
}

} // namespace

DatabaseConnection::~DatabaseConnection()
{
    // No handle may be alive when the connection is removed.
    close();
    mDatabase = QSqlDatabase();
    QSqlDatabase::removeDatabase(QLatin1String(ConnectionName));
}

void DatabaseConnection::initialize(const QString &path, const QString &name)
{
    mDatabase = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QLatin1String(ConnectionName));
    mFolder = QDir::homePath() + QDir::separator() + path;
    mFile = QDir::toNativeSeparators(QDir(mFolder).filePath(name));
    if (nameFile() && !openFile())
        qCCritical(eas()) << "can't open EAS Database. Error:" << mDatabase.lastError().text();
}

bool DatabaseConnection::open()
{
    if (mDatabase.isOpen())
        return true;
    mStatements.clear();
    // Without a name the driver would open a temporary file of its own and lose what it is given.
    const bool isNamed = !mDatabase.databaseName().isEmpty() || nameFile();
    return isNamed && openFile();
}

void DatabaseConnection::close()
{
    mStatements.clear();
    mDatabase.close();
}

bool DatabaseConnection::nameFile()
{
    if (!QDir().mkpath(mFolder)) {
        qCCritical(eas()) << "can't create path:" << mFolder;
        return false;
    }
    restrict(mFolder, OwnFolder);
    qCInfo(eas()) << "EAS DB:" << mFile;
    mDatabase.setDatabaseName(mFile);
    return true;
}

bool DatabaseConnection::openFile()
{
    if (!mDatabase.open())
        return false;
    restrict(mFile, OwnFile);
    return true;
}
