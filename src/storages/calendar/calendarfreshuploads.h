// SPDX-License-Identifier: LGPL-2.1-or-later
#pragma once

#include <KCalendarCore/Event>

#include <QHash>
#include <QString>

/**
 * What events looked like that went up in the very second of their last change. Stamps count in seconds, so
 * that an edit in the rest of that second has the stamp of what the server knows.
 *
 * Belongs to the local changes of an account, and is lost with the daemon: an edit of such a second that no
 * search has met by then stays on the device. Main thread only.
 */
class CalendarFreshUploads
{
public:
    /** An event goes up, a series with its exceptions; `stamp` is the latest time of change of all parts. */
    void note(const QString &uid, uint stamp, const KCalendarCore::Event::List &parts);
    /** The event has become what the server says. */
    void forget(const QString &uid);
    /** Whether a part of an event that the server knows under this stamp is not what went up under it. */
    bool isEdited(const KCalendarCore::Incidence &part, uint stamp) const;

private:
    struct Upload
    {
        uint stamp = 0;
        /** By instance identifiers. */
        QHash<QString, KCalendarCore::Incidence::Ptr> contents;
    };

    /** A copy without what the engine marks events with. */
    static KCalendarCore::Incidence::Ptr contentOf(const KCalendarCore::Incidence &part);

    QHash<QString, Upload> mUploads;
};
