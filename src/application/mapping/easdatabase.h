// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/mapping/lookup.h"
#include "common/easaccountid.h"
#include "easitems/easfolderitem.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QSqlDatabase>
#include <QStringList>
#include <QTimer>
#include <QUrl>

#include <optional>

class AttachmentEntity;
class DatabaseStatement;
class EasAttachmentContainer;
class EasCalendarItem;
class EasContactsItem;
class EasEmailItem;
struct StatementFailure;

/**
 * The engine's own memory of the server's world: which server identifier belongs to which local one, and the
 * sync key of every collection.
 *
 * The content lives in the device's stores; this file only binds it to the server. There is one instance a
 * process. Call instance() each time and keep no pointer across a turn of the event loop: the file is closed
 * a minute after the last use, and instance() opens it again.
 *
 * Every statement commits by itself. What protects against a crash is the order of the callers: store first,
 * then the rows here, and the sync key last. No failure stops the process: an operation that fails has logged
 * why and returns false or an empty result.
 *
 * Main thread only.
 */
class EasDatabase : public QObject
{
    Q_OBJECT

public:
    /** Kind of an item by the table that holds its server identifier. */
    enum AppDataType { AppDataNone = 0, AppDataEmail = 1, AppDataContacts = 2, AppDataCalendar = 3 };
    Q_ENUM(AppDataType)

    /** Stands for an unknown change time of an event. */
    static constexpr uint TimestampInvalid = 0xFFFFFFFF;

    /** With test mode on, migrations leave contacts and their sync keys alone. */
    static bool TestMode;
    static void initTestMode();

    /** Opens the file `name` in the folder `path` below the home folder; null means the default. */
    static void initializeInstance(QObject *parent, const char *path, const char *name);
    static EasDatabase *instance();
    static void releaseInstance();

    ~EasDatabase() override;

    void startDataBaseTimer(uint milliseconds);

    /** Goes away: whether the latest reading operation could not read. Ask its own answer. */
    bool lookupFailed() const;

    // Accounts
    Lookup<quint64> emailAccountId(EasAccountId accountId) const;
    void setEmailAccountId(EasAccountId accountId, quint64 emailAccountId);
    Lookup<QString> folderSyncKey(EasAccountId accountId) const;
    bool setFolderSyncKey(EasAccountId accountId, const QString &syncKey);
    Lookup<AppDataType> getAppDataType(const QString &serverId);
    void removeAccount(EasAccountId accountId);
    /** Wipes the account's stores and rows, so that its next sync starts from nothing. */
    bool clearAccount(EasAccountId accountId);
    /** Does the rest of a clearAccount() that was cut short; false, too, if that cannot be told. */
    bool finishClearingAccount(EasAccountId accountId);
    /** Drops what is kept of accounts that are not among these. */
    bool cleanUp(const QList<quint64> &accountIds);

    // Folders
    Lookup<EasFolderItem> folderItemByLocalId(EasAccountId accountId, const QString &localId) const;
    Lookup<EasFolderItem> folderItemByServerId(EasAccountId accountId, const QString &serverId) const;
    Lookup<QList<EasFolderItem>> emailFolderItems(EasAccountId accountId) const;
    Lookup<QList<EasFolderItem>> calendarFolderItems(EasAccountId accountId) const;
    Lookup<QList<EasFolderItem>> folderItemsByFolderType(
        EasAccountId accountId, EasFolderItem::FolderType type) const;
    Lookup<EasFolderItem::FolderType> folderTypeByServerId(EasAccountId accountId, const QString &serverId);
    Lookup<QMap<QString, QString>> serverToLocalFolderIds(EasAccountId accountId) const;
    Lookup<QMap<QString, QString>> localToServerFolderIds(EasAccountId accountId) const;
    /** The parent of each folder, by server identifiers. */
    Lookup<QMap<QString, QString>> serverFolderParentIds(EasAccountId accountId) const;
    bool addFolderItems(EasAccountId accountId, const QList<EasFolderItem> &items);
    bool updateFolderItems(EasAccountId accountId, const QList<EasFolderItem> &items);
    bool deleteFolderItems(EasAccountId accountId, const QStringList &serverIds);
    bool folderItemsChanges(EasAccountId accountId, const QList<EasFolderItem> &added,
        const QList<EasFolderItem> &updated, const QStringList &deletedServerIds);
    bool setSavedInStorage(EasAccountId accountId, const QString &localId, bool saved);

