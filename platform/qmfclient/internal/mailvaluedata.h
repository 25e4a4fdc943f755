// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "internal/mailkeynode.h"
#include "internal/mimenode.h"

#include <qmailaccount.h>
#include <qmailfolder.h>
#include <qmailfolderkey.h>
#include <qmailmessage.h>
#include <qmailmessagekey.h>
#include <qmailstore.h>

#include <QMap>
#include <QSharedData>

/** Custom fields, and whether they differ from what the store has. */
struct MailCustomFields
{
    QMap<QString, QString> values;
    bool touched = false;

    void set(const QString &name, const QString &value)
    {
        values.insert(name, value);
        touched = true;
    }
    void remove(const QString &name) { touched = values.remove(name) > 0 || touched; }
    void replace(const QMap<QString, QString> &fields)
    {
        values = fields;
        touched = true;
    }
};

class QMailFolderData : public QSharedData
{
public:
    QMailFolderId id;
    QString path;
    QString displayName;
    QMailFolderId parentFolderId;
    QMailAccountId parentAccountId;
    quint64 status = 0;
    MailCustomFields fields;
};

class QMailAccountData : public QSharedData
{
public:
    QMailAccountId id;
    QString name;
    QMailAddress fromAddress;
    QMailMessageMetaDataFwd::MessageType messageType = QMailMessageMetaDataFwd::None;
    QMap<QMailFolder::StandardFolder, QMailFolderId> standardFolders;
    QMailAccount::FolderSyncPolicy policy = QMailAccount::SyncInboxOnly;
    quint64 status = 0;
    MailCustomFields fields;
};

class QMailMessageMetaDataData : public QSharedData
{
public:
    QMailMessageId id;
    QMailAccountId parentAccountId;
    QMailFolderId parentFolderId;
    QMailFolderId previousParentFolderId;
    QMailFolderId restoreFolderId;
    QMailThreadId parentThreadId;
    QMailMessageId inResponseTo;
    QMailMessageMetaData::ResponseType responseType = QMailMessageMetaData::NoResponse;
    QMailMessageMetaData::MessageType messageType = QMailMessageMetaData::None;
    QMailMessageMetaData::ContentType content = QMailMessageMetaData::UnknownContent;
    QString serverUid;
    QMailAddress from;
    QString subject;
    QMailTimeStamp date;
    QMailTimeStamp receivedDate;
    QList<QMailAddress> recipients;
    uint size = 0;
    uint contentSize = 0;
    QString preview;
    QString contentScheme;
    QString contentIdentifier;
    quint64 status = 0;
    bool modified = false;
    MailCustomFields fields;
};

/** The way from the value classes to what they hold, for the library itself. */
struct MailValueAccess
{
    static QMailFolderData &data(QMailFolder &folder) { return *folder.d; }
    static const QMailFolderData &data(const QMailFolder &folder) { return *folder.d; }
    static QMailAccountData &data(QMailAccount &account) { return *account.d; }
    static const QMailAccountData &data(const QMailAccount &account) { return *account.d; }
    static QMailMessageMetaDataData &data(QMailMessageMetaData &message) { return *message.d; }
    static const QMailMessageMetaDataData &data(const QMailMessageMetaData &message) { return *message.d; }

    static const MailKeyNode &node(const QMailMessageKey &key) { return *key.d; }
    static const MailKeyNode &node(const QMailFolderKey &key) { return *key.d; }
    static QMailMessageKey messageKey(const MailKeyNode *node) { return QMailMessageKey(node); }
    static QMailFolderKey folderKey(const MailKeyNode *node) { return QMailFolderKey(node); }

    /** The content as it is, loaded from the store if need be. */
    static const MimeNode &node(const QMailMessagePartContainer &container);
    /** The content of this object alone, to be written to; counts as a modification. */
    static MimeNode &edit(QMailMessagePartContainer &container);
    /** The content of this object alone; not a modification. */
    static MimeNode &own(QMailMessagePartContainer &container);
    /** The content as far as it is in memory: nothing is loaded. */
    static const MimeNode &unloadedNode(const QMailMessagePartContainer &container)
    {
        return *container.mNode;
    }
    static MimeNode &unloadedOwn(QMailMessagePartContainer &container) { return *container.mNode; }

    static const BodyOctets &octets(const QMailMessageBody &body);
    static QMailMessageBody body(const BodyOctets &encoded, QMailMessageBody::TransferEncoding encoding,
        const QMailMessageContentType &type);
    static const QList<uint> &indices(const QMailMessagePartContainer::Location &location)
    {
        return location.mIndices;
    }
    static QMailMessagePartContainer::Location location(const QMailMessageId &id, const QList<uint> &indices);

    static MailStoreEngine &engine(QMailStore &store) { return *store.mEngine; }
};
