// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailmessagereader.h"

#include "application/account/easaccount.h"
#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "easitems/easemailitem.h"
#include "protocol/wbxml/wbxmltokens.h"
#include "storages/mail/mailattachments.h"
#include "storages/mail/mailcontentkind.h"
#include "storages/mail/mailstorecontext.h"

#include <qmailmessage.h>

namespace {

QString idText(const QMailMessageId &id)
{
    return QString::number(id.toULongLong());
}

QString idText(const QMailFolderId &id)
{
    return QString::number(id.toULongLong());
}

QString joined(const QList<QMailAddress> &addresses)
{
    return QMailAddress::toStringList(addresses).join(QLatin1Char(','));
}

void setFlags(EasEmailItem *item, quint64 status)
{
    item->setRead((status & QMailMessage::Read) != 0);
    if (status & QMailMessage::HighPriority)
        item->setImportance(EasEmailItem::HighImportance);
    else if (status & QMailMessage::LowPriority)
        item->setImportance(EasEmailItem::LowImportance);
    if (status & QMailMessage::Forwarded)
        item->setLastVerbExecuted(EasEmailItem::ForwardVerb);
    else if (status & QMailMessage::Replied)
        item->setLastVerbExecuted(EasEmailItem::ReplyToSenderVerb);
    else if (status & QMailMessage::RepliedAll)
        item->setLastVerbExecuted(EasEmailItem::ReplyToAllVerb);
}

} // namespace

MailMessageReader::MailMessageReader(const MailStoreContext &context)
    : mContext(context)
{
}

EasEmailItem MailMessageReader::mailItemFromEmailMessageId(
    const QMailMessageId &id, const QMap<QString, QString> &localToServerFolders, bool markRead) const
{
    return mailItemFromEmailMessage(
        id.isValid() ? mContext.store->message(id) : QMailMessage(), localToServerFolders, markRead);
}

EasEmailItem MailMessageReader::mailItemFromEmailMessage(
    const QMailMessage &message, const QMap<QString, QString> &localToServerFolders, bool markRead) const
{
    EasEmailItem item;
    if (!message.id().isValid()) {
        qCWarning(eas()) << "local email id is invalid";
        return item;
    }
    item = itemOfMetaData(message, localToServerFolders);
    item.setRecipientsTo(joined(message.to()));
    item.setRecipientsCc(joined(message.cc()));
    item.setReplyTo(message.replyTo().toString());
    item.setBody(bodyContainer(message));
    item.setReplyToId(answeredServerId(message));
    item.setAttachments(MailAttachments::attachments(message));
    item.setHasAttachments(!item.attachments().isEmpty());
    if (markRead)
        item.appendChangedField(Wbxml::Email::Read);
    return item;
}

EasEmailItem MailMessageReader::itemOfMetaData(
    const QMailMessageMetaData &message, const QMap<QString, QString> &localToServerFolders) const
{
    EasEmailItem item;
    if (!message.id().isValid())
        return item;
    item.setCollectionId(localToServerFolders.value(idText(message.parentFolderId())));
    item.setLocalId(idText(message.id()));
    item.setLocalCollectionId(message.parentFolderId().toULongLong());
    item.setFromAddress(message.from().toString());
    item.setSubject(message.subject());
    setFlags(&item, message.status());
    setMove(&item, message, localToServerFolders);
    item.setServerId(message.serverUid());
    return item;
}

EasBodyContainer MailMessageReader::bodyContainer(const QMailMessage &message) const
{
    EasBodyContainer body;
    const int content = MailContentKind::of(message);
    switch (content) {
    case QMailMessageMetaData::UnknownContent:
    case QMailMessageMetaData::NoContent:
    case QMailMessageMetaData::MultipartContent:
        break;
    case QMailMessageMetaData::PlainTextContent:
        body.setType(EasBodyContainer::PlainTextBodyType);
        break;
    case QMailMessageMetaData::RichTextContent:
        body.setType(EasBodyContainer::RTFBodyType);
        break;
    case QMailMessageMetaData::HtmlContent:
        body.setType(EasBodyContainer::HTMLBodyType);
        break;
    default:
        qCWarning(eas()) << "unhandled message content type" << content;
        break;
    }
    body.setEstimatedDataSize(int(qMin(message.size(), uint(INT_MAX))));
    body.setTruncated((message.status() & QMailMessage::ContentAvailable) == 0);
    if (mContext.account && mContext.account->protocolVersion() >= ExchangeActiveSync::ProtocolVersion140)
        body.setPreview(message.preview());
    return body;
}

QString MailMessageReader::answeredServerId(const QMailMessage &message) const
{
    if (!message.inResponseTo().isValid())
        return QString();
    const QString localId = idText(message.inResponseTo());
    return EasDatabase::instance()
        ->localToServerEmailIds(mContext.accountId(), { localId })
        .valueOr({})
        .value(localId);
}

void MailMessageReader::setMove(EasEmailItem *item, const QMailMessageMetaData &message,
    const QMap<QString, QString> &localToServerFolders) const
{
    const QMailFolderId previous = message.previousParentFolderId();
    if (!previous.isValid())
        return;
    const QString source = localToServerFolders.value(idText(previous));
    if (!source.isEmpty())
        item->setSourceFolderId(source);
    else if (previous != MailStoreContext::localStorage())
        qCWarning(eas()) << "unknown previous folder id" << previous.toULongLong();
    item->setDestinationFolderId(item->collectionId());
}
