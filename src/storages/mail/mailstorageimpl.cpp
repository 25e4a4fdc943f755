// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailstorageimpl.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "easitems/easemailitem.h"
#include "easitems/easfolderitem.h"
#include "storages/mail/mailaccountfolders.h"
#include "storages/mail/maillocalchanges.h"
#include "storages/mail/mailmeetingreply.h"
#include "storages/mail/mailmessageparts.h"
#include "storages/mail/mailmovedmessages.h"
#include "storages/mail/mailoutgoing.h"
#include "storages/mail/mailsearchresults.h"

#include <qmailaccount.h>
#include <qmailfolderkey.h>
#include <qmailmessagekey.h>

#include <QUrl>

namespace {

QMailStore *workingStore()
{
    QMailStore *store = QMailStore::instance();
    return QMailStore::initializationState() == QMailStore::InitializationFailed ? nullptr : store;
}

} // namespace

MailStorageImpl::MailStorageImpl(EasAccount *account, QObject *parent)
    : MailStorage(account, parent)
    , mContext { workingStore(), account, QMailAccountId() }
    , mFolderChanges(mContext)
    , mFolders(mContext, mFolderChanges)
    , mBinding(mContext, mFolders, mFolderChanges)
    , mBatch(mContext)
    , mMarks(mContext)
    , mUserChanges(mContext)
{
    initializeStorage();
}

MailStorageImpl::~MailStorageImpl() = default;

void MailStorageImpl::initializeStorage()
{
    if (!mContext.account) {
        qCCritical(eas()) << "can't initialize MailStorage. EasAccount is null";
        return;
    }
    if (!mContext.store) {
        qCCritical(eas()) << "can't initialize MailStorage. mMailStore is null";
        return;
    }
    // The store emits inside its own calls; queued, a signal finds the mapping of what the engine itself did.
    qRegisterMetaType<QMailFolderIdList>("QMailFolderIdList");
    connect(mContext.store, &QMailStore::foldersAdded, this, &MailStorageImpl::onFoldersAdded,
        Qt::QueuedConnection);
    connect(mContext.store, &QMailStore::foldersRemoved, this, &MailStorageImpl::onFoldersRemoved,
        Qt::QueuedConnection);
    connect(
        mContext.store, &QMailStore::accountsAdded, this, [this] { mBinding.bindOnce(); },
        Qt::QueuedConnection);
    qRegisterMetaType<QMailAccountIdList>("QMailAccountIdList");
    // At once, so that a question right after a change knows of it.
    connect(mContext.store, &QMailStore::messagesUpdated, this,
        [this](const QMailMessageIdList &ids) { mMarks.messagesUpdated(ids); });
    connect(&mUserChanges, &MailUserChanges::found, this, &MailStorageImpl::messagesChanged);
    mUserChanges.listen();
    mBinding.bindOnce();
}

bool MailStorageImpl::storeAvailable() const
{
    if (mContext.store)
        return true;
    qCCritical(eas()) << "QMailStore is null";
    return false;
}

bool MailStorageImpl::initialized() const
{
    return mBinding.isBound();
}

bool MailStorageImpl::cleanUpAccounts(const QList<quint64> &accountIds)
{
    QMailStore *const store = workingStore();
    if (store)
        return MailAccountFolders::remove(*store, accountIds);
    qCCritical(eas()) << "QMailStore is null";
    return false;
}

bool MailStorageImpl::cleanUpDeletedAccounts(const QList<quint64> &)
{
    return true;
}

bool MailStorageImpl::updateFolders(
    QList<EasFolderItem> &added, QList<EasFolderItem> &changed, const QStringList &deleted)
{
    return storeAvailable() && mBinding.find() && mFolders.updateFolders(added, changed, deleted);
}

bool MailStorageImpl::updateEmails(
    QList<EasEmailItem> &added, QList<EasEmailItem> &changed, const QStringList &deleted)
{
    return storeAvailable() && mBatch.updateEmails(added, changed, deleted);
}

bool MailStorageImpl::addSearchResults(QList<EasEmailItem> &items, QList<quint64> &ids)
{
    if (!storeAvailable())
        return false;
    const auto folders = EasDatabase::instance()->serverToLocalFolderIds(mContext.accountId());
    if (!folders)
        return false;
    for (EasEmailItem &item : items) {
        // Some servers escape a folder's identifier in the hierarchy and not in a result.
        const auto escaped = QString::fromLatin1(QUrl::toPercentEncoding(item.collectionId()));
        item.setLocalCollectionId(folders->value(item.collectionId(), folders->value(escaped)).toULongLong());
    }
    return MailSearchResults(mContext).add(items, ids);
}

