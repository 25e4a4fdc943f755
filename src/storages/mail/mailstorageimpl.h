// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "storages/mail/mailaccountbinding.h"
#include "storages/mail/mailfolderadapter.h"
#include "storages/mail/mailfolderchanges.h"
#include "storages/mail/mailitembatch.h"
#include "storages/mail/mailpendingmarks.h"
#include "storages/mail/mailstorecontext.h"
#include "storages/mail/mailuserchanges.h"
#include "storages/mailstorage.h"

#include <qmailmessage.h>
#include <qmailstore.h>

/**
 * The mail storage over the device's mail store.
 *
 * A front: folders, messages, local changes and attachments each have a collaborator of their own beside it.
 * The mail account has the number of the Exchange account; where it appears later than this object, the
 * storage starts to work as soon as it is there. Owned by its account; main thread only.
 */
class MailStorageImpl : public MailStorage
{
    Q_OBJECT

public:
    explicit MailStorageImpl(EasAccount *account, QObject *parent = nullptr);
    ~MailStorageImpl() override;

    /** Removes the folders of mail accounts, and so their messages. */
    static bool cleanUpAccounts(const QList<quint64> &accountIds);
    /** Nothing to do: when an account has gone, the mail store has cleaned up already. */
    static bool cleanUpDeletedAccounts(const QList<quint64> &accountIds);

    bool updateFolders(
        QList<EasFolderItem> &added, QList<EasFolderItem> &changed, const QStringList &deleted) override;
    bool updateEmails(
        QList<EasEmailItem> &added, QList<EasEmailItem> &changed, const QStringList &deleted) override;
    bool addSearchResults(QList<EasEmailItem> &items, QList<quint64> &ids) override;
    bool successfullyUpdatedEmails(QList<EasEmailItem> &items) override;
    Lookup<QList<EasEmailItem>> addedEmails(const QString &localFolderId) override;
    Lookup<QList<EasEmailItem>> updatedEmails(const QString &localFolderId) override;
    Lookup<QList<EasEmailItem>> movedEmails() override;
    Lookup<QList<KeptEmailId>> deletedEmails(const QString &localFolderId) override;
    bool purgeDeletedEmails(const QList<KeptEmailId> &ids) override;
    QList<EasFolderItem> addedFolders() override;
    bool purgeAddedFolders() override;
    QStringList deletedFolders() override;
    bool purgeDeletedFolders() override;
    bool deleteEmailsByLocalIds(const QList<quint64> &ids) override;
    EasEmailItem queryMessage(const QString &localId) override;
    EasEmailItem smartQueryMessage(const QString &localId) override;
    bool isReply(const QString &localId) const override;
    bool isForward(const QString &localId) const override;
    bool moveToDrafts(const QString &localId) override;
    bool settleSent(const QString &localId, SentCopy copy) override;
    bool wasSent(const QString &localId) const override;
    bool initialized() const override;
    bool updateMovedEmails(const QList<EasEmailItem> &items) override;
    bool updateBodyPart(quint64 messageId, const EasBodyContainer &body) override;
    bool updateMessagePart(quint64 messageId, const QString &location, const QString &contentType,
        const FetchedOctets &octets, const QString &fileName) override;
    bool updateMessageParts(quint64 messageId, const QList<MessagePartContent> &parts) override;
    void lookForChangesAnew() override;
    bool updateCalendarResponsePart(quint64 replyMessageId, quint64 invitationId,
        EasItemsCommon::UserResponseType response, const QDateTime &occurrence = {}) override;
    bool updateCalendarResponsePart(quint64 replyMessageId, const QString &eventId,
        EasItemsCommon::UserResponseType response, const QDateTime &occurrence = {}) override;
    QStringList queryAttachmentsLocations(quint64 messageId, bool onlyDownloaded) override;
    bool isAttachmentDownloaded(quint64 messageId, const QString &location) override;
    EasItemsCommon::TBoolean isAttachmentPart(quint64 messageId, const QString &location) override;
    QString fileReferenceFromLocation(quint64 messageId, const QString &location) override;
    QString serverUidFromMessageId(quint64 messageId) override;
    Lookup<QString> collectionIdOfResult(quint64 messageId) override;
    int estimatedDataSizeFromLocation(quint64 messageId, const QString &location) override;
    bool cleanUpFolder(const EasFolderItem &folder) override;
    Lookup<QList<EasFolderItem>> foldersToSynchronize() override;

public Q_SLOTS:
    void onFoldersAdded(QMailFolderIdList ids);
    void onFoldersRemoved(QMailFolderIdList ids);

private:
    void initializeStorage();
    bool storeAvailable() const;

    MailStoreContext mContext;
    MailFolderChanges mFolderChanges;
    MailFolderAdapter mFolders;
    MailAccountBinding mBinding;
    MailItemBatch mBatch;
    MailPendingMarks mMarks;
    MailUserChanges mUserChanges;
};
