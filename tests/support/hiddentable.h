// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>

/** As long as it lives, a table of the mapping cannot be read or written: it has another name. */
class HiddenTable
{
public:
    explicit HiddenTable(const char *table)
        : mTable(QLatin1String(table))
    {
        rename(mTable, QStringLiteral("hidden"));
    }
    ~HiddenTable() { rename(QStringLiteral("hidden"), mTable); }
    Q_DISABLE_COPY(HiddenTable)

private:
    static void rename(const QString &from, const QString &to)
    {
        QSqlQuery query(QSqlDatabase::database(QStringLiteral("fennel-eas-db")));
        if (!query.exec(QStringLiteral("ALTER TABLE %1 RENAME TO %2").arg(from, to)))
            qFatal("cannot rename the table %s", qPrintable(from));
    }

    const QString mTable;
};