bool MailStorageImpl::successfullyUpdatedEmails(QList<EasEmailItem> &items)
{
    return storeAvailable() && mBatch.successfullyUpdatedEmails(items);
}

Lookup<QList<EasEmailItem>> MailStorageImpl::addedEmails(const QString &localFolderId)
{
    return storeAvailable() ? MailLocalChanges(mContext, mMarks).addedEmails(localFolderId)
                            : Lookup<QList<EasEmailItem>>(QList<EasEmailItem>());
}

Lookup<QList<EasEmailItem>> MailStorageImpl::updatedEmails(const QString &localFolderId)
{
    return storeAvailable() ? MailLocalChanges(mContext, mMarks).updatedEmails(localFolderId)
                            : Lookup<QList<EasEmailItem>>(QList<EasEmailItem>());
}

Lookup<QList<EasEmailItem>> MailStorageImpl::movedEmails()
{
    return storeAvailable() ? MailLocalChanges(mContext, mMarks).movedEmails()
                            : Lookup<QList<EasEmailItem>>(QList<EasEmailItem>());
}

Lookup<QList<KeptEmailId>> MailStorageImpl::deletedEmails(const QString &localFolderId)
{
    return storeAvailable() ? MailLocalChanges(mContext, mMarks).deletedEmails(localFolderId)
                            : Lookup<QList<KeptEmailId>>(QList<KeptEmailId>());
}

bool MailStorageImpl::purgeDeletedEmails(const QList<KeptEmailId> &ids)
{
    if (!storeAvailable())
        return false;
    // The store takes an empty list for all records of the account.
    return ids.isEmpty()
        || mContext.store->purgeMessageRemovalRecords(mContext.mailAccountId, KeptEmailId::texts(ids));
}

QList<EasFolderItem> MailStorageImpl::addedFolders()
{
    return storeAvailable() ? mFolderChanges.addedFolders() : QList<EasFolderItem>();
}

bool MailStorageImpl::purgeAddedFolders()
{
    mFolderChanges.purgeAddedFolders();
    return true;
}

QStringList MailStorageImpl::deletedFolders()
{
    return mFolderChanges.deletedFolders();
}

bool MailStorageImpl::purgeDeletedFolders()
{
    mFolderChanges.purgeDeletedFolders();
    return true;
}

bool MailStorageImpl::deleteEmailsByLocalIds(const QList<quint64> &ids)
{
    if (!storeAvailable())
        return false;
    if (ids.isEmpty()) {
        qCWarning(eas()) << "Tried to delete local emails, but emails list is empty";
        return true;
    }
    if (!initialized()) {
        qCCritical(eas()) << "MailStore is not initialized yet";
        return false;
    }
    QMailMessageIdList messageIds;
    for (const quint64 id : ids)
        messageIds.append(QMailMessageId(id));
    if (mBatch.deleteEmailItems(messageIds))
        return true;
    qCCritical(eas()) << "failed to remove messages: " << ids;
    return false;
}

EasEmailItem MailStorageImpl::queryMessage(const QString &localId)
{
    return storeAvailable() ? MailOutgoing(mContext).message(localId) : EasEmailItem();
}

EasEmailItem MailStorageImpl::smartQueryMessage(const QString &localId)
{
    return storeAvailable() ? MailOutgoing(mContext).smartMessage(localId) : EasEmailItem();
}

bool MailStorageImpl::isReply(const QString &localId) const
{
    return storeAvailable() && MailOutgoing(mContext).isReply(localId);
}

bool MailStorageImpl::isForward(const QString &localId) const
{
    return storeAvailable() && MailOutgoing(mContext).isForward(localId);
}

bool MailStorageImpl::moveToDrafts(const QString &localId)
{
    return storeAvailable() && MailOutgoing(mContext).moveToDrafts(localId);
}

bool MailStorageImpl::settleSent(const QString &localId, SentCopy copy)
{
    return storeAvailable() && MailOutgoing(mContext).settleSent(localId, copy);
}

bool MailStorageImpl::wasSent(const QString &localId) const
{
    return storeAvailable() && MailOutgoing(mContext).wasSent(localId);
}

