// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/storedatabase.h"

#include <QSqlDatabase>
#include <QSqlQuery>

void StoreDatabase::execute(const QString &statement)
{
    const QString name = QStringLiteral("contacts-by-hand");
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(qEnvironmentVariable("CONTACTS_DATA") + QLatin1String("/contacts.db"));
        if (!database.open() || !QSqlQuery(database).exec(statement))
            qFatal("%s", qPrintable(statement));
    }
    QSqlDatabase::removeDatabase(name);
}
