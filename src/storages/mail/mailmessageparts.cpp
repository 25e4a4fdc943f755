// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailmessageparts.h"

#include "application/base/logging.h"
#include "easitems/containers/easbodycontainer.h"
#include "storages/mail/mailattachments.h"
#include "storages/mail/mailbodywriter.h"
#include "storages/mail/mailstorecontext.h"
#include "storages/mailstorage.h"

MailMessageParts::MailMessageParts(const MailStoreContext &context)
    : mContext(context)
{
}

QMailMessage MailMessageParts::stored(quint64 messageId) const
{
    const QMailMessage message = mContext.store->message(QMailMessageId(messageId));
    if (!message.id().isValid())
        qCWarning(eas()) << "invalid local mesage id" << messageId;
    return message;
}

bool MailMessageParts::updateBody(quint64 messageId, const EasBodyContainer &body) const
{
    QMailMessage message = stored(messageId);
    if (!message.id().isValid())
        return false;
    if (MailBodyWriter::isFullerThan(message, body)) {
        qCInfo(eas()) << "message" << messageId << "has a fuller body than the fetched one";
        return true;
    }
    if (body.truncated()) {
        qCWarning(eas()) << "the server has sent only a part of the body of message" << messageId;
        return false;
    }
    MailBodyWriter::setMessageBody(message, body, false);
    return mContext.store->updateMessage(&message);
}

bool MailMessageParts::fill(quint64 messageId, const QList<MessagePartContent> &parts) const
{
    QMailMessage message = stored(messageId);
    if (!message.id().isValid())
        return false;
    for (const MessagePartContent &part : parts) {
        if (!MailAttachments::fillPart(&message, part.location, part.contentType, part.octets, part.fileName))
            return false;
    }
    return mContext.store->updateMessage(&message);
}

QStringList MailMessageParts::locations(quint64 messageId, bool downloaded) const
{
    return MailAttachments::locations(mContext.store->message(QMailMessageId(messageId)), downloaded);
}

template <typename Result, typename Query>
Result MailMessageParts::fromPart(
    quint64 messageId, const QString &location, const Result &none, Query query) const
{
    const QMailMessage message = mContext.store->message(QMailMessageId(messageId));
    const QMailMessagePart *part = MailAttachments::partAt(message, location);
    return part ? query(*part) : none;
}

bool MailMessageParts::isDownloaded(quint64 messageId, const QString &location) const
{
    return fromPart(messageId, location, false, MailAttachments::isDownloaded);
}

EasItemsCommon::TBoolean MailMessageParts::isAttachment(quint64 messageId, const QString &location) const
{
    return fromPart(messageId, location, EasItemsCommon::TUndefined, [](const QMailMessagePart &part) {
        return MailAttachments::isAttachment(part) ? EasItemsCommon::TTrue : EasItemsCommon::TFalse;
    });
}

QString MailMessageParts::fileReference(quint64 messageId, const QString &location) const
{
    return fromPart(messageId, location, QString(), MailAttachments::fileReference);
}

int MailMessageParts::estimatedSize(quint64 messageId, const QString &location) const
{
    return fromPart(messageId, location, 0,
        [](const QMailMessagePart &part) { return qMax(0, part.contentDisposition().size()); });
}
