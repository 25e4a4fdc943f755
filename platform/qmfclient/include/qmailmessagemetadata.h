// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <qmailaddress.h>
#include <qmailid.h>
#include <qmailmessagefwd.h>
#include <qmailtimestamp.h>

#include <QList>
#include <QMap>
#include <QSharedDataPointer>
#include <QString>

class QMailMessageMetaDataData;

/**
 * What the store knows of a message beside its content. A value; QMailStore::updateMessage writes it.
 * content(), size() and the availability bits are only what the caller set.
 */
class QMF_EXPORT QMailMessageMetaData : public QMailMessageMetaDataFwd
{
public:
    static const quint64 &Incoming;
    static const quint64 &Outgoing;
    static const quint64 &Sent;
    static const quint64 &Replied;
    static const quint64 &RepliedAll;
    static const quint64 &Forwarded;
    static const quint64 &ContentAvailable;
    static const quint64 &Read;
    static const quint64 &Removed;
    static const quint64 &ReadElsewhere;
    static const quint64 &UnloadedData;
    static const quint64 &New;
    static const quint64 &ReadReplyRequested;
    static const quint64 &Trash;
    static const quint64 &PartialContentAvailable;
    static const quint64 &HasAttachments;
    static const quint64 &HasReferences;
    static const quint64 &HasUnresolvedReferences;
    static const quint64 &Draft;
    static const quint64 &Outbox;
    static const quint64 &Junk;
    static const quint64 &TransmitFromExternal;
    static const quint64 &LocalOnly;
    static const quint64 &Temporary;
    static const quint64 &ImportantElsewhere;
    static const quint64 &Important;
    static const quint64 &HighPriority;
    static const quint64 &LowPriority;
    static const quint64 &CalendarInvitation;
    static const quint64 &Todo;
    static const quint64 &HasSignature;
    static const quint64 &HasEncryption;
    static const quint64 &NoNotification;
    static const quint64 &CalendarCancellation;

    QMailMessageMetaData();
    QMailMessageMetaData(const QMailMessageId &id); // NOLINT: converts on purpose
    QMailMessageMetaData(const QString &uid, const QMailAccountId &accountId);
    QMailMessageMetaData(const QMailMessageMetaData &other);
    QMailMessageMetaData &operator=(const QMailMessageMetaData &other);
    virtual ~QMailMessageMetaData();

    virtual QMailMessageId id() const;
    virtual void setId(const QMailMessageId &id);
    virtual QMailAccountId parentAccountId() const;
    virtual void setParentAccountId(const QMailAccountId &id);
    virtual QMailFolderId parentFolderId() const;
    virtual void setParentFolderId(const QMailFolderId &id);
    virtual QMailFolderId previousParentFolderId() const;
    virtual void setPreviousParentFolderId(const QMailFolderId &id);
    virtual QMailFolderId restoreFolderId() const;
    virtual void setRestoreFolderId(const QMailFolderId &id);
    virtual QMailThreadId parentThreadId() const;
    virtual void setParentThreadId(const QMailThreadId &id);
    virtual QMailMessageId inResponseTo() const;
    virtual void setInResponseTo(const QMailMessageId &id);
    virtual ResponseType responseType() const;
    virtual void setResponseType(ResponseType type);
    virtual MessageType messageType() const;
    virtual void setMessageType(MessageType type);
    virtual ContentType content() const;
    virtual void setContent(ContentType type);
    virtual QString serverUid() const;
    virtual void setServerUid(const QString &uid);
    virtual QMailAddress from() const;
    virtual void setFrom(const QMailAddress &from);
    virtual QString subject() const;
    virtual void setSubject(const QString &subject);
    virtual QMailTimeStamp date() const;
    virtual void setDate(const QMailTimeStamp &date);
    virtual QMailTimeStamp receivedDate() const;
    virtual void setReceivedDate(const QMailTimeStamp &date);
    virtual QList<QMailAddress> recipients() const;
    virtual uint size() const;
    virtual void setSize(uint size);
    virtual QString preview() const;
    virtual void setPreview(const QString &preview);
    virtual QString contentScheme() const;
    virtual bool setContentScheme(const QString &scheme);
    virtual QString contentIdentifier() const;
    virtual bool setContentIdentifier(const QString &identifier);
    virtual bool contentAvailable() const;
    virtual bool partialContentAvailable() const;
    virtual bool dataModified() const;

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
    QSharedDataPointer<QMailMessageMetaDataData> d;
};
