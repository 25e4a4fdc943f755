// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailsearchresults.h"

#include "application/base/logging.h"
#include "easitems/easemailitem.h"
#include "storages/mail/mailrecognition.h"
#include "storages/mail/mailstorecontext.h"

#include <qmailmessage.h>
#include <qmailmessagekey.h>

#include <QHash>

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
    QHash<QString, QMailMessage *> byUid;
    std::vector<const QMailMessage *> hits;
    for (const EasEmailItem &item : qAsConst(items)) {
        const QString uid = MailMessageWriter::serverUid(item);
        QMailMessage *message = uid.isEmpty() ? nullptr : byUid.value(uid);
        if (!message) {
            const QMailMessageId known = recognition->stored(uid).id();
            std::unique_ptr<QMailMessage> made = known.isValid()
                ? std::make_unique<QMailMessage>(mContext.store->message(known))
                : mAdder.messageFor(item, *recognition);
            if (!made)
                return false;
            if (!made->id().isValid())
                made->setStatus(QMailMessage::Temporary, true);
            message = made.get();
            byUid.insert(uid, message);
            messages.push_back(std::move(made));
        }
        hits.push_back(message);
    }
    if (!mAdder.store(messages))
        return false;
    ids.clear();
    for (size_t i = 0; i < hits.size(); ++i) {
        ids.append(hits[i]->id().toULongLong());
        items[int(i)].setLocalId(QString::number(ids.last()));
    }
    return true;
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
