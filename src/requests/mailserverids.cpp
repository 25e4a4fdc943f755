// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/mailserverids.h"

#include "application/easdatabase.h"
#include "easitems/emailserverid.h"

MailServerIds::MailServerIds(EasAccountId accountId)
    : mAccountId(accountId)
    , mLocalIds(EasDatabase::instance()->serverToLocalEmailIds(accountId))
    , mLookupFailed(EasDatabase::instance()->lookupFailed())
{
}

bool MailServerIds::contains(const QString &keptId) const
{
    return mLocalIds.contains(keptId);
}

QString MailServerIds::kept(const QString &collectionId, const QString &wireId) const
{
    // The message that took the plain identifier may have gone since; the qualified one stays as it is.
    const QString qualified = EmailServerId::qualified(collectionId, wireId);
    if (contains(qualified))
        return qualified;
    if (!contains(wireId) || collections().value(wireId) == collectionId)
        return wireId;
    return qualified;
}

void MailServerIds::add(const QString &keptId, const QString &collectionId)
{
    mLocalIds.insert(keptId, QString());
    mAddedCollections.insert(keptId, collectionId);
    if (mCollectionsRead)
        mCollections.insert(keptId, collectionId);
}

const QMap<QString, QString> &MailServerIds::collections() const
{
    // Only a server that repeats an identifier, or changes an item, makes the second look-up necessary.
    if (!mCollectionsRead) {
        mCollections = EasDatabase::instance()->emailCollectionIds(mAccountId);
        mLookupFailed = mLookupFailed || EasDatabase::instance()->lookupFailed();
        for (auto added = mAddedCollections.cbegin(); added != mAddedCollections.cend(); ++added)
            mCollections.insert(added.key(), added.value());
        mCollectionsRead = true;
    }
    return mCollections;
}
