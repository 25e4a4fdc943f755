// SPDX-License-Identifier: LGPL-2.1-or-later
#include <qmailaccount.h>

#include "internal/mailvaluedata.h"
#include "internal/statusflags.h"

#include <algorithm>

const quint64 &QMailAccount::SynchronizationEnabled = maskOf(accountFlags, "SynchronizationEnabled");
const quint64 &QMailAccount::Synchronized = maskOf(accountFlags, "Synchronized");
const quint64 &QMailAccount::AppendSignature = maskOf(accountFlags, "AppendSignature");
const quint64 &QMailAccount::UserEditable = maskOf(accountFlags, "UserEditable");
const quint64 &QMailAccount::UserRemovable = maskOf(accountFlags, "UserRemovable");
const quint64 &QMailAccount::PreferredSender = maskOf(accountFlags, "PreferredSender");
const quint64 &QMailAccount::MessageSource = maskOf(accountFlags, "MessageSource");
const quint64 &QMailAccount::CanRetrieve = maskOf(accountFlags, "CanRetrieve");
const quint64 &QMailAccount::MessageSink = maskOf(accountFlags, "MessageSink");
const quint64 &QMailAccount::CanTransmit = maskOf(accountFlags, "CanTransmit");
const quint64 &QMailAccount::Enabled = maskOf(accountFlags, "Enabled");
const quint64 &QMailAccount::CanReferenceExternalData = maskOf(accountFlags, "CanReferenceExternalData");
const quint64 &QMailAccount::CanTransmitViaReference = maskOf(accountFlags, "CanTransmitViaReference");
const quint64 &QMailAccount::CanCreateFolders = maskOf(accountFlags, "CanCreateFolders");
const quint64 &QMailAccount::UseSmartReply = maskOf(accountFlags, "UseSmartReply");
const quint64 &QMailAccount::CanSearchOnServer = maskOf(accountFlags, "CanSearchOnServer");
const quint64 &QMailAccount::HasPersistentConnection = maskOf(accountFlags, "HasPersistentConnection");

QMailAccount::QMailAccount()
    : d(new QMailAccountData)
{
}

QMailAccount::QMailAccount(const QMailAccountId &id)
    : QMailAccount(QMailStore::instance()->account(id))
{
}

QMailAccount::QMailAccount(const QMailAccount &other) = default;
QMailAccount &QMailAccount::operator=(const QMailAccount &other) = default;
QMailAccount::~QMailAccount() = default;

QMailAccountId QMailAccount::id() const
{
    return d->id;
}

void QMailAccount::setId(const QMailAccountId &value)
{
    d->id = value;
}

QString QMailAccount::name() const
{
    return d->name;
}

void QMailAccount::setName(const QString &value)
{
    d->name = value;
}

QMailAddress QMailAccount::fromAddress() const
{
    return d->fromAddress;
}

void QMailAccount::setFromAddress(const QMailAddress &value)
{
    d->fromAddress = value;
}

QMailMessageMetaDataFwd::MessageType QMailAccount::messageType() const
{
    return d->messageType;
}

void QMailAccount::setMessageType(QMailMessageMetaDataFwd::MessageType value)
{
    d->messageType = value;
}

QMailFolderId QMailAccount::standardFolder(QMailFolder::StandardFolder folder) const
{
    return d->standardFolders.value(folder);
}

void QMailAccount::setStandardFolder(QMailFolder::StandardFolder folder, const QMailFolderId &id)
{
    if (id.isValid())
        d->standardFolders.insert(folder, id);
    else
        d->standardFolders.remove(folder);
}

const QMap<QMailFolder::StandardFolder, QMailFolderId> &QMailAccount::standardFolders() const
{
    return d->standardFolders;
}

QMailAccount::FolderSyncPolicy QMailAccount::folderSyncPolicy() const
{
    return d->policy;
}

void QMailAccount::setFolderSyncPolicy(FolderSyncPolicy policy)
{
    d->policy = policy;
}

const QList<QMailFolderId> QMailAccount::foldersToSync() const
{
    const QMailFolderKey ofAccount = QMailFolderKey::parentAccountId(d->id);
    const QMailFolderId inbox = standardFolder(QMailFolder::InboxFolder);
    QList<QMailFolderId> folders;
    switch (d->policy) {
    case SyncSelectedFolders:
        folders = QMailStore::instance()->queryFolders(
            ofAccount & QMailFolderKey::status(QMailFolder::SynchronizationEnabled));
        break;
    case SyncInboxOnly:
        if (inbox.isValid())
            folders.append(inbox);
        break;
    case SyncInboxAndSubfolders:
        if (inbox.isValid()) {
            folders =
                QMailStore::instance()->queryFolders(ofAccount & QMailFolderKey::ancestorFolderIds(inbox));
            folders.append(inbox);
        }
        break;
    case SyncEverything:
        folders = QMailStore::instance()->queryFolders(ofAccount);
        break;
    }
    std::sort(folders.begin(), folders.end());
    return folders;
}

quint64 QMailAccount::status() const
{
    return d->status;
}

void QMailAccount::setStatus(quint64 newStatus)
{
    d->status = newStatus;
}

void QMailAccount::setStatus(quint64 mask, bool set)
{
    setStatus(set ? d->status | mask : d->status & ~mask);
}

quint64 QMailAccount::statusMask(const QString &flagName)
{
    return QMailStore::instance()->accountStatusMask(flagName);
}

QString QMailAccount::customField(const QString &name) const
{
    return d->fields.values.value(name);
}

void QMailAccount::setCustomField(const QString &name, const QString &value)
{
    d->fields.set(name, value);
}

void QMailAccount::setCustomFields(const QMap<QString, QString> &fields)
{
    d->fields.replace(fields);
}

void QMailAccount::removeCustomField(const QString &name)
{
    d->fields.remove(name);
}

const QMap<QString, QString> &QMailAccount::customFields() const
{
    return d->fields.values;
}
