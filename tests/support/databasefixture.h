// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/**
 * A mapping database of a test's own: a file below the home folder, which is the engine's while this lives. A
 * test can prepare it by hand before EasDatabase opens it, and look into it over a connection of its own.
 */
class DatabaseFixture
{
public:
    enum Begin { Closed, Opened };
    explicit DatabaseFixture(Begin begin = Closed);
    ~DatabaseFixture();
    Q_DISABLE_COPY(DatabaseFixture)

    /** Lets EasDatabase open the file; the end of the fixture releases it. */
    void open();
    /** Releases EasDatabase and opens the file again, as a restart of the process does. */
    void reopen();
    void release();
    /** Closes the connection of EasDatabase, which opens it again at the next use and sees the file anew. */
    void closeConnection();

    QString file() const;
    QString folder() const;

    /** Runs statements by hand; a failure fails the test. */
    void execute(const QStringList &statements) const;
    /** No statement of a kind succeeds on that table any more: "INSERT", "UPDATE", "DELETE". */
    void refuse(const char *kind, const char *table) const;
    /** The rows of a query, values joined by "|", NULL as "NULL". */
    QStringList rows(const QString &query) const;
    /** Everything in the file: the schema, and the rows of every table. */
    QStringList content() const;

private:
    QByteArray mPath;
};
