// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/calendardatabase.h"

#include <KCalendarCore/CalFormat>

#include <QDebug>
#include <QFileInfo>

namespace mKCal {

namespace {

const SqliteDatabase::Schema &schema()
{
    // Times are seconds since the epoch; "recurrence" is empty for an incidence that is no exception.
    static const SqliteDatabase::Schema result { 1,
        {
            "CREATE TABLE notebooks (uid TEXT PRIMARY KEY, name TEXT, description TEXT, color TEXT, flags "
            "INTEGER"
            " NOT NULL, plugin TEXT, account TEXT, sync_profile TEXT, attachment_size INTEGER NOT NULL,"
            " sync_date INTEGER, modified INTEGER, created INTEGER, properties TEXT) WITHOUT ROWID",
            "CREATE TABLE settings (name TEXT PRIMARY KEY, value TEXT) WITHOUT ROWID",
            "CREATE TABLE incidences (id INTEGER PRIMARY KEY AUTOINCREMENT, uid TEXT NOT NULL,"
            " recurrence TEXT NOT NULL, notebook TEXT NOT NULL, created INTEGER NOT NULL,"
            " modified INTEGER NOT NULL, deleted INTEGER, first INTEGER, last INTEGER, text BLOB NOT NULL,"
            " rest BLOB)",
            "CREATE INDEX incidences_by_uid ON incidences (uid, recurrence)",
            "CREATE INDEX incidences_by_notebook ON incidences (notebook, deleted)",
            "CREATE INDEX incidences_by_created ON incidences (created)",
            "CREATE INDEX incidences_by_modified ON incidences (modified)",
            "CREATE INDEX incidences_deleted ON incidences (deleted) WHERE deleted IS NOT NULL",
        } };
    return result;
}

} // namespace

CalendarDatabase::CalendarDatabase()
    : database(QStringLiteral("calendar store"))
    , notebooks(database)
    , incidences(database)
{
}

std::unique_ptr<CalendarDatabase> CalendarDatabase::open(const QString &path)
{
    // Whoever names another place for the store has to see that it is there.
    if (!QFileInfo(QFileInfo(path).path()).isDir()) {
        qWarning() << "calendar store: no folder for" << path;
        return nullptr;
    }
    std::unique_ptr<CalendarDatabase> result(new CalendarDatabase);
    if (!result->database.open(path, schema()) || !result->makeDefaultNotebook())
        return nullptr;
    return result;
}

bool CalendarDatabase::makeDefaultNotebook()
{
    SqliteDatabase::Transaction transaction(database);
    if (!transaction.isActive())
        return false;
    if (!notebooks.isEmpty())
        return true;
    const Notebook::Ptr notebook = Notebook::Ptr::create(QStringLiteral("Default"), QString());
    notebook->setUid(KCalendarCore::CalFormat::createUniqueId());
    notebook->setCreationDate(QDateTime::currentDateTimeUtc());
    return notebooks.write(notebook) && notebooks.setDefault(notebook->uid()) && transaction.commit();
}

} // namespace mKCal
