// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/contactdatabase.h"

namespace {

// Flags are those of QContactStatusFlags. Unhandled ones tell what happened since the collection's changes
// were fetched. AUTOINCREMENT: the number of something removed never comes back.
const SqliteDatabase::Schema schema { 1,
    { "CREATE TABLE collections (id INTEGER PRIMARY KEY AUTOINCREMENT, metadata BLOB NOT NULL,"
      " extended BLOB NOT NULL, flags INTEGER NOT NULL DEFAULT 0, recording INTEGER NOT NULL DEFAULT 0)",
        "INSERT INTO collections (id, metadata, extended) VALUES (1, x'', x''), (2, x'', x'')",
        "CREATE TABLE contacts (id INTEGER PRIMARY KEY AUTOINCREMENT, collection INTEGER NOT NULL,"
        " flags INTEGER NOT NULL, unhandled INTEGER NOT NULL, created INTEGER NOT NULL,"
        " modified INTEGER NOT NULL, details BLOB NOT NULL)",
        "CREATE INDEX contacts_by_collection ON contacts (collection, flags)" } };

} // namespace

ContactDatabase::ContactDatabase()
    : SqliteDatabase(QStringLiteral("contact store"))
{
}

bool ContactDatabase::open(const QString &folder)
{
    return SqliteDatabase::open(folder + QLatin1String("/contacts.db"), schema);
}
