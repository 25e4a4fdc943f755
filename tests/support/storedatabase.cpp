// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/storedatabase.h"

#include <QSqlDatabase>
#include <QSqlQuery>

namespace {

QString fileOf(StoreDatabase::Store store)
{
    return store == StoreDatabase::Mail
        ? qEnvironmentVariable("QMF_DATA") + QLatin1String("/mailstore.db")
        : qEnvironmentVariable("CONTACTS_DATA") + QLatin1String("/contacts.db");
}

} // namespace

void StoreDatabase::execute(Store store, const QString &statement)
{
    const QString name = QStringLiteral("store-by-hand");
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(fileOf(store));
        if (!database.open() || !QSqlQuery(database).exec(statement))
            qFatal("%s", qPrintable(statement));
    }
    QSqlDatabase::removeDatabase(name);
}