bool MailStorageImpl::updateMovedEmails(const QList<EasEmailItem> &items)
{
    if (!storeAvailable())
        return false;
    if (items.isEmpty())
        return true;
    QStringList serverIds;
    for (const EasEmailItem &item : items)
        serverIds << item.previousServerId() << item.serverId();
    const auto serverToLocal =
        EasDatabase::instance()->serverToLocalEmailIds(mContext.accountId(), serverIds);
    return serverToLocal && MailMovedMessages(mContext).update(items, *serverToLocal);
}

bool MailStorageImpl::updateBodyPart(quint64 messageId, const EasBodyContainer &body)
{
    return storeAvailable() && MailMessageParts(mContext).updateBody(messageId, body);
}

bool MailStorageImpl::updateMessagePart(quint64 messageId, const QString &location,
    const QString &contentType, const FetchedOctets &octets, const QString &fileName)
{
    return updateMessageParts(messageId, { { location, contentType, octets, fileName } });
}

bool MailStorageImpl::updateMessageParts(quint64 messageId, const QList<MessagePartContent> &parts)
{
    return storeAvailable() && MailMessageParts(mContext).fill(messageId, parts);
}

void MailStorageImpl::lookForChangesAnew()
{
    mMarks.lookAnew();
}

bool MailStorageImpl::updateCalendarResponsePart(quint64 replyMessageId, quint64 invitationId,
    EasItemsCommon::UserResponseType response, const QDateTime &occurrence)
{
    return storeAvailable()
        && MailMeetingReply(mContext, replyMessageId, response, occurrence).answerMessage(invitationId);
}

bool MailStorageImpl::updateCalendarResponsePart(quint64 replyMessageId, const QString &eventId,
    EasItemsCommon::UserResponseType response, const QDateTime &occurrence)
{
    return storeAvailable()
        && MailMeetingReply(mContext, replyMessageId, response, occurrence).answerEvent(eventId);
}

QStringList MailStorageImpl::queryAttachmentsLocations(quint64 messageId, bool onlyDownloaded)
{
    return storeAvailable() ? MailMessageParts(mContext).locations(messageId, onlyDownloaded) : QStringList();
}

bool MailStorageImpl::isAttachmentDownloaded(quint64 messageId, const QString &location)
{
    return storeAvailable() && MailMessageParts(mContext).isDownloaded(messageId, location);
}

EasItemsCommon::TBoolean MailStorageImpl::isAttachmentPart(quint64 messageId, const QString &location)
{
    return storeAvailable() ? MailMessageParts(mContext).isAttachment(messageId, location)
                            : EasItemsCommon::TUndefined;
}

QString MailStorageImpl::fileReferenceFromLocation(quint64 messageId, const QString &location)
{
    return storeAvailable() ? MailMessageParts(mContext).fileReference(messageId, location) : QString();
}

int MailStorageImpl::estimatedDataSizeFromLocation(quint64 messageId, const QString &location)
{
    return storeAvailable() ? MailMessageParts(mContext).estimatedSize(messageId, location) : 0;
}

Lookup<QString> MailStorageImpl::collectionIdOfResult(quint64 messageId)
{
    const QMailFolderId folder =
        storeAvailable() ? MailSearchResults::folderOf(mContext, messageId) : QMailFolderId();
    if (!folder.isValid())
        return QString();
    const Lookup<EasFolderItem> item = EasDatabase::instance()->folderItemByLocalId(
        mContext.accountId(), QString::number(folder.toULongLong()));
    return item ? Lookup<QString>(item->serverId()) : Lookup<QString>::unread();
}

QString MailStorageImpl::serverUidFromMessageId(quint64 messageId)
{
    if (!storeAvailable())
        return QString();
    return mContext.store->messageMetaData(QMailMessageId(messageId)).serverUid();
}

bool MailStorageImpl::cleanUpFolder(const EasFolderItem &folder)
{
    return storeAvailable() && mFolders.cleanUpFolder(folder);
}

Lookup<QList<EasFolderItem>> MailStorageImpl::foldersToSynchronize()
{
    return storeAvailable() && mBinding.find() ? mFolders.foldersToSynchronize()
                                               : Lookup<QList<EasFolderItem>>::unread();
}

void MailStorageImpl::onFoldersAdded(QMailFolderIdList ids)
{
    if (storeAvailable() && mFolderChanges.foldersAdded(ids))
        Q_EMIT changesAvailable();
}

void MailStorageImpl::onFoldersRemoved(QMailFolderIdList ids)
{
    if (storeAvailable() && mFolderChanges.foldersRemoved(ids))
        Q_EMIT changesAvailable();
}
