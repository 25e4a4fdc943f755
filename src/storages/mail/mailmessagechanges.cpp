// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailmessagechanges.h"

#include "application/base/logging.h"
#include "common/exchangeactivesync.h"
#include "easitems/easemailitem.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "storages/mail/mailattachments.h"
#include "storages/mail/mailbodywriter.h"
#include "storages/mail/mailheadertext.h"
#include "storages/mail/mailstorecontext.h"

#include <qmailmessage.h>
#include <qmailtimestamp.h>

#include <optional>

namespace {

/** One item being applied to one message. */
struct Change
{
    QMailMessage &message;
    const EasEmailItem &item;
    const MailStoreContext &context;
    bool bodySet = false;
    bool attachmentsChanged = false;
    std::optional<qint64> size = {};
    std::optional<QString> preview = {};
};

void setServerId(Change &change)
{
    change.message.setServerUid(change.item.serverId());
}

void setCollection(Change &change)
{
    const QMailFolderId folderId(change.item.localCollectionId());
    // For the server a message is where it was until it has been told of the user's move.
    if (folderId == change.message.previousParentFolderId())
        return;
    if (folderId.isValid() && folderId != change.message.parentFolderId())
        change.message.setParentFolderId(folderId);
}

void setDates(Change &change)
{
    const QMailTimeStamp received(
        ExchangeActiveSync::dateTimeFromString(change.item.dateReceived(), nullptr));
    change.message.setDate(received);
    change.message.setReceivedDate(received);
}

void setImportance(Change &change)
{
    const int importance = change.item.importance();
    if (importance < EasEmailItem::LowImportance || importance > EasEmailItem::HighImportance) {
        qCWarning(eas()) << "unhandled importance value" << importance;
        return;
    }
    change.message.setStatus(QMailMessage::HighPriority, importance == EasEmailItem::HighImportance);
    change.message.setStatus(QMailMessage::LowPriority, importance == EasEmailItem::LowImportance);
}

void setSubject(Change &change)
{
    change.message.setSubject(MailHeaderText::singleLine(change.item.subject()));
}

void setRead(Change &change)
{
    change.message.setStatus(QMailMessage::Read, change.item.read());
    change.message.setStatus(QMailMessage::ReadElsewhere, change.item.read());
}

/** What is known already comes once more as new: a mark that the user has made meanwhile has yet to go up. */
void setReadOfRepeatedAdd(Change &change)
{
    const quint64 status = change.message.status();
    const bool isPending = bool(status & QMailMessage::Read) != bool(status & QMailMessage::ReadElsewhere);
    change.message.setStatus(QMailMessage::ReadElsewhere, change.item.read());
    if (!isPending)
        change.message.setStatus(QMailMessage::Read, change.item.read());
}

void setTo(Change &change)
{
    change.message.setTo(MailHeaderText::addresses(change.item.recipientsTo(), ','));
}

void setCc(Change &change)
{
    change.message.setCc(MailHeaderText::addresses(change.item.recipientsCc(), ','));
}

void setFrom(Change &change)
{
    change.message.setFrom(QMailAddress(MailHeaderText::singleLine(change.item.fromAddress())));
}

void setReplyTo(Change &change)
{
    change.message.setReplyTo(QMailAddress(MailHeaderText::singleLine(change.item.replyTo())));
}

void setBody(Change &change)
{
    if (change.bodySet)
        return;
    change.bodySet = true;
    const EasBodyContainer body = change.item.body();
    MailBodyWriter::setMessageBody(change.message, body, false);
    // The store previews a whole body from its text; a truncated one is not in the message.
    if (!change.preview && body.truncated() && !body.data().isEmpty())
        change.preview = body.data();
}

void setSize(Change &change)
{
    // The same element tells the size of an attachment.
    if (!change.item.body().isEmpty())
        change.size = change.item.body().estimatedDataSize();
}

void markAttachments(Change &change)
{
    change.attachmentsChanged = true;
}

void setPreview(Change &change)
{
    if (!change.item.body().preview().isEmpty())
        change.preview = change.item.body().preview();
}

void setVerb(Change &change)
{
    const EasEmailItem::LastVerbExecutedValues verb = change.item.lastVerbExecuted();
    if (verb < EasEmailItem::ReplyToSenderVerb || verb > EasEmailItem::ForwardVerb)
        return;
    change.message.setStatus(QMailMessage::Replied, verb == EasEmailItem::ReplyToSenderVerb);
    change.message.setStatus(QMailMessage::RepliedAll, verb == EasEmailItem::ReplyToAllVerb);
    change.message.setStatus(QMailMessage::Forwarded, verb == EasEmailItem::ForwardVerb);
}

void ignore(Change &) {}

struct FieldRule
{
    uint tag;
    void (*apply)(Change &);
};

const FieldRule fieldRules[] = {
    { Wbxml::AirSync::Add, setReadOfRepeatedAdd },
    { Wbxml::AirSync::ServerId, setServerId },
    { Wbxml::AirSync::CollectionId, setCollection },
    { Wbxml::Email::DateReceived, setDates },
    { Wbxml::Email::Importance, setImportance },
    { Wbxml::Email::Subject, setSubject },
    { Wbxml::Email::Read, setRead },
    { Wbxml::Email::To, setTo },
    { Wbxml::Email::Cc, setCc },
    { Wbxml::Email::From, setFrom },
    { Wbxml::Email::ReplyTo, setReplyTo },
    { Wbxml::Email::Categories, ignore },
    { Wbxml::Email::Category, ignore },
    { Wbxml::Email::Flag, ignore },
    { Wbxml::AirSyncBase::Type, setBody },
    { Wbxml::AirSyncBase::Data, setBody },
    { Wbxml::AirSyncBase::EstimatedDataSize, setSize },
    { Wbxml::AirSyncBase::Truncated, ignore },
    { Wbxml::AirSyncBase::Attachments, markAttachments },
    { Wbxml::AirSyncBase::Attachment, markAttachments },
    { Wbxml::AirSyncBase::DisplayName, markAttachments },
    { Wbxml::AirSyncBase::FileReference, markAttachments },
    { Wbxml::AirSyncBase::Method, markAttachments },
    { Wbxml::AirSyncBase::ContentId, markAttachments },
    { Wbxml::AirSyncBase::ContentLocation, markAttachments },
    { Wbxml::AirSyncBase::IsInline, markAttachments },
    { Wbxml::AirSyncBase::Preview, setPreview },
    { Wbxml::Email2::LastVerbExecuted, setVerb },
    { Wbxml::Email2::LastVerbExecutionTime, ignore },
};

void applyField(Change &change, uint tag)
{
    for (const FieldRule &rule : fieldRules) {
        if (rule.tag == tag) {
            rule.apply(change);
            return;
        }
    }
    qCWarning(eas()) << "unhandled field id" << tag;
}

} // namespace

MailMessageChanges::MailMessageChanges(const MailStoreContext &context)
    : mContext(context)
{
}

void MailMessageChanges::setChangesToEmailMessage(QMailMessage &message, const EasEmailItem &item) const
{
    Change change { message, item, mContext };
    const QList<uint> fields = item.changedFields();
    for (const uint tag : fields)
        applyField(change, tag);

    // With a MIME body the parts come from the MIME text.
    if (change.attachmentsChanged && item.body().type() != EasBodyContainer::MIMEBodyType) {
        const qint64 before = qint64(message.size()) - MailAttachments::totalSize(message);
        const qint64 body = item.body().isEmpty() ? before : item.body().estimatedDataSize();
        change.size = qMax<qint64>(0, body) + MailAttachments::updateAttachments(&message, item);
    }
    if (change.preview)
        MailBodyWriter::setPreview(message, *change.preview);
    if (change.size)
        message.setSize(uint(qMax<qint64>(0, *change.size)));
}
