// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QSqlDatabase>
#include <QStringList>

/**
 * The tables of the mapping database, and the steps that bring an older file up to date.
 *
 * A value on the stack of EasDatabase's opening. Main thread only.
 */
class DatabaseSchema
{
public:
    enum class Result {
        Ready,
        TryAgain, ///< a table could not be made: the next use may
        Unusable ///< no step can bring the file up to date; it waits for the next start
    };

    explicit DatabaseSchema(const QSqlDatabase &database);

    /** Brings the schema up to date, and makes the tables that are not there. */
    Result prepare();

private:
    bool createTables();
    bool createIndexes();
    bool createVersionsTable();
    bool creationWasInterrupted(const QStringList &tables) const;
    bool readDbVersion(int *version) const;
    bool saveDbVersion(int version);
    bool upgradeDb();
    bool upgradeDbFrom(int version);
    bool upgradeDbToVersion2();
    bool upgradeDbToVersion3();
    bool upgradeDbToVersion4();
    bool upgradeDbToVersion5();
    bool upgradeDbToVersion6();
    bool upgradeDbToVersion7();
    void stampCalendarItems();
    bool rebuildContactsTable();

    QSqlDatabase mDatabase;
    bool mVersionsMissing = false;
};
