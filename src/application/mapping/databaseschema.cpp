// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/databaseschema.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/databasestatement.h"
#include "application/mapping/easdatabase.h"
#include "application/requestmanager.h"
#include "configurations/calendaraccountconfiguration.h"
#include "protocol/base/protocolutils.h"

namespace {

constexpr int FirstVersion = 1;
constexpr int LatestVersion = 7;
const char CantSaveVersion[] = "Failed to save new version";

struct Table
{
    const char *name;
    const char *failure;
    const char *sql;
};

// In the order of their creation. The references of contacts are not enforced and document the intent.
const Table Tables[] = {
    { "accounts", "can't create table",
        "CREATE TABLE IF NOT EXISTS accounts ( account_id INTEGER, email_account_id INTEGER );" },
    { "collections", "can't create table",
        "CREATE TABLE IF NOT EXISTS collections ( id INTEGER PRIMARY KEY AUTOINCREMENT, account_id INTEGER, "
        "server_id TEXT, server_parent_id TEXT, local_id TEXT, local_parent_id TEXT, synckey TEXT, "
        "type INTEGER, display_name TEXT, saved_in_storage INTEGER );" },
    { "calendar", "can't create table",
        "CREATE TABLE IF NOT EXISTS calendar ( id INTEGER PRIMARY KEY AUTOINCREMENT, account_id INTEGER, "
        "server_id TEXT, collection_id TEXT, local_id TEXT , timestamp INTEGER );" },
    { "contacts", "Can't create table",
        "create table if not exists contacts (account_id INTEGER not null constraint account_id_fk "
        "references accounts (account_id) on update cascade on delete cascade, "
        "server_id varchar(128) not null, collection_id varchar(64) not null constraint collection_id_fk "
        "references collections (server_id) on update set null on delete cascade,local_id TEXT, "
        "avatar_url TEXT, constraint contacts_pk primary key (server_id, collection_id, local_id));" },
    { "emails", "can't create table",
        "CREATE TABLE IF NOT EXISTS emails ( id INTEGER PRIMARY KEY AUTOINCREMENT, account_id INTEGER, "
        "server_id TEXT, collection_id TEXT, local_id TEXT );" },
    { "attachments", "Can't create table",
        "CREATE TABLE IF NOT EXISTS attachments (local_id TEXT NOT NULL, content_id TEXT NOT NULL, "
        "file_reference TEXT,CONSTRAINT attachments_pk PRIMARY KEY (local_id, content_id));" },
};

// For the questions of one reply about its own items. The rows of contacts have one in their key.
const Table Indexes[] = {
    { "emails_server_id", "can't create index",
        "CREATE INDEX IF NOT EXISTS emails_server_id ON emails (server_id);" },
    { "emails_local_id", "can't create index",
        "CREATE INDEX IF NOT EXISTS emails_local_id ON emails (local_id);" },
    { "calendar_server_id", "can't create index",
        "CREATE INDEX IF NOT EXISTS calendar_server_id ON calendar (server_id);" },
    { "calendar_local_id", "can't create index",
        "CREATE INDEX IF NOT EXISTS calendar_local_id ON calendar (local_id);" },
};

struct RebuildStep
{
    StatementFailure failure;
    const char *sql;
};

// Each statement can be prepared only when the one before it has run.
const RebuildStep ContactsRebuild[] = {
    { { "Can't EXECUTE create temp table query for upgrading table:",
          "Can't PREPARE create temp table query for upgrading table:" },
        "create table if not exists contacts_db_tmp (account_id INTEGER not null constraint account_id_fk "
        "references accounts (account_id) on update cascade on delete cascade, "
        "server_id varchar(128) not null, collection_id varchar(64) not null constraint collection_id_fk "
        "references collections (server_id) on update set null on delete cascade, local_id TEXT, "
        "avatar_url TEXT, constraint contacts_pk primary key (server_id, collection_id, local_id));" },
    { { "Can't EXECUTE data move query for upgrading table:",
          "Can't PREPARE data move query for upgrading table:" },
        "insert into contacts_db_tmp (account_id, server_id, collection_id, local_id, avatar_url) "
        "select account_id, server_id, collection_id, local_id, avatar_url from contacts;" },
    { { "Can't EXECUTE drop query for upgrading table:", "Can't PREPARE drop query for upgrading table:" },
        "drop table contacts;" },
    { { "Can't EXECUTE rename query for upgrading table:",
          "Can't PREPARE rename query for upgrading table:" },
        "alter table contacts_db_tmp rename to contacts;" },
};

} // namespace

DatabaseSchema::DatabaseSchema(const QSqlDatabase &database)
    : mDatabase(database)
{
}

