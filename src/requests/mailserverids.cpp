// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/mailserverids.h"

#include "application/mapping/easdatabase.h"

Lookup<MailServerIds> MailServerIds::lookUp(EasAccountId accountId, const QList<Item> &items)
{
    QStringList names;
    for (const Item &item : items) {
        names << KeptEmailId::plain(item.wireId).text()
              << KeptEmailId::qualified(item.collectionId, item.wireId).text();
    }
    MailServerIds ids;
    if (names.isEmpty())
        return ids;
    const Lookup<QMap<QString, QString>> collections =
        EasDatabase::instance()->emailCollectionIds(accountId, names);
    if (!collections)
        return Lookup<MailServerIds>::unread();
    for (auto found = collections->cbegin(); found != collections->cend(); ++found)
        ids.mCollections.insert(KeptEmailId(found.key()), found.value());
    return ids;
}

bool MailServerIds::contains(const KeptEmailId &keptId) const
{
    return mCollections.contains(keptId);
}

KeptEmailId MailServerIds::kept(const QString &collectionId, const WireEmailId &wireId) const
{
    // The message that took the plain identifier may have gone since; the qualified one stays as it is.
    const KeptEmailId qualified = KeptEmailId::qualified(collectionId, wireId);
    if (contains(qualified))
        return qualified;
    const KeptEmailId plain = KeptEmailId::plain(wireId);
    const bool isTaken = contains(plain) && mCollections.value(plain) != collectionId;
    return isTaken ? qualified : plain;
}

void MailServerIds::add(const KeptEmailId &keptId, const QString &collectionId)
{
    mCollections.insert(keptId, collectionId);
}
