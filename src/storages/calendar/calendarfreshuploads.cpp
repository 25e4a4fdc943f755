// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarfreshuploads.h"

#include "application/base/clock.h"

void CalendarFreshUploads::note(const QString &uid, uint stamp, const KCalendarCore::Event::List &parts)
{
    // What was changed before this second cannot be changed under the same stamp any more.
    if (stamp < uint(Clock::instance().currentDateTimeUtc().toSecsSinceEpoch()))
        return forget(uid);
    Upload &upload = mUploads[uid];
    upload = Upload { stamp, {} };
    for (const KCalendarCore::Event::Ptr &part : parts)
        upload.contents.insert(part->instanceIdentifier(), contentOf(*part));
}

void CalendarFreshUploads::forget(const QString &uid)
{
    mUploads.remove(uid);
}

bool CalendarFreshUploads::isEdited(const KCalendarCore::Incidence &part, uint stamp) const
{
    const auto upload = mUploads.constFind(part.uid());
    if (upload == mUploads.cend() || upload->stamp != stamp)
        return false;
    const KCalendarCore::Incidence::Ptr sent = upload->contents.value(part.instanceIdentifier());
    return !sent || *sent != *contentOf(part);
}

KCalendarCore::Incidence::Ptr CalendarFreshUploads::contentOf(const KCalendarCore::Incidence &part)
{
    const KCalendarCore::Incidence::Ptr content(part.clone());
    const QList<QByteArray> marks = content->customProperties().keys();
    for (const QByteArray &mark : marks)
        content->removeNonKDECustomProperty(mark);
    return content;
}
