// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/mailserverids.h"

#include "application/mapping/easdatabase.h"
#include "easitems/emailserverid.h"

MailServerIds::MailServerIds(EasAccountId accountId)
    : mAccountId(accountId)
{
}

void MailServerIds::lookUp(const QList<Item> &items)
{
    QStringList names;
    for (const Item &item : items)
        names << item.second << EmailServerId::qualified(item.first, item.second);
    read(names);
}

bool MailServerIds::contains(const QString &keptId) const
{
    if (!mRead.contains(keptId))
        read({ keptId });
    return mCollections.contains(keptId);
}

QString MailServerIds::kept(const QString &collectionId, const QString &wireId) const
{
    // The message that took the plain identifier may have gone since; the qualified one stays as it is.
    const QString qualified = EmailServerId::qualified(collectionId, wireId);
    if (contains(qualified))
        return qualified;
    if (!contains(wireId) || mCollections.value(wireId) == collectionId)
        return wireId;
    return qualified;
}

void MailServerIds::add(const QString &keptId, const QString &collectionId)
{
    mRead.insert(keptId);
    mCollections.insert(keptId, collectionId);
}

void MailServerIds::read(const QStringList &keptIds) const
{
    if (keptIds.isEmpty())
        return;
    for (const QString &keptId : keptIds)
        mRead.insert(keptId);
    const EasDatabase *database = EasDatabase::instance();
    const QMap<QString, QString> collections = database->emailCollectionIds(mAccountId, keptIds);
    mLookupFailed = mLookupFailed || database->lookupFailed();
    for (auto found = collections.cbegin(); found != collections.cend(); ++found)
        mCollections.insert(found.key(), found.value());
}
