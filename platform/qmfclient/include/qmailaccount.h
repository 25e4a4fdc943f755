// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailaddress.h>
#include <qmailfolder.h>
#include <qmailid.h>
#include <qmailmessagefwd.h>

#include <QList>
#include <QMap>
#include <QSharedDataPointer>
#include <QString>

class QMailAccountData;

/** A mail account as a value. The accounts are those of the account store, under the same numbers. */
class QMF_EXPORT QMailAccount
{
public:
    enum FolderSyncPolicy { SyncSelectedFolders, SyncInboxOnly, SyncInboxAndSubfolders, SyncEverything };

    static const quint64 &SynchronizationEnabled;
    static const quint64 &Synchronized;
    static const quint64 &AppendSignature;
    static const quint64 &UserEditable;
    static const quint64 &UserRemovable;
    static const quint64 &PreferredSender;
    static const quint64 &MessageSource;
    static const quint64 &CanRetrieve;
    static const quint64 &MessageSink;
    static const quint64 &CanTransmit;
    static const quint64 &Enabled;
    static const quint64 &CanReferenceExternalData;
    static const quint64 &CanTransmitViaReference;
    static const quint64 &CanCreateFolders;
    static const quint64 &UseSmartReply;
    static const quint64 &CanSearchOnServer;
    static const quint64 &HasPersistentConnection;

    QMailAccount();
    explicit QMailAccount(const QMailAccountId &id);
    QMailAccount(const QMailAccount &other);
    QMailAccount &operator=(const QMailAccount &other);
    ~QMailAccount();

    QMailAccountId id() const;
    void setId(const QMailAccountId &id);
    QString name() const;
    void setName(const QString &name);
    QMailAddress fromAddress() const;
    void setFromAddress(const QMailAddress &address);
    QMailMessageMetaDataFwd::MessageType messageType() const;
    void setMessageType(QMailMessageMetaDataFwd::MessageType type);

    QMailFolderId standardFolder(QMailFolder::StandardFolder folder) const;
    void setStandardFolder(QMailFolder::StandardFolder folder, const QMailFolderId &id);
    const QMap<QMailFolder::StandardFolder, QMailFolderId> &standardFolders() const;

    FolderSyncPolicy folderSyncPolicy() const;
    void setFolderSyncPolicy(FolderSyncPolicy policy);
    /** The folders that the policy takes in, as the store has them now, ascending. */
    const QList<QMailFolderId> foldersToSync() const;

    quint64 status() const;
    void setStatus(quint64 newStatus);
    void setStatus(quint64 mask, bool set);
    static quint64 statusMask(const QString &flagName);

    QString customField(const QString &name) const;
    void setCustomField(const QString &name, const QString &value);
    void setCustomFields(const QMap<QString, QString> &fields);
    void removeCustomField(const QString &name);
    const QMap<QString, QString> &customFields() const;

private:
    friend struct MailValueAccess;
    QSharedDataPointer<QMailAccountData> d;
};
