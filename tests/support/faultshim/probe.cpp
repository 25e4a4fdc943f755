// SPDX-License-Identifier: LGPL-2.1-or-later
//
// Writes rows into a database, one statement each, and tells of each whether it was accepted. What the tests
// of the fault shim kill and fail.
#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>

#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        std::fprintf(stderr, "usage: fault-shim-probe DATABASE ROWS\n");
        return 2;
    }
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
    database.setDatabaseName(arguments.at(1));
    if (!database.open())
        return 1;
    QSqlQuery query(database);
    query.exec(QStringLiteral("CREATE TABLE IF NOT EXISTS rows (number INTEGER)"));
    for (int row = 1; row <= arguments.at(2).toInt(); ++row) {
        if (query.exec(QStringLiteral("INSERT INTO rows VALUES (%1)").arg(row)))
            std::printf("accepted %d\n", row);
        else
            std::printf("refused %d %s\n", row, qPrintable(query.lastError().nativeErrorCode()));
        std::fflush(stdout);
    }
    return 0;
}