DatabaseSchema::Result DatabaseSchema::prepare()
{
    if (upgradeDb())
        return createTables() && createIndexes() ? Result::Ready : Result::TryAgain;
    qCCritical(eas()) << "failed to migrate existing DB to the latest DB version";
    return mVersionsMissing ? Result::TryAgain : Result::Unusable;
}

bool DatabaseSchema::createIndexes()
{
    for (const Table &index : Indexes) {
        DatabaseStatement statement(mDatabase, QLatin1String(index.sql));
        if (!statement.run()) {
            qCCritical(eas()) << index.failure << index.name << "Error:" << statement.errorText();
            return false;
        }
    }
    return true;
}

bool DatabaseSchema::createTables()
{
    for (const Table &table : Tables) {
        DatabaseStatement statement(mDatabase, QLatin1String(table.sql));
        if (!statement.run()) {
            qCCritical(eas()) << table.failure << table.name << "Error:" << statement.errorText();
            return false;
        }
    }
    return true;
}

bool DatabaseSchema::createVersionsTable()
{
    DatabaseStatement create(
        mDatabase, QStringLiteral("CREATE TABLE IF NOT EXISTS versions ( db_version INTEGER );"));
    if (!create.run()) {
        qCCritical(eas()) << "can't create table"
                          << "versions"
                          << "Error:" << create.errorText();
        return false;
    }
    DatabaseStatement select(mDatabase, QStringLiteral("SELECT db_version FROM versions"));
    if (select.run() && select.next())
        return true;
    DatabaseStatement insert(
        mDatabase, QStringLiteral("INSERT INTO versions VALUES (%1)").arg(LatestVersion));
    if (!insert.run()) {
        qCCritical(eas()) << "can't add version row"
                          << "Error:" << insert.errorText();
        return false;
    }
    return true;
}

/** A kill between the first two statements of a new file leaves an empty table of versions and no other. */
bool DatabaseSchema::creationWasInterrupted(const QStringList &tables) const
{
    if (tables != QStringList { QStringLiteral("versions") })
        return false;
    DatabaseStatement statement(mDatabase, QStringLiteral("SELECT db_version FROM versions"));
    return statement.run() && !statement.next() && !statement.failed();
}

bool DatabaseSchema::readDbVersion(int *version) const
{
    DatabaseStatement statement(mDatabase, QStringLiteral("SELECT db_version FROM versions"));
    *version = 0;
    bool complete = statement.run();
    while (complete && statement.next()) {
        bool isNumber = false;
        const int value = statement.value(0).toInt(&isNumber);
        if (isNumber)
            *version = value;
    }
    complete = complete && !statement.failed();
    return complete || statement.fail("failed to execute sql query on versions table");
}

bool DatabaseSchema::saveDbVersion(int version)
{
    DatabaseStatement statement(mDatabase, QStringLiteral("UPDATE versions SET db_version=%1").arg(version));
    return statement.run() || statement.fail("failed to update the DB version");
}

bool DatabaseSchema::upgradeDb()
{
    const QStringList tables = mDatabase.tables();
    const bool versionsKept = tables.contains(QLatin1String("versions"));
    const bool isNew = tables.isEmpty() || creationWasInterrupted(tables);
    if (isNew)
        qCInfo(eas()) << "no tables in the DB";
    if ((isNew || !versionsKept) && !createVersionsTable()) {
        qCCritical(eas()) << "failed to create versions table";
        mVersionsMissing = true;
        return false;
    }
    if (isNew)
        return true;
    // A file from before versions were kept is of the first one, whatever its new table says.
    int version = FirstVersion;
    if (versionsKept && !readDbVersion(&version))
        return false;
    qCInfo(eas()) << "version number" << version;
    return upgradeDbFrom(version);
}

bool DatabaseSchema::upgradeDbFrom(int version)
{
    using Step = bool (DatabaseSchema::*)();
    static const Step steps[] = { &DatabaseSchema::upgradeDbToVersion2, &DatabaseSchema::upgradeDbToVersion3,
        &DatabaseSchema::upgradeDbToVersion4, &DatabaseSchema::upgradeDbToVersion5,
        &DatabaseSchema::upgradeDbToVersion6, &DatabaseSchema::upgradeDbToVersion7 };

    if (version < FirstVersion || version > LatestVersion) {
        qCCritical(eas()) << "wrong DB version" << version;
        return false;
    }
    for (int reached = version; reached < LatestVersion; ++reached) {
        const Step step = steps[reached - FirstVersion];
        if (!(this->*step)())
            return false;
    }
    return true;
}

