// SPDX-License-Identifier: LGPL-2.1-or-later
#include "storages/calendar/calendarfreshuploads.h"

#include "application/base/clock.h"

#include <KCalendarCore/ICalFormat>

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
    return upload != mUploads.cend() && upload->stamp == stamp
        && upload->contents.value(part.instanceIdentifier()) != contentOf(part);
}

QByteArray CalendarFreshUploads::contentOf(const KCalendarCore::Incidence &part)
{
    const KCalendarCore::Incidence::Ptr copy(part.clone());
    const QList<QByteArray> lines = KCalendarCore::ICalFormat().toString(copy).toUtf8().split('\n');
    QByteArray content;
    for (const QByteArray &line : lines) {
        // The engine keeps marks of its own there; the stamp is that of the conversion.
        if (!line.startsWith("X-") && !line.startsWith("DTSTAMP"))
            content += line;
    }
    return content;
}
