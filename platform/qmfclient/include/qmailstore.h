// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailaccount.h>
#include <qmailaccountconfiguration.h>
#include <qmailaccountkey.h>
#include <qmailaccountsortkey.h>
#include <qmailfolder.h>
#include <qmailfolderkey.h>
#include <qmailfoldersortkey.h>
#include <qmailmessage.h>
#include <qmailmessagekey.h>
#include <qmailmessageremovalrecord.h>
#include <qmailmessagesortkey.h>

#include <QObject>
#include <QStringList>

#include <memory>

class MailStoreEngine;

/**
 * The device's mail store: accounts, folders, messages and removal records, kept in the folder that QMF_DATA
 * names. One object a thread, opened at the first instance(). It is never null: when the data cannot be
 * opened each operation fails and initializationState() says so.
 *
 * Signals come out before the call that caused them returns, and from other processes through the event loop.
 */
class QMF_EXPORT QMailStore : public QObject
{
    Q_OBJECT

public:
    enum InitializationState { Uninitialized = 0, InitializationFailed, Initialized };
    enum MessageRemovalOption { NoRemovalRecord = 1, CreateRemovalRecord };
    enum ChangeType { Added = 1, Removed, Updated, ContentsModified };
    enum ErrorCode {
        NoError = 0,
        InvalidId,
        ConstraintFailure,
        ContentInaccessible,
        NotYetImplemented,
        ContentNotRemoved,
        FrameworkFault,
        StorageInaccessible
    };

    static QMailStore *instance();
    static InitializationState initializationState();
    ~QMailStore() override;

    QMailStore::ErrorCode lastError() const;

    bool addAccount(QMailAccount *account, QMailAccountConfiguration *config);
    bool addFolder(QMailFolder *f);
    bool addMessage(QMailMessage *m);
    bool addMessage(QMailMessageMetaData *m);
    /** All or nothing. After false, ids in the objects mean nothing. */
    bool addMessages(const QList<QMailMessage *> &m);
    bool addMessages(const QList<QMailMessageMetaData *> &m);

    bool removeAccount(const QMailAccountId &id);
    /** Takes the folders below it along. */
    bool removeFolder(const QMailFolderId &id, MessageRemovalOption option = NoRemovalRecord);
    /** Removes only what matches; folders below a match stay. */
    bool removeFolders(const QMailFolderKey &key, MessageRemovalOption option = NoRemovalRecord);
    bool removeMessage(const QMailMessageId &id, MessageRemovalOption option = NoRemovalRecord);
    bool removeMessages(const QMailMessageKey &key, MessageRemovalOption option = NoRemovalRecord);

    bool updateAccount(QMailAccount *account, QMailAccountConfiguration *config = nullptr);
    bool updateFolder(QMailFolder *f);
    bool updateMessage(QMailMessage *m);
    bool updateMessage(QMailMessageMetaData *m);
    bool updateMessages(const QList<QMailMessage *> &m);
    bool updateMessages(const QList<QMailMessageMetaData *> &m);
    bool updateMessagesMetaData(const QMailMessageKey &key, quint64 messageStatus, bool set);

    int countMessages(const QMailMessageKey &key = QMailMessageKey()) const;
    int countFolders(const QMailFolderKey &key = QMailFolderKey()) const;
    const QMailAccountIdList queryAccounts(const QMailAccountKey &key = QMailAccountKey(),
        const QMailAccountSortKey &sortKey = QMailAccountSortKey(), uint limit = 0, uint offset = 0) const;
    const QMailFolderIdList queryFolders(const QMailFolderKey &key = QMailFolderKey(),
        const QMailFolderSortKey &sortKey = QMailFolderSortKey(), uint limit = 0, uint offset = 0) const;
    const QMailMessageIdList queryMessages(const QMailMessageKey &key = QMailMessageKey(),
        const QMailMessageSortKey &sortKey = QMailMessageSortKey(), uint limit = 0, uint offset = 0) const;

    QMailAccount account(const QMailAccountId &id) const;
    QMailFolder folder(const QMailFolderId &id) const;
    QMailMessage message(const QMailMessageId &id) const;
    QMailMessage message(const QString &uid, const QMailAccountId &accountId) const;
    QMailMessageMetaData messageMetaData(const QMailMessageId &id) const;
    QMailMessageMetaData messageMetaData(const QString &uid, const QMailAccountId &accountId) const;

    const QMailMessageRemovalRecordList messageRemovalRecords(
        const QMailAccountId &parentAccountId, const QMailFolderId &parentFolderId = QMailFolderId()) const;
    /** An empty list purges all records of the account. */
    bool purgeMessageRemovalRecords(
        const QMailAccountId &parentAccountId, const QStringList &serverUid = QStringList());

    bool registerMessageStatusFlag(const QString &name);
    quint64 messageStatusMask(const QString &name) const;
    bool registerFolderStatusFlag(const QString &name);
    quint64 folderStatusMask(const QString &name) const;
    bool registerAccountStatusFlag(const QString &name);
    quint64 accountStatusMask(const QString &name) const;
    void flushIpcNotifications();

Q_SIGNALS:
    void accountsAdded(const QMailAccountIdList &ids);
    void accountsRemoved(const QMailAccountIdList &ids);
    void accountsUpdated(const QMailAccountIdList &ids);
    void foldersAdded(const QMailFolderIdList &ids);
    void foldersRemoved(const QMailFolderIdList &ids);
    void foldersUpdated(const QMailFolderIdList &ids);
    void messagesAdded(const QMailMessageIdList &ids);
    void messagesRemoved(const QMailMessageIdList &ids);
    void messagesUpdated(const QMailMessageIdList &ids);
    void folderContentsModified(const QMailFolderIdList &ids);
    void messageContentsModified(const QMailMessageIdList &ids);
    void messageRemovalRecordsAdded(const QMailAccountIdList &ids);
    void messageRemovalRecordsRemoved(const QMailAccountIdList &ids);

private:
    friend struct MailValueAccess;
    QMailStore();
    std::unique_ptr<MailStoreEngine> mEngine;
};
