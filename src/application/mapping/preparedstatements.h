// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QHash>
#include <QSqlQuery>
#include <QString>

class QSqlDatabase;

/**
 * Statements of one connection that have been prepared already, by their texts. One that runs is not among
 * them: it is taken out and given back, with nothing of the file locked.
 *
 * Belongs to DatabaseConnection, which clears it before it closes the file. Main thread only.
 */
class PreparedStatements
{
public:
    /** The connection has to outlive it. */
    explicit PreparedStatements(const QSqlDatabase &database);
    Q_DISABLE_COPY(PreparedStatements)

    const QSqlDatabase &database() const { return mDatabase; }

    /** One that was kept, or else a null query. */
    QSqlQuery take(const QString &sql) { return mKept.take(sql); }
    void keep(const QString &sql, const QSqlQuery &query);
    void clear() { mKept.clear(); }

private:
    const QSqlDatabase &mDatabase;
    QHash<QString, QSqlQuery> mKept;
};