    // Mail
    bool addEmailItems(EasAccountId accountId, const QList<EasEmailItem> &items);
    bool updateEmailItems(EasAccountId accountId, const QList<EasEmailItem> &items);
    /** Gives rows their new server identifier and folder after a move; the local identifier stays. */
    bool updateMovedEmailItems(EasAccountId accountId, const QList<EasEmailItem> &items);
    bool deleteEmailItems(EasAccountId accountId, const QStringList &serverIds);
    bool emailItemsChanges(EasAccountId accountId, const QList<EasEmailItem> &added,
        const QList<EasEmailItem> &updated, const QStringList &deletedServerIds);
    Lookup<QStringList> localEmailIds(EasAccountId accountId, const QString &collectionId) const;
    Lookup<QMap<QString, QString>> serverToLocalEmailIds(EasAccountId accountId) const;
    Lookup<QMap<QString, QString>> localToServerEmailIds(EasAccountId accountId) const;
    /** The folder of each of these messages that has a row, by server identifiers. */
    Lookup<QMap<QString, QString>> emailCollectionIds(
        EasAccountId accountId, const QStringList &serverIds) const;
    Lookup<QString> folderServerIdByEmailServerId(EasAccountId accountId, const QString &serverId) const;
    Lookup<QString> collectionServerIdFromEmailItemId(EasAccountId accountId, const QString &serverId);
    bool clearEmailFolder(EasAccountId accountId, const QString &collectionId);

    // Calendar
    bool addCalendarItems(EasAccountId accountId, const QList<EasCalendarItem> &items);
    bool updateCalendarItems(EasAccountId accountId, const QList<EasCalendarItem> &items);
    bool deleteCalendarItems(EasAccountId accountId, const QStringList &serverIds);
    bool calendarItemsChanges(EasAccountId accountId, const QList<EasCalendarItem> &added,
        const QList<EasCalendarItem> &updated, const QStringList &deletedServerIds,
        const QStringList &replacedServerIds);
    Lookup<QStringList> localCalendarIds(EasAccountId accountId, const QString &collectionId) const;
    Lookup<QMap<QString, QString>> serverToLocalCalendarIds(EasAccountId accountId) const;
    Lookup<QMap<QString, QString>> localToServerCalendarIds(EasAccountId accountId) const;
    Lookup<QMap<QString, QString>> serverCalendarIdToCollectionIds(EasAccountId accountId) const;
    Lookup<QString> serverCalendarIdToCollectionId(EasAccountId accountId, const QString &serverId) const;
    Lookup<QString> localToServerCalendarId(EasAccountId accountId, const QString &localId) const;
    Lookup<uint> calendarItemUpdateTime(EasAccountId accountId, const QString &localId) const;
    /** The same of all events of an account at once, without those that have no time. */
    Lookup<QMap<QString, uint>> calendarItemUpdateTimes(EasAccountId accountId) const;
    bool clearCalendarFolder(EasAccountId accountId, const QString &collectionId);