bool DatabaseSchema::upgradeDbToVersion2()
{
    DatabaseStatement addName(
        mDatabase, QStringLiteral("ALTER TABLE collections ADD COLUMN display_name TEXT"));
    if (!addName.run())
        return addName.fail("failed to add displayname column");
    DatabaseStatement addSaved(
        mDatabase, QStringLiteral("ALTER TABLE collections ADD COLUMN saved_in_storage INTEGER DEFAULT 1"));
    if (!addSaved.run())
        return addSaved.fail("failed to add savedInStorage column");
    if (!saveDbVersion(2)) {
        qCCritical(eas()) << "failed to set DB Version to 2";
        return false;
    }
    return true;
}

bool DatabaseSchema::upgradeDbToVersion3()
{
    DatabaseStatement addTimestamp(
        mDatabase, QStringLiteral("ALTER TABLE calendar ADD COLUMN timestamp INTEGER"));
    if (!addTimestamp.run())
        return addTimestamp.fail("Failed to add timestamp column:");
    stampCalendarItems();
    if (!saveDbVersion(3)) {
        qCCritical(eas()) << CantSaveVersion;
        return false;
    }
    qCInfo(eas()) << "Successfully migrated EAS DB to version 3";
    return true;
}

/** Gives the events of every known account a first timestamp; those of unknown accounts stay without. */
void DatabaseSchema::stampCalendarItems()
{
    RequestManager *manager = RequestManager::instance();
    QVariantList timestamps;
    QVariantList accountIds;
    const QList<EasAccountId> known = manager->accounts();
    for (const EasAccountId id : known) {
        const EasAccount *account = manager->account(id);
        const auto configuration =
            account ? account->calendarConfiguration() : QSharedPointer<CalendarAccountConfiguration>();
        if (!configuration || !configuration->enabled())
            continue;
        // The one time that is kept of a synchronisation goes by the flag of mail.
        timestamps.append(account->lastSyncTime(EasAccount::EmailService).toTime_t());
        accountIds.append(id);
    }
    if (accountIds.isEmpty())
        return;
    DatabaseStatement stamp(mDatabase, QStringLiteral("UPDATE calendar SET timestamp=? WHERE account_id=?"));
    if (!stamp.bindColumn(timestamps).bindColumn(accountIds).runBatch())
        stamp.fail("SQL query failed:");
}

bool DatabaseSchema::upgradeDbToVersion4()
{
    if (!saveDbVersion(4)) {
        qCCritical(eas()) << CantSaveVersion;
        return false;
    }
    qCInfo(eas()) << "Successfully migrated EAS DB to version 4";
    return true;
}

bool DatabaseSchema::upgradeDbToVersion5()
{
    if (EasDatabase::TestMode) {
        qCInfo(eas()) << "Running in test mode, skip contact deletion";
    } else {
        // All contacts are fetched anew.
        DatabaseStatement reset(
            mDatabase, QStringLiteral("UPDATE collections SET synckey=? WHERE type=? OR type=?"));
        reset.bind(QString(ProtocolUtils::InitialSyncKey))
            .bind(EasFolderItem::DefaultContactsFolder)
            .bind(EasFolderItem::UserCreatedContactsFolder);
        if (!reset.run())
            return reset.fail({ "Failed to clear the contacts folder synckeys:",
                "Failed to PREPARE upgradeDbToVersion5 query:" });
    }
    if (!saveDbVersion(5)) {
        qCCritical(eas()) << CantSaveVersion;
        return false;
    }
    qCInfo(eas()) << "Successfully migrated EAS DB to version 5";
    return true;
}

bool DatabaseSchema::upgradeDbToVersion6()
{
    if (!saveDbVersion(6)) {
        qCCritical(eas()) << CantSaveVersion;
        return false;
    }
    qCInfo(eas()) << "Successfully migrated EAS DB to version 6!";
    return true;
}

bool DatabaseSchema::upgradeDbToVersion7()
{
    if (EasDatabase::TestMode)
        qCInfo(eas()) << "Running in test mode, skip contact deletion";
    else if (!rebuildContactsTable())
        return false;
    if (!saveDbVersion(7)) {
        qCCritical(eas()) << CantSaveVersion;
        return false;
    }
    qCInfo(eas()) << "Successfully migrated EAS DB to version 7!";
    return true;
}

bool DatabaseSchema::rebuildContactsTable()
{
    for (const RebuildStep &step : ContactsRebuild) {
        DatabaseStatement statement(mDatabase, QLatin1String(step.sql));
        if (!statement.run()) {
            qCCritical(eas()) << statement.failureText(step.failure) << "contacts"
                              << "to version:"
                              << "versions"
                              << ". Error:" << statement.errorText();
            return false;
        }
    }
    return true;
}
