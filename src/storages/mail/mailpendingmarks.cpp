// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/mail/mailpendingmarks.h"

#include "storages/mail/mailstorecontext.h"

#include <qmailmessage.h>
#include <qmailmessagekey.h>

namespace {

/** More updates than this cost more to remember than a new look at the folders. */
constexpr int maxUpdates = 5000;

} // namespace

MailPendingMarks::MailPendingMarks(const MailStoreContext &context)
    : mContext(context)
{
}

QMailMessageKey MailPendingMarks::pending()
{
    const auto includes = QMailDataComparator::Includes;
    const auto excludes = QMailDataComparator::Excludes;
    const QMailMessageKey readHere = QMailMessageKey::status(QMailMessage::Read, includes)
        & QMailMessageKey::status(QMailMessage::ReadElsewhere, excludes);
    const QMailMessageKey unreadHere = QMailMessageKey::status(QMailMessage::Read, excludes)
        & QMailMessageKey::status(QMailMessage::ReadElsewhere, includes);
    return readHere | unreadHere;
}

void MailPendingMarks::lookAnew()
{
    mLooks.clear();
    mUpdates.clear();
}

void MailPendingMarks::messagesUpdated(const QMailMessageIdList &ids)
{
    if (mLooks.isEmpty())
        return;
    if (mUpdates.size() + ids.size() > maxUpdates)
        return lookAnew();
    for (const QMailMessageId &id : ids)
        mUpdates.append(id);
}

QMailMessageIdList MailPendingMarks::inFolder(const QMailFolderId &folder)
{
    const auto known = mLooks.constFind(folder);
    Look look;
    if (known == mLooks.constEnd()) {
        look.pending = query(folder, nullptr);
    } else {
        QSet<QMailMessageId> candidates(known->pending.cbegin(), known->pending.cend());
        for (int i = known->seen; i < mUpdates.size(); ++i)
            candidates.insert(mUpdates.at(i));
        const QMailMessageIdList among = candidates.values();
        look.pending = query(folder, &among);
    }
    look.seen = mUpdates.size();
    mLooks.insert(folder, look);
    return look.pending;
}

QMailMessageIdList MailPendingMarks::query(const QMailFolderId &folder, const QMailMessageIdList *among) const
{
    if (among && among->isEmpty())
        return {};
    QMailMessageKey place = QMailMessageKey::parentFolderId(folder)
        & QMailMessageKey::parentAccountId(mContext.mailAccountId)
        & QMailMessageKey::previousParentFolderId(QMailFolderId(), QMailDataComparator::Equal);
    if (among)
        place = place & QMailMessageKey::id(*among);
    return mContext.store->queryMessages(pending() & place);
}
