// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailoutgoing.h"

#include "application/base/logging.h"
#include "application/mapping/easdatabase.h"
#include "easitems/easemailitem.h"
#include "storages/mail/mailmessagereader.h"
#include "storages/mail/mailoutgoingmime.h"
#include "storages/mail/mailstorecontext.h"

#include <qmailaccount.h>
#include <qmaildisconnected.h>
#include <qmailmessagekey.h>

namespace {

QMailMessageId messageId(const QString &localId)
{
    return QMailMessageId(localId.toULongLong());
}

void setMime(EasEmailItem *item, const MailOutgoingMime::Smart &outgoing)
{
    EasBodyContainer body = item->body();
    body.setMime(outgoing.mime);
    body.setSmartMimeData(outgoing.isSmart);
    item->setBody(body);
}

} // namespace

MailOutgoing::MailOutgoing(const MailStoreContext &context)
    : mContext(context)
{
}

EasEmailItem MailOutgoing::itemOf(const QMailMessage &message) const
{
    const auto folders = EasDatabase::instance()->localToServerFolderIds(mContext.accountId());
    if (!folders)
        return EasEmailItem();
    return MailMessageReader(mContext).mailItemFromEmailMessage(message, *folders, false);
}

EasEmailItem MailOutgoing::message(const QString &localId) const
{
    const QMailMessage message = mContext.store->message(messageId(localId));
    EasEmailItem item = itemOf(message);
    if (!item.localId().isEmpty())
        setMime(&item, { MailOutgoingMime(message).whole(), false });
    return item;
}

EasEmailItem MailOutgoing::smartMessage(const QString &localId) const
{
    const QMailMessage message = mContext.store->message(messageId(localId));
    EasEmailItem item = itemOf(message);
    if (item.localId().isEmpty())
        return item;
    const MailOutgoingMime mime(message);
    const MailOutgoingMime::Smart smart = mime.smart();
    if (!smart.isSmart || nameSource(&item))
        setMime(&item, smart);
    else
        setMime(&item, { mime.whole(), false });
    return item;
}

bool MailOutgoing::nameSource(EasEmailItem *item) const
{
    const QString source = item->replyToId();
    const Lookup<QString> folder = source.isEmpty()
        ? Lookup<QString>(QString())
        : EasDatabase::instance()->folderServerIdByEmailServerId(mContext.accountId(), source);
    if (!folder || folder->isEmpty()) {
        qCWarning(eas()) << "the server does not know the message that" << item->localId() << "answers";
        return false;
    }
    item->setCollectionId(*folder);
    item->setReplyToId(KeptEmailId(source).onWire().text());
    return true;
}

bool MailOutgoing::answersAs(
    const QString &localId, QMailMessage::ResponseType first, QMailMessage::ResponseType second) const
{
    const QMailMessageId id = messageId(localId);
    if (!id.isValid())
        return false;
    const QMailMessage::ResponseType type = mContext.store->messageMetaData(id).responseType();
    return type == first || type == second;
}

bool MailOutgoing::isReply(const QString &localId) const
{
    return answersAs(localId, QMailMessage::Reply, QMailMessage::ReplyToAll);
}

bool MailOutgoing::isForward(const QString &localId) const
{
    return answersAs(localId, QMailMessage::Forward, QMailMessage::ForwardPart);
}

bool MailOutgoing::moveTo(const QMailMessageId &id, QMailFolder::StandardFolder folder) const
{
    QMailDisconnected::moveToStandardFolder({ id }, folder);
    // It tells nothing about its success.
    const QMailFolderId wanted = QMailAccount(mContext.mailAccountId).standardFolder(folder);
    if (wanted.isValid() && mContext.store->messageMetaData(id).parentFolderId() == wanted)
        return true;
    qCWarning(eas()) << "message" << id.toULongLong() << "could not be moved to standard folder" << folder;
    return false;
}

bool MailOutgoing::moveToDrafts(const QString &localId) const
{
    const QMailMessageId id = messageId(localId);
    if (!moveTo(id, QMailFolder::DraftsFolder))
        return false;
    QMailDisconnected::flagMessage(id, QMailMessage::Draft, 0, QStringLiteral("Flagging message as draft"));
    return true;
}

bool MailOutgoing::takeOut(const QMailMessageMetaData &sent, MailStorage::SentCopy copy) const
{
    if (copy == MailStorage::SentCopy::KeptHere) {
        if (!moveTo(sent.id(), QMailFolder::SentFolder))
            return false;
        QMailDisconnected::flagMessage(
            sent.id(), QMailMessage::Sent | QMailMessage::Read, QMailMessage::Draft, QString());
        return true;
    }
    // A draft of the server has to go there as well.
    const auto record =
        sent.serverUid().isEmpty() ? QMailStore::NoRemovalRecord : QMailStore::CreateRemovalRecord;
    return mContext.store->removeMessage(sent.id(), record);
}

bool MailOutgoing::settleSent(const QString &localId, MailStorage::SentCopy copy) const
{
    const QMailMessageMetaData sent = mContext.store->messageMetaData(messageId(localId));
    if (!sent.id().isValid() || takeOut(sent, copy))
        return true;
    const bool isMarked =
        mContext.store->updateMessagesMetaData(QMailMessageKey::id(sent.id()), QMailMessage::Sent, true);
    qCWarning(eas()) << "message" << localId << "was sent and stays,"
                     << (isMarked ? "marked so" : "without a mark");
    return false;
}

bool MailOutgoing::wasSent(const QString &localId) const
{
    const QMailMessageMetaData message = mContext.store->messageMetaData(messageId(localId));
    const QMailFolderId sentOnes =
        QMailAccount(mContext.mailAccountId).standardFolder(QMailFolder::SentFolder);
    return (message.status() & QMailMessage::Sent) && message.parentFolderId() != sentOnes;
}
