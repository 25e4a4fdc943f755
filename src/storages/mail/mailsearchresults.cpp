// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailsearchresults.h"

#include "application/base/logging.h"
#include "easitems/easemailitem.h"
#include "storages/mail/mailrecognition.h"
#include "storages/mail/mailstorecontext.h"

#include <qmailmessage.h>
#include <qmailmessagekey.h>

#include <QHash>

namespace {

/** The custom field of a result that the server knows by its folder and its identifier there. */
const QString foundByPlace = QStringLiteral("X-Fennel-EAS-FoundByPlace");

} // namespace

MailSearchResults::MailSearchResults(const MailStoreContext &context)
    : mContext(context)
    , mAdder(context)
{
}

bool MailSearchResults::add(QList<EasEmailItem> &items, QList<quint64> &ids)
{
    if (!removeEarlier(items))
        return false;
    const std::optional<MailRecognition> recognition = MailRecognition::of(mContext, items);
    if (!recognition)
        return false;
    MailMessageAdder::Messages messages;
    QHash<QString, const QMailMessage *> made;
    for (const EasEmailItem &item : qAsConst(items)) {
        const QString uid = MailMessageWriter::serverUid(item);
        if (made.contains(uid) || recognition->stored(uid).id().isValid())
            continue;
        std::unique_ptr<QMailMessage> message = messageFor(item, *recognition);
        if (!message)
            return false;
        made.insert(uid, message.get());
        messages.push_back(std::move(message));
    }
    if (!mAdder.store(messages))
        return false;
    ids.clear();
    for (EasEmailItem &item : items) {
        const QString uid = MailMessageWriter::serverUid(item);
        const QMailMessage *const message = made.value(uid);
        const QMailMessageId id = message ? message->id() : recognition->stored(uid).id();
        ids.append(id.toULongLong());
        item.setLocalId(QString::number(ids.last()));
    }
    return true;
}

std::unique_ptr<QMailMessage> MailSearchResults::messageFor(
    const EasEmailItem &item, const MailRecognition &recognition) const
{
    EasEmailItem hit = item;
    hit.setLocalCollectionId(MailStoreContext::localStorage().toULongLong());
    std::unique_ptr<QMailMessage> message = mAdder.messageFor(hit, recognition);
    if (!message)
        return nullptr;
    message->setStatus(QMailMessage::Temporary, true);
    message->setRestoreFolderId(QMailFolderId(item.localCollectionId()));
    if (item.longId().isEmpty())
        message->setCustomField(foundByPlace, QStringLiteral("1"));
    return message;
}

QMailFolderId MailSearchResults::folderOf(const MailStoreContext &context, quint64 messageId)
{
    const QMailMessageMetaData message = context.store->messageMetaData(QMailMessageId(messageId));
    const bool isResult = message.status() & QMailMessage::Temporary;
    return isResult && !message.customField(foundByPlace).isEmpty() ? message.restoreFolderId()
                                                                    : QMailFolderId();
}

bool MailSearchResults::removeEarlier(const QList<EasEmailItem> &items) const
{
    QStringList serverUids;
    for (const EasEmailItem &item : items)
        serverUids.append(MailMessageWriter::serverUid(item));
    serverUids.removeAll(QString());
    serverUids.removeDuplicates();
    if (serverUids.isEmpty())
        return true;
    const QMailMessageKey key = QMailMessageKey::parentAccountId(mContext.mailAccountId)
        & QMailMessageKey::status(QMailMessage::Temporary, QMailDataComparator::Includes)
        & QMailMessageKey::serverUid(serverUids, QMailDataComparator::Includes);
    if (mContext.store->removeMessages(key, QMailStore::NoRemovalRecord))
        return true;
    qCCritical(eas()) << "failed to remove earlier search results";
    return false;
}
