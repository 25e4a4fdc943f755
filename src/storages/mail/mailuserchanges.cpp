// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailuserchanges.h"

#include "application/base/logging.h"
#include "storages/mail/mailpendingmarks.h"
#include "storages/mail/mailstorecontext.h"

#include <qmailmessage.h>
#include <qmailmessagekey.h>
#include <qmailmessageremovalrecord.h>
#include <qmailstore.h>

namespace {

/** The store's own folder is left out: no sync takes it. */
void addOnce(QStringList &folders, const QMailFolderId &id)
{
    const QString text = QString::number(id.toULongLong());
    if (id.isValid() && id != MailStoreContext::localStorage() && !folders.contains(text))
        folders.append(text);
}

} // namespace

MailUserChanges::MailUserChanges(const MailStoreContext &context, QObject *parent)
    : QObject(parent)
    , mContext(context)
{
    mLookTimer.setSingleShot(true);
    connect(&mLookTimer, &QTimer::timeout, this, &MailUserChanges::look);
}

void MailUserChanges::listen()
{
    connect(mContext.store, &QMailStore::messagesUpdated, this, &MailUserChanges::onMessagesUpdated);
    connect(mContext.store, &QMailStore::messageRemovalRecordsAdded, this,
        &MailUserChanges::onRemovalRecordsAdded);
}

void MailUserChanges::onMessagesUpdated(const QMailMessageIdList &ids)
{
    for (const QMailMessageId &id : ids)
        mUpdated.insert(id);
    mLookTimer.start(0);
}

void MailUserChanges::onRemovalRecordsAdded(const QMailAccountIdList &ids)
{
    if (!ids.contains(mContext.mailAccountId))
        return;
    mHasRemovals = true;
    mLookTimer.start(0);
}

void MailUserChanges::look()
{
    const QMailMessageIdList updated = mUpdated.values();
    const bool hasRemovals = mHasRemovals;
    mUpdated.clear();
    mHasRemovals = false;
    if (!mContext.mailAccountId.isValid())
        return;
    QStringList folders;
    if (!updated.isEmpty())
        lookAmong(updated, folders);
    if (hasRemovals)
        lookAtRemovals(folders);
    if (folders.isEmpty())
        return;
    qCDebug(eas()) << "the user has changed messages in folders" << folders;
    Q_EMIT found(folders);
}

void MailUserChanges::lookAmong(const QMailMessageIdList &ids, QStringList &folders) const
{
    const QMailMessageKey ours =
        QMailMessageKey::parentAccountId(mContext.mailAccountId) & QMailMessageKey::id(ids);
    const QMailMessageKey moved =
        QMailMessageKey::previousParentFolderId(QMailFolderId(), QMailDataComparator::NotEqual);
    const QMailMessageIdList changed =
        mContext.store->queryMessages(ours & (MailPendingMarks::pending() | moved));
    for (const QMailMessageId &id : changed) {
        const QMailMessageMetaData message = mContext.store->messageMetaData(id);
        // What the server does not know of, a draft for one, does not go up.
        if (!message.serverUid().isEmpty())
            addOnce(folders, message.parentFolderId());
    }
}

void MailUserChanges::lookAtRemovals(QStringList &folders) const
{
    const QMailMessageRemovalRecordList records =
        mContext.store->messageRemovalRecords(mContext.mailAccountId);
    for (const QMailMessageRemovalRecord &record : records)
        addOnce(folders, record.parentFolderId());
}
