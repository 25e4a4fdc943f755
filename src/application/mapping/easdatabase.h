// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/lookup.h"
#include "application/mapping/accountrows.h"
#include "application/mapping/attachmentrows.h"
#include "application/mapping/contactrows.h"
#include "application/mapping/databaseconnection.h"
#include "application/mapping/eventrows.h"
#include "application/mapping/folderrows.h"
#include "application/mapping/mailrows.h"
#include "common/easaccountid.h"
#include "easitems/easfolderitem.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <QUrl>

#include <optional>

class AttachmentEntity;
class EasAttachmentContainer;
class EasCalendarItem;
class EasContactsItem;
class EasEmailItem;

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
 * why and returns false or an unread answer.
 *
 * The rows are the work of classes of their own (FolderRows, MailRows and so on); this class owns them, the
 * connection, and the names under which the rest of the system asks.
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

    // Accounts
    Lookup<quint64> emailAccountId(EasAccountId accountId) const
    {
        return mAccounts.emailAccountId(accountId);
    }
    void setEmailAccountId(EasAccountId accountId, quint64 emailAccountId)
    {
        mAccounts.setEmailAccountId(accountId, emailAccountId);
    }
    Lookup<QString> folderSyncKey(EasAccountId accountId) const { return mAccounts.folderSyncKey(accountId); }
    bool setFolderSyncKey(EasAccountId accountId, const QString &syncKey)
    {
        return mAccounts.setFolderSyncKey(accountId, syncKey);
    }
    Lookup<AppDataType> getAppDataType(const QString &serverId);
    /** Deletes the account's rows; false, after a log line, if some are left. */
    bool removeAccount(EasAccountId accountId);
    /** Wipes the account's stores and rows, so that its next sync starts from nothing. */
    bool clearAccount(EasAccountId accountId);
    /** Does the rest of a clearAccount() that was cut short; false, too, if that cannot be told. */
    bool finishClearingAccount(EasAccountId accountId);
    /** Drops what is kept of accounts that are not among these. */
    bool cleanUp(const QList<quint64> &accountIds);

    // Folders
    Lookup<EasFolderItem> folderItemByLocalId(EasAccountId accountId, const QString &localId) const
    {
        return mFolders.byLocalId(accountId, localId);
    }
    Lookup<EasFolderItem> folderItemByServerId(EasAccountId accountId, const QString &serverId) const
    {
        return mFolders.byServerId(accountId, serverId);
    }
    Lookup<QList<EasFolderItem>> emailFolderItems(EasAccountId accountId) const
    {
        return mFolders.mailFolders(accountId);
    }
    Lookup<QList<EasFolderItem>> calendarFolderItems(EasAccountId accountId) const
    {
        return mFolders.calendarFolders(accountId);
    }
    Lookup<QList<EasFolderItem>> folderItemsByFolderType(
        EasAccountId accountId, EasFolderItem::FolderType type) const
    {
        return mFolders.byType(accountId, type);
    }
    Lookup<EasFolderItem::FolderType> folderTypeByServerId(EasAccountId accountId, const QString &serverId)
    {
        return mFolders.typeOf(accountId, serverId);
    }
    Lookup<QMap<QString, QString>> serverToLocalFolderIds(EasAccountId accountId) const
    {
        return mFolders.serverToLocalIds(accountId);
    }
    Lookup<QMap<QString, QString>> localToServerFolderIds(EasAccountId accountId) const
    {
        return mFolders.localToServerIds(accountId);
    }
    /** The parent of each folder, by server identifiers. */
    Lookup<QMap<QString, QString>> serverFolderParentIds(EasAccountId accountId) const
    {
        return mFolders.parentIds(accountId);
    }
    bool addFolderItems(EasAccountId accountId, const QList<EasFolderItem> &items)
    {
        return mFolders.add(accountId, items);
    }
    bool updateFolderItems(EasAccountId accountId, const QList<EasFolderItem> &items)
    {
        return mFolders.update(accountId, items);
    }
    bool deleteFolderItems(EasAccountId accountId, const QStringList &serverIds)
    {
        return mFolders.remove(accountId, serverIds);
    }
    bool folderItemsChanges(EasAccountId accountId, const QList<EasFolderItem> &added,
        const QList<EasFolderItem> &updated, const QStringList &deletedServerIds);
    bool setSavedInStorage(EasAccountId accountId, const QString &localId, bool saved)
    {
        return mFolders.setSavedInStorage(accountId, localId, saved);
    }

    // Mail
    bool addEmailItems(EasAccountId accountId, const QList<EasEmailItem> &items)
    {
        return mMail.add(accountId, items);
    }
    bool updateEmailItems(EasAccountId accountId, const QList<EasEmailItem> &items)
    {
        return mMail.update(accountId, items);
    }
    /** Gives rows their new server identifier and folder after a move; the local identifier stays. */
    bool updateMovedEmailItems(EasAccountId accountId, const QList<EasEmailItem> &items)
    {
        return mMail.updateMoved(accountId, items);
    }
    bool deleteEmailItems(EasAccountId accountId, const QStringList &serverIds)
    {
        return mMail.remove(accountId, serverIds);
    }
    bool emailItemsChanges(EasAccountId accountId, const QList<EasEmailItem> &added,
        const QList<EasEmailItem> &updated, const QStringList &deletedServerIds);
    Lookup<QStringList> localEmailIds(EasAccountId accountId, const QString &collectionId) const
    {
        return mMail.localIds(accountId, collectionId);
    }
    Lookup<QMap<QString, QString>> serverToLocalEmailIds(EasAccountId accountId) const
    {
        return mMail.serverToLocalIds(accountId);
    }
    Lookup<QMap<QString, QString>> localToServerEmailIds(EasAccountId accountId) const
    {
        return mMail.localToServerIds(accountId);
    }
    /** Of these messages, by all server identifiers that each of them has: after a move it may have two. */
    Lookup<QMap<QString, QString>> serverToLocalEmailIds(
        EasAccountId accountId, const QStringList &serverIds) const
    {
        return mMail.serverToLocalIds(accountId, serverIds);
    }
    Lookup<QMap<QString, QString>> localToServerEmailIds(
        EasAccountId accountId, const QStringList &localIds) const
    {
        return mMail.localToServerIds(accountId, localIds);
    }
    /** The folder of each of these messages that has a row, by server identifiers. */
    Lookup<QMap<QString, QString>> emailCollectionIds(
        EasAccountId accountId, const QStringList &serverIds) const
    {
        return mMail.collectionIds(accountId, serverIds);
    }
    Lookup<QString> folderServerIdByEmailServerId(EasAccountId accountId, const QString &serverId) const
    {
        return mMail.collectionId(accountId, serverId);
    }
    Lookup<QString> collectionServerIdFromEmailItemId(EasAccountId accountId, const QString &serverId)
    {
        return mMail.collectionId(accountId, serverId);
    }
    bool clearEmailFolder(EasAccountId accountId, const QString &collectionId)
    {
        return mMail.clearFolder(accountId, collectionId);
    }

    // Calendar
    bool addCalendarItems(EasAccountId accountId, const QList<EasCalendarItem> &items)
    {
        return mEvents.add(accountId, items);
    }
    bool updateCalendarItems(EasAccountId accountId, const QList<EasCalendarItem> &items)
    {
        return mEvents.update(accountId, items);
    }
    bool deleteCalendarItems(EasAccountId accountId, const QStringList &serverIds)
    {
        return mEvents.remove(accountId, serverIds);
    }
    bool calendarItemsChanges(EasAccountId accountId, const QList<EasCalendarItem> &added,
        const QList<EasCalendarItem> &updated, const QStringList &deletedServerIds,
        const QStringList &replacedServerIds);
    Lookup<QStringList> localCalendarIds(EasAccountId accountId, const QString &collectionId) const
    {
        return mEvents.localIds(accountId, collectionId);
    }
    Lookup<QMap<QString, QString>> serverToLocalCalendarIds(EasAccountId accountId) const
    {
        return mEvents.serverToLocalIds(accountId);
    }
    /** Of these events, and the ones that have the same local identifier. */
    Lookup<QMap<QString, QString>> serverToLocalCalendarIds(
        EasAccountId accountId, const QStringList &serverIds) const
    {
        return mEvents.serverToLocalIds(accountId, serverIds);
    }
    Lookup<QMap<QString, QString>> localToServerCalendarIds(EasAccountId accountId) const
    {
        return mEvents.localToServerIds(accountId);
    }
    Lookup<QMap<QString, QString>> serverCalendarIdToCollectionIds(EasAccountId accountId) const
    {
        return mEvents.collectionIds(accountId);
    }
    Lookup<QMap<QString, QString>> serverCalendarIdToCollectionIds(
        EasAccountId accountId, const QStringList &serverIds) const
    {
        return mEvents.collectionIds(accountId, serverIds);
    }
    Lookup<QString> serverCalendarIdToCollectionId(EasAccountId accountId, const QString &serverId) const
    {
        return mEvents.collectionId(accountId, serverId);
    }
    Lookup<QString> localToServerCalendarId(EasAccountId accountId, const QString &localId) const
    {
        return mEvents.serverId(accountId, localId);
    }
    Lookup<uint> calendarItemUpdateTime(EasAccountId accountId, const QString &localId) const
    {
        return mEvents.updateTime(accountId, localId);
    }
    /** The same of all events of an account at once, without those that have no time. */
    Lookup<QMap<QString, uint>> calendarItemUpdateTimes(EasAccountId accountId) const
    {
        return mEvents.updateTimes(accountId);
    }
    bool clearCalendarFolder(EasAccountId accountId, const QString &collectionId)
    {
        return mEvents.clearFolder(accountId, collectionId);
    }

    // Contacts
    /** A contact that is there already, by server, folder and local identifier, is left as it is. */
    bool addContactsItems(EasAccountId accountId, const QList<EasContactsItem> &items)
    {
        return mContacts.add(accountId, items);
    }
    /** A server may use an identifier of one folder in another one again. An empty collection means all
     * folders of the account, here and in the next ones. */
    bool updateContactsItems(
        EasAccountId accountId, const QList<EasContactsItem> &items, const QString &collectionId = QString())
    {
        return mContacts.update(accountId, items, collectionId);
    }
    bool deleteContactsItems(
        EasAccountId accountId, const QStringList &serverIds, const QString &collectionId = QString())
    {
        return mContacts.remove(accountId, serverIds, collectionId);
    }
    bool contactsItemsChanges(EasAccountId accountId, const QList<EasContactsItem> &added,
        const QList<EasContactsItem> &updated, const QStringList &deletedServerIds,
        const QString &collectionId = QString());
    Lookup<QStringList> localContactIds(EasAccountId accountId, const QString &collectionId) const
    {
        return mContacts.localIds(accountId, collectionId);
    }
    Lookup<QMap<QString, QString>> localToServerContactIds(
        EasAccountId accountId, const QString &collectionId) const
    {
        return mContacts.localToServerIds(accountId, collectionId);
    }
    Lookup<QMap<QString, QString>> serverToLocalContactIds(EasAccountId accountId) const
    {
        return mContacts.serverToLocalIds(accountId);
    }
    Lookup<QMap<QString, QUrl>> localContactIdsToAvatarsUrls(EasAccountId accountId) const
    {
        return mContacts.avatarUrls(accountId);
    }
    /** The argument is the contact's server identifier, in spite of the name. */
    Lookup<QString> folderServerIdByContactLocalId(EasAccountId accountId, const QString &serverId) const
    {
        return mContacts.collectionId(accountId, serverId);
    }
    bool clearContactsFolder(EasAccountId accountId, const QString &collectionId)
    {
        return mContacts.clearFolder(accountId, collectionId);
    }

    // Attachments of events; an event is named by its local identifier
    bool addCalendarAttachment(const QString &eventId, const EasAttachmentContainer &attachment)
    {
        return mAttachments.add(eventId, attachment);
    }
    bool addCalendarAttachment(const QString &eventId, const AttachmentEntity &attachment);
    Lookup<std::optional<EasAttachmentContainer>> getAttachmentByFileReference(
        const QString &eventId, const QString &fileReference);
    Lookup<std::optional<EasAttachmentContainer>> getAttachmentByContentId(
        const QString &eventId, const QString &contentId);
    Lookup<QList<EasAttachmentContainer>> getCalendarAttachments(const QString &eventId);
    bool updateCalendarAttachmentFileRefernce(
        const QString &eventId, const EasAttachmentContainer &attachment)
    {
        return mAttachments.updateFileReference(eventId, attachment);
    }
    bool updateCalendarAttachmentFileRefernce(const QString &eventId, const AttachmentEntity &attachment);
    bool updateCalendarAttachmentContentId(const QString &eventId, const EasAttachmentContainer &attachment)
    {
        return mAttachments.updateContentId(eventId, attachment);
    }
    /** All of an event, or of one exception. */
    bool deleteCalendarAttachments(const QString &eventId) { return mAttachments.removeOfEvent(eventId); }
    bool deleteCalendarAttachmentByContentId(const QString &eventId, const QString &contentId)
    {
        return mAttachments.removeByContentId(eventId, contentId);
    }
    bool deleteCalendarAttachmentByFileReference(const QString &eventId, const QString &fileReference)
    {
        return mAttachments.removeByFileReference(eventId, fileReference);
    }
    /** Whether the event has an attachment with this content identifier or file reference. */
    Lookup<Existence> isCalendarAttachmentExists(const QString &eventId, const QString &uniqueId)
    {
        return mAttachments.presence(eventId, uniqueId);
    }
    /** Removes rows with a file reference whose event is in no account's mapping. */
    bool deleteStrayCalendarAttachments() { return mAttachments.removeStrays(); }

public Q_SLOTS:
    void onAccountAdded(EasAccountId accountId);
    void onAccountDeleted(EasAccountId accountId);

protected Q_SLOTS:
    void onReleaseDatabaseTimer();

private:
    explicit EasDatabase(QObject *parent);

    void init(const char *path, const char *name);
    void initializeDB(const char *path, const char *name);
    /** Brings the schema up to date, and makes the tables that are not there. */
    void prepareTables();

    DatabaseConnection mConnection;
    AccountRows mAccounts;
    FolderRows mFolders;
    MailRows mMail;
    EventRows mEvents;
    ContactRows mContacts;
    AttachmentRows mAttachments;
    QTimer mReleaseTimer;
    /** Tables could not be made, and the next use tries again. A file that no step can bring up to date waits
     * for the next start. */
    bool mTablesMissing = false;
};
