// SPDX-License-Identifier: LGPL-2.1-or-later
#include "application/mapping/easdatabase.h"

#include "application/base/clock.h"
#include "application/base/logging.h"
#include "application/mapping/databasereading.h"
#include "application/mapping/databaseschema.h"
#include "easitems/containers/attachmententity.h"
#include "easitems/containers/easattachmentcontainer.h"
#include "protocol/base/protocolutils.h"

#include <QCoreApplication>

namespace {

const char DefaultPath[] = ".local/share/system/privileged/eas-fennel/";
const char DefaultName[] = "fennel_eas.db";
constexpr uint ReleaseTimeout = 60000;

EasDatabase *easDatabaseInstance = nullptr;

} // namespace

bool EasDatabase::TestMode = false;

void EasDatabase::initTestMode()
{
    TestMode = true;
}

void EasDatabase::initializeInstance(QObject *parent, const char *path, const char *name)
{
    if (easDatabaseInstance) {
        qCCritical(eas()) << "easDatabaseInstance is already initialized";
        return;
    }
    easDatabaseInstance = new EasDatabase(parent);
    easDatabaseInstance->init(path, name);
}

EasDatabase *EasDatabase::instance()
{
    if (!easDatabaseInstance)
        initializeInstance(QCoreApplication::instance(), nullptr, nullptr);
    easDatabaseInstance->startDataBaseTimer(ReleaseTimeout);
    return easDatabaseInstance;
}

void EasDatabase::releaseInstance()
{
    if (!easDatabaseInstance)
        return;
    qCInfo(eas()) << "Release EAS data base";
    delete easDatabaseInstance;
}

EasDatabase::EasDatabase(QObject *parent)
    : QObject(parent)
    , mAccounts(mConnection.statements())
    , mFolders(mConnection.statements())
    , mMail(mConnection.statements())
    , mEvents(mConnection.statements())
    , mContacts(mConnection.statements())
    , mAttachments(mConnection.statements())
{
    mReleaseTimer.setSingleShot(true);
    connect(&mReleaseTimer, &QTimer::timeout, this, &EasDatabase::onReleaseDatabaseTimer);
}

EasDatabase::~EasDatabase()
{
    // The application object may destroy the instance as its child; nothing may find it afterwards.
    if (easDatabaseInstance == this)
        easDatabaseInstance = nullptr;
}

void EasDatabase::init(const char *path, const char *name)
{
    initializeDB(path ? path : DefaultPath, name ? name : DefaultName);
}

void EasDatabase::initializeDB(const char *path, const char *name)
{
    qCInfo(eas()) << "Initialize EAS data base";
    mConnection.initialize(QString::fromUtf8(path), QString::fromUtf8(name));
    if (!mConnection.database().isValid()) {
        qCCritical(eas()) << "invalid Eas Database connection";
        return;
    }
    prepareTables();
}

void EasDatabase::prepareTables()
{
    // First of all: what a step asks may ask for the instance in its turn.
    mTablesMissing = false;
    mTablesMissing = DatabaseSchema(mConnection.database()).prepare() == DatabaseSchema::Result::TryAgain;
}

void EasDatabase::startDataBaseTimer(uint milliseconds)
{
    // What hindered the start, a full disk for one, may be over.
    if (!mConnection.open())
        qCCritical(eas()) << "failed to open DB connection";
    else if (mTablesMissing)
        prepareTables();
    mReleaseTimer.start(Clock::instance().timerInterval(int(milliseconds), Clock::Timer::DatabaseRelease));
}

void EasDatabase::onReleaseDatabaseTimer()
{
    mConnection.close();
    qCInfo(eas()) << "database is released";
}

void EasDatabase::onAccountAdded(EasAccountId accountId)
{
    startDataBaseTimer(ReleaseTimeout);
    mAccounts.initialize(accountId);
}

void EasDatabase::onAccountDeleted(EasAccountId accountId)
{
    startDataBaseTimer(ReleaseTimeout);
    mAccounts.removeDeleted({ accountId });
}

