// SPDX-License-Identifier: LGPL-2.1-or-later
#include "requests/collectionrestarts.h"

#include "application/account/easaccount.h"
#include "application/base/clock.h"

namespace {

constexpr qint64 SecondsOfADay = 24 * 60 * 60;

} // namespace

CollectionRestarts::CollectionRestarts(EasAccount &account)
    : QObject(&account)
{
}

CollectionRestarts &CollectionRestarts::of(EasAccount &account)
{
    auto *restarts = account.findChild<CollectionRestarts *>(QString(), Qt::FindDirectChildrenOnly);
    return *(restarts ? restarts : new CollectionRestarts(account));
}

bool CollectionRestarts::begin(const QString &collectionId)
{
    const QDateTime now = Clock::instance().currentDateTimeUtc();
    const QDateTime latest = mLatest.value(collectionId);
    if (latest.isValid() && latest.secsTo(now) < SecondsOfADay)
        return false;
    mLatest.insert(collectionId, now);
    return true;
}
