// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/maildatabase.h"

namespace {

const SqliteDatabase::Schema schema { 1,
    {
        "CREATE TABLE accounts (id INTEGER PRIMARY KEY, own INTEGER NOT NULL, name TEXT, sender TEXT, type "
        "INTEGER,"
        " policy INTEGER, status INTEGER)",
        "CREATE TABLE account_fields (owner INTEGER NOT NULL, name TEXT NOT NULL, value TEXT,"
        " PRIMARY KEY (owner, name)) WITHOUT ROWID",
        "CREATE TABLE standard_folders (account INTEGER NOT NULL, kind INTEGER NOT NULL, folder INTEGER NOT "
        "NULL,"
        " PRIMARY KEY (account, kind)) WITHOUT ROWID",

        // AUTOINCREMENT: the number of something removed never comes back.
        "CREATE TABLE folders (id INTEGER PRIMARY KEY AUTOINCREMENT, path TEXT NOT NULL, display_name TEXT,"
        " parent INTEGER NOT NULL, account INTEGER NOT NULL, status INTEGER NOT NULL)",
        "CREATE INDEX folders_by_parent ON folders (parent)",
        "CREATE INDEX folders_by_account ON folders (account)",
        "CREATE TABLE folder_fields (owner INTEGER NOT NULL, name TEXT NOT NULL, value TEXT,"
        " PRIMARY KEY (owner, name)) WITHOUT ROWID",
        "INSERT INTO folders (id, path, parent, account, status) VALUES (1, 'Local Storage', 0, 0, 0)",

        "CREATE TABLE messages (id INTEGER PRIMARY KEY AUTOINCREMENT, type INTEGER NOT NULL, account INTEGER "
        "NOT "
        "NULL,"
        " folder INTEGER NOT NULL, previous_folder INTEGER NOT NULL, restore_folder INTEGER NOT NULL, thread "
        "INTEGER,"
        " in_response_to INTEGER NOT NULL, response_type INTEGER NOT NULL, content_type INTEGER NOT NULL,"
        " server_uid TEXT NOT NULL, sender TEXT, recipients TEXT, subject TEXT, date INTEGER, received "
        "INTEGER,"
        " size INTEGER NOT NULL, content_size INTEGER NOT NULL, preview TEXT, status INTEGER NOT NULL,"
        " content INTEGER)",
        "CREATE UNIQUE INDEX messages_by_uid ON messages (account, server_uid) WHERE server_uid <> ''",
        "CREATE INDEX messages_by_uid_alone ON messages (server_uid)",
        "CREATE INDEX messages_by_account ON messages (account, status)",
        "CREATE INDEX messages_by_folder ON messages (folder, status)",
        "CREATE INDEX messages_moved ON messages (previous_folder) WHERE previous_folder <> 0",
        "CREATE INDEX messages_by_date ON messages (date)",
        "CREATE TABLE message_fields (owner INTEGER NOT NULL, name TEXT NOT NULL, value TEXT,"
        " PRIMARY KEY (owner, name)) WITHOUT ROWID",
        "CREATE INDEX message_fields_by_name ON message_fields (name, value)",
        "CREATE TABLE contents (id INTEGER PRIMARY KEY AUTOINCREMENT, format INTEGER NOT NULL, data BLOB NOT "
        "NULL)",

        "CREATE TABLE removal_records (account INTEGER NOT NULL, folder INTEGER NOT NULL, server_uid TEXT "
        "NOT "
        "NULL)",
        "CREATE INDEX removal_records_by_account ON removal_records (account, server_uid)",
        "CREATE TABLE status_flags (kind TEXT NOT NULL, name TEXT NOT NULL, bit INTEGER NOT NULL,"
        " PRIMARY KEY (kind, name), UNIQUE (kind, bit)) WITHOUT ROWID",
    },
    {
        // Bodies too long for the data of their content. They go with their message.
        "CREATE TABLE IF NOT EXISTS bodies (id INTEGER PRIMARY KEY AUTOINCREMENT, message INTEGER NOT NULL)",
        "CREATE INDEX IF NOT EXISTS bodies_by_message ON bodies (message)",
        "CREATE TABLE IF NOT EXISTS body_pieces (body INTEGER NOT NULL, number INTEGER NOT NULL,"
        " data BLOB NOT NULL, PRIMARY KEY (body, number))",
        "CREATE TRIGGER IF NOT EXISTS message_without_bodies AFTER DELETE ON messages"
        " BEGIN DELETE FROM bodies WHERE message = OLD.id; END",
        "CREATE TRIGGER IF NOT EXISTS body_without_pieces AFTER DELETE ON bodies"
        " BEGIN DELETE FROM body_pieces WHERE body = OLD.id; END",
        // Read (0x80) here and not elsewhere (0x200), and the other way round: what waits for the server.
        "CREATE INDEX IF NOT EXISTS messages_read_here ON messages (folder)"
        " WHERE (status & 128) <> 0 AND (status & 512) = 0",
        "CREATE INDEX IF NOT EXISTS messages_unread_here ON messages (folder)"
        " WHERE (status & 128) = 0 AND (status & 512) <> 0",
    } };

} // namespace

MailDatabase::MailDatabase()
    : SqliteDatabase(QStringLiteral("mailstore"))
{
}

bool MailDatabase::open(const QString &folder)
{
    return SqliteDatabase::open(folder + QLatin1String("/mailstore.db"), schema);
}

void MailDatabase::noteResult(Result result)
{
    switch (result) {
    case Succeeded:
        mLastError = QMailStore::NoError;
        break;
    case ConstraintFailed:
        mLastError = QMailStore::ConstraintFailure;
        break;
    case Failed:
        mLastError = QMailStore::StorageInaccessible;
        break;
    }
}
