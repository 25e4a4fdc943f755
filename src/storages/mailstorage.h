// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "application/base/fetchedoctets.h"
#include "application/base/lookup.h"
#include "easitems/easitemscommon.h"
#include "easitems/emailserverid.h"

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <optional>

class EasAccount;
class EasBodyContainer;
class EasEmailItem;
class EasFolderItem;

/** What was fetched for one part of a message: which it is, and its type, octets and file name. */
struct MessagePartContent
{
    QString location;
    QString contentType;
    FetchedOctets octets;
    QString fileName;
};

/**
 * The device's mail store as the requests see it: folders and messages of one account.
 *
 * An account owns its storage and hands it out as a shared pointer. Operations return false (or an empty
 * list) after they have logged what went wrong; none throws. What asks the mapping as well is unread where
 * that could not be read. Main thread only.
 */
class MailStorage : public QObject
{
    Q_OBJECT

public:
    MailStorage(EasAccount *account, QObject *parent);
    ~MailStorage() override;

    EasAccount *account() const;

    virtual bool updateFolders(
        QList<EasFolderItem> &added, QList<EasFolderItem> &changed, const QStringList &deleted) = 0;
    virtual bool updateEmails(
        QList<EasEmailItem> &added, QList<EasEmailItem> &changed, const QStringList &deleted) = 0;
    virtual bool addSearchResults(QList<EasEmailItem> &items, QList<quint64> &ids) = 0;
    virtual bool successfullyUpdatedEmails(QList<EasEmailItem> &items) = 0;
    virtual Lookup<QList<EasEmailItem>> addedEmails(const QString &localFolderId) = 0;
    virtual Lookup<QList<EasEmailItem>> updatedEmails(const QString &localFolderId) = 0;
    virtual Lookup<QList<EasEmailItem>> movedEmails() = 0;
    virtual Lookup<QList<KeptEmailId>> deletedEmails(const QString &localFolderId) = 0;
    virtual bool purgeDeletedEmails(const QList<KeptEmailId> &ids) = 0;
    virtual QList<EasFolderItem> addedFolders() = 0;
    virtual bool purgeAddedFolders() = 0;
    virtual QStringList deletedFolders() = 0;
    virtual bool purgeDeletedFolders() = 0;
    virtual bool deleteEmailsByLocalIds(const QList<quint64> &ids) = 0;
    virtual EasEmailItem queryMessage(const QString &localId) = 0;
    virtual EasEmailItem smartQueryMessage(const QString &localId) = 0;
    virtual bool isReply(const QString &localId) const = 0;
    virtual bool isForward(const QString &localId) const = 0;
    /** Moves a message that was not sent into Drafts, where the user finds and edits it. */
    virtual bool moveToDrafts(const QString &localId) = 0;
    /** Where the user finds a message that was sent. */
    enum class SentCopy {
        OnServer, ///< the server keeps one in Sent Items, which a sync brings
        KeptHere ///< the message itself, in the device's folder of sent ones
    };
    /** Takes a message that was sent out of the Outbox; one that has gone meanwhile is as good. A message
     * that cannot be taken out is marked, if it can be, so that wasSent() keeps it from being sent again. */
    virtual bool settleSent(const QString &localId, SentCopy copy) = 0;
    virtual bool wasSent(const QString &localId) const = 0;
    virtual bool initialized() const = 0;
    virtual bool updateMovedEmails(const QList<EasEmailItem> &items) = 0;
    virtual bool updateBodyPart(quint64 messageId, const EasBodyContainer &body) = 0;
    virtual bool updateMessagePart(quint64 messageId, const QString &location, const QString &contentType,
        const FetchedOctets &octets, const QString &fileName) = 0;
    /** Puts the iCalendar reply to an invitation into the message that answers it; with an occurrence, by its
     * original start, the reply is about that one alone. False if no reply could be made or stored. */
    virtual bool updateCalendarResponsePart(quint64 replyMessageId, quint64 invitationId,
        EasItemsCommon::UserResponseType response, const QDateTime &occurrence = {}) = 0;
    /** The same for an answer to an event of the calendar, by its local identifier. */
    virtual bool updateCalendarResponsePart(quint64 replyMessageId, const QString &eventId,
        EasItemsCommon::UserResponseType response, const QDateTime &occurrence = {}) = 0;
    virtual QStringList queryAttachmentsLocations(quint64 messageId, bool onlyDownloaded) = 0;
    virtual bool isAttachmentDownloaded(quint64 messageId, const QString &location) = 0;
    virtual EasItemsCommon::TBoolean isAttachmentPart(quint64 messageId, const QString &location) = 0;
    virtual QString fileReferenceFromLocation(quint64 messageId, const QString &location) = 0;
    virtual QString serverUidFromMessageId(quint64 messageId) = 0;
    /**
     * The folder on the server of a message that a search has found and that is known by its place there;
     * empty for all others, also for results that have a long identifier.
     */
    virtual Lookup<QString> collectionIdOfResult(quint64) { return QString(); }
    virtual int estimatedDataSizeFromLocation(quint64 messageId, const QString &location) = 0;
    /** Stores what was fetched for several attachments of a message, and writes the message once. */
    virtual bool updateMessageParts(quint64 messageId, const QList<MessagePartContent> &parts) = 0;

    /**
     * A sync of the account begins: what the user has changed is looked for anew. In the course of a sync the
     * storage may go by what the store tells of.
     */
    virtual void lookForChangesAnew() {}

    /** Removes what came from the server into the folder; false, logged, if the store refuses. */
    virtual bool cleanUpFolder(const EasFolderItem &folder) = 0;
    /** Unread if the mail account or a row cannot be read, which is not the same as no folder. */
    virtual Lookup<QList<EasFolderItem>> foldersToSynchronize() = 0;

Q_SIGNALS:
    /** The user made or removed folders that the server does not know of yet. */
    void changesAvailable();
    /** The user marked, moved or deleted messages in these folders; the server does not know it yet. */
    void messagesChanged(const QStringList &localFolderIds);

private:
    EasAccount *mAccount;
};
