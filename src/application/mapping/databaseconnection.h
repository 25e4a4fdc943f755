// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/mapping/preparedstatements.h"

#include <QSqlDatabase>
#include <QString>

/**
 * The connection to the file of the mapping, which may be closed and opened again. File and folder belong to
 * the user alone; those that exist already are made so when they are opened.
 *
 * One in a process, since the connection has a name of its own. Main thread only.
 */
class DatabaseConnection
{
public:
    DatabaseConnection() = default;
    ~DatabaseConnection();
    Q_DISABLE_COPY(DatabaseConnection)

    /** Opens the file `name` in the folder `path` below the home folder. A failure is logged. */
    void initialize(const QString &path, const QString &name);
    /** Opens the file if it is closed; false if it cannot be opened. */
    bool open();
    void close();

    /** Statements are made with this; it stays the same object while the connection lives. */
    const QSqlDatabase &database() const { return mDatabase; }
    PreparedStatements &statements() { return mStatements; }

private:
    bool nameFile();
    bool openFile();

    QSqlDatabase mDatabase;
    PreparedStatements mStatements { mDatabase };
    QString mFolder;
    QString mFile;
};