    // Contacts
    /** A contact that is there already, by server, folder and local identifier, is left as it is. */
    bool addContactsItems(EasAccountId accountId, const QList<EasContactsItem> &items);
    /** A server may use an identifier of one folder in another one again. An empty collection means all
     * folders of the account, here and in the next ones. */
    bool updateContactsItems(
        EasAccountId accountId, const QList<EasContactsItem> &items, const QString &collectionId = QString());
    bool deleteContactsItems(
        EasAccountId accountId, const QStringList &serverIds, const QString &collectionId = QString());
    bool contactsItemsChanges(EasAccountId accountId, const QList<EasContactsItem> &added,
        const QList<EasContactsItem> &updated, const QStringList &deletedServerIds,
        const QString &collectionId = QString());
    Lookup<QStringList> localContactIds(EasAccountId accountId, const QString &collectionId) const;
    Lookup<QMap<QString, QString>> localToServerContactIds(
        EasAccountId accountId, const QString &collectionId) const;
    Lookup<QMap<QString, QString>> serverToLocalContactIds(EasAccountId accountId) const;
    Lookup<QMap<QString, QUrl>> localContactIdsToAvatarsUrls(EasAccountId accountId) const;
    /** The argument is the contact's server identifier, in spite of the name. */
    Lookup<QString> folderServerIdByContactLocalId(EasAccountId accountId, const QString &serverId) const;
    bool clearContactsFolder(EasAccountId accountId, const QString &collectionId);

    // Attachments of events; an event is named by its local identifier
    bool addCalendarAttachment(const QString &eventId, const EasAttachmentContainer &attachment);
    bool addCalendarAttachment(const QString &eventId, const AttachmentEntity &attachment);
    Lookup<std::optional<EasAttachmentContainer>> getAttachmentByFileReference(
        const QString &eventId, const QString &fileReference);
    Lookup<std::optional<EasAttachmentContainer>> getAttachmentByContentId(
        const QString &eventId, const QString &contentId);
    Lookup<QList<EasAttachmentContainer>> getCalendarAttachments(const QString &eventId);
    bool updateCalendarAttachmentFileRefernce(
        const QString &eventId, const EasAttachmentContainer &attachment);
    bool updateCalendarAttachmentFileRefernce(const QString &eventId, const AttachmentEntity &attachment);
    bool updateCalendarAttachmentContentId(const QString &eventId, const EasAttachmentContainer &attachment);
    bool deleteCalendarAttachmentByContentId(const QString &eventId, const QString &contentId);
    bool deleteCalendarAttachmentByFileReference(const QString &eventId, const QString &fileReference);
    /** Whether the event has an attachment with this content identifier or file reference. */
    Lookup<Existence> isCalendarAttachmentExists(const QString &eventId, const QString &uniqueId);
    /** Removes rows with a file reference whose event is in no account's mapping. */
    bool deleteStrayCalendarAttachments();

public Q_SLOTS:
    void onAccountAdded(EasAccountId accountId);
    void onAccountDeleted(EasAccountId accountId);

protected Q_SLOTS:
    void onReleaseDatabaseTimer();

private:
    explicit EasDatabase(QObject *parent);

    // Connection
    void init(const char *path, const char *name);
    void initializeDB(const char *path, const char *name);
    void initializeDbConnection(const char *path, const char *name);
    bool nameFile();
    bool openDbConnection();
    /** Brings the schema up to date, and makes the tables that are not there. */
    void prepareTables();

    // Schema and migrations
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
    bool createTables();

    // Statements
    bool deleteItems(const char *table, EasAccountId accountId, const QStringList &serverIds,
        const StatementFailure &failure);
    bool clearFolder(EasAccountId accountId, const QString &collectionId, const char *table,
        const char *collectionColumn, const char *accountColumn);

    // Rows
    void initializeAccount(EasAccountId accountId);
    bool initializeAccountsTable(EasAccountId accountId, quint64 emailAccountId) const;
    bool initializeCollectionsTable(EasAccountId accountId) const;
    bool updateFolderItem(EasAccountId accountId, const EasFolderItem &item);
    bool selectMovedEmailRows(
        EasAccountId accountId, const QList<EasEmailItem> &items, QVariantList *rowIds) const;

    QSqlDatabase mDatabase;
    QTimer mReleaseTimer;
    QString mFolder;
    QString mFile;
    /** Tables could not be made, and the next use tries again. A file that no step can bring up to date waits
     * for the next start. */
    bool mTablesMissing = false;
};
