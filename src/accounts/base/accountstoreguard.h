// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <QString>

#include <atomic>

/**
 * A lock on a database of SQLite that says "in use" to every process.
 *
 * It covers the bytes that SQLite itself locks, shared, while a database is open; but it belongs to an open
 * file description, so that no close of another descriptor drops it. While it is held, no process takes the
 * database's write-ahead log away, this one included. Made once a process; any thread may call it.
 */
class AccountStoreGuard
{
public:
    explicit AccountStoreGuard(const QString &databaseFile);
    Q_DISABLE_COPY(AccountStoreGuard)

    /** The lock on the database of the account library. */
    static AccountStoreGuard &instance();

    /**
     * Takes the lock, for the rest of the process' life. False if there is no such database, or none with a
     * write-ahead log: one with a rollback journal could not be written by anybody meanwhile.
     */
    bool hold();

private:
    int descriptor();
    static bool keepsWriteAheadLog(int file);

    QString mFile;
    std::atomic<int> mDescriptor { -1 };
};