Lookup<EasDatabase::AppDataType> EasDatabase::getAppDataType(const QString &serverId)
{
    DatabaseStatement select(mConnection.statements(),
        QStringLiteral("SELECT 2 FROM contacts WHERE server_id = :server_id_value "
                       "UNION SELECT 1 FROM emails WHERE server_id = :server_id_value "
                       "UNION SELECT 3 FROM calendar WHERE server_id = :server_id_value"));
    select.bind(QStringLiteral(":server_id_value"), serverId);
    const StatementFailure failure("Can't exec getAppDataType() query for serverId:",
        "Can't prepare getAppDataType() query for serverId:");
    return DatabaseReading::value(
        select, failure, AppDataNone,
        [](const DatabaseStatement &row) { return AppDataType(row.value(0).toInt()); }, serverId);
}

bool EasDatabase::removeAccount(EasAccountId accountId)
{
    startDataBaseTimer(ReleaseTimeout);
    return mAccounts.remove(accountId);
}

bool EasDatabase::clearAccount(EasAccountId accountId)
{
    startDataBaseTimer(ReleaseTimeout);
    return mAccounts.clear(accountId);
}

bool EasDatabase::folderItemsChanges(EasAccountId accountId, const QList<EasFolderItem> &added,
    const QList<EasFolderItem> &updated, const QStringList &deletedServerIds)
{
    return addFolderItems(accountId, added) && updateFolderItems(accountId, updated)
        && deleteFolderItems(accountId, deletedServerIds);
}

bool EasDatabase::emailItemsChanges(EasAccountId accountId, const QList<EasEmailItem> &added,
    const QList<EasEmailItem> &updated, const QStringList &deletedServerIds)
{
    return addEmailItems(accountId, added) && updateEmailItems(accountId, updated)
        && deleteEmailItems(accountId, deletedServerIds);
}

bool EasDatabase::calendarItemsChanges(EasAccountId accountId, const QList<EasCalendarItem> &added,
    const QList<EasCalendarItem> &updated, const QStringList &deletedServerIds,
    const QStringList &replacedServerIds)
{
    return deleteCalendarItems(accountId, replacedServerIds) && addCalendarItems(accountId, added)
        && updateCalendarItems(accountId, updated) && deleteCalendarItems(accountId, deletedServerIds);
}

bool EasDatabase::contactsItemsChanges(EasAccountId accountId, const QList<EasContactsItem> &added,
    const QList<EasContactsItem> &updated, const QStringList &deletedServerIds, const QString &collectionId)
{
    return addContactsItems(accountId, added) && updateContactsItems(accountId, updated, collectionId)
        && deleteContactsItems(accountId, deletedServerIds, collectionId);
}

bool EasDatabase::finishClearingAccount(EasAccountId accountId)
{
    const Lookup<QString> key = folderSyncKey(accountId);
    if (!key || *key != ProtocolUtils::InitialSyncKey)
        return bool(key);
    const Lookup<QMap<QString, QString>> folders = serverToLocalFolderIds(accountId);
    const Lookup<QMap<QString, QString>> messages = serverToLocalEmailIds(accountId);
    if (!folders || !messages)
        return false;
    QStringList left = folders->keys() + messages->keys();
    left.removeAll(QString()); // the hierarchy itself
    return left.isEmpty() || clearAccount(accountId);
}

bool EasDatabase::cleanUp(const QList<quint64> &accountIds)
{
    const Lookup<QList<EasAccountId>> gone = mAccounts.othersThan(accountIds);
    if (!gone || gone->isEmpty())
        return bool(gone);
    QStringList names;
    for (const EasAccountId id : *gone)
        names.append(QString::number(id));
    qCInfo(eas()) << "accounts for clean up:" << names.join(QStringLiteral(", "));
    return mAccounts.removeDeleted(*gone);
}

// Attachments of events

bool EasDatabase::addCalendarAttachment(const QString &eventId, const AttachmentEntity &attachment)
{
    return mAttachments.add(eventId, attachment);
}

bool EasDatabase::updateCalendarAttachmentFileRefernce(
    const QString &eventId, const AttachmentEntity &attachment)
{
    return mAttachments.updateFileReference(eventId, attachment);
}

Lookup<std::optional<EasAttachmentContainer>> EasDatabase::getAttachmentByFileReference(
    const QString &eventId, const QString &fileReference)
{
    return mAttachments.byFileReference(eventId, fileReference);
}

Lookup<std::optional<EasAttachmentContainer>> EasDatabase::getAttachmentByContentId(
    const QString &eventId, const QString &contentId)
{
    return mAttachments.byContentId(eventId, contentId);
}

Lookup<QList<EasAttachmentContainer>> EasDatabase::getCalendarAttachments(const QString &eventId)
{
    return mAttachments.ofEvent(eventId);
}
