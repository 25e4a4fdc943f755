// SPDX-License-Identifier: LGPL-2.1-or-later
#include "internal/pendingchanges.h"

namespace mKCal {

namespace {

QString keyOf(const QString &uid, const QDateTime &recurrenceId)
{
    const QString moment =
        recurrenceId.isValid() ? QString::number(recurrenceId.toSecsSinceEpoch()) : QString();
    return uid + QLatin1Char('\n') + moment;
}

QString keyOf(const KCalendarCore::Incidence::Ptr &incidence)
{
    return keyOf(incidence->uid(), incidence->recurrenceId());
}

} // namespace

void PendingChanges::add(const KCalendarCore::Incidence::Ptr &incidence)
{
    const QString key = keyOf(incidence);
    if (mDeleted.remove(key) > 0)
        mChanged.insert(key, incidence);
    else
        mAdded.insert(key, incidence);
}

void PendingChanges::change(const KCalendarCore::Incidence::Ptr &incidence)
{
    const QString key = keyOf(incidence);
    if (!mAdded.contains(key))
        mChanged.insert(key, incidence);
}

void PendingChanges::remove(const KCalendarCore::Incidence::Ptr &incidence)
{
    const QString key = keyOf(incidence);
    if (mAdded.remove(key) > 0)
        return;
    mChanged.remove(key);
    mDeleted.insert(key, incidence);
}

void PendingChanges::forget(const KCalendarCore::Incidence::Ptr &incidence)
{
    const QString key = keyOf(incidence);
    mAdded.remove(key);
    mChanged.remove(key);
    mDeleted.remove(key);
}

bool PendingChanges::isDeleted(const QString &uid, const QDateTime &recurrenceId) const
{
    return mDeleted.contains(keyOf(uid, recurrenceId));
}

void PendingChanges::clear()
{
    mAdded.clear();
    mChanged.clear();
    mDeleted.clear();
}

} // namespace mKCal
