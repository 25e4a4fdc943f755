// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <KCalendarCore/Incidence>

#include <QMap>
#include <QString>

namespace mKCal {

/**
 * What has happened to a calendar's incidences since the last save. Adding and deleting again leaves nothing;
 * deleting and adding again is a change.
 */
class PendingChanges
{
public:
    typedef QMap<QString, KCalendarCore::Incidence::Ptr> Incidences;

    void add(const KCalendarCore::Incidence::Ptr &incidence);
    void change(const KCalendarCore::Incidence::Ptr &incidence);
    void remove(const KCalendarCore::Incidence::Ptr &incidence);
    void forget(const KCalendarCore::Incidence::Ptr &incidence);
    bool isDeleted(const QString &uid, const QDateTime &recurrenceId) const;
    int count() const { return mAdded.size() + mChanged.size() + mDeleted.size(); }
    void clear();

    Incidences &added() { return mAdded; }
    Incidences &changed() { return mChanged; }
    Incidences &deleted() { return mDeleted; }

private:
    Incidences mAdded;
    Incidences mChanged;
    Incidences mDeleted;
};

} // namespace mKCal
