// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include "easitems/containers/easbodycontainer.h"
#include "easitems/easemailitem.h"
#include "easitems/easfolderitem.h"
#include "storages/mailstorage.h"
#include "support/stubfolders.h"

#include <QMap>

/**
 * A mail store that knows the server identifiers of some messages and the places of their attachments, and
 * keeps what was fetched.
 */
class StubMailStorage : public MailStorage
{
public:
    StubMailStorage()
        : MailStorage(nullptr, nullptr)
    {
    }

    /** A message that waits to be sent. */
    struct Outgoing
    {
        EasEmailItem whole;
        EasEmailItem smart;
        bool isReply = false;
        bool isForward = false;
    };
    /** By local identifiers. */
    QMap<QString, Outgoing> outgoing;
    /** What became of them. */
    QStringList drafts;
    QStringList removedAsSent;
    QStringList keptAsSent;
    /** Whether a message can be taken out of the Outbox. */
    bool settles = true;
    /** Messages that were sent and could not be taken out then. */
    QStringList sent;

    QMap<quint64, QString> serverUids;
    StubFolders folders;
    /** Of attachments that are still to be fetched; their references are "MESSAGE/LOCATION". */
    QMap<quint64, QStringList> attachments;
    /** What was fetched, by the references of the attachments, and in how many writes. */
    QMap<QString, QByteArray> files;
    int writes = 0;
    QMap<quint64, QString> bodies;
    /** Messages whose bodies cannot be stored. */
    QList<quint64> lockedMessages;
    bool takesEmails = false;
    /** What a search has found; the messages are numbered from here on. */
    static constexpr quint64 FirstSearchResult = 100;
    QList<EasEmailItem> searchResults;
    bool takesSearchResults = true;
    /** "REPLY: RESPONSE to message ID" or "REPLY: RESPONSE to EVENT OCCURRENCE", of each calendar part. */
    QStringList calendarParts;
    bool makesCalendarParts = true;
    /** Messages that were to be deleted, and whether they can be. */
    QList<quint64> deleted;
    bool deletesEmails = false;
    QList<EasFolderItem> synchronizedFolders;
    bool isInitialized = true;
    bool cleansUp = true;

    static QString reference(quint64 messageId, const QString &location)
    {
        return QString::number(messageId) + QLatin1Char('/') + location;
    }

    QString serverUidFromMessageId(quint64 messageId) override { return serverUids.value(messageId); }

    bool updateFolders(
        QList<EasFolderItem> &added, QList<EasFolderItem> &changed, const QStringList &deleted) override
    {
        return folders.update(added, changed, deleted);
    }
    bool updateEmails(QList<EasEmailItem> &, QList<EasEmailItem> &, const QStringList &) override
    {
        return takesEmails;
    }
    bool addSearchResults(QList<EasEmailItem> &items, QList<quint64> &ids) override
    {
        searchResults = items;
        for (int i = 0; takesSearchResults && i < items.size(); ++i)
            ids.append(FirstSearchResult + quint64(i));
        return takesSearchResults;
    }
    bool successfullyUpdatedEmails(QList<EasEmailItem> &) override { return false; }
    Lookup<QList<EasEmailItem>> addedEmails(const QString &) override { return QList<EasEmailItem>(); }
    Lookup<QList<EasEmailItem>> updatedEmails(const QString &) override { return QList<EasEmailItem>(); }
    Lookup<QList<EasEmailItem>> movedEmails() override { return QList<EasEmailItem>(); }
    Lookup<QList<KeptEmailId>> deletedEmails(const QString &) override { return QList<KeptEmailId>(); }
    bool purgeDeletedEmails(const QList<KeptEmailId> &) override { return false; }
    QList<EasFolderItem> addedFolders() override { return {}; }
    bool purgeAddedFolders() override { return false; }
    QStringList deletedFolders() override { return {}; }
    bool purgeDeletedFolders() override { return false; }
    bool deleteEmailsByLocalIds(const QList<quint64> &ids) override
    {
        deleted.append(ids);
        return deletesEmails;
    }
    EasEmailItem queryMessage(const QString &localId) override { return outgoing.value(localId).whole; }
    EasEmailItem smartQueryMessage(const QString &localId) override { return outgoing.value(localId).smart; }
    bool isReply(const QString &localId) const override { return outgoing.value(localId).isReply; }
    bool isForward(const QString &localId) const override { return outgoing.value(localId).isForward; }
    bool moveToDrafts(const QString &localId) override
    {
        drafts.append(localId);
        return true;
    }
    bool settleSent(const QString &localId, SentCopy copy) override
    {
        (copy == SentCopy::OnServer ? removedAsSent : keptAsSent).append(localId);
        return settles;
    }
    bool wasSent(const QString &localId) const override { return sent.contains(localId); }
    bool initialized() const override { return isInitialized; }
    bool updateMovedEmails(const QList<EasEmailItem> &) override { return false; }
    bool updateBodyPart(quint64 messageId, const EasBodyContainer &body) override
    {
        bodies.insert(messageId, body.data());
        return !lockedMessages.contains(messageId);
    }
    bool updateMessagePart(quint64 messageId, const QString &location, const QString &contentType,
        const FetchedOctets &octets, const QString &fileName) override
    {
        return updateMessageParts(messageId, { { location, contentType, octets, fileName } });
    }
    bool updateCalendarResponsePart(quint64 replyId, quint64 invitationId,
        EasItemsCommon::UserResponseType response, const QDateTime &occurrence) override
    {
        return updateCalendarResponsePart(
            replyId, QStringLiteral("message %1").arg(invitationId), response, occurrence);
    }
    bool updateCalendarResponsePart(quint64 replyId, const QString &eventId,
        EasItemsCommon::UserResponseType response, const QDateTime &occurrence) override
    {
        calendarParts.append(QStringLiteral("%1: %2 to %3 %4")
                                 .arg(replyId)
                                 .arg(int(response))
                                 .arg(eventId, occurrence.toUTC().toString(Qt::ISODate))
                                 .trimmed());
        return makesCalendarParts;
    }
    QStringList queryAttachmentsLocations(quint64 messageId, bool onlyDownloaded) override
    {
        return onlyDownloaded ? QStringList() : attachments.value(messageId);
    }
    bool isAttachmentDownloaded(quint64, const QString &) override { return false; }
    EasItemsCommon::TBoolean isAttachmentPart(quint64 messageId, const QString &location) override
    {
        return attachments.value(messageId).contains(location) ? EasItemsCommon::TTrue
                                                               : EasItemsCommon::TUndefined;
    }
    QString fileReferenceFromLocation(quint64 messageId, const QString &location) override
    {
        return attachments.value(messageId).contains(location) ? reference(messageId, location) : QString();
    }
    int estimatedDataSizeFromLocation(quint64, const QString &) override { return 1; }
    bool updateMessageParts(quint64 messageId, const QList<MessagePartContent> &parts) override
    {
        ++writes;
        for (const MessagePartContent &part : parts)
            files.insert(reference(messageId, part.location), part.octets.all());
        return true;
    }
    bool cleanUpFolder(const EasFolderItem &) override { return cleansUp; }
    Lookup<QList<EasFolderItem>> foldersToSynchronize() override { return synchronizedFolders; }
};
