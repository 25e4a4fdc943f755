// SPDX-License-Identifier: LGPL-2.1-or-later
#include "support/storecheck.h"

#include <QDir>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

QString StoreCheck::mappingFile()
{
    return QDir::homePath() + QStringLiteral("/.local/share/system/privileged/eas-fennel/fennel_eas.db");
}

QStringList StoreCheck::ask(const QString &file, const QString &sql)
{
    const QString name = QStringLiteral("store-check");
    QStringList answer;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        database.setDatabaseName(file);
        database.open();
        QSqlQuery query(database);
        if (!query.exec(sql))
            answer.append(query.lastError().text());
        while (query.next())
            answer.append(query.value(0).toString());
    }
    QSqlDatabase::removeDatabase(name);
    answer.sort();
    return answer;
}

QString StoreCheck::difference(const char *what, const QStringList &found, const QStringList &wanted)
{
    if (found == wanted)
        return QString();
    return QStringLiteral("%1:\n  %2\nwanted:\n  %3\n")
        .arg(QLatin1String(what), found.join(QStringLiteral("\n  ")), wanted.join(QStringLiteral("\n  ")));
}

QString StoreCheck::damage(const QString &file)
{
    const QStringList answer = ask(file, QStringLiteral("PRAGMA integrity_check"));
    return answer == QStringList(QStringLiteral("ok"))
        ? QString()
        : QStringLiteral("%1 is damaged: %2\n").arg(file, answer.join(QStringLiteral(", ")));
}
