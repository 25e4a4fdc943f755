// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailmessagewriter.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "common/exchangeactivesync.h"
#include "easitems/easemailitem.h"
#include "storages/calendarstorage.h"
#include "storages/mail/mailattachments.h"
#include "storages/mail/mailbodywriter.h"
#include "storages/mail/mailheadertext.h"
#include "storages/mail/mailstorecontext.h"

#include <qmailmessage.h>
#include <qmailtimestamp.h>

#include <QSharedPointer>

namespace {

QString globalObjectId(const EasEmailItem &item)
{
    return QString::fromLatin1(item.meetingRequest().globalObjId());
}

/** From 16.0 on the identifier of the event takes the place of the global one. */
bool isIdentified(const EasMeetingRequestContainer &request)
{
    return !request.globalObjId().isEmpty() || !request.calendarMessageId().isEmpty();
}

QMap<QString, QString> customFields(const EasEmailItem &item)
{
    QMap<QString, QString> fields;
    if (!item.messageClass().isEmpty())
        fields.insert(ExchangeActiveSync::MESSAGE_CLASS_FIELD, item.messageClass());
    if (!globalObjectId(item).isEmpty())
        fields.insert(ExchangeActiveSync::MESSAGE_GLOBAL_OBJ_ID, globalObjectId(item));
    return fields;
}

void setVerb(QMailMessage &message, EasEmailItem::LastVerbExecutedValues verb)
{
    switch (verb) {
    case EasEmailItem::ReplyToSenderVerb:
        message.setStatus(QMailMessage::Replied, true);
        break;
    case EasEmailItem::ReplyToAllVerb:
        message.setStatus(QMailMessage::RepliedAll, true);
        break;
    case EasEmailItem::ForwardVerb:
        message.setStatus(QMailMessage::Forwarded, true);
        break;
    default:
        break;
    }
}

void setImportance(QMailMessage &message, EasEmailItem::EmailImportance importance)
{
    if (importance == EasEmailItem::LowImportance)
        message.setStatus(QMailMessage::LowPriority, true);
    else if (importance == EasEmailItem::HighImportance)
        message.setStatus(QMailMessage::HighPriority, true);
}

} // namespace

MailMessageWriter::MailMessageWriter(const MailStoreContext &context)
    : mContext(context)
{
}

QString MailMessageWriter::serverUid(const EasEmailItem &item)
{
    return item.serverId().isEmpty() ? item.longId() : item.serverId();
}

std::unique_ptr<QMailMessage> MailMessageWriter::mailMessageFromEmailItem(const EasEmailItem &item) const
{
    const QMailMessageId known(item.localId().toULongLong());
    if (known.isValid())
        return std::make_unique<QMailMessage>(mContext.store->message(known));

    auto message = std::make_unique<QMailMessage>();
    message->setParentAccountId(mContext.mailAccountId);
    message->setParentFolderId(QMailFolderId(item.localCollectionId()));
    message->setFrom(QMailAddress(MailHeaderText::singleLine(item.fromAddress())));
    message->setSubject(MailHeaderText::singleLine(item.subject()));
    const QMailTimeStamp received(ExchangeActiveSync::dateTimeFromString(item.dateReceived(), nullptr));
    message->setDate(received);
    message->setReceivedDate(received);
    setRecipients(*message, item);

    MailBodyWriter::setMessageBody(*message, item.body(), true);
    message->setMessageType(QMailMessage::Email);
    message->setServerUid(serverUid(item));
    const QMap<QString, QString> fields = customFields(item);
    if (!fields.isEmpty())
        message->setCustomFields(fields);

    setVerb(*message, item.lastVerbExecuted());
    message->setStatus(QMailMessage::Read, item.read());
    message->setStatus(QMailMessage::ReadElsewhere, item.read());
    if (!setMeeting(*message, item))
        return nullptr;

    const qint64 attachmentsSize = MailAttachments::setAttachmentsToMailMessage(message.get(), item);
    message->setSize(uint(qMax<qint64>(0, item.body().estimatedDataSize() + attachmentsSize)));
    setImportance(*message, item.importance());
    copyFolderFlags(*message);
    return message;
}

void MailMessageWriter::setRecipients(QMailMessage &message, const EasEmailItem &item) const
{
    if (item.recipientsTo().isEmpty())
        message.setTo(MailHeaderText::addresses(item.replyTo(), ';'));
    else
        message.setTo(MailHeaderText::addresses(item.recipientsTo(), ','));
    message.setCc(MailHeaderText::addresses(item.recipientsCc(), ','));
    message.setReplyTo(QMailAddress(MailHeaderText::singleLine(item.replyTo())));
}

bool MailMessageWriter::setMeeting(QMailMessage &message, const EasEmailItem &item) const
{
    const QString messageClass = item.messageClass();
    const bool cancelled =
        messageClass.startsWith(ExchangeActiveSync::MESSAGE_CLASS_MEETING_REQUEST_CANCELLED);
    const bool accept = messageClass.startsWith(ExchangeActiveSync::MESSAGE_CLASS_MEETING_REQUEST_ACCEPT);
    const bool tentative =
        messageClass.startsWith(ExchangeActiveSync::MESSAGE_CLASS_MEETING_REQUEST_TENTATIVE);
    const bool decline = messageClass.startsWith(ExchangeActiveSync::MESSAGE_CLASS_MEETING_REQUEST_DECLINE);
    const bool invitation = !cancelled
        && messageClass.startsWith(ExchangeActiveSync::MESSAGE_CLASS_MEETING_REQUEST)
        && isIdentified(item.meetingRequest());

    message.setStatus(QMailMessage::CalendarInvitation, invitation);
    message.setStatus(QMailMessage::CalendarCancellation, cancelled);
    if (!cancelled && !accept && !tentative && !decline && !invitation)
        return true;
    return addCalendarPart(message, item);
}

bool MailMessageWriter::addCalendarPart(QMailMessage &message, const EasEmailItem &item) const
{
    const QString description = MailBodyWriter::bodyText(message);
    const QSharedPointer<CalendarStorage> calendar =
        mContext.account ? mContext.account->calendarStorage() : QSharedPointer<CalendarStorage>();
    if (!calendar) {
        qCCritical(eas()) << "No calendar storage object";
        return false;
    }
    const QString from = message.from().toString();
    EasMeetingRequestContainer request = item.meetingRequest();
    if (request.organizer().isEmpty())
        request.setOrganizer(from);
    // The calendar shows an invitation by who sent it; the subject stands above it, in the message.
    const QByteArray iCalendar = calendar->iTIPRequestData(request, from, description);
    // Without calendar data the message is still a message, and it must not be lost for that.
    if (!iCalendar.isEmpty())
        MailBodyWriter::addCalendarPart(message, iCalendar);
    return true;
}

QMailFolder MailMessageWriter::folder(const QMailFolderId &id) const
{
    const auto known = mFolders.constFind(id);
    return known == mFolders.constEnd() ? *mFolders.insert(id, mContext.store->folder(id)) : *known;
}

void MailMessageWriter::copyFolderFlags(QMailMessage &message) const
{
    if (!message.parentFolderId().isValid())
        return;
    const quint64 folderStatus = folder(message.parentFolderId()).status();
    if (folderStatus & QMailFolder::Drafts)
        message.setStatus(QMailMessage::Draft, true);
    if (folderStatus & QMailFolder::Trash)
        message.setStatus(QMailMessage::Trash, true);
    if (folderStatus & QMailFolder::Junk)
        message.setStatus(QMailMessage::Junk, true);
}
